// SPDX-License-Identifier: MIT
// The releases of keys on a terminal that reports none, guessed from the times of their presses.
#include "terminal/guessed_releases.hpp"

#include <algorithm>

namespace rvtools::terminal {

void GuessedReleases::press(Int keyNumber, Clock::time_point now) {
  const auto held = releases_.find(keyNumber);
  const bool repeat = held != releases_.end() && held->second > now;
  releases_[keyNumber] = now + (repeat ? AfterRepeat : AfterFirstPress);
}

std::vector<Int> GuessedReleases::takeReleased(Clock::time_point now) {
  std::vector<Int> released;
  for (auto key = releases_.begin(); key != releases_.end();) {
    if (key->second > now) {
      ++key;
      continue;
    }
    released.push_back(key->first);
    key = releases_.erase(key);
  }
  return released;
}

std::optional<GuessedReleases::Clock::time_point> GuessedReleases::nextRelease() const {
  if (releases_.empty()) return std::nullopt;
  return std::min_element(releases_.begin(), releases_.end(),
                          [](const auto& a, const auto& b) { return a.second < b.second; })
      ->second;
}

}  // namespace rvtools::terminal
