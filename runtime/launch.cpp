// The launch sequence that every host runs when its application has started, and the end of
// the application. The log lines are part of the runtime's contract: they come in the same
// order on every host.
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

void runTerminationSequence() {
  logLine("applicationWillTerminate: Called.");
  TerminationHandler();
}

}  // namespace rvtools
