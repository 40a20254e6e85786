// The LV in memory at size: an LV of 50 000 entries (groups over three levels, items with
// long texts) is created, loaded into a TLVPosList, renumbered and saved back; the
// resident memory of the loaded list is reported beside the times.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "boq/lv/project_lvs.h"
#include "boq/model/lv_editing.h"
#include "boq/model/lv_pos_list_io.h"
#include "boq/oz/boq_oz_builder.h"
#include "data/tables/std_db.h"
#include "data/tables/std_db_datas.h"

namespace korvan::boq {
namespace {

constexpr int kGroupsPerLevel = 10;  // 10 + 100 + 1000 groups
constexpr int kDefaultEntries = 50000;

// KORVAN_BENCH_ENTRIES sets a smaller LV for a quick run (at least the 1 110 groups).
int EntryCount() {
  const char* text = std::getenv("KORVAN_BENCH_ENTRIES");
  const int wanted = text != nullptr ? std::atoi(text) : kDefaultEntries;
  return std::max(wanted, 1110 + 1000);
}

// Resident memory of the process in kB (VmRSS).
long ResidentKb() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.rfind("VmRSS:", 0) == 0) return std::stol(line.substr(6));
  }
  return 0;
}

// An LV database and a text database in a fresh directory, with one LV of 50 000 entries.
class BigLv {
 public:
  BigLv() {
    dir_ = std::filesystem::temp_directory_path() / ("korvan-lv-bench-" + std::to_string(getpid()));
    std::filesystem::create_directories(dir_);
    lv_db_ = std::make_unique<data::TStdDb>("DB_Lv", dir_.string() + "/", 'A', 70);
    text_db_ = std::make_unique<data::TStdDb>("DB_Texte", dir_.string() + "/", 'C', 45);
    lv_db_->DbCreate();
    text_db_->DbCreate();
    lv_id_ = CreateLv(*lv_db_, {"Gross", "11.22.33.PPPP"});
    const auto start = std::chrono::steady_clock::now();
    TLVPosList list = LoadLvPosList(*lv_db_, text_db_.get(), lv_id_);
    // 1110 groups and the items spread evenly over the 1000 lowest groups (48 or 49 each for
    // 50 000 entries).
    const int lowest_groups = kGroupsPerLevel * kGroupsPerLevel * kGroupsPerLevel;
    const int items_per_group = (EntryCount() - 1110) / lowest_groups;
    const int spare_items = EntryCount() - 1110 - items_per_group * lowest_groups;
    int lowest_group = 0;
    for (int a = 0; a < kGroupsPerLevel; ++a) {
      const int top = AddEntry(list, NewLvPos('B'), {});
      for (int b = 0; b < kGroupsPerLevel; ++b) {
        const int middle = AddEntry(list, NewLvPos('B'), {TLvPlace::Kind::kUnder, top});
        for (int c = 0; c < kGroupsPerLevel; ++c) {
          TLvPos group = NewLvPos('B');
          group.Struktur.ZuBg = list[middle].Struktur.IdBgBeschr;
          group.Struktur.IdBgBeschr = -(list.Count() + 1);
          group.SetOz(std::string(list[middle].Oz()) + ".01");
          group.ShortText = "Titel";
          list.Add(group);
          const int32_t group_id = group.Struktur.IdBgBeschr;
          const int items = items_per_group + (lowest_group++ < spare_items ? 1 : 0);
          for (int i = 0; i < items; ++i) {
            TLvPos item = NewLvPos('P');
            item.Struktur.ZuBg = group_id;
            item.Struktur.IdBgBeschr = -(list.Count() + 1);
            item.SetOz(std::string(list[list.Count() - 1].Oz()).substr(0, 8) + ".0001");
            item.ShortText = "Mauerwerk aus Kalksandstein";
            item.LongText =
                "{\\rtf1\\ansi Mauerwerk der Innenw\\'e4nde, Kalksandstein KS 12-1,8, "
                "d = 17,5 cm, in Normalm\\'f6rtel MG IIa.\\par}";
            item.LongTextChanged = true;
            item.LvBeschr.FMenge = 12.5;
            item.LvBeschr.SchaetzEP.Betrag = 85.4;
            list.Add(item);
          }
        }
      }
    }
    RenumberLv(list);
    SaveLvPosList(*lv_db_, text_db_.get(), list);
    create_seconds_ =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    entries_ = list.Count();
  }
  ~BigLv() {
    lv_db_.reset();
    text_db_.reset();
    data::TStdDbDatas::Instance().ReleaseEmpty();
    std::filesystem::remove_all(dir_);
  }

  std::filesystem::path dir_;
  std::unique_ptr<data::TStdDb> lv_db_, text_db_;
  int32_t lv_id_ = 0;
  double create_seconds_ = 0;
  int entries_ = 0;
};

BigLv& TheLv() {
  static BigLv lv;
  return lv;
}

void BM_CreateLv(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(TheLv().entries_);
  state.counters["create_s"] = TheLv().create_seconds_;
  state.counters["entries"] = TheLv().entries_;
}
BENCHMARK(BM_CreateLv)->Iterations(1);

void BM_LoadLv(benchmark::State& state) {
  BigLv& lv = TheLv();
  long rss_growth = 0;
  for (auto _ : state) {
    const long before = ResidentKb();
    TLVPosList list = LoadLvPosList(*lv.lv_db_, lv.text_db_.get(), lv.lv_id_);
    rss_growth = ResidentKb() - before;
    benchmark::DoNotOptimize(list.Count());
  }
  state.counters["rss_growth_MB"] = static_cast<double>(rss_growth) / 1024.0;
  state.counters["rss_MB"] = static_cast<double>(ResidentKb()) / 1024.0;
}
BENCHMARK(BM_LoadLv)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_RenumberLv(benchmark::State& state) {
  BigLv& lv = TheLv();
  const TLVPosList loaded = LoadLvPosList(*lv.lv_db_, lv.text_db_.get(), lv.lv_id_);
  for (auto _ : state) {
    state.PauseTiming();
    TLVPosList list = loaded;
    state.ResumeTiming();
    TBoqOzBuilder(list).BuildOzForItems(0);
    benchmark::DoNotOptimize(list.Count());
  }
}
BENCHMARK(BM_RenumberLv)->Unit(benchmark::kMillisecond)->Iterations(5);

// Saving after an item was removed near the start: every following number changes.
void BM_SaveRenumberedLv(benchmark::State& state) {
  BigLv& lv = TheLv();
  for (auto _ : state) {
    state.PauseTiming();
    TLVPosList list = LoadLvPosList(*lv.lv_db_, lv.text_db_.get(), lv.lv_id_);
    RemoveEntry(list, 4);
    state.ResumeTiming();
    SaveLvPosList(*lv.lv_db_, lv.text_db_.get(), list);
  }
}
BENCHMARK(BM_SaveRenumberedLv)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
}  // namespace korvan::boq
