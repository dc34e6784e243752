// ToolTipState: tracking, timers and the look of the screen's tooltip.

#include "platform/tooltip_state.hpp"

#include <algorithm>
#include <utility>

#include "platform/shell_font.hpp"

namespace korvex::platform {

ToolTipState::ToolTipState(Gdi& gdi, Clock* clock, Windows windows)
    : gdi_(gdi), clock_(clock), windows_(std::move(windows)) {}

ToolTipState::~ToolTipState() {
    if (clock_ && timer_) clock_->KillTimer(timer_);
}

// ---------------------------------------------------------------------------------------------
// Tracking

void ToolTipState::TextChanged(std::uint32_t window, std::string_view text) {
    if (window != tool_) return;
    if (text.empty()) {
        Drop(window);
    } else if (shown_) {
        Show();  // the new text, laid out again where the pointer is
    }
}

void ToolTipState::Track(std::uint32_t target) {
    const std::string* text = windows_.textOf(target);
    const std::uint32_t tool = text && !text->empty() ? target : 0;
    if (tool != tool_) {
        const bool wasShown = shown_;
        Hide(false);
        tool_ = tool;
        spent_ = false;
        if (tool) StartTimer(wasShown ? kReshow : kInitial, true);
    } else if (tool && shown_) {
        StartTimer(kAutoPop, false);
    } else if (tool && !spent_) {
        StartTimer(kInitial, true);
    }
}

void ToolTipState::Press() {
    if (!tool_) return;
    Hide(true);
}

void ToolTipState::Drop(std::uint32_t window) {
    if (!tool_ || tool_ != window) return;
    Hide(false);
    tool_ = 0;
}

// ---------------------------------------------------------------------------------------------
// Timers

void ToolTipState::Hide(bool spent) {
    if (clock_ && timer_) clock_->KillTimer(timer_);
    timer_ = 0;
    shown_ = false;
    text_.clear();
    spent_ = spent;
    Changed();
}

void ToolTipState::StartTimer(std::int64_t ms, bool show) {
    if (!clock_) return;
    if (timer_) clock_->KillTimer(timer_);
    timer_ = clock_->SetTimer(static_cast<std::uint32_t>(ms), [this, show] {
        clock_->KillTimer(timer_);
        timer_ = 0;
        if (show) {
            Show();
            StartTimer(kAutoPop, false);
        } else {
            Hide(true);
        }
    });
}

// ---------------------------------------------------------------------------------------------
// The look

// Lays the tip out for its tool's text at the pointer: 20 pixels below the hot spot, left edge
// at the pointer, moved left to stay on the screen and above the pointer when there is no room
// below.
void ToolTipState::Show() {
    const std::string* text = windows_.textOf(tool_);
    if (!text || text->empty()) return;
    SIZE extent{0, 0};
    const HDC dc = gdi_.CreateCompatibleDC({});
    const HFONT font = CreateShellFont(gdi_, FW_NORMAL);
    if (dc && font) {
        const ScopedSelect select(gdi_, dc, font);
        gdi_.GetTextExtentPoint32(dc, *text, &extent);
    }
    if (font) gdi_.DeleteObject(font);
    if (dc) gdi_.DeleteDC(dc);

    const SIZE screen = windows_.screen();
    const POINT pointer = windows_.pointer();
    const std::int32_t width = extent.cx + 2 * (1 + kMargin);
    const std::int32_t height = extent.cy + 2 * (1 + kMargin);
    const std::int32_t x = std::clamp(pointer.x, 0, std::max(screen.cx - width, 0));
    std::int32_t y = pointer.y + kBelowPointer;
    if (y + height > screen.cy) y = std::max(pointer.y - height, 0);
    text_ = *text;
    screen_ = {x, y, x + width, y + height};
    shown_ = true;
    Changed();
}

Driver::ShownToolTip ToolTipState::OnScreen() const {
    if (!shown_) return {};
    return {text_, screen_};
}

void ToolTipState::Paint(HDC dc) {
    if (!shown_) return;
    const RECT& r = screen_;
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
        gdi_.TextOut(dc, r.left + 1 + kMargin, r.top + 1 + kMargin, text_);
        gdi_.SetTextColor(dc, oldColour);
        gdi_.SetBkMode(dc, oldMode);
    }
    gdi_.DeleteObject(font);
}

}  // namespace korvex::platform
