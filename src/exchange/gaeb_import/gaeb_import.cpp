#include "exchange/gaeb_import/gaeb_import.h"

#include <fstream>
#include <sstream>

#include "boq/oz/boq_oz_builder.h"
#include "exchange/gaeb_import/gaeb_import_context.h"
#include "exchange/gaeb_xml/gaeb_reader.h"

namespace korvan::exchange {
namespace {

using gaeb_import::Refuse;
using gaeb_import::TImportContext;
using gaeb_xml::TGaebElement;
using gaeb_xml::TGaebFinding;
using gaeb_xml::TGaebFindingKind;

const TGaebElement& Required(const std::string& file, const TGaebElement& parent, const char* name,
                             const char* protocol, const char* expected) {
  const TGaebElement* child = parent.Child(name);
  if (child == nullptr) Refuse(file, parent.line, std::string(protocol) + ": erwartet " + expected);
  return *child;
}

void CheckPhase(const gaeb_xml::TGaebDocument& document, const std::string& file) {
  const TGaebElement* dp = document.root.Find("Award/DP");
  if (dp == nullptr) {
    Refuse(file, document.root.line, "Award/DP fehlt: erwartet die Austauschphase 81 bis 86");
  }
  if (document.phase < kPhaseLv || document.phase > kPhaseAward) {
    Refuse(file, dp->line,
           "Phase \"" + dp->text + "\": eingelesen werden LVs der Phasen 81 bis 86");
  }
}

// The document's additional texts as leading texts (T) of the LV.
void ReadAddTexts(TImportContext& context, const TGaebElement& root) {
  boq::TLVPosList& list = context.Result().lv;
  int at = 0;
  for (const TGaebElement& add_text : root.children) {
    if (add_text.name != "AddText") continue;
    context.Use(add_text);
    boq::TLvPos entry = boq::NewLvPos('T');
    entry.Struktur.IdBgBeschr = context.NextTemporaryId();
    if (const TGaebElement* outline = context.Take(add_text, "OutlineAddText")) {
      entry.ShortText =
          gaeb_import::FitShortText(context, outline->line, gaeb_import::PlainTextOf(*outline));
    }
    if (const TGaebElement* detail = context.Take(add_text, "DetailAddText")) {
      entry.LongText = gaeb_import::RtfOf(*detail);
      entry.LongTextLoaded = true;
      entry.LongTextChanged = !entry.LongText.empty();
    }
    list.Insert(at++, std::move(entry));
    ++context.Result().texts;
  }
}

// Text entries carry the number of the entry they introduce.
void NumberTexts(boq::TLVPosList& list) {
  boq::TBoqOzBuilder builder(list);
  for (int i = 0; i < list.Count(); ++i) {
    if (!list[i].IsGroup() && !list[i].IsQuantityItem()) builder.CheckOZPerZeilenart(i);
  }
}

std::string DeclaredEncoding(std::string_view xml) {
  if (xml.substr(0, 5) != "<?xml") return {};
  const std::string_view declaration = xml.substr(0, xml.find("?>"));
  const size_t at = declaration.find("encoding");
  if (at == std::string_view::npos) return {};
  const size_t open = declaration.find_first_of("\"'", at);
  if (open == std::string_view::npos) return {};
  const size_t close = declaration.find(declaration[open], open + 1);
  if (close == std::string_view::npos) return {};
  return std::string(declaration.substr(open + 1, close - open - 1));
}

bool IsUtf8Name(std::string name) {
  for (char& c : name) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return name == "UTF-8" || name == "UTF8";
}

}  // namespace

TGaebImport ImportGaebDocument(const gaeb_xml::TGaebDocument& document, const std::string& file,
                               const TGaebImportOptions& options,
                               const TGaebImportProgress& progress) {
  const TGaebElement& root = document.root;
  if (root.name != "GAEB")
    Refuse(file, root.line, "Wurzelelement \"" + root.name + "\": erwartet GAEB");
  CheckPhase(document, file);
  TGaebImport result;
  result.format = document.format;
  result.phase = document.phase;
  result.data.FImportPath = file;
  result.data.FDP = std::to_string(document.phase);
  TImportContext context(file, options, result);
  context.Use(root);
  if (const TGaebElement* info = root.Child("GAEBInfo")) context.UseWhole(*info);
  const TGaebElement& award = Required(file, root, "Award", "Read: No Vergabe", "Award mit BoQ");
  context.Use(award);
  context.Take(award, "DP");
  const TGaebElement& boq =
      Required(file, award, "BoQ", "Read: No BoQ", "BoQ mit BoQInfo und BoQBody");
  context.Use(boq);
  gaeb_import::ReadInformation(context, root, award, boq);
  if (const TGaebElement* body = boq.Child("BoQBody")) {
    gaeb_import::ReadBoQBody(context, *body, progress);
  } else {
    context.ReadNo(boq.line, "BoQBody", "BoQ ohne BoQBody: das LV bleibt leer");
  }
  ReadAddTexts(context, root);
  NumberTexts(result.lv);
  context.ReportUnused(root);
  return result;
}

TGaebImport ImportGaebXml(std::string_view xml, const std::string& file,
                          const TGaebImportOptions& options, const TGaebImportProgress& progress) {
  gaeb_xml::TGaebReadResult read = gaeb_xml::ReadGaebXml(xml);
  for (const TGaebFinding& finding : read.findings) {
    if (finding.kind == TGaebFindingKind::kError || finding.kind == TGaebFindingKind::kStructure) {
      Refuse(file, finding.line, finding.message + " (erwartet eine GAEB-DA-XML-Datei)");
    }
  }
  if (!read.document) Refuse(file, 0, "XML nicht lesbar (erwartet eine GAEB-DA-XML-Datei)");
  TGaebImport result = ImportGaebDocument(*read.document, file, options, progress);
  gaeb_xml::TGaebFindings findings = std::move(read.findings);
  const std::string encoding = DeclaredEncoding(xml);
  if (!encoding.empty() && !IsUtf8Name(encoding)) {
    findings.push_back({TGaebFindingKind::kHint, 1,
                        "Zeichensatz \"" + encoding + "\" statt UTF-8: gelesen und umgewandelt"});
  }
  findings.insert(findings.end(), result.findings.begin(), result.findings.end());
  result.findings = std::move(findings);
  return result;
}

TGaebImport ImportGaebFile(const std::string& path, const TGaebImportOptions& options,
                           const TGaebImportProgress& progress) {
  std::ifstream in(path, std::ios::binary);
  if (!in) Refuse(path, 0, "Datei kann nicht geöffnet werden");
  std::ostringstream content;
  content << in.rdbuf();
  if (in.bad()) Refuse(path, 0, "Datei kann nicht gelesen werden");
  return ImportGaebXml(content.str(), path, options, progress);
}

std::string ImportProtocolText(const TGaebImport& import) {
  std::ostringstream out;
  out << "GAEB-Import: " << import.data.FImportPath << '\n'
      << "Format: " << FormatInfo(import.format).name << ", Phase " << import.phase << '\n'
      << "LV: " << import.lv.FLv().Name.Get() << ", Maske " << import.lv.FOzMask().FMask() << '\n'
      << "Gruppen: " << import.groups << ", Positionen: " << import.items
      << ", Texte: " << import.texts << '\n';
  for (const TGaebFinding& finding : import.findings) {
    out << import.data.FImportPath << ':' << finding.line << ": "
        << gaeb_xml::FindingKindText(finding.kind) << ": " << finding.message << '\n';
  }
  for (const std::string& line : import.protocol) out << line << '\n';
  return out.str();
}

}  // namespace korvan::exchange
