// The GAEB DA XML export at size: an LV of 10 000 items in 100 sections, each item with
// a long text of three paragraphs (bold run, text complement, table row), is built in
// memory and exported as an X86 with award prices: the tree alone, then the whole file.
#include <benchmark/benchmark.h>

#include <unistd.h>
#include <filesystem>
#include <string>

#include "exchange/gaeb_export/gaeb_export.h"
#include "gaeb_bench_lv.h"

namespace korvan::exchange {
namespace {

using bench::kItemsPerSection;
using bench::kSections;

const TGaebExportSource& TheLv() {
  static const TGaebExportSource lv = bench::BigLv();
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
