#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "formula/catalogue/reb_formel_row.h"
#include "formula/reb/reb_line.h"

namespace korvan::formula {

enum class TRebVersion { k23003, k23004 };

// The project settings that change how lines are evaluated.
struct TRebSettings {
  bool altgrad = true;          // FREBAltgrad: angles in degrees, else in gon
  bool auto_ist_gleich = true;  // FREBAutoIstGleich: complete a line with "=" by itself
  bool zeilen_runden = false;   // FREBZeilenRunden: a line's result to three decimals
  TRebVersion version = TRebVersion::k23003;  // FREBVersion: which variant reads the lines
};

// What the interpreter makes of one line: an expression for the formula evaluator, or a
// result computed directly, or nothing (a continuation line, a number that builds none).
struct TRebExpression {
  std::string expression;
  double factor = 0;  // the line's factor; 0 when none applies
  bool negative = false;
  std::optional<double> result;  // computed without an expression
  int error = 0;                 // of a direct computation
  bool keep_result = false;      // the line's stored result stands as it is
  std::optional<char> mark;      // a new mark for the line
};

// Builds the expression of a measurement line from the lines of its owner (`Execute`),
// taking preceding lines into account: continuation lines, runs of points, stations and
// values, and the numbered formulas of the catalogue.
class TREBFormelInterpreter {
 public:
  TREBFormelInterpreter(TRebFormelSource& catalogue, TRebSettings settings)
      : catalogue_(catalogue), settings_(settings) {}
  virtual ~TREBFormelInterpreter() = default;

  TRebExpression Execute(const std::vector<TRebLine>& lines, size_t index);
  virtual TRebVersion Version() const = 0;
  const TRebSettings& Settings() const { return settings_; }

 protected:
  virtual TRebExpression Build(const std::vector<TRebLine>& lines, size_t index) = 0;

  // The catalogue formula of `nr` (7xx and 8xx read as 1xx and 2xx) with the line's
  // values put in by `value` (n >= 1); nothing when the catalogue has no formula.
  std::optional<std::string> CatalogueExpression(const TRebLine& line, const std::string& nr,
                                                 const std::function<std::string(int)>& value);

  TRebFormelSource& catalogue_;
  TRebSettings settings_;
};

// The formula number the catalogue is asked for: a three-digit number beginning with "7"
// or "8" uses the formula of "1" or "2" in its place.
std::string CatalogueNumberOf(std::string nr);

// Puts the values of a line into a catalogue formula: <n> (n >= 1) by `value(n)`, <0>
// and <-n> by the line's sign (blank is "+").
std::string PutInValues(const std::string& formel, const TRebLine& line,
                        const std::function<std::string(int)>& value);

class TREB003FormelInterpreter : public TREBFormelInterpreter {
 public:
  using TREBFormelInterpreter::TREBFormelInterpreter;
  TRebVersion Version() const override { return TRebVersion::k23003; }

 protected:
  TRebExpression Build(const std::vector<TRebLine>& lines, size_t index) override;
};

class TREB004FormelInterpreter : public TREBFormelInterpreter {
 public:
  using TREBFormelInterpreter::TREBFormelInterpreter;
  TRebVersion Version() const override { return TRebVersion::k23004; }

 protected:
  TRebExpression Build(const std::vector<TRebLine>& lines, size_t index) override;
};

struct CoREB003FormelInterpreter {
  static std::unique_ptr<TREBFormelInterpreter> Create(TRebFormelSource& catalogue,
                                                       TRebSettings settings = {});
};
struct CoREB004FormelInterpreter {
  static std::unique_ptr<TREBFormelInterpreter> Create(TRebFormelSource& catalogue,
                                                       TRebSettings settings = {});
};

// The variant the settings name (FREBVersion).
std::unique_ptr<TREBFormelInterpreter> CreateRebFormelInterpreter(TRebFormelSource& catalogue,
                                                                  TRebSettings settings);

}  // namespace korvan::formula
