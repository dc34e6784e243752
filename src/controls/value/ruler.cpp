#include "controls/value/ruler.hpp"

#include <cmath>
#include <span>
#include <string>
#include <tuple>

#include "base/error.hpp"
#include "host/numeric.hpp"
#include "host/variant.hpp"

namespace korvex::controls {

using host::ClassBuilder;
using host::ClassInfo;
using host::HostError;
using host::kErrInvalidCall;
using host::kErrInvalidPropertyValue;
using host::OLE_COLOR;
using host::Variant;

namespace {

// The context menu's entries: the four units, a separator and three entries of the host's.
constexpr std::int16_t kSeparator = 4;
constexpr std::int16_t kHide = 5;
constexpr std::int16_t kFix = 6;
constexpr std::int16_t kGuides = 7;

}  // namespace

// The calibration texts are stored as text, but their defaults are numbers in the bag; a text
// equal to its number is therefore not stored. AdjPixel's default follows the screen.
struct Ruler::Props {
    static std::string PixelText(const Ruler& c) {
        return std::to_string(c.UserControl.Scale().TwipsPerPixelX() * 100);
    }
    // Orientation and the colours are restored without their let procedures.
    static void RestoreOrientation(Ruler& c, asrOrientationConstants value) {
        CheckOrientation(value);
        c.Orientation_ = value;
    }
    static void RestoreBackColor(Ruler& c, OLE_COLOR value) { c.UserControl.BackColor(value); }
    static void RestoreForeColor(Ruler& c, OLE_COLOR value) { c.UserControl.ForeColor(value); }
    static void CheckOrientation(asrOrientationConstants value) {
        const auto v = static_cast<std::int32_t>(value);
        if (v < 0 || v > 2) throw HostError(kErrInvalidPropertyValue, "Ruler.Orientation");
    }

    template <class V>
    using P = host::Property<Ruler, V>;
    static inline const P<bool> Mode2{.name = "Mode2", .get = &Ruler::Mode2, .set = &Ruler::Mode2};
    static inline const P<bool> Mode3{.name = "Mode3", .get = &Ruler::Mode3, .set = &Ruler::Mode3};
    static inline const P<bool> Mode4{.name = "Mode4", .get = &Ruler::Mode4, .set = &Ruler::Mode4};
    static inline const P<bool> Mode3Check{
        .name = "Mode3Check", .get = &Ruler::Mode3Check, .set = &Ruler::Mode3Check};
    static inline const P<bool> Mode4Check{
        .name = "Mode4Check", .get = &Ruler::Mode4Check, .set = &Ruler::Mode4Check};
    static inline const P<RulerModeConst> Mode{.name = "Mode",
                                               .get = &Ruler::Mode,
                                               .set = &Ruler::Mode,
                                               .read = RulerModeConst::Millimeter,
                                               .bag = host::BagKind::Integer};
    static inline const P<std::string> AdjCm{
        .name = "AdjCm", .get = &Ruler::AdjCm, .set = &Ruler::AdjCm, .read = std::string("445")};
    static inline const P<std::string> AdjTwip{.name = "AdjTwip",
                                               .get = &Ruler::AdjTwip,
                                               .set = &Ruler::AdjTwip,
                                               .read = std::string("1000")};
    static inline const P<std::string> AdjInch{.name = "AdjInch",
                                               .get = &Ruler::AdjInch,
                                               .set = &Ruler::AdjInch,
                                               .read = std::string("1440")};
    static inline const P<std::string> AdjPixel{
        .name = "AdjPixel",
        .get = &Ruler::AdjPixel,
        .set = &Ruler::AdjPixel,
        .read = {PixelText, "the screen's twips per pixel x 100"}};
    static inline const P<asrOrientationConstants> Orientation{
        .name = "Orientation",
        .get = &Ruler::Orientation,
        .set = &Ruler::Orientation,
        .read = asrOrientationConstants::Auto,
        .bag = host::BagKind::Integer,
        .restore = RestoreOrientation};
    static inline const P<OLE_COLOR> BackColorR{.name = "BackColorR",
                                                .get = &Ruler::BackColorR,
                                                .set = &Ruler::BackColorR,
                                                .read = 0x80000018U,
                                                .restore = RestoreBackColor};
    static inline const P<OLE_COLOR> ForeColor{.name = "ForeColor",
                                               .get = &Ruler::ForeColor,
                                               .set = &Ruler::ForeColor,
                                               .read = 0x80000012U,
                                               .restore = RestoreForeColor};
    static inline const P<std::int16_t> SmallZoom{.name = "SmallZoom",
                                                  .get = &Ruler::SmallZoom,
                                                  .set = &Ruler::SmallZoom,
                                                  .read = std::int16_t{1}};

