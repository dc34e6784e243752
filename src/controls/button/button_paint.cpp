// Button: derived colours, face placement, frame and gradient states, caption colours, the
// layout pass and the focus rectangle.

#include <algorithm>
#include <cmath>

#include "controls/button/button.hpp"
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
    const auto channel = [&](int value) { return static_cast<std::uint8_t>(std::clamp(value + offset, 0, 255)); };
    return platform::RGB(channel(platform::GetRValue(rgb)), channel(platform::GetGValue(rgb)),
                         channel(platform::GetBValue(rgb)));
}

std::uint8_t GradientChannel(int from, float step, std::int32_t k) {
    const double value = host::RoundHalfEven(from + static_cast<double>(k) * static_cast<double>(step));
    return static_cast<std::uint8_t>(std::clamp(value, 0.0, 255.0));
}

// A frame as DrawBorderStyle takes it; style 0 draws nothing.
struct FrameSpec {
    std::int32_t style = 0;
    std::array<OLE_COLOR, 6> colours{};
};

void Draw(platform::Gdi& gdi, platform::HDC dc, std::int32_t width, std::int32_t height, FrameSpec frame) {
    if (frame.style == 0) return;
    auto& c = frame.colours;
    foundation::DrawBorderStyle(gdi, dc, platform::RECT{0, 0, width, height}, frame.style, c[0], c[1], c[2], c[3],
                                c[4], c[5], 0, 1);
}

}  // namespace

void FillGradient(platform::Gdi& gdi, platform::HDC dc, const platform::RECT& rect, OLE_COLOR colorA,
                  OLE_COLOR colorB, std::int32_t direction) {
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
        const platform::RECT strip = direction == 1 ? platform::RECT{rect.left, y, rect.right, y + 1}
                                                    : platform::RECT{rect.left, y - 1, rect.right, y};
        const platform::HBRUSH brush = gdi.CreateSolidBrush(
            platform::RGB(GradientChannel(ar, dr, k), GradientChannel(ag, dg, k), GradientChannel(ab, db, k)));
        gdi.FillRect(dc, strip, brush);
        gdi.DeleteObject(brush);
    }
}

// ---------------------------------------------------------------------------------------------
// Colours

void Button::ComputeColours() {
    const platform::COLORREF face = foundation::OleColorToRGB(Platform().gdi(), ButtonColor_);
    colours_ = Colours{Offset(face, 0),  Offset(face, -15), Offset(face, 10), Offset(face, 40),
                       Offset(face, -100), Offset(face, 40), Offset(face, -30)};
}

void Button::SetFaceBack(OLE_COLOR colour) {
    PicBild1.BackColor(colour);
    faceClean_ = true;
}

void Button::CaptionColours() {
    const bool shown = TextAlignment_ == EnumTextAlignment::tRight || TextAlignment_ == EnumTextAlignment::tBottom;
    if (!shown) {
        for (forms::Label* label : {&lbl1, &lbl2}) {
            label->Caption("");
            label->Visible(false);
        }
        return;
    }
    const auto apply = [&](forms::Label& label, OLE_COLOR colour) {
        label.Visible(true);
        label.Caption(Caption_);
        label.ForeColor(colour);
        if (Font_) label.Font(Font_->Clone());
    };
    apply(lbl2, EnabledB_ ? FontColor_ : kDisabledCaption);
    apply(lbl1, EnabledB_ ? FontShadowColor_ : colours_.clrLight);
}

// ---------------------------------------------------------------------------------------------
// Layout

void Button::PlaceFace() {
    const float w = UserControl.ScaleWidth(), h = UserControl.ScaleHeight();
    float left = 0, top = 0, dw = 0, dh = 0;
    switch (BorderStyle_) {
        case EnumStyle::Cool:
        case EnumStyle::Flat:
        case EnumStyle::XPflat: left = top = 1, dw = dh = 2; break;
        case EnumStyle::nStandard: left = top = 2, dw = dh = 4; break;
        case EnumStyle::extra: left = top = 3, dw = dh = 6; break;
        case EnumStyle::XPStyle:
        case EnumStyle::XPcool: left = 2, top = 3, dw = 4, dh = 6; break;
        default: break;
    }
    // A control smaller than its frame gets an empty face, not a negative one.
    PicBild1.Move(left, top, std::max(0.0f, w - dw), std::max(0.0f, h - dh));
}

