// SPDX-License-Identifier: MIT
// A program for the launch test: it asks the application to quit after 200 ms and keeps its
// program thread busy with calls that wait for the GUI thread.
#include <QCoreApplication>
#include <QMetaObject>
#include <chrono>
#include <thread>

#include "rvtools/rvtools.hpp"
#include "rvtools/shell.hpp"

int main(int argc, char** argv) {
  return rvtools::run(argc, argv, [] {
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    QMetaObject::invokeMethod(QCoreApplication::instance(), &QCoreApplication::quit,
                              Qt::QueuedConnection);
    for (;;) rvtools::t_WindowInfo(0);
  });
}
