#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "formula/language/formel_tokenizer.h"

namespace korvan::formula {

// The evaluator of one formula line ("3,50*2,10=", "(12,4+3,1)*0,24="): set the formula,
// give its variables their values, ask for the result. Every error leaves the result 0
// with its code (text by GetFehler) and clears the formula, which must then be set again.
class TFormelObj {
 public:
  // Angles in degrees.
  TFormelObj() = default;
  // Angles in gon (a right angle is 100).
  static TFormelObj CreateNeugrad();

  // Replaces the formula; the code of a token that cannot be read (9111, 9112) is kept
  // for GetResult and returned.
  int SetFormel(std::string_view text);
  // Gives a variable its value; names are compared in upper case.
  void SetVariable(std::string_view name, double value);

  // The names of the formula's variables still without a value, in the order they are
  // first used: GetFirstUnknown starts over, GetNextUnknown goes on; false at the end.
  bool GetFirstUnknown(std::string& name);
  bool GetNextUnknown(std::string& name);
  std::vector<std::string> Unknowns() const;
  // The names of all the formula's variables, with a value or without, likewise.
  bool GetFirstVar(std::string& name);
  bool GetNextVar(std::string& name);
  std::vector<std::string> Variables() const;

  // Writes the value of every variable that has one into the formula in its place (a
  // variable written "-B" gets its value negated), so that GetFormel shows numbers
  // instead of names. The number of places changed.
  int ExchangeVar();
  // Folds what does not depend on a variable into its value ("2*3+B" becomes "6+B");
  // the result stays the same. The number of folds.
  int Simplify();
  int Vereinfache() { return Simplify(); }

  // The result; `error` gets 0 or the code. Variables without value are 9120.
  double GetResult(int& error);
  static std::string GetFehler(int code);
  // The formula as read: tokens in upper case, comments and the final "=" left out.
  std::string GetFormel() const;

  bool IsGon() const { return gon_; }

  // The column of the measurement grid the formula was written in, so that a message
  // can point there; -1 when none was given.
  void SetFormelCol(int col) { col_ = col; }
  int GetFormelCol() const { return col_; }

  void ClearVar() { variables_.clear(); }
  void ClearFormel();
  void Clear();

 private:
  bool gon_ = false;
  int col_ = -1;
  TTokenized tokens_;
  std::map<std::string, double> variables_;
  size_t unknown_cursor_ = 0;
  size_t var_cursor_ = 0;
};

}  // namespace korvan::formula
