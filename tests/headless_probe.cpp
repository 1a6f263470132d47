// SPDX-License-Identifier: MIT
// A program for the tests of runHeadless: one window of 16 x 4 characters that reads a line,
// then a key, then waits for a click and a menu choice, and prints what it got. With --numbers
// it prints eight random numbers instead.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <string>
#include <string_view>
#include <thread>

#include "rvtools/headless.hpp"
#include "rvtools/rvtools.hpp"

namespace {

std::atomic<int> clicks{0};
std::atomic<int> choices{0};

void waitFor(const std::atomic<int>& counter) {
  while (counter == 0) std::this_thread::sleep_for(std::chrono::milliseconds(5));
}

void program() {
  using namespace rvtools;
  t_SetMouseHandler([] { ++clicks; });
  t_SetMenuHandler([] { ++choices; });
  t_InitWindow(0, 8, 16, 4, 4, "MenloRegular 16x32.font");
  t_WindowFront(0);
  t_Print(0, "\x0C");
  const std::string line = t_InputForm(0, ">", "ab", false, 4, 8);
  const std::string key = t_GetKey(0);
  t_Print(0, line + " " + std::to_string(scalarsOf(key).front()));
  waitFor(clicks);
  const t_Event click = *t_TakeMouseEvent();
  t_Print(0, "\r" + std::to_string(click.ClickX) + "," + std::to_string(click.ClickY));
  waitFor(choices);
  t_Print(0, " " + t_TakeMenuEvent()->ItemTitle.substr(0, 4));
  t_QuitProgram(0);
}

void numbers() {
  using namespace rvtools;
  t_InitWindow(0, 8, 16, 4, 4, "MenloRegular 16x32.font");
  t_Print(0, "\x0C");
  for (int i = 0; i < 8; ++i) t_Print(0, std::to_string(t_Random(999)) + " ");
  t_QuitProgram(0);
}

}  // namespace

int main(int argc, char** argv) {
  const bool numbersWanted = std::any_of(argv + 1, argv + argc, [](const char* argument) {
    return argument == std::string_view("--numbers");
  });
  return rvtools::runHeadless(argc, argv, numbersWanted ? numbers : program);
}