    // Bag order.
    static inline const auto Keys =
        std::tie(AdjCm, AdjTwip, AdjInch, AdjPixel, SmallZoom, Orientation, Mode, Mode2, Mode3,
                 Mode3Check, Mode4, Mode4Check, BackColorR, ForeColor);
};

const ClassInfo& Ruler::Class() {
    using host::Arg;
    using host::TypeCode;
    static const ClassInfo info =
        ClassBuilder<Ruler>("Ruler", "Korvex_Tools.Ruler")
            .Method("ShowAboutBox", {}, [](Ruler& c, std::span<Variant>) { c.ShowAboutBox(); })
            .DispId(host::kDispIdAboutBox)
            .Property(Props::Mode2)
            .Property(Props::Mode3)
            .Property(Props::Mode4)
            .Property(Props::Mode3Check)
            .Property(Props::Mode4Check)
            .Property(Props::Mode)
            .Property(Props::AdjCm)
            .Property(Props::AdjTwip)
            .Property(Props::AdjInch)
            .Property(Props::AdjPixel)
            .Method("Adjust", {}, [](Ruler& c, std::span<Variant>) { c.Adjust(); })
            .Property(Props::Orientation)
            .Property(Props::BackColorR)
            .Property(Props::ForeColor)
            .Property(Props::SmallZoom)
            .Method("MouseMoved", {Arg("x", TypeCode::Single)},
                    [](Ruler& c, std::span<Variant> a) { c.MouseMoved(a[0].ToSingle()); })
            .Events<RulerEvents>({{RulerEvents::MenuClick, {Arg("Index", TypeCode::Integer)}},
                                  {RulerEvents::KeyDown, host::KeyEventArgs()},
                                  {RulerEvents::KeyPress, {Arg("KeyAscii", TypeCode::Integer)}},
                                  {RulerEvents::KeyUp, host::KeyEventArgs()}})
            .Enum<RulerModeConst>()
            .Enum<asrOrientationConstants>()
            .Build();
    return info;
}

Ruler::Ruler(host::HostContext& context)
    : SurfaceControl(context), mnuMenu_(UserControl.Platform()) {
    mnuMenu_.Items = {{"Centimeter"},      {"Twip * 1000"},       {"Inch"},
                      {"Pixel * 100"},     {"-", false},          {"Ausblenden", false},
                      {"Fixieren", false}, {"Hilfslinien", false}};
    UserControl.BackColor(Props::BackColorR.Initial(*this));
    UserControl.ForeColor(Props::ForeColor.Initial(*this));

    using E = RulerEvents;
    forms::SurfaceEvents& surface = UserControl.events;
    surface.MouseUp = [this](std::int16_t Button, std::int16_t, float X, float Y) {
        UserControl_MouseUp(Button, X, Y);
    };
    surface.KeyDown = [this](std::int16_t& KeyCode, std::int16_t Shift) {
        RaiseEvent(E::KeyDown, KeyCode, Shift);
    };
    surface.KeyPress = [this](std::int16_t& KeyAscii) { RaiseEvent(E::KeyPress, KeyAscii); };
    surface.KeyUp = [this](std::int16_t& KeyCode, std::int16_t Shift) {
        RaiseEvent(E::KeyUp, KeyCode, Shift);
    };
}

// ---------------------------------------------------------------------------------------------
// Lifecycle

void Ruler::UserControl_Initialize() {
    UnitLength_ = 445;
}

void Ruler::UserControl_InitProperties() {
    AdjCm_ = Props::AdjCm.Initial(*this);
    AdjTwip_ = Props::AdjTwip.Initial(*this);
    AdjInch_ = Props::AdjInch.Initial(*this);
    AdjPixel_ = Props::AdjPixel.Initial(*this);
    Mode_ = Props::Mode.Initial(*this);
    Orientation_ = Props::Orientation.Initial(*this);
    SmallZoom_ = Props::SmallZoom.Initial(*this);
}

void Ruler::UserControl_ReadProperties(host::PropertyBag& PropBag) {
    host::LoadAll(*this, PropBag, Props::Keys);
}

void Ruler::UserControl_WriteProperties(host::PropertyBag& PropBag) {
    host::SaveAll(*this, PropBag, Props::Keys);
}

// Auto is replaced for good at the first resize (and persisted so): a control at least as high
// as wide becomes vertical.
void Ruler::UserControl_Resize() {
    UserControl.Cls();
    MarkerPos_ = 0;
    if (Orientation_ == asrOrientationConstants::Auto)
        Orientation(UserControl.Width() <= UserControl.Height()
                        ? asrOrientationConstants::Vertical
                        : asrOrientationConstants::Horizontal);
    DrawScale();
}

// ---------------------------------------------------------------------------------------------
// Properties

// Entry 4 separates the host's entries from the units while any of them shows.
void Ruler::ApplySeparatorRule() {
    mnuMenu_.Items[kSeparator].Visible = Mode2_ || Mode3_ || Mode4_;
}

void Ruler::Mode2(bool New_Mode2) {
    Mode2_ = New_Mode2;
    ApplySeparatorRule();
    mnuMenu_.Items[kHide].Visible = New_Mode2;
    PropertyChanged("Mode2");
}

void Ruler::Mode3(bool New_Mode3) {
    Mode3_ = New_Mode3;
    ApplySeparatorRule();
    mnuMenu_.Items[kFix].Visible = New_Mode3;
    PropertyChanged("Mode3");
}

void Ruler::Mode4(bool New_Mode4) {
    Mode4_ = New_Mode4;
    ApplySeparatorRule();
    mnuMenu_.Items[kGuides].Visible = New_Mode4;
    PropertyChanged("Mode4");
}

void Ruler::Mode3Check(bool New_Mode3Check) {
    Mode3Check_ = New_Mode3Check;
    PropertyChanged("Mode3Check");
}

void Ruler::Mode4Check(bool New_Mode4Check) {
    Mode4Check_ = New_Mode4Check;
    PropertyChanged("Mode4Check");
}

// The unit length is found before anything is stored, so a text that is no number (13), or a
// length the scale cannot step by (380), leaves mode, calibration and picture as they were.
void Ruler::Mode(RulerModeConst New_Mode) {
    const auto index = static_cast<std::int32_t>(New_Mode);
    if (index < 0 || index > 3) throw HostError(kErrInvalidPropertyValue, "Ruler.Mode");
    const std::string* texts[] = {&AdjCm_, &AdjTwip_, &AdjInch_, &AdjPixel_};
    const std::int32_t length =
        Variant(*texts[index]).ConvertedLike(Variant(std::int32_t{})).ToLong();
    if (length <= 0) throw HostError(kErrInvalidPropertyValue, "Ruler.Mode");
    Mode_ = New_Mode;
    UnitLength_ = length;
    Redraw();
    PropertyChanged("Mode");
}

void Ruler::AdjCm(std::string New_AdjCm) {
    AdjCm_ = std::move(New_AdjCm);
    PropertyChanged("AdjCm");
}

void Ruler::AdjTwip(std::string New_AdjTwip) {
    AdjTwip_ = std::move(New_AdjTwip);
    PropertyChanged("AdjTwip");
}

void Ruler::AdjInch(std::string New_AdjInch) {
    AdjInch_ = std::move(New_AdjInch);
    PropertyChanged("AdjInch");
}

void Ruler::AdjPixel(std::string New_AdjPixel) {
    AdjPixel_ = std::move(New_AdjPixel);
    PropertyChanged("AdjPixel");
}

void Ruler::Orientation(asrOrientationConstants New_Orientation) {
    Props::CheckOrientation(New_Orientation);
    Orientation_ = New_Orientation;
    Redraw();
    PropertyChanged("Orientation");
}

void Ruler::BackColorR(OLE_COLOR New_BackColorR) {
    UserControl.BackColor(New_BackColorR);
    PropertyChanged("BackColorR");
}

void Ruler::ForeColor(OLE_COLOR New_ForeColor) {
    UserControl.ForeColor(New_ForeColor);
    PropertyChanged("ForeColor");
}

void Ruler::SmallZoom(std::int16_t New_SmallZoom) {
    SmallZoom_ = New_SmallZoom;
    Redraw();
    PropertyChanged("SmallZoom");
}

// ---------------------------------------------------------------------------------------------
// Methods

void Ruler::ShowAboutBox() {
    OpenAboutBox();
}

void Ruler::Adjust() {
    Mode(Mode_);
}

// Drawn in inverting mode: the new line first, then the old one again, which takes it away. A
// marker at 0 or before is never taken away, as nothing is drawn again at position 0.
void Ruler::MouseMoved(float x) {
    if (!std::isfinite(x)) throw HostError(kErrInvalidCall, "Ruler.MouseMoved");
    constexpr std::int16_t kInvert = 6;  // R2_NOT
    constexpr std::int16_t kCopy = 13;   // R2_COPYPEN
    const float sw = UserControl.ScaleWidth();
    const float sh = UserControl.ScaleHeight();
    UserControl.DrawMode(kInvert);
    if (IsHorizontal()) {
        UserControl.Line(x, 0, x, sh);
        if (MarkerPos_ > 0) UserControl.Line(MarkerPos_, 0, MarkerPos_, sh);
    } else {
        UserControl.Line(0, x, sw, x);
        if (MarkerPos_ > 0) UserControl.Line(0, MarkerPos_, sw, MarkerPos_);
    }
    MarkerPos_ = x;
    UserControl.DrawMode(kCopy);
}

// ---------------------------------------------------------------------------------------------
// Drawing

void Ruler::Redraw() {
    UserControl.Cls();
    DrawScale();
}

// Ten ticks to a group, the tenth across the whole width with the division's number printed to
// the right of it at the top (at the left in a vertical ruler), the fifth half as long, the others
// an eighth. The start lies a little past one step (U / 4.8 against U / 5 ...) so that the
// labels, truncated, come out as whole multiples of SmallZoom. Only the group's start is tested
// against the edge, so the last group may run past it (the surface clips).
void Ruler::DrawScale() {
    const double u = UnitLength_;
    double p = 0, s = 0;
    switch (SmallZoom_) {
        case 1:
            p = u / 10, s = u / 10;
            break;
        case 2:
            p = u / 4.8, s = u / 5;
            break;
        case 4:
            p = u / 2.48, s = u / 2.5;
            break;
        case 8:
            p = u / 1.24, s = u / 1.25;
            break;
        default:
            return;
    }
    const double sw = UserControl.ScaleWidth();
    const double sh = UserControl.ScaleHeight();
    const bool horizontal = IsHorizontal();
    const double along = horizontal ? sw : sh;
    const auto line = [this](double x1, double y1, double x2, double y2) {
        UserControl.Line(static_cast<float>(x1), static_cast<float>(y1), static_cast<float>(x2),
                         static_cast<float>(y2));
    };
    while (p < along) {
        for (int k = 1; k <= 10; ++k) {
            if (horizontal) {
                if (k == 10) {
                    line(p, 0, p, sh);
                    UserControl.CurrentY(0);
                    UserControl.Print(std::to_string(static_cast<std::int64_t>(host::Int(p / u))));
                } else if (k == 5) {
                    line(p, sh - sh / 2, p, sh);
                } else {
                    line(p, sh - sh / 8, p, sh);
                }
            } else {
                // The long tick runs to the height, as far as the width allows.
                if (k == 10) {
                    line(0, p, sh, p);
                    UserControl.CurrentX(0);
                    UserControl.Print(std::to_string(static_cast<std::int64_t>(host::Int(p / u))));
                } else if (k == 5) {
                    line(sw - sw / 2, p, sw, p);
                } else {
                    line(sw - sw / 8, p, sw, p);
                }
            }
            p += s;
        }
    }
}

// ---------------------------------------------------------------------------------------------
// Input

void Ruler::UserControl_MouseUp(std::int16_t Button, float X, float Y) {
    if (Button == platform::kButtonLeft) {
        RaiseEvent(RulerEvents::Click);
        return;
    }
    if (Button != platform::kButtonRight) return;
    RaiseEvent(RulerEvents::RightClick);
    for (forms::MenuItem& item : mnuMenu_.Items) item.Checked = false;
    const auto mode = static_cast<std::int32_t>(Mode_);
    if (mode >= 0 && mode < static_cast<std::int32_t>(mnuMenu_.Items.size()))
        mnuMenu_.Items[static_cast<std::size_t>(mode)].Checked = true;
    mnuMenu_.Items[kFix].Checked = Mode3Check_;
    mnuMenu_.Items[kGuides].Checked = Mode4Check_;
    const forms::ScaleSystem& scale = UserControl.Scale();
    const platform::POINT client{static_cast<std::int32_t>(X / scale.TwipsPerPixelX()),
                                 static_cast<std::int32_t>(Y / scale.TwipsPerPixelY())};
    const int chosen =
        mnuMenu_.Track(UserControl.Platform().windows().ClientToScreen(UserControl.hWnd(), client));
    if (chosen >= 0) mnuMode_Click(static_cast<std::int16_t>(chosen));
}

void Ruler::mnuMode_Click(std::int16_t Index) {
    if (Index < 4) Mode(static_cast<RulerModeConst>(Index));
    RaiseEvent(RulerEvents::MenuClick, Index);
}

}  // namespace korvex::controls
