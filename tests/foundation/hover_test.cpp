#include <gtest/gtest.h>

#include "foundation/hover.hpp"
#include "platform/sim/sim_platform.hpp"

using namespace korvex;
using platform::HWND;
using platform::POINT;

namespace {

class HoverTest : public ::testing::Test {
  protected:
    HoverTest() {
        // A 100 x 40 window at (50, 60): pixels x 50..149, y 60..99.
        window = platform.windows().CreateWindow({}, {50, 60, 150, 100}, {}, nullptr);
        platform.windows().ShowWindow(window, true);
    }
    bool InsideAt(POINT p) {
        platform.windows().SetCursorPos(p.x, p.y);
        return foundation::IsMouseInto(platform.windows(), window);
    }
    platform::sim::SimPlatform platform;
    HWND window;
};

TEST_F(HoverTest, EdgesCountAsInsideOnAllFourSides) {
    EXPECT_TRUE(InsideAt({50, 60}));
    EXPECT_TRUE(InsideAt({150, 100}));  // one past the last pixel, column and row
    EXPECT_TRUE(InsideAt({150, 60}));
    EXPECT_TRUE(InsideAt({50, 100}));
    EXPECT_FALSE(InsideAt({151, 80}));
    EXPECT_FALSE(InsideAt({49, 80}));
    EXPECT_FALSE(InsideAt({100, 101}));
    EXPECT_FALSE(InsideAt({100, 59}));
}

TEST_F(HoverTest, OverlappingWindowDoesNotChangeTheAnswer) {
    HWND cover = platform.windows().CreateWindow({}, {0, 0, 300, 300}, {}, nullptr);
    platform.windows().ShowWindow(cover, true);
    ASSERT_EQ(platform.windows().WindowFromPoint({100, 80}), cover);
    EXPECT_TRUE(InsideAt({100, 80}));
}

TEST_F(HoverTest, PollReportsOnlyMovements) {
    foundation::HoverPoll poll;
    auto& windows = platform.windows();
    // The pointer starts at (0, 0), which is also where the poll starts: nothing to report.
    EXPECT_EQ(poll.Tick(windows, window), std::nullopt);
    windows.SetCursorPos(100, 80);
    EXPECT_EQ(poll.Tick(windows, window), std::optional<bool>(true));
    EXPECT_EQ(poll.Tick(windows, window), std::nullopt) << "a resting pointer changes nothing";
    // The window slides away under the resting pointer: not noticed until the pointer moves.
    windows.MoveWindow(window, {400, 400, 500, 440});
    EXPECT_EQ(poll.Tick(windows, window), std::nullopt);
    windows.SetCursorPos(101, 80);
    EXPECT_EQ(poll.Tick(windows, window), std::optional<bool>(false));
    windows.SetCursorPos(102, 80);
    EXPECT_EQ(poll.Tick(windows, window), std::optional<bool>(false))
        << "re-applied on every movement";
}

}  // namespace
