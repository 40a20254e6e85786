#include "exchange/gaeb_import/gaeb_bid_import.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include "boq/oz/oz_format.h"
#include "boq/text/rich_text.h"
#include "boq/text/short_text_fit.h"
#include "exchange/gaeb/gaeb_phase.h"
#include "exchange/gaeb_import/gaeb_import.h"
#include "exchange/gaeb_xml/gaeb_decimal.h"
#include "exchange/gaeb_xml/gaeb_reader.h"
#include "exchange/gaeb_xml/gaeb_text_converter.h"

namespace korvan::exchange {
namespace {

using gaeb_xml::TGaebElement;
using gaeb_xml::TGaebFindingKind;

constexpr double kTolerance = 0.0001;
constexpr std::size_t kNoteLength = 70;

[[noreturn]] void Refuse(const std::string& file, int line, const std::string& message) {
  throw EGaebImportError(file + ":" + std::to_string(line) + ": " + message);
}

std::string Figure(double value) {
  char text[48];
  std::snprintf(text, sizeof text, "%.2f", value);
  std::string figure(text);
  for (char& c : figure) {
    if (c == '.') c = ',';
  }
  return figure;
}

// Walks the BoQ body of a bid and writes what matches into the bid.
class TBidReader {
 public:
  TBidReader(const std::string& file, award::TdmAngebot& bid, TGaebBidImport& result)
      : file_(file), bid_(bid), lv_(bid.Lv()), result_(result) {
    mask_ = std::string(lv_.FOzMask().FMask());
    for (char digit = '1'; digit <= '5'; ++digit) {
      if (mask_.find(digit) != std::string::npos) ++group_levels_;
    }
    for (int i = 0; i < lv_.Count(); ++i) {
      const char kind = KindClass(lv_[i].Kind());
      if (kind == 0) continue;
      const std::string oz(lv_[i].Oz());
      auto [at, fresh] = index_.emplace(std::make_pair(kind, oz), i);
      if (!fresh) ambiguous_.insert(at->first);
    }
  }

  void Body(const TGaebElement& body) {
    for (const TGaebElement& child : body.children) {
      if (child.name == "BoQCtgy") {
        Section(child);
      } else if (child.name == "Itemlist") {
        for (const TGaebElement& member : child.children) {
          if (member.name == "Item" || member.name == "MarkupItem") Item(member);
        }
      }
    }
  }

  // Compares the computed item totals with those the file states.
  void CompareTotals() {
    for (const auto& [line, total] : stated_totals_) {
      // An alternative or a contingency without total counts nothing in the bid; the file
      // may still state what it would cost.
      if (!bid_.IsPriced(line)) continue;
      const double computed = bid_.FAList()[static_cast<std::size_t>(line)].Angebot.GP.Betrag;
      if (std::fabs(computed - total.first) > 0.005) {
        Warn(total.second, "Position " + std::string(lv_[line].Oz()) + ": GP laut Datei " +
                               Figure(total.first) + ", gerechnet " + Figure(computed));
      }
    }
  }

 private:
  // Items of kinds P and L are matched alike: a bid file need not say which is which.
  static char KindClass(char kind) {
    if (kind == 'P' || kind == 'L') return 'P';
    if (kind == 'B') return 'B';
    return 0;
  }

  static bool IsSurchargeEntry(const boq::TLvPos& entry) {
    const char kind = entry.LvBeschr.ZuschArt;
    return kind == 'A' || kind == 'S' || kind == 'Z';
  }

  void Warn(int line, std::string message) {
    result_.findings.push_back({TGaebFindingKind::kWarning, line, std::move(message)});
  }
  void Hint(int line, std::string message) {
    result_.findings.push_back({TGaebFindingKind::kHint, line, std::move(message)});
  }

