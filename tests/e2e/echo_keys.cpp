// SPDX-License-Identifier: MIT
// A desktop program for the end-to-end tests: a window of 40 x 10 characters that prints the Value
// of each key t_GetKey takes and logs it as "Key: <value>", until the application is quit.
#include <string>
#include <vector>

#include "rvtools/rvtools.hpp"
#include "rvtools/shell.hpp"

namespace {

void echoKeys() {
  rvtools::t_InitWindow(0, 24, 40, 10, 16, "MenloRegular 16x32.font");
  rvtools::t_WindowFront(0);
  rvtools::t_Print(0, "Keys:");
  rvtools::t_Log("Echo: Ready.");
  for (;;) {
    const std::vector<char32_t> key = rvtools::scalarsOf(rvtools::t_GetKey(0));
    const std::string value = std::to_string(key.empty() ? 0 : key.front());
    rvtools::t_Print(0, " " + value);
    rvtools::t_Log("Key: " + value);
  }
}

}  // namespace

int main(int argc, char** argv) {
  return rvtools::run(argc, argv, echoKeys);
}
