#include "forms/shape.hpp"

#include "base/error.hpp"
#include "forms/drawing_surface.hpp"
#include "forms/graphics.hpp"

namespace korvex::forms {

using namespace platform;

Shape::Shape(DrawingSurface& container) : Lightweight(container) {
    Invalidate();
}

void Shape::BackColor(host::OLE_COLOR value) {
    if (value == backColor_) return;
    backColor_ = value;
    Invalidate();
}

void Shape::BackStyle(std::int16_t value) {
    if (value != 0 && value != 1)
        throw host::HostError(host::kErrInvalidPropertyValue, "BackStyle");
    if (value == backStyle_) return;
    backStyle_ = value;
    Invalidate();
}

void Shape::BorderStyle(std::int16_t value) {
    if (value < 0 || value > 6)
        throw host::HostError(host::kErrInvalidPropertyValue, "BorderStyle");
    if (value == borderStyle_) return;
    borderStyle_ = value;
    Invalidate();
}

void Shape::BorderColor(host::OLE_COLOR value) {
    if (value == borderColor_) return;
    borderColor_ = value;
    Invalidate();
}

void Shape::BorderWidth(std::int16_t value) {
    if (value < 1) throw host::HostError(host::kErrInvalidPropertyValue, "BorderWidth");
    if (value == borderWidth_) return;
    borderWidth_ = value;
    Invalidate();
}

void Shape::Paint(HDC dc, const RECT& rect) const {
    platform::Gdi& gdi = *Device();
    if (backStyle_ == 1)
        gdi.FillRect(dc, rect, MakeBrush(gdi, OleColorToRGB(gdi, backColor_)).get());
    if (borderStyle_ == 0) return;
    const GdiObject border = MakeBrush(gdi, OleColorToRGB(gdi, borderColor_));
    RECT frame = rect;
    for (int i = 0; i < borderWidth_ && !frame.IsEmpty(); ++i) {
        gdi.FrameRect(dc, frame, border.get());
        frame = {frame.left + 1, frame.top + 1, frame.right - 1, frame.bottom - 1};
    }
}

}  // namespace korvex::forms
