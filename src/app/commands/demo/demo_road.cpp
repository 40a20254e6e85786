#include "app/commands/demo/demo_road.h"

#include <algorithm>
#include <fstream>
#include <ostream>
#include <system_error>
#include <utility>

#include "app/cli/command_error.h"
#include "app/cli/german_number.h"
#include "app/commands/demo/demo_sample.h"
#include "app/commands/demo/sample_bid.h"
#include "app/commands/demo/sample_master_data.h"
#include "app/program/current_project.h"
#include "app/program/installation.h"

namespace korvan::app::demo {
namespace fs = std::filesystem;
namespace {

// The folders the demo leaves in the data directory, and the one it takes away again.
constexpr const char* kFilesFolder = "Austausch";
constexpr const char* kLongTextFolder = "Langtexte";
constexpr const char* kBidderSideFolder = "Bieterseite";

// How many entries of the LV are shown with their command before the rest run quietly.
constexpr int kShownEntries = 3;

// The bidders' installations go when the demo ends, however it ends.
class RemovedAtEnd {
 public:
  explicit RemovedAtEnd(fs::path path) : path_(std::move(path)) {}
  ~RemovedAtEnd() {
    std::error_code ignored;  // what cannot be removed stays; it harms nothing
    fs::remove_all(path_, ignored);
  }
  RemovedAtEnd(const RemovedAtEnd&) = delete;
  RemovedAtEnd& operator=(const RemovedAtEnd&) = delete;

 private:
  fs::path path_;
};

void CreateFolder(const fs::path& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) {
    throw CommandError("Verzeichnis \"" + folder.string() +
                       "\" kann nicht angelegt werden: " + error.message());
  }
}

void WriteTextFile(const fs::path& file, std::string_view text) {
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  out << text << '\n';
  if (!out.flush()) throw CommandError("\"" + file.string() + "\" kann nicht geschrieben werden");
}

int SampleItemCount() {
  int count = 0;
  for (const SampleGroup& group : SampleGroups()) count += static_cast<int>(group.items.size());
  return count;
}

// "01" for the first group under the sample's mask.
std::string GroupOz(int group_number) {
  const int number = group_number + 1;
  return (number < 10 ? "0" : "") + std::to_string(number);
}

}  // namespace

DemoRoad::DemoRoad(const std::string& data_dir, Streams& streams)
    : data_dir_(data_dir),
      files_(fs::path(data_dir) / kFilesFolder),
      long_texts_(fs::path(data_dir) / kLongTextFolder),
      bidder_side_(fs::path(data_dir) / kBidderSideFolder),
      streams_(streams),
      script_(streams) {}

std::vector<std::string> DemoRoad::Tender(std::vector<std::string> args) const {
  args.insert(args.end(), {"-d", data_dir_});
  return args;
}

std::string DemoRoad::File(const std::string& name) const {
  return (files_ / name).string();
}

bool DemoRoad::HoldsSampleProject() const {
  std::error_code error;
  if (!fs::is_directory(fs::path(data_dir_) / kSystemFolderName, error)) return false;
  const Installation installation = LoadInstallation(data_dir_);
  return fs::exists(ProjectDirectory(installation.machine, kSampleProject), error);
}

void DemoRoad::Walk() {
  if (HoldsSampleProject()) {
    throw CommandError("In \"" + data_dir_ + "\" gibt es das Beispielprojekt \"" +
                       std::string(kSampleProject) +
                       "\" schon; die Demo beginnt von vorn: bitte ein neues Verzeichnis "
                       "angeben (-d DIR)");
  }
  streams_.out << "Korvan-Demo: der Weg eines Angebots, von der Ausschreibung bis zum Auftrag.\n"
                  "Jeder Schritt zeigt den Befehl, den Sie selbst eingeben können (nach \"$\"),\n"
                  "und was Korvan darauf antwortet.\n";
  SetUpInstallation();
  CreateLv();
  FillLv();
  ExportInvitation();
  {
    const RemovedAtEnd bidder_side(bidder_side_);
    PriceBids();
  }
  ImportBids();
  CompareBids();
  Award();
  Finish();
}

void DemoRoad::SetUpInstallation() {
  script_.Step("Installation und Projekt anlegen",
               "Ein Planungsbüro richtet Korvan ein: Verzeichnisse, Datenbanken und das Projekt\n"
               "\"" +
                   std::string(kSampleProject) + "\" (Neubau eines Kindergartens).");
  script_.Run(Tender({"init", "--project", std::string(kSampleProject)}));
  script_.Say(
      "\nDie Demo trägt Beispiel-Währungen und Einheiten (m, m2, m3, St, psch, ...) in die\n"
      "Stammdaten ein:");
  AddSampleMasterData(data_dir_, streams_.out);
}

