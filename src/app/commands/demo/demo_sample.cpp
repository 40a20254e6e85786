// The sample of `korvan demo`: "Neubau Kindergarten", the shell of a one-storey building
// with a pitched roof, in ten trades of about one hundred items.
#include "app/commands/demo/demo_sample.h"

#include <iterator>

#include "boq/units/rounding.h"

namespace korvan::app::demo {
namespace {

constexpr SampleItem kSiteSetup[] = {
    {"Baustelleneinrichtung",
     "Baustelle einrichten und nach Abschluss der Arbeiten räumen, einschließlich aller Geräte, "
     "Unterkünfte und Lagerflächen des Auftragnehmers.",
     "psch", 1, 18500.00},
    {"Bauzaun",
     "Mobilen Bauzaun, Höhe 2,00 m, mit Fußplatten und Schellen aufstellen, während der Bauzeit "
     "vorhalten und wieder entfernen.",
     "m", 180, 9.80},
    {"Bauzauntor",
     "Tor im Bauzaun, zweiflügelig, lichte Breite 5,00 m, abschließbar, aufstellen, vorhalten und "
     "entfernen.",
     "St", 2, 385.00},
    {"Baustromverteiler",
     "Baustromverteiler mit Zähler und Fehlerstromschutz anschließen, vorhalten und abbauen; "
     "Verbrauch wird gesondert vergütet.",
     "St", 1, 1250.00},
    {"Bauwasseranschluss",
     "Bauwasseranschluss mit Standrohr und Wasserzähler herstellen, frostsicher vorhalten und "
     "zurückbauen.",
     "psch", 1, 980.00},
    {"Bauschild",
     "Bauschild 3,00 x 2,00 m nach Vorgabe des Bauherrn liefern, auf Holzpfosten aufstellen und "
     "nach Fertigstellung entfernen.",
     "St", 1, 1450.00},
    {"Sanitärcontainer",
     "Sanitärcontainer mit WC und Waschbecken für die Baustelle aufstellen, anschließen, reinigen "
     "und vorhalten.",
     "St", 1, 2650.00},
    {"Baustraße",
     "Provisorische Baustraße aus Schotter 0/45, Dicke 30 cm, auf Geotextil herstellen und nach "
     "Gebrauch zurückbauen.",
     "m2", 240, 18.50},
};

constexpr SampleItem kEarthworks[] = {
    {"Oberboden abtragen",
     "Oberboden, Bodengruppe OH, im Mittel 30 cm dick abtragen, seitlich lagern und für den "
     "Wiedereinbau vorhalten.",
     "m2", 1250, 3.20},
    {"Baugrube ausheben",
     "Baugrube in Boden der Homogenbereiche B1 und B2 ausheben, Aushub laden und auf der Baustelle "
     "zwischenlagern.",
     "m3", 640, 11.80},
    {"Fundamentgräben ausheben",
     "Gräben für Streifenfundamente, Breite bis 0,80 m, Tiefe bis 1,20 m, ausheben, Sohle "
     "verdichten.",
     "m3", 95, 24.50},
    {"Aushub abfahren",
     "Überschüssigen Aushub laden, abfahren und fachgerecht entsorgen; Nachweis der Entsorgung "
     "übergeben.",
     "m3", 420, 21.00},
    {"Schottertragschicht",
     "Kapillarbrechende Schicht aus Schotter 0/32, Dicke 20 cm, unter der Bodenplatte einbauen und "
     "verdichten.",
     "m3", 92, 38.00},
    {"Arbeitsraum verfüllen",
     "Arbeitsraum mit geeignetem Boden lagenweise verfüllen und verdichten, Verdichtungsgrad "
     "mindestens 97 % der Proctordichte.",
     "m3", 180, 16.40},
    {"Planum herstellen",
     "Planum der Gründungssohle herstellen, Höhenabweichung höchstens 2 cm, Verformungsmodul Ev2 "
     "mindestens 45 MN/m2 nachweisen.",
     "m2", 460, 2.60},
    {"Plattendruckversuch",
     "Statischen Plattendruckversuch nach DIN 18134 durchführen und das Protokoll übergeben.", "St",
     4, 165.00},
    {"Wasserhaltung",
     "Offene Wasserhaltung mit Pumpensumpf und Tauchpumpe betreiben, einschließlich Ableitung des "
     "Wassers.",
     "h", 60, 28.50},
    {"Oberboden andecken",
     "Gelagerten Oberboden auf Grünflächen andecken, grob planieren, Dicke im Mittel 20 cm.", "m2",
     520, 4.10},
    {"Sauberkeitsschicht",
     "Sauberkeitsschicht aus Beton C8/10, Dicke 5 cm, unter Fundamenten und Bodenplatte einbauen.",
     "m2", 470, 9.20},
    {"Geotextil", "Geotextil, Robustheitsklasse GRK 3, auf dem Planum überlappend verlegen.", "m2",
     480, 2.30},
};

constexpr SampleItem kDrainage[] = {
    {"Rohrgraben ausheben",
     "Rohrgraben für Grundleitungen, Tiefe bis 1,50 m, ausheben, Grabensohle herstellen und nach "
     "Verlegung verfüllen.",
     "m3", 85, 32.00},
    {"KG-Rohr DN 110",
     "Grundleitung aus PVC-U, KG-Rohr DN 110, SN 8, in Sandbettung verlegen, einschließlich "
     "Formstücke.",
     "m", 64, 26.50},
    {"KG-Rohr DN 150",
     "Grundleitung aus PVC-U, KG-Rohr DN 150, SN 8, in Sandbettung verlegen, einschließlich "
     "Formstücke.",
     "m", 48, 34.80},
    {"KG-Rohr DN 200",
     "Anschlussleitung aus PVC-U, KG-Rohr DN 200, SN 8, bis zum öffentlichen Kanal verlegen.", "m",
     22, 48.50},
    {"Revisionsschacht",
     "Revisionsschacht aus Betonfertigteilen DN 1000, Tiefe bis 2,00 m, mit Abdeckung Klasse D 400 "
     "herstellen.",
     "St", 2, 1850.00},
    {"Hofablauf",
     "Hofablauf aus Beton mit Schlammeimer und Gusseisenrost, Klasse B 125, setzen und "
     "anschließen.",
     "St", 4, 295.00},
    {"Rinne mit Rost",
     "Entwässerungsrinne aus Polymerbeton, Nennweite 100, mit Gitterrost Klasse B 125, einbauen.",
     "m", 18, 96.00},
    {"Dichtheitsprüfung",
     "Dichtheitsprüfung der Grundleitungen mit Luft nach DIN EN 1610 durchführen und "
     "protokollieren.",
     "m", 134, 4.20},
    {"Kamerabefahrung",
     "Grundleitungen mit der Kamera befahren, Befahrung aufzeichnen und als Datei übergeben.", "m",
     134, 3.60},
    {"Anschluss an Kanal",
     "Anschluss an den öffentlichen Mischwasserkanal nach Vorgabe des Netzbetreibers herstellen.",
     "psch", 1, 2400.00},
};

constexpr SampleItem kConcrete[] = {
    {"Streifenfundament C25/30",
     "Streifenfundamente aus Beton C25/30, Expositionsklasse XC2, in Erdschalung herstellen.", "m3",
     58, 168.00},
    {"Einzelfundament C25/30",
     "Einzelfundamente aus Beton C25/30, Expositionsklasse XC2, einschließlich Schalung "
     "herstellen.",
     "m3", 12, 215.00},
    {"Bodenplatte C30/37, d = 25 cm",
     "Bodenplatte aus Beton C30/37, Dicke 25 cm, Oberfläche flügelgeglättet, einschließlich "
     "Randschalung.",
     "m2", 460, 62.00},
    {"Betonstahl B500B, Stäbe",
     "Betonstahl B500B in Stäben liefern, schneiden, biegen und nach Bewehrungsplan verlegen.", "t",
     28, 1480.00},
    {"Betonstahlmatten B500A",
     "Betonstahlmatten B500A liefern, zuschneiden und nach Verlegeplan einbauen.", "t", 16,
     1390.00},
    {"Wände C25/30, d = 24 cm",
     "Stahlbetonwände aus Beton C25/30, Dicke 24 cm, Sichtbetonklasse SB1, herstellen.", "m3", 34,
     295.00},
    {"Wandschalung",
     "Schalung für Stahlbetonwände, glatt, Schalhautklasse SHK 2, herstellen, vorhalten und "
     "entfernen.",
     "m2", 280, 38.50},
    {"Stützen C30/37",
     "Stahlbetonstützen, Querschnitt 30 x 30 cm, aus Beton C30/37, einschließlich Schalung "
     "herstellen.",
     "m3", 6, 520.00},
    {"Unterzüge C30/37",
     "Stahlbetonunterzüge aus Beton C30/37, einschließlich Schalung und Abstützung herstellen.",
     "m3", 9, 480.00},
    {"Decke C30/37, d = 22 cm",
     "Stahlbetondecke aus Beton C30/37, Dicke 22 cm, Unterseite glatt, einschließlich "
     "Deckenschalung.",
     "m2", 410, 78.00},
    {"Ringbalken",
     "Ringbalken aus Beton C25/30, Querschnitt 24 x 30 cm, auf Mauerwerk einschließlich Schalung "
     "herstellen.",
     "m", 165, 46.00},
    {"Fertigteilstürze",
     "Stahlbeton-Fertigteilstürze für Öffnungen bis 2,00 m lichte Weite liefern und versetzen.",
     "St", 38, 84.00},
    {"Treppe Ortbeton",
     "Gerade Treppe aus Beton C25/30 mit 6 Stufen, Breite 1,50 m, einschließlich Schalung "
     "herstellen.",
     "St", 2, 1650.00},
    {"Perimeterdämmung",
     "Perimeterdämmung aus extrudiertem Polystyrol, Dicke 120 mm, unter der Bodenplatte verlegen.",
     "m2", 455, 24.50},
    {"Fugenband", "Fugenblech für Arbeitsfugen zwischen Bodenplatte und Wänden einbauen.", "m", 96,
     18.20},
    {"Aussparungen",
     "Aussparungen und Durchbrüche in Wänden und Decken nach Plan des Haustechnikers herstellen.",
     "St", 45, 38.00},
};

constexpr SampleItem kMasonry[] = {
    {"Außenwand Kalksandstein 17,5 cm",
     "Außenwände aus Kalksandstein KS 20-2,0 in Dünnbettmörtel, Dicke 17,5 cm, mauern.", "m2", 520,
     64.00},
    {"Innenwand Kalksandstein 24 cm",
     "Tragende Innenwände aus Kalksandstein KS 20-2,0 in Dünnbettmörtel, Dicke 24 cm, mauern.",
     "m2", 180, 78.00},
    {"Innenwand Kalksandstein 11,5 cm",
     "Nichttragende Innenwände aus Kalksandstein KS 12-1,8, Dicke 11,5 cm, mauern.", "m2", 260,
     46.00},
    {"Mauerwerk Porenbeton 36,5 cm",
     "Außenwände der Nebenräume aus Porenbeton-Plansteinen PP2-0,35, Dicke 36,5 cm, mauern.", "m2",
     85, 92.00},
    {"Kimmschicht", "Kimmschicht in Normalmörtel als erste Steinlage höhengerecht herstellen.", "m",
     310, 14.50},
    {"Sperrbahn",
     "Horizontale Sperrbahn unter der ersten Steinlage gegen aufsteigende Feuchte einlegen.", "m",
     310, 6.80},
    {"Mauerwerksanker", "Edelstahlanker für den Anschluss an Stahlbetonwände liefern und einbauen.",
     "St", 240, 3.90},
    {"Stürze Kalksandstein",
     "Kalksandstein-Flachstürze für Innenwandöffnungen bis 1,26 m liefern und versetzen.", "St", 26,
     42.00},
    {"Fensterbrüstung",
     "Brüstungsmauerwerk der Fensteröffnungen mit genauer Höhe für die Fensterbänke herstellen.",
     "m", 48, 28.00},
    {"Schlitze fräsen", "Schlitze für Leitungen in Mauerwerk fräsen, Querschnitt bis 5 x 5 cm.",
     "m", 150, 12.40},
    {"Gerüst",
     "Fassadengerüst, Lastklasse 3, Breitenklasse W09, aufbauen, vier Wochen vorhalten und "
     "abbauen.",
     "m2", 640, 8.90},
    {"Mehrvorhaltung Gerüst",
     "Vorhaltung des Fassadengerüsts über die vier Wochen hinaus, je Woche.", "m2", 1280, 0.35},
};

constexpr SampleItem kCarpentry[] = {
    {"Sparren KVH",
     "Sparren aus Konstruktionsvollholz C24, Querschnitt 8 x 22 cm, abbinden und aufstellen.", "m",
     620, 19.50},
    {"Pfetten BSH",
     "Pfetten aus Brettschichtholz GL24h, Querschnitt 16 x 32 cm, abbinden und montieren.", "m", 72,
     86.00},
    {"Stützen BSH",
     "Holzstützen aus Brettschichtholz GL24h, Querschnitt 16 x 16 cm, mit Stützenfuß aus Stahl "
     "einbauen.",
     "St", 8, 245.00},
    {"Dachschalung", "Dachschalung aus Rauspund, Dicke 24 mm, auf den Sparren befestigen.", "m2",
     540, 21.50},
    {"Zwischensparrendämmung",
     "Zwischensparrendämmung aus Mineralwolle WLS 035, Dicke 220 mm, einbauen.", "m2", 540, 24.80},
    {"Dampfbremse",
     "Feuchtevariable Dampfbremse raumseitig verlegen, Stöße und Anschlüsse luftdicht verkleben.",
     "m2", 560, 7.40},
    {"Holzschutz",
     "Vorbeugenden chemischen Holzschutz nach DIN 68800 auf die tragenden Hölzer auftragen.", "m2",
     320, 4.60},
    {"Vordach", "Vordach am Eingang in Holzkonstruktion, Tiefe 1,80 m, Breite 4,00 m, herstellen.",
     "St", 1, 4800.00},
    {"Verbindungsmittel",
     "Stahlblechformteile, Balkenschuhe und Winkelverbinder liefern und montieren.", "kg", 320,
     9.50},
    {"Traufbohle", "Traufbohle aus Nadelholz, 6 x 16 cm, an der Traufe befestigen.", "m", 84,
     16.50},
};

constexpr SampleItem kRoofing[] = {
    {"Unterdeckbahn",
     "Diffusionsoffene Unterdeckbahn auf der Dachschalung verlegen, Stöße verklebt.", "m2", 560,
     6.90},
    {"Konterlattung", "Konterlattung 4 x 6 cm auf den Sparren befestigen.", "m", 640, 3.80},
    {"Dachlattung", "Dachlattung 3 x 5 cm nach Deckbreite des Ziegels befestigen.", "m", 1650,
     2.90},
    {"Dachziegel",
     "Dachdeckung mit Tondachziegeln, naturrot engobiert, einschließlich Formziegeln verlegen.",
     "m2", 540, 48.00},
    {"First und Grat",
     "First und Grat mit Firstziegeln trocken verlegen, einschließlich Firstrollen.", "m", 46,
     42.00},
    {"Dachrinne Titanzink",
     "Hängedachrinne aus Titanzink, Zuschnitt 333 mm, mit Rinnenhaltern montieren.", "m", 84,
     38.50},
    {"Fallrohr Titanzink",
     "Fallrohr aus Titanzink DN 100 mit Rohrschellen und Standrohranschluss montieren.", "m", 36,
     34.00},
    {"Dachflächenfenster", "Dachflächenfenster 78 x 140 cm mit Eindeckrahmen einbauen.", "St", 6,
     980.00},
    {"Flachdachabdichtung",
     "Abdichtung des Flachdachs über dem Verbindungsgang aus Bitumenbahnen, zweilagig.", "m2", 62,
     58.00},
    {"Schneefanggitter", "Schneefanggitter mit Haltern an der Traufe montieren.", "m", 84, 24.00},
};

constexpr SampleItem kPlaster[] = {
    {"Innenputz Kalkgips",
     "Einlagigen Innenputz aus Kalkgips, Dicke 15 mm, auf Mauerwerk auftragen, Oberfläche Q2.",
     "m2", 1450, 16.80},
    {"Deckenputz",
     "Einlagigen Putz aus Gips auf Betondecken auftragen, Dicke 10 mm, Oberfläche Q2.", "m2", 410,
     17.90},
    {"Kantenprofile", "Kantenschutzprofile aus verzinktem Stahl an Außenecken einputzen.", "m", 420,
     4.20},
    {"Wärmedämmverbundsystem",
     "Wärmedämmverbundsystem mit Mineralwolle WLS 035, Dicke 160 mm, verklebt und verdübelt.", "m2",
     520, 92.00},
    {"Außenputz", "Mineralischen Oberputz, Körnung 2 mm, auf das Wärmedämmverbundsystem auftragen.",
     "m2", 520, 22.50},
    {"Sockelputz", "Sockelputz mit Sockeldämmung aus XPS, Höhe 50 cm, herstellen.", "m2", 64,
     58.00},
    {"Laibungen", "Fenster- und Türlaibungen, Tiefe bis 30 cm, dämmen und verputzen.", "m", 210,
     26.00},
    {"Anputzleisten", "Anputzleisten mit Gewebe an Fenstern und Türen anschließen.", "m", 260,
     5.60},
};

constexpr SampleItem kScreed[] = {
    {"Trittschalldämmung",
     "Trittschalldämmung aus Mineralwolle, Dicke 30 mm, unter dem Estrich verlegen.", "m2", 820,
     8.20},
    {"Wärmedämmung EPS",
     "Wärmedämmung aus EPS 035 DEO, Dicke 80 mm, zweilagig unter dem Estrich verlegen.", "m2", 430,
     12.60},
    {"Zementestrich CT-C25-F4",
     "Schwimmenden Zementestrich CT-C25-F4 als Heizestrich, Dicke 65 mm, herstellen.", "m2", 820,
     26.50},
    {"Randdämmstreifen",
     "Randdämmstreifen aus PE-Schaum, 10 x 100 mm, an allen aufgehenden Bauteilen stellen.", "m",
     680, 1.90},
    {"Bewegungsfugen", "Bewegungsfugen im Estrich mit Fugenprofil nach Fugenplan herstellen.", "m",
     95, 14.80},
    {"CM-Messung", "Restfeuchte des Estrichs mit der CM-Methode messen und protokollieren.", "St",
     12, 38.00},
};

constexpr SampleItem kTiling[] = {
    {"Abdichtung im Verbund",
     "Abdichtung im Verbund mit Flüssigkunststoff in Nassbereichen, zweilagig, mit Dichtbändern.",
     "m2", 120, 34.00},
    {"Wandfliesen 30 x 60 cm",
     "Wandfliesen aus Steingut, 30 x 60 cm, weiß matt, im Dünnbett verlegen und verfugen.", "m2",
     180, 68.00},
    {"Bodenfliesen 30 x 30 cm",
     "Bodenfliesen aus Feinsteinzeug, 30 x 30 cm, Rutschhemmung R10, im Dünnbett verlegen.", "m2",
     240, 72.00},
    {"Sockelfliesen", "Sockelfliesen, Höhe 7 cm, passend zum Bodenbelag verlegen und verfugen.",
     "m", 190, 18.50},
    {"Silikonfugen", "Elastische Fugen aus Sanitärsilikon in Ecken und an Anschlüssen herstellen.",
     "m", 260, 6.20},
    {"Duschrinne",
     "Duschrinne aus Edelstahl, Länge 80 cm, einbauen und an die Abdichtung anschließen.", "St", 3,
     420.00},
    {"Eckschutzschienen",
     "Eckschutzschienen aus Edelstahl an Außenecken der Fliesenflächen einbauen.", "m", 48, 14.00},
    {"Fliesenspiegel Küche",
     "Fliesenspiegel in der Küche, 20 x 20 cm Fliesen, Höhe 60 cm, verlegen.", "m2", 12, 82.00},
};

constexpr SampleGroup kGroups[] = {
    {"Baustelleneinrichtung", kSiteSetup},
    {"Erdarbeiten", kEarthworks},
    {"Entwässerungskanalarbeiten", kDrainage},
    {"Beton- und Stahlbetonarbeiten", kConcrete},
    {"Mauerarbeiten", kMasonry},
    {"Zimmer- und Holzbauarbeiten", kCarpentry},
    {"Dachdeckungsarbeiten", kRoofing},
    {"Putz- und Stuckarbeiten, Wärmedämmsysteme", kPlaster},
    {"Estricharbeiten", kScreed},
    {"Fliesen- und Plattenarbeiten", kTiling},
};

// The second bidder is the cheapest on the whole, though not on every item.
constexpr SampleBidder kBidders[] = {
    {"Albers Hochbau GmbH", "Industriestraße 12, 33602 Bielefeld", "Albers.X84", 1.04},
    {"Bergmann Bau KG", "Am Bahnhof 3, 32052 Herford", "Bergmann.X84", 0.97},
    {"Czerny Bauunternehmung", "Lindenweg 40, 32105 Bad Salzuflen", "Czerny.X84", 1.09},
};

}  // namespace

std::span<const SampleGroup> SampleGroups() {
  return kGroups;
}

std::span<const SampleBidder> SampleBidders() {
  return kBidders;
}

double SampleBidPrice(const SampleItem& item, int item_number, int bidder_number) {
  // -6 % to +6 % in steps of one percent, a different sequence for each bidder.
  const int step = (item_number * 7 + bidder_number * 5 + item_number * bidder_number) % 13 - 6;
  const double factor = kBidders[bidder_number].factor * (1.0 + step / 100.0);
  return boq::RoundValue(item.base_price * factor, 2, data::TRoundingType::rtCommercial);
}

int CheapestSampleBidder() {
  int cheapest = 0;
  double lowest = 0.0;
  for (int bidder = 0; bidder < static_cast<int>(std::size(kBidders)); ++bidder) {
    double total = 0.0;
    int number = 0;
    for (const SampleGroup& group : kGroups) {
      for (const SampleItem& item : group.items) {
        total += boq::RoundValue(item.quantity * SampleBidPrice(item, number++, bidder), 2,
                                 data::TRoundingType::rtCommercial);
      }
    }
    if (bidder == 0 || total < lowest) {
      cheapest = bidder;
      lowest = total;
    }
  }
  return cheapest;
}

}  // namespace korvan::app::demo
