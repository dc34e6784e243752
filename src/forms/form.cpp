#include "forms/form.hpp"

#include <algorithm>

#include "base/error.hpp"
#include "forms/graphics.hpp"
#include "host/font.hpp"

namespace korvex::forms {

using namespace platform;

namespace {

bool Contains(const RECT& r, POINT p) {
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

}  // namespace

FormClient::FormClient(platform::Platform& platform, HWND frame, const RECT& position)
    : DrawingSurface(platform, frame, true, position) {
    platform.windows().ShowWindow(hWnd(), true);
}

// ---------------------------------------------------------------------------------------------
// Construction and geometry

Form::Form(platform::Platform& platform, std::string name) : platform_(platform), name_(std::move(name)) {
    Windows& windows = platform_.windows();
    const std::int32_t w = 4800 / TwipsPerPixelX(platform_), h = 3600 / TwipsPerPixelY(platform_);
    position_ = RECT{0, 0, w, h};
    hwnd_ = windows.CreateWindow(HWND{}, position_, WindowStyle{false, false}, this, caption_);
    client_ = std::make_unique<FormClient>(platform_, hwnd_, RECT{0, 0, 1, 1});
    PlaceClient();
}

Form::~Form() {
    client_.reset();
    platform_.windows().DestroyWindow(hwnd_);
}

void Form::PlaceClient() {
    const std::int32_t top = kFrameWidth + kCaptionHeight + 1;
    client_->Place(RECT{kFrameWidth, top, std::max(position_.Width() - kFrameWidth, kFrameWidth),
                        std::max(position_.Height() - kFrameWidth, top)});
}

float Form::Left() const {
    return static_cast<float>(position_.left * TwipsPerPixelX(platform_));
}
float Form::Top() const {
    return static_cast<float>(position_.top * TwipsPerPixelY(platform_));
}
float Form::Width() const {
    return static_cast<float>(position_.Width() * TwipsPerPixelX(platform_));
}
float Form::Height() const {
    return static_cast<float>(position_.Height() * TwipsPerPixelY(platform_));
}

void Form::Move(float Left, float Top, float Width, float Height) {
    if (Width < 0 || Height < 0)
        throw host::HostError(host::kErrInvalidPropertyValue, Width < 0 ? "Width" : "Height");
    Windows& windows = platform_.windows();
    const auto px = [](float twips, int perPixel) {
        return static_cast<std::int32_t>(twips / static_cast<float>(perPixel) + 0.5f);
    };
    const std::int32_t l = px(Left, TwipsPerPixelX(platform_)), t = px(Top, TwipsPerPixelY(platform_));
    position_ = RECT{l, t, l + px(Width, TwipsPerPixelX(platform_)), t + px(Height, TwipsPerPixelY(platform_))};
    windows.MoveWindow(hwnd_, position_);
    PlaceClient();
    placed_ = true;
    windows.InvalidateWindow(hwnd_);
}

void Form::ClientSize(float width, float height) {
    const float extraX = static_cast<float>(2 * kFrameWidth * TwipsPerPixelX(platform_));
    const float extraY = static_cast<float>((2 * kFrameWidth + kCaptionHeight + 1) * TwipsPerPixelY(platform_));
    const bool wasPlaced = placed_;
    Move(Left(), Top(), width + extraX, height + extraY);
    placed_ = wasPlaced;  // a size alone still lets the first show centre the form
}

void Form::Caption(std::string value) {
    caption_ = std::move(value);
    platform_.windows().SetWindowText(hwnd_, caption_);
    platform_.windows().InvalidateWindow(hwnd_);
}

RECT Form::CaptionRect() const {
    return RECT{kFrameWidth, kFrameWidth, position_.Width() - kFrameWidth, kFrameWidth + kCaptionHeight};
}

RECT Form::CloseBoxRect() const {
    const RECT bar = CaptionRect();
    const std::int32_t right = bar.right - 2, top = bar.top + 2;
    return RECT{right - kCloseBoxWidth, top, right, top + kCloseBoxHeight};
}

// ---------------------------------------------------------------------------------------------
// Show, hide, unload

void Form::Show(bool modal) {
    if (modal && visible_) throw host::HostError(host::kErrFormAlreadyShown, name_);
    Windows& windows = platform_.windows();
    loaded_ = true;
    if (!placed_) {
        // Centred on the screen when it first appears.
        const SIZE screen = windows.ScreenSize();
        const std::int32_t w = position_.Width(), h = position_.Height();
        const std::int32_t l = (screen.cx - w) / 2, t = (screen.cy - h) / 2;
        position_ = RECT{l, t, l + w, t + h};
        windows.MoveWindow(hwnd_, position_);
        placed_ = true;
    }
    visible_ = true;
    windows.ShowWindow(hwnd_, true);
    windows.BringWindowToTop(hwnd_);
    windows.SetFocus(client_->hWnd());
    if (!modal) return;

    // Everything else waits while the modal form is open, as the host's modal show has it.
    struct Disabled {
        Windows& windows;
        std::vector<HWND> list;
        ~Disabled() {
            for (HWND window : list)
                if (windows.IsWindow(window)) windows.EnableWindow(window, true);
        }
    } disabled{windows, {}};
    for (HWND window : windows.ZOrder(HWND{})) {
        if (window == hwnd_ || !windows.IsWindowEnabled(window)) continue;
        windows.EnableWindow(window, false);
        disabled.list.push_back(window);
    }
    modal_ = true;
    struct ModalEnd {
        bool& flag;
        ~ModalEnd() { flag = false; }
    } end{modal_};
    platform_.loop().RunModal([this] { return visible_; }, name_);
}

void Form::Hide() {
    if (!visible_) return;
    visible_ = false;
    closePressed_ = false;
    platform_.windows().ShowWindow(hwnd_, false);
}

void Form::Unload() {
    if (!loaded_) return;
    Hide();
    loaded_ = false;
    if (OnUnload) {
        const auto handler = OnUnload;
        handler();
    }
}

// ---------------------------------------------------------------------------------------------
// Screen-wide pointer

void Form::AllWindows(HWND window, std::vector<HWND>& out) const {
    out.push_back(window);
    for (HWND child : platform_.windows().ZOrder(window)) AllWindows(child, out);
}

void Form::ScreenMousePointer(std::int16_t value) {
    screenPointer_ = CheckedMousePointer(value);
    ApplyScreenPointer();
}

void Form::ApplyScreenPointer() {
    // 0 hands every window back to the default pointer, which is what the form's own surfaces
    // show; an object with a pointer of its own sets it again when the mouse next moves onto it.
    std::vector<HWND> all;
    AllWindows(hwnd_, all);
    for (HWND window : all) platform_.windows().SetWindowCursor(window, screenPointer_);
}

// ---------------------------------------------------------------------------------------------
// Input: only the close box takes it. It works as a push button: pressed while the mouse is
// down over it, released over it closes the form, released elsewhere does nothing.

void Form::OnMouse(const MouseEvent& event) {
    const RECT box = CloseBoxRect();
    const bool inside = Contains(box, event.client);
    switch (event.kind) {
        case MouseEvent::Kind::Down:
        case MouseEvent::Kind::DoubleClick:
            if (event.button == kButtonLeft && inside) {
                closePressed_ = true;
                closeHot_ = true;
                platform_.windows().InvalidateWindow(hwnd_);
            }
            break;
        case MouseEvent::Kind::Move:
            if (closePressed_ && inside != closeHot_) {
                closeHot_ = inside;
                platform_.windows().InvalidateWindow(hwnd_);
            }
            break;
        case MouseEvent::Kind::Up:
            if (event.button == kButtonLeft && closePressed_) {
                closePressed_ = false;
                platform_.windows().InvalidateWindow(hwnd_);
                if (inside) Unload();
            }
            break;
    }
}

void Form::OnCaptureLost() {
    closePressed_ = false;
    platform_.windows().InvalidateWindow(hwnd_);
}

// ---------------------------------------------------------------------------------------------
// Painting

void Form::OnPaint(HDC dc, const RECT& client) {
    Gdi& gdi = platform_.gdi();
    gdi.FillRect(dc, client, MakeBrush(gdi, gdi.GetSysColor(COLOR_BTNFACE)).get());
    RECT edge = client;
    gdi.DrawEdge(dc, &edge, EDGE_RAISED, BF_RECT);
    PaintCaption(dc, CaptionRect());
    PaintCloseBox(dc);
}

void Form::PaintCaption(HDC dc, const RECT& bar) const {
    if (bar.IsEmpty()) return;
    Gdi& gdi = platform_.gdi();
    const COLORREF from = gdi.GetSysColor(COLOR_ACTIVECAPTION);
    const COLORREF to = gdi.GetSysColor(COLOR_GRADIENTACTIVECAPTION);
    const std::int32_t width = bar.Width();
    for (std::int32_t x = 0; x < width; ++x) {
        const double t = width > 1 ? static_cast<double>(x) / (width - 1) : 0.0;
        const GdiObject brush = MakeBrush(gdi, Blend(from, to, t));
        gdi.FillRect(dc, RECT{bar.left + x, bar.top, bar.left + x + 1, bar.bottom}, brush.get());
    }
    if (caption_.empty()) return;
    const host::StdFont captionFont("Tahoma", 8, true);
    const GdiObject font = MakeFont(gdi, captionFont);
    const ScopedSelect select(gdi, dc, font.get());
    TEXTMETRIC tm;
    gdi.GetTextMetrics(dc, &tm);
    const RECT text{bar.left + 2, bar.top, CloseBoxRect().left - 2, bar.bottom};
    if (text.IsEmpty()) return;
    const HRGN clip = gdi.CreateRectRgn(text.left, text.top, text.right, text.bottom);
    gdi.SelectClipRgn(dc, clip);
    gdi.DeleteObject(clip);
    const int oldMode = gdi.SetBkMode(dc, TRANSPARENT);
    const COLORREF oldColour = gdi.SetTextColor(dc, gdi.GetSysColor(COLOR_CAPTIONTEXT));
    gdi.TextOut(dc, text.left + 1, bar.top + (bar.Height() - tm.tmHeight) / 2, caption_);
    gdi.SetTextColor(dc, oldColour);
    gdi.SetBkMode(dc, oldMode);
    gdi.SelectClipRgn(dc, HRGN{});
}

void Form::PaintCloseBox(HDC dc) const {
    Gdi& gdi = platform_.gdi();
    RECT box = CloseBoxRect();
    const bool pressed = CloseBoxPressed();
    const RECT outer = box;
    gdi.DrawEdge(dc, &box, pressed ? EDGE_SUNKEN : EDGE_RAISED, BF_RECT | BF_MIDDLE);
    // The cross: 8 x 7 pixels, two pixels thick, centred; one pixel down and right when pressed.
    const COLORREF ink = gdi.GetSysColor(COLOR_BTNTEXT);
    const std::int32_t x0 = outer.left + (outer.Width() - 8) / 2 + (pressed ? 1 : 0);
    const std::int32_t y0 = outer.top + (outer.Height() - 7) / 2 + (pressed ? 1 : 0);
    for (std::int32_t i = 0; i < 7; ++i) {
        gdi.SetPixel(dc, x0 + i, y0 + i, ink);
        gdi.SetPixel(dc, x0 + i + 1, y0 + i, ink);
        gdi.SetPixel(dc, x0 + 7 - i, y0 + i, ink);
        gdi.SetPixel(dc, x0 + 6 - i, y0 + i, ink);
    }
}

}  // namespace korvex::forms
