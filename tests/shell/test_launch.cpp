// SPDX-License-Identifier: MIT
// Whole desktop programs on the offscreen platform: the launch in order, and quits while the
// program thread still runs ending the process at once with status 0, a hundred times.
#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QProcess>
#include <QProcessEnvironment>
#include <string>

namespace {

// Starts a probe on the offscreen platform.
void startProbe(QProcess& probe, const char* path) {
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("QT_QPA_PLATFORM", "offscreen");
  probe.setProcessEnvironment(environment);
  probe.start(path, {});
}

// What the ended probe wrote to standard error (a sanitizer's report among it), for a failure.
std::string errorsOf(QProcess& probe) {
  return "\nstandard error:\n" + probe.readAllStandardError().toStdString();
}

TEST(LaunchTest, LaunchesInOrderAndQuitsWithoutWaitingForTheProgram) {
  QProcess probe;
  QElapsedTimer timer;
  timer.start();
  startProbe(probe, RVTOOLS_QUIT_PROBE);
  ASSERT_TRUE(probe.waitForFinished(10000));
  // The program asks to quit after 200 ms; start-up and the exit take the rest.
  EXPECT_LT(timer.elapsed(), 3000);
  const std::string errors = errorsOf(probe);
  EXPECT_EQ(probe.exitStatus(), QProcess::NormalExit) << errors;
  EXPECT_EQ(probe.exitCode(), 0) << errors;
  EXPECT_EQ(QString::fromUtf8(probe.readAllStandardOutput()),
            "applicationWillFinishLaunching: Called.\n"
            "applicationDidFinishLaunching: Start.\n"
            "initrvtools: Start.\n"
            "initrvtools: End.\n"
            "Program: Start.\n"
            "applicationDidFinishLaunching: End.\n"
            "applicationWillTerminate: Called.\n");
}

// The problem with one run of the drawing probe, or an empty text when it ended as it should.
QString problemOfOneRun() {
  QProcess probe;
  startProbe(probe, RVTOOLS_DRAWING_QUIT_PROBE);
  if (!probe.waitForFinished(30000)) {
    probe.kill();
    probe.waitForFinished();
    return QString::fromStdString("did not end" + errorsOf(probe));
  }
  const QString log = QString::fromUtf8(probe.readAllStandardOutput());
  const QString errors = QString::fromStdString(errorsOf(probe));
  if (probe.exitStatus() != QProcess::NormalExit) return "crashed:\n" + log + errors;
  if (probe.exitCode() != 0) {
    return "ended with status " + QString::number(probe.exitCode()) + errors;
  }
  if (!log.contains("Probe: printed and drawn.\n") ||
      !log.contains("applicationWillTerminate: Called.\n")) {
    return "quit before the program drew, or without terminating:\n" + log + errors;
  }
  return {};
}

TEST(RepeatedQuitTest, HundredQuitsWhileTheProgramDrawsEndWithStatusZero) {
  constexpr int Runs = 100;
  int clean = 0;
  for (int run = 0; run < Runs; ++run) {
    const QString problem = problemOfOneRun();
    if (problem.isEmpty()) {
      ++clean;
    } else {
      ADD_FAILURE() << "run " << run << ": " << problem.toStdString();
    }
  }
  EXPECT_EQ(clean, Runs);
}

}  // namespace
