#include "boq/model/lv_references.h"

#include <algorithm>
#include <unordered_map>

#include "boq/model/lv_editing.h"
#include "data/records/null_values.h"

namespace korvan::boq {
namespace {

// Records written without a reference hold the null id or, from older writers, 0.
bool NoReference(int32_t id) {
  return id == 0 || id == data::kNullId;
}

std::string Named(const TLvPos& entry) {
  const std::string oz = entry.LvBgBeschr.OZ.Get();
  return oz.empty() ? "der Eintrag ohne OZ" : "\"" + oz + "\"";
}

}  // namespace

std::string ReferenceProblem(const TLVPosList& list, int from, int to) {
  const TLvPos* source = list.GetLvPosItems(from);
  const TLvPos* target = list.GetLvPosItems(to);
  if (source == nullptr || target == nullptr) return "den Eintrag gibt es nicht";
  if (from == to) return Named(*source) + " kann sich nicht auf sich selbst beziehen";
  if (!source->IsQuantityItem())
    return Named(*source) + " ist keine Position (P, L, U) und kann kein Zuschlag sein";
  if (!target->IsQuantityItem())
    return Named(*target) + " ist keine Position (P, L, U) und kann keine Zuschlagsbasis sein";
  if (target->LvBeschr.ZuschArt == 'S')
    return Named(*target) + " ist selbst eine Zuschlagsposition (S)";
  // New entries name each other by temporary ids below zero until they are saved.
  if (target->Struktur.IdBgBeschr == 0 || target->Struktur.IdBgBeschr == data::kNullId)
    return Named(*target) + " hat noch keine Nummer (erst speichern)";
  return {};
}

std::string SetReference(TLVPosList& list, int from, int to) {
  if (std::string problem = ReferenceProblem(list, from, to); !problem.empty()) return problem;
  TLvPos& source = list[from];
  source.LvBeschr.ZuschArt = 'S';
  source.RefIDs = {TLvPosRef{kQuantityRefType, list[to].Struktur.IdBgBeschr}};
  CountReferences(list);
  list.Changed(from, TModelChangedReason::crReferral);
  return {};
}

void ClearReferences(TLVPosList& list, int from) {
  TLvPos* source = list.GetLvPosItems(from);
  if (source == nullptr || source->RefIDs.empty()) return;
  source->RefIDs.clear();
  CountReferences(list);
  list.Changed(from, TModelChangedReason::crReferral);
}

void CountReferences(TLVPosList& list) {
  std::unordered_map<int32_t, int> counts;
  for (const TLvPos& entry : list.Entries()) {
    for (const TLvPosRef& ref : entry.RefIDs) ++counts[ref.Id];
  }
  for (TLvPos& entry : list.Entries()) {
    const int32_t id = entry.Struktur.IdBgBeschr;  // a copy: the packed field is not aligned
    const auto found = counts.find(id);
    entry.RefCount = found == counts.end() ? 0 : found->second;
  }
}

std::string RemovalProblem(const TLVPosList& list, int index) {
  const int end = SubtreeEnd(list, index);
  for (int i = 0; i < list.Count(); ++i) {
    if (i >= index && i < end) continue;  // goes with them
    for (const TLvPosRef& ref : list[i].RefIDs) {
      const int target = list.SearchItemIndexByIdLvBgBeschr(ref.Id);
      if (target >= index && target < end) {
        return Named(list[target]) + " ist Zuschlagsbasis der Zuschlagsposition " + Named(list[i]) +
               "; erst deren Bezug entfernen";
      }
    }
  }
  return {};
}

void ReferencesFromRecord(TLvPos& entry) {
  entry.RefIDs.clear();
  if (entry.IsGroup() || NoReference(entry.LvBeschr.IdBezug)) return;
  entry.RefIDs.push_back({kQuantityRefType, entry.LvBeschr.IdBezug});
}

void ReferencesIntoRecord(TLvPos& entry) {
  if (entry.IsGroup()) return;
  if (!entry.RefIDs.empty()) {
    entry.LvBeschr.IdBezug = entry.RefIDs.front().Id;
  } else if (!NoReference(entry.LvBeschr.IdBezug)) {
    entry.LvBeschr.IdBezug = data::kNullId;
  }
}

}  // namespace korvan::boq
