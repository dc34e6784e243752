#include "controls/display/frames.hpp"

#include "base/error.hpp"
#include "foundation/border.hpp"
#include "foundation/font_keys.hpp"
#include "host/numeric.hpp"

namespace korvex::controls {

using namespace host;

namespace {

// Edge flags per border style (DrawEdge: 1 raised outer, 2 sunken outer, 4 raised inner,
// 8 sunken inner). Styles 0, 9 and 10 are not painted with edges and keep the flags they had.
//
//   style  1 Standard_Down 10   2 Standard_Up 5   3 Bright_Down 2   4 Bright_Up 4
//          5 Dark_Down      8   6 Dark_UP     1   7 Dark_Frame  9   8 Standard_Frame 6
constexpr std::int32_t kEdgeOfStyle[] = {-1, 10, 5, 2, 4, 8, 1, 9, 6};

constexpr OLE_COLOR kFlatFrameColour = 0x00914B00;  // dark blue
constexpr OLE_COLOR kXPFrameColour = 0x009BA2A4;    // grey

}  // namespace

// A new frame carries the caption it was created with, "Korvex-Frames", while the key's default
// is "Korvex-Frame": a new frame saves its caption, and a bag without it gives the other one.
// The font flags and the size travel as 16-bit integers (sizes in whole points).
struct Frames::Props {
    using Font_t = std::shared_ptr<StdFont>;
    using Picture_t = std::shared_ptr<StdPicture>;
    static inline const Property<Frames, std::string> Caption{.name = "Caption",
                                                              .get = &Frames::Caption,
                                                              .set = &Frames::Caption,
                                                              .read = "Korvex-Frame",
                                                              .init = "Korvex-Frames"};
    static inline const Property<Frames, Font_t> Font{
        .name = "Font", .get = &Frames::Font, .set = &Frames::Font};
    static inline const Property<Frames, OLE_COLOR> TextColor{
        .name = "TextColor", .get = &Frames::TextColor, .set = &Frames::TextColor, .read = 0U};
    static inline const Property<Frames, OLE_COLOR> BackColorF{.name = "BackColorF",
                                                               .get = &Frames::BackColorF,
                                                               .set = &Frames::BackColorF,
                                                               .read = 0x8000000FU};
    static inline const Property<Frames, BoStyle> BorderStyle{.name = "BorderStyle",
                                                              .get = &Frames::BorderStyle,
                                                              .set = &Frames::BorderStyle,
                                                              .read = BoStyle::Standard_Frame,
                                                              .bag = BagKind::Integer};
    static inline const Property<Frames, bool> EnabledF{
        .name = "EnabledF", .get = &Frames::EnabledF, .set = &Frames::EnabledF, .read = true};
    static inline const Property<Frames, Picture_t> MouseIcon{
        .name = "MouseIcon", .get = &Frames::MouseIcon, .set = &Frames::MouseIcon};
    static inline const Property<Frames, fMousePointerConst> MousePointer{
        .name = "MousePointer",
        .get = &Frames::MousePointer,
        .set = &Frames::MousePointer,
        .bag = BagKind::Integer};
    static inline const Property<Frames, bool> FontBold{.name = "FontBold",
                                                        .get = &Frames::FontBold,
                                                        .set = &Frames::FontBold,
                                                        .bag = BagKind::Integer};
    static inline const Property<Frames, bool> FontItalic{.name = "FontItalic",
                                                          .get = &Frames::FontItalic,
                                                          .set = &Frames::FontItalic,
                                                          .bag = BagKind::Integer};
    static inline const Property<Frames, float> FontSize{
        .name = "FontSize",
        .get = &Frames::FontSize,
        .set = &Frames::FontSize,
        .init = {[](const Frames& c) { return static_cast<float>(c.Ambient().Font->Size()); },
                 "the ambient font's"},
        .bag = BagKind::Integer};
    static inline const Property<Frames, bool> FontStrikethru{.name = "FontStrikethru",
                                                              .get = &Frames::FontStrikethru,
                                                              .set = &Frames::FontStrikethru,
                                                              .bag = BagKind::Integer};
    static inline const Property<Frames, std::string> FontName{
        .name = "FontName",
        .get = &Frames::FontName,
        .set = &Frames::FontName,
        .init = {[](const Frames& c) { return c.Ambient().Font->Name(); }, "the ambient font's"}};
    static inline const Property<Frames, BoAli> Alignment{.name = "Alignment",
                                                          .get = &Frames::Alignment,
                                                          .set = &Frames::Alignment,
                                                          .read = BoAli::fLeft};
    static inline const Property<Frames, BoAl> AlignmentTop{.name = "AlignmentTop",
                                                            .get = &Frames::AlignmentTop,
                                                            .set = &Frames::AlignmentTop,
                                                            .read = BoAl::fStandard};
};

Frames::Frames(HostContext& context) : SurfaceControl(context), T(UserControl) {
    // The design data: a pixel surface, and an opaque caption label in the frame's colour that
    // fits itself to its text.
    UserControl.ScaleMode(forms::ScaleModeConstants::vbPixels);
    T.AutoSize(true);
    T.BackStyle(1);
    T.BackColor(UserControl.BackColor());
    T.ForeColor(0);
    T.Caption(Props::Caption.Initial(*this));
    T.Move(kCaptionIndent, 0);
    SetNewState();
    ForwardInput();
}

const ClassInfo& Frames::Class() {
    static const ClassInfo info =
        ClassBuilder<Frames>("Frames", "Korvex_Tools.Frames")
            .Property(Props::Font)
            .Property(Props::TextColor)
            .Property(Props::BackColorF)
            .Property(Props::FontBold)
            .Property(Props::FontItalic)
            .Property(Props::FontName)
            .Property(Props::FontSize)
            .Property(Props::FontStrikethru)
            .Property(Props::MouseIcon)
            .Property(Props::MousePointer)
            .Property(Props::BorderStyle)
            .Property(Props::Alignment)
            .Property(Props::AlignmentTop)
            .Property(Props::EnabledF)
            .ReadOnly(KORVEX_READONLY(HasDC))
            .ReadOnly(KORVEX_READONLY(HDC))
            .ReadOnly(KORVEX_READONLY(hwnd))
            .Property(Props::Caption)
            .Events<FramesEvents>({{FramesEvents::MouseDown, MouseEventArgs()},
                                   {FramesEvents::MouseMove, MouseEventArgs()},
                                   {FramesEvents::MouseUp, MouseEventArgs()},
                                   {FramesEvents::KeyDown, KeyEventArgs()},
                                   {FramesEvents::KeyPress, {Arg("KeyAscii", TypeCode::Integer)}},
                                   {FramesEvents::KeyUp, KeyEventArgs()},
                                   {FramesEvents::Focus, {Arg("bFocus", TypeCode::Boolean)}}})
            .Enum<BoStyle>()
            .Enum<BoAli>()
            .Enum<BoAl>()
            .Enum<fMousePointerConst>()
            .Build();
    return info;
}

// Only the surface's own input becomes the frame's events; the caption label keeps its clicks,
// as a label on a frame does.
void Frames::ForwardInput() {
    using E = FramesEvents;
    forms::SurfaceEvents& e = UserControl.events;
    e.Click = [this] { RaiseEvent(E::Click); };
    e.DblClick = [this] { RaiseEvent(E::DblClick); };
    ForwardMouse(e, static_cast<std::int32_t>(E::MouseDown),
                 static_cast<std::int32_t>(E::MouseMove), static_cast<std::int32_t>(E::MouseUp));
    e.KeyDown = [this](std::int16_t& KeyCode, std::int16_t Shift) {
        RaiseEvent(E::KeyDown, KeyCode, Shift);
    };
    e.KeyPress = [this](std::int16_t& KeyAscii) { RaiseEvent(E::KeyPress, KeyAscii); };
    e.KeyUp = [this](std::int16_t& KeyCode, std::int16_t Shift) {
        RaiseEvent(E::KeyUp, KeyCode, Shift);
    };
    e.GotFocus = [this] {
        bool bFocus = true;
        RaiseEvent(E::Focus, bFocus);
    };
    e.LostFocus = [this] {
        bool bFocus = false;
        RaiseEvent(E::Focus, bFocus);
    };
}

// ---------------------------------------------------------------------------------------------
// Lifecycle

void Frames::UserControl_Initialize() {
    edgeKind_ = kNewEdgeKind;
}

void Frames::UserControl_InitProperties() {
    SetNewState();
}

void Frames::SetNewState() {
    BorderStyle_ = Props::BorderStyle.Initial(*this);
    Alignment_ = Props::Alignment.Initial(*this);
    AlignmentTop_ = Props::AlignmentTop.Initial(*this);
}

// Caption, the colours, EnabledF, MousePointer and the font attributes go straight to the label
// and the surface, without the lets' repaints.
void Frames::UserControl_ReadProperties(PropertyBag& PropBag) {
    SetCaptionText(Props::Caption.Read(*this, PropBag));
    Props::Font.Load(*this, PropBag);
    T.ForeColor(Props::TextColor.Read(*this, PropBag));
    const OLE_COLOR backColor = Props::BackColorF.Read(*this, PropBag);
    UserControl.BackColor(backColor);
    T.BackColor(backColor);
    Props::BorderStyle.Load(*this, PropBag);
    UserControl.Enabled(Props::EnabledF.Read(*this, PropBag));
    Props::MouseIcon.Load(*this, PropBag);
    UserControl.MousePointer(static_cast<std::int16_t>(Props::MousePointer.Read(*this, PropBag)));
    foundation::FontKeys keys;
    keys.bold = Props::FontBold.Read(*this, PropBag);
    keys.italic = Props::FontItalic.Read(*this, PropBag);
    keys.size = Props::FontSize.Read(*this, PropBag);
    keys.strikethru = Props::FontStrikethru.Read(*this, PropBag);
    keys.name = Props::FontName.Read(*this, PropBag);
    foundation::RestoreFontKeys(*T.Font(), keys);
    Props::Alignment.Load(*this, PropBag);
    Props::AlignmentTop.Load(*this, PropBag);
}

void Frames::UserControl_WriteProperties(PropertyBag& PropBag) {
    Props::Caption.Save(*this, PropBag);
    Props::Font.Save(*this, PropBag);
    Props::TextColor.Save(*this, PropBag);
    // Once from the surface and once from the label: both hold the same colour.
    Props::BackColorF.Save(*this, PropBag);
    Props::BackColorF.SaveValue(*this, PropBag, T.BackColor());
    Props::BorderStyle.Save(*this, PropBag);
    Props::EnabledF.Save(*this, PropBag);
    Props::MouseIcon.Save(*this, PropBag);
    Props::MousePointer.Save(*this, PropBag);
    Props::FontBold.Save(*this, PropBag);
    Props::FontItalic.Save(*this, PropBag);
    Props::FontSize.Save(*this, PropBag);
    Props::FontStrikethru.Save(*this, PropBag);
    Props::FontName.Save(*this, PropBag);
    Props::Alignment.Save(*this, PropBag);
    Props::AlignmentTop.Save(*this, PropBag);
}

void Frames::UserControl_Resize() {
    ResizeFrame();
}

// ---------------------------------------------------------------------------------------------
// Layout and painting

void Frames::ResizeFrame() {
    T.Top(AlignmentTop_ == BoAl::fUnderBorder ? 2.0F : 0.0F);
    const float width = UserControl.ScaleWidth();
    switch (Alignment_) {
        case BoAli::fLeft:
            T.Left(kCaptionIndent);
            break;
        case BoAli::fRight:
            T.Left(width - T.Width() - kCaptionIndent);
            break;
        case BoAli::fCenter:
            T.Left(width / 2 - T.Width() / 2);
            break;
    }
    Repaint();
}

void Frames::Repaint() {
    UserControl.Cls();
    UserControl.ScaleMode(forms::ScaleModeConstants::vbPixels);

    // The frame's top follows the caption: through its middle, above it, or below it. Values are
    // whole pixels, halves to even; a result beyond a Long is the host's overflow.
    const double left = UserControl.ScaleLeft();
    const double top = UserControl.ScaleTop();
    double frameTop = top;
    if (AlignmentTop_ == BoAl::fStandard)
        frameTop = top + static_cast<double>(T.Height()) / 2;
    else if (AlignmentTop_ == BoAl::fOverBorder)
        frameTop = top + static_cast<double>(T.Height());
    platform::RECT rect{ToLong(left), ToLong(frameTop), ToLong(UserControl.ScaleWidth() - left),
                        ToLong(UserControl.ScaleHeight() - top)};

    platform::Platform& p = UserControl.Platform();
    platform::Gdi& gdi = p.gdi();
    const platform::HDC dc = UserControl.hDC();
    const auto style = static_cast<std::int32_t>(BorderStyle_);
    if (style >= 1 && style <= 8) {
        gdi.DrawEdge(dc, &rect, static_cast<unsigned>(edgeKind_), platform::BF_RECT);
    } else if (BorderStyle_ == BoStyle::Flat_Frame) {
        OLE_COLOR c1 = kFlatFrameColour, c2 = kFlatFrameColour, c3 = 0, c4 = 0, c5 = 0, c6 = 0;
        foundation::DrawBorderStyle(gdi, dc, rect, 1, c1, c2, c3, c4, c5, c6, 0, 1);
    } else if (BorderStyle_ == BoStyle::XP_Frame) {
        OLE_COLOR c1 = kXPFrameColour, c2 = kXPFrameColour, c3 = UserControl.BackColor(),
                  c4 = kXPFrameColour, c5 = kXPFrameColour, c6 = kXPFrameColour;
        foundation::DrawXPFrame(gdi, dc, rect, 1, c1, c2, c3, c4, c5, c6, 0, 1);
    }
    UserControl.Refresh();
}

// ---------------------------------------------------------------------------------------------
// Properties

void Frames::SetCaptionText(std::string caption) {
    T.Visible(!caption.empty());
    T.Caption(std::move(caption));
}

void Frames::Caption(std::string New_Caption) {
    SetCaptionText(std::move(New_Caption));
    PropertyChanged("Caption");
}

void Frames::Font(std::shared_ptr<StdFont> New_Font) {
    if (!New_Font) throw HostError(kErrInvalidPropertyValue, "Font");
    T.Font(New_Font->Clone());
    ResizeFrame();
    PropertyChanged("Font");
}

void Frames::TextColor(OLE_COLOR New_TextColor) {
    T.ForeColor(New_TextColor);
    PropertyChanged("TextColor");
}

void Frames::BackColorF(OLE_COLOR New_BackColorF) {
    UserControl.BackColor(New_BackColorF);
    T.BackColor(New_BackColorF);
    ResizeFrame();
    PropertyChanged("BackColorF");
}

void Frames::FontBold(bool New_FontBold) {
    T.Font()->Bold(New_FontBold);
    PropertyChanged("FontBold");
}

void Frames::FontItalic(bool New_FontItalic) {
    T.Font()->Italic(New_FontItalic);
    PropertyChanged("FontItalic");
}

void Frames::FontName(std::string New_FontName) {
    T.Font()->Name(std::move(New_FontName));
    PropertyChanged("FontName");
}

void Frames::FontSize(float New_FontSize) {
    T.Font()->Size(New_FontSize);
    PropertyChanged("FontSize");
}

void Frames::FontStrikethru(bool New_FontStrikethru) {
    T.Font()->Strikethrough(New_FontStrikethru);
    PropertyChanged("FontStrikethru");
}

void Frames::MouseIcon(std::shared_ptr<StdPicture> New_MouseIcon) {
    UserControl.MouseIcon(std::move(New_MouseIcon));
    PropertyChanged("MouseIcon");
}

void Frames::MousePointer(fMousePointerConst New_MousePointer) {
    UserControl.MousePointer(ToInteger(static_cast<double>(New_MousePointer)));
    PropertyChanged("MousePointer");
}

void Frames::BorderStyle(BoStyle New_BorderStyle) {
    BorderStyle_ = New_BorderStyle;
    const auto style = static_cast<std::int32_t>(New_BorderStyle);
    if (style >= 1 && style <= 8) edgeKind_ = kEdgeOfStyle[style];
    Repaint();
    PropertyChanged("BorderStyle");
}

void Frames::Alignment(BoAli New_Alignment) {
    Alignment_ = New_Alignment;
    ResizeFrame();
    PropertyChanged("Alignment");
}

void Frames::AlignmentTop(BoAl New_AlignmentTop) {
    AlignmentTop_ = New_AlignmentTop;
    ResizeFrame();
    PropertyChanged("AlignmentTop");
}

void Frames::EnabledF(bool New_EnabledF) {
    UserControl.Enabled(New_EnabledF);
    PropertyChanged("EnabledF");
}

}  // namespace korvex::controls
