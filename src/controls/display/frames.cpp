#include "controls/display/frames.hpp"

#include "base/error.hpp"
#include "foundation/border.hpp"
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

std::int16_t FontFlag(bool value) { return value ? std::int16_t{-1} : std::int16_t{0}; }

}  // namespace

Frames::Frames(HostContext& context) : SurfaceControl(context), T(UserControl) {
    // The design data: a pixel surface, and an opaque caption label in the frame's colour that
    // fits itself to its text.
    UserControl.ScaleMode(forms::ScaleModeConstants::vbPixels);
    T.AutoSize(true);
    T.BackStyle(1);
    T.BackColor(UserControl.BackColor());
    T.ForeColor(0);
    T.Caption(kCreatedCaption);
    T.Move(kCaptionIndent, 0);
    ForwardInput();
}

const ClassInfo& Frames::Class() {
    static const ClassInfo info =
        ClassBuilder<Frames>("Frames", "Korvex_Tools.Frames")
            .Property(KORVEX_PROPERTY(Font))
            .Property(KORVEX_PROPERTY(TextColor))
            .Property(KORVEX_PROPERTY(BackColorF))
            .Property(KORVEX_PROPERTY(FontBold))
            .Property(KORVEX_PROPERTY(FontItalic))
            .Property(KORVEX_PROPERTY(FontName))
            .Property(KORVEX_PROPERTY(FontSize))
            .Property(KORVEX_PROPERTY(FontStrikethru))
            .Property(KORVEX_PROPERTY(MouseIcon))
            .Property(KORVEX_PROPERTY(MousePointer), "fMousePointerConst")
            .Property(KORVEX_PROPERTY(BorderStyle), "BoStyle")
            .Property(KORVEX_PROPERTY(Alignment), "BoAli")
            .Property(KORVEX_PROPERTY(AlignmentTop), "BoAl")
            .Property(KORVEX_PROPERTY(EnabledF))
            .ReadOnly(KORVEX_READONLY(HasDC))
            .ReadOnly(KORVEX_READONLY(HDC))
            .ReadOnly(KORVEX_READONLY(hwnd))
            .Property(KORVEX_PROPERTY(Caption))
            .Event("Click")
            .Event("DblClick")
            .Event("MouseDown", MouseEventArgs())
            .Event("MouseMove", MouseEventArgs())
            .Event("MouseUp", MouseEventArgs())
            .Event("KeyDown", KeyEventArgs())
            .Event("KeyPress", {Arg("KeyAscii", TypeCode::Integer)})
            .Event("KeyUp", KeyEventArgs())
            .Event("Focus", {Arg("bFocus", TypeCode::Boolean)})
            .Enum("BoStyle", {{"Off_Frame", 0},
                              {"Standard_Down", 1},
                              {"Standard_Up", 2},
                              {"Bright_Down", 3},
                              {"Bright_Up", 4},
                              {"Dark_Down", 5},
                              {"Dark_UP", 6},
                              {"Dark_Frame", 7},
                              {"Standard_Frame", 8},
                              {"Flat_Frame", 9},
                              {"XP_Frame", 10}})
            .Enum("BoAli", {{"fLeft", 0}, {"fCenter", 1}, {"fRight", 2}})
            .Enum("BoAl", {{"fStandard", 0}, {"fUnderBorder", 1}, {"fOverBorder", 2}})
            .Enum("fMousePointerConst", MousePointerMembers("fMouseIcon"))
            .Build();
    return info;
}

// Only the surface's own input becomes the frame's events; the caption label keeps its clicks,
// as a label on a frame does.
void Frames::ForwardInput() {
    forms::SurfaceEvents& e = UserControl.events;
    e.Click = [this] { RaiseEvent(kClick); };
    e.DblClick = [this] { RaiseEvent(kDblClick); };
    ForwardMouse(e, kMouseDown, kMouseMove, kMouseUp);
    e.KeyDown = [this](std::int16_t& KeyCode, std::int16_t Shift) { RaiseEvent(kKeyDown, KeyCode, Shift); };
    e.KeyPress = [this](std::int16_t& KeyAscii) { RaiseEvent(kKeyPress, KeyAscii); };
    e.KeyUp = [this](std::int16_t& KeyCode, std::int16_t Shift) { RaiseEvent(kKeyUp, KeyCode, Shift); };
    e.GotFocus = [this] {
        bool bFocus = true;
        RaiseEvent(kFocus, bFocus);
    };
    e.LostFocus = [this] {
        bool bFocus = false;
        RaiseEvent(kFocus, bFocus);
    };
}

// ---------------------------------------------------------------------------------------------
// Lifecycle

void Frames::UserControl_Initialize() {
    edgeKind_ = 6;
}

