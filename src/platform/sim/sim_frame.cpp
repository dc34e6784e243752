// SimWindows: the non-client area of a captioned window. The classic look: a fixed 3D frame,
// the caption bar in the active-caption colours (a gradient from COLOR_ACTIVECAPTION to
// COLOR_GRADIENTACTIVECAPTION) with the window text in bold, and a close box at the right of
// the bar that works as a push button.

#include <algorithm>

#include "platform/shell_font.hpp"
#include "platform/sim/sim_windows.hpp"

namespace korvex::platform::sim {

namespace {

bool Inside(const RECT& r, POINT p) {
    return p.x >= r.left && p.x < r.right && p.y >= r.top && p.y < r.bottom;
}

// Channel-wise blend of two COLORREFs, t in 0..1.
COLORREF Blend(COLORREF a, COLORREF b, double t) {
    COLORREF out = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        const double ca = (a >> shift) & 0xFF, cb = (b >> shift) & 0xFF;
        out |= static_cast<COLORREF>(ca + (cb - ca) * t + 0.5) << shift;
    }
    return out;
}

void Fill(Gdi& gdi, HDC dc, const RECT& r, COLORREF color) {
    const HBRUSH brush = gdi.CreateSolidBrush(color);
    gdi.FillRect(dc, r, brush);
    gdi.DeleteObject(brush);
}

}  // namespace

RECT SimWindows::ClientArea(const Window& w) {
    const std::int32_t width = w.rect.Width(), height = w.rect.Height();
    if (!w.caption) return {0, 0, width, height};
    const std::int32_t top = kFrameWidth + kCaptionHeight + 1;
    return {kFrameWidth, top, std::max(width - kFrameWidth, kFrameWidth),
            std::max(height - kFrameWidth, top)};
}

RECT SimWindows::CaptionRect(const Window& w) {
    return {kFrameWidth, kFrameWidth, w.rect.Width() - kFrameWidth, kFrameWidth + kCaptionHeight};
}

RECT SimWindows::CloseBoxRect(const Window& w) {
    const RECT bar = CaptionRect(w);
    const std::int32_t right = bar.right - 2, top = bar.top + 2;
    return {right - kCloseBoxWidth, top, right, top + kCloseBoxHeight};
}

// ---------------------------------------------------------------------------------------------
// Input: only the close box takes it. Pressed while the left button is down over it, released
// over it asks the window to close, released elsewhere does nothing.

void SimWindows::NonClientMouse(Window& w, const MouseEvent& event, POINT inWindow) {
    const bool inside = Inside(CloseBoxRect(w), inWindow);
    if (CloseBoxInput(w.closePressed, w.closeHot, event, inside) && w.handler)
        w.handler->OnClose();
}

void SimWindows::CaptureLost(std::uint32_t window) {
    Window* w = Find(window);
    if (!w) return;
    w->closePressed = false;
    if (w->handler) w->handler->OnCaptureLost();
}

bool SimWindows::GetTitleBarInfo(HWND window, TITLEBARINFO* info) {
    const Window* w = Find(window);
    if (!w || !w->caption || !info) return false;
    const POINT o = Origin(window.value);
    const auto toScreen = [&o](RECT r) {
        return RECT{r.left + o.x, r.top + o.y, r.right + o.x, r.bottom + o.y};
    };
    info->rcTitleBar = toScreen(CaptionRect(*w));
    info->rcClose = toScreen(CloseBoxRect(*w));
    info->closePressed = w->closePressed && w->closeHot;
    return true;
}

bool SimWindows::AdjustWindowRect(RECT* rect, WindowStyle style) {
    if (!rect) return false;
    if (style.caption && !style.child) {
        rect->left -= kFrameWidth;
        rect->top -= kFrameWidth + kCaptionHeight + 1;
        rect->right += kFrameWidth;
        rect->bottom += kFrameWidth;
    }
    return true;
}

// ---------------------------------------------------------------------------------------------
// Painting, window-sized dc

void SimWindows::PaintFrame(HDC dc, const Window& w) {
    const RECT whole{0, 0, w.rect.Width(), w.rect.Height()};
    Fill(gdi_, dc, whole, gdi_.GetSysColor(COLOR_BTNFACE));
    RECT edge = whole;
    gdi_.DrawEdge(dc, &edge, EDGE_RAISED, BF_RECT);
    PaintCaption(dc, w, CaptionRect(w));
    PaintCloseBox(dc, w);
}

void SimWindows::PaintCaption(HDC dc, const Window& w, const RECT& bar) {
    if (bar.IsEmpty()) return;
    const COLORREF from = gdi_.GetSysColor(COLOR_ACTIVECAPTION);
    const COLORREF to = gdi_.GetSysColor(COLOR_GRADIENTACTIVECAPTION);
    const std::int32_t width = bar.Width();
    for (std::int32_t x = 0; x < width; ++x) {
        const double t = width > 1 ? static_cast<double>(x) / (width - 1) : 0.0;
        Fill(gdi_, dc, RECT{bar.left + x, bar.top, bar.left + x + 1, bar.bottom},
             Blend(from, to, t));
    }
    if (w.title.empty()) return;
    const HFONT font = CreateShellFont(gdi_, FW_BOLD);
    {
        const ScopedSelect select(gdi_, dc, font);
        TEXTMETRIC tm;
        gdi_.GetTextMetrics(dc, &tm);
        const RECT text{bar.left + 2, bar.top, CloseBoxRect(w).left - 2, bar.bottom};
        if (!text.IsEmpty()) {
            const HRGN clip = gdi_.CreateRectRgn(text.left, text.top, text.right, text.bottom);
            gdi_.SelectClipRgn(dc, clip);
            gdi_.DeleteObject(clip);
            const int oldMode = gdi_.SetBkMode(dc, TRANSPARENT);
            const COLORREF oldColour = gdi_.SetTextColor(dc, gdi_.GetSysColor(COLOR_CAPTIONTEXT));
            gdi_.TextOut(dc, text.left + 1, bar.top + (bar.Height() - tm.tmHeight) / 2, w.title);
            gdi_.SetTextColor(dc, oldColour);
            gdi_.SetBkMode(dc, oldMode);
            gdi_.SelectClipRgn(dc, HRGN{});
        }
    }
    gdi_.DeleteObject(font);
}

void SimWindows::PaintCloseBox(HDC dc, const Window& w) {
    RECT box = CloseBoxRect(w);
    const bool pressed = w.closePressed && w.closeHot;
    const RECT outer = box;
    gdi_.DrawEdge(dc, &box, pressed ? EDGE_SUNKEN : EDGE_RAISED, BF_RECT | BF_MIDDLE);
    // The cross: 8 x 7 pixels, two pixels thick, centred; one pixel down and right when pressed.
    const COLORREF ink = gdi_.GetSysColor(COLOR_BTNTEXT);
    const std::int32_t x0 = outer.left + (outer.Width() - 8) / 2 + (pressed ? 1 : 0);
    const std::int32_t y0 = outer.top + (outer.Height() - 7) / 2 + (pressed ? 1 : 0);
    for (std::int32_t i = 0; i < 7; ++i) {
        gdi_.SetPixel(dc, x0 + i, y0 + i, ink);
        gdi_.SetPixel(dc, x0 + i + 1, y0 + i, ink);
        gdi_.SetPixel(dc, x0 + 7 - i, y0 + i, ink);
        gdi_.SetPixel(dc, x0 + 6 - i, y0 + i, ink);
    }
}

}  // namespace korvex::platform::sim
