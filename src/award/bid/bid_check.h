#pragma once

#include <array>
#include <vector>

namespace korvan::award {

// What the bid check (AngebotsCheck) found, per check the lines (LV line indexes).
struct TBidCheck {
  std::vector<int> without_price;      // 0 "Positionen ohne Angebotspreis"
  std::vector<int> without_quantity;   // 1 "Positionen ohne Menge"
  std::vector<int> other_quantity;     // 2 "Positionen mit vom LV abweichender Menge"
  std::vector<int> components_differ;  // EP-Anteile <> EP (arithmetic)
  std::vector<int> total_differs;      // Menge * EP <> GP (arithmetic)
  // 3 "Positionen mit fehlenden Bieterrextergänzungen": lines whose long text has gaps for
  // the bidder that the bid leaves empty; only known when the bid's texts were read.
  std::vector<int> without_bidder_texts;
  bool bidder_texts_checked = false;
  bool Found() const {
    return !without_price.empty() || !without_quantity.empty() || !other_quantity.empty() ||
           !components_differ.empty() || !total_differs.empty() || !without_bidder_texts.empty();
  }
};

}  // namespace korvan::award
