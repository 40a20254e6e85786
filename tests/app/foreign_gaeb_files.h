#pragma once

// A tender and a bid as other programs write them, written by hand for our tests: a BoQ in
// lots and two levels of titles with numbers right-aligned and without leading zeros in
// the bid, an index level, a remark, a lump-sum item, a contingency item without total, a
// base item with its alternative, an item whose quantity the bidder states, a gap for the
// bidder's words holding dots, quantities of three decimals and unit prices of three
// decimals (UPFracDig 3), unit-price components; the bid with a discount on the whole BoQ,
// totals stated on every level, some items without their total, a bidder's comment and
// the bidder's words in the gap. Both are valid against the official schemas.
namespace korvan::app::foreign {

inline constexpr const char* kLv = "LV-0815";
inline constexpr const char* kBidder = "Bau und Putz Schmidt GmbH";

inline constexpr const char* kTender = R"xml(<?xml version="1.0" encoding="UTF-8"?>
<GAEB xmlns="http://www.gaeb.de/GAEB_DA_XML/DA83/3.3">
  <GAEBInfo>
    <Version>3.3</Version>
    <VersDate>2021-05</VersDate>
    <Date>2026-10-02</Date>
    <Time>14:31:07</Time>
    <ProgSystem>Planungsbüro-Software 7.4</ProgSystem>
    <ProgName>AVA-Modul</ProgName>
  </GAEBInfo>
  <PrjInfo>
    <NamePrj>RH-SUED</NamePrj>
    <LblPrj>Sanierung Rathaus Süd</LblPrj>
    <Cur>EUR</Cur>
    <CurLbl>Euro</CurLbl>
    <BidCommPerm>Yes</BidCommPerm>
    <AlterBidPerm>Yes</AlterBidPerm>
    <UPFracDig>3</UPFracDig>
  </PrjInfo>
  <Award>
    <DP>83</DP>
    <AwardInfo>
      <Cat>OpenProc</Cat>
      <Cur>EUR</Cur>
      <CurLbl>Euro</CurLbl>
      <OpenDate>2026-11-03</OpenDate>
      <OpenTime>10:00:00</OpenTime>
      <SubmLoc>Rathaus, Zimmer 12</SubmLoc>
      <CnstStart>2027-03-01</CnstStart>
      <CnstEnd>2027-09-30</CnstEnd>
    </AwardInfo>
    <OWN>
      <Address>
        <Name1>Stadt Musterhausen</Name1>
        <Name2>Hochbauamt</Name2>
        <Street>Marktplatz 1</Street>
        <PCode>54321</PCode>
        <City>Musterhausen</City>
      </Address>
    </OWN>
    <BoQ ID="BOQ-7F3A">
      <BoQInfo>
        <Name>LV-0815</Name>
        <LblBoQ>Rohbau und Putz</LblBoQ>
        <Date>2026-10-02</Date>
        <OutlCompl>AllTxt</OutlCompl>
        <BoQBkdn><Type>Lot</Type><LblBoQBkdn>Los</LblBoQBkdn><Length>1</Length><Num>Yes</Num><Alignment>right</Alignment></BoQBkdn>
        <BoQBkdn><Type>BoQLevel</Type><LblBoQBkdn>Titel</LblBoQBkdn><Length>2</Length><Num>Yes</Num><Alignment>right</Alignment></BoQBkdn>
        <BoQBkdn><Type>BoQLevel</Type><LblBoQBkdn>Untertitel</LblBoQBkdn><Length>2</Length><Num>Yes</Num><Alignment>right</Alignment></BoQBkdn>
        <BoQBkdn><Type>Item</Type><LblBoQBkdn>Position</LblBoQBkdn><Length>3</Length><Num>Yes</Num><Alignment>right</Alignment></BoQBkdn>
        <BoQBkdn><Type>Index</Type><Length>1</Length><Num>No</Num></BoQBkdn>
        <NoUPComps>2</NoUPComps>
        <LblUPComp1 Type="Wages">Lohn</LblUPComp1>
        <LblUPComp2 Type="Miscellaneous">Sonstiges</LblUPComp2>
      </BoQInfo>
      <BoQBody>
        <BoQCtgy ID="C-1" RNoPart="1">
          <LblTx><p><span>Los 1 Rohbau</span></p></LblTx>
          <BoQBody>
            <BoQCtgy ID="C-1-01" RNoPart="01">
              <LblTx><p><span>Erdarbeiten</span></p></LblTx>
              <BoQBody>
                <BoQCtgy ID="C-1-01-01" RNoPart="01">
                  <LblTx><p><span>Aushub</span></p></LblTx>
                  <BoQBody>
                    <Itemlist>
                      <Remark ID="R-1">
                        <Description>
                          <CompleteText>
                            <DetailTxt><Text><p><span>Der Baugrund ist Bodenklasse 3 bis 5.</span></p></Text></DetailTxt>
                            <OutlineText><OutlTxt><TextOutlTxt><p><span>Hinweis Baugrund</span></p></TextOutlTxt></OutlTxt></OutlineText>
                          </CompleteText>
                        </Description>
                      </Remark>
                      <Item ID="I-1" RNoPart="10">
                        <Qty>125.375</Qty>
                        <QU>m³</QU>
                        <Description>
                          <CompleteText>
                            <DetailTxt><Text><p><span>Baugrube ausheben, Boden seitlich lagern.</span></p></Text></DetailTxt>
                            <OutlineText><OutlTxt><TextOutlTxt><p><span>Baugrube ausheben</span></p></TextOutlTxt></OutlTxt></OutlineText>
                          </CompleteText>
                        </Description>
                      </Item>
                      <Item ID="I-2" RNoPart="20">
                        <LumpSumItem>Yes</LumpSumItem>
                        <Qty>1.000</Qty>
                        <QU>psch</QU>
                        <Description>
                          <CompleteText>
                            <DetailTxt><Text><p><span>Baustelle einrichten und räumen.</span></p></Text></DetailTxt>
                            <OutlineText><OutlTxt><TextOutlTxt><p><span>Baustelleneinrichtung</span></p></TextOutlTxt></OutlTxt></OutlineText>
                          </CompleteText>
                        </Description>
                      </Item>
                      <Item ID="I-3" RNoPart="30">
                        <Provis>WithoutTotal</Provis>
                        <Qty>10.500</Qty>
                        <QU>h</QU>
                        <Description>
                          <CompleteText>
                            <DetailTxt><Text><p><span>Wasserhaltung, nur auf Anordnung.</span></p></Text></DetailTxt>
                            <OutlineText><OutlTxt><TextOutlTxt><p><span>Wasserhaltung (Bedarf)</span></p></TextOutlTxt></OutlTxt></OutlineText>
                          </CompleteText>
                        </Description>
                      </Item>
                    </Itemlist>
                  </BoQBody>
                </BoQCtgy>
                <BoQCtgy ID="C-1-01-02" RNoPart="02">
                  <LblTx><p><span>Verfüllung</span></p></LblTx>
                  <BoQBody>
                    <Itemlist>
                      <Item ID="I-4" RNoPart="10">
                        <ALNGroupNo>1</ALNGroupNo>
                        <ALNSerNo>0</ALNSerNo>
                        <Qty>48.250</Qty>
                        <QU>m³</QU>
                        <Description>
                          <CompleteText>
                            <DetailTxt><Text><p><span>Verfüllen mit Aushub.</span></p></Text></DetailTxt>
                            <OutlineText><OutlTxt><TextOutlTxt><p><span>Verfüllen mit Aushub</span></p></TextOutlTxt></OutlTxt></OutlineText>
                          </CompleteText>
                        </Description>
                      </Item>
                      <Item ID="I-5" RNoPart="10" RNoIndex="A">
                        <ALNGroupNo>1</ALNGroupNo>
                        <ALNSerNo>1</ALNSerNo>
                        <Qty>48.250</Qty>
                        <QU>m³</QU>
                        <Description>
                          <CompleteText>
                            <DetailTxt><Text><p><span>Verfüllen mit Kies statt Aushub.</span></p></Text></DetailTxt>
                            <OutlineText><OutlTxt><TextOutlTxt><p><span>Alternative: Verfüllen mit Kies</span></p></TextOutlTxt></OutlTxt></OutlineText>
                          </CompleteText>
                        </Description>
                      </Item>
                      <Item ID="I-6" RNoPart="20">
                        <QtyTBD>Yes</QtyTBD>
                        <QU>t</QU>
                        <Description>
                          <CompleteText>
                            <DetailTxt><Text><p><span>Bodenaustausch, Menge nach Angabe des Bieters.</span></p></Text></DetailTxt>
                            <OutlineText><OutlTxt><TextOutlTxt><p><span>Bodenaustausch</span></p></TextOutlTxt></OutlTxt></OutlineText>
                          </CompleteText>
                        </Description>
                      </Item>
                      <Item ID="I-7" RNoPart="30">
                        <Qty>0.125</Qty>
                        <QU>t</QU>
                        <Description>
                          <CompleteText>
                            <DetailTxt>
                              <Text><p><span>Betonstahl liefern und einbauen, Hersteller: </span><TextComplement Kind="Bidder" MarkLbl="1"><ComplCaption><p><span>Hersteller</span></p></ComplCaption><ComplBody><p><span>..........</span></p></ComplBody></TextComplement></p></Text>
                            </DetailTxt>
                            <OutlineText><OutlTxt><TextOutlTxt><p><span>Betonstahl</span></p></TextOutlTxt></OutlTxt></OutlineText>
                          </CompleteText>
                        </Description>
                      </Item>
                    </Itemlist>
                  </BoQBody>
                </BoQCtgy>
              </BoQBody>
            </BoQCtgy>
          </BoQBody>
        </BoQCtgy>
        <BoQCtgy ID="C-2" RNoPart="2">
          <LblTx><p><span>Los 2 Ausbau</span></p></LblTx>
          <BoQBody>
            <BoQCtgy ID="C-2-01" RNoPart="01">
              <LblTx><p><span>Putzarbeiten</span></p></LblTx>
              <BoQBody>
                <BoQCtgy ID="C-2-01-01" RNoPart="01">
                  <LblTx><p><span>Innenputz</span></p></LblTx>
                  <BoQBody>
                    <Itemlist>
                      <Item ID="I-8" RNoPart="10">
                        <UPBkdn>Yes</UPBkdn>
                        <Qty>234.567</Qty>
                        <QU>m²</QU>
                        <Description>
                          <CompleteText>
                            <DetailTxt><Text><p><span>Kalkzementputz innen, 15 mm.</span></p></Text></DetailTxt>
                            <OutlineText><OutlTxt><TextOutlTxt><p><span>Innenputz</span></p></TextOutlTxt></OutlTxt></OutlineText>
                          </CompleteText>
                        </Description>
                      </Item>
                      <Item ID="I-9" RNoPart="20">
                        <Qty>17.005</Qty>
                        <QU>m</QU>
                        <Description>
                          <CompleteText>
                            <DetailTxt><Text><p><span>Eckschutzschiene.</span></p></Text></DetailTxt>
                            <OutlineText><OutlTxt><TextOutlTxt><p><span>Eckschutzschiene</span></p></TextOutlTxt></OutlTxt></OutlineText>
                          </CompleteText>
                        </Description>
                      </Item>
                    </Itemlist>
                  </BoQBody>
                </BoQCtgy>
              </BoQBody>
            </BoQCtgy>
          </BoQBody>
        </BoQCtgy>
      </BoQBody>
    </BoQ>
  </Award>
</GAEB>
)xml";

