#pragma once

#include <iosfwd>
#include <string>

namespace korvan::desktop {

class MainWindow;

// Writes a picture of each main view of `window` as a PNG file into `dir` (created when
// missing): "hauptfenster.png" with the LV open, "bieter.png" (the bidders by rank) and
// "preisspiegel.png" (the price comparison with rank list and chart), "angebot.png" (the
// first bidder's bid lines) and the award wizard's
// pages "vergabe1.png" to "vergabe3.png" (the award run on a copy of the installation).
// false, with the reason on `err`, when a file cannot be written.
bool WriteScreenshots(MainWindow& window, const std::string& dir, std::ostream& err);

}  // namespace korvan::desktop
