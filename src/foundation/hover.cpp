#include "foundation/hover.hpp"

namespace korvex::foundation {

bool IsMouseInto(platform::Windows& windows, platform::HWND hWnd) {
    platform::POINT p;
    platform::RECT r;
    if (!windows.GetCursorPos(&p) || !windows.GetWindowRect(hWnd, &r)) return false;
    return r.left <= p.x && p.x <= r.right && r.top <= p.y && p.y <= r.bottom;
}

std::optional<bool> HoverPoll::Tick(platform::Windows& windows, platform::HWND hWnd) {
    platform::POINT p;
    windows.GetCursorPos(&p);
    if (p == last_) return std::nullopt;
    const bool inside = IsMouseInto(windows, hWnd);
    last_ = p;
    return inside;
}

}  // namespace korvex::foundation
