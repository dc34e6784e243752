#include "controls/value/progress_bar.hpp"

#include <algorithm>
#include <array>
#include <cassert>
#include <span>
#include <tuple>
#include <utility>

#include "base/error.hpp"
#include "base/resources.hpp"
#include "foundation/color.hpp"
#include "host/numeric.hpp"
#include "platform/png.hpp"

namespace korvex::controls {

using host::BagKind;
using host::ClassBuilder;
using host::ClassInfo;
using host::HostError;
using host::OLE_COLOR;
using host::Property;
using host::StdPicture;
using host::Variant;

namespace {

constexpr bool IsXP(StyleConstants style) {
    return style == StyleConstants::XPStyleBig || style == StyleConstants::XPStyleSmall;
}

// Picture pixels carry alpha; the built-in pictures are opaque throughout.
constexpr std::uint32_t kOpaque = 0xFF000000u;

std::shared_ptr<StdPicture> Chunk(std::span<const std::uint32_t> rows) {
    constexpr std::int32_t kWidth = 6;
    std::vector<std::uint32_t> pixels;
    for (std::uint32_t rgb : rows) pixels.insert(pixels.end(), kWidth, rgb | kOpaque);
    return std::make_shared<StdPicture>(host::PictureType::Bitmap, kWidth,
                                        static_cast<std::int32_t>(rows.size()), std::move(pixels));
}

std::shared_ptr<StdPicture> Trough(const char* path) {
    const auto bytes = resources::Find(path);
    assert(!bytes.empty() && "the troughs are embedded from resources/pictures");
    platform::Image image = platform::DecodePng(bytes);
    for (std::uint32_t& pixel : image.pixels) pixel |= kOpaque;
    return std::make_shared<StdPicture>(host::PictureType::Bitmap, image.width, image.height,
                                        std::move(image.pixels));
}

// The host's RGB: a component above 255 counts as 255, a negative one is an invalid call.
platform::COLORREF Rgb(std::int16_t r, std::int16_t g, std::int16_t b) {
    if (r < 0 || g < 0 || b < 0) throw HostError(host::kErrInvalidCall, "RGB");
    const auto cap = [](std::int16_t v) {
        return static_cast<std::uint8_t>(std::min<int>(v, 255));
    };
    return platform::RGB(cap(r), cap(g), cap(b));
}

std::int16_t IntOf(double value) {
    return host::ToInteger(host::Int(value));
}

std::int16_t RoundOf(float value) {
    return host::ToInteger(static_cast<double>(value));
}

struct Components {
    std::int16_t r, g, b;
};

Components Split(platform::COLORREF rgb) {
    return {static_cast<std::int16_t>(rgb & 255), static_cast<std::int16_t>((rgb >> 8) & 255),
            static_cast<std::int16_t>((rgb >> 16) & 255)};
}

// Runs one drawing step of the gradient styles, where a failing step is left out and the paint
// goes on.
template <class F>
void Step(F&& step) {
    try {
        step();
    } catch (const HostError&) {
    }
}

}  // namespace

const XPPictures& BuiltinXPPictures() {
    static const XPPictures pictures = [] {
        static constexpr std::array<std::uint32_t, 7> greenSmall{
            0x95B38E, 0xA4D498, 0xA4D498, 0x76A66A, 0x83AE76, 0x8FBC82, 0x98C88C};
        static constexpr std::array<std::uint32_t, 7> blueSmall{
            0x0A97C0, 0x0CB7E9, 0x0CB7E9, 0x0A8BB1, 0x0A97C0, 0x0BA6D2, 0x0CB7E9};
        static constexpr std::array<std::uint32_t, 13> green{
            0x95B38E, 0x99C88E, 0xA4D498, 0xC3E3BA, 0xA4D498, 0x8DBC82, 0x83AE76,
            0x83AE76, 0x76A66A, 0x83AE76, 0x83AE76, 0x8FBC82, 0x98C88C};
        static constexpr std::array<std::uint32_t, 13> blue{
            0x0A8BB1, 0x0A97C0, 0x0CB7E9, 0x20C5F4, 0x0CB7E9, 0x0A97C0, 0x0A8BB1,
            0x0A8BB1, 0x09718E, 0x0A8BB1, 0x0A8BB1, 0x0A97C0, 0x0CB7E9};
        XPPictures p;
        p.trough = Trough("pictures/xp_trough.png");
        p.troughSmall = Trough("pictures/xp_trough_small.png");
        p.green = Chunk(green);
        p.greenSmall = Chunk(greenSmall);
        p.blue = Chunk(blue);
        p.blueSmall = Chunk(blueSmall);
        return p;
    }();
    return pictures;
}

// "BarColor1" is written against black but read against the selection-text colour: a black bar
// is not stored and comes back as that system colour. Restored values go into the fields as they
// stand (colours unconverted, Value above Max kept, Style without its border bookkeeping).
struct ProgressBar::Props {
    using Picture_t = ProgressBar::Picture_t;
    static void RestoreAutoRedraw(ProgressBar& c, bool v) { c.AutoRedraw_ = v; }
    static void RestoreShowText(ProgressBar& c, bool v) { c.ShowText_ = v; }
    static void RestoreAppearance(ProgressBar& c, AppearanceConstants v) {
        c.PB.Appearance(host::ToInteger(static_cast<std::int32_t>(v)));
    }
    static void RestoreBorderStyle(ProgressBar& c, BorderStyleConstantsH v) {
        c.PB.BorderStyle(host::ToInteger(static_cast<std::int32_t>(v)));
    }
    static void RestoreMax(ProgressBar& c, std::int32_t v) { c.Max_ = v; }
    static void RestoreValue(ProgressBar& c, std::int32_t v) { c.Value_ = v; }
    static void RestoreStyle(ProgressBar& c, StyleConstants v) { c.Style_ = v; }
    static void RestoreTextColor(ProgressBar& c, OLE_COLOR v) { c.TextColor_ = v; }
    static void RestoreBarColor2(ProgressBar& c, OLE_COLOR v) { c.BarColor2_ = v; }
    static void RestoreBarColor1(ProgressBar& c, OLE_COLOR v) { c.BarColor1_ = v; }
    static void RestoreBarXPcolor(ProgressBar& c, bXPcolor v) { c.BarXPcolor_ = v; }
    static void RestoreBackColorP(ProgressBar& c, OLE_COLOR v) { c.BackColorP_ = v; }

