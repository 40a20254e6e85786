#include "testing/small_lv.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "testing/files.h"
#include "testing/run_korvan.h"

namespace korvan::testing {

std::filesystem::path MakeSmallLv(const TempDir& dir) {
  const std::filesystem::path base = MakeInstallation(dir);
  const std::string long_text = dir.File("aushub.txt");
  WriteFile(long_text, "Boden lösen, laden und abfahren.\nBodenklasse 3 bis 5.");
  const std::vector<std::vector<std::string>> steps = {
      {"lv", "new", kSmallLv, "--mask", "11.22.PPPP", "--project", kSmallLvProject},
      {"lv", "add", kSmallLv, "B", "--short", "Rohbau"},
      {"lv", "add", kSmallLv, "B", "--under", "01", "--short", "Erdarbeiten"},
      {"lv", "add", kSmallLv, "P", "--under", "01.01", "--short", "Aushub", "--qty", "10", "--unit",
       "m³", "--up", "5", "--long-file", long_text},
      {"lv", "add", kSmallLv, "P", "--under", "01.01", "--short", "Verfüllen", "--qty", "2",
       "--unit", "m³", "--up", "7,5"},
      {"lv", "add", kSmallLv, "H", "--under", "01.01", "--short", "Hinweis"},
      {"lv", "add", kSmallLv, "B", "--under", "01", "--short", "Mauerarbeiten"},
  };
  for (std::vector<std::string> step : steps) {
    if (step[1] != "new") step.insert(step.end(), {"--project", kSmallLvProject});
    ExpectKorvanOn(base, step);
  }
  return base;
}

void AddSmallBids(const std::filesystem::path& base) {
  const std::vector<std::vector<std::string>> steps = {
      {"bidder", "add", kSmallLv, "Musterbau GmbH"},
      {"bidder", "add", kSmallLv, "Zweitbau"},
      {"bid", "set", kSmallLv, "1", "01.01.0001", "up=5,5"},
      {"bid", "set", kSmallLv, "1", "01.01.0002", "up=7"},
      {"bid", "set", kSmallLv, "2", "01.01.0001", "up=4,8"},
      {"bid", "set", kSmallLv, "2", "01.01.0002", "up=20"},
  };
  for (std::vector<std::string> step : steps) {
    step.insert(step.end(), {"--project", kSmallLvProject});
    ExpectKorvanOn(base, step);
  }
}

}  // namespace korvan::testing
