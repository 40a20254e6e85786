#include "data/component/std_data_module.h"

namespace korvan::data {

TSTDdataModule::TSTDdataModule(int c_id, std::string daten_name) {
  CData1.FC_ID = c_id;
  CData1.FDatenName = std::move(daten_name);
  ConnectEvents();
}

bool TSTDdataModule::Loaded() {
  return CData1.ListOperation(0, loInit) == TListOpResult::Done;
}

// Reading a row for export, copying and block files gives what the list shows.
void TSTDdataModule::CData1C_OnDatenLesen(TCData& sender, int z, TStringList& t) {
  bool mark = false;
  char button = ' ';
  char zart = ' ';
  CData1C_OnGetDaten(sender, z, t, mark, button, zart);
}

void TSTDdataModule::ConnectEvents() {
  TCDataEvents& e = CData1.Events;
  e.C_OnGetStruktur = [this](TCData& s, int z, TStringList& t) { CData1C_OnGetStruktur(s, z, t); };
  e.C_OnStrukturLesen = [this](TCData& s, std::vector<TCDataRow>& rows, int& rmax, bool v) {
    CData1C_OnStrukturLesen(s, rows, rmax, v);
  };
  e.C_OnStrukturSchreiben = [this](TCData& s, bool v) { CData1C_OnStrukturSchreiben(s, v); };
  e.C_OnGetDaten = [this](TCData& s, int z, TStringList& t, bool& m, char& b, char& k) {
    CData1C_OnGetDaten(s, z, t, m, b, k);
  };
  e.C_OnPutDaten = [this](TCData& s, int z, TStringList& t, const TStringList& old, char k,
                          bool& ok) { CData1C_OnPutDaten(s, z, t, old, k, ok); };
  e.C_OnInitData = [this](TCData& s, int z, TStringList& t) { CData1C_OnInitData(s, z, t); };
  e.C_OnDatenLesen = [this](TCData& s, int z, TStringList& t) { CData1C_OnDatenLesen(s, z, t); };
  e.C_OnDatenSchreiben = [this](TCData& s, int z, TStringList& t) {
    CData1C_OnDatenSchreiben(s, z, t);
  };
  e.C_OnDeleteZeile = [this](TCData& s, int z, const std::string& key, TOnDeleteMode mode,
                             bool& ok) { CData1C_OnDeleteZeile(s, z, key, mode, ok); };
  e.C_OnCopyData = [this](TCData& s, int z, int q) { CData1C_OnCopyData(s, z, q); };
  e.C_OnDoSummen = [this](TCData& s) { CData1C_OnDoSummen(s); };
}

}  // namespace korvan::data
