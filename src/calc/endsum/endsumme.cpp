#include "calc/endsum/endsumme.h"

#include <cstddef>
#include <cstring>

namespace korvan::calc {
namespace {

// The allocation percentage of a cost type (result order); the wage has none.
std::optional<std::size_t> UmlageOffset(int index) {
  switch (index) {
    case 0:
      return offsetof(t_KpENDS, UMLPRZMAT);
    case 2:
      return offsetof(t_KpENDS, UMLPRZRSV);
    case 3:
      return offsetof(t_KpENDS, UMLPRZAVR);
    case 4:
      return offsetof(t_KpENDS, UMLPRZBS);
    case 5:
      return offsetof(t_KpENDS, UMLPRZSOKO);
    case 6:
      return offsetof(t_KpENDS, UMLPRZFL);
    default:
      return std::nullopt;
  }
}

// The cost types that carry an allocation percentage of their own.
constexpr int kAllocated[] = {0, 2, 5, 3, 4, 6};

double PercentOf(double amount, double base) {
  return base == 0.0 ? 0.0 : amount / base * 100.0;
}

}  // namespace

double EndsPercent(const t_KpENDS& record, std::size_t offset) {
  double percent = 0.0;
  std::memcpy(&percent, reinterpret_cast<const char*>(&record) + offset, sizeof percent);
  return percent;
}

void SetEndsPercent(t_KpENDS& record, std::size_t offset, double percent) {
  std::memcpy(reinterpret_cast<char*>(&record) + offset, &percent, sizeof percent);
}

TEndsumme::TEndsumme(const t_KpENDS& record, const boq::TAvaUiValueConverter& converter)
    : record_(record), converter_(converter) {}

double TEndsumme::R(double value) const {
  return converter_.RoundCurrencyValueEx(value, 2, false);
}

bool TEndsumme::ValidateBg(const TEndsNode& root, int32_t group) {
  const TEndsNode* node = root.Find(group);
  if (node == nullptr) return false;
  for (int k = 0; k < kResultCostTypes; ++k) ekt_[static_cast<size_t>(k)] = node->GetEkt(k);
  menge_lohn_ = node->MengeLohn();
  festpreis_ = node->Festpreis();
  return true;
}

void TEndsumme::Validate() {
  abs_uml_ = {};
  for (int k : kAllocated) {
    abs_uml_[static_cast<size_t>(k)] = *GetUmlPrz(k) / 100.0 * ekt_[static_cast<size_t>(k)];
  }
}

double TEndsumme::GetEK(int index) const {
  if (index == kEndsStoffe) return ekt_[0] + ekt_[2] + ekt_[5];
  if (index == kEndsGeraete) return ekt_[3] + ekt_[4];
  if (index < 0 || index >= kResultCostTypes) return 0.0;
  return ekt_[static_cast<size_t>(index)];
}

std::optional<double> TEndsumme::GetUmlPrz(int index) const {
  const auto weighted = [&](std::initializer_list<int> parts) -> std::optional<double> {
    double base = 0.0;
    double sum = 0.0;
    for (int k : parts) {
      base += ekt_[static_cast<size_t>(k)];
      sum += *GetUmlPrz(k) * ekt_[static_cast<size_t>(k)];
    }
    if (base == 0.0) return std::nullopt;
    return sum / base;
  };
  if (index == kEndsStoffe) return weighted({0, 2, 5});
  if (index == kEndsGeraete) return weighted({3, 4});
  const std::optional<std::size_t> offset = UmlageOffset(index);
  return offset ? EndsPercent(record_, *offset) : 0.0;
}

void TEndsumme::SetUmlPrz(int index, double percent) {
  if (const std::optional<std::size_t> offset = UmlageOffset(index)) {
    SetEndsPercent(record_, *offset, percent);
  }
}

double TEndsumme::GetUmlAbs(int index) const {
  if (index == kEndsStoffe) return abs_uml_[0] + abs_uml_[2] + abs_uml_[5];
  if (index == kEndsGeraete) return abs_uml_[3] + abs_uml_[4];
  if (index < 0 || index >= kResultCostTypes) return 0.0;
  return abs_uml_[static_cast<size_t>(index)];
}

double TEndsumme::EktEl() const {
  return ekt_[0] + ekt_[2] + ekt_[5] + ekt_[3] + ekt_[4] + ekt_[1];
}
double TEndsumme::HkEl() const {
  return R(EktEl()) + R(bgk_);
}
double TEndsumme::Hk() const {
  return R(Fl()) + R(HkEl());
}
double TEndsumme::AgkEl() const {
  return record_.ENDSAGKPRZEL / 100.0 * R(HkEl());
}
double TEndsumme::AgkFl() const {
  return record_.ENDSAGKPRZFL / 100.0 * R(Fl());
}
double TEndsumme::Agk() const {
  return R(AgkFl()) + R(AgkEl());
}
double TEndsumme::WugEl() const {
  return record_.ENDSWUGPRZEL / 100.0 * R(HkEl());
}
double TEndsumme::WugFl() const {
  return record_.ENDSWUGPRZFL / 100.0 * R(Fl());
}
double TEndsumme::Wug() const {
  return R(WugFl()) + R(WugEl());
}
double TEndsumme::BgkAgk() const {
  return R(bgk_) + R(Agk());
}
double TEndsumme::Gesamtumlage() const {
  return R(bgk_) + R(Agk()) + R(Wug());
}
double TEndsumme::Angebotssumme() const {
  return R(Hk()) + R(Agk()) + R(Wug());
}

double TEndsumme::UmlageLohn() const {
  double allocated = 0.0;
  for (int k : kAllocated) allocated += abs_uml_[static_cast<size_t>(k)];
  return Gesamtumlage() - allocated;
}

void TEndsumme::SetPercent(std::size_t offset, double percent) {
  SetEndsPercent(record_, offset, percent);
}

void TEndsumme::SetAgkEl(double amount) {
  record_.ENDSAGKPRZEL = PercentOf(amount, HkEl());
}
void TEndsumme::SetAgkFl(double amount) {
  record_.ENDSAGKPRZFL = PercentOf(amount, Fl());
}
void TEndsumme::SetWugEl(double amount) {
  record_.ENDSWUGPRZEL = PercentOf(amount, HkEl());
}
void TEndsumme::SetWugFl(double amount) {
  record_.ENDSWUGPRZFL = PercentOf(amount, Fl());
}
void TEndsumme::SetWug(double total) {
  SetWugEl(total - WugFl());
}

TCostAmounts EndSumSurcharges(const TEndsumme& ends) {
  TCostAmounts surcharges{};
  for (int k : kAllocated) surcharges[static_cast<size_t>(k)] = *ends.GetUmlPrz(k);
  surcharges[1] = PercentOf(ends.UmlageLohn(), ends.GetEK(1));
  return surcharges;
}

void TEndsumme::SetAngebotssumme(double target) {
  SetWug(target - Hk() - Agk() - festpreis_);
}

}  // namespace korvan::calc
