// The texts of imported entries: GAEB text markup into the short text (plain) and the
// long text (rich text, stored as RTF).
#include <string>
#include <vector>

#include "boq/text/rich_text.h"
#include "boq/text/rtf_writer.h"
#include "boq/text/short_text_fit.h"
#include "boq/text/tb_texte.h"
#include "exchange/gaeb_import/gaeb_import_context.h"
#include "exchange/gaeb_xml/gaeb_text_converter.h"

namespace korvan::exchange::gaeb_import {
namespace {

bool IsBlank(const std::string& text) {
  return text.find_first_not_of(" \t\r\n") == std::string::npos;
}

// What the short text of an outline holds: TextOutlTxt, else the plain OutlTxt.
const TGaebElement* OutlineMarkup(const TGaebElement& outline) {
  const TGaebElement* outl_txt = outline.Child("OutlTxt");
  if (outl_txt == nullptr) return nullptr;
  const TGaebElement* markup = outl_txt->Child("TextOutlTxt");
  return markup != nullptr ? markup : outl_txt;
}

}  // namespace

std::string FitShortText(TImportContext& context, int line, const std::string& text) {
  const boq::TFittedShortText fitted = boq::FitShortTextLines(text);
  if (!fitted.report.Exact()) {
    context.Warn(line, "Kurztext \"" + text + "\": " + fitted.report.Describe());
  }
  if (fitted.wrapped) {
    context.Warn(line, "Kurztext mit Zeilen über " + std::to_string(boq::TTbTexte::kLineCapacity) +
                           " Zeichen: auf mehrere Zeilen umbrochen");
  }
  std::string joined;
  for (const std::string& piece : fitted.lines) joined += (joined.empty() ? "" : "\n") + piece;
  return joined;
}

std::string PlainTextOf(const TGaebElement& markup) {
  if (markup.children.empty()) return IsBlank(markup.text) ? std::string() : markup.text;
  const std::string plain = boq::PlainView(gaeb_xml::RichTextFromGaeb(markup));
  return IsBlank(plain) ? std::string() : plain;
}

std::string RtfOf(const TGaebElement& markup) {
  const boq::TRichText text = markup.children.empty() ? boq::RichTextFromPlain(markup.text)
                                                      : gaeb_xml::RichTextFromGaeb(markup);
  if (IsBlank(boq::PlainView(text))) return {};
  return boq::WriteRtf(text);
}

void ReadDescription(TImportContext& context, const TGaebElement& description, boq::TLvPos& entry) {
  context.Use(description);
  const TGaebElement* complete = description.Child("CompleteText");
  const TGaebElement* outline = description.Child("OutlineText");
  if (complete != nullptr) {
    context.Use(*complete);
    if (const TGaebElement* detail = context.Take(*complete, "DetailTxt")) {
      entry.LongText = RtfOf(*detail);
      entry.LongTextLoaded = true;
      entry.LongTextChanged = !entry.LongText.empty();
    }
    if (outline == nullptr) outline = complete->Child("OutlineText");
    // Standard-text references (STLB-Bau and others) are not kept by the LV.
  }
  if (outline != nullptr) {
    context.UseWhole(*outline);
    if (const TGaebElement* markup = OutlineMarkup(*outline)) {
      entry.ShortText = PlainTextOf(*markup);
    }
  }
  if (outline == nullptr && !entry.LongText.empty()) {
    // Without an outline the first line of the long text names the entry.
    const std::string plain =
        boq::PlainView(gaeb_xml::RichTextFromGaeb(*complete->Child("DetailTxt")));
    entry.ShortText = plain.substr(0, plain.find('\n'));
  }
  if (outline == nullptr && complete == nullptr) {
    context.ReadNo(description.line, "Beschreibung",
                   "Description ohne CompleteText und OutlineText: der Eintrag bleibt ohne Text");
  }
}

}  // namespace korvan::exchange::gaeb_import
