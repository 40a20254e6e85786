#pragma once

#include <string>
#include <string_view>

// When a record is to be written that another user changed after this user opened the
// database, the user decides whether to overwrite it. The table layer formulates the
// question; whoever drives the program (the shell's dialog, the command line, a test)
// answers it.
namespace korvan::data {

class IConcurrencyQuestion {
 public:
  virtual ~IConcurrencyQuestion() = default;
  // True: overwrite the other user's change; false: write nothing.
  virtual bool AskOverwrite(const std::string& question) = 0;
};

// A fixed answer: the command line overwrites only when "--force" was given.
class TFixedConcurrencyAnswer : public IConcurrencyQuestion {
 public:
  explicit TFixedConcurrencyAnswer(bool overwrite) : overwrite_(overwrite) {}
  bool AskOverwrite(const std::string& question) override {
    last_question_ = question;
    ++questions_;
    return overwrite_;
  }
  const std::string& last_question() const { return last_question_; }
  int questions() const { return questions_; }

 private:
  bool overwrite_;
  std::string last_question_;
  int questions_ = 0;
};

// "DB: %s\r\nDer Datensatz "%s" wurde bereits am %s von "%s" geändert.\r\nSoll der
// Datensatz überschrieben werden?"
inline std::string ConcurrencyQuestionText(std::string_view database, std::string_view record,
                                           std::string_view date, std::string_view user) {
  std::string text = "DB: ";
  text.append(database);
  text.append("\r\nDer Datensatz \"");
  text.append(record);
  text.append("\" wurde bereits am ");
  text.append(date);
  text.append(" von \"");
  text.append(user);
  text.append("\" geändert.\r\nSoll der Datensatz überschrieben werden?");
  return text;
}

}  // namespace korvan::data
