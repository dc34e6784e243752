#pragma once
// ForwardingDriver: the driver face of a platform whose parts already do the work; each
// operation forwards to the part that owns it (time to the clock, input and the script to the
// event loop, pixels and the tip to the windows). A backend overrides what it does otherwise.

#include <cstdint>
#include <vector>

#include "platform/driver.hpp"

namespace korvex::platform {

template <class WindowsT, class ClockT, class LoopT>
class ForwardingDriver : public Driver {
  public:
    ForwardingDriver(WindowsT& windows, ClockT& clock, LoopT& loop)
        : windows_(windows), clock_(clock), loop_(loop) {}

    void Advance(std::int64_t ms) override { clock_.Advance(ms); }
    [[nodiscard]] std::int64_t NextDue() override { return clock_.NextDue(); }
    void MouseMove(POINT screen) override { loop_.MouseMove(screen); }
    void MouseDown(int button, int shift) override { loop_.MouseDown(button, shift); }
    void MouseUp(int button, int shift) override { loop_.MouseUp(button, shift); }
    void KeyDown(int keyCode, int shift) override { loop_.KeyDown(keyCode, shift); }
    void KeyUp(int keyCode, int shift) override { loop_.KeyUp(keyCode, shift); }
    void KeyPress(int character) override { loop_.KeyPress(character); }
    void SetInputSource(InputSource* source) override { loop_.SetInputSource(source); }
    std::vector<std::uint32_t> ComposeScreen() override { return windows_.ComposeScreen(); }
    std::vector<std::uint32_t> ComposeWindow(HWND window) override {
        return windows_.ComposeWindow(window);
    }
    ShownToolTip ToolTip() override { return windows_.ToolTipOnScreen(); }

  protected:
    WindowsT& windows_;
    ClockT& clock_;
    LoopT& loop_;
};

}  // namespace korvex::platform