  std::optional<double> Decimal(const TGaebElement& parent, const char* name) {
    const TGaebElement* child = parent.Child(name);
    if (child == nullptr) return std::nullopt;
    std::string text = child->text;
    const std::size_t begin = text.find_first_not_of(" \t\r\n");
    const std::size_t end = text.find_last_not_of(" \t\r\n");
    text = begin == std::string::npos ? std::string() : text.substr(begin, end - begin + 1);
    const std::optional<double> value = gaeb_xml::ParseGaebDecimal(text);
    if (!value) {
      result_.protocol.push_back("Read: Bad " + std::string(name) + " (Zeile " +
                                 std::to_string(child->line) + ")");
      Warn(child->line,
           std::string(name) + " \"" + text + "\": erwartet eine Dezimalzahl wie 12.50");
    }
    return value;
  }

  std::string RNoPart(const TGaebElement& element) {
    std::optional<std::string> part = element.Attribute("RNoPart");
    if (!part || part->empty()) {
      result_.protocol.push_back("Read: No RNoPart (Zeile " + std::to_string(element.line) + ")");
      Warn(element.line, element.name + " ohne RNoPart: kann keinem Eintrag zugeordnet werden");
      return "?";
    }
    return *part;
  }

  // The OZ of a position: the number chain joined with points (rebuilt against the mask
  // when it has none). An indexed item, or one whose chain lacks a group level of the mask,
  // is numbered as the LV import numbers it ("_" for a missing level, the index appended).
  std::string OzOf(const std::string& part, const std::string& index) const {
    std::vector<std::string> parts = chain_;
    parts.push_back(part);
    const std::size_t wanted = static_cast<std::size_t>(group_levels_) + 1;
    if (index.empty() && parts.size() >= wanted) return NormaliseBidOz(Joined(parts), mask_);
    while (parts.size() < wanted) {
      parts.insert(parts.end() - 1, std::string(GroupWidth(parts.size() - 1), '_'));
    }
    std::string oz = Joined(parts);
    if (!index.empty()) oz += "." + index;
    return boq::FormLvOZ(oz, mask_).substr(0, boq::kMaxOzLength);
  }

  static std::string Joined(const std::vector<std::string>& parts) {
    std::string joined;
    for (const std::string& part : parts) joined += (joined.empty() ? "" : ".") + part;
    return joined;
  }

  // The width of the group level at `depth` (0-based) in the mask.
  std::size_t GroupWidth(std::size_t depth) const {
    std::size_t start = 0;
    for (std::size_t i = 0; i < depth; ++i) start = mask_.find('.', start) + 1;
    return mask_.find('.', start) - start;
  }

  // Programs write the parts of a number as they like: "10" for the item 010 of a level
  // of three, as the LV import reads it. An OZ the LV does not have as it stands is tried
  // once more formatted to the mask, as the LV import formats it.
  std::string AsTheLvNumbersIt(char kind, const std::string& oz) const {
    if (index_.count({kind, oz}) != 0) return oz;
    const std::string formed = boq::FormLvOZ(oz, mask_).substr(0, boq::kMaxOzLength);
    return index_.count({kind, formed}) != 0 ? formed : oz;
  }

  // The LV line of a position, or -1 with the finding saying why.
  int Match(char kind, const std::string& oz, int line, const char* what) {
    const auto key = std::make_pair(kind, oz);
    const auto found = index_.find(key);
    if (found == index_.end()) {
      Warn(line, std::string(what) + " " + oz + " passt zu keinem Eintrag des LV");
      return -1;
    }
    if (ambiguous_.count(key) != 0) {
      Warn(line, std::string(what) + " " + oz +
                     ": das LV hat mehrere Einträge dieser OZ; genommen wird der erste");
    }
    if (!matched_.insert(found->second).second) {
      Warn(line, std::string(what) + " " + oz +
                     " steht mehrfach in der Datei; nur die erste wird übernommen");
      return -1;
    }
    return found->second;
  }