    static inline const Property<ProgressBar, bool> AutoRedraw{.name = "AutoRedraw",
                                                               .get = &ProgressBar::AutoRedraw,
                                                               .set = &ProgressBar::AutoRedraw,
                                                               .read = false,
                                                               .restore = RestoreAutoRedraw};
    static inline const Property<ProgressBar, bool> ShowText{.name = "ShowText",
                                                             .get = &ProgressBar::ShowText,
                                                             .set = &ProgressBar::ShowText,
                                                             .read = false,
                                                             .restore = RestoreShowText};
    static inline const Property<ProgressBar, AppearanceConstants> Appearance{
        .name = "Appearance",
        .get = &ProgressBar::Appearance,
        .set = &ProgressBar::Appearance,
        .read = AppearanceConstants::vb3D,
        .bag = BagKind::Integer,
        .restore = RestoreAppearance};
    static inline const Property<ProgressBar, BorderStyleConstantsH> BorderStyle{
        .name = "BorderStyle",
        .get = &ProgressBar::BorderStyle,
        .set = &ProgressBar::BorderStyle,
        .read = BorderStyleConstantsH::vbSingle,
        .bag = BagKind::Integer,
        .restore = RestoreBorderStyle};
    static inline const Property<ProgressBar, std::int32_t> Max{.name = "Max",
                                                                .get = &ProgressBar::Max,
                                                                .set = &ProgressBar::Max,
                                                                .read = 500000,
                                                                .restore = RestoreMax};
    static inline const Property<ProgressBar, std::int32_t> Value{.name = "Value",
                                                                  .get = &ProgressBar::Value,
                                                                  .set = &ProgressBar::Value,
                                                                  .read = 100,
                                                                  .restore = RestoreValue};
    static inline const Property<ProgressBar, StyleConstants> Style{.name = "Style",
                                                                    .get = &ProgressBar::Style,
                                                                    .set = &ProgressBar::Style,
                                                                    .read = StyleConstants::Smooth,
                                                                    .restore = RestoreStyle};
    static inline const Property<ProgressBar, OLE_COLOR> TextColor{.name = "TextColor",
                                                                   .get = &ProgressBar::TextColor,
                                                                   .set = &ProgressBar::TextColor,
                                                                   .read = 0U,
                                                                   .restore = RestoreTextColor};
    static inline const Property<ProgressBar, OLE_COLOR> BarColor2{.name = "BarColor2",
                                                                   .get = &ProgressBar::BarColor2,
                                                                   .set = &ProgressBar::BarColor2,
                                                                   .read = 0x0000FF00U,
                                                                   .restore = RestoreBarColor2};
    static inline const Property<ProgressBar, OLE_COLOR> BarColor1{.name = "BarColor1",
                                                                   .get = &ProgressBar::BarColor1,
                                                                   .set = &ProgressBar::BarColor1,
                                                                   .read = 0x8000000EU,
                                                                   .write = 0U,
                                                                   .init = 0U,
                                                                   .restore = RestoreBarColor1};
    static inline const Property<ProgressBar, bXPcolor> BarXPcolor{.name = "BarXPcolor",
                                                                   .get = &ProgressBar::BarXPcolor,
                                                                   .set = &ProgressBar::BarXPcolor,
                                                                   .read = bXPcolor::bGreen,
                                                                   .restore = RestoreBarXPcolor};
    static inline const Property<ProgressBar, OLE_COLOR> BackColorP{.name = "BackColorP",
                                                                    .get = &ProgressBar::BackColorP,
                                                                    .set = &ProgressBar::BackColorP,
                                                                    .read = 0x8000000FU,
                                                                    .restore = RestoreBackColorP};
    static inline const Property<ProgressBar, Picture_t> PictureLandscape{
        .name = "PictureLandscape",
        .get = &ProgressBar::PictureLandscape,
        .set = &ProgressBar::PictureLandscape};
    static inline const Property<ProgressBar, Picture_t> PictureStretch{
        .name = "PictureStretch",
        .get = &ProgressBar::PictureStretch,
        .set = &ProgressBar::PictureStretch};
    static inline const Property<ProgressBar, Picture_t> PictureTile{
        .name = "PictureTile", .get = &ProgressBar::PictureTile, .set = &ProgressBar::PictureTile};

