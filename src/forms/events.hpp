#pragma once
// The events the constituent objects raise, as plain callbacks a control assigns. Arguments are
// the host's: Button and Shift as 16-bit integers, X and Y as Single in the scale units of the
// object's own surface (for a windowless object: its container's units, measured from the
// object's top-left corner). Key codes come by reference so a handler can swallow them (0).

#include <cstdint>
#include <functional>
#include <utility>

namespace korvex::forms {

using MouseHandler = std::function<void(std::int16_t Button, std::int16_t Shift, float X, float Y)>;

struct MouseEvents {
    MouseHandler MouseDown;
    MouseHandler MouseMove;
    MouseHandler MouseUp;
    std::function<void()> Click;
    std::function<void()> DblClick;
};

struct SurfaceEvents : MouseEvents {
    std::function<void(std::int16_t& KeyCode, std::int16_t Shift)> KeyDown;
    std::function<void(std::int16_t& KeyAscii)> KeyPress;
    std::function<void(std::int16_t& KeyCode, std::int16_t Shift)> KeyUp;
    std::function<void()> GotFocus;
    std::function<void()> LostFocus;
    std::function<void()> Resize;
};

// Raises an event whose handler may be unset. The handler runs from a copy, so it may replace
// itself (or destroy its object) while it runs.
template <class F, class... A>
void Raise(const F& handler, A&&... args) {
    if (!handler) return;
    const F copy = handler;
    copy(std::forward<A>(args)...);
}

}  // namespace korvex::forms
