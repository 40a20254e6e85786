#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "data/component/c_data.h"

namespace korvan::data::testing {

// A data module stand-in: its records are key -> values, its row list an ordered key
// list; every event the component raises is written to `log` as "<event> <args>".
class FakeModule {
 public:
  explicit FakeModule(TCData& cdata) : cdata_(cdata) { Attach(); }

  void Add(const std::string& key, TStringList values) {
    records[key] = std::move(values);
    order.push_back(key);
  }
  std::vector<std::string> RowKeys() const {
    std::vector<std::string> keys;
    for (const TCDataRow& row : cdata_.Rows().All()) keys.push_back(row.Key);
    return keys;
  }
  std::vector<std::string> Take() {
    std::vector<std::string> taken = std::move(log);
    log.clear();
    return taken;
  }

  std::map<std::string, TStringList> records;
  std::vector<std::string> order;  // the stored row list
  std::vector<std::string> log;
  bool refuse_put = false;
  bool refuse_delete = false;
  bool cancel_before = false;
  int next_key = 100;
  // Told of every record change (nullptr: no record before / after), as a table tells
  // the undo journal.
  std::function<void(const std::string& key, const TStringList* before, const TStringList* after)>
      on_record_change;

 private:
  void Store(const std::string& key, const TStringList& values) {
    auto it = records.find(key);
    const std::optional<TStringList> before =
        it == records.end() ? std::nullopt : std::optional<TStringList>(it->second);
    records[key] = values;
    if (on_record_change) on_record_change(key, before ? &*before : nullptr, &values);
  }
  void Erase(const std::string& key) {
    auto it = records.find(key);
    if (it == records.end()) return;
    const TStringList before = it->second;
    records.erase(it);
    if (on_record_change) on_record_change(key, &before, nullptr);
  }

  static std::string Join(const TStringList& values) {
    std::string text;
    for (const std::string& v : values) text += (text.empty() ? "" : "|") + v;
    return text;
  }

