#pragma once

#include <string>

// What the window remembers between runs, in the user's configuration of the
// installation ("Q_User.ini").
namespace korvan::desktop {

// The price comparison's threshold in percent: prices further from the mean are marked;
// 0 marks none (also when the configuration cannot be read).
double ComparisonMaxDeviation(const std::string& data_dir);

// Remembers the threshold; false with a German `error` when the file cannot be written.
bool RememberComparisonMaxDeviation(const std::string& data_dir, double percent,
                                    std::string* error);

}  // namespace korvan::desktop
