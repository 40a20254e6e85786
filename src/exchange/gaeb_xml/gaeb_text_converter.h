#pragma once

#include <string>

#include "boq/text/rich_text.h"
#include "exchange/gaeb_xml/gaeb_element.h"

namespace korvan::exchange::gaeb_xml {

// Our rich text as GAEB text markup inside an element named `container` ("Text" of a
// long text, "TextOutlTxt" of a short text, "LblTx" of a section label): each paragraph
// a `p`, each run a `span` whose style attribute names bold, italic and underline, a line
// break inside a paragraph a `br`, consecutive table rows one `table` with `tr` and `td`,
// and the runs of a text complement one `TextComplement` (MarkLbl = its number) whose
// `ComplBody` holds them; an unfilled complement has an empty body and Empty="Yes".
TGaebElement RichTextToGaeb(const boq::TRichText& text, std::string container = "Text");

// GAEB text markup back into rich text. Takes any element that holds text markup (Text,
// TextOutlTxt, LblTx, DetailTxt with several Text and TextComplement children, ComplBody):
// p and div are paragraphs, span runs, br line breaks, table rows rows, li items
// paragraphs; pictures and other content without text are left out. A line break takes
// the format of the text before it in its paragraph.
boq::TRichText RichTextFromGaeb(const TGaebElement& container);

// The style attribute of a span for a format; empty for plain text.
std::string SpanStyle(const boq::TRichStyle& style);
// The format a span's style attribute names ("font-weight:bold; font-style:italic;
// text-decoration:underline"), ignoring everything else.
boq::TRichStyle StyleOfSpan(const std::string& style);

}  // namespace korvan::exchange::gaeb_xml