void Button::EnforceMinimumSize() {
    const float iw = imgBild.Visible() ? imgBild.Width() : 0;
    const float ih = imgBild.Visible() ? imgBild.Height() : 0;
    const bool image = imgBild.Visible();
    const float cw = lbl2.Width(), ch = lbl2.Height();
    float w = UserControl.ScaleWidth(), h = UserControl.ScaleHeight();
    const float startW = w, startH = h;
    switch (TextAlignment_) {
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
    const auto tx = static_cast<float>(UserControl.Scale().TwipsPerPixelX());
    const auto ty = static_cast<float>(UserControl.Scale().TwipsPerPixelY());
    UserControl.Move(UserControl.Left(), UserControl.Top(), std::ceil(w) * tx, std::ceil(h) * ty);
    PlaceFace();
}

void Button::LayoutPass() {
    PlaceFace();
    EnforceMinimumSize();
    const float fw = PicBild1.ScaleWidth(), fh = PicBild1.ScaleHeight();
    const bool image = imgBild.Visible();
    const float iw = image ? imgBild.Width() : 0, ih = image ? imgBild.Height() : 0;
    const bool caption = TextAlignment_ == EnumTextAlignment::tRight || TextAlignment_ == EnumTextAlignment::tBottom;
    const float cw = caption ? lbl2.Width() : 0, ch = caption ? lbl2.Height() : 0;

    if (image) {
        switch (TextAlignment_) {
            case EnumTextAlignment::tRight: imgBild.Move(fw / 2 - iw / 2 - cw / 2, fh / 2 - ih / 2); break;
            case EnumTextAlignment::tBottom: imgBild.Move(fw / 2 - iw / 2, (fh - ih - ch) / 2); break;
            default: imgBild.Move(fw / 2 - iw / 2, fh / 2 - ih / 2); break;
        }
    }

    if (caption) {
        float left = 0, top = 0;
        if (TextAlignment_ == EnumTextAlignment::tRight) {
            top = fh / 2 - ch / 2;
            const bool centred = ButtonShow_ == EnumButton::Benutzerdefiniert || ButtonShow_ == EnumButton::pOff;
            left = centred ? fw / 2 - cw / 2 : fw / 2 - cw / 2 + iw / 2;
        } else {
            left = fw / 2 - cw / 2;
            top = fh - ch - 3;
        }
        const bool flatPressLook = BorderStyle_ == EnumStyle::XPStyle || BorderStyle_ == EnumStyle::XPcool ||
                                   BorderStyle_ == EnumStyle::XPflat;
        const auto show = static_cast<std::int32_t>(ButtonShow_);
        if (mPressed && !flatPressLook && show != 42 && show != 43 && show != 44) {
            left += 1;
            top += 1;
        }
        lbl2.Move(left, top);

        float dx = 0, dy = 0;
        const bool lit = mHotEntry || mPressed;
        switch (Font3D_) {
            case Enum3D::pTop: dx = dy = -1; break;
            case Enum3D::pTopOver: dx = dy = lit ? -1.0f : 0.0f; break;
            case Enum3D::pDown: dx = dy = 1; break;
            case Enum3D::pDownOver: dx = dy = lit ? 1.0f : 0.0f; break;
            default: break;
        }
        if (!Platform().windows().IsWindowEnabled(UserControl.hWnd())) dx = dy = 1;
        lbl1.Visible(true);
        lbl1.Move(left + dx, top + dy);
    }

    // The arrow sits at the right of the face, greyed while the button is disabled.
    const bool arrow = TextAlignment_ == EnumTextAlignment::Arrow;
    for (forms::Image* glyph : {&pfl, &pfle}) glyph->Move(fw - glyph->Width() - 4, fh / 2 - glyph->Height() / 2);
    pfl.Visible(arrow && EnabledB_);
    pfle.Visible(arrow && !EnabledB_);

    if (!EnabledB_) return;
    const bool coolNormal = BorderStyle_ == EnumStyle::Cool || BorderStyle_ == EnumStyle::XPcool;
    if (!mPressed) {
        if ((Gradient_ || BorderStyle_ == EnumStyle::XPStyle) && BorderStyle_ != EnumStyle::XPflat &&
            BorderStyle_ != EnumStyle::Cool)
            GradientState(1);
        if (coolNormal) {
            SetFaceBack(colours_.clrFace);
            FrameState(0);
        } else {
            FrameState(1);
        }
    } else {
        FrameState(3);
        if (IsXP()) {
            GradientState(2);
        } else if (Gradient_) {
            GradientState(1);
        }
    }
}

// ---------------------------------------------------------------------------------------------
// Frame and gradient

void Button::FrameState(std::int16_t s) {
    platform::Gdi& gdi = Platform().gdi();
    const auto w = static_cast<std::int32_t>(std::lround(UserControl.ScaleWidth()));
    const auto h = static_cast<std::int32_t>(std::lround(UserControl.ScaleHeight()));
    UserControl.Cls();
    const Colours& c = colours_;
    FrameSpec frame;
    if (s == 0) {
        SetFaceBack(PlainFace());
    } else if (s == 1 || s == 2) {
        switch (BorderStyle_) {
            case EnumStyle::Flat: frame = {1, {c.clrDark, c.clrLight, 0, 0, 0, 0}}; break;
            case EnumStyle::Cool:
                if (s == 1) SetFaceBack(c.clrFace);
                else frame = {1, {c.clrDark, c.clrLight, 0, 0, 0, 0}};
                break;
            case EnumStyle::XPcool:
                if (s == 1) SetFaceBack(c.clrFace);
                else frame = {4, {kXPcoolOuter, c.clrLight, c.clrGradTop, c.clrGradBottom, c.clrGradTop, c.clrGradBottom}};
                break;
            case EnumStyle::nStandard:
                frame = {2, {0, c.clrLight, c.clrDark, Gradient_ ? c.clrGradTop : kStandardInner, 0, 0}};
                break;
            case EnumStyle::extra: frame = {3, {0, c.clrLight, c.clrDark, c.clrLight, c.clrDark, 0}}; break;
            case EnumStyle::XPStyle:
                if (!EnabledB_) {
                    frame = {4, {kDisabledOuter, kDisabledInner, kDisabledInner, kDisabledInner, kDisabledInner,
                                 kDisabledInner}};
                } else if (s == 2 && mHotEntry) {
                    frame = {4, {kXPStyleOuter, kHotOrange, kHotYellow, kHotOrange, kHotOrange, kHotOrange}};
                } else {
                    frame = {4, {kXPStyleOuter, c.clrLight, c.clrGradTop, c.clrGradBottom, c.clrGradTop,
                                 c.clrGradBottom}};
                }
                break;
            default: break;
        }
    } else if (s == 3) {
        const OLE_COLOR face = PicBild1.BackColor();
        switch (BorderStyle_) {
            case EnumStyle::Flat:
            case EnumStyle::Cool: frame = {1, {c.clrLight, c.clrDark, 0, 0, 0, 0}}; break;
            case EnumStyle::nStandard:
                frame = {2, {c.clrLight, 0, Gradient_ ? c.clrGradBottom : face, c.clrDark, 0, 0}};
                break;
            case EnumStyle::extra:
                frame = Gradient_ ? FrameSpec{3, {0, c.clrDark, c.clrGradBottom, c.clrGradTop, c.clrGradBottom, 0}}
                                  : FrameSpec{3, {0, c.clrDark, face, face, face, 0}};
                break;
            case EnumStyle::XPStyle:
                frame = {4, {kXPStyleOuter, c.clrLight, c.clrGradBottom, c.clrGradTop, c.clrGradBottom, c.clrGradTop}};
                break;
            case EnumStyle::XPcool:
                frame = {4, {kXPcoolOuter, c.clrLight, c.clrGradBottom, c.clrGradTop, c.clrGradBottom, c.clrGradTop}};
                break;
            default: break;
        }
    }
    Draw(gdi, UserControl.hDC(), w, h, frame);
    mFrameState = s;
    UserControl.Refresh();
}

void Button::GradientState(std::int16_t s) {
    if (mBigPicture) return;
    const bool xp = BorderStyle_ == EnumStyle::XPStyle || BorderStyle_ == EnumStyle::XPcool;
    if (!Gradient_ && !xp) {
        SetFaceBack(PlainFace());
        return;
    }
    const auto w = static_cast<std::int32_t>(std::lround(PicBild1.ScaleWidth()));
    const auto h = static_cast<std::int32_t>(std::lround(PicBild1.ScaleHeight()));
    if (PicBild1.Picture()) PicBild1.Picture(nullptr);
    SetFaceBack(s == 1 ? colours_.clrGradTop : colours_.clrGradBottom);
    FillGradient(Platform().gdi(), PicBild1.hDC(), platform::RECT{0, 0, w, h}, colours_.clrGradTop,
                 colours_.clrGradBottom, s);
    PicBild1.Refresh();
}

// ---------------------------------------------------------------------------------------------
// Focus rectangle

void Button::DrawFocusRect() {
    const bool show = mHasFocus && !mNoFrmFocus;
    const Colours& c = colours_;
    if (IsXP() || BorderStyle_ == EnumStyle::Cool) {
        // Only XPStyle shows the focus, in its frame; the hot frame of an entered button wins.
        if (BorderStyle_ != EnumStyle::XPStyle || mHotEntry) return;
        const FrameSpec frame =
            show ? FrameSpec{4, {kXPStyleOuter, kFocusBlue, kFocusBlue, kFocusBlue, c.clrGradTop, c.clrGradBottom}}
                 : FrameSpec{4, {kXPStyleOuter, c.clrLight, c.clrGradTop, c.clrGradBottom, c.clrGradTop,
                                 c.clrGradBottom}};
        UserControl.Cls();
        Draw(Platform().gdi(), UserControl.hDC(), static_cast<std::int32_t>(std::lround(UserControl.ScaleWidth())),
             static_cast<std::int32_t>(std::lround(UserControl.ScaleHeight())), frame);
        UserControl.Refresh();
        return;
    }
    if (!show || mHotEntry || mPressed) {
        if (FocusRect_ && !faceClean_) {
            if (mBigPicture) {
                ImageState(1);
            } else {
                GradientState(1);
            }
            faceClean_ = true;
        }
        return;
    }
    // Inverting under a dotted pen: drawn twice, the rectangle is gone again.
    platform::Gdi& gdi = Platform().gdi();
    const platform::HDC dc = PicBild1.hDC();
    const int previousRop = gdi.SetROP2(dc, platform::R2_NOTXORPEN);
    const platform::HPEN pen = gdi.CreatePen(platform::PS_DOT, 1, 0);
    gdi.SelectObject(dc, pen);
    const platform::HGDIOBJ previousBrush = gdi.SelectObject(dc, gdi.GetStockObject(platform::NULL_BRUSH));
    gdi.Rectangle(dc, 1, 1, static_cast<std::int32_t>(std::lround(PicBild1.ScaleWidth())) - 1,
                  static_cast<std::int32_t>(std::lround(PicBild1.ScaleHeight())) - 1);
    gdi.SelectObject(dc, previousBrush);
    gdi.SelectObject(dc, gdi.GetStockObject(platform::BLACK_PEN));
    gdi.DeleteObject(pen);
    gdi.SetROP2(dc, previousRop);
    faceClean_ = false;
    PicBild1.Refresh();
}

}  // namespace korvex::controls
