// What is held, the double click and the close box.

#include "platform/pointer_rules.hpp"

#include <cstdlib>

namespace korvex::platform {

void HeldInput::Key(KeyEvent::Kind kind, int keyCode) {
    if (kind != KeyEvent::Kind::Press && keyCode >= 0 && keyCode < static_cast<int>(keys_.size()))
        keys_[static_cast<std::size_t>(keyCode)] = kind == KeyEvent::Kind::Down;
}

bool HeldInput::Down(int virtualKey) const {
    switch (virtualKey) {
        case VK_LBUTTON:
            return buttons_ & kButtonLeft;
        case VK_RBUTTON:
            return buttons_ & kButtonRight;
        case VK_MBUTTON:
            return buttons_ & kButtonMiddle;
        default:
            return virtualKey >= 0 && virtualKey < static_cast<int>(keys_.size()) &&
                   keys_[static_cast<std::size_t>(virtualKey)];
    }
}

int HeldInput::ShiftState() const {
    return (keys_[VK_SHIFT] ? kShiftMask : 0) | (keys_[VK_CONTROL] ? kCtrlMask : 0) |
           (keys_[VK_MENU] ? kAltMask : 0);
}

bool DoubleClickTracker::Press(std::uint32_t window, int button, std::int64_t time, POINT screen) {
    const bool doubleClick = last_.window == window && last_.button == button &&
                             time - last_.time < kTime &&
                             std::abs(screen.x - last_.screen.x) <= kWidth / 2 &&
                             std::abs(screen.y - last_.screen.y) <= kHeight / 2;
    last_ = doubleClick ? Click{} : Click{window, button, time, screen};
    return doubleClick;
}

MouseEvent DoubleClickTracker::ButtonEvent(bool down, std::uint32_t window, int button, int shift,
                                           POINT screen, std::int64_t time) {
    MouseEvent event;
    event.button = button;
    event.shift = shift;
    event.screen = screen;
    event.time = time;
    if (!down)
        event.kind = MouseEvent::Kind::Up;
    else
        event.kind = Press(window, button, time, screen) ? MouseEvent::Kind::DoubleClick
                                                         : MouseEvent::Kind::Down;
    return event;
}

MouseEvent MoveEvent(int buttons, int shift, POINT screen, std::int64_t time) {
    MouseEvent event;
    event.kind = MouseEvent::Kind::Move;
    event.button = buttons;
    event.shift = shift;
    event.screen = screen;
    event.time = time;
    return event;
}

bool CloseBoxInput(bool& pressed, bool& hot, const MouseEvent& event, bool inside) {
    switch (event.kind) {
        case MouseEvent::Kind::Down:
        case MouseEvent::Kind::DoubleClick:
            if (event.button == kButtonLeft && inside) {
                pressed = true;
                hot = true;
            }
            break;
        case MouseEvent::Kind::Move:
            if (pressed) hot = inside;
            break;
        case MouseEvent::Kind::Up:
            if (event.button == kButtonLeft && pressed) {
                pressed = false;
                return inside;
            }
            break;
    }
    return false;
}

}  // namespace korvex::platform
