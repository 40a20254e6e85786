#pragma once

#include <string>

#include "boq/model/lv_pos_list.h"
#include "boq/text/rich_text.h"
#include "boq/text/rtf_writer.h"
#include "exchange/gaeb_export/gaeb_export.h"

namespace korvan::exchange::testing {

// Export options with a fixed creation date and time, so that two files compare equal.
inline TGaebExportOptions FixedDateOptions(TGaebPhase phase,
                                           TGAEBFormat format = TGAEBFormat::gfXML330) {
  TGaebExportOptions options;
  options.phase = phase;
  options.format = format;
  options.date = 20261123;
  options.time = "10:00:00";
  return options;
}

// Builds LVs in memory as the export reads them: entries with ids, parents, OZs, texts,
// quantities and the four kinds of unit price.
class TestLv {
 public:
  explicit TestLv(const std::string& mask = "11.PPPP", const std::string& name = "Rohbau") {
    boq::t_Lv_DB_VERSION_3100 lv{};
    lv.FId = 7;
    lv.Name.Set(name);
    lv.PosMaske.Set(mask);
    lv.EPGenauigkeit = 2;
    lv.Datum = 20261120;
    source_.lv = boq::TLVPosList(lv);
    source_.project_name = "Schule Nord";
    source_.project_label = "Neubau Schule Nord";
  }

  boq::TLvPos& Add(char kind, int32_t parent, const std::string& oz, const std::string& text,
                   double quantity = 0.0, double unit_price = 0.0) {
    boq::TLvPos entry = boq::NewLvPos(kind);
    const int32_t id = ++last_id_;
    entry.Struktur.IdBgBeschr = id;
    entry.LvBgBeschr.ID = id;
    entry.Struktur.ZuBg = parent;
    entry.SetOz(oz);
    entry.ShortText = text;
    entry.LongText = boq::WriteRtf(boq::RichTextFromPlain("Langtext " + text));
    if (entry.IsQuantityItem()) entry.Unit = "m2";
    entry.LvBeschr.FMenge = quantity;
    entry.LvBeschr.ReMenge = quantity * 2;
    entry.LvBeschr.SchaetzEP.Betrag = unit_price;
    entry.LvBeschr.VergabeEP.Betrag = unit_price + 1;
    entry.LvBeschr.AngebotsEP.Betrag = unit_price + 2;
    source_.lv.Add(std::move(entry));
    return source_.lv[source_.lv.Count() - 1];
  }

  int32_t LastId() const { return last_id_; }
  TGaebExportSource& Source() { return source_; }

 private:
  TGaebExportSource source_;
  int32_t last_id_ = 0;
};

// One LV with something of every kind the export writes: two sections, items with and
// without quantity, a lump-sum free-quantity item, a lead description with three
// sub-descriptions, a change-order item, a note, a contingency item, an omitted item and
// a leading text.
inline TGaebExportSource RichLv() {
  TestLv lv;
  lv.Add('T', data::kRootParentId, "", "Vorbemerkungen");
  const int32_t first = lv.Add('B', data::kRootParentId, "01", "Erdarbeiten").LvBgBeschr.ID;
  lv.Add('H', first, "01.0010", "Hinweis zum Aushub");
  lv.Add('P', first, "01.0010", "Oberboden abtragen", 120.5, 4.25);
  boq::TLvPos& lump = lv.Add('P', first, "01.0020", "Baustelleneinrichtung", 1, 2500);
  lump.LvBeschr.LumpSumItem = 1;
  lump.LvBeschr.KzFrMenge = 1;
  lump.Unit = "psch";
  lv.Add('L', first, "01.0030", "Aushub Baugrube", 300, 12.8);
  for (int sub = 1; sub <= 3; ++sub) {
    lv.Add('U', first, "01.0030", "Bodenklasse " + std::to_string(sub + 2), 100);
  }
  lv.Add('P', first, "01.0040", "Verbau", 0.00005, 99);
  const int32_t second = lv.Add('B', data::kRootParentId, "02", "Beton").LvBgBeschr.ID;
  boq::TLvPos& supplement = lv.Add('P', second, "02.0010", "Nachtrag Stahl", 2, 1500);
  supplement.LvBgBeschr.KzNachtrag = 1;
  supplement.LvBgBeschr.NachtrStatus = '3';
  boq::TLvPos& contingency = lv.Add('P', second, "02.0020", "Bedarfsposition Pumpe", 5, 80);
  contingency.LvBgBeschr.Bedarf = 'E';
  lv.Add('P', second, "02.0030", "entfällt", 10, 10).LvBgBeschr.KzEntfaellt = 1;
  TGaebExportSource source = lv.Source();
  boq::t_Lv_DB_VERSION_3100 header = source.lv.FLv();
  header.CONo = 2;
  source.lv.RefreshLvProperties(header);
  return source;
}

}  // namespace korvan::exchange::testing
