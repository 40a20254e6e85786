#pragma once

// The LV of the GAEB benchmarks: 10 000 items in 100 sections, each item with a long text
// of three paragraphs (bold run, text complement, table row; about 700 bytes of RTF).
#include <cstdio>
#include <string>

#include "boq/model/lv_pos_list.h"
#include "boq/text/rich_text.h"
#include "boq/text/rtf_writer.h"
#include "exchange/gaeb_export/gaeb_export.h"

namespace korvan::exchange::bench {

inline constexpr int kSections = 100;
inline constexpr int kItemsPerSection = 100;

inline std::string LongText(int item) {
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

inline TGaebExportSource BigLv() {
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

}  // namespace korvan::exchange::bench
