// SPDX-License-Identifier: MIT
// The main of a program: it chooses its host. "--headless" runs it without a screen,
// "--terminal" in the terminal, and so does the absence of a display when standard input and
// output are a terminal; otherwise the desktop: the application object, the delegate with all
// windows, the Qt host, the launch sequence inside the event loop, and an exit that does not
// wait for the program thread. Without a display and without a terminal it says so and ends
// before Qt is started.
#include <unistd.h>

#include <QApplication>
#include <QTimer>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include "rvtools/headless.hpp"
#include "rvtools/host.hpp"
#include "rvtools/shell.hpp"
#include "rvtools/terminal.hpp"
#include "shell/app_delegate.hpp"
#include "shell/qt_host.hpp"

namespace rvtools {
namespace {

// Qt finds its display through these; without any of them it could only abort.
bool displayIsNamed() {
  for (const char* variable : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
    const char* value = std::getenv(variable);
    if (value != nullptr && *value != '\0') return true;
  }
  return false;
}

bool terminalIsAttached() {
  return isatty(STDIN_FILENO) && isatty(STDOUT_FILENO);
}

bool hasOption(int argc, char** argv, std::string_view option) {
  for (int i = 1; i < argc; ++i) {
    if (argv[i] == option) return true;
  }
  return false;
}

// The name of the bundle <Name>.app around the executable, or the executable's own name when
// it lies in no bundle.
std::string programName(const char* invokedAs) {
  const std::filesystem::path bundle = bundleAroundExecutable();
  if (bundle.extension() == ".app") return bundle.stem().string();
  return std::filesystem::path(invokedAs != nullptr ? invokedAs : "").filename().string();
}

}  // namespace

int run(int argc, char** argv, std::function<void()> entry) {
  if (hasOption(argc, argv, "--headless")) return runHeadless(argc, argv, std::move(entry));
  if (hasOption(argc, argv, "--terminal") || (!displayIsNamed() && terminalIsAttached())) {
    return runTerminal(argc, argv, std::move(entry));
  }
  if (!displayIsNamed()) {
    std::fprintf(stderr, "%s needs a graphical display: set DISPLAY or run it under Xvfb.\n",
                 programName(argc > 0 ? argv[0] : nullptr).c_str());
    return 1;
  }
  // The application, the delegate and the host live until the process ends.
  static int argumentCount = argc;
  static auto* application = new QApplication(argumentCount, argv);
  application->setQuitOnLastWindowClosed(false);
  static auto* delegate = new shell::AppDelegate(std::move(entry));
  static auto* qtHost = new shell::QtHost(*delegate);
  setHost(*qtHost);
  QObject::connect(application, &QCoreApplication::aboutToQuit, delegate,
                   [] { delegate->applicationWillTerminate(); });
  QTimer::singleShot(0, delegate, [] { delegate->applicationDidFinishLaunching(); });
  const int status = application->exec();
  // The program thread may still run and may be waiting for the GUI thread; the process ends
  // here without joining it and without destroying anything it could still touch.
  std::fflush(stdout);
  std::quick_exit(status);
}

}  // namespace rvtools
