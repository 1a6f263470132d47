// SPDX-License-Identifier: MIT
// The launch sequence that every host runs when its application has started, and the end of
// the application. The log lines are part of the runtime's contract: they come in the same
// order on every host.
#include <mutex>
#include <vector>

#include "runtime/log.hpp"
#include "runtime/threads.hpp"
#include "rvtools/platform.hpp"
#include "rvtools/runtime.hpp"

namespace rvtools {

void runLaunchSequence(std::function<void()> program, Int titleBarDelta) {
  logLine("applicationWillFinishLaunching: Called.");
  if (CurrentThreadNumber() == 1) nameCurrentThread("AppDelegate");
  logLine("applicationDidFinishLaunching: Start.");
  initrvtools();
  TitleBarDelta = titleBarDelta;
  logLine("Program: Start.");
  startprocess(std::move(program), ProgramThreadStackSize);
  logLine("applicationDidFinishLaunching: End.");
  LaunchFinished = true;
}

namespace {

std::mutex& terminationMutex() {
  static auto* mutex = new std::mutex;
  return *mutex;
}

std::vector<std::function<void()>>& terminationSteps() {
  static auto* steps = new std::vector<std::function<void()>>;
  return *steps;
}

}  // namespace

void runTerminationSequence() {
  logLine("applicationWillTerminate: Called.");
  TerminationHandler();
  std::vector<std::function<void()>> steps;
  {
    std::lock_guard lock(terminationMutex());
    steps = terminationSteps();
  }
  for (const std::function<void()>& step : steps) step();
}

void addTerminationStep(std::function<void()> step) {
  std::lock_guard lock(terminationMutex());
  terminationSteps().push_back(std::move(step));
}

}  // namespace rvtools
