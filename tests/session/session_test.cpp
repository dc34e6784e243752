// A control built from the constituent objects, on the virtual screen, driven by scripts: what a
// user of korvex run sees.

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "forms/label.hpp"
#include "forms/surface_control.hpp"
#include "forms/timer.hpp"
#include "driver/script_runner.hpp"
#include "platform/png.hpp"
#include "platform/sim/sim_platform.hpp"

using namespace korvex;
using namespace korvex::host;

namespace {

// A white pad with a red label over its left half and a timer; it forwards its input as events.
class Pad final : public forms::SurfaceControl {
public:
    enum : std::int32_t { kMouseDown = 1, kMouseMove, kMouseUp, kClick, kKeyPress, kGotFocus, kLostFocus, kTick };

    explicit Pad(HostContext& context)
        : SurfaceControl(context), lbl(UserControl), timer(UserControl.Platform()) {
        UserControl.BackColor(0x00FFFFFF);
        lbl.Caption("Pad");
        lbl.BackStyle(1);
        lbl.BackColor(0x000000FF);
        Forward(UserControl.events);
        Forward(lbl.events);
        UserControl.events.KeyPress = [this](std::int16_t& KeyAscii) { RaiseEvent(kKeyPress, KeyAscii); };
        UserControl.events.GotFocus = [this] { RaiseEvent(kGotFocus); };
        UserControl.events.LostFocus = [this] { RaiseEvent(kLostFocus); };
        timer.Tick = [this] { RaiseEvent(kTick); };
        // Where the window stands while the control is still being built.
        bornIn = UserControl.Platform().windows().GetParent(UserControl.hWnd());
    }

    static const ClassInfo& Class() {
        static const ClassInfo info =
            ClassBuilder<Pad>("Pad", "Korvex_Tools.Pad")
                .Property(KORVEX_PROPERTY(TickInterval))
                .Method("Round", {}, [](Pad& p, std::span<Variant>) { p.Round(); })
                .Event("MouseDown", {Arg("Button"), Arg("Shift"), Arg("x"), Arg("y")})
                .Event("MouseMove", {Arg("Button"), Arg("Shift"), Arg("x"), Arg("y")})
                .Event("MouseUp", {Arg("Button"), Arg("Shift"), Arg("x"), Arg("y")})
                .Event("Click")
                .Event("KeyPress", {Arg("KeyAscii")})
                .Event("GotFocus")
                .Event("LostFocus")
                .Event("Tick")
                .Build();
        return info;
    }
    const ClassInfo& TypeInfo() const override { return Class(); }

    void UserControl_Resize() override { lbl.Move(0, 0, UserControl.ScaleWidth() / 2, UserControl.ScaleHeight()); }

    [[nodiscard]] std::int32_t TickInterval() const { return timer.Interval(); }
    void TickInterval(std::int32_t New_TickInterval) {
        timer.Interval(New_TickInterval);
        timer.Enabled(New_TickInterval > 0);
    }

    platform::HWND bornIn;

    // Cuts the window to an ellipse: the corners belong to what lies beneath.
    void Round() {
        platform::Platform& p = UserControl.Platform();
        platform::RECT r;
        p.windows().GetClientRect(UserControl.hWnd(), &r);
        p.windows().SetWindowRgn(UserControl.hWnd(), p.gdi().CreateEllipticRgn(0, 0, r.right, r.bottom));
    }

private:
    void Forward(forms::MouseEvents& e) {
        ForwardMouse(e, kMouseDown, kMouseMove, kMouseUp);
        e.Click = [this] { RaiseEvent(kClick); };
    }

    forms::Label lbl;
    forms::Timer timer;
};

// The form is 320 x 240 pixels at the screen's corner. P1 covers x 20..119, y 20..69 (its label
// x 20..69); P2, added later and so on top, covers x 80..179 (its label x 80..129).
class SessionTest : public ::testing::Test {
protected:
    SessionTest() {
        context.Classes().Register(Pad::Class());
        form.Add("Korvex_Tools.Pad", {"P1", 300, 300, 1500, 750});
        form.Add("Korvex_Tools.Pad", {"P2", 1200, 300, 1500, 750});
        form.SwitchMode(true);
        form.Show();
    }
    std::string Run(const std::string& script) {
        std::ostringstream out;
        ScriptRunner runner(form, platform.driver(), out, dir);
        runner.Run(script);
        return out.str();
    }

