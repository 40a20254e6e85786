#pragma once

#include <string>

#include "app/cli/command.h"

namespace CLI {
class App;
}

namespace korvan::app {

// What `korvan currency convert` is asked to do.
struct CurrencyConvertRequest {
  std::string data_dir;
  std::string project;  // empty: the user's current project
  std::string target;   // symbol or id of the new currency
  std::string source;   // of amounts without a currency of their own; empty: the project's
  // Also the databases shared by every project: master data, catalogs, clip folders.
  bool with_master_data = false;
};

// `korvan currency convert [--project P] [--von W] [--with-master-data] <to>`: converts
// every stored amount of a project's databases (with the option also those of the master
// data, catalog and clip folders) into another currency as one undo step, appending the
// run to "WaeKonv.LOG" in the project folder.
class CurrencyCommand : public Command {
 public:
  std::string Name() const override { return "currency"; }
  std::string Summary() const override {
    return "rechnet alle Beträge eines Projekts in eine andere Währung um";
  }
  void Define(CLI::App& app) override;
  int Run(Streams& streams) override;

 private:
  CLI::App* convert_ = nullptr;
  CurrencyConvertRequest request_;
};

int RunCurrencyConvert(const CurrencyConvertRequest& request, Streams& streams);

}  // namespace korvan::app