    // Bag order.
    static inline const auto Keys = std::tie(
        AutoRedraw, ShowText, Appearance, BorderStyle, Max, Value, Style, TextColor, BarColor2,
        BarColor1, BarXPcolor, BackColorP, PictureLandscape, PictureStretch, PictureTile);
};

const ClassInfo& ProgressBar::Class() {
    using host::Arg;
    using host::TypeCode;
    static const ClassInfo info =
        ClassBuilder<ProgressBar>("ProgressBar", "Korvex_Tools.ProgressBar")
            .Method("ShowAboutBox", {},
                    [](ProgressBar& c, std::span<Variant>) { c.ShowAboutBox(); })
            .DispId(host::kDispIdAboutBox)
            .Property(Props::BarXPcolor)
            .Property(Props::AutoRedraw)
            .Property(Props::Max)
            .Property(Props::ShowText)
            .Property(Props::Appearance)
            .Property(Props::BorderStyle)
            .Property(Props::Value)
            .Property(Props::Style)
            .Property(Props::TextColor)
            .Property(Props::BarColor2)
            .Property(Props::BarColor1)
            .Property(Props::BackColorP)
            .Property(Props::PictureLandscape)
            .Property(Props::PictureStretch)
            .Property(Props::PictureTile)
            .Events<ProgressBarEvents>(
                {{ProgressBarEvents::KeyDown, host::KeyEventArgs()},
                 {ProgressBarEvents::KeyPress, {Arg("KeyAscii", TypeCode::Integer)}},
                 {ProgressBarEvents::KeyUp, host::KeyEventArgs()},
                 {ProgressBarEvents::MouseMove, host::MouseEventArgs()},
                 {ProgressBarEvents::MouseUp, host::MouseEventArgs()},
                 {ProgressBarEvents::MouseDown, host::MouseEventArgs()}})
            .Enum<StyleConstants>()
            .Enum<bXPcolor>()
            .Enum<AppearanceConstants>()
            .Enum<BorderStyleConstantsH>()
            .Build();
    return info;
}

ProgressBar::ProgressBar(host::HostContext& context)
    : SurfaceControl(context), PB(UserControl), lblVal(UserControl) {
    PB.ScaleMode(forms::ScaleModeConstants::vbPixels);
    lblVal.AutoSize(true);
    lblVal.BackStyle(0);
    lblVal.Visible(false);

    // Input on the surface and on PB is the control's; PB's positions become the surface's.
    const auto key = [this](ProgressBarEvents id) {
        return [this, id](std::int16_t& KeyCode, std::int16_t Shift) {
            RaiseEvent(id, KeyCode, Shift);
        };
    };
    const auto press = [this](std::int16_t& KeyAscii) {
        RaiseEvent(ProgressBarEvents::KeyPress, KeyAscii);
    };
    for (forms::SurfaceEvents* source : {&UserControl.events, &PB.events}) {
        source->KeyDown = key(ProgressBarEvents::KeyDown);
        source->KeyUp = key(ProgressBarEvents::KeyUp);
        source->KeyPress = press;
    }
    ForwardMouse(UserControl.events, static_cast<std::int32_t>(ProgressBarEvents::MouseDown),
                 static_cast<std::int32_t>(ProgressBarEvents::MouseMove),
                 static_cast<std::int32_t>(ProgressBarEvents::MouseUp));
    const auto fromPB = [this](ProgressBarEvents id) {
        return [this, id](std::int16_t Button, std::int16_t Shift, float x, float y) {
            float sx = x + PB.Left();
            float sy = y + PB.Top();
            RaiseEvent(id, Button, Shift, sx, sy);
        };
    };
    PB.events.MouseDown = fromPB(ProgressBarEvents::MouseDown);
    PB.events.MouseMove = fromPB(ProgressBarEvents::MouseMove);
    PB.events.MouseUp = fromPB(ProgressBarEvents::MouseUp);
}

// ---------------------------------------------------------------------------------------------
// Lifecycle

void ProgressBar::UserControl_Initialize() {}

void ProgressBar::UserControl_InitProperties() {
    AutoRedraw_ = Props::AutoRedraw.Initial(*this);
    ShowText_ = Props::ShowText.Initial(*this);
    Max_ = Props::Max.Initial(*this);
    Value_ = Props::Value.Initial(*this);
    Style_ = Props::Style.Initial(*this);
    TextColor_ = Props::TextColor.Initial(*this);
    BarColor2_ = Props::BarColor2.Initial(*this);
    BarColor1_ = Props::BarColor1.Initial(*this);
    BarXPcolor_ = Props::BarXPcolor.Initial(*this);
    BackColorP_ = Props::BackColorP.Initial(*this);
}

void ProgressBar::UserControl_ReadProperties(host::PropertyBag& PropBag) {
    host::LoadAll(*this, PropBag, Props::Keys);
    UserControl_Paint();
}

void ProgressBar::UserControl_WriteProperties(host::PropertyBag& PropBag) {
    host::SaveAll(*this, PropBag, Props::Keys);
}

// Lays out in twips, then paints in pixels. An XP style makes the control exactly as high as its
// trough picture.
void ProgressBar::UserControl_Resize() {
    UserControl.ScaleMode(forms::ScaleModeConstants::vbTwips);
    PB.Move(0, 0, UserControl.ScaleWidth(), UserControl.ScaleHeight());
    lblVal.Move((UserControl.ScaleWidth() - lblVal.Width()) / 2,
                (UserControl.ScaleHeight() - lblVal.Height()) / 2);
    if (IsXP(Style_)) {
        const XPPictures& xp = BuiltinXPPictures();
        const auto& trough = Style_ == StyleConstants::XPStyleBig ? xp.trough : xp.troughSmall;
        PB.Height(static_cast<float>(trough->PixelHeight() * UserControl.Scale().TwipsPerPixelY()));
        UserControl.Height(PB.Height());
        XPFramePainted_ = false;
    }
    UserControl.ScaleMode(forms::ScaleModeConstants::vbPixels);
    PB.Cls();
    UserControl_Paint();
}

// ---------------------------------------------------------------------------------------------
// Properties

void ProgressBar::BarXPcolor(bXPcolor New_BarXPcolor) {
    BarXPcolor_ = New_BarXPcolor;
    PropertyChanged("BarXPcolor");
    UserControl_Paint();
}

void ProgressBar::AutoRedraw(bool New_AutoRedraw) {
    AutoRedraw_ = New_AutoRedraw;
    PropertyChanged("AutoRedraw");
}

void ProgressBar::Max(std::int32_t New_Max) {
    const std::int32_t old = std::exchange(Max_, New_Max);
    PropertyChanged("Max");
    PaintOrRestore(Max_, old);
}

void ProgressBar::ShowText(bool New_ShowText) {
    ShowText_ = New_ShowText;
    lblVal.Visible(New_ShowText);
    PropertyChanged("ShowText");
}

AppearanceConstants ProgressBar::Appearance() const {
    return static_cast<AppearanceConstants>(PB.Appearance());
}

void ProgressBar::Appearance(AppearanceConstants New_Appearance) {
    PB.Appearance(host::ToInteger(static_cast<std::int32_t>(New_Appearance)));
    PropertyChanged("Appearance");
}

BorderStyleConstantsH ProgressBar::BorderStyle() const {
    return static_cast<BorderStyleConstantsH>(PB.BorderStyle());
}

void ProgressBar::BorderStyle(BorderStyleConstantsH New_BorderStyle) {
    PB.BorderStyle(host::ToInteger(static_cast<std::int32_t>(New_BorderStyle)));
    PropertyChanged("BorderStyle");
    UserControl_Paint();
}

void ProgressBar::Value(std::int32_t New_Value) {
    const std::int32_t old = std::exchange(Value_, std::min(New_Value, Max_));
    PaintOrRestore(Value_, old);
    PropertyChanged("Value");
}

// A number the paint cannot take (0 / 0, a bar beyond 16 bits) reaches the caller; the field
// and the picture are put back as they were.
void ProgressBar::PaintOrRestore(std::int32_t& field, std::int32_t old) {
    try {
        UserControl_Paint();
    } catch (const HostError&) {
        field = old;
        UserControl_Paint();
        throw;
    }
}

// Choosing an XP style takes PB's border away and remembers whether it had one; a picture style
// chosen after it gives that border back, and every picture style has one. The plain styles
// leave the border as they find it.
void ProgressBar::Style(StyleConstants New_Style) {
    Style_ = New_Style;
    const auto value = static_cast<std::int32_t>(New_Style);
    if (IsXP(New_Style)) {
        XPActive_ = true;
        XPBorderSaved_ = PB.BorderStyle() > 0;
        BorderStyle(BorderStyleConstantsH::vbNoBorder);
        UserControl_Resize();
    } else if (value >= 7 && value <= 9) {
        if (XPActive_) {
            XPActive_ = false;
            if (XPBorderSaved_) PB.BorderStyle(1);
        }
        BorderStyle(BorderStyleConstantsH::vbSingle);
    }
    PropertyChanged("Style");
    UserControl_Paint();
}

void ProgressBar::TextColor(OLE_COLOR New_TextColor) {
    TextColor_ = New_TextColor;
    PropertyChanged("TextColor");
    lblVal.ForeColor(New_TextColor);
    UserControl_Paint();
}

void ProgressBar::BarColor2(OLE_COLOR New_BarColor2) {
    BarColor2_ = foundation::OleColorToRGB(UserControl.Platform().gdi(), New_BarColor2);
    UserControl_Paint();
    PropertyChanged("BarColor2");
}

void ProgressBar::BarColor1(OLE_COLOR New_BarColor1) {
    BarColor1_ = foundation::OleColorToRGB(UserControl.Platform().gdi(), New_BarColor1);
    UserControl_Paint();
    PropertyChanged("BarColor1");
}

void ProgressBar::BackColorP(OLE_COLOR New_BackColorP) {
    BackColorP_ = New_BackColorP;
    UserControl_Paint();
    PropertyChanged("BackColorP");
}

void ProgressBar::PictureLandscape(Picture_t New_PictureLandscape) {
    PictureLandscape_ = New_PictureLandscape;
    CustomF = std::move(New_PictureLandscape);
    PropertyChanged("PictureLandscape");
}

void ProgressBar::PictureStretch(Picture_t New_PictureStretch) {
    PictureStretch_ = New_PictureStretch;
    CustomS = std::move(New_PictureStretch);
    PropertyChanged("PictureStretch");
}

void ProgressBar::PictureTile(Picture_t New_PictureTile) {
    PictureTile_ = New_PictureTile;
    CustomT = std::move(New_PictureTile);
    PropertyChanged("PictureTile");
}

void ProgressBar::ShowAboutBox() {
    OpenAboutBox();
}

// ---------------------------------------------------------------------------------------------
// Painting

void ProgressBar::Box(double x1, double y1, double x2, double y2, OLE_COLOR colour) {
    // Far beyond any bitmap; keeps a runaway fraction from leaving float's range.
    static constexpr double kFar = 1e9;
    const auto at = [](double v) { return static_cast<float>(std::clamp(v, -kFar, kFar)); };
    PB.Line(at(x1), at(y1), at(x2), at(y2), colour, forms::LineBox::BF);
}

// Setting a back colour clears the picture box, so it is set only when it changes: the block
// styles draw over the previous bar while the value grows.
void ProgressBar::UserControl_Paint() {
    if (!IsXP(Style_) && PB.BackColor() != BackColorP_) PB.BackColor(BackColorP_);
    PB.ForeColor(TextColor_);
    try {
        PaintStyle();
    } catch (const HostError& e) {
        if (e.Number() == host::kErrDivisionByZero) {
            PB.Cls();
        } else if (e.Number() == host::kErrInvalidPicture) {
            Style(StyleConstants::SmoothDoubleColor);
        } else {
            throw;
        }
    }
}

// One style, then the caption. A style that has nothing to show returns before the caption.
void ProgressBar::PaintStyle() {
    const double V = Value_;
    const double M = Max_;
    const double W = PB.Width();
    const double H = PB.Height();
    const double SW = PB.ScaleWidth();
    const double SH = PB.ScaleHeight();
    platform::Gdi& gdi = UserControl.Platform().gdi();
    const Components c1 = Split(foundation::OleColorToRGBTopByte(gdi, BarColor1_));
    const Components c2 = Split(foundation::OleColorToRGBTopByte(gdi, BarColor2_));
    const std::int16_t dr = host::SubInteger(c2.r, c1.r);
    const std::int16_t dg = host::SubInteger(c2.g, c1.g);
    const std::int16_t db = host::SubInteger(c2.b, c1.b);
    bool skipping = false;  // the gradient styles leave failing steps out, the caption too

    switch (Style_) {
        case StyleConstants::Standart: {
            const double f = host::Divide(V, M);
            if (f < LastFraction_) PB.Cls();
            LastFraction_ = f;
            std::int16_t i = 0;
            while (host::Int(W * f) > i) {
                Box(i, 0, i + 13, H, BarColor1_);
                Box(i + 13, 0, i + 14, H, BackColorP_);
                i = host::AddInteger(i, 15);
            }
            DrawBlocksTail(i, W, H, BackColorP_);
            break;
        }
        case StyleConstants::Smooth: {
            PB.Cls();
            BarEnd_ = IntOf(host::Divide(V, M) * W);
            Box(0, 0, BarEnd_, H, BarColor1_);
            break;
        }
        case StyleConstants::ValueDependant: {
            const double p = host::Divide(V, M) * 100;
            PB.Cls();
            skipping = true;
            Step([&] {
                PB.ForeColor(Rgb(IntOf(p * dr / 100 + c1.r), IntOf(p * dg / 100 + c1.g),
                                 IntOf(p * db / 100 + c1.b)));
            });
            Step([&] { Box(0, 0, p * W / 100, H, PB.ForeColor()); });
            break;
        }
        case StyleConstants::SmoothDoubleColor: {
            skipping = true;
            PB.Cls();
            if (Value_ == 0) return;
            std::int16_t n = 0;
            float sr = 0, sg = 0, sb = 0;
            Step([&] { n = IntOf(host::Divide(W * V, M)); });
            Step([&] { sr = host::ToSingle(host::Divide(dr, n)); });
            Step([&] { sg = host::ToSingle(host::Divide(dg, n)); });
            Step([&] { sb = host::ToSingle(host::Divide(db, n)); });
            for (std::int32_t i = 0; i <= n; ++i) {
                const auto fi = static_cast<float>(i);
                Step([&] {
                    Box(i, 0, i + 5, H,
                        Rgb(RoundOf(sr * fi + c1.r), RoundOf(sg * fi + c1.g),
                            RoundOf(sb * fi + c1.b)));
                });
            }
            break;
        }
        case StyleConstants::DoubleColor: {
            const double f = host::Divide(V, M);
            if (f < LastFraction_) PB.Cls();
            LastFraction_ = f;
            if (f == 0) return;
            skipping = true;
            double last = 0, n = 0;
            float sr = 0, sg = 0, sb = 0;
            Step([&] { last = host::Int(host::Divide(W * V, M)); });
            Step([&] { n = host::Divide(last, 15); });
            Step([&] { sr = host::ToSingle(host::Divide(dr, n)); });
            Step([&] { sg = host::ToSingle(host::Divide(dg, n)); });
            Step([&] { sb = host::ToSingle(host::Divide(db, n)); });
            std::int16_t i = 0;
            while (i <= last) {
                const float step = static_cast<float>(i) / 15;
                Step([&] {
                    Box(i, 0, i + 13, H,
                        Rgb(RoundOf(sr * step + c1.r), RoundOf(sg * step + c1.g),
                            RoundOf(sb * step + c1.b)));
                });
                // The counter is the host's Integer: past its range the loop ends there.
                if (i > 32767 - 15) break;
                i = static_cast<std::int16_t>(i + 15);
            }
            Step([&] { DrawBlocksTail(i, W, H, BackColorP_); });
            break;
        }
        case StyleConstants::XPStyleBig:
        case StyleConstants::XPStyleSmall:
            DrawXP(host::Divide(V, M));
            break;
        case StyleConstants::CustomPictureLandscape: {
            const double x = host::Divide(V, M) * SW;
            if (x == 0) {
                PB.Cls();
                return;
            }
            const auto fx = static_cast<float>(std::clamp(x, -1e9, 1e9));
            PB.PaintPicture(CustomF, 0, 0, fx, static_cast<float>(SH), 0, 0, fx);
            Box(x, 0, SW, SH, BackColorP_);
            break;
        }
        case StyleConstants::CustomPictureStrech: {
            const double x = host::Int(host::Divide(V, M) * SW);
            if (x == 0) {
                PB.Cls();
                return;
            }
            PB.PaintPicture(CustomS, 0, 0, static_cast<float>(std::clamp(x, -1e9, 1e9)),
                            static_cast<float>(SH));
            Box(x, 0, SW, SH, BackColorP_);
            break;
        }
        case StyleConstants::CustomPictureTile: {
            const double TW = CustomT ? CustomT->PixelWidth() : 0;
            const std::int16_t n = IntOf(host::Divide(V, M) * (SW / (TW + 1)));
            for (std::int32_t i = 1; i <= n; ++i) {
                PB.PaintPicture(CustomT, static_cast<float>(TW * (i - 1)), 0, {},
                                static_cast<float>(SH));
                Box(TW * i, 0, TW * i + 1, SH, BackColorP_);
            }
            Box(TW * (n + 1), 0, SW, SH, BackColorP_);
            break;
        }
        default:
            break;
    }

    if (skipping)
        Step([&] { DrawPercentText(); });
    else
        DrawPercentText();
    if (!IsXP(Style_)) XPFramePainted_ = false;
}

// What is left right of the blocks: up to the mirrored position while the blocks stay in the
// left half, otherwise a single column.
void ProgressBar::DrawBlocksTail(std::int16_t i, double W, double H, OLE_COLOR back) {
    if (W / 2 >= i)
        Box(i, 0, W - i, H, back);
    else
        Box(i, 0, i, H, back);
}

// Chunks are drawn into the trough without clearing: what an earlier paint left stays until the
// next resize.
void ProgressBar::DrawXP(double f) {
    const XPPictures& xp = BuiltinXPPictures();
    const bool big = Style_ == StyleConstants::XPStyleBig;
    const auto& trough = big ? xp.trough : xp.troughSmall;
    const auto& green = big ? xp.green : xp.greenSmall;
    const auto& chunk = BarXPcolor_ == bXPcolor::bGreen ? green : (big ? xp.blue : xp.blueSmall);
    const double SW = PB.ScaleWidth();
    const double SH = PB.ScaleHeight();
    const double FH = trough->PixelHeight();
    const double CW = chunk->PixelWidth();

    if (!XPFramePainted_) {
        PB.PaintPicture(trough, 0, 0, static_cast<float>(SW), static_cast<float>(SH));
        XPFramePainted_ = true;
    }
    std::int32_t i = 1;
    if (host::Int(f * SW) != 0 && Value_ != 0) {
        const double slots = host::Int((SW - 5) / (CW + 1)) - 1;
        const std::int16_t count = IntOf(f * slots);
        for (i = 0; i <= count; ++i) {
            PB.PaintPicture(chunk, static_cast<float>(CW * i + i + 3), 2, {},
                            static_cast<float>(FH - 4));
            // A long bar stays responsive while it fills.
            UserControl.Platform().loop().DoEvents();
        }
    }
    if (f == 1) Box((green->PixelWidth() + 1) * i + 3, 2, SW - 5, FH - 3, 0x00FFFFFF);
}

void ProgressBar::DrawPercentText() {
    lblVal.Caption(host::FormatDouble(host::Int(host::Divide(Value_, Max_) * 100)) + "%");
    PB.CurrentX(PB.Width() / 2 - lblVal.Width() / 2);
    PB.CurrentY(PB.Height() / 2 - lblVal.Height() / 2);
    PB.ForeColor(TextColor_);
    if (ShowText_) PB.Print(lblVal.Caption());
}

}  // namespace korvex::controls
