// The main of a desktop program: the application object, the delegate with all windows, the Qt
// host, the launch sequence inside the event loop, and an exit that does not wait for the
// program thread.
#include <QApplication>
#include <QTimer>
#include <cstdio>
#include <cstdlib>

#include "rvtools/shell.hpp"
#include "shell/app_delegate.hpp"
#include "shell/qt_host.hpp"

namespace rvtools {

int run(int argc, char** argv, std::function<void()> entry) {
  // The application, the delegate and the host live until the process ends.
  static int argumentCount = argc;
  static auto* application = new QApplication(argumentCount, argv);
  application->setQuitOnLastWindowClosed(false);
  static auto* delegate = new shell::AppDelegate(std::move(entry));
  static auto* qtHost = new shell::QtHost(*delegate);
  setHost(*qtHost);
  QObject::connect(application, &QCoreApplication::aboutToQuit, delegate,
                   [] { delegate->applicationWillTerminate(); });
  delegate->applicationWillFinishLaunching();
  QTimer::singleShot(0, delegate, [] { delegate->applicationDidFinishLaunching(); });
  const int status = application->exec();
  // The program thread may still run and may be waiting for the GUI thread; the process ends
  // here without joining it and without destroying anything it could still touch.
  std::fflush(stdout);
  std::quick_exit(status);
}

}  // namespace rvtools
