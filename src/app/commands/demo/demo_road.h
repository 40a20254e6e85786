#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "app/cli/command.h"
#include "app/commands/demo/demo_script.h"

namespace korvan::app::demo {

// The road of one bid on the built-in sample, step by step as a newcomer would walk it:
// an installation with the project, the LV with its items, the invitation to bid as X83,
// three bidders pricing it in programs of their own and sending X84 files, the bids read
// in and compared, the award, the contract and the X86. What the demo writes stays in the
// data directory for the user to open.
class DemoRoad {
 public:
  DemoRoad(const std::string& data_dir, Streams& streams);

  // CommandError when the data directory holds the sample project already (the road
  // starts from the beginning) or when a step fails.
  void Walk();

 private:
  bool HoldsSampleProject() const;
  void SetUpInstallation();
  void CreateLv();
  void FillLv();
  void ExportInvitation();
  void PriceBids();
  void PriceBid(int bidder_number);
  void ImportBids();
  void CompareBids();
  void Award();
  void Finish();

  // The arguments followed by "-d" and the tender's data directory.
  std::vector<std::string> Tender(std::vector<std::string> args) const;
  std::string File(const std::string& name) const;

  std::string data_dir_;
  std::filesystem::path files_;        // the exchanged files, left for the user
  std::filesystem::path long_texts_;   // the long texts typed in, as files
  std::filesystem::path bidder_side_;  // the bidders' installations, removed at the end
  Streams& streams_;
  DemoScript script_;
};

}  // namespace korvan::app::demo
