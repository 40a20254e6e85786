#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "boq/units/value_converter.h"
#include "calc/endsum/ends_node.h"
#include "calc/tables/kalk_records.h"

// The calculation over the end sum (method E): the direct costs of an LV or group per
// cost type, the site overheads (BGK: the total of an allocation LV), the general business
// costs (AGK) and risk and profit (W&G) as percentages of the production costs, and their
// allocation onto the cost types; what is not allocated elsewhere falls to the wage.
namespace korvan::calc {

// Cost-type indexes of the end sum beyond the seven of the result order: the derived sums
// of materials (material, RSV, other costs) and of equipment (AVR, operating supplies).
inline constexpr int kEndsStoffe = 9;
inline constexpr int kEndsGeraete = 10;

class TEndsumme {
 public:
  // `record`: the LV's end-sum settings; amounts are rounded by `converter` as the project
  // rounds them (2 decimals, nothing when the project does not round).
  TEndsumme(const t_KpENDS& record, const boq::TAvaUiValueConverter& converter);

  // Takes the figures of a group (or of the LV: the root's id) from the tree; false when
  // the tree has no such group.
  bool ValidateBg(const TEndsNode& root, int32_t group);
  // The site overheads: the total of the allocation LV.
  void SetBgk(double amount) { bgk_ = amount; }
  // The allocation amounts from the percentages.
  void Validate();

  double GetEK(int index) const;
  // The allocation percentage of a cost type; the wage has none (0). The weighted means 9
  // and 10 have no value while their direct costs are 0.
  std::optional<double> GetUmlPrz(int index) const;
  // Sets the allocation percentage of 0, 2, 3, 4, 5 or 6; other indexes change nothing.
  void SetUmlPrz(int index, double percent);
  double GetUmlAbs(int index) const;

  double MengeLohn() const { return menge_lohn_; }
  double Festpreis() const { return festpreis_; }
  double Bgk() const { return bgk_; }
  double EktEl() const;
  double Fl() const { return ekt_[6]; }
  double HkEl() const;
  double Hk() const;
  double AgkEl() const;
  double AgkFl() const;
  double Agk() const;
  double WugEl() const;
  double WugFl() const;
  double Wug() const;
  double BgkAgk() const;
  double Gesamtumlage() const;
  double Angebotssumme() const;
  // What remains of the total allocation for the wage.
  double UmlageLohn() const;

  // Amounts typed instead of percentages: each sets its percentage (0 when its base is 0).
  void SetAgkEl(double amount);
  void SetAgkFl(double amount);
  void SetWugEl(double amount);
  void SetWugFl(double amount);
  // A total W&G: own work takes what subcontracts do not.
  void SetWug(double total);
  // A target end sum: only the W&G on own work moves; fixed prices count into the sum.
  void SetAngebotssumme(double target);

  // A percentage of the settings by its offset in t_KpENDS.
  void SetPercent(std::size_t offset, double percent);
  // Chooses the allocation LV (kNullId: none); its total comes through SetBgk.
  void SetIdUmlLv(int32_t lv) { record_.IDUMLLV = lv; }
  const t_KpENDS& Record() const { return record_; }

 private:
  double R(double value) const;

  t_KpENDS record_;
  const boq::TAvaUiValueConverter& converter_;
  TCostAmounts ekt_{};
  TCostAmounts abs_uml_{};
  double menge_lohn_ = 0.0;
  double festpreis_ = 0.0;
  double bgk_ = 0.0;
};

// The surcharges (result order) by which the items of an LV calculated over the end sum
// are priced: the allocation percentages of the settings, and for the wage what remains of
// the total allocation over the wage's direct costs (0 without wage costs). Calculated so,
// the items' prices add up to the end sum but for rounding.
TCostAmounts EndSumSurcharges(const TEndsumme& ends);

// The percentages of the end-sum record by name (offset into t_KpENDS): the record's
// doubles are not aligned, so they are read and written by offset.
double EndsPercent(const t_KpENDS& record, std::size_t offset);
void SetEndsPercent(t_KpENDS& record, std::size_t offset, double percent);

}  // namespace korvan::calc