void DemoRoad::CreateLv() {
  script_.Step("Ein Leistungsverzeichnis (LV) anlegen",
               "Die OZ-Maske 11.PPPP nummeriert Titel zweistellig und Positionen vierstellig\n"
               "(01.0001, 01.0002, ...).");
  script_.Run(Tender({"lv", "new", std::string(kSampleLv), "--mask", std::string(kSampleMask)}));
}

void DemoRoad::FillLv() {
  const int groups = static_cast<int>(SampleGroups().size());
  const int items = SampleItemCount();
  script_.Step("Titel und Positionen eintragen",
               "Jeder Titel (B) und jede Position (P) ist ein Befehl \"korvan lv add\": Kurztext,\n"
               "Langtext aus einer Datei, Menge, Einheit und geschätzter Einheitspreis. Das\n"
               "Beispiel hat " +
                   std::to_string(groups) + " Titel und " + std::to_string(items) +
                   " Positionen; die Langtexte liegen in \"" + long_texts_.string() + "\".");
  CreateFolder(long_texts_);
  const std::string lv(kSampleLv);
  int shown = 0;
  int number = 0;
  for (int group = 0; group < groups; ++group) {
    const SampleGroup& sample = SampleGroups()[group];
    const auto add = [&](const std::vector<std::string>& args) {
      if (shown++ < kShownEntries) {
        script_.Run(Tender(args));
      } else {
        script_.RunQuietly(Tender(args));
      }
    };
    add({"lv", "add", lv, "B", "--short", std::string(sample.title)});
    for (const SampleItem& item : sample.items) {
      const fs::path long_text = long_texts_ / ("Pos-" + std::to_string(++number) + ".txt");
      WriteTextFile(long_text, item.long_text);
      add({"lv", "add", lv, "P", "--under", GroupOz(group), "--short", std::string(item.short_text),
           "--long-file", long_text.string(), "--qty", GermanFigure(item.quantity, "%g"), "--unit",
           std::string(item.unit), "--up", GermanFigure(item.base_price, "%.2f")});
    }
  }
  script_.Say("\n... und " + std::to_string(groups + items - kShownEntries) +
              " weitere Befehle dieser Art. Das LV mit seiner Kostenschätzung (GP = Menge x EP):");
  script_.Run(Tender({"lv", "show", std::string(kSampleLv)}));
}

void DemoRoad::ExportInvitation() {
  script_.Step("Die Ausschreibung als GAEB-Datei X83 schreiben",
               "Phase 83 (Angebotsaufforderung) enthält Texte und Mengen, aber keine Preise: so\n"
               "geht das LV an die Bieter. \"gaeb check\" prüft die Datei.");
  CreateFolder(files_);
  script_.Run(Tender({"gaeb", "export", std::string(kSampleLv), "--phase", "83", "-o",
                      File(std::string(kSampleProject) + ".X83")}));
  script_.Run({"gaeb", "check", File(std::string(kSampleProject) + ".X83")});
}

void DemoRoad::PriceBids() {
  script_.Step("Drei Bieter kalkulieren ihre Angebote",
               "Jeder Bieter liest die X83 in sein eigenes Programm, trägt seine Preise ein und\n"
               "schickt sie als X84 zurück. Hier spielt je eine zweite Installation unter\n\"" +
                   bidder_side_.string() +
                   "\" das Programm eines Bieters; die Demo löscht sie am Ende wieder.");
  for (int bidder = 0; bidder < static_cast<int>(SampleBidders().size()); ++bidder) {
    PriceBid(bidder);
  }
}

void DemoRoad::PriceBid(int bidder_number) {
  const SampleBidder& bidder = SampleBidders()[bidder_number];
  const std::string name(bidder.name);
  const std::string side = (bidder_side_ / fs::path(bidder.file_name).stem()).string();
  const std::vector<std::string> on_side = {"-d", side};
  const auto there = [&](std::vector<std::string> args) {
    args.insert(args.end(), on_side.begin(), on_side.end());
    return args;
  };
  script_.Say("\n--- " + name + " ---");
  if (bidder_number == 0) {
    script_.Run(there({"init", "--project", "Angebote"}));
  } else {
    script_.Say("\n$ " + ShellLine(there({"init", "--project", "Angebote"})) +
                "\n(Ausgabe wie beim ersten Bieter)");
    script_.RunQuietly(there({"init", "--project", "Angebote"}));
  }
  script_.Run(there({"gaeb", "import", File(std::string(kSampleProject) + ".X83"), "--name",
                     std::string(kSampleLv)}));
  script_.Run(there({"bidder", "add", std::string(kSampleLv), name}));
  const int prices = EnterSampleBid(side, std::string(kSampleLv), bidder_number, streams_.err);
  script_.Say("\n" + name + " trägt in seinem Programm " + std::to_string(prices) +
              " Einheitspreise ein; die Demo trägt sie alle auf\neinmal ein, wie es " +
              std::to_string(prices) + " Befehle dieser Art täten:\n  " +
              ShellLine(there({"bid", "set", std::string(kSampleLv), "1", "OZ", "up=PREIS"})));
  script_.Run(there({"bidder", "list", std::string(kSampleLv)}));
  script_.Run(there({"gaeb", "export", std::string(kSampleLv), "--phase", "84", "--bidder", "1",
                     "-o", File(std::string(bidder.file_name))}));
}

