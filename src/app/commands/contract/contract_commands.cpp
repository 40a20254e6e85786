// `korvan contract list|show|new|set|defaults|deductions`: the contracts of a project, each change
// one step of the journal.
#include "app/commands/contract/contract_commands.h"

#include <filesystem>
#include <memory>
#include <ostream>
#include <sstream>
#include <string_view>
#include <vector>

#include <CLI/CLI.hpp>

#include "app/cli/command_error.h"
#include "app/cli/json_text.h"
#include "app/commands/contract/allocation_text.h"
#include "app/commands/contract/contract_defaults_file.h"
#include "app/commands/contract/contract_terms.h"
#include "app/commands/contract/contract_view.h"
#include "app/commands/contract/project_contracts.h"
#include "app/commands/contract/standard_deductions_file.h"
#include "app/commands/lv/lv_operation.h"
#include "billing/tables/billing_table_types.h"
#include "boq/lv/project_lvs.h"
#include "storage/file/atomic_file.h"

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
    const billing::TContractSettings& settings = target.ContractSettings();  // before any write
    RunAsOneStep<billing::EContractError, boq::EStoredLvError, CommandError>(
        target.Journal(), data::TOperationKind::okEdit,
        "Vertrag für LV \"" + list.FLv().Name.Get() + "\" anlegen", kContractWords, streams.err,
        [&] {
          billing::TdmVertrag book(target.BillingDb(), target.ContractProjectNumber(true),
                                   converter);
          contract = book.Create(list, party, settings);
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
    app.add_option("assignments", assignments_, "FELD=WERT, Felder: " + fields);
    app.add_option("--umlage", allocations_,
                   "eine Umlage NAME=PROZENT% oder NAME=BETRAG, wahlweise :RECHNUNGSTYPEN "
                   "(Standard ARSTU); NAME=- entfernt sie. Umlagen: Bauschild, Baustrom, "
                   "Bauwasser, Baureinigung, Müllcontainer, Vertragsstrafe");
  }
  int Run(Streams& streams) override {
    if (assignments_.empty() && allocations_.empty()) {
      throw UsageError("Nichts zu setzen: FELD=WERT oder --umlage NAME=WERT angeben.");
    }
    std::vector<billing::TAllocation> allocations;
    for (const std::string& text : allocations_) allocations.push_back(ParseAllocation(text));
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
    RunAsOneStep<billing::EContractError, billing::EDeductionError, CommandError>(
        target.Journal(), data::TOperationKind::okEdit,
        "Vertrag \"" + contract.AuftragsNr.Get() + "\" ändern", kContractWords, streams.err, [&] {
          billing::TdmVertrag book(target.BillingDb(), contract.IdProjekt,
                                   contracts.ConverterOf(contract));
          book.Store(contract, list);
          billing::TdmAbzug deductions(target.BillingDb(), billing::kDeductionOfContract,
                                       contract.ID);
          for (const billing::TAllocation& allocation : allocations) {
            billing::SetAllocation(deductions, allocation);
          }
        });
    return Show(streams, contracts, contract, json);
  }

 private:
  std::string contract_;
  std::vector<std::string> assignments_;
  std::vector<std::string> allocations_;
};

// "Standardwerte schreiben" / "Standardwerte einlesen": a contract's terms and allocations
// as the defaults of new contracts, and back into a contract.
class ContractDefaultsCommand : public LvOperation {
 public:
  std::string Name() const override { return "defaults"; }
  std::string Summary() const override {
    return "Standardwerte für neue Verträge (STANDARD-WERTE.VSW): zeigen, aus einem Vertrag "
           "schreiben (write), in einen Vertrag einlesen (read)";
  }
  void Define(CLI::App& app) override {
    app.add_option("action", action_, "show, write oder read")
        ->required()
        ->check(CLI::IsMember({"show", "write", "read"}));
    app.add_option("contract", contract_,
                   "der Vertrag (bei write und read): Auftrags-Nummer oder ID");
  }
  int Run(Streams& streams) override {
    if (action_ != "show" && contract_.empty()) {
      throw UsageError("\"contract defaults " + action_ + "\" braucht einen Vertrag.");
    }
    ProjectContracts contracts(data_dir, project, action_ == "read");
    LvProject& target = contracts.Project();
    const std::string path = target.ContractDefaultsPath();
    if (action_ == "show") return ShowDefaults(streams, path);
    billing::TVertrag contract = contracts.Require(contract_);
    if (action_ == "write") {
      const ContractView view = contracts.ViewOf(contract);
      WriteContractDefaults(path, DefaultsOfContract(contract, view.deductions));
      streams.out << "Standardwerte aus Vertrag \"" << contract.AuftragsNr.Get()
                  << "\" geschrieben: " << path << '\n';
      return kExitOk;
    }
    const billing::TContractDefaults defaults = ReadContractDefaults(path);
    if (contract.gesperrt != 0) {
      throw CommandError("Vertrag \"" + contract.AuftragsNr.Get() + "\" ist gesperrt.");
    }
    billing::TakeDefaultTerms(contract, defaults.terms);
    const boq::TLVPosList& list = contracts.LvOf(contract);
    RunAsOneStep<billing::EContractError, billing::EDeductionError, CommandError>(
        target.Journal(), data::TOperationKind::okEdit,
        "Standardwerte in Vertrag \"" + contract.AuftragsNr.Get() + "\" einlesen", kContractWords,
        streams.err, [&] {
          billing::TdmVertrag book(target.BillingDb(), contract.IdProjekt,
                                   contracts.ConverterOf(contract));
          book.Store(contract, list);
          billing::TdmAbzug deductions(target.BillingDb(), billing::kDeductionOfContract,
                                       contract.ID);
          for (std::string_view name : billing::kAllocationNames) {
            billing::TAllocation allocation;  // none, unless the defaults name it
            allocation.name = std::string(name);
            for (const billing::TAllocation& given : defaults.allocations) {
              if (given.name == name) allocation = given;
            }
            billing::SetAllocation(deductions, allocation);
          }
        });
    return Show(streams, contracts, contract, json);
  }

