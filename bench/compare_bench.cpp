// The price comparison of 20 bidders over an LV of 10 000 items (100 groups of 100 items)
// stored in an LV database: one run reads every bid once from the database, recomputes
// it, and forms the mean, median and ideal bids and the reference. Setting up the bids is
// not measured.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

#include "award/award_tables.h"
#include "award/bid/dm_bieter.h"
#include "award/compare/price_comparison.h"
#include "boq/boq_tables.h"
#include "boq/lv/lv_table_types.h"
#include "boq/model/lv_pos.h"
#include "data/records/null_values.h"
#include "data/tables/data_tables.h"
#include "data/tables/std_db.h"
#include "data/tables/std_db_datas.h"

namespace korvan::award {
namespace {

constexpr int kGroups = 100;
constexpr int kItemsPerGroup = 100;
constexpr int kBidders = 20;

boq::TLVPosList BigLv() {
  boq::t_Lv_DB_VERSION_3100 header{};
  header.FId = 1;
  header.EPGenauigkeit = 2;
  header.AngebotsmengenGleichLvMengen = 1;
  boq::TLVPosList lv(header);
  int32_t id = 0;
  for (int g = 0; g < kGroups; ++g) {
    boq::TLvPos group = boq::NewLvPos('B');
    group.Struktur.IdBgBeschr = ++id;
    group.Struktur.ZuBg = data::kRootParentId;
    const int32_t group_id = id;
    lv.Add(group);
    for (int i = 0; i < kItemsPerGroup; ++i) {
      boq::TLvPos item = boq::NewLvPos('P');
      item.Struktur.IdBgBeschr = ++id;
      item.Struktur.ZuBg = group_id;
      item.LvBeschr.FMenge = 1.5 + i;
      lv.Add(item);
    }
  }
  return lv;
}

class Fixture {
 public:
  Fixture() : dir_(MakeDir()), lv_(BigLv()) {
    data::TTableRegistry registry;
    data::RegisterDataTables(registry);
    boq::RegisterBoqTables(registry);
    RegisterAwardTables(registry);
    db_ = std::make_unique<data::TStdDb>("DB_Lv", dir_ + "/", boq::kLvDbType, 70);
    db_->SetModifiedById("BENCH");
    if (db_->DbCreate() != 0) std::abort();
    bidders_ = std::make_unique<TdmBieter>(*db_, nullptr, lv_, converter_);
    for (int b = 0; b < kBidders; ++b) {
      const t_Bieter_DB_VERSION_3100 bidder =
          bidders_->AddBidder("Bieter " + std::to_string(b), "");
      std::unique_ptr<TdmAngebot> bid = bidders_->OpenBid(bidder);
      for (int i = 0; i < lv_.Count(); ++i) {
        if (!lv_[i].IsGroup()) bid->SetUnitPrice(i, 10.0 + (i * 7 + b * 13) % 97);
      }
      bid->Recalculate();
      bid->Save();
    }
  }
  ~Fixture() {
    bidders_.reset();
    db_.reset();
    data::TStdDbDatas::Instance().ReleaseEmpty();
    std::filesystem::remove_all(dir_);
  }
  TdmBieter& Bidders() { return *bidders_; }
  const boq::TLVPosList& Lv() const { return lv_; }

 private:
  static std::string MakeDir() {
    const char* base = std::getenv("KORVAN_BENCH_DIR");
    std::string pattern = std::string(base != nullptr ? base : "/tmp") + "/compare_bench.XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr) std::abort();
    return pattern;
  }

  std::string dir_;
  boq::TLVPosList lv_;
  boq::TAvaUiValueConverter converter_{boq::TCurrencyList(), boq::TValueConverterSettings()};
  std::unique_ptr<data::TStdDb> db_;
  std::unique_ptr<TdmBieter> bidders_;
};

void BM_Compare(benchmark::State& state) {
  Fixture fixture;
  for (auto _ : state) {
    TPriceComparison comparison(fixture.Bidders(), fixture.Lv(), {TReferenceMode::kIdeal, 10.0});
    comparison.Run(fixture.Bidders().Bidders());
    benchmark::DoNotOptimize(comparison.Ideal().totals.checked);
  }
  state.counters["items"] = kGroups * kItemsPerGroup;
  state.counters["bidders"] = kBidders;
}
BENCHMARK(BM_Compare)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace korvan::award
