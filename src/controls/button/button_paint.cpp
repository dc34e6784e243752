// Button's painter: the derived colours, face placement, the layout pass, frame and gradient,
// caption colours and the focus rectangle. It reads the look and the state and draws on the
// constituents; what a step drew is reported back, never written into the state.

#include <algorithm>
#include <cmath>

#include "controls/button/button_painter.hpp"
#include "foundation/border.hpp"
#include "foundation/color.hpp"
#include "host/numeric.hpp"

namespace korvex::controls {

using host::OLE_COLOR;

namespace {

constexpr OLE_COLOR kXPStyleOuter = 0x00914B00;
constexpr OLE_COLOR kXPcoolOuter = 0x009BA2A4;
constexpr OLE_COLOR kHotOrange = 0x0030B2F8;
constexpr OLE_COLOR kHotYellow = 0x0089D8FD;
constexpr OLE_COLOR kDisabledOuter = 0x00BFC3C4;
constexpr OLE_COLOR kDisabledInner = 0x00EDF1F1;
constexpr OLE_COLOR kStandardInner = 0x00E2EFF1;
constexpr OLE_COLOR kFocusBlue = 0x00F4B306;
constexpr OLE_COLOR kDisabledCaption = 0x00808080;

// Each channel of rgb moved by offset and clamped to 0..255.
OLE_COLOR Offset(platform::COLORREF rgb, int offset) {
    const auto channel = [&](int value) {
        return static_cast<std::uint8_t>(std::clamp(value + offset, 0, 255));
    };
    return platform::RGB(channel(platform::GetRValue(rgb)), channel(platform::GetGValue(rgb)),
                         channel(platform::GetBValue(rgb)));
}

std::uint8_t GradientChannel(int from, float step, std::int32_t k) {
    const double value =
        host::RoundHalfEven(from + static_cast<double>(k) * static_cast<double>(step));
    return static_cast<std::uint8_t>(std::clamp(value, 0.0, 255.0));
}

// A frame as DrawBorderStyle takes it; style 0 draws nothing.
struct FrameSpec {
    std::int32_t style = 0;
    std::array<OLE_COLOR, 6> colours{};
};

void Draw(platform::Gdi& gdi, platform::HDC dc, std::int32_t width, std::int32_t height,
          FrameSpec frame) {
    if (frame.style == 0) return;
    auto& c = frame.colours;
    foundation::DrawBorderStyle(gdi, dc, platform::RECT{0, 0, width, height}, frame.style, c[0],
                                c[1], c[2], c[3], c[4], c[5], 0, 1);
}

std::int32_t Whole(float pixels) {
    return static_cast<std::int32_t>(std::lround(pixels));
}

}  // namespace

void FillGradient(platform::Gdi& gdi, platform::HDC dc, const platform::RECT& rect,
                  OLE_COLOR colorA, OLE_COLOR colorB, std::int32_t direction) {
    if (direction != 1 && direction != 2) return;
    const platform::COLORREF a = foundation::OleColorToRGB(gdi, colorA);
    const platform::COLORREF b = foundation::OleColorToRGB(gdi, colorB);
    const std::int32_t rows = rect.bottom;
    if (rows <= 0) return;
    const int ar = platform::GetRValue(a), ag = platform::GetGValue(a), ab = platform::GetBValue(a);
    const float dr = static_cast<float>(platform::GetRValue(b) - ar) / static_cast<float>(rows);
    const float dg = static_cast<float>(platform::GetGValue(b) - ag) / static_cast<float>(rows);
    const float db = static_cast<float>(platform::GetBValue(b) - ab) / static_cast<float>(rows);
    for (std::int32_t k = 0; k < rows; ++k) {
        // Downwards each strip starts at its row; upwards it ends there.
        const std::int32_t y = direction == 1 ? 1 + k : rows - k;
        const platform::RECT strip = direction == 1
                                         ? platform::RECT{rect.left, y, rect.right, y + 1}
                                         : platform::RECT{rect.left, y - 1, rect.right, y};
        const platform::HBRUSH brush = gdi.CreateSolidBrush(platform::RGB(
            GradientChannel(ar, dr, k), GradientChannel(ag, dg, k), GradientChannel(ab, db, k)));
        gdi.FillRect(dc, strip, brush);
        gdi.DeleteObject(brush);
    }
}

// ---------------------------------------------------------------------------------------------
// Colours

void ButtonPainter::ComputeColours() {
    const platform::COLORREF face = foundation::OleColorToRGB(Platform().gdi(), look_.buttonColor);
    colours_ = Colours{Offset(face, 0),    Offset(face, -15), Offset(face, 10), Offset(face, 40),
                       Offset(face, -100), Offset(face, 40),  Offset(face, -30)};
}

void ButtonPainter::TakeButtonColour() {
    FaceBack(look_.buttonColor);
    if (look_.style == EnumStyle::XPflat) FaceBack(kXPflatFace);
    ComputeColours();
}

void ButtonPainter::FaceBack(OLE_COLOR colour) {
    p_.face.BackColor(colour);
    faceClean_ = true;
}

OLE_COLOR ButtonPainter::PlainFace() const {
    return look_.style == EnumStyle::XPflat ? kXPflatFace : colours_.clrFace;
}

void ButtonPainter::CaptionColours() {
    if (!look_.ShowsCaption()) {
        for (forms::Label* label : {&p_.copy, &p_.caption}) {
            label->Caption("");
            label->Visible(false);
        }
        return;
    }
    const auto apply = [&](forms::Label& label, OLE_COLOR colour) {
        label.Visible(true);
        label.Caption(look_.caption);
        label.ForeColor(colour);
        if (look_.font) label.Font(look_.font->Clone());
    };
    apply(p_.caption, look_.enabled ? look_.fontColor : kDisabledCaption);
    apply(p_.copy, look_.enabled ? look_.fontShadowColor : colours_.clrLight);
}

// ---------------------------------------------------------------------------------------------
// Layout

void ButtonPainter::PlaceFace() {
    const float w = p_.control.ScaleWidth(), h = p_.control.ScaleHeight();
    float left = 0, top = 0, dw = 0, dh = 0;
    switch (look_.style) {
        case EnumStyle::Cool:
        case EnumStyle::Flat:
        case EnumStyle::XPflat:
            left = top = 1, dw = dh = 2;
            break;
        case EnumStyle::nStandard:
            left = top = 2, dw = dh = 4;
            break;
        case EnumStyle::extra:
            left = top = 3, dw = dh = 6;
            break;
        case EnumStyle::XPStyle:
        case EnumStyle::XPcool:
            left = 2, top = 3, dw = 4, dh = 6;
            break;
        default:
            break;
    }
    // A control smaller than its frame gets an empty face, not a negative one.
    p_.face.Move(left, top, std::max(0.0f, w - dw), std::max(0.0f, h - dh));
}

void ButtonPainter::EnforceMinimumSize() {
    const bool image = p_.image.Visible();
    const float iw = image ? p_.image.Width() : 0;
    const float ih = image ? p_.image.Height() : 0;
    const float cw = p_.caption.Width(), ch = p_.caption.Height();
    float w = p_.control.ScaleWidth(), h = p_.control.ScaleHeight();
    const float startW = w, startH = h;
    switch (look_.textAlignment) {
        case EnumTextAlignment::tRight:
            w = std::max(w, image ? cw + iw + 3 : cw + 2);
            if (image) h = std::max(h, ih + 2);
            break;
        case EnumTextAlignment::tBottom:
            w = std::max(w, image ? iw + 2 : cw + 2);
            if (h < ch + ih + 3) h = ch + ih + 13;
            break;
        default:
            if (image) {
                w = std::max(w, iw + 2);
                h = std::max(h, ih + 2);
            }
            break;
    }
    if (w == startW && h == startH) return;
    const auto tx = static_cast<float>(p_.control.Scale().TwipsPerPixelX());
    const auto ty = static_cast<float>(p_.control.Scale().TwipsPerPixelY());
    p_.control.Move(p_.control.Left(), p_.control.Top(), std::ceil(w) * tx, std::ceil(h) * ty);
    PlaceFace();
}

std::optional<FrameLook> ButtonPainter::Layout() {
    PlaceFace();
    EnforceMinimumSize();
    const float fw = p_.face.ScaleWidth(), fh = p_.face.ScaleHeight();
    const bool image = p_.image.Visible();
    const float iw = image ? p_.image.Width() : 0, ih = image ? p_.image.Height() : 0;
    const bool caption = look_.ShowsCaption();
    const float cw = caption ? p_.caption.Width() : 0, ch = caption ? p_.caption.Height() : 0;

    if (image) {
        switch (look_.textAlignment) {
            case EnumTextAlignment::tRight:
                p_.image.Move(fw / 2 - iw / 2 - cw / 2, fh / 2 - ih / 2);
                break;
            case EnumTextAlignment::tBottom:
                p_.image.Move(fw / 2 - iw / 2, (fh - ih - ch) / 2);
                break;
            default:
                p_.image.Move(fw / 2 - iw / 2, fh / 2 - ih / 2);
                break;
        }
    }

    if (caption) {
        float left = 0, top = 0;
        if (look_.textAlignment == EnumTextAlignment::tRight) {
            top = fh / 2 - ch / 2;
            const bool centred =
                look_.show == EnumButton::Benutzerdefiniert || look_.show == EnumButton::pOff;
            left = centred ? fw / 2 - cw / 2 : fw / 2 - cw / 2 + iw / 2;
        } else {
            left = fw / 2 - cw / 2;
            top = fh - ch - 3;
        }
        // Pressed, the caption sinks by a pixel, except on the XP faces and with the check box
        // and the red and green LEDs.
        const bool flatPressLook = look_.IsXP() || look_.style == EnumStyle::XPflat;
        const bool steadyImage = look_.show == EnumButton::CheckBox ||
                                 look_.show == EnumButton::LEDred ||
                                 look_.show == EnumButton::LEDgreen;
        if (state_.pressed && !flatPressLook && !steadyImage) {
            left += 1;
            top += 1;
        }
        p_.caption.Move(left, top);

        float dx = 0, dy = 0;
        const bool lit = state_.hotEntry || state_.pressed;
        switch (look_.font3D) {
            case Enum3D::pTop:
                dx = dy = -1;
                break;
            case Enum3D::pTopOver:
                dx = dy = lit ? -1.0f : 0.0f;
                break;
            case Enum3D::pDown:
                dx = dy = 1;
                break;
            case Enum3D::pDownOver:
                dx = dy = lit ? 1.0f : 0.0f;
                break;
            default:
                break;
        }
        if (!Platform().windows().IsWindowEnabled(p_.control.hWnd())) dx = dy = 1;
        p_.copy.Visible(true);
        p_.copy.Move(left + dx, top + dy);
    }

    // The arrow sits at the right of the face, greyed while the button is disabled.
    const bool arrow = look_.textAlignment == EnumTextAlignment::Arrow;
    for (forms::Image* glyph : {&p_.arrow, &p_.arrowGrey})
        glyph->Move(fw - glyph->Width() - 4, fh / 2 - glyph->Height() / 2);
    p_.arrow.Visible(arrow && look_.enabled);
    p_.arrowGrey.Visible(arrow && !look_.enabled);

    if (!look_.enabled) return std::nullopt;
    if (state_.pressed) {
        Frame(FrameLook::Down);
        if (look_.IsXP()) {
            Gradient(GradientLook::Turned);
        } else if (look_.gradient) {
            Gradient(GradientLook::Normal);
        }
        return FrameLook::Down;
    }
    if ((look_.gradient || look_.style == EnumStyle::XPStyle) && look_.style != EnumStyle::XPflat &&
        look_.style != EnumStyle::Cool)
        Gradient(GradientLook::Normal);
    if (look_.RestsPlain()) {
        FaceBack(colours_.clrFace);
        Frame(FrameLook::Plain);
        return FrameLook::Plain;
    }
    Frame(FrameLook::Normal);
    return FrameLook::Normal;
}

// ---------------------------------------------------------------------------------------------
// Frame and gradient

void ButtonPainter::Frame(FrameLook look) {
    platform::Gdi& gdi = Platform().gdi();
    const auto w = Whole(p_.control.ScaleWidth());
    const auto h = Whole(p_.control.ScaleHeight());
    p_.control.Cls();
    const Colours& c = colours_;
    FrameSpec frame;
    switch (look) {
        case FrameLook::Plain:
            FaceBack(PlainFace());
            break;
        case FrameLook::Normal:
        case FrameLook::Hover: {
            const bool hover = look == FrameLook::Hover;
            switch (look_.style) {
                case EnumStyle::Flat:
                    frame = {1, {c.clrDark, c.clrLight, 0, 0, 0, 0}};
                    break;
                case EnumStyle::Cool:
                    if (!hover)
                        FaceBack(c.clrFace);
                    else
                        frame = {1, {c.clrDark, c.clrLight, 0, 0, 0, 0}};
                    break;
                case EnumStyle::XPcool:
                    if (!hover)
                        FaceBack(c.clrFace);
                    else
                        frame = {4,
                                 {kXPcoolOuter, c.clrLight, c.clrGradTop, c.clrGradBottom,
                                  c.clrGradTop, c.clrGradBottom}};
                    break;
                case EnumStyle::nStandard:
                    frame = {2,
                             {0, c.clrLight, c.clrDark,
                              look_.gradient ? c.clrGradTop : kStandardInner, 0, 0}};
                    break;
                case EnumStyle::extra:
                    frame = {3, {0, c.clrLight, c.clrDark, c.clrLight, c.clrDark, 0}};
                    break;
                case EnumStyle::XPStyle:
                    if (!look_.enabled) {
                        frame = {4,
                                 {kDisabledOuter, kDisabledInner, kDisabledInner, kDisabledInner,
                                  kDisabledInner, kDisabledInner}};
                    } else if (hover && state_.hotEntry) {
                        frame = {4,
                                 {kXPStyleOuter, kHotOrange, kHotYellow, kHotOrange, kHotOrange,
                                  kHotOrange}};
                    } else {
                        frame = {4,
                                 {kXPStyleOuter, c.clrLight, c.clrGradTop, c.clrGradBottom,
                                  c.clrGradTop, c.clrGradBottom}};
                    }
                    break;
                default:
                    break;
            }
            break;
        }
        case FrameLook::Down: {
            // The simple styles swap their two colours (sunken), the XP styles the gradient's.
            const OLE_COLOR face = p_.face.BackColor();
            switch (look_.style) {
                case EnumStyle::Flat:
                case EnumStyle::Cool:
                    frame = {1, {c.clrLight, c.clrDark, 0, 0, 0, 0}};
                    break;
                case EnumStyle::nStandard:
                    frame = {
                        2,
                        {c.clrLight, 0, look_.gradient ? c.clrGradBottom : face, c.clrDark, 0, 0}};
                    break;
                case EnumStyle::extra:
                    frame = look_.gradient ? FrameSpec{3,
                                                       {0, c.clrDark, c.clrGradBottom, c.clrGradTop,
                                                        c.clrGradBottom, 0}}
                                           : FrameSpec{3, {0, c.clrDark, face, face, face, 0}};
                    break;
                case EnumStyle::XPStyle:
                    frame = {4,
                             {kXPStyleOuter, c.clrLight, c.clrGradBottom, c.clrGradTop,
                              c.clrGradBottom, c.clrGradTop}};
                    break;
                case EnumStyle::XPcool:
                    frame = {4,
                             {kXPcoolOuter, c.clrLight, c.clrGradBottom, c.clrGradTop,
                              c.clrGradBottom, c.clrGradTop}};
                    break;
                default:
                    break;
            }
            break;
        }
    }
    Draw(gdi, p_.control.hDC(), w, h, frame);
    p_.control.Refresh();
}

void ButtonPainter::Gradient(GradientLook look) {
    if (state_.bigPicture) return;
    if (!look_.gradient && !look_.IsXP()) {
        FaceBack(PlainFace());
        return;
    }
    const auto w = Whole(p_.face.ScaleWidth());
    const auto h = Whole(p_.face.ScaleHeight());
    if (p_.face.Picture()) p_.face.Picture(nullptr);
    FaceBack(look == GradientLook::Normal ? colours_.clrGradTop : colours_.clrGradBottom);
    FillGradient(Platform().gdi(), p_.face.hDC(), platform::RECT{0, 0, w, h}, colours_.clrGradTop,
                 colours_.clrGradBottom, static_cast<std::int32_t>(look));
    p_.face.Refresh();
}

// ---------------------------------------------------------------------------------------------
// Focus rectangle

bool ButtonPainter::Focus(bool focusRectOn) {
    const bool show = state_.hasFocus && !state_.noFrmFocus;
    const Colours& c = colours_;
    if (look_.IsXP() || look_.style == EnumStyle::Cool) {
        // Only XPStyle shows the focus, in its frame; the hot frame of an entered button wins.
        if (look_.style != EnumStyle::XPStyle || state_.hotEntry) return false;
        const FrameSpec frame = show ? FrameSpec{4,
                                                 {kXPStyleOuter, kFocusBlue, kFocusBlue, kFocusBlue,
                                                  c.clrGradTop, c.clrGradBottom}}
                                     : FrameSpec{4,
                                                 {kXPStyleOuter, c.clrLight, c.clrGradTop,
                                                  c.clrGradBottom, c.clrGradTop, c.clrGradBottom}};
        p_.control.Cls();
        Draw(Platform().gdi(), p_.control.hDC(), Whole(p_.control.ScaleWidth()),
             Whole(p_.control.ScaleHeight()), frame);
        p_.control.Refresh();
        return false;
    }
    if (!show || state_.hotEntry || state_.pressed) {
        if (!focusRectOn || faceClean_) return false;
        faceClean_ = true;
        if (state_.bigPicture) return true;
        Gradient(GradientLook::Normal);
        faceClean_ = true;
        return false;
    }
    // Inverting under a dotted pen: drawn twice, the rectangle is gone again.
    platform::Gdi& gdi = Platform().gdi();
    const platform::HDC dc = p_.face.hDC();
    const int previousRop = gdi.SetROP2(dc, platform::R2_NOTXORPEN);
    const platform::HPEN pen = gdi.CreatePen(platform::PS_DOT, 1, 0);
    gdi.SelectObject(dc, pen);
    const platform::HGDIOBJ previousBrush =
        gdi.SelectObject(dc, gdi.GetStockObject(platform::NULL_BRUSH));
    gdi.Rectangle(dc, 1, 1, Whole(p_.face.ScaleWidth()) - 1, Whole(p_.face.ScaleHeight()) - 1);
    gdi.SelectObject(dc, previousBrush);
    gdi.SelectObject(dc, gdi.GetStockObject(platform::BLACK_PEN));
    gdi.DeleteObject(pen);
    gdi.SetROP2(dc, previousRop);
    faceClean_ = false;
    p_.face.Refresh();
    return false;
}

}  // namespace korvex::controls
