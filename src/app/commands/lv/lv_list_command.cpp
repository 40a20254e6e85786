// `korvan lv list`: the LVs of the project in project order.
#include "app/commands/lv/lv_list_command.h"

#include <algorithm>
#include <cstdio>
#include <ostream>

#include "app/cli/json_text.h"
#include "app/commands/lv/lv_project.h"
#include "boq/lv/lv_codes.h"
#include "boq/lv/project_lvs.h"

namespace korvan::app {
namespace {

// Characters of a UTF-8 text: its bytes that do not continue a character.
size_t CharCount(const std::string& utf8) {
  return static_cast<size_t>(std::count_if(utf8.begin(), utf8.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  }));
}

std::string StatusLetter(char status) {
  return status == '\0' ? std::string() : std::string(1, status);
}

// "1.234,50": amounts as people in Germany read them.
std::string GermanAmount(double value) {
  char text[64];
  std::snprintf(text, sizeof text, "%.2f", value);
  std::string plain = text;
  const size_t point = plain.find('.');
  std::string whole = plain.substr(0, point);
  const std::string cents = plain.substr(point + 1);
  const size_t first_digit = whole[0] == '-' ? 1 : 0;
  for (size_t at = whole.size(); at > first_digit + 3; at -= 3) whole.insert(at - 3, ".");
  return whole + "," + cents;
}

void PrintJson(std::ostream& out, const std::string& project, const std::string& currency,
               const std::vector<boq::LvSummary>& lvs) {
  out << "{\"project\": " << JsonString(project) << ", \"currency\": " << JsonString(currency)
      << ", \"lvs\": [";
  for (size_t i = 0; i < lvs.size(); ++i) {
    const boq::LvSummary& lv = lvs[i];
    out << (i == 0 ? "" : ", ") << "{\"id\": " << lv.id << ", \"name\": " << JsonString(lv.name)
        << ", \"status\": " << JsonString(StatusLetter(lv.status))
        << ", \"status_text\": " << JsonString(boq::LvStatusMeaning(lv.status))
        << ", \"entries\": " << lv.entries << ", \"total\": " << JsonNumber(lv.total) << "}";
  }
  out << "]}\n";
}

void PrintTable(std::ostream& out, const std::string& project, const std::string& currency,
                const std::vector<boq::LvSummary>& lvs) {
  out << "Projekt \"" << project << "\": " << lvs.size() << (lvs.size() == 1 ? " LV" : " LVs")
      << ", Währung " << currency << '\n';
  if (lvs.empty()) return;
  char line[160];
  std::snprintf(line, sizeof line, "%6s  %-20s  %-17s  %8s  %16s\n", "Nr", "Name", "Status",
                "Einträge", "Summe");
  out << line;
  for (const boq::LvSummary& lv : lvs) {
    const std::string status =
        StatusLetter(lv.status) + " (" + std::string(boq::LvStatusMeaning(lv.status)) + ")";
    // Names and status are padded by characters, not bytes: umlauts take two bytes.
    out << std::string(6 - std::min<size_t>(6, std::to_string(lv.id).size()), ' ') << lv.id << "  "
        << lv.name << std::string(20 - std::min<size_t>(20, CharCount(lv.name)), ' ') << "  "
        << status << std::string(17 - std::min<size_t>(17, CharCount(status)), ' ');
    std::snprintf(line, sizeof line, "  %8u  %16s\n", lv.entries, GermanAmount(lv.total).c_str());
    out << line;
  }
}

}  // namespace

int LvListCommand::Run(Streams& streams) {
  LvProject target(data_dir, project);
  const std::vector<boq::LvSummary> lvs = boq::ListLvs(target.Db(false));
  const std::string currency = target.CurrencySymbol(target.Currency());
  if (json) {
    PrintJson(streams.out, target.Name(), currency, lvs);
  } else {
    PrintTable(streams.out, target.Name(), currency, lvs);
  }
  return kExitOk;
}

}  // namespace korvan::app
