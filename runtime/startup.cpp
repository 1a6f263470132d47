// SPDX-License-Identifier: MIT
// Start-up and the program thread: the character tables, the program thread with its large
// stack, callbacks on worker threads, the sounds, and the thread registry behind
// CurrentThreadNumber.
#include <pthread.h>
#include <stdlib.h>
#include <time.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <mutex>
#include <thread>

#include "runtime/log.hpp"
#include "runtime/threads.hpp"
#include "rvtools/platform.hpp"
#include "rvtools/runtime.hpp"

namespace rvtools {
namespace {

std::atomic<Int> nextThreadNumber{1};
std::atomic<int> programThreadCount{0};
thread_local Int threadNumber = 0;
thread_local std::string threadName;

std::mutex& programEntryMutex() {
  static auto* mutex = new std::mutex;
  return *mutex;
}

Int registeredThreadNumber() {
  if (threadNumber == 0) threadNumber = nextThreadNumber.fetch_add(1);
  return threadNumber;
}

bool inRanges(int c, std::initializer_list<std::pair<int, int>> ranges) {
  for (auto [low, high] : ranges) {
    if (c >= low && c <= high) return true;
  }
  return false;
}

// Counts a program thread from its start to its end, also when it ends by unwinding.
struct ProgramThreadScope {
  ProgramThreadScope() { programThreadCount.fetch_add(1); }
  ~ProgramThreadScope() { programThreadCount.fetch_sub(1); }
  ProgramThreadScope(const ProgramThreadScope&) = delete;
  ProgramThreadScope& operator=(const ProgramThreadScope&) = delete;
};

// The body of a program thread: takes the pending entry, lets the next start go ahead and
// runs the program.
void* startprogramthread(void*) {
  registeredThreadNumber();
  ProgramThreadScope scope;
  std::function<void()> entry;
  {
    std::lock_guard lock(programEntryMutex());
    entry = ProgramEntry;
  }
  ProgramStartPending = false;
  entry();
  return nullptr;
}

void createProgramThread() {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, static_cast<size_t>(ProgramStackSize.load()));
  pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
  pthread_t thread;
  if (pthread_create(&thread, &attributes, startprogramthread, nullptr) != 0) {
    logLine("startprocess: Program thread could not be started.");
    ProgramStartPending = false;
  }
  pthread_attr_destroy(&attributes);
}

}  // namespace

std::string currentThreadDescription() {
  char address[32];
  std::snprintf(address, sizeof address, "%p", reinterpret_cast<void*>(pthread_self()));
  return "<Thread: " + std::string(address) +
         ">{number = " + std::to_string(registeredThreadNumber()) + ", name = " + threadName + "}";
}

void nameCurrentThread(const std::string& name) {
  threadName = name;
  pthread_setname_np(pthread_self(), name.substr(0, 15).c_str());
}

int runningProgramThreads() {
  return programThreadCount.load();
}

// A sleep that a signal interrupts goes on for the time left; a duration the system refuses
// is no sleep at all.
void sleepFor(Int seconds, Int nanoseconds) {
  timespec duration{static_cast<time_t>(seconds), static_cast<long>(nanoseconds)};
  while (nanosleep(&duration, &duration) != 0 && errno == EINTR) {
  }
}

Int CurrentThreadNumber() {
  const std::string description = currentThreadDescription();
  const Int marker = TextPosition(description, "number = ", 1);
  if (marker == 0) return 0;
  const Int comma = TextPosition(description, ",", marker);
  if (comma == 0) return 0;
  const Int first = marker + 9;
  const std::vector<UInt8> digits = TextToBytes(TextMiddle(description, first, comma - first));
  return BytesToInteger(digits);
}

void initrvtools() {
  logLine("initrvtools: Start.");
  UpperCaseTable.assign(256, 0);
  for (int c = 0; c < 256; ++c) {
    const bool lower = inRanges(c, {{97, 122}, {224, 228}, {231, 246}, {249, 252}});
    UpperCaseTable[c] = static_cast<UInt8>(lower ? c - 32 : c);
  }
  LowerCaseTable.assign(256, 0);
  // The lower-case pass writes into UpperCaseTable, so that table ends up holding the
  // lower-case mapping and LowerCaseTable stays zero. Nothing reads either table, and the
  // behaviour is kept as the runtime has always had it.
  for (int c = 0; c < 256; ++c) {
    const bool upper = inRanges(c, {{65, 90}, {192, 196}, {199, 214}, {217, 220}});
    UpperCaseTable[c] = static_cast<UInt8>(upper ? c + 32 : c);
  }
  DigitValues.assign(256, -1);
  HexDigits.clear();
  for (int d = 0; d < 16; ++d)
    HexDigits.push_back(static_cast<UInt8>(d <= 9 ? '0' + d : 'A' + d - 10));
  for (int d = 0; d < 16; ++d) {
    const int digit = HexDigits[d];
    DigitValues[digit] = d;
    DigitValues[digit >= 'A' ? digit + 32 : digit] = d;
  }
  srandom(static_cast<unsigned>(time(nullptr) & 0x7FFFFFFF));
  ToolsInitialized = true;
  logLine("initrvtools: End.");
}

void startprocess(std::function<void()> entry, Int stackSize) {
  while (ProgramStartPending) sleepFor(0, 1000000);
  ProgramStartPending = true;
  ProgramStackSize = stackSize;
  {
    std::lock_guard lock(programEntryMutex());
    ProgramEntry = std::move(entry);
  }
  sleepFor(0, 10000000);
  Host& platform = host();
  if (platform.isInterfaceThread()) {
    createProgramThread();
  } else {
    platform.runOnInterfaceThread(createProgramThread);
  }
}

void startprocessasync(std::function<void()> entry) {
  std::thread(std::move(entry)).detach();
}

void t_Beep() {
  if (!host().playSound(Sound::Beep)) host().systemBeep();
}

void t_PlayClick() {
  if (!host().playSound(Sound::Click)) host().systemBeep();
}

}  // namespace rvtools
