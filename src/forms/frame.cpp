#include "forms/frame.hpp"

#include <algorithm>

#include "base/error.hpp"
#include "forms/graphics.hpp"

namespace korvex::forms {

using namespace platform;

Frame::Frame(DrawingSurface& container)
    : DrawingSurface(container.Platform(), container.hWnd(), true, RECT{0, 0, 0, 0}),
      container_(container) {
    Font(container.Font()->Clone());
    Platform().windows().ShowWindow(hWnd(), true);
    Redraw();
}

float Frame::Left() const {
    return static_cast<float>(container_.Scale().FromPixelX(WindowPosition().left));
}
float Frame::Top() const {
    return static_cast<float>(container_.Scale().FromPixelY(WindowPosition().top));
}
float Frame::Width() const {
    return static_cast<float>(container_.Scale().SizeFromPixelsX(WindowPosition().Width()));
}
float Frame::Height() const {
    return static_cast<float>(container_.Scale().SizeFromPixelsY(WindowPosition().Height()));
}

void Frame::Move(float Left, std::optional<float> Top, std::optional<float> Width,
                 std::optional<float> Height) {
    if ((Width && *Width < 0) || (Height && *Height < 0))
        throw host::HostError(host::kErrInvalidPropertyValue,
                              Width && *Width < 0 ? "Width" : "Height");
    const ScaleSystem& scale = container_.Scale();
    const RECT now = WindowPosition();
    const std::int32_t l = ToDevice(scale.ToPixelX(Left));
    const std::int32_t t = Top ? ToDevice(scale.ToPixelY(*Top)) : now.top;
    const std::int32_t w = Width ? ToDevice(scale.SizeToPixelsX(*Width)) : now.Width();
    const std::int32_t h = Height ? ToDevice(scale.SizeToPixelsY(*Height)) : now.Height();
    PlaceWindow(RECT{l, t, l + w, t + h});
    Redraw();
}

void Frame::Visible(bool value) {
    if (value == visible_) return;
    visible_ = value;
    Platform().windows().ShowWindow(hWnd(), value);
}

void Frame::Caption(std::string value) {
    if (value == caption_) return;
    caption_ = std::move(value);
    Redraw();
}

void Frame::ForeColor(host::OLE_COLOR value) {
    DrawingSurface::ForeColor(value);
    Redraw();
}

void Frame::BackColor(host::OLE_COLOR value) {
    DrawingSurface::BackColor(value);
    Redraw();
}

void Frame::Font(std::shared_ptr<host::StdFont> value) {
    DrawingSurface::Font(value);
    fontSubscription_ = value->Subscribe([this](std::string_view) { Redraw(); });
    Redraw();
}

std::int32_t Frame::BorderTop() const {
    Gdi& gdi = Platform().gdi();
    const GdiObject font = MakeFont(gdi, *Font());
    const ScopedSelect select(gdi, hDC(), font.get());
    TEXTMETRIC tm;
    gdi.GetTextMetrics(hDC(), &tm);
    return std::max(tm.tmHeight / 2 - 1, 0);
}

// The group box is drawn into the persistent bitmap, so the objects on the frame paint over it.
void Frame::Redraw() {
    Cls();
    const RECT window = WindowPosition();
    Gdi& gdi = Platform().gdi();
    const HDC dc = hDC();
    // The font is made here rather than taken from the DC: a font change notifies this frame
    // and the surface in no fixed order.
    const GdiObject font = MakeFont(gdi, *Font());
    const ScopedSelect select(gdi, dc, font.get());
    RECT edge{0, BorderTop(), window.Width(), window.Height()};
    if (!edge.IsEmpty()) gdi.DrawEdge(dc, &edge, EDGE_ETCHED, BF_RECT);
    if (!caption_.empty()) {
        SIZE extent;
        gdi.GetTextExtentPoint32(dc, caption_, &extent);
        // Two pixels of face on either side keep the text off the broken line.
        const RECT behind{6, 0, std::min(8 + extent.cx + 2, window.Width()), extent.cy};
        gdi.FillRect(dc, behind, MakeBrush(gdi, OleColorToRGB(gdi, BackColor())).get());
        const COLORREF old = gdi.SetTextColor(dc, OleColorToRGB(gdi, ForeColor()));
        const int oldMode = gdi.SetBkMode(dc, TRANSPARENT);
        gdi.TextOut(dc, 8, 0, caption_);
        gdi.SetBkMode(dc, oldMode);
        gdi.SetTextColor(dc, old);
    }
    Refresh();
}

}  // namespace korvex::forms
