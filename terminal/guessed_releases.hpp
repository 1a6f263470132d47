// SPDX-License-Identifier: MIT
// Internal to the terminal host: when keys go up on a terminal that does not say so. Such a
// terminal sends a key held down as its press and then, after the keyboard's repeat delay, one
// more press every repeat interval. So a key counts as held for a while after its first press,
// longer than the delays before repeating that desktops use (500 ms in GNOME and Windows,
// 600 ms in KDE, 660 ms the X server's own), and for a shorter while after each repeat, longer
// than a repeat interval at 10 per second or faster with room for a remote link's jitter. A
// press of a key that still counts as held is its repeat.
#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <vector>

#include "rvtools/types.hpp"

namespace rvtools::terminal {

class GuessedReleases {
 public:
  using Clock = std::chrono::steady_clock;

  static constexpr std::chrono::milliseconds AfterFirstPress{700};
  static constexpr std::chrono::milliseconds AfterRepeat{150};

  // The key went down, or repeated, at `now`.
  void press(Int keyNumber, Clock::time_point now);
  // The keys whose time has run out by `now`; they no longer count as held.
  std::vector<Int> takeReleased(Clock::time_point now);
  // When the next held key's time runs out; nothing while no key counts as held.
  std::optional<Clock::time_point> nextRelease() const;

 private:
  std::map<Int, Clock::time_point> releases_;  // by key number: when it goes up
};

}  // namespace rvtools::terminal