void Frames::UserControl_InitProperties() {
    BorderStyle_ = BoStyle::Standard_Frame;
    Alignment_ = BoAli::fLeft;
    AlignmentTop_ = BoAl::fStandard;
}

void Frames::UserControl_ReadProperties(PropertyBag& PropBag) {
    SetCaptionText(PropBag.ReadProperty("Caption", kBagCaption).ToString());
    Font(PropBag.ReadProperty("Font", Ambient().Font).ToFont());
    // Saved as a Long, looked up with an Integer 0: the default only decides what a missing key
    // gives, a stored colour is taken as it is (converting it to the default's type would
    // overflow for every colour above &H7FFF).
    const Variant textColor = PropBag.ReadProperty("TextColor");
    T.ForeColor(static_cast<OLE_COLOR>((textColor.IsEmpty() ? Variant(std::int16_t{0}) : textColor).ToLong()));
    const auto backColor =
        static_cast<OLE_COLOR>(PropBag.ReadProperty("BackColorF", OLE_COLOR{0x8000000F}).ToLong());
    UserControl.BackColor(backColor);
    T.BackColor(backColor);
    BorderStyle(static_cast<BoStyle>(PropBag.ReadProperty("BorderStyle", std::int16_t{8}).ToInteger()));
    UserControl.Enabled(PropBag.ReadProperty("EnabledF", true).ToBool());
    MouseIcon(PropBag.ReadProperty("MouseIcon", Variant::Nothing()).ToPicture());
    UserControl.MousePointer(PropBag.ReadProperty("MousePointer", std::int16_t{0}).ToInteger());
    StdFont& font = *T.Font();
    font.Bold(PropBag.ReadProperty("FontBold", std::int16_t{0}).ToBool());
    font.Italic(PropBag.ReadProperty("FontItalic", std::int16_t{0}).ToBool());
    // A saved frame never stores size 0 or name "" (a font has neither), so a missing key leaves
    // what "Font" restored rather than asking the font for an impossible value.
    if (const std::int16_t size = PropBag.ReadProperty("FontSize", std::int16_t{0}).ToInteger(); size > 0)
        font.Size(size);
    font.Strikethrough(PropBag.ReadProperty("FontStrikethru", std::int16_t{0}).ToBool());
    if (std::string name = PropBag.ReadProperty("FontName", "").ToString(); !name.empty())
        font.Name(std::move(name));
    Alignment(static_cast<BoAli>(PropBag.ReadProperty("Alignment", std::int32_t{0}).ToLong()));
    AlignmentTop(static_cast<BoAl>(PropBag.ReadProperty("AlignmentTop", std::int32_t{0}).ToLong()));
}

void Frames::UserControl_WriteProperties(PropertyBag& PropBag) {
    PropBag.WriteProperty("Caption", T.Caption(), kBagCaption);
    PropBag.WriteProperty("Font", T.Font(), Ambient().Font);
    PropBag.WriteProperty("TextColor", T.ForeColor(), std::int16_t{0});
    // Once from the surface and once from the label: both hold the same colour.
    PropBag.WriteProperty("BackColorF", UserControl.BackColor(), OLE_COLOR{0x8000000F});
    PropBag.WriteProperty("BackColorF", T.BackColor(), OLE_COLOR{0x8000000F});
    PropBag.WriteProperty("BorderStyle", ToInteger(static_cast<double>(BorderStyle_)), std::int16_t{8});
    PropBag.WriteProperty("EnabledF", UserControl.Enabled(), true);
    PropBag.WriteProperty("MouseIcon", UserControl.MouseIcon(), Variant::Nothing());
    PropBag.WriteProperty("MousePointer", UserControl.MousePointer(), std::int16_t{0});
    const StdFont& font = *T.Font();
    PropBag.WriteProperty("FontBold", FontFlag(font.Bold()), std::int16_t{0});
    PropBag.WriteProperty("FontItalic", FontFlag(font.Italic()), std::int16_t{0});
    // Whole points, as the 16-bit key holds them: 8.25 is saved as 8.
    PropBag.WriteProperty("FontSize", ToInteger(font.Size()), std::int16_t{0});
    PropBag.WriteProperty("FontStrikethru", FontFlag(font.Strikethrough()), std::int16_t{0});
    PropBag.WriteProperty("FontName", font.Name(), "");
    PropBag.WriteProperty("Alignment", static_cast<std::int32_t>(Alignment_), std::int32_t{0});
    PropBag.WriteProperty("AlignmentTop", static_cast<std::int32_t>(AlignmentTop_), std::int32_t{0});
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
    if (AlignmentTop_ == BoAl::fStandard) frameTop = top + static_cast<double>(T.Height()) / 2;
    else if (AlignmentTop_ == BoAl::fOverBorder) frameTop = top + static_cast<double>(T.Height());
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