    platform::sim::SimPlatform platform;
    HostContext context{&platform};
    Container form{context};
    std::filesystem::path dir = std::filesystem::path(KORVEX_BINARY_DIR) / "session_test";
};

TEST_F(SessionTest, InputGoesToTheTopmostWindowAndThroughRegions) {
    EXPECT_EQ(Run("move 100 40\nclick\n"),
              "event P2.MouseMove(0, 0, 300, 300)\n"
              "event P2.MouseDown(1, 0, 300, 300)\n"
              "event P2.MouseUp(1, 0, 300, 300)\n"
              "event P2.Click()\n");
    // Inside P2's rectangle but outside its ellipse: P1's surface below gets it.
    EXPECT_EQ(Run("call P2.Round\nmove 81 21\nclick\n"),
              "event P1.MouseMove(0, 0, 915, 15)\n"
              "event P1.MouseDown(1, 0, 915, 15)\n"
              "event P1.MouseUp(1, 0, 915, 15)\n"
              "event P1.Click()\n");
}

// A control's window is a child of its container's window from the moment it exists: the form's
// window for a control on the form, the containing control's window for one inside it; after the
// switch between modes the new instances are born there again.
TEST_F(SessionTest, ControlWindowsAreBornInTheirContainer) {
    Site& inner = form.Add("Korvex_Tools.Pad", {"P3", 15, 15, 300, 300}, &form.Get("P1"));
    const auto bornIn = [&](const std::string& name) { return static_cast<Pad&>(form.Get(name).GetControl()).bornIn; };
    EXPECT_EQ(bornIn("P1"), form.FormWindow());
    EXPECT_EQ(bornIn("P3"), form.Get("P1").GetControl().SurfaceWindow());
    form.SwitchMode(false);
    EXPECT_EQ(bornIn("P2"), form.FormWindow());
    EXPECT_EQ(bornIn("P3"), form.Get("P1").GetControl().SurfaceWindow());
    EXPECT_EQ(platform.windows().GetParent(inner.GetControl().SurfaceWindow()), form.Get("P1").GetControl().SurfaceWindow());
}

TEST_F(SessionTest, DragOutOfTheWindowKeepsTheCapture) {
    EXPECT_EQ(Run("move 75 40\ndown\nmove 5 40\nup\nmove 6 40\n"),
              "event P1.MouseMove(0, 0, 825, 300)\n"
              "event P1.MouseDown(1, 0, 825, 300)\n"
              "event P1.MouseMove(1, 0, -225, 300)\n"
              "event P1.MouseUp(1, 0, -225, 300)\n");  // released outside: no Click, no more moves
}

TEST_F(SessionTest, FocusMovesBetweenControls) {
    EXPECT_EQ(Run("focus P1\ntype a\nfocus P2\n"),
              "event P1.GotFocus()\n"
              "event P1.KeyPress(97)\n"
              "event P1.LostFocus()\n"
              "event P2.GotFocus()\n");
}

TEST_F(SessionTest, TabMovesTheFocusInTabIndexOrder) {
    form.Add("Korvex_Tools.Pad", {"P3", 300, 1500, 600, 300, true, true, 1});  // between P1 and P2
    form.LetProperty(form.Get("P2"), "TabIndex", 2);
    // Tab is the form's: the focused control sees none of its key strokes.
    EXPECT_EQ(Run("focus P1\nkey down tab\nkey press 9\nkey up tab\nkey down tab\nkey down tab\n"),
              "event P1.GotFocus()\n"
              "event P1.LostFocus()\n"
              "event P3.GotFocus()\n"
              "event P3.LostFocus()\n"
              "event P2.GotFocus()\n"
              "event P2.LostFocus()\n"
              "event P1.GotFocus()\n");
    EXPECT_EQ(Run("key down tab shift=1\nset P3.TabStop False\nkey down tab\n"),
              "event P1.LostFocus()\n"
              "event P2.GotFocus()\n"
              "event P2.LostFocus()\n"
              "event P1.GotFocus()\n");
}

TEST_F(SessionTest, TimersTickOnTheVirtualClock) {
    EXPECT_EQ(Run("set P1.TickInterval 50\nwait 49\nwait 71\n"),
              "event P1.Tick()\n"
              "event P1.Tick()\n");
    // A 1 ms interval ticks at the platform's 10 ms minimum.
    // Now at 120 ms: P2 ticks at 130 and 140, then stops; P1 goes on at 150 and 200.
    EXPECT_EQ(Run("set P2.TickInterval 1\nwait 25\nset P2.TickInterval 0\nwait 100\n"),
              "event P2.Tick()\n"
              "event P2.Tick()\n"
              "event P1.Tick()\n"
              "event P1.Tick()\n");
}

TEST_F(SessionTest, SnapshotShowsTheScreen) {
    std::filesystem::create_directories(dir);
    Run("snapshot screen.png\n");
    const platform::Image shot = platform::ReadPng((dir / "screen.png").string());
    ASSERT_EQ(shot.width, 1024);
    ASSERT_EQ(shot.height, 768);
    auto at = [&](int x, int y) { return shot.pixels[static_cast<std::size_t>(y * shot.width + x)]; };
    EXPECT_EQ(at(30, 60), 0xFF0000u);   // P1's label
    EXPECT_EQ(at(75, 40), 0xFFFFFFu);   // P1's surface
    EXPECT_EQ(at(150, 40), 0xFFFFFFu);  // P2's surface
    EXPECT_EQ(at(300, 200), 0xD4D0C8u); // the form's button face
    EXPECT_EQ(at(500, 500), 0x3A6EA5u); // the desktop
    EXPECT_EQ(at(319, 239), 0xD4D0C8u);
    EXPECT_EQ(at(320, 240), 0x3A6EA5u);

    // One window alone, at its own size: P1 is partly covered by P2 on the screen, not here.
    Run("snapshot p1.png P1\n");
    const platform::Image one = platform::ReadPng((dir / "p1.png").string());
    ASSERT_EQ(one.width, 100);
    ASSERT_EQ(one.height, 50);
    EXPECT_EQ(one.pixels[10 * 100 + 10], 0xFF0000u);
    EXPECT_EQ(one.pixels[10 * 100 + 90], 0xFFFFFFu);
}

}  // namespace
