// `korvan formula eval` and `korvan formula sheet`: formula lines and sheets evaluated.
#include <map>
#include <optional>
#include <ostream>

#include "app/cli/command_error.h"
#include "app/cli/german_number.h"
#include "app/cli/json_text.h"
#include "app/commands/formula/formula_catalogue_access.h"
#include "app/commands/formula/formula_command.h"
#include "app/commands/formula/sheet_file.h"
#include "formula/language/formel_errors.h"
#include "formula/language/formel_number.h"
#include "formula/language/formel_obj.h"
#include "formula/language/formel_tokenizer.h"
#include "formula/reb/reb_sheet.h"
#include "storage/file/atomic_file.h"

namespace korvan::app {
namespace {

using formula::FormatFormelNumber;

std::map<std::string, double> ParseVariables(const std::vector<std::string>& assignments) {
  std::map<std::string, double> variables;
  for (const std::string& assignment : assignments) {
    const size_t equals = assignment.find('=');
    const std::optional<double> value = equals == std::string::npos
                                            ? std::nullopt
                                            : ParseGermanNumber(assignment.substr(equals + 1));
    if (equals == 0 || !value) {
      throw UsageError("--var \"" + assignment + "\": erwartet NAME=WERT, z. B. Breite=2,5");
    }
    variables[formula::UpperFormel(assignment.substr(0, equals))] = *value;
  }
  return variables;
}

formula::TRebVariableLookup LookupOf(const std::map<std::string, double>& variables) {
  return [&variables](const std::string& name) -> std::optional<double> {
    const auto found = variables.find(name);
    if (found == variables.end()) return std::nullopt;
    return found->second;
  };
}

std::unique_ptr<formula::TREBFormelInterpreter> Interpreter(const FormulaOptions& options,
                                                            formula::TRebFormelSource& source) {
  formula::TRebSettings settings;
  settings.altgrad = !options.gon;
  settings.zeilen_runden = options.round_lines;
  settings.version =
      options.reb == "23.004" ? formula::TRebVersion::k23004 : formula::TRebVersion::k23003;
  return formula::CreateRebFormelInterpreter(source, settings);
}

std::string ErrorText(int error) {
  return "Fehler " + std::to_string(error) + ": " + formula::FehlerText(error);
}

std::string ResultJson(double value, int error) {
  if (error != 0) {
    return "\"error\": " + std::to_string(error) +
           ", \"text\": " + JsonString(formula::FehlerText(error));
  }
  return "\"value\": " + JsonNumber(value == 0 ? 0 : value);
}

// One formula by the language alone, or as a free measurement line of a REB variant.
formula::TRebLineOutcome EvaluateOne(const std::string& text, const FormulaOptions& options,
                                     const std::map<std::string, double>& variables) {
  if (options.reb.empty()) {
    formula::TFormelObj formula =
        options.gon ? formula::TFormelObj::CreateNeugrad() : formula::TFormelObj();
    formula.SetFormel(text);
    for (const std::string& name : formula.Unknowns()) {
      if (const auto found = variables.find(name); found != variables.end()) {
        formula.SetVariable(name, found->second);
      }
    }
    formula::TRebLineOutcome outcome;
    outcome.result = formula.GetResult(outcome.error);
    return outcome;
  }
  formula::TBuiltInRebFormelSource source;
  const auto interpreter = Interpreter(options, source);
  formula::TRebLine line;
  line.Id = 1;
  line.FormelNr = options.reb == "23.004" ? "" : "0";
  line.Formel = text;
  std::vector<formula::TRebLine> lines = {line};
  return formula::EvaluateRebLines(*interpreter, lines, LookupOf(variables)).lines.front();
}

}  // namespace

int RunFormulaEval(const std::vector<std::string>& formulas, const FormulaOptions& options,
                   Streams& streams) {
  const std::map<std::string, double> variables = ParseVariables(options.variables);
  int exit_code = kExitOk;
  std::string json;
  for (const std::string& text : formulas) {
    const formula::TRebLineOutcome outcome = EvaluateOne(text, options, variables);
    if (outcome.error != 0) exit_code = kExitFailure;
    if (options.json) {
      json += (json.empty() ? "" : ", ") + std::string("{\"formula\": ") + JsonString(text) + ", " +
              ResultJson(outcome.result, outcome.error) + "}";
    } else {
      streams.out << (outcome.error != 0 ? ErrorText(outcome.error)
                                         : FormatFormelNumber(outcome.result))
                  << '\n';
    }
  }
  if (options.json) streams.out << "{\"results\": [" << json << "]}\n";
  return exit_code;
}

namespace {

// The protocol is a help, not the result: one that cannot be written is a warning.
void WriteProtocol(const std::string& file, const std::string& protocol, Streams& streams) {
  const storage::FileWriteResult written =
      storage::WriteFileAtomically(file, protocol, storage::Durability::kAtomic);
  if (!written.ok()) {
    streams.err << "Warnung: Aufmaßprotokoll " << file
                << " nicht geschrieben: " << written.ErrorText() << '\n';
  }
}

}  // namespace

int RunFormulaSheet(const std::string& file, const std::string& data_dir, bool named,
                    const FormulaOptions& options, Streams& streams) {
  const std::map<std::string, double> variables = ParseVariables(options.variables);
  const std::vector<TSheetLine> sheet_lines = ReadSheetFile(file);
  FormulaCatalogueAccess catalogue(data_dir, named, streams.err);
  const auto interpreter = Interpreter(options, catalogue.Source());
  std::vector<formula::TRebLine> lines;
  for (const TSheetLine& sheet_line : sheet_lines) lines.push_back(sheet_line.line);
  std::string protocol;
  const formula::TRebSheetOutcome outcome =
      formula::EvaluateRebLines(*interpreter, lines, LookupOf(variables),
                                [&](const std::string& line) { protocol += line + "\n"; });
  if (!options.protocol_file.empty()) WriteProtocol(options.protocol_file, protocol, streams);
  int exit_code = kExitOk;
  std::string json;
  for (size_t i = 0; i < lines.size(); ++i) {
    const formula::TRebLineOutcome& line = outcome.lines[i];
    const std::string nr = lines[i].FormelNr.empty() ? "-" : lines[i].FormelNr;
    if (line.error != 0) {
      exit_code = kExitFailure;
      streams.err << file << ", Zeile " << sheet_lines[i].text_line << ": " << ErrorText(line.error)
                  << '\n';
    }
    if (options.json) {
      json +=
          (json.empty() ? "" : ", ") + std::string("{\"line\": ") + std::to_string(i + 1) +
          ", \"file_line\": " + std::to_string(sheet_lines[i].text_line) +
          ", \"nr\": " + JsonString(nr) + ", \"mark\": " + JsonString(std::string(1, lines[i].KZ)) +
          ", " + ResultJson(line.result, line.error) +
          ", \"contribution\": " + JsonNumber(line.contribution == 0 ? 0 : line.contribution) + "}";
    } else if (lines[i].IsComment()) {
      streams.out << "Zeile " << i + 1 << " (Kommentar)\n";
    } else {
      streams.out << "Zeile " << i + 1 << " (Formel " << nr << "): "
                  << (line.error != 0 ? ErrorText(line.error) : FormatFormelNumber(line.result))
                  << '\n';
    }
  }
  if (options.json) {
    streams.out << "{\"lines\": [" << json
                << "], \"sum\": " << JsonNumber(outcome.sum == 0 ? 0 : outcome.sum) << "}\n";
  } else {
    streams.out << "Summe: " << FormatFormelNumber(outcome.sum) << '\n';
  }
  return exit_code;
}

}  // namespace korvan::app
