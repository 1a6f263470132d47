#include <rvtools/rvtools.hpp>
#include <rvtools/shell.hpp>

void hello() {
  using namespace rvtools;
  t_InitWindow(0, 24, 40, 12, 16, "MenloBold 16x32.font");
  t_WindowFront(0);
  t_Print(0, "Hello, rvtools!\rPress a key.");
  t_GetKey(0);
  t_QuitProgram(0);
}

int main(int argc, char** argv) { return rvtools::run(argc, argv, hello); }
