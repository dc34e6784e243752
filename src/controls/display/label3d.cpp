#include "controls/display/label3d.hpp"

#include <span>

#include "host/numeric.hpp"

namespace korvex::controls {

using host::Arg;
using host::ClassBuilder;
using host::ClassInfo;
using host::TypeCode;
using host::Variant;

namespace {

constexpr const char* kCreatedCaption = "Korvex-Label";
constexpr const char* kDefaultToolTip = "Quick-Info";
constexpr host::OLE_COLOR kDefaultShadowColor = 0x00FFFF00;
constexpr host::OLE_COLOR kDefaultFocusColor = 0x0000FF00;
constexpr std::int16_t kDefaultDistance = 15;
constexpr std::int16_t kKeyReturn = 13;

// The font flags travel through the bag as 16-bit integers, True as -1.
std::int16_t FlagValue(bool value) {
    return value ? host::kTrue : host::kFalse;
}

}  // namespace

const ClassInfo& Label3D::Class() {
    static const ClassInfo info =
        ClassBuilder<Label3D>("Label3D", "Korvex_Tools.Label3D")
            .Method("ShowAboutBox", {}, [](Label3D& c, std::span<Variant>) { c.ShowAboutBox(); })
            .Property(KORVEX_PROPERTY(FocusRect))
            .Property(KORVEX_PROPERTY(EnabledL))
            .Property(KORVEX_PROPERTY(Shadow))
            .Property(KORVEX_PROPERTY(Font))
            .Method("Refresh", {}, [](Label3D& c, std::span<Variant>) { c.Refresh(); })
            .Property(KORVEX_PROPERTY(FocusColor))
            .Property(KORVEX_PROPERTY(TextColor))
            .Property(KORVEX_PROPERTY(BackColorL))
            .Property(KORVEX_PROPERTY(ShadowColor))
            .Property(KORVEX_PROPERTY(TextMode))
            .Property(KORVEX_PROPERTY(FontBold))
            .Property(KORVEX_PROPERTY(FontItalic))
            .Property(KORVEX_PROPERTY(FontName))
            .Property(KORVEX_PROPERTY(FontSize))
            .Property(KORVEX_PROPERTY(FontStrikethru))
            .ReadOnly(KORVEX_READONLY(HDC))
            .ReadOnly(KORVEX_READONLY(hwnd))
            .ReadOnly(KORVEX_READONLY(HasDC))
            .Property(KORVEX_PROPERTY(ToolTipText))
            .Property(KORVEX_PROPERTY(Caption))
            .Property(KORVEX_PROPERTY(BackStyle), "EnumBack")
            .Property(KORVEX_PROPERTY(xDist))
            .Event("Click")
            .Event("DblClick")
            .Event("MouseDown", host::MouseEventArgs())
            .Event("MouseMove", host::MouseEventArgs())
            .Event("MouseUp", host::MouseEventArgs())
            .Event("KeyDown", host::KeyEventArgs())
            .Event("KeyPress", {Arg("KeyAscii", TypeCode::Integer)})
            .Event("KeyUp", host::KeyEventArgs())
            .Enum("EnumBack", {{"BgColor", 0}, {"cTRANSPARENT", 1}})
            .Build();
    return info;
}

Label3D::Label3D(host::HostContext& context)
    : SurfaceControl(context), lbShadow(UserControl), lbFont(UserControl) {
    const float width = UserControl.Width(), height = UserControl.Height();
    for (forms::Label* label : {&lbShadow, &lbFont}) {
        label->Caption(kCreatedCaption);
        label->Font(std::make_shared<host::StdFont>("Arial", 8.25, true));
    }
    lbFont.BackStyle(0);
    lbFont.ForeColor(TextColor_);
    lbFont.ToolTipText(kDefaultToolTip);
    lbFont.Move(0, 0, width, height);
    lbShadow.BackStyle(1);
    lbShadow.BackColor(UserControl.BackColor());
    lbShadow.ForeColor(kDefaultShadowColor);
    lbShadow.Move(kDefaultDistance, kDefaultDistance, width, height);

    Forward(lbFont.events);
    Forward(lbShadow.events);

    forms::SurfaceEvents& surface = UserControl.events;
    surface.KeyDown = [this](std::int16_t& KeyCode, std::int16_t Shift) {
        if (!FocusRect_ || KeyCode == kKeyReturn) return;
        RaiseEvent(kKeyDown, KeyCode, Shift);
    };
    surface.KeyPress = [this](std::int16_t& KeyAscii) { RaiseEvent(kKeyPress, KeyAscii); };
    surface.KeyUp = [this](std::int16_t& KeyCode, std::int16_t Shift) {
        if (!FocusRect_) return;
        if (KeyCode == kKeyReturn) {
            RaiseEvent(kClick);
        } else {
            RaiseEvent(kKeyUp, KeyCode, Shift);
        }
    };
    surface.GotFocus = [this] {
        if (FocusRect_) lbShadow.ForeColor(FocusColor_);
    };
    surface.LostFocus = [this] {
        if (FocusRect_) lbShadow.ForeColor(ShadowColor_);
    };
}

void Label3D::Forward(forms::MouseEvents& events) {
    events.Click = [this] {
        RaiseEvent(kClick);
        if (!FocusRect_) return;
        // A focus request the platform refuses (hidden or disabled window) is of no concern
        // to the click that made it.
        try {
            UserControl.SetFocus();
        } catch (const host::HostError&) {
        }
    };
    events.DblClick = [this] { RaiseEvent(kDblClick); };
    ForwardMouse(events, kMouseDown, kMouseMove, kMouseUp);
}

// ---------------------------------------------------------------------------------------------
// Lifecycle

void Label3D::UserControl_Initialize() {
    lbShadow.Caption(lbFont.Caption());
}

void Label3D::UserControl_InitProperties() {
    xDist_ = kDefaultDistance;
    TextMode_ = 0;
    BackStyle_ = EnumBack::BgColor;
    ToolTipText_ = kDefaultToolTip;
    BackColorL_ = UserControl.BackColor();
    TextColor_ = 0;
    ShadowColor_ = kDefaultShadowColor;
    FocusColor_ = kDefaultFocusColor;
    Shadow_ = true;
    FocusRect_ = false;
}

// Keys in this order, each with the default it is written with. The font flags go to lbFont's
// font and are then copied to lbShadow's (one object once Font has been set).
void Label3D::UserControl_ReadProperties(host::PropertyBag& PropBag) {
    lbFont.Enabled(PropBag.ReadProperty("EnabledL", true).ToBool());
    lbShadow.Enabled(lbFont.Enabled());
    // A copy: the bag's default is the container's own ambient font, which the font keys below
    // must not change.
    std::shared_ptr<host::StdFont> font = PropBag.ReadProperty("Font", Ambient().Font).ToFont();
    Font(font ? font->Clone() : font);
    Shadow(PropBag.ReadProperty("Shadow", true).ToBool());
    TextColor(static_cast<host::OLE_COLOR>(PropBag.ReadProperty("TextColor", std::int32_t{0}).ToLong()));
    BackColorL(static_cast<host::OLE_COLOR>(
        PropBag.ReadProperty("BackColorL", Variant(UserControl.BackColor())).ToLong()));
    ShadowColor(static_cast<host::OLE_COLOR>(
        PropBag.ReadProperty("ShadowColor", Variant(kDefaultShadowColor)).ToLong()));
    FocusColor_ = static_cast<host::OLE_COLOR>(
        PropBag.ReadProperty("FocusColor", Variant(kDefaultFocusColor)).ToLong());
    FocusRect(PropBag.ReadProperty("FocusRect", false).ToBool());
    TextMode_ = PropBag.ReadProperty("TextMode", std::int16_t{0}).ToInteger();

    host::StdFont& front = *lbFont.Font();
    host::StdFont& back = *lbShadow.Font();
    front.Bold(PropBag.ReadProperty("FontBold", std::int16_t{0}).ToInteger() != 0);
    back.Bold(front.Bold());
    front.Italic(PropBag.ReadProperty("FontItalic", std::int16_t{0}).ToInteger() != 0);
    back.Italic(front.Italic());
    front.Name(PropBag.ReadProperty("FontName", "").ToString());
    back.Name(front.Name());
    // Every font has a size, so a control never writes 0; a bag without the key leaves the size
    // the "Font" key gave.
    if (const std::int16_t size = PropBag.ReadProperty("FontSize", std::int16_t{0}).ToInteger(); size != 0) {
        front.Size(size);
    }
    back.Size(front.Size());
    front.Strikethrough(PropBag.ReadProperty("FontStrikethru", std::int16_t{0}).ToInteger() != 0);
    back.Strikethrough(front.Strikethrough());

    lbFont.Caption(PropBag.ReadProperty("Caption", kCreatedCaption).ToString());
    lbShadow.Caption(lbFont.Caption());
    ToolTipText(PropBag.ReadProperty("ToolTipText", kDefaultToolTip).ToString());
    xDist(PropBag.ReadProperty("xDist", kDefaultDistance).ToInteger());
    BackStyle(static_cast<EnumBack>(PropBag.ReadProperty("BackStyle", std::int32_t{0}).ToLong()));
}

// BackColorL's default is the surface's colour, which the let keeps equal to the field, so the
// key is stored only when the two have come apart.
void Label3D::UserControl_WriteProperties(host::PropertyBag& PropBag) {
    const host::StdFont& font = *lbFont.Font();
    PropBag.WriteProperty("EnabledL", lbFont.Enabled(), true);
    PropBag.WriteProperty("Font", Font(), Ambient().Font);
    PropBag.WriteProperty("Shadow", Shadow_, true);
    PropBag.WriteProperty("TextColor", Variant(TextColor_), std::int32_t{0});
    PropBag.WriteProperty("BackColorL", Variant(BackColorL_), Variant(UserControl.BackColor()));
    PropBag.WriteProperty("ShadowColor", Variant(ShadowColor_), Variant(kDefaultShadowColor));
    PropBag.WriteProperty("FocusColor", Variant(FocusColor_), Variant(kDefaultFocusColor));
    PropBag.WriteProperty("FocusRect", FocusRect_, false);
    PropBag.WriteProperty("TextMode", TextMode_, std::int16_t{0});
    PropBag.WriteProperty("FontBold", FlagValue(font.Bold()), std::int16_t{0});
    PropBag.WriteProperty("FontItalic", FlagValue(font.Italic()), std::int16_t{0});
    PropBag.WriteProperty("FontName", font.Name(), "");
    PropBag.WriteProperty("FontSize", host::ToInteger(font.Size()), std::int16_t{0});
    PropBag.WriteProperty("FontStrikethru", FlagValue(font.Strikethrough()), std::int16_t{0});
    PropBag.WriteProperty("Caption", lbFont.Caption(), kCreatedCaption);
    PropBag.WriteProperty("ToolTipText", ToolTipText_, kDefaultToolTip);
    PropBag.WriteProperty("xDist", xDist_, kDefaultDistance);
    PropBag.WriteProperty("BackStyle", Variant(BackStyle_), std::int32_t{0});
}

void Label3D::UserControl_Resize() {
    LayOut();
}

// Both labels as large as the control; the shadow shifted by d = xDist in TextMode's direction.
// -d is taken in 16-bit arithmetic (xDist -32768 overflows); a shift right or down clips the
// shadow's last d twips at the control's edge.
//
//   TextMode  0   1   2   3   4   5   6   7   8
//   left      d   0  -d  -d  -d   0   d   d   0
//   top       d   d   d   0  -d  -d  -d   0   0
void Label3D::LayOut() {
    const float width = UserControl.Width(), height = UserControl.Height();
    lbFont.Move(0, 0, width, height);
    const std::int16_t d = xDist_;
    const auto minus = [d] { return host::SubInteger(0, d); };
    const auto shadowAt = [&](std::int16_t left, std::int16_t top) { lbShadow.Move(left, top, width, height); };
    switch (TextMode_) {
        case 0: shadowAt(d, d); break;
        case 1: shadowAt(0, d); break;
        case 2: shadowAt(minus(), d); break;
        case 3: shadowAt(minus(), 0); break;
        case 4: shadowAt(minus(), minus()); break;
        case 5: shadowAt(0, minus()); break;
        case 6: shadowAt(d, minus()); break;
        case 7: shadowAt(d, 0); break;
        case 8: shadowAt(0, 0); break;
        default: break;  // unknown directions leave the shadow where it is
    }
}

// ---------------------------------------------------------------------------------------------
// Properties

template <class Apply>
void Label3D::OnBothFonts(Apply apply) {
    apply(*lbFont.Font());
    if (lbShadow.Font() != lbFont.Font()) apply(*lbShadow.Font());
}

void Label3D::FocusRect(bool New_FocusRect) {
    FocusRect_ = New_FocusRect;
    PropertyChanged("FocusRect");
}

void Label3D::EnabledL(bool New_EnabledL) {
    lbFont.Enabled(New_EnabledL);
    lbShadow.Enabled(New_EnabledL);
    PropertyChanged("EnabledL");
}

void Label3D::Shadow(bool New_Shadow) {
    Shadow_ = New_Shadow;
    lbShadow.Visible(New_Shadow);
    PropertyChanged("Shadow");
}

void Label3D::Font(std::shared_ptr<host::StdFont> New_Font) {
    lbFont.Font(New_Font);
    lbShadow.Font(New_Font);
    PropertyChanged("Font");
}

void Label3D::FocusColor(host::OLE_COLOR New_FocusColor) {
    FocusColor_ = New_FocusColor;
    PropertyChanged("FocusColor");
}

void Label3D::TextColor(host::OLE_COLOR New_TextColor) {
    TextColor_ = New_TextColor;
    lbFont.ForeColor(New_TextColor);
    PropertyChanged("TextColor");
}

// Ignored entirely while the control is transparent: nothing stored, nothing reported.
void Label3D::BackColorL(host::OLE_COLOR New_BackColorL) {
    if (BackStyle_ != EnumBack::BgColor) return;
    BackColorL_ = New_BackColorL;
    UserControl.BackColor(New_BackColorL);
    lbShadow.BackColor(New_BackColorL);
    PropertyChanged("BackColorL");
}

void Label3D::ShadowColor(host::OLE_COLOR New_ShadowColor) {
    lbShadow.ForeColor(New_ShadowColor);
    ShadowColor_ = New_ShadowColor;
    PropertyChanged("ShadowColor");
}

void Label3D::TextMode(std::int16_t New_TextMode) {
    TextMode_ = New_TextMode;
    LayOut();
    PropertyChanged("TextMode");
}

void Label3D::FontBold(bool New_FontBold) {
    OnBothFonts([&](host::StdFont& f) { f.Bold(New_FontBold); });
    PropertyChanged("FontBold");
}

void Label3D::FontItalic(bool New_FontItalic) {
    OnBothFonts([&](host::StdFont& f) { f.Italic(New_FontItalic); });
    PropertyChanged("FontItalic");
}

void Label3D::FontName(std::string New_FontName) {
    OnBothFonts([&](host::StdFont& f) { f.Name(New_FontName); });
    PropertyChanged("FontName");
}

void Label3D::FontSize(float New_FontSize) {
    OnBothFonts([&](host::StdFont& f) { f.Size(New_FontSize); });
    PropertyChanged("FontSize");
}

void Label3D::FontStrikethru(bool New_FontStrikethru) {
    OnBothFonts([&](host::StdFont& f) { f.Strikethrough(New_FontStrikethru); });
    PropertyChanged("FontStrikethru");
}

void Label3D::ToolTipText(std::string New_ToolTipText) {
    ToolTipText_ = New_ToolTipText;
    lbFont.ToolTipText(std::move(New_ToolTipText));
    PropertyChanged("ToolTipText");
}

void Label3D::Caption(std::string New_Caption) {
    lbFont.Caption(New_Caption);
    lbShadow.Caption(std::move(New_Caption));
    PropertyChanged("Caption");
}

// Any value but BgColor makes the shadow label and the surface transparent; only the glyphs
// remain and the form shows through (and takes the input) everywhere else.
void Label3D::BackStyle(EnumBack New_BackStyle) {
    BackStyle_ = New_BackStyle;
    const bool opaque = New_BackStyle == EnumBack::BgColor;
    lbShadow.BackStyle(opaque ? 1 : 0);
    UserControl.BackStyle(opaque ? 1 : 0);
    PropertyChanged("BackStyle");
}

void Label3D::xDist(std::int16_t New_xDist) {
    xDist_ = New_xDist;
    LayOut();
    PropertyChanged("xDist");
}

// ---------------------------------------------------------------------------------------------
// Methods

void Label3D::Refresh() {
    lbFont.Refresh();
    lbShadow.Refresh();
}

}  // namespace korvex::controls
