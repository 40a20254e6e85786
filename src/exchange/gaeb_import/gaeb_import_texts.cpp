// The texts of imported entries: GAEB text markup into the short text (plain) and the
// long text (rich text, stored as RTF).
#include <algorithm>
#include <string>
#include <vector>

#include "boq/text/rich_text.h"
#include "boq/text/rtf_writer.h"
#include "boq/text/tb_texte.h"
#include "data/common/cp1252.h"
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

// A line cut into pieces of at most `width` characters, at the last blank where there is one.
std::vector<std::string> Wrapped(const std::string& line, size_t width) {
  std::vector<std::string> pieces;
  std::string rest = line;
  while (rest.size() > width) {
    size_t cut = rest.rfind(' ', width);
    if (cut == std::string::npos || cut == 0) cut = width;
    pieces.push_back(rest.substr(0, cut));
    rest = rest.substr(rest[cut] == ' ' ? cut + 1 : cut);
  }
  pieces.push_back(rest);
  return pieces;
}

}  // namespace

std::string FitShortText(TImportContext& context, int line, const std::string& text) {
  data::Cp1252Report report;
  const std::string stored = data::Utf8ToCp1252(text, &report);
  if (!report.Exact()) {
    context.Warn(line, "Kurztext \"" + text + "\": " + report.Describe());
  }
  const size_t width = static_cast<size_t>(boq::TTbTexte::kLineCapacity);
  std::string fitted;
  bool wrapped = false;
  size_t start = 0;
  while (start <= stored.size()) {
    const size_t end = std::min(stored.find('\n', start), stored.size());
    const std::vector<std::string> pieces = Wrapped(stored.substr(start, end - start), width);
    wrapped = wrapped || pieces.size() > 1;
    for (const std::string& piece : pieces) fitted += (fitted.empty() ? "" : "\n") + piece;
    start = end + 1;
  }
  if (wrapped) {
    context.Warn(line, "Kurztext mit Zeilen über " + std::to_string(width) +
                           " Zeichen: auf mehrere Zeilen umbrochen");
  }
  return data::Cp1252ToUtf8(fitted);
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