inline constexpr const char* kBid = R"xml(<?xml version="1.0" encoding="UTF-8"?>
<GAEB xmlns="http://www.gaeb.de/GAEB_DA_XML/DA84/3.3">
  <GAEBInfo>
    <Version>3.3</Version>
    <VersDate>2021-05</VersDate>
    <Date>2026-10-28</Date>
    <Time>09:12:44</Time>
    <ProgSystem>Kalkulation Handwerk 2026</ProgSystem>
  </GAEBInfo>
  <PrjInfo>
    <NamePrj>RH-SUED</NamePrj>
    <LblPrj>Sanierung Rathaus Süd</LblPrj>
  </PrjInfo>
  <Award>
    <DP>84</DP>
    <AwardInfo>
      <Cur>EUR</Cur>
      <CurLbl>Euro</CurLbl>
      <BidDate>2026-10-28</BidDate>
    </AwardInfo>
    <CTR>
      <Address>
        <Name1>Bau und Putz Schmidt GmbH</Name1>
        <Street>Industriestraße 7</Street>
        <PCode>54322</PCode>
        <City>Nachbarstadt</City>
      </Address>
    </CTR>
    <BoQ ID="BOQ-7F3A">
      <BoQInfo>
        <Name>LV-0815</Name>
        <BoQBkdn><Type>Lot</Type><LblBoQBkdn>Los</LblBoQBkdn><Length>1</Length><Num>Yes</Num></BoQBkdn>
        <BoQBkdn><Type>BoQLevel</Type><LblBoQBkdn>Titel</LblBoQBkdn><Length>2</Length><Num>Yes</Num></BoQBkdn>
        <BoQBkdn><Type>BoQLevel</Type><LblBoQBkdn>Untertitel</LblBoQBkdn><Length>2</Length><Num>Yes</Num></BoQBkdn>
        <BoQBkdn><Type>Item</Type><LblBoQBkdn>Position</LblBoQBkdn><Length>3</Length><Num>Yes</Num></BoQBkdn>
        <BoQBkdn><Type>Index</Type><Length>1</Length><Num>No</Num></BoQBkdn>
        <Totals>
          <Total>9878.99</Total>
          <DiscountPcnt>3</DiscountPcnt>
          <TotAfterDisc>9582.62</TotAfterDisc>
          <VAT>19</VAT>
          <TotalNet>9582.62</TotalNet>
          <VATAmount>1820.70</VATAmount>
          <TotalGross>11403.32</TotalGross>
        </Totals>
      </BoQInfo>
      <BoQBody>
        <BoQCtgy ID="C-1" RNoPart="1">
          <BoQBody>
            <BoQCtgy ID="C-1-01" RNoPart="01">
              <BoQBody>
                <BoQCtgy ID="C-1-01-01" RNoPart="01">
                  <BoQBody>
                    <Itemlist>
                      <Item ID="I-1" RNoPart="10">
                        <Qty>125.375</Qty>
                        <UP>14.255</UP>
                        <UPComp1>9.100</UPComp1>
                        <UPComp2>5.155</UPComp2>
                        <IT>1787.22</IT>
                      </Item>
                      <Item ID="I-2" RNoPart="20">
                        <Qty>1.000</Qty>
                        <UP>2500.00</UP>
                        <BidComm><p><span>Einschließlich Bauzaun und Container.</span></p></BidComm>
                      </Item>
                      <Item ID="I-3" RNoPart="30">
                        <Qty>10.500</Qty>
                        <UP>85.50</UP>
                      </Item>
                    </Itemlist>
                  </BoQBody>
                  <Totals><Total>4287.22</Total></Totals>
                </BoQCtgy>
                <BoQCtgy ID="C-1-01-02" RNoPart="02">
                  <BoQBody>
                    <Itemlist>
                      <Item ID="I-4" RNoPart="10">
                        <Qty>48.250</Qty>
                        <UP>12.40</UP>
                        <IT>598.30</IT>
                      </Item>
                      <Item ID="I-5" RNoPart="10" RNoIndex="A">
                        <Qty>48.250</Qty>
                        <UP>21.90</UP>
                        <IT>1056.68</IT>
                      </Item>
                      <Item ID="I-6" RNoPart="20">
                        <Qty>12.500</Qty>
                        <UP>31.20</UP>
                        <IT>390.00</IT>
                      </Item>
                      <Item ID="I-7" RNoPart="30">
                        <Qty>0.125</Qty>
                        <UP>1234.567</UP>
                        <IT>154.32</IT>
                        <Description>
                          <CompleteText>
                            <DetailTxt>
                              <TextComplement Kind="Bidder" MarkLbl="1"><ComplBody><p><span>Stahlwerk Nord</span></p></ComplBody></TextComplement>
                            </DetailTxt>
                          </CompleteText>
                        </Description>
                      </Item>
                    </Itemlist>
                  </BoQBody>
                  <Totals><Total>1142.62</Total></Totals>
                </BoQCtgy>
              </BoQBody>
              <Totals><Total>5429.84</Total></Totals>
            </BoQCtgy>
          </BoQBody>
          <Totals><Total>5429.84</Total></Totals>
        </BoQCtgy>
        <BoQCtgy ID="C-2" RNoPart="2">
          <BoQBody>
            <BoQCtgy ID="C-2-01" RNoPart="01">
              <BoQBody>
                <BoQCtgy ID="C-2-01-01" RNoPart="01">
                  <BoQBody>
                    <Itemlist>
                      <Item ID="I-8" RNoPart="10">
                        <Qty>234.567</Qty>
                        <UP>18.75</UP>
                        <UPComp1>12.00</UPComp1>
                        <UPComp2>6.75</UPComp2>
                        <IT>4398.13</IT>
                      </Item>
                      <Item ID="I-9" RNoPart="20">
                        <Qty>17.005</Qty>
                        <UP>3.00</UP>
                        <IT>51.02</IT>
                      </Item>
                    </Itemlist>
                  </BoQBody>
                  <Totals><Total>4449.15</Total></Totals>
                </BoQCtgy>
              </BoQBody>
              <Totals><Total>4449.15</Total></Totals>
            </BoQCtgy>
          </BoQBody>
          <Totals><Total>4449.15</Total></Totals>
        </BoQCtgy>
      </BoQBody>
    </BoQ>
  </Award>
</GAEB>
)xml";

}  // namespace korvan::app::foreign
