#pragma once
// Pointer and key rules both backends apply to the input a script sends: what is held, the
// double click and the close box of a captioned window.

#include <array>
#include <cstdint>

#include "platform/window.hpp"

namespace korvex::platform {

// The mouse buttons (kButton*) and keys held, as the input routed so far left them.
class HeldInput {
  public:
    [[nodiscard]] int Buttons() const { return buttons_; }
    void Button(bool down, int button) {
        buttons_ = down ? (buttons_ | button) : (buttons_ & ~button);
    }
    // Down and Up change a key's state; Press does not.
    void Key(KeyEvent::Kind kind, int keyCode);
    // Whether a key or mouse button (VK_LBUTTON ...) is down.
    [[nodiscard]] bool Down(int virtualKey) const;
    // kShiftMask, kCtrlMask and kAltMask as the keys held make them.
    [[nodiscard]] int ShiftState() const;

  private:
    int buttons_ = 0;
    std::array<bool, 256> keys_{};
};

// The platform's double-click defaults (GetDoubleClickTime, SM_CXDOUBLECLK/SM_CYDOUBLECLK): a
// second press of the same button on the same window less than 500 ms after the first, inside
// the 4 x 4 rectangle centred on it, is a double click; a double click starts no further one.
class DoubleClickTracker {
  public:
    static constexpr std::int64_t kTime = 500;
    static constexpr std::int32_t kWidth = 4;
    static constexpr std::int32_t kHeight = 4;

    // A press of button on window; true when it is the second press of a double click.
    bool Press(std::uint32_t window, int button, std::int64_t time, POINT screen);
    // The event of a press (Down or DoubleClick) or a release (Up) of button on window.
    MouseEvent ButtonEvent(bool down, std::uint32_t window, int button, int shift, POINT screen,
                           std::int64_t time);
    // A press that reached no window: the next one starts afresh.
    void Reset() { last_ = {}; }
    // window went away.
    void Forget(std::uint32_t window) {
        if (last_.window == window) last_ = {};
    }

  private:
    struct Click {
        std::uint32_t window = 0;  // zero when no press can start a double click
        int button = 0;
        std::int64_t time = 0;
        POINT screen;
    };
    Click last_;
};

// The event of the pointer moving to screen with buttons held.
MouseEvent MoveEvent(int buttons, int shift, POINT screen, std::int64_t time);

// The close box as a push button: pressed while the left button is down over it (hot while the
// pointer stays there); released over it asks the window to close (true), released elsewhere
// does nothing. inside says whether the event is over the box.
bool CloseBoxInput(bool& pressed, bool& hot, const MouseEvent& event, bool inside);

}  // namespace korvex::platform
