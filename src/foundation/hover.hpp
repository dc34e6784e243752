#pragma once
// Hover without enter and leave notifications: controls poll the pointer on a 50 ms timer and
// test it against their window's rectangle.

#include <optional>

#include "platform/window.hpp"

namespace korvex::foundation {

// The poll interval of the controls' hover timers.
inline constexpr std::uint32_t kHoverPollMs = 50;

// True when the pointer lies inside the window's screen rectangle, edges included on all four
// sides: the column x = Right and the row y = Bottom (one past the last pixel) count as inside.
// Only rectangles are compared, so a window overlapping this one does not change the answer.
bool IsMouseInto(platform::Windows& windows, platform::HWND hWnd);

// One control's poll state: the last pointer position seen, initially (0, 0).
class HoverPoll {
  public:
    // Called on every tick. Nothing when the pointer has not moved since the last tick (a
    // resting pointer causes no repaint); otherwise whether it is inside the window now. The
    // look is re-applied on every movement, inside or outside.
    std::optional<bool> Tick(platform::Windows& windows, platform::HWND hWnd);

  private:
    platform::POINT last_{0, 0};
};

}  // namespace korvex::foundation
