#include "controls/display/line3d.hpp"

#include <span>
#include <tuple>

#include "host/numeric.hpp"

namespace korvex::controls {

using host::ClassBuilder;
using host::ClassInfo;
using host::Variant;

// "BorderColor" is read and written with the application-workspace colour as its default, not
// with the button-shadow colour a new control has; so a new control always stores its colour,
// and a bag without the key gives the workspace colour.
struct Line3D::Props {
    using OLE_COLOR = host::OLE_COLOR;
    // The strip colours are restored straight into the strips, without a change report.
    static void RestoreLine1(Line3D& c, OLE_COLOR colour) { c.Line1.BackColor(colour); }
    static void RestoreLine2(Line3D& c, OLE_COLOR colour) { c.Line2.BackColor(colour); }
    static inline const host::Property<Line3D, OLE_COLOR> BorderColor{.name = "BorderColor",
                                                                      .get = &Line3D::BorderColor,
                                                                      .set = &Line3D::BorderColor,
                                                                      .read = 0x8000000CU,
                                                                      .init = 0x80000010U,
                                                                      .restore = RestoreLine1};
    static inline const host::Property<Line3D, OLE_COLOR> BorderForeColor{
        .name = "BorderForeColor",
        .get = &Line3D::BorderForeColor,
        .set = &Line3D::BorderForeColor,
        .read = 0x80000014U,
        .restore = RestoreLine2};
    static inline const host::Property<Line3D, std::int16_t> BorderWidth{
        .name = "BorderWidth",
        .get = &Line3D::BorderWidth,
        .set = &Line3D::BorderWidth,
        .read = std::int16_t{1}};
    static inline const host::Property<Line3D, OrientationConstants> Orientation{
        .name = "Orientation",
        .get = &Line3D::Orientation,
        .set = &Line3D::Orientation,
        .read = OrientationConstants::lAuto,
        .bag = host::BagKind::Integer};

    // Bag order.
    static inline const auto Keys =
        std::tie(BorderColor, BorderForeColor, Orientation, BorderWidth);
};

const ClassInfo& Line3D::Class() {
    static const ClassInfo info =
        ClassBuilder<Line3D>("Line3D", "Korvex_Tools.Line3D")
            .Method("ShowAboutBox", {}, [](Line3D& c, std::span<Variant>) { c.ShowAboutBox(); })
            .DispId(host::kDispIdAboutBox)
            .Property(Props::BorderColor)
            .Property(Props::BorderForeColor)
            .Property(Props::BorderWidth)
            .Method("Refresh", {}, [](Line3D& c, std::span<Variant>) { c.Refresh(); })
            .Property(Props::Orientation)
            .Method("DrawLine", {}, [](Line3D& c, std::span<Variant>) { c.DrawLine(); })
            .Enum<OrientationConstants>()
            .Build();
    return info;
}

Line3D::Line3D(host::HostContext& context)
    : SurfaceControl(context), Line1(UserControl), Line2(UserControl) {
    for (forms::Shape* strip : {&Line1, &Line2}) {
        strip->BackStyle(1);
        strip->BorderStyle(0);
    }
    Line1.BackColor(Props::BorderColor.Initial(*this));
    Line2.BackColor(Props::BorderForeColor.Initial(*this));
}

// ---------------------------------------------------------------------------------------------
// Lifecycle

void Line3D::UserControl_Initialize() {
    BorderWidth(1);
}

void Line3D::UserControl_InitProperties() {
    Orientation_ = Props::Orientation.Initial(*this);
    BorderWidth_ = Props::BorderWidth.Initial(*this);
}

// The lets below run DrawLine before any resize has measured the length; the container puts the
// saved size back after loading, and the resize that follows lays the line out.
void Line3D::UserControl_ReadProperties(host::PropertyBag& PropBag) {
    host::LoadAll(*this, PropBag, Props::Keys);
}

void Line3D::UserControl_WriteProperties(host::PropertyBag& PropBag) {
    host::SaveAll(*this, PropBag, Props::Keys);
}

// The first resize of a new control replaces lAuto for good: a control at least as high as it is
// wide becomes vertical. The length is measured before that choice is applied, so the DrawLine
// of the Orientation let already stretches the line over the placed length (a control placed at
// its final thickness gets no further resize that would measure it).
void Line3D::UserControl_Resize() {
    const auto along = [this](bool vertical) {
        return host::ToInteger(vertical ? UserControl.Height() : UserControl.Width());
    };
    if (Orientation_ == OrientationConstants::lAuto) {
        const bool vertical = UserControl.Width() <= UserControl.Height();
        length_ = along(vertical);
        Orientation(vertical ? OrientationConstants::lVertical : OrientationConstants::lHorizontal);
    }
    length_ = along(Orientation_ != OrientationConstants::lHorizontal);
    DrawLine();
}

// ---------------------------------------------------------------------------------------------
// Properties

void Line3D::BorderColor(host::OLE_COLOR New_BorderColor) {
    Line1.BackColor(New_BorderColor);
    PropertyChanged("BorderColor");
}

void Line3D::BorderForeColor(host::OLE_COLOR New_BorderForeColor) {
    Line2.BackColor(New_BorderForeColor);
    PropertyChanged("BorderForeColor");
}

void Line3D::BorderWidth(std::int16_t New_BorderWidth) {
    BorderWidth_ = New_BorderWidth;
    DrawLine();
    PropertyChanged("BorderWidth");
}

void Line3D::Orientation(OrientationConstants New_Orientation) {
    auto value = static_cast<std::int32_t>(New_Orientation);
    if (value > 2) value = 2;
    if (value < 0) value = 0;
    Orientation_ = static_cast<OrientationConstants>(value);
    PropertyChanged("Orientation");
    DrawLine();
}

// ---------------------------------------------------------------------------------------------
// Methods

// Sizes in twips, w = BorderWidth: the control is 2w pixels thick, each strip w pixels. Both
// products are taken in 16-bit arithmetic before anything moves, so an overflow (w >= 1093)
// leaves every size as it was. lAuto is drawn horizontally.
//
// Resizing the surface here makes the host resize the extender and call UserControl_Resize
// again; that nested pass measures the length and finds the thickness already right, so it ends
// there. The length is read after each surface change because the nested pass may update it.
void Line3D::DrawLine() {
    // Twips of one pixel across the line.
    const auto perPixel = static_cast<std::int16_t>(Orientation_ != OrientationConstants::lVertical
                                                        ? UserControl.Scale().TwipsPerPixelY()
                                                        : UserControl.Scale().TwipsPerPixelX());
    const std::int16_t thickness =
        host::MulInteger(BorderWidth_, static_cast<std::int16_t>(2 * perPixel));
    const std::int16_t strip = host::MulInteger(BorderWidth_, perPixel);
    if (Orientation_ != OrientationConstants::lVertical) {
        UserControl.Height(thickness);
        UserControl.Width(length_);
        Line1.Move(0, 0, UserControl.Width(), strip);
        Line2.Move(0, strip, UserControl.Width(), strip);
    } else {
        UserControl.Width(thickness);
        UserControl.Height(length_);
        Line1.Move(0, 0, strip, UserControl.Height());
        Line2.Move(strip, 0, strip, UserControl.Height());
    }
}

void Line3D::Refresh() {
    UserControl.Refresh();
}

}  // namespace korvex::controls
