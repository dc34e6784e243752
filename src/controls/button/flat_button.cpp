#include "controls/button/flat_button.hpp"

#include <algorithm>
#include <cmath>
#include <span>
#include <string_view>
#include <vector>

#include "forms/text_layout.hpp"
#include "foundation/color.hpp"
#include "foundation/hover.hpp"
#include "host/numeric.hpp"
#include "platform/window.hpp"

namespace korvex::controls {

using host::Arg;
using host::ClassBuilder;
using host::ClassInfo;
using host::OLE_COLOR;
using host::TypeCode;
using host::Variant;

namespace {

constexpr std::int16_t kKeyReturn = 13;
constexpr std::int64_t kFireHoldMs = 100;

// The bevel colours of the three looks.
constexpr OLE_COLOR kRing = 0x00C0C0C0;
constexpr OLE_COLOR kLight = 0x00D6E6E7;
constexpr OLE_COLOR kDark = 0x00868686;
constexpr OLE_COLOR kWhite = 0x00FFFFFF;

// Pixels between the control's edge and the dotted focus rectangle: inside the two-pixel bevel,
// with one pixel of face between them.
constexpr std::int32_t kFocusInset = 3;

bool KeyIsDown(platform::Windows& windows, int key) {
    return (static_cast<std::uint16_t>(windows.GetAsyncKeyState(key)) & 0x8000u) != 0;
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Bevel painter

// Each edge is one MoveToEx/LineTo with a pen of its own; end points are not painted, so every
// edge below names its last pixel plus one. On a half-open rect l, t, r, b:
//
//   mode 1 (single ring, corners open)      mode 2 (two-tone bevel)
//   pass 1  colour 1  ring, each edge two   pass 1  colour 1  outer top    l .. r-2
//                     pixels short of both  pass 2  colour 2  outer bottom l .. r-1
//                     corners               pass 3  colour 1  outer left   t .. b-2
//   pass 2  colour 1  top corner dots       pass 4  colour 2  outer right  t .. b-2
//                     (l+1, t+1), (r-2, t+1)
//   pass 3  colour 1  bottom corner dots    pass 5  colour 3  inner top and left
//   pass 4  colour 4  the ring just inside  pass 6  colour 4  inner bottom and right
//
// A width above 1 repeats the outer passes one pixel further inside per step; the last pass (or
// pair) lies inside the innermost ring. Mode 2 with a light colour 1 and dark colour 2 looks
// raised, with the pairs swapped sunken.
void DrawFlatBevel(platform::Gdi& gdi, platform::HDC dc, const platform::RECT& rect,
                   std::int32_t mode, OLE_COLOR color1, OLE_COLOR color2, OLE_COLOR color3,
                   OLE_COLOR color4, std::int32_t penStyle, std::int32_t width) {
    const platform::COLORREF c1 = foundation::OleColorToRGB(gdi, color1);
    const platform::COLORREF c2 = foundation::OleColorToRGB(gdi, color2);
    const platform::COLORREF c3 = foundation::OleColorToRGB(gdi, color3);
    const platform::COLORREF c4 = foundation::OleColorToRGB(gdi, color4);
    if (mode != 1 && mode != 2) return;

    platform::HPEN current{};
    const auto edge = [&](platform::COLORREF color, std::int32_t x0, std::int32_t y0,
                          std::int32_t x1, std::int32_t y1) {
        const platform::HPEN pen = gdi.CreatePen(penStyle, 1, color);
        gdi.SelectObject(dc, pen);
        if (current) gdi.DeleteObject(current);
        current = pen;
        gdi.MoveToEx(dc, x0, y0, nullptr);
        gdi.LineTo(dc, x1, y1);
    };
    const std::int32_t steps = std::max(width, 1);
    const auto inset = [&rect](std::int32_t i) {
        return platform::RECT{rect.left + i, rect.top + i, rect.right - i, rect.bottom - i};
    };

    if (mode == 1) {
        for (std::int32_t i = 0; i < steps; ++i) {
            const auto [l, t, r, b] = inset(i);
            edge(c1, l + 2, t, r - 2, t);
            edge(c1, r - 1, t + 2, r - 1, b - 2);
            edge(c1, l + 2, b - 1, r - 2, b - 1);
            edge(c1, l, t + 2, l, b - 2);
        }
        for (std::int32_t i = 0; i < steps; ++i) {
            const auto [l, t, r, b] = inset(i);
            edge(c1, l + 1, t + 1, l + 2, t + 1);
            edge(c1, r - 2, t + 1, r - 1, t + 1);
        }
        for (std::int32_t i = 0; i < steps; ++i) {
            const auto [l, t, r, b] = inset(i);
            edge(c1, l + 1, b - 2, l + 2, b - 2);
            edge(c1, r - 2, b - 2, r - 1, b - 2);
        }
        const auto [l, t, r, b] = inset(steps - 1);
        edge(c4, l + 2, t + 1, r - 2, t + 1);
        edge(c4, r - 2, t + 2, r - 2, b - 2);
        edge(c4, l + 2, b - 2, r - 2, b - 2);
        edge(c4, l + 1, t + 2, l + 1, b - 2);
    } else {
        for (std::int32_t i = 0; i < steps; ++i) {
            const auto [l, t, r, b] = inset(i);
            edge(c1, l, t, r - 1, t);
            edge(c2, l, b - 1, r, b - 1);
            edge(c1, l, t, l, b - 1);
            edge(c2, r - 1, t, r - 1, b - 1);
        }
        const auto [l, t, r, b] = inset(steps);
        edge(c3, l, t, r - 1, t);
        edge(c3, l, t, l, b - 1);
        edge(c4, l, b - 1, r, b - 1);
        edge(c4, r - 1, t, r - 1, b - 1);
    }
    gdi.SelectObject(dc, gdi.GetStockObject(platform::BLACK_PEN));
    if (current) gdi.DeleteObject(current);
}

// ---------------------------------------------------------------------------------------------
// Member table

// The caption's default is the display name, on writing and on reading, so a new button stores
// nothing and keeps its name as caption. "Enabled" is persisted but has no member in the table:
// the host's extender owns that name.
struct FlatButton::Props {
    template <class V>
    using P = host::Property<FlatButton, V>;
    static std::string DisplayName(const FlatButton& b) { return b.Ambient().DisplayName; }
    static inline const P<std::string> Caption{.name = "Caption",
                                               .get = &FlatButton::Caption,
                                               .set = &FlatButton::Caption,
                                               .read = {&DisplayName, "the display name"}};
    // The ambient font.
    static inline const P<std::shared_ptr<host::StdFont>> Font{
        .name = "Font", .get = &FlatButton::Font, .set = &FlatButton::Font};
    static inline const P<bool> Enabled{
        .name = "Enabled", .get = &FlatButton::Enabled, .set = &FlatButton::Enabled, .read = true};
    static inline const P<OLE_COLOR> TextColor{.name = "TextColor",
                                               .get = &FlatButton::TextColor,
                                               .set = &FlatButton::TextColor,
                                               .read = 0x80000012U};
    static inline const P<OLE_COLOR> HoverColor{.name = "HoverColor",
                                                .get = &FlatButton::HoverColor,
                                                .set = &FlatButton::HoverColor,
                                                .read = 0x80000012U};
    static inline const P<OLE_COLOR> BackColor{.name = "BackColor",
                                               .get = &FlatButton::BackColor,
                                               .set = &FlatButton::BackColor,
                                               .read = 0x8000000FU};
    static inline const P<bool> UseMnemonic{.name = "UseMnemonic",
                                            .get = &FlatButton::UseMnemonic,
                                            .set = &FlatButton::UseMnemonic,
                                            .read = true};
    static inline const P<bool> Default{
        .name = "Default", .get = &FlatButton::Default, .set = &FlatButton::Default, .read = false};
    static inline const P<bool> Cancel{
        .name = "Cancel", .get = &FlatButton::Cancel, .set = &FlatButton::Cancel, .read = false};
    static inline const P<bool> FocusRect{.name = "FocusRect",
                                          .get = &FlatButton::FocusRect,
                                          .set = &FlatButton::FocusRect,
                                          .read = false};
};

const ClassInfo& FlatButton::Class() {
    static const ClassInfo info =
        ClassBuilder<FlatButton>("FlatButton", "Korvex_Tools.FlatButton")
            .Property(Props::Caption)
            .Property(Props::Font)
            .Property(Props::TextColor)
            .Property(Props::HoverColor)
            .Property(Props::BackColor)
            .Property(Props::UseMnemonic)
            .Property(Props::Default)
            .Property(Props::Cancel)
            .Property(Props::FocusRect)
            .ReadOnly(KORVEX_READONLY(hwnd))
            .ReadOnly(KORVEX_READONLY(HDC))
            .ReadOnly(KORVEX_READONLY(BackFocus))
            .Method("sFocus", {}, [](FlatButton& c, std::span<Variant>) { c.sFocus(); })
            .Events<FlatButtonEvents>(
                {{FlatButtonEvents::MouseDown, host::MouseEventArgs()},
                 {FlatButtonEvents::MouseUp, host::MouseEventArgs()},
                 {FlatButtonEvents::MouseMove, host::MouseEventArgs()},
                 {FlatButtonEvents::KeyDown, host::KeyEventArgs()},
                 {FlatButtonEvents::KeyPress, {Arg("KeyAscii", TypeCode::Integer)}},
                 {FlatButtonEvents::KeyUp, host::KeyEventArgs()}})
            .Build();
    return info;
}

FlatButton::FlatButton(host::HostContext& context)
    : SurfaceControl(context), tmrEvents(UserControl.Platform()) {
    StartValues();
    tmrEvents.Interval(1);
    tmrEvents.Tick = [this] { OnPoll(); };

    forms::SurfaceEvents& surface = UserControl.events;
    surface.MouseDown = [this](std::int16_t Button, std::int16_t Shift, float x, float y) {
        // A click gives the button the focus, as a window of its own would take it; a refusal
        // (hidden or disabled window) is of no concern to the press.
        try {
            UserControl.SetFocus();
        } catch (const host::HostError&) {
        }
        DoMouseDown(Button, Shift, x, y);
    };
    // The second press of a double click comes as DblClick: it presses the button again.
    surface.DblClick = [this] { DoMouseDown(1, 0, lastX_, lastY_); };
    surface.MouseMove = [this](std::int16_t Button, std::int16_t Shift, float x, float y) {
        DoMouseMove(Button, Shift, x, y);
    };
    surface.MouseUp = [this](std::int16_t Button, std::int16_t Shift, float x, float y) {
        DoMouseUp(Button, Shift, x, y);
    };
    surface.KeyDown = [this](std::int16_t& KeyCode, std::int16_t Shift) {
        if (KeyCode == kKeyReturn) DoMouseDown(1, 0, 0, 0);
        RaiseEvent(FlatButtonEvents::KeyDown, KeyCode, Shift);
    };
    surface.KeyPress = [this](std::int16_t& KeyAscii) {
        RaiseEvent(FlatButtonEvents::KeyPress, KeyAscii);
    };
    surface.KeyUp = [this](std::int16_t& KeyCode, std::int16_t Shift) {
        if (KeyCode == kKeyReturn) DoMouseUp(1, 0, 0, 0);
        RaiseEvent(FlatButtonEvents::KeyUp, KeyCode, Shift);
    };
    surface.GotFocus = [this] {
        if (!FocusRect_) return;
        fHasFocus = true;
        // While a button is held the press repaints anyway, with the focus shown.
        if (!fMouseDown) Paint();
    };
    surface.LostFocus = [this] {
        if (!FocusRect_) return;
        fHasFocus = false;
        Paint();
    };
}

// ---------------------------------------------------------------------------------------------
// Lifecycle

// The values a new button has, apart from its caption and font, which come from the host.
void FlatButton::StartValues() {
    TextColor_ = Props::TextColor.Initial(*this);
    HoverColor_ = Props::HoverColor.Initial(*this);
    UseMnemonic_ = Props::UseMnemonic.Initial(*this);
    Default_ = Props::Default.Initial(*this);
    Cancel_ = Props::Cancel.Initial(*this);
    FocusRect_ = Props::FocusRect.Initial(*this);
}

void FlatButton::UserControl_InitProperties() {
    Caption_ = Props::Caption.Initial(*this);
    if (const auto font = Props::Font.Initial(*this)) UserControl.Font(font);
    WatchFont();
    UserControl.Enabled(Props::Enabled.Initial(*this));
    StartValues();
    UserControl.BackColor(Props::BackColor.Initial(*this));
    ComputeAccessKey();
}

// Stored directly, without the setters' repaints and change notes; one paint at the end.
void FlatButton::UserControl_ReadProperties(host::PropertyBag& PropBag) {
    Caption_ = Props::Caption.Read(*this, PropBag);
    if (const auto font = Props::Font.Read(*this, PropBag)) UserControl.Font(font);
    WatchFont();
    UserControl.Enabled(Props::Enabled.Read(*this, PropBag));
    TextColor_ = Props::TextColor.Read(*this, PropBag);
    HoverColor_ = Props::HoverColor.Read(*this, PropBag);
    UserControl.BackColor(Props::BackColor.Read(*this, PropBag));
    UseMnemonic_ = Props::UseMnemonic.Read(*this, PropBag);
    Default_ = Props::Default.Read(*this, PropBag);
    Cancel_ = Props::Cancel.Read(*this, PropBag);
    FocusRect_ = Props::FocusRect.Read(*this, PropBag);
    ComputeAccessKey();
    Paint();
}

void FlatButton::UserControl_WriteProperties(host::PropertyBag& PropBag) {
    Props::Caption.Save(*this, PropBag);
    Props::Font.Save(*this, PropBag);
    Props::Enabled.Save(*this, PropBag);
    Props::TextColor.Save(*this, PropBag);
    Props::HoverColor.Save(*this, PropBag);
    Props::BackColor.Save(*this, PropBag);
    Props::UseMnemonic.Save(*this, PropBag);
    Props::Default.Save(*this, PropBag);
    Props::Cancel.Save(*this, PropBag);
    Props::FocusRect.Save(*this, PropBag);
}

void FlatButton::UserControl_Resize() {
    Paint();
}

// ---------------------------------------------------------------------------------------------
// Input

void FlatButton::DoMouseDown(std::int16_t Button, std::int16_t Shift, float x, float y) {
    fMouseDown = true;
    fEnteredDown = false;
    RaiseEvent(FlatButtonEvents::MouseDown, Button, Shift, x, y);
    if (Button != 0) {
        fPressedLook = true;
        Paint();
    }
}

void FlatButton::DoMouseMove(std::int16_t Button, std::int16_t Shift, float x, float y) {
    lastX_ = x;
    lastY_ = y;
    if (Button != 0) {
        const bool inside =
            x >= 0 && y >= 0 && x < UserControl.ScaleWidth() && y < UserControl.ScaleHeight();
        if (inside) {
            const bool repaint = !fPressedLook || FocusRect_;
            fPressedLook = true;
            if (!fMouseDown) fEnteredDown = true;
            if (repaint) Paint();
        } else {
            fEnteredDown = false;
        }
    }
    RaiseEvent(FlatButtonEvents::MouseMove, Button, Shift, x, y);
}

// The host may drop the control from a MouseUp handler (a message box closing on its button);
// the control stays alive until the routine is done, as an object does while it raises events.
void FlatButton::DoMouseUp(std::int16_t Button, std::int16_t Shift, float x, float y) {
    const std::shared_ptr<host::Object> alive = weak_from_this().lock();
    lastX_ = x;
    lastY_ = y;
    fMouseDown = false;
    fEnteredDown = false;
    RaiseEvent(FlatButtonEvents::MouseUp, Button, Shift, x, y);
    const bool wasPressed = fPressedLook;
    fPressedLook = false;
    Paint();
    if (wasPressed) RaiseEvent(FlatButtonEvents::Click);
}

// The poll: pointer first, then the keys. Design mode stops it for good; a new instance is made
// for run mode.
void FlatButton::OnPoll() {
    if (!Ambient().UserMode) {
        tmrEvents.Enabled(false);
        return;
    }
    if (inTick_) return;
    const std::shared_ptr<host::Object> alive = weak_from_this().lock();
    inTick_ = true;
    struct Leave {
        bool& flag;
        ~Leave() { flag = false; }
    } leave{inTick_};

    platform::Windows& windows = UserControl.Platform().windows();
    const bool inside = foundation::IsMouseInto(windows, UserControl.hWnd());
    if (inside && !fHover) {
        fHover = true;
        Paint();
    } else if (!inside && fHover) {
        fHover = false;
        fPressedLook = false;
        Paint();
    }

    // The keys count whether the button is shown and enabled or not: the poll asks the
    // keyboard, not the window.
    const bool alt = KeyIsDown(windows, platform::VK_MENU);
    const bool access = nAccessKey != 0 && KeyIsDown(windows, nAccessKey);
    const bool enter = KeyIsDown(windows, platform::VK_RETURN);
    const bool escape = KeyIsDown(windows, platform::VK_ESCAPE);
    if ((escape && Cancel_ && !fKeyLatch) || (enter && Default_) ||
        (alt && access && UseMnemonic_)) {
        Fire();
    } else if (!alt && !access && !enter && !escape) {
        fKeyLatch = false;
    }
}

// A press from the keyboard looks and reports like a short click at 1, 1.
void FlatButton::Fire() {
    fKeyLatch = true;
    DoMouseDown(1, 0, 1, 1);
    // Events keep running while the button shows pressed.
    UserControl.Platform().loop().Wait(kFireHoldMs);
    DoMouseUp(1, 0, 1, 1);
}

// ---------------------------------------------------------------------------------------------
// Properties

void FlatButton::Caption(std::string New_Caption) {
    Caption_ = std::move(New_Caption);
    ComputeAccessKey();
    Paint();
    PropertyChanged("Caption");
}

void FlatButton::Font(std::shared_ptr<host::StdFont> New_Font) {
    if (!New_Font) throw host::HostError(host::kErrInvalidPropertyValue, "Font");
    UserControl.Font(std::move(New_Font));
    WatchFont();
    Paint();
    PropertyChanged("Font");
}

void FlatButton::Enabled(bool New_Enabled) {
    UserControl.Enabled(New_Enabled);
    PropertyChanged("Enabled");
}

void FlatButton::TextColor(OLE_COLOR New_TextColor) {
    TextColor_ = New_TextColor;
    Paint();
    PropertyChanged("TextColor");
}

void FlatButton::HoverColor(OLE_COLOR New_HoverColor) {
    HoverColor_ = New_HoverColor;
    Paint();
    PropertyChanged("HoverColor");
}

void FlatButton::BackColor(OLE_COLOR New_BackColor) {
    UserControl.BackColor(New_BackColor);
    Paint();
    PropertyChanged("BackColor");
}

void FlatButton::UseMnemonic(bool New_UseMnemonic) {
    UseMnemonic_ = New_UseMnemonic;
    ComputeAccessKey();
    Paint();
    PropertyChanged("UseMnemonic");
}

void FlatButton::Default(bool New_Default) {
    Default_ = New_Default;
    PropertyChanged("Default");
}

void FlatButton::Cancel(bool New_Cancel) {
    Cancel_ = New_Cancel;
    PropertyChanged("Cancel");
}

void FlatButton::FocusRect(bool New_FocusRect) {
    FocusRect_ = New_FocusRect;
    PropertyChanged("FocusRect");
}

void FlatButton::sFocus() {
    fHasFocus = true;
    Paint();
}

void FlatButton::ComputeAccessKey() {
    // A 16-bit key code cannot hold every code point: such a letter names no key.
    const char32_t key = forms::ParseMnemonic(Caption_, UseMnemonic_).accessKey;
    nAccessKey = key <= 0x7FFF ? static_cast<std::int16_t>(key) : std::int16_t{0};
}

std::string FlatButton::DisplayCaption() const {
    return forms::ParseMnemonic(Caption_, UseMnemonic_).text;
}

// The caption is measured with the font, so a change of the font's own attributes moves it.
void FlatButton::WatchFont() {
    fontWatch_ = UserControl.Font()->Subscribe([this](std::string_view) { Paint(); });
}

// ---------------------------------------------------------------------------------------------
// Painting

FlatButton::Look FlatButton::CurrentLook() const {
    if (fPressedLook) return Look::Pressed;
    // The designer never shows the hover look.
    if (fHover && Ambient().UserMode) return Look::Hover;
    return Look::Normal;
}

// Face, bevel, caption, focus; all into the persistent drawing, shown once at the end.
void FlatButton::Paint() {
    platform::Platform& p = UserControl.Platform();
    platform::Gdi& gdi = p.gdi();
    const platform::HDC dc = UserControl.hDC();
    const auto width =
        static_cast<std::int32_t>(std::lround(UserControl.Width() / platform::TwipsPerPixelX(p)));
    const auto height =
        static_cast<std::int32_t>(std::lround(UserControl.Height() / platform::TwipsPerPixelY(p)));
    const platform::RECT face{0, 0, width, height};
    const OLE_COLOR back = UserControl.BackColor();
    const Look look = CurrentLook();

    UserControl.Cls();
    switch (look) {
        case Look::Normal:
            DrawFlatBevel(gdi, dc, face, 1, kRing, 0, 0xFF, back, platform::PS_SOLID, 1);
            break;
        case Look::Hover:
            DrawFlatBevel(gdi, dc, face, 2, kLight, kDark, kWhite, back, platform::PS_SOLID, 1);
            break;
        case Look::Pressed:
            DrawFlatBevel(gdi, dc, face, 2, kDark, kLight, back, kWhite, platform::PS_SOLID, 1);
            break;
    }

    const forms::MnemonicText parts = forms::ParseMnemonic(Caption_, UseMnemonic_);
    // The pointer over the button colours the caption, pressed or not.
    const bool hovered = fHover && Ambient().UserMode;
    const platform::COLORREF textColor =
        foundation::OleColorToRGB(gdi, hovered ? HoverColor_ : TextColor_);
    platform::SIZE extent;
    gdi.GetTextExtentPoint32(dc, parts.text, &extent);
    textX_ = (width - extent.cx) / 2;
    textY_ = (height - extent.cy) / 2;
    const std::int32_t shift = look == Look::Pressed ? 1 : 0;
    const std::int32_t x = textX_ + shift, y = textY_ + shift;
    const platform::COLORREF previousColor = gdi.SetTextColor(dc, textColor);
    gdi.TextOut(dc, x, y, parts.text);
    gdi.SetTextColor(dc, previousColor);

    if (parts.underline >= 0) {
        // The underline runs under the letter's cell, one pixel below the baseline.
        const std::string_view text = parts.text;
        platform::SIZE before, letter;
        gdi.GetTextExtentPoint32(dc, text.substr(0, static_cast<std::size_t>(parts.underline)),
                                 &before);
        gdi.GetTextExtentPoint32(
            dc, text.substr(static_cast<std::size_t>(parts.underline), parts.underlineLength),
            &letter);
        platform::TEXTMETRIC tm;
        gdi.GetTextMetrics(dc, &tm);
        const std::int32_t underline = y + tm.tmAscent + 1;
        const platform::HPEN pen = gdi.CreatePen(platform::PS_SOLID, 1, textColor);
        const platform::HGDIOBJ previous = gdi.SelectObject(dc, pen);
        gdi.MoveToEx(dc, x + before.cx, underline, nullptr);
        gdi.LineTo(dc, x + before.cx + letter.cx, underline);
        gdi.SelectObject(dc, previous);
        gdi.DeleteObject(pen);
    }

    if (fHasFocus) {
        // A dotted rectangle, every other pixel, in the caption's normal colour, which reads on
        // the face as the caption itself does.
        const platform::COLORREF dot = foundation::OleColorToRGB(gdi, TextColor_);
        const std::int32_t l = kFocusInset, t = kFocusInset, r = width - 1 - kFocusInset,
                           b = height - 1 - kFocusInset;
        if (l < r && t < b) {
            for (std::int32_t px = l; px <= r; ++px) {
                if ((px + t) % 2 == 0) gdi.SetPixel(dc, px, t, dot);
                if ((px + b) % 2 == 0) gdi.SetPixel(dc, px, b, dot);
            }
            for (std::int32_t py = t + 1; py < b; ++py) {
                if ((l + py) % 2 == 0) gdi.SetPixel(dc, l, py, dot);
                if ((r + py) % 2 == 0) gdi.SetPixel(dc, r, py, dot);
            }
        }
    }
    UserControl.Refresh();
}

}  // namespace korvex::controls