void DemoRoad::ImportBids() {
  script_.Step("Die Angebote einlesen",
               "Zurück im Planungsbüro: jeder Bieter wird im LV angelegt, seine X84 eingelesen.\n"
               "Korvan findet jede Position über Art und OZ und prüft die Summen der Datei.");
  const std::string lv(kSampleLv);
  for (const SampleBidder& bidder : SampleBidders()) {
    script_.Run(Tender(
        {"bidder", "add", lv, std::string(bidder.name), "--address", std::string(bidder.address)}));
  }
  int number = 0;
  for (const SampleBidder& bidder : SampleBidders()) {
    script_.Run(Tender(
        {"bid", "import", lv, std::to_string(++number), File(std::string(bidder.file_name))}));
  }
  script_.Say("\nDie Bieter mit geprüfter Summe und Rang:");
  script_.Run(Tender({"bidder", "list", lv}));
}

void DemoRoad::CompareBids() {
  script_.Step("Preisspiegel",
               "Der Preisspiegel stellt die Angebote Position für Position nebeneinander, mit\n"
               "Mittelwert und Idealangebot; Preise, die stark vom Mittel abweichen, sind mit\n"
               "\"???\" markiert. Darunter die Rangliste.");
  const std::string lv(kSampleLv);
  script_.Run(Tender({"compare", lv}));
  const std::string csv = File(std::string(kSampleProject) + "-Preisspiegel.csv");
  const std::vector<std::string> as_csv = Tender({"compare", lv, "--csv"});
  script_.Say("\nDasselbe für die Tabellenkalkulation und als Diagramm:\n$ " + ShellLine(as_csv) +
              " > " + ShellWord(csv));
  std::string table = script_.RunQuietly(as_csv);
  if (!table.empty() && table.back() == '\n') table.pop_back();  // WriteTextFile ends the line
  WriteTextFile(csv, table);
  script_.Run(
      Tender({"compare", lv, "--svg", File(std::string(kSampleProject) + "-Preisspiegel.svg")}));
}

void DemoRoad::Award() {
  const SampleBidder& winner = SampleBidders()[CheapestSampleBidder()];
  script_.Step("Zuschlag, Auftrag und X86",
               "Das günstigste Angebot (Rang 1) erhält den Zuschlag: seine Preise werden die\n"
               "Vergabepreise des LV, ein Vertrag entsteht, und die Auftragserteilung geht als\n"
               "X86 an den Auftragnehmer.");
  const std::string lv(kSampleLv);
  script_.Run(Tender({"award", lv, std::string(winner.name)}));
  script_.Run(Tender({"contract", "list"}));
  script_.Run(Tender({"contract", "show", "1"}));
  const std::string x86 = File(std::string(kSampleProject) + ".X86");
  script_.Run(Tender({"gaeb", "export", lv, "--phase", "86", "-o", x86}));
  script_.Run({"gaeb", "check", x86});
}

void DemoRoad::Finish() {
  script_.Step("Geschafft", "Die Dateien der Demo liegen in \"" + files_.string() + "\":");
  std::vector<fs::path> files;
  for (const fs::directory_entry& entry : fs::directory_iterator(files_)) {
    files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  for (const fs::path& file : files) {
    std::error_code error;
    script_.Say("  " + file.filename().string() + " (" +
                std::to_string(fs::file_size(file, error)) + " Bytes)");
  }
  const std::string lv = "\"" + std::string(kSampleLv) + "\"";
  script_.Say("\nZum Weitermachen (" + std::to_string(script_.CommandsRun()) +
              " Befehle liefen eben):\n"
              "  korvan compare " +
              lv + " --json -d " + data_dir_ +
              "\n"
              "  korvan lv show " +
              lv + " --long -d " + data_dir_ +
              "\n"
              "  korvan bid show " +
              lv + " 2 -d " + data_dir_ +
              "\n"
              "  korvan bid check " +
              lv + " 3 -d " + data_dir_ +
              "\n"
              "  korvan undo --list -d " +
              data_dir_ +
              "\n"
              "  korvan help");
}

}  // namespace korvan::app::demo