  void Section(const TGaebElement& section) {
    ++result_.sections;
    chain_.push_back(RNoPart(section));
    const std::string oz = AsTheLvNumbersIt('B', NormaliseBidOz(JoinedChain(), mask_));
    const int line = Match('B', oz, section.line, "Bereich");
    if (line >= 0) {
      ++result_.matched_sections;
      award::t_Angebot_DB_VERSION_201501& sum =
          bid_.FAList()[static_cast<std::size_t>(line)].Angebot;
      if (const TGaebElement* totals = section.Child("Totals")) {
        if (const std::optional<double> percent = Decimal(*totals, "DiscountPcnt")) {
          sum.NachlassProz = static_cast<float>(*percent);
        }
        if (const std::optional<double> amount = Decimal(*totals, "DiscountAmt")) {
          sum.DiscountAmt.Betrag = *amount;
        }
      }
    }
    if (const TGaebElement* body = section.Child("BoQBody")) Body(*body);
    chain_.pop_back();
  }

  std::string JoinedChain() const { return Joined(chain_); }

  void Item(const TGaebElement& item) {
    ++result_.items;
    const std::string oz =
        AsTheLvNumbersIt('P', OzOf(RNoPart(item), item.Attribute("RNoIndex").value_or("")));
    const int line = Match('P', oz, item.line, "Position");
    if (line < 0) return;
    ++result_.matched_items;
    const boq::TLvPos& entry = lv_[line];
    award::t_Angebot_DB_VERSION_201501& a = bid_.FAList()[static_cast<std::size_t>(line)].Angebot;
    const bool markup = item.name == "MarkupItem";
    const std::optional<std::string> not_offered = item.ChildText("NotOffered");
    if (not_offered && *not_offered == "Yes") {
      a.EP.Betrag = 0.0;
      award::SetStatedTotalWithoutQuantity(a, 0.0);
      for (data::t_WaeBetrag& part : a.EPAnteil) part.Betrag = 0.0;
      a.Kennz = award::kMarkNotOffered;
      return;
    }
    // A markup item's rate is the price of a surcharge item; an LV that keeps it as a
    // plain item gets its total as the price, as a lump sum.
    const bool rate = markup && IsSurchargeEntry(entry);
    std::optional<double> price = Decimal(item, rate ? "Markup" : "UP");
    const std::optional<double> total = Decimal(item, "IT");
    const std::optional<double> quantity = Decimal(item, "Qty");
    if (!price && total && !rate && (!quantity || std::fabs(*quantity) < kTolerance)) {
      price = total;  // a lump sum without quantity: its total is its price
    }
    if (price) {
      a.EP.Betrag = *price;
      ++result_.prices;
    }
    double components = 0.0;
    bool any_component = false;
    for (int k = 0; k < 6; ++k) {
      const std::string name = "UPComp" + std::to_string(k + 1);
      const std::optional<double> part = Decimal(item, name.c_str());
      a.EPAnteil[static_cast<std::size_t>(k)].Betrag = part.value_or(0.0);
      components += part.value_or(0.0);
      any_component = any_component || (part && std::fabs(*part) >= kTolerance);
    }
    a.Kennz = award::kMarkNone;
    if (any_component && std::fabs(components - a.EP.Betrag) > kTolerance) {
      a.Kennz = award::kMarkFaulty;
      const std::string note =
          "EP-Anteile ergeben " + Figure(components) + " statt EP " + Figure(a.EP.Betrag);
      Warn(item.line, "Position " + oz + ": " + note.substr(0, kNoteLength));
    }
    if (quantity && entry.LvBeschr.KzFrMenge != 0) a.AMenge = *quantity;
    KeepTotalWithoutQuantity(item, oz, line, total && !quantity && !rate ? total : std::nullopt);
    if (const std::optional<double> discount = Decimal(item, "DiscountPcnt")) {
      a.NachlassProz = static_cast<float>(*discount);
    }
    if (total) stated_totals_[line] = {*total, item.line};
    Texts(item, oz, line);
  }

