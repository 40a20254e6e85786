// The texts of exported entries: short and long texts as GAEB text markup.
#include <string>

#include "boq/text/rich_text.h"
#include "boq/text/rtf_reader.h"
#include "exchange/gaeb_export/gaeb_export_context.h"
#include "exchange/gaeb_xml/gaeb_text_converter.h"

namespace korvan::exchange::gaeb_export {
namespace {

using boq::TRichRun;
using boq::TRichText;

bool IsBlank(const std::string& text) {
  return text.find_first_not_of(" \t\r\n") == std::string::npos;
}

// Every element that must exist is written even for an empty text: as one blank.
TRichText OrBlank(TRichText text) {
  if (IsBlank(boq::PlainView(text))) return boq::RichTextFromPlain(" ");
  return text;
}

void FillEmptyComplements(std::vector<TRichRun>& runs) {
  for (TRichRun& run : runs) {
    if (run.complement != 0 && run.text.empty()) run.text = kEmptyComplementFiller;
  }
}

TRichText LongTextOf(const TExportContext& context, const boq::TLvPos& entry) {
  if (entry.LongText.empty()) return {};
  const bool rich = entry.LongText.rfind("{\\rtf", 0) == 0;
  TRichText text =
      rich ? boq::ReadRtf(entry.LongText).text : boq::RichTextFromPlain(entry.LongText);
  if (context.options.fill_empty_complements) {
    for (boq::TRichBlock& block : text.blocks) {
      FillEmptyComplements(block.runs);
      for (boq::TRichCell& cell : block.cells) FillEmptyComplements(cell.runs);
    }
  }
  return text;
}

std::string ShortTextOf(const TExportContext& context, const boq::TLvPos& entry) {
  if (context.options.multiline_short_text) return entry.ShortText;
  return entry.ShortText.substr(0, entry.ShortText.find('\n'));
}

TGaebElement OutlineTextOf(const TExportContext& context, const boq::TLvPos& entry) {
  TGaebElement outline("OutlineText");
  outline.Add("OutlTxt").Add(gaeb_xml::RichTextToGaeb(
      OrBlank(boq::RichTextFromPlain(ShortTextOf(context, entry))), "TextOutlTxt"));
  return outline;
}

// Complements belong to descriptions only; elsewhere their runs stay as plain text.
TRichText WithoutComplements(TRichText text) {
  for (boq::TRichBlock& block : text.blocks) {
    for (TRichRun& run : block.runs) run.complement = 0;
    for (boq::TRichCell& cell : block.cells) {
      for (TRichRun& run : cell.runs) run.complement = 0;
    }
  }
  return text;
}

void CollectComplements(TGaebElement& element, std::vector<TGaebElement>& complements) {
  for (TGaebElement& child : element.children) {
    if (child.name == "TextComplement") {
      complements.push_back(std::move(child));
    } else {
      CollectComplements(child, complements);
    }
  }
}

// A bid returns of the texts only what the bidder fills in: the text complements.
std::optional<TGaebElement> BidDescriptionOf(const TExportContext& context,
                                             const boq::TLvPos& entry) {
  TGaebElement text = gaeb_xml::RichTextToGaeb(LongTextOf(context, entry));
  std::vector<TGaebElement> complements;
  CollectComplements(text, complements);
  if (complements.empty()) return std::nullopt;
  TGaebElement description("Description");
  TGaebElement& detail = description.Add("CompleteText").Add("DetailTxt");
  for (TGaebElement& complement : complements) detail.Add(std::move(complement));
  return description;
}

}  // namespace

std::optional<TGaebElement> DescriptionOf(const TExportContext& context, const boq::TLvPos& entry) {
  if (context.rules.bid) return BidDescriptionOf(context, entry);
  TGaebElement description("Description");
  if (!context.options.long_text) {
    description.Add(OutlineTextOf(context, entry));
    return description;
  }
  TGaebElement& complete = description.Add("CompleteText");
  complete.Add("DetailTxt").Add(gaeb_xml::RichTextToGaeb(OrBlank(LongTextOf(context, entry))));
  complete.Add(OutlineTextOf(context, entry));
  return description;
}

TGaebElement SectionLabelOf(const TExportContext& context, const boq::TLvPos& entry) {
  return gaeb_xml::RichTextToGaeb(OrBlank(boq::RichTextFromPlain(ShortTextOf(context, entry))),
                                  "LblTx");
}

TGaebElement AddTextOf(const TExportContext& context, const boq::TLvPos& entry) {
  TGaebElement add_text("AddText");
  add_text.Add(gaeb_xml::RichTextToGaeb(
      OrBlank(boq::RichTextFromPlain(ShortTextOf(context, entry))), "OutlineAddText"));
  const TRichText detail = context.options.long_text ? LongTextOf(context, entry) : TRichText{};
  add_text.Add(gaeb_xml::RichTextToGaeb(OrBlank(WithoutComplements(detail)), "DetailAddText"));
  return add_text;
}

}  // namespace korvan::exchange::gaeb_export
