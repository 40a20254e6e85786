#include "app/commands/text/text_command.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <ostream>

#include <CLI/CLI.hpp>

#include "app/cli/command_error.h"
#include "boq/text/rich_text.h"
#include "boq/text/rtf_reader.h"
#include "boq/text/rtf_writer.h"
#include "boq/text/text_conversions.h"
#include "data/common/cp1252.h"
#include "data/common/message_format.h"

namespace korvan::app {
namespace {

using data::Printf;

std::string ReadWholeFile(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) throw CommandError(file + ": Datei kann nicht gelesen werden");
  std::string content((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  if (in.bad()) throw CommandError(file + ": Lesefehler");
  return content;
}

int LineAt(const std::string& text, size_t offset) {
  return 1 + static_cast<int>(std::count(text.begin(), text.begin() + offset, '\n'));
}

// Text for people must come in as UTF-8; a wrong byte is named, never guessed at.
void RequireUtf8(const std::string& file, const std::string& text) {
  size_t i = 0;
  while (i < text.size()) {
    size_t length = 0;
    if (!data::DecodeUtf8(std::string_view(text).substr(i), &length)) {
      throw CommandError(file +
                         Printf(": Byte %zu (Zeile %d): kein gültiges UTF-8 (Byte 0x%02X); ", i,
                                LineAt(text, i), static_cast<unsigned char>(text[i])) +
                         "die Datei muss in UTF-8 gespeichert sein");
    }
    i += length;
  }
}

}  // namespace

void TextCommand::Define(CLI::App& app) {
  app.require_subcommand(1);
  to_plain_ = app.add_subcommand("to-plain", "gibt den reinen Text einer RTF-Datei aus");
  to_plain_->add_option("datei", file_, "RTF-Datei")->required();
  to_rtf_ = app.add_subcommand("to-rtf", "gibt eine Textdatei (UTF-8) als RTF aus");
  to_rtf_->add_option("datei", file_, "Textdatei in UTF-8")->required();
  to_rtf_->add_flag("--luecken", gaps_,
                    "Lückenzeichen (.., XX, xx, variabel) werden leere Textergänzungen");
}

int TextCommand::Run(Streams& streams) {
  if (to_plain_->parsed()) return RunTextToPlain(file_, streams);
  if (to_rtf_->parsed()) return RunTextToRtf(file_, gaps_, streams);
  throw UsageError("ein Unterbefehl fehlt (to-plain, to-rtf)");
}

int RunTextToPlain(const std::string& file, Streams& streams) {
  const boq::TRtfReadResult read = boq::ReadRtf(ReadWholeFile(file));
  if (!read.is_rtf)
    throw CommandError(file + ": " + boq::DescribeRtfProblem(read.problems.front()));
  for (const boq::TRtfProblem& problem : read.problems) {
    streams.err << file << ": " << boq::DescribeRtfProblem(problem) << '\n';
  }
  if (read.problem_count > read.problems.size()) {
    streams.err << file << ": " << read.problem_count - read.problems.size()
                << " weitere Auffälligkeiten nicht gezeigt\n";
  }
  streams.out << boq::PlainView(read.text);
  return kExitOk;
}

int RunTextToRtf(const std::string& file, bool gaps, Streams& streams) {
  const std::string text = ReadWholeFile(file);
  RequireUtf8(file, text);
  streams.out << boq::WriteRtf(gaps ? boq::RichTextFromPlainWithGaps(text)
                                    : boq::RichTextFromPlain(text));
  return kExitOk;
}

}  // namespace korvan::app
