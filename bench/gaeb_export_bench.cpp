// The GAEB DA XML export at size: an LV of 10 000 items in 100 sections, each item with
// a long text of three paragraphs (bold run, text complement, table row), is built in
// memory and exported as an X86 with award prices: the tree alone, then the whole file.
#include <benchmark/benchmark.h>

#include <unistd.h>
#include <filesystem>
#include <string>

#include "boq/model/lv_pos_list.h"
#include "boq/text/rich_text.h"
#include "boq/text/rtf_writer.h"
#include "data/records/null_values.h"
#include "exchange/gaeb_export/gaeb_export.h"

namespace korvan::exchange {
namespace {

constexpr int kSections = 100;
constexpr int kItemsPerSection = 100;

std::string LongText(int item) {
  boq::TRichText text;
  text.blocks[0].runs = {{"Mauerwerk der Innenwände aus Kalksandstein KS 12-1,8, Position " +
                              std::to_string(item) + ", ",
                          {},
                          0},
                         {"in Normalmörtel MG IIa", {true, false, false}, 0},
                         {", Wanddicke ", {}, 0},
                         {"17,5 cm", {}, 1}};
  text.blocks.push_back(boq::TRichBlock{
      false,
      {{"Einschließlich Anschlüsse an angrenzende Bauteile, Aussparungen bis 0,1 m² "
        "übermessen, Stürze und Ringbalken werden gesondert vergütet.",
        {},
        0}},
      {}});
  boq::TRichBlock row;
  row.row = true;
  row.cells = {{{{"Steinformat", {true, false, false}, 0}}, 0}, {{{"2DF", {}, 0}}, 0}};
  text.blocks.push_back(row);
  return boq::WriteRtf(text);
}

TGaebExportSource BigLv() {
  boq::t_Lv_DB_VERSION_3100 header{};
  header.FId = 1;
  header.Name.Set("Gross");
  header.PosMaske.Set("11.PPPP");
  header.EPGenauigkeit = 2;
  TGaebExportSource source;
  source.lv = boq::TLVPosList(header);
  source.project_name = "Benchmark";
  int32_t id = 0;
  for (int section = 1; section <= kSections; ++section) {
    boq::TLvPos group = boq::NewLvPos('B');
    group.Struktur.IdBgBeschr = group.LvBgBeschr.ID = ++id;
    char oz[16];
    std::snprintf(oz, sizeof oz, "%02d", section % 100);
    group.SetOz(oz);
    group.ShortText = "Mauerarbeiten " + std::to_string(section);
    const int32_t group_id = id;
    source.lv.Add(std::move(group));
    for (int item = 1; item <= kItemsPerSection; ++item) {
      boq::TLvPos entry = boq::NewLvPos('P');
      entry.Struktur.IdBgBeschr = entry.LvBgBeschr.ID = ++id;
      entry.Struktur.ZuBg = group_id;
      std::snprintf(oz, sizeof oz, "%02d.%04d", section % 100, item * 10);
      entry.SetOz(oz);
      entry.ShortText = "Mauerwerk aus Kalksandstein KS 12-1,8";
      entry.LongText = LongText(item);
      entry.LvBeschr.FMenge = 12.5 + item;
      entry.LvBeschr.VergabeEP.Betrag = 85.4;
      source.lv.Add(std::move(entry));
    }
  }
  return source;
}

const TGaebExportSource& TheLv() {
  static const TGaebExportSource lv = BigLv();
  return lv;
}

TGaebExportOptions AwardOptions() {
  TGaebExportOptions options;
  options.phase = kPhaseAward;
  return options;
}

void BM_BuildExportTree(benchmark::State& state) {
  for (auto _ : state) {
    TGaebExportResult result = BuildGaebExport(TheLv(), AwardOptions());
    benchmark::DoNotOptimize(result.entries);
  }
  state.counters["items"] = kSections * kItemsPerSection;
}
BENCHMARK(BM_BuildExportTree)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_ExportFile(benchmark::State& state) {
  const std::filesystem::path file = std::filesystem::temp_directory_path() /
                                     ("korvan-gaeb-bench-" + std::to_string(getpid()) + ".X86");
  for (auto _ : state) {
    TGaebExportResult result = ExportGaebFile(TheLv(), AwardOptions(), file.string());
    benchmark::DoNotOptimize(result.entries);
  }
  state.counters["file_MB"] = static_cast<double>(std::filesystem::file_size(file)) / 1e6;
  std::filesystem::remove(file);
}
BENCHMARK(BM_ExportFile)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
}  // namespace korvan::exchange
