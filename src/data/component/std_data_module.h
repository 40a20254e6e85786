#pragma once

#include <string>
#include <vector>

#include "data/component/c_data.h"

namespace korvan::data {

// The base of all data modules: owns the data component "CData1" and connects its
// events to the module's handlers `CData1C_On<Event>`. A module overrides the handlers
// it needs; the others leave the arguments as they are.
//
// The application customisation and the shell's module handler belong to the program
// shell and are attached there, not here.
class TSTDdataModule {
 public:
  explicit TSTDdataModule(int c_id, std::string daten_name = {});
  virtual ~TSTDdataModule() = default;
  TSTDdataModule(const TSTDdataModule&) = delete;
  TSTDdataModule& operator=(const TSTDdataModule&) = delete;

  // Takes the module's column structure and loads the row list; false with the
  // component's LastError() when the rows cannot be read.
  virtual bool Loaded();
  // Raised when the program's licence limits change; modules re-check what they offer.
  virtual void TriggerAppLimitationsChanged() {}

  TCData CData1;

 protected:
  virtual void CData1C_OnGetStruktur(TCData&, int, TStringList&) {}
  virtual void CData1C_OnStrukturLesen(TCData&, std::vector<TCDataRow>&, int&, bool) {}
  virtual void CData1C_OnStrukturSchreiben(TCData&, bool) {}
  virtual void CData1C_OnGetDaten(TCData&, int, TStringList&, bool&, char&, char&) {}
  virtual void CData1C_OnPutDaten(TCData&, int, TStringList&, const TStringList&, char, bool&) {}
  virtual void CData1C_OnInitData(TCData&, int, TStringList&) {}
  virtual void CData1C_OnDatenLesen(TCData& sender, int z, TStringList& t);
  virtual void CData1C_OnDatenSchreiben(TCData&, int, TStringList&) {}
  virtual void CData1C_OnDeleteZeile(TCData&, int, const std::string&, TOnDeleteMode, bool&) {}
  virtual void CData1C_OnCopyData(TCData&, int, int) {}
  virtual void CData1C_OnDoSummen(TCData&) {}

 private:
  void ConnectEvents();
};

}  // namespace korvan::data
