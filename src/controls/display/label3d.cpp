#include "controls/display/label3d.hpp"

#include <span>

#include "foundation/font_keys.hpp"
#include "host/numeric.hpp"

namespace korvex::controls {

using host::Arg;
using host::ClassBuilder;
using host::ClassInfo;
using host::TypeCode;
using host::Variant;

namespace {

constexpr std::int16_t kKeyReturn = 13;

}  // namespace

// The font flags and "FontSize" travel as 16-bit integers (True as -1, sizes in whole points);
// "BackColorL" defaults to the surface's colour at the moment it is asked for.
struct Label3D::Props {
    using OLE_COLOR = host::OLE_COLOR;
    using Font_t = std::shared_ptr<host::StdFont>;
    static inline const host::Property<Label3D, bool> EnabledL{
        .name = "EnabledL", .get = &Label3D::EnabledL, .set = &Label3D::EnabledL, .read = true};
    static inline const host::Property<Label3D, Font_t> Font{
        .name = "Font", .get = &Label3D::Font, .set = &Label3D::Font};
    static inline const host::Property<Label3D, bool> Shadow{
        .name = "Shadow", .get = &Label3D::Shadow, .set = &Label3D::Shadow, .read = true};
    static inline const host::Property<Label3D, OLE_COLOR> TextColor{
        .name = "TextColor", .get = &Label3D::TextColor, .set = &Label3D::TextColor, .read = 0U};
    static inline const host::Property<Label3D, OLE_COLOR> BackColorL{
        .name = "BackColorL",
        .get = &Label3D::BackColorL,
        .set = &Label3D::BackColorL,
        .read = {[](const Label3D& c) { return c.UserControl.BackColor(); },
                 "the surface's BackColor"}};
    static inline const host::Property<Label3D, OLE_COLOR> ShadowColor{.name = "ShadowColor",
                                                                       .get = &Label3D::ShadowColor,
                                                                       .set = &Label3D::ShadowColor,
                                                                       .read = 0x00FFFF00U};
    static inline const host::Property<Label3D, OLE_COLOR> FocusColor{.name = "FocusColor",
                                                                      .get = &Label3D::FocusColor,
                                                                      .set = &Label3D::FocusColor,
                                                                      .read = 0x0000FF00U};
    static inline const host::Property<Label3D, bool> FocusRect{
        .name = "FocusRect", .get = &Label3D::FocusRect, .set = &Label3D::FocusRect, .read = false};
    static inline const host::Property<Label3D, std::int16_t> TextMode{.name = "TextMode",
                                                                       .get = &Label3D::TextMode,
                                                                       .set = &Label3D::TextMode,
                                                                       .read = std::int16_t{0}};
    // Both labels are created with Arial 8.25 bold.
    static inline const host::Property<Label3D, bool> FontBold{.name = "FontBold",
                                                               .get = &Label3D::FontBold,
                                                               .set = &Label3D::FontBold,
                                                               .init = true,
                                                               .bag = host::BagKind::Integer};
    static inline const host::Property<Label3D, bool> FontItalic{.name = "FontItalic",
                                                                 .get = &Label3D::FontItalic,
                                                                 .set = &Label3D::FontItalic,
                                                                 .bag = host::BagKind::Integer};
    static inline const host::Property<Label3D, std::string> FontName{
        .name = "FontName", .get = &Label3D::FontName, .set = &Label3D::FontName, .init = "Arial"};
    static inline const host::Property<Label3D, float> FontSize{.name = "FontSize",
                                                                .get = &Label3D::FontSize,
                                                                .set = &Label3D::FontSize,
                                                                .init = 8.25F,
                                                                .bag = host::BagKind::Integer};
    static inline const host::Property<Label3D, bool> FontStrikethru{
        .name = "FontStrikethru",
        .get = &Label3D::FontStrikethru,
        .set = &Label3D::FontStrikethru,
        .bag = host::BagKind::Integer};
    static inline const host::Property<Label3D, std::string> ToolTipText{
        .name = "ToolTipText",
        .get = &Label3D::ToolTipText,
        .set = &Label3D::ToolTipText,
        .read = "Quick-Info"};
    static inline const host::Property<Label3D, std::string> Caption{.name = "Caption",
                                                                     .get = &Label3D::Caption,
                                                                     .set = &Label3D::Caption,
                                                                     .read = "Korvex-Label"};
    static inline const host::Property<Label3D, EnumBack> BackStyle{.name = "BackStyle",
                                                                    .get = &Label3D::BackStyle,
                                                                    .set = &Label3D::BackStyle,
                                                                    .read = EnumBack::BgColor};
    static inline const host::Property<Label3D, std::int16_t> xDist{
        .name = "xDist", .get = &Label3D::xDist, .set = &Label3D::xDist, .read = std::int16_t{15}};
};

const ClassInfo& Label3D::Class() {
    static const ClassInfo info =
        ClassBuilder<Label3D>("Label3D", "Korvex_Tools.Label3D")
            .Method("ShowAboutBox", {}, [](Label3D& c, std::span<Variant>) { c.ShowAboutBox(); })
            .Property(Props::FocusRect)
            .Property(Props::EnabledL)
            .Property(Props::Shadow)
            .Property(Props::Font)
            .Method("Refresh", {}, [](Label3D& c, std::span<Variant>) { c.Refresh(); })
            .Property(Props::FocusColor)
            .Property(Props::TextColor)
            .Property(Props::BackColorL)
            .Property(Props::ShadowColor)
            .Property(Props::TextMode)
            .Property(Props::FontBold)
            .Property(Props::FontItalic)
            .Property(Props::FontName)
            .Property(Props::FontSize)
            .Property(Props::FontStrikethru)
            .ReadOnly(KORVEX_READONLY(HDC))
            .ReadOnly(KORVEX_READONLY(hwnd))
            .ReadOnly(KORVEX_READONLY(HasDC))
            .Property(Props::ToolTipText)
            .Property(Props::Caption)
            .Property(Props::BackStyle)
            .Property(Props::xDist)
            .Events<Label3DEvents>({{Label3DEvents::MouseDown, host::MouseEventArgs()},
                                    {Label3DEvents::MouseMove, host::MouseEventArgs()},
                                    {Label3DEvents::MouseUp, host::MouseEventArgs()},
                                    {Label3DEvents::KeyDown, host::KeyEventArgs()},
                                    {Label3DEvents::KeyPress, {Arg("KeyAscii", TypeCode::Integer)}},
                                    {Label3DEvents::KeyUp, host::KeyEventArgs()}})
            .Enum<EnumBack>()
            .Build();
    return info;
}

Label3D::Label3D(host::HostContext& context)
    : SurfaceControl(context), lbShadow(UserControl), lbFont(UserControl) {
    SetNewState();
    const float width = UserControl.Width(), height = UserControl.Height();
    for (forms::Label* label : {&lbShadow, &lbFont}) {
        label->Caption(Props::Caption.Initial(*this));
        label->Font(std::make_shared<host::StdFont>(Props::FontName.Initial(*this),
                                                    Props::FontSize.Initial(*this),
                                                    Props::FontBold.Initial(*this)));
    }
    lbFont.BackStyle(0);
    lbFont.ForeColor(TextColor_);
    lbFont.ToolTipText(ToolTipText_);
    lbFont.Move(0, 0, width, height);
    lbShadow.BackStyle(1);
    lbShadow.BackColor(UserControl.BackColor());
    lbShadow.ForeColor(ShadowColor_);
    lbShadow.Move(xDist_, xDist_, width, height);

    Forward(lbFont.events);
    Forward(lbShadow.events);

    using E = Label3DEvents;
    forms::SurfaceEvents& surface = UserControl.events;
    surface.KeyDown = [this](std::int16_t& KeyCode, std::int16_t Shift) {
        if (!FocusRect_ || KeyCode == kKeyReturn) return;
        RaiseEvent(E::KeyDown, KeyCode, Shift);
    };
    surface.KeyPress = [this](std::int16_t& KeyAscii) { RaiseEvent(E::KeyPress, KeyAscii); };
    surface.KeyUp = [this](std::int16_t& KeyCode, std::int16_t Shift) {
        if (!FocusRect_) return;
        if (KeyCode == kKeyReturn) {
            RaiseEvent(E::Click);
        } else {
            RaiseEvent(E::KeyUp, KeyCode, Shift);
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
        RaiseEvent(Label3DEvents::Click);
        if (!FocusRect_) return;
        // A focus request the platform refuses (hidden or disabled window) is of no concern
        // to the click that made it.
        try {
            UserControl.SetFocus();
        } catch (const host::HostError&) {
        }
    };
    events.DblClick = [this] { RaiseEvent(Label3DEvents::DblClick); };
    ForwardMouse(events, static_cast<std::int32_t>(Label3DEvents::MouseDown),
                 static_cast<std::int32_t>(Label3DEvents::MouseMove),
                 static_cast<std::int32_t>(Label3DEvents::MouseUp));
}

// ---------------------------------------------------------------------------------------------
// Lifecycle

void Label3D::UserControl_Initialize() {
    lbShadow.Caption(lbFont.Caption());
}

void Label3D::UserControl_InitProperties() {
    SetNewState();
}

// The state record as the declarations give it to a new control (BackColorL from the surface's
// colour at this moment); the labels keep their created fonts and captions.
void Label3D::SetNewState() {
    xDist_ = Props::xDist.Initial(*this);
    TextMode_ = Props::TextMode.Initial(*this);
    BackStyle_ = Props::BackStyle.Initial(*this);
    ToolTipText_ = Props::ToolTipText.Initial(*this);
    BackColorL_ = Props::BackColorL.Initial(*this);
    TextColor_ = Props::TextColor.Initial(*this);
    ShadowColor_ = Props::ShadowColor.Initial(*this);
    FocusColor_ = Props::FocusColor.Initial(*this);
    Shadow_ = Props::Shadow.Initial(*this);
    FocusRect_ = Props::FocusRect.Initial(*this);
}

// Keys in this order. EnabledL, FocusColor, TextMode and Caption go straight to the labels or
// the fields; the font flags go to lbFont's font and are then copied to lbShadow's (one object
// once Font has been set).
void Label3D::UserControl_ReadProperties(host::PropertyBag& PropBag) {
    lbFont.Enabled(Props::EnabledL.Read(*this, PropBag));
    lbShadow.Enabled(lbFont.Enabled());
    // A copy: the bag's default is the container's own ambient font, which the font keys below
    // must not change.
    std::shared_ptr<host::StdFont> font = Props::Font.Read(*this, PropBag);
    Font(font ? font->Clone() : font);
    Props::Shadow.Load(*this, PropBag);
    Props::TextColor.Load(*this, PropBag);
    Props::BackColorL.Load(*this, PropBag);
    Props::ShadowColor.Load(*this, PropBag);
    FocusColor_ = Props::FocusColor.Read(*this, PropBag);
    Props::FocusRect.Load(*this, PropBag);
    TextMode_ = Props::TextMode.Read(*this, PropBag);

    foundation::FontKeys keys;
    keys.bold = Props::FontBold.Read(*this, PropBag);
    keys.italic = Props::FontItalic.Read(*this, PropBag);
    keys.name = Props::FontName.Read(*this, PropBag);
    keys.size = Props::FontSize.Read(*this, PropBag);
    keys.strikethru = Props::FontStrikethru.Read(*this, PropBag);
    host::StdFont& front = *lbFont.Font();
    host::StdFont& back = *lbShadow.Font();
    foundation::RestoreFontKeys(front, keys);
    back.Bold(front.Bold());
    back.Italic(front.Italic());
    back.Name(front.Name());
    back.Size(front.Size());
    back.Strikethrough(front.Strikethrough());

    lbFont.Caption(Props::Caption.Read(*this, PropBag));
    lbShadow.Caption(lbFont.Caption());
    Props::ToolTipText.Load(*this, PropBag);
    Props::xDist.Load(*this, PropBag);
    Props::BackStyle.Load(*this, PropBag);
}

// BackColorL's default is the surface's colour, which the let keeps equal to the field, so the
// key is stored only when the two have come apart. The shadow colour is the field's, not the
// focus colour the shadow may show.
void Label3D::UserControl_WriteProperties(host::PropertyBag& PropBag) {
    Props::EnabledL.Save(*this, PropBag);
    Props::Font.Save(*this, PropBag);
    Props::Shadow.Save(*this, PropBag);
    Props::TextColor.Save(*this, PropBag);
    Props::BackColorL.Save(*this, PropBag);
    Props::ShadowColor.SaveValue(*this, PropBag, ShadowColor_);
    Props::FocusColor.Save(*this, PropBag);
    Props::FocusRect.Save(*this, PropBag);
    Props::TextMode.Save(*this, PropBag);
    Props::FontBold.Save(*this, PropBag);
    Props::FontItalic.Save(*this, PropBag);
    Props::FontName.Save(*this, PropBag);
    Props::FontSize.Save(*this, PropBag);
    Props::FontStrikethru.Save(*this, PropBag);
    Props::Caption.Save(*this, PropBag);
    Props::ToolTipText.Save(*this, PropBag);
    Props::xDist.Save(*this, PropBag);
    Props::BackStyle.Save(*this, PropBag);
}

void Label3D::UserControl_AccessKeyPress(std::int16_t KeyAscii) {
    (void)KeyAscii;
    RaiseEvent(Label3DEvents::Click);
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
    const auto shadowAt = [&](std::int16_t left, std::int16_t top) {
        lbShadow.Move(left, top, width, height);
    };
    switch (TextMode_) {
        case 0:
            shadowAt(d, d);
            break;
        case 1:
            shadowAt(0, d);
            break;
        case 2:
            shadowAt(minus(), d);
            break;
        case 3:
            shadowAt(minus(), 0);
            break;
        case 4:
            shadowAt(minus(), minus());
            break;
        case 5:
            shadowAt(0, minus());
            break;
        case 6:
            shadowAt(d, minus());
            break;
        case 7:
            shadowAt(d, 0);
            break;
        case 8:
            shadowAt(0, 0);
            break;
        default:
            break;  // unknown directions leave the shadow where it is
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
