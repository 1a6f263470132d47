// Mouse events: click positions that are no number or lie beyond the Int range still give a
// position before or beyond the drawing area, and a trace line.
#include <limits>
#include <optional>
#include <tuple>

#include "common.hpp"

namespace rvtools::testing {
namespace {

class MouseTest : public RuntimeTest {
 protected:
  void SetUp() override {
    RuntimeTest::SetUp();
    initTextWindow(0, 24, 4, 2);  // 64 x 64 pixels without a border
  }
};

TEST_F(MouseTest, PositionsBeyondTheIntRangeLieOutsideTheDrawingArea) {
  constexpr double Infinity = std::numeric_limits<double>::infinity();
  constexpr Int Smallest = std::numeric_limits<Int>::min(),
                Largest = std::numeric_limits<Int>::max();
  t_MouseEventHandler(0, {}, std::numeric_limits<double>::quiet_NaN(), 1e300);
  t_MouseEventHandler(0, {}, -Infinity, -1e300);
  const std::optional<t_Event> first = t_TakeMouseEvent(), second = t_TakeMouseEvent();
  ASSERT_TRUE(first && second);
  EXPECT_EQ(std::make_tuple(first->WindowX, first->WindowY, first->ClickX, first->ClickY),
            std::make_tuple(Int{0}, Largest, Int{0}, Int{-1}));
  EXPECT_EQ(std::make_tuple(second->WindowX, second->WindowY, second->ClickX, second->ClickY),
            std::make_tuple(Smallest, Smallest, Int{-1}, Int{-2}));
  EXPECT_EQ(logLines(),
            (std::vector<std::string>{"t_MouseEventHandler: Graphic #0 window, X = 0, Y = -1",
                                      "t_MouseEventHandler: Calling program mouse handler "
                                      "asynchronously.",
                                      "t_MouseEventHandler: Graphic #0 window, X = -1, Y = -2",
                                      "t_MouseEventHandler: Calling program mouse handler "
                                      "asynchronously."}));
}

}  // namespace
}  // namespace rvtools::testing