  // The bidder's comments and what it wrote into the gaps of the item's text. A bid read
  // over an earlier one replaces the earlier texts, also with none.
  void Texts(const TGaebElement& item, const std::string& oz, int line) {
    std::vector<std::string> comment;
    for (const TGaebElement& child : item.children) {
      if (child.name == "BidComm") CommentLines(child, oz, comment);
    }
    award::TBidderTexts texts;
    if (const TGaebElement* detail = item.Find("Description/CompleteText/DetailTxt")) {
      BidderTexts(*detail, oz, line, texts);
    }
    const award::TAO& before = bid_.FAList()[static_cast<std::size_t>(line)];
    if (comment.empty() && texts.empty() && before.Kommentar.empty() &&
        before.BidderTexts.empty()) {
      return;
    }
    result_.comments += comment.empty() ? 0 : 1;
    result_.bidder_texts += static_cast<int>(texts.size());
    bid_.SetTexts(line, std::move(comment), std::move(texts));
  }

  void CommentLines(const TGaebElement& comment, const std::string& oz,
                    std::vector<std::string>& lines) {
    const boq::TFittedShortText fitted =
        boq::FitShortTextLines(boq::PlainView(gaeb_xml::RichTextFromGaeb(comment)));
    if (!fitted.report.Exact()) {
      Hint(comment.line, "Position " + oz + ": Bieterkommentar: " + fitted.report.Describe());
    }
    std::vector<std::string> own = fitted.lines;
    while (!own.empty() && IsBlank(own.back())) own.pop_back();
    lines.insert(lines.end(), own.begin(), own.end());
  }

  void BidderTexts(const TGaebElement& parent, const std::string& oz, int line,
                   award::TBidderTexts& texts) {
    for (const TGaebElement& child : parent.children) {
      if (child.name != "TextComplement") {
        BidderTexts(child, oz, line, texts);
        continue;
      }
      if (child.Attribute("Kind").value_or("") == "Owner") continue;
      const int gap = std::atoi(child.Attribute("MarkLbl").value_or("0").c_str());
      const TGaebElement* body = child.Child("ComplBody");
      std::string text =
          body == nullptr ? std::string() : boq::PlainView(gaeb_xml::RichTextFromGaeb(*body));
      while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
      if (IsBlank(text)) continue;
      const std::vector<int>& gaps = bid_.BidderGapsOf(line);
      if (gap <= 0 ||
          (bid_.TextsRead() && std::find(gaps.begin(), gaps.end(), gap) == gaps.end())) {
        Warn(child.line, "Position " + oz + ": Textergänzung \"" +
                             child.Attribute("MarkLbl").value_or("") +
                             "\": der Text der Position hat dort keine Lücke für den Bieter");
        continue;
      }
      texts.push_back({gap, std::move(text)});
    }
  }

  static bool IsBlank(const std::string& text) {
    return text.find_first_not_of(" \t\r\n") == std::string::npos;
  }

  // The schema lets an item leave out its quantity. Where the bid has none either (the LV's
  // quantity is 0), the total the file states is the item's total, not quantity × price.
  void KeepTotalWithoutQuantity(const TGaebElement& item, const std::string& oz, int line,
                                std::optional<double> total) {
    award::t_Angebot_DB_VERSION_201501& a = bid_.FAList()[static_cast<std::size_t>(line)].Angebot;
    const double quantity = lv_[line].LvBeschr.KzFrMenge != 0 ? a.AMenge : bid_.LvBidQuantity(line);
    award::SetStatedTotalWithoutQuantity(a, 0.0);
    if (!total || std::fabs(*total) < kTolerance || std::fabs(quantity) >= kTolerance) return;
    award::SetStatedTotalWithoutQuantity(a, *total);
    Hint(item.line, "Position " + oz + ": ohne Menge; der Gesamtbetrag " + Figure(*total) +
                        " der Datei gilt als Gesamtpreis (Menge im LV 0)");
  }

