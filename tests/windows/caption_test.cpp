// A captioned window: the frame and caption bar are the window manager's own non-client area.
// Client coordinates, children and the handler's input start inside the frame; the close box
// works as a push button and asks the handler to close.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "recorder.hpp"

namespace korvex::test {
namespace {

class Closable final : public Recorder {
  public:
    using Recorder::Recorder;
    void OnClose() override { ++closes; }
    int closes = 0;
};

// The window covers x 100..299, y 100..249; its client area x 103..296, y 122..246.
class CaptionedWindow : public ::testing::Test {
  protected:
    void Press(POINT p) {
        driver.Advance(1000);  // no double clicks between presses
        driver.MouseMove(p);
        driver.MouseDown(kButtonLeft, 0);
    }
    bool ClosePressed() {
        TITLEBARINFO info;
        EXPECT_TRUE(win.GetTitleBarInfo(frame, &info));
        return info.closePressed;
    }

    sim::SimPlatform platform{{400, 300}};
    Windows& win = platform.windows();
    Driver& driver = platform.driver();
    std::vector<std::string> log;
    Closable handler{"F", log};
    HWND frame = Shown(win, {}, {100, 100, 300, 250}, &handler, {.caption = true});
};

// Where the frame and caption bar lie; the about box's tests click on them through the form
// layer, and the gallery's about.png pins how they look.
TEST_F(CaptionedWindow, ClientAreaAndTitleBarGeometry) {
    RECT r;
    ASSERT_TRUE(win.GetClientRect(frame, &r));
    EXPECT_EQ(r, (RECT{0, 0, 194, 125}));
    ASSERT_TRUE(win.AdjustWindowRect(&r, {.caption = true}));
    EXPECT_EQ(r, (RECT{-3, -22, 197, 128}));
    TITLEBARINFO info;
    ASSERT_TRUE(win.GetTitleBarInfo(frame, &info));
    EXPECT_EQ(info.rcTitleBar, (RECT{103, 103, 297, 121}));
    EXPECT_EQ(info.rcClose, (RECT{279, 105, 295, 119}));

    // The handler sees input only in its client area, in client coordinates.
    Click(driver, {110, 130});
    Click(driver, {150, 110});  // caption bar
    Click(driver, {101, 200});  // frame
    EXPECT_EQ(log, (std::vector<std::string>{"F move 0 (7,8)", "F down 1 (7,8)", "F up 1 (7,8)"}));
}

TEST_F(CaptionedWindow, TheCloseBoxClosesOnlyWhenReleasedOverIt) {
    Press({287, 112});
    EXPECT_TRUE(ClosePressed());
    driver.MouseMove({200, 200});
    EXPECT_FALSE(ClosePressed()) << "pops up when the pointer leaves it";
    driver.MouseUp(kButtonLeft, 0);
    EXPECT_TRUE(log.empty()) << "the drag over the client area was the close box's";
    driver.Advance(1000);
    Click(driver, {287, 112}, kButtonRight);
    EXPECT_EQ(handler.closes, 0) << "only the left button";
    Press({287, 112});
    driver.MouseUp(kButtonLeft, 0);
    EXPECT_EQ(handler.closes, 1);
    EXPECT_TRUE(win.IsWindowVisible(frame)) << "closing is the handler's decision";
    // A press that loses the capture ends without closing.
    Press({287, 112});
    win.ShowWindow(frame, false);
    win.ShowWindow(frame, true);
    EXPECT_FALSE(ClosePressed());
    driver.MouseUp(kButtonLeft, 0);
    EXPECT_EQ(handler.closes, 1);
}

// A child that reaches past the client area is cut off by it: the caption bar stays whole, and
// input there stays the frame's.
TEST_F(CaptionedWindow, ChildrenAreClippedToTheClientArea) {
    Solid client(platform.gdi(), RGB(0, 255, 0)), red(platform.gdi(), RGB(255, 0, 0));
    const HWND face = Shown(win, {}, {100, 100, 300, 250}, &client, {.caption = true});
    const HWND child = Shown(win, face, {-20, -20, 20, 20}, &red, {.child = true});
    const std::vector<std::uint32_t> px = driver.ComposeWindow(face);
    ASSERT_EQ(px.size(), 200u * 150u);
    const auto at = [&](int x, int y) { return px[static_cast<std::size_t>(y * 200 + x)]; };
    EXPECT_EQ(at(3, 20), ToPixel(platform.gdi().GetSysColor(COLOR_ACTIVECAPTION)));
    EXPECT_EQ(at(3, 22), 0xFF0000u) << "the child's visible part, from the client corner";
    EXPECT_EQ(at(22, 41), 0xFF0000u);
    EXPECT_EQ(at(23, 42), 0x00FF00u) << "the handler's client area";
    EXPECT_EQ(win.WindowFromPoint({105, 105}), face);
    EXPECT_EQ(win.WindowFromPoint({105, 125}), child);
}

}  // namespace
}  // namespace korvex::test
