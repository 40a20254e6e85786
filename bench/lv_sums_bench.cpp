// The sum run over an LV of 50 000 entries in memory (groups over three levels, items with
// quantities and prices in every column, some groups with discounts): the time of one run,
// item calculation included; loading is not measured.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

#include "boq/model/lv_pos.h"
#include "boq/model/lv_pos_list.h"
#include "boq/units/value_converter.h"
#include "calc/sums/boq_ctgy_calc_sum.h"

namespace korvan::calc {
namespace {

constexpr int kGroupsPerLevel = 10;  // 10 + 100 + 1000 groups
constexpr int kItemsPerGroup = 49;   // 1110 groups and 49 000 items: 50 110 entries

std::string Part(int value, int width) {
  char text[8];
  std::snprintf(text, sizeof text, "%0*d", width, value);
  return text;
}

boq::TLVPosList BigLv() {
  boq::t_Lv_DB_VERSION_3100 lv{};
  lv.PosMaske.Set("11.22.33.PPPP");
  lv.Zeilenart = '9';
  lv.NachlassProz = 3;
  boq::TLVPosList list(lv);
  int32_t id = 0;
  const auto add = [&](char kind, const std::string& oz) -> boq::TLvPos& {
    boq::TLvPos entry = boq::NewLvPos(kind);
    entry.SetOz(oz);
    entry.Struktur.IdBgBeschr = entry.LvBgBeschr.ID = ++id;
    list.Add(std::move(entry));
    return list[list.Count() - 1];
  };
  for (int a = 1; a <= kGroupsPerLevel; ++a) {
    add('B', Part(a, 2));
    for (int b = 1; b <= kGroupsPerLevel; ++b) {
      add('B', Part(a, 2) + "." + Part(b, 2)).LvBgBeschr.NachlassProz = b % 3 == 0 ? 2.5 : 0;
      for (int c = 1; c <= kGroupsPerLevel; ++c) {
        const std::string group = Part(a, 2) + "." + Part(b, 2) + "." + Part(c, 2);
        add('B', group);
        for (int i = 1; i <= kItemsPerGroup; ++i) {
          boq::TLvPos& item = add('P', group + "." + Part(10 * i, 4));
          item.LvBeschr.FMenge = 1.5 + i;
          for (data::t_WaeBetrag* ep : {&item.LvBeschr.SchaetzEP, &item.LvBeschr.EinzelkostenEP,
                                        &item.LvBeschr.AngebotsEP, &item.LvBeschr.VergabeEP}) {
            ep->Betrag = 10.25 + a + b + c + i;
          }
        }
      }
    }
  }
  return list;
}

void BM_SumRun(benchmark::State& state) {
  boq::TLVPosList list = BigLv();
  const boq::TAvaUiValueConverter converter(boq::TCurrencyList(), {});
  for (auto _ : state) {
    const TSumRunResult result = TBoqCtgyCalcSum(list, converter).Calculate();
    benchmark::DoNotOptimize(result);
  }
  state.counters["entries"] = list.Count();
  state.counters["lv_awarded"] = list.FLv().VergabeSum.Betrag;
}
BENCHMARK(BM_SumRun)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace korvan::calc
