// A whole desktop program: the launch logs its steps in order, and a quit while the program
// thread still runs (and waits for the GUI thread) ends the process at once with status 0.
#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QProcess>
#include <QProcessEnvironment>

namespace {

TEST(LaunchTest, LaunchesInOrderAndQuitsWithoutWaitingForTheProgram) {
  QProcess probe;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("QT_QPA_PLATFORM", "offscreen");
  probe.setProcessEnvironment(environment);
  QElapsedTimer timer;
  timer.start();
  probe.start(RVTOOLS_QUIT_PROBE, {});
  ASSERT_TRUE(probe.waitForFinished(10000));
  // The program asks to quit after 200 ms; start-up and the exit take the rest.
  EXPECT_LT(timer.elapsed(), 3000);
  EXPECT_EQ(probe.exitStatus(), QProcess::NormalExit);
  EXPECT_EQ(probe.exitCode(), 0);
  const QString log = QString::fromUtf8(probe.readAllStandardOutput());
  EXPECT_EQ(log,
            "applicationWillFinishLaunching: Called.\n"
            "applicationDidFinishLaunching: Start.\n"
            "initrvtools: Start.\n"
            "initrvtools: End.\n"
            "Program: Start.\n"
            "applicationDidFinishLaunching: End.\n"
            "applicationWillTerminate: Called.\n");
}

}  // namespace
