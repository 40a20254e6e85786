// `korvan contract list|show|new|set`: the contracts of a project, each change one step of
// the journal.
#include "app/commands/contract/contract_commands.h"

#include <memory>
#include <ostream>
#include <vector>

#include <CLI/CLI.hpp>

#include "app/cli/command_error.h"
#include "app/cli/json_text.h"
#include "app/commands/contract/contract_terms.h"
#include "app/commands/contract/contract_view.h"
#include "app/commands/contract/project_contracts.h"
#include "app/commands/lv/lv_operation.h"
#include "boq/lv/project_lvs.h"

namespace korvan::app {
namespace {

const StepWords kContractWords{"es wurde nichts geändert",
                               "die Änderung konnte nicht zurückgenommen werden", "die Änderung"};

// A contract as JSON or as text for people.
int Show(Streams& streams, ProjectContracts& contracts, const billing::TVertrag& contract,
         bool json) {
  const ContractView view = contracts.ViewOf(contract);
  if (json) {
    streams.out << ContractJson(view, contracts.ConverterOf(contract)) << '\n';
  } else {
    PrintContract(streams.out, view, contracts.ConverterOf(contract));
  }
  return kExitOk;
}

class ContractListCommand : public LvOperation {
 public:
  std::string Name() const override { return "list"; }
  std::string Summary() const override { return "die Verträge des Projekts mit ihren Summen"; }
  void Define(CLI::App&) override {}
  int Run(Streams& streams) override {
    ProjectContracts contracts(data_dir, project, false);
    const std::vector<billing::TVertrag> all = contracts.All();
    if (json) {
      streams.out << "{\"project\": " << JsonString(contracts.Project().Name())
                  << ", \"contracts\": [";
      for (std::size_t i = 0; i < all.size(); ++i) {
        streams.out << (i == 0 ? "" : ", ")
                    << ContractJson(contracts.ViewOf(all[i]), contracts.ConverterOf(all[i]));
      }
      streams.out << "]}\n";
      return kExitOk;
    }
    streams.out << "Projekt \"" << contracts.Project().Name() << "\": " << all.size()
                << (all.size() == 1 ? " Vertrag" : " Verträge") << '\n';
    for (const billing::TVertrag& contract : all) {
      PrintContractLine(streams.out, contracts.ViewOf(contract));
    }
    return kExitOk;
  }
};

class ContractShowCommand : public LvOperation {
 public:
  std::string Name() const override { return "show"; }
  std::string Summary() const override {
    return "einen Vertrag mit Summen, Einbehalten, Skonto und Rechnungslegung zeigen";
  }
  void Define(CLI::App& app) override {
    app.add_option("contract", contract_, "der Vertrag: Auftrags-Nummer oder ID")->required();
  }
  int Run(Streams& streams) override {
    ProjectContracts contracts(data_dir, project, false);
    const billing::TVertrag contract = contracts.Require(contract_);
    return Show(streams, contracts, contract, json);
  }

 private:
  std::string contract_;
};

class ContractNewCommand : public LvOperation {
 public:
  std::string Name() const override { return "new"; }
  std::string Summary() const override {
    return "einen Vertrag von Hand anlegen: für das LV, oder als Nachauftrag für seine "
           "Nachtragspositionen ohne Vertrag";
  }
  void Define(CLI::App& app) override {
    AddLvArgument(app, lv_);
    app.add_option("--contractor", contractor_, "der Auftragnehmer (höchstens 40 Zeichen)")
        ->required();
  }
  int Run(Streams& streams) override {
    ProjectContracts contracts(data_dir, project, true);
    LvProject& target = contracts.Project();
    boq::TLVPosList list = target.LoadLv(lv_);
    const boq::TAvaUiValueConverter converter = target.Converter(list.FLv());
    billing::TContractParty party;
    party.name = contractor_;
    billing::TVertrag contract{};
    RunAsOneStep<billing::EContractError, boq::EStoredLvError, CommandError>(
        target.Journal(), data::TOperationKind::okEdit,
        "Vertrag für LV \"" + list.FLv().Name.Get() + "\" anlegen", kContractWords, streams.err,
        [&] {
          billing::TdmVertrag book(target.BillingDb(), target.ContractProjectNumber(true),
                                   converter);
          contract = book.Create(list, party, target.ContractSettings());
          target.SaveWithSums(list, streams.err);
        });
    const ContractView view = contracts.ViewOf(contract);
    if (json) {
      streams.out << ContractJson(view, converter) << '\n';
    } else {
      streams.out << "Vertrag \"" << contract.AuftragsNr.Get() << "\" ("
                  << billing::ContractKindText(contract.Auftragsart) << ") für LV \""
                  << list.FLv().Name.Get() << "\" angelegt\n";
    }
    return kExitOk;
  }

 private:
  std::string lv_;
  std::string contractor_;
};

class ContractSetCommand : public LvOperation {
 public:
  std::string Name() const override { return "set"; }
  std::string Summary() const override {
    return "Vertragsbedingungen setzen: Einbehalte, Gewährleistung, Skonto, Nachlass, MwSt, "
           "Rechnungslegung, Daten (FELD=WERT)";
  }
  void Define(CLI::App& app) override {
    app.add_option("contract", contract_, "der Vertrag: Auftrags-Nummer oder ID")->required();
    std::string fields;
    for (const std::string& name : ContractTermNames())
      fields += (fields.empty() ? "" : ", ") + name;
    app.add_option("assignments", assignments_, "FELD=WERT, Felder: " + fields)->required();
  }
  int Run(Streams& streams) override {
    ProjectContracts contracts(data_dir, project, true);
    billing::TVertrag contract = contracts.Require(contract_);
    const bool was_locked = contract.gesperrt != 0;
    for (const std::string& assignment : assignments_) SetContractTerm(contract, assignment);
    if (was_locked && contract.gesperrt != 0) {
      throw CommandError("Vertrag \"" + contract.AuftragsNr.Get() +
                         "\" ist gesperrt; zuerst gesperrt=nein setzen.");
    }
    LvProject& target = contracts.Project();
    const boq::TLVPosList& list = contracts.LvOf(contract);
    RunAsOneStep<billing::EContractError, CommandError>(
        target.Journal(), data::TOperationKind::okEdit,
        "Vertrag \"" + contract.AuftragsNr.Get() + "\" ändern", kContractWords, streams.err, [&] {
          billing::TdmVertrag book(target.BillingDb(), contract.IdProjekt,
                                   contracts.ConverterOf(contract));
          book.Store(contract, list);
        });
    return Show(streams, contracts, contract, json);
  }

 private:
  std::string contract_;
  std::vector<std::string> assignments_;
};

class ContractCommand : public LvOperationGroup {
 public:
  ContractCommand() {
    operations_.push_back(std::make_unique<ContractListCommand>());
    operations_.push_back(std::make_unique<ContractShowCommand>());
    operations_.push_back(std::make_unique<ContractNewCommand>());
    operations_.push_back(std::make_unique<ContractSetCommand>());
  }
  std::string Name() const override { return "contract"; }
  std::string Summary() const override {
    return "Verträge des Projekts: auflisten, zeigen, von Hand anlegen, Bedingungen setzen";
  }
};

}  // namespace

void AddContractCommands(CommandList& commands) {
  commands.push_back(std::make_unique<ContractCommand>());
}

}  // namespace korvan::app