 private:
  int ShowDefaults(Streams& streams, const std::string& path) {
    if (!std::filesystem::exists(path)) {
      if (json) {
        streams.out << "{\"file\": " << JsonString(path) << ", \"exists\": false}\n";
      } else {
        streams.out << "Keine Standardwerte: " << path
                    << " fehlt (\"korvan contract defaults write VERTRAG\" legt sie an).\n";
      }
      return kExitOk;
    }
    const billing::TContractDefaults defaults = ReadContractDefaults(path);
    const std::string text = ContractDefaultsText(defaults);
    if (json) {
      streams.out << "{\"file\": " << JsonString(path) << ", \"exists\": true, \"lines\": [";
      std::istringstream lines(text);
      std::string line;
      bool first = true;
      while (std::getline(lines, line)) {
        if (line.empty() || line.front() == '#') continue;
        streams.out << (first ? "" : ", ") << JsonString(line);
        first = false;
      }
      streams.out << "]}\n";
    } else {
      streams.out << "Standardwerte für neue Verträge (" << path << "):\n" << text;
    }
    return kExitOk;
  }

  std::string action_;
  std::string contract_;
};

// "Abzugsliste einlesen" and the writing of the standard deductions: a contract's deductions
// into "STANDARD-ABZUEGE.VAZ", and the file's deductions into a contract.
class ContractDeductionsCommand : public LvOperation {
 public:
  std::string Name() const override { return "deductions"; }
  std::string Summary() const override {
    return "Standardabzüge (STANDARD-ABZUEGE.VAZ): aus einem Vertrag schreiben (write), in "
           "einen Vertrag einlesen (read)";
  }
  void Define(CLI::App& app) override {
    app.add_option("action", action_, "write oder read")
        ->required()
        ->check(CLI::IsMember({"write", "read"}));
    app.add_option("contract", contract_, "der Vertrag: Auftrags-Nummer oder ID")->required();
  }
  int Run(Streams& streams) override {
    ProjectContracts contracts(data_dir, project, action_ == "read");
    LvProject& target = contracts.Project();
    const std::string path = (std::filesystem::path(target.ContractDefaultsPath()).parent_path() /
                              kStandardDeductionsFileName)
                                 .string();
    billing::TVertrag contract = contracts.Require(contract_);
    if (action_ == "write") {
      const ContractView view = contracts.ViewOf(contract);
      const storage::FileWriteResult written = storage::WriteFileAtomically(
          path, StandardDeductionsText(view.deductions), storage::Durability::kDurable);
      if (!written.ok()) {
        throw CommandError(path + ": die Standardabzüge können nicht geschrieben werden (" +
                           written.ErrorText() + ")");
      }
      streams.out << view.deductions.size() << " Abzüge aus Vertrag \"" << contract.AuftragsNr.Get()
                  << "\" geschrieben: " << path << '\n';
      return kExitOk;
    }
    const std::vector<billing::TDeduction> read = ReadStandardDeductions(path);
    if (contract.gesperrt != 0) {
      throw CommandError("Vertrag \"" + contract.AuftragsNr.Get() + "\" ist gesperrt.");
    }
    RunAsOneStep<billing::EDeductionError, CommandError>(
        target.Journal(), data::TOperationKind::okEdit,
        "Abzugsliste in Vertrag \"" + contract.AuftragsNr.Get() + "\" einlesen", kContractWords,
        streams.err, [&] {
          billing::TdmAbzug book(target.BillingDb(), billing::kDeductionOfContract, contract.ID);
          TakeStandardDeductions(book, read);
        });
    return Show(streams, contracts, contract, json);
  }

 private:
  std::string action_;
  std::string contract_;
};

class ContractCommand : public LvOperationGroup {
 public:
  ContractCommand() {
    operations_.push_back(std::make_unique<ContractListCommand>());
    operations_.push_back(std::make_unique<ContractShowCommand>());
    operations_.push_back(std::make_unique<ContractNewCommand>());
    operations_.push_back(std::make_unique<ContractSetCommand>());
    operations_.push_back(std::make_unique<ContractDefaultsCommand>());
    operations_.push_back(std::make_unique<ContractDeductionsCommand>());
  }
  std::string Name() const override { return "contract"; }
  std::string Summary() const override {
    return "Verträge des Projekts: auflisten, zeigen, von Hand anlegen, Bedingungen und "
           "Umlagen setzen, Standardwerte";
  }
};

}  // namespace

void AddContractCommands(CommandList& commands) {
  commands.push_back(std::make_unique<ContractCommand>());
}

}  // namespace korvan::app
