#pragma once

#include <string>

#include "app/cli/command.h"

namespace CLI {
class App;
}

namespace korvan::app {

// `korvan text to-plain F.rtf` prints the plain view of a rich text (paragraphs as
// lines, table cells separated by tabs), `korvan text to-rtf F.txt` prints a UTF-8 text
// as canonical RTF. Both write to standard output, so scripts can chain them.
class TextCommand : public Command {
 public:
  std::string Name() const override { return "text"; }
  std::string Summary() const override {
    return "wandelt Langtexte zwischen RTF und reinem Text (UTF-8) um";
  }
  void Define(CLI::App& app) override;
  int Run(Streams& streams) override;

 private:
  CLI::App* to_plain_ = nullptr;
  CLI::App* to_rtf_ = nullptr;
  std::string file_;
  bool gaps_ = false;
};

// The work of the two operations; they throw CommandError naming the file and position
// when the input cannot be converted.
int RunTextToPlain(const std::string& file, Streams& streams);
// With `gaps` the gap markers of the text ("..", "XX", "xx", "variabel") become empty
// text complements.
int RunTextToRtf(const std::string& file, bool gaps, Streams& streams);

}  // namespace korvan::app