  const std::string& file_;
  award::TdmAngebot& bid_;
  const boq::TLVPosList& lv_;
  TGaebBidImport& result_;
  std::string mask_;
  int group_levels_ = 0;
  std::map<std::pair<char, std::string>, int> index_;
  std::set<std::pair<char, std::string>> ambiguous_;
  std::set<int> matched_;
  std::map<int, std::pair<double, int>> stated_totals_;
  std::vector<std::string> chain_;
};

void ReadStatedTotals(const TGaebElement& boq_info, TGaebBidImport& result) {
  const TGaebElement* totals = boq_info.Child("Totals");
  if (totals == nullptr) return;
  auto decimal = [&](const char* name) -> std::optional<double> {
    const std::optional<std::string> text = totals->ChildText(name);
    return text ? gaeb_xml::ParseGaebDecimal(*text) : std::nullopt;
  };
  result.totals = {decimal("Total"),        decimal("DiscountPcnt"), decimal("DiscountAmt"),
                   decimal("TotAfterDisc"), decimal("VAT"),          decimal("TotalNet"),
                   decimal("VATAmount"),    decimal("TotalGross")};
  int vat_parts = 0;
  std::optional<double> part_rate;
  for (const TGaebElement& child : totals->children) {
    if (child.name != "VATPart") continue;
    ++vat_parts;
    const std::optional<std::string> rate = child.Attribute("VATPcnt");
    if (rate) part_rate = gaeb_xml::ParseGaebDecimal(*rate);
  }
  // A file that gives its one rate only with its part of the total.
  if (!result.totals.vat_rate && vat_parts == 1) result.totals.vat_rate = part_rate;
  if (vat_parts > 1) {
    result.findings.push_back({TGaebFindingKind::kWarning, totals->line,
                               "Die Datei teilt die Summe auf " + std::to_string(vat_parts) +
                                   " MwSt.-Sätze auf; der Bieter rechnet mit einem Satz (VAT)"});
  }
}

// The bidder's discount and VAT rate as the file states them.
void TakeBidderValues(const TGaebBidImport& result, award::t_Bieter_DB_VERSION_3100& bidder) {
  const TGaebBidTotals& totals = result.totals;
  if (totals.total) bidder.SummeUngeprueft.Betrag = *totals.total;
  if (totals.discount_pcnt) bidder.NachlassProz = static_cast<float>(*totals.discount_pcnt);
  if (totals.discount_amt) bidder.NachlassAbs.Betrag = *totals.discount_amt;
  if (totals.vat_rate) bidder.USt = static_cast<float>(*totals.vat_rate);
}

void CompareStated(TGaebBidImport& result, const award::TdmAngebot& bid) {
  const award::t_Bieter_DB_VERSION_3100& bidder = bid.Bidder();
  const double lump_sum = bidder.SummePsch.Betrag;
  const double net = std::fabs(lump_sum) >= kTolerance ? lump_sum : bidder.SummeNachNL.Betrag;
  const double checked = bidder.Summe.Betrag;
  const double gross = bidder.SummeBrutto.Betrag;
  const std::pair<const char*, std::pair<std::optional<double>, double>> checks[] = {
      {"Total", {result.totals.total, checked}},
      {"TotalNet", {result.totals.net, net}},
      {"TotalGross", {result.totals.gross, gross}},
  };
  for (const auto& [name, values] : checks) {
    if (values.first && std::fabs(*values.first - values.second) > 0.005) {
      result.findings.push_back({TGaebFindingKind::kWarning, 0,
                                 std::string(name) + " laut Datei " + Figure(*values.first) +
                                     ", gerechnet " + Figure(values.second)});
    }
  }
}

// Whether the BoQ name of a file names the LV: equal, or the LV keeps the name cut to
// the 20 characters its record holds.
bool SameLvName(const std::string& file_name, const std::string& lv_name) {
  constexpr std::size_t kLvNameCapacity = 20;
  if (file_name == lv_name) return true;
  return lv_name.size() >= kLvNameCapacity && file_name.rfind(lv_name, 0) == 0;
}

}  // namespace

std::string NormaliseBidOz(std::string_view oz, std::string_view mask) {
  if (oz.find('.') != std::string_view::npos) return std::string(oz);
  std::string normal;
  std::size_t next = 0;
  for (char m : mask) {
    if (next >= oz.size()) break;
    if (m == '.' || m == ' ') {
      normal += '.';
      continue;
    }
    normal += oz[next] == ' ' ? '0' : oz[next];
    ++next;
  }
  for (; next < oz.size(); ++next) normal += oz[next] == ' ' ? '0' : oz[next];
  return normal;
}

TGaebBidImport ImportGaebBid(std::string_view xml, const std::string& file,
                             award::TdmAngebot& bid) {
  gaeb_xml::TGaebReadResult read = gaeb_xml::ReadGaebXml(xml);
  for (const gaeb_xml::TGaebFinding& finding : read.findings) {
    if (finding.kind == TGaebFindingKind::kError || finding.kind == TGaebFindingKind::kStructure) {
      Refuse(file, finding.line, finding.message + " (erwartet eine GAEB-DA-XML-Datei)");
    }
  }
  if (!read.document) Refuse(file, 0, "XML nicht lesbar (erwartet eine GAEB-DA-XML-Datei)");
  const TGaebElement& root = read.document->root;
  if (root.name != "GAEB") {
    Refuse(file, root.line, "Wurzelelement \"" + root.name + "\": erwartet GAEB");
  }
  const TGaebElement* dp = root.Find("Award/DP");
  if (dp == nullptr || read.document->phase != kPhaseBid) {
    Refuse(file, dp == nullptr ? root.line : dp->line,
           "Phase \"" + (dp == nullptr ? std::string() : dp->text) +
               "\": erwartet ein Angebot (Phase 84)");
  }
  const TGaebElement* boq = root.Find("Award/BoQ");
  if (boq == nullptr) Refuse(file, root.line, "Read: No BoQ: erwartet Award/BoQ");
  TGaebBidImport result;
  result.file = file;
  if (const TGaebElement* info = boq->Child("BoQInfo")) {
    result.boq_name = info->ChildText("Name").value_or("");
    ReadStatedTotals(*info, result);
  }
  TBidReader reader(file, bid, result);
  if (const TGaebElement* body = boq->Child("BoQBody")) {
    reader.Body(*body);
  } else {
    result.protocol.push_back("Read: No BoQBody (Zeile " + std::to_string(boq->line) + ")");
  }
  const std::string lv_name = bid.Lv().FLv().Name.Get();
  const bool complete =
      result.matched_items == result.items && result.matched_sections == result.sections;
  const bool foreign = result.boq_name.empty() ? result.matched_items * 2 < result.items
                                               : !SameLvName(result.boq_name, lv_name) && !complete;
  if (foreign && result.items > 0) {
    result.other_lv = "Die Datei gehört zu einem anderen LV" +
                      (result.boq_name.empty() ? std::string() : " (\"" + result.boq_name + "\")") +
                      ", nicht zu LV \"" + lv_name + "\": " + std::to_string(result.matched_items) +
                      " von " + std::to_string(result.items) + " Positionen passen";
    return result;
  }
  TakeBidderValues(result, bid.Bidder());
  bid.Recalculate();
  reader.CompareTotals();
  CompareStated(result, bid);
  return result;
}

TGaebBidImport ImportGaebBidFile(const std::string& path, award::TdmAngebot& bid) {
  std::ifstream in(path, std::ios::binary);
  if (!in) Refuse(path, 0, "Datei kann nicht geöffnet werden");
  std::ostringstream content;
  content << in.rdbuf();
  if (in.bad()) Refuse(path, 0, "Datei kann nicht gelesen werden");
  return ImportGaebBid(content.str(), path, bid);
}

std::string BidImportProtocolText(const TGaebBidImport& import) {
  std::ostringstream out;
  out << "GAEB-Angebotsimport: " << import.file << '\n'
      << "Positionen: " << import.items << ", zugeordnet: " << import.matched_items
      << ", mit Preis: " << import.prices << "; Bereiche: " << import.sections
      << ", zugeordnet: " << import.matched_sections << "; Bieterkommentare: " << import.comments
      << ", Bietertextergänzungen: " << import.bidder_texts << '\n';
  for (const gaeb_xml::TGaebFinding& finding : import.findings) {
    out << import.file << ':' << finding.line << ": " << gaeb_xml::FindingKindText(finding.kind)
        << ": " << finding.message << '\n';
  }
  for (const std::string& line : import.protocol) out << line << '\n';
  return out.str();
}

}  // namespace korvan::exchange
