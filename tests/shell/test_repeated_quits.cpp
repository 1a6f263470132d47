// Starting and quitting the desktop application a hundred times while its program thread prints
// and draws: every run ends by itself, without a crash, with status 0.
#include <gtest/gtest.h>

#include <QProcess>
#include <QProcessEnvironment>

namespace {

constexpr int Runs = 100;
constexpr int RunTimeoutMilliseconds = 30000;

// The problem with one run, or an empty text when it ended as it should.
QString problemOfOneRun() {
  QProcess probe;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("QT_QPA_PLATFORM", "offscreen");
  probe.setProcessEnvironment(environment);
  probe.start(RVTOOLS_DRAWING_QUIT_PROBE, {});
  if (!probe.waitForFinished(RunTimeoutMilliseconds)) {
    probe.kill();
    probe.waitForFinished();
    return "did not end";
  }
  const QString log = QString::fromUtf8(probe.readAllStandardOutput());
  if (probe.exitStatus() != QProcess::NormalExit) return "crashed:\n" + log;
  if (probe.exitCode() != 0) return "ended with status " + QString::number(probe.exitCode());
  if (!log.contains("Probe: printed and drawn.\n") ||
      !log.contains("applicationWillTerminate: Called.\n")) {
    return "quit before the program drew, or without terminating:\n" + log;
  }
  return {};
}

TEST(RepeatedQuitTest, HundredQuitsWhileTheProgramDrawsEndWithStatusZero) {
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
