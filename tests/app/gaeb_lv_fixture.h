#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan::app {

// An installation with the LV "Rohbau" built on the command line: two groups, a remark,
// a normal item, a lump-sum item and a free-quantity item under mask 11.22.PPPP.
class GaebLvFixture : public ::testing::Test {
 protected:
  void SetUp() override {
    Korvan({"demo", "--setup-only"});
    Korvan({"lv", "new", "Rohbau", "--mask", "11.22.PPPP"});
    Korvan({"lv", "add", "Rohbau", "B", "--short", "Rohbau"});
    Korvan({"lv", "add", "Rohbau", "B", "--under", "01", "--short", "Erdarbeiten"});
    Korvan({"lv", "add", "Rohbau", "H", "--under", "01.01", "--short", "Hinweis"});
    Korvan({"lv", "add", "Rohbau", "P", "--under", "01.01", "--short", "Aushub", "--qty", "120",
            "--up", "12.5", "--unit", "m3"});
    Korvan({"lv", "add", "Rohbau", "L", "--under", "01.01", "--short", "Verfüllen & Verdichten",
            "--qty", "80", "--up", "9.99"});
    Korvan(
        {"lv", "add", "Rohbau", "U", "--under", "01.01", "--short", "lagenweise", "--qty", "40"});
  }
  // `korvan` on the fixture's installation, expecting `exit_code` and the `parts`.
  korvan::testing::ProgramResult Korvan(std::vector<std::string> args, int exit_code = 0,
                                        const std::vector<std::string>& parts = {}) {
    args.insert(args.end(), {"-d", base_.string()});
    return korvan::testing::ExpectKorvan(args, exit_code, parts);
  }

  korvan::testing::TempDir dir_;
  std::filesystem::path base_ = dir_.path() / "sample";
};

}  // namespace korvan::app
