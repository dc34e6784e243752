// SimWindows' tooltips: one tooltip for the whole screen, driven by the mouse input the windows
// get, as a tooltip control that subclasses its tools sees it.
//
// Step table (tool = the window the pointer moved on, when it has tooltip text):
//   move onto another tool   the shown tip goes; the show timer starts: 500 ms, or 100 ms when
//                            a tip was showing just now
//   move within the tool     before the tip shows, the pointer must rest again: the show timer
//                            restarts; while it shows, the 5000 ms before it goes restart
//   move off every tool      the tip goes, its timer stops
//   show timer               the tip shows below the pointer; the 5000 ms start
//   5000 ms at rest, press   the tip goes and stays away until the pointer moves on to another
//                            tool
//   text changed             shown: the new text in place; "" ends the tool
//   window hidden, disabled  as moving off every tool
//   or destroyed
//
// Sections: tracking · timers · the look

#include <algorithm>

#include "platform/sim/sim_windows.hpp"

namespace korvex::platform::sim {

// ---------------------------------------------------------------------------------------------
// Tracking

void SimWindows::SetToolTip(HWND window, std::string_view text) {
    Window* w = Find(window);
    if (!w || window.value == kDesktop || w->toolTip == text) return;
    w->toolTip = std::string(text);
    if (window.value != tip_.tool) return;
    if (text.empty()) {
        DropToolTip(window.value);
    } else if (tip_.shown) {
        ShowToolTip();  // the new text, laid out again where the pointer is
    }
}

std::string SimWindows::GetToolTip(HWND window) {
    const Window* w = Find(window);
    return w ? w->toolTip : std::string();
}

void SimWindows::TrackToolTip(std::uint32_t target) {
    const Window* w = Find(target);
    const std::uint32_t tool = w && !w->toolTip.empty() ? target : 0;
    if (tool != tip_.tool) {
        const bool wasShown = tip_.shown;
        HideToolTip(false);
        tip_.tool = tool;
        tip_.spent = false;
        if (tool) StartToolTipTimer(wasShown ? kToolTipReshow : kToolTipInitial, true);
    } else if (tool && tip_.shown) {
        StartToolTipTimer(kToolTipAutoPop, false);
    } else if (tool && !tip_.spent) {
        StartToolTipTimer(kToolTipInitial, true);
    }
}

void SimWindows::ToolTipPress() {
    if (!tip_.tool) return;
    HideToolTip(true);
}

void SimWindows::DropToolTip(std::uint32_t window) {
    if (!tip_.tool || tip_.tool != window) return;
    HideToolTip(false);
    tip_.tool = 0;
}

// ---------------------------------------------------------------------------------------------
// Timers

void SimWindows::HideToolTip(bool spent) {
    if (clock_ && tip_.timer) clock_->KillTimer(tip_.timer);
    tip_.timer = 0;
    tip_.shown = false;
    tip_.text.clear();
    tip_.spent = spent;
}

// One-shot on the clock's periodic timers: the tick kills its timer first.
void SimWindows::StartToolTipTimer(std::int64_t ms, bool show) {
    if (!clock_) return;
    if (tip_.timer) clock_->KillTimer(tip_.timer);
    tip_.timer = clock_->SetTimer(static_cast<std::uint32_t>(ms), [this, show] {
        clock_->KillTimer(tip_.timer);
        tip_.timer = 0;
        if (show) {
            ShowToolTip();
            StartToolTipTimer(kToolTipAutoPop, false);
        } else {
            HideToolTip(true);
        }
    });
}

// ---------------------------------------------------------------------------------------------
// The look: the system's tooltip colours (COLOR_INFOBK behind COLOR_INFOTEXT), a one-pixel
// frame in the window-frame colour, the status-bar font (Tahoma 8 pt).

// Lays the tip out for its tool's text at the pointer: 20 pixels below the hot spot, left edge
// at the pointer, moved left to stay on the screen and above the pointer when there is no room
// below.
void SimWindows::ShowToolTip() {
    const Window* w = Find(tip_.tool);
    if (!w || w->toolTip.empty()) return;
    SIZE extent{0, 0};
    const HDC dc = gdi_.CreateCompatibleDC({});
    const HFONT font = CreateShellFont(gdi_, FW_NORMAL);
    if (dc && font) {
        const ScopedSelect select(gdi_, dc, font);
        gdi_.GetTextExtentPoint32(dc, w->toolTip, &extent);
    }
    if (font) gdi_.DeleteObject(font);
    if (dc) gdi_.DeleteDC(dc);

    const std::int32_t width = extent.cx + 2 * (1 + kToolTipMargin);
    const std::int32_t height = extent.cy + 2 * (1 + kToolTipMargin);
    std::int32_t x = std::clamp(cursor_.x, 0, std::max(screen_.cx - width, 0));
    std::int32_t y = cursor_.y + kToolTipBelowPointer;
    if (y + height > screen_.cy) y = std::max(cursor_.y - height, 0);
    tip_.text = w->toolTip;
    tip_.screen = {x, y, x + width, y + height};
    tip_.shown = true;
}

Driver::ShownToolTip SimWindows::ToolTipOnScreen() const {
    if (!tip_.shown) return {};
    return {tip_.text, tip_.screen};
}

void SimWindows::PaintToolTip(HDC dc) {
    if (!tip_.shown) return;
    const RECT& r = tip_.screen;
    const HBRUSH back = gdi_.CreateSolidBrush(gdi_.GetSysColor(COLOR_INFOBK));
    const HBRUSH frame = gdi_.CreateSolidBrush(gdi_.GetSysColor(COLOR_WINDOWFRAME));
    gdi_.FillRect(dc, r, back);
    gdi_.FrameRect(dc, r, frame);
    gdi_.DeleteObject(back);
    gdi_.DeleteObject(frame);
    const HFONT font = CreateShellFont(gdi_, FW_NORMAL);
    {
        const ScopedSelect select(gdi_, dc, font);
        const int oldMode = gdi_.SetBkMode(dc, TRANSPARENT);
        const COLORREF oldColour = gdi_.SetTextColor(dc, gdi_.GetSysColor(COLOR_INFOTEXT));
        gdi_.TextOut(dc, r.left + 1 + kToolTipMargin, r.top + 1 + kToolTipMargin, tip_.text);
        gdi_.SetTextColor(dc, oldColour);
        gdi_.SetBkMode(dc, oldMode);
    }
    gdi_.DeleteObject(font);
}

}  // namespace korvex::platform::sim
