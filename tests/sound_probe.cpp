// SPDX-License-Identifier: MIT
// A program for the tests of the sound on the headless host: it sounds what its arguments say,
// in order, and waits until all has played. The steps:
//   tone <frequency> <milliseconds>   t_Sound
//   play <music>                      t_Play
//   quit                              t_QuitProgram at once, whatever still plays
// Run it with --sound <path> to have the sound in a WAV file.
#include <string>
#include <string_view>
#include <vector>

#include "rvtools/headless.hpp"
#include "rvtools/rvtools.hpp"

namespace {

void sound(const std::vector<std::string>& steps) {
  using namespace rvtools;
  for (std::size_t at = 0; at < steps.size(); ++at) {
    if (steps[at] == "tone" && at + 2 < steps.size()) {
      t_Sound(std::stoll(steps[at + 1]), std::stoll(steps[at + 2]));
      at += 2;
    } else if (steps[at] == "play" && at + 1 < steps.size()) {
      t_Play(steps[++at]);
    } else if (steps[at] == "quit") {
      t_QuitProgram(NoWindow);
    }
  }
  t_SoundWait();
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> steps;
  for (int i = 1; i < argc; ++i) {
    const std::string_view argument = argv[i];
    if (argument.starts_with("--")) {
      ++i;
      continue;
    }
    steps.emplace_back(argument);
  }
  return rvtools::runHeadless(argc, argv, [steps] { sound(steps); });
}