  void Attach() {
    TCDataEvents& e = cdata_.Events;
    e.C_OnStrukturLesen = [this](TCData&, std::vector<TCDataRow>& rows, int& rmax, bool) {
      log.push_back("StrukturLesen");
      for (const std::string& key : order) rows.push_back(TCDataRow{.Key = key, .ZArt = 'P'});
      rmax = static_cast<int>(rows.size());
    };
    e.C_OnStrukturSchreiben = [this](TCData& sender, bool) {
      log.push_back("StrukturSchreiben");
      order.clear();
      for (const TCDataRow& row : sender.Rows().All()) order.push_back(row.Key);
    };
    e.C_OnGetDaten = [this](TCData& sender, int z, TStringList& t, bool&, char&, char&) {
      auto it = records.find(sender.GetKey(z));
      if (it != records.end()) t = it->second;
    };
    e.C_OnDatenLesen = [this](TCData& sender, int z, TStringList& t) {
      auto it = records.find(sender.GetKey(z));
      if (it != records.end()) t = it->second;
    };
    e.C_OnDatenSchreiben = [this](TCData& sender, int z, TStringList& t) {
      log.push_back("DatenSchreiben " + std::to_string(z) + " " + sender.GetKey(z));
      Store(sender.GetKey(z), t);
    };
    e.C_OnInitData = [this](TCData&, int z, TStringList& t) {
      log.push_back("InitData " + std::to_string(z));
      t[0] = "neu";
    };
    e.C_OnPutDaten = [this](TCData& sender, int z, TStringList& t, const TStringList& old, char,
                            bool& ok) {
      log.push_back("PutDaten " + std::to_string(z) + " " + Join(t) + " <- " + Join(old));
      if (refuse_put) {
        ok = false;
        return;
      }
      std::string key = sender.GetKey(z);
      if (key.empty()) {
        key = "K" + std::to_string(next_key++);
        sender.SetKey(z, key);
      }
      Store(key, t);
    };
    e.C_OnDeleteZeile = [this](TCData&, int z, const std::string& key, TOnDeleteMode mode,
                               bool& ok) {
      log.push_back("DeleteZeile " + std::to_string(z) + " " + key +
                    (mode == TOnDeleteMode::dmBlind ? " blind" : ""));
      if (refuse_delete) {
        ok = false;
        return;
      }
      Erase(key);
      std::erase(order, key);
    };
    e.C_OnCopyData = [this](TCData&, int z, int q) {
      log.push_back("CopyData " + std::to_string(z) + "<-" + std::to_string(q));
    };
    e.C_OnBeforeListOP = [this](TCData&, int z, int mode, bool& doListOP) {
      log.push_back("Before " + std::to_string(mode) + " " + std::to_string(z));
      if (cancel_before) doListOP = false;
    };
    e.C_OnAfterListOP = [this](TCData&, int z, int mode, bool& done) {
      log.push_back("After " + std::to_string(mode) + " " + std::to_string(z) +
                    (done ? "" : " failed"));
    };
    e.C_OnDoSummen = [this](TCData&) { log.push_back("DoSummen"); };
    e.C_OnAktualDaten = [this](TCData&, int z) {
      log.push_back("AktualDaten " + std::to_string(z));
    };
    e.C_OnEventInfo = [this](TCData&, const TEventInfo& info) {
      if (auto* d = dynamic_cast<const TDeleteRowEventInfo*>(&info)) {
        log.push_back("Info delete " + std::to_string(d->Row) + " " + d->Key);
      } else if (auto* l = dynamic_cast<const TListOpEventInfo*>(&info)) {
        log.push_back("Info op " + std::to_string(l->Mode) + " " + std::to_string(l->Row) + " " +
                      std::to_string(l->Count));
      } else if (auto* p = dynamic_cast<const TClipPasteEventInfo*>(&info)) {
        log.push_back("Info paste " + std::to_string(p->SourceId) + " " + Join(p->Keys));
      }
    };
    e.C_OnClipCopy = [this](const std::string& path, int id, TStringList& keys,
                            TClipPasteType& mode) {
      log.push_back("ClipCopy " + path + " " + std::to_string(id) + " " + Join(keys) +
                    (mode == TClipPasteType::CLIP_CUT ? " cut" : " copy"));
    };
    e.C_OnClipPaste = [this](const std::string& path, int id, const TStringList& keys,
                             TClipPasteType& mode) {
      log.push_back("ClipPaste " + path + " " + std::to_string(id) + " " + Join(keys) +
                    (mode == TClipPasteType::CLIP_PASTE_SPECIAL ? " special" : ""));
      // Pasted copies go before the current row, with new keys.
      size_t at = std::min(order.size(), static_cast<size_t>(cdata_.CurrentRecordIndex() - 1));
      for (const std::string& key : keys) {
        std::string copy = "K" + std::to_string(next_key++);
        auto source = records.find(key);
        Store(copy, source == records.end() ? TStringList{} : source->second);
        order.insert(order.begin() + static_cast<long>(at++), copy);
      }
    };
  }

  TCData& cdata_;
};

// Records what the component tells the undo journal.
class FakeJournal : public UserActionScope {
 public:
  void StartUndoRedo(int c_id, int operation, const std::string& caption) override {
    log.push_back("start " + std::to_string(c_id) + " " + std::to_string(operation) + " " +
                  caption);
  }
  void EndUndoRedo() override { log.push_back("end"); }
  void RowMoved(int, int source_row, int target_row) override {
    log.push_back("moved " + std::to_string(source_row) + "->" + std::to_string(target_row));
  }
  void RowDeleted(int, const std::string& key, int source_row) override {
    log.push_back("deleted " + key + " " + std::to_string(source_row));
  }
  void RowInserted(int, const std::string& key, int target_row) override {
    log.push_back("inserted " + key + " " + std::to_string(target_row));
  }
  std::vector<std::string> log;
};

}  // namespace korvan::data::testing
