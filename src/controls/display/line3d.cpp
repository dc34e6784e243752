#include "controls/display/line3d.hpp"

#include <span>

#include "host/numeric.hpp"

namespace korvex::controls {

using host::ClassBuilder;
using host::ClassInfo;
using host::Variant;

namespace {

// Strip colours a new control is created with: button shadow over button highlight.
constexpr host::OLE_COLOR kCreatedBorderColor = 0x80000010;
constexpr host::OLE_COLOR kDefaultBorderForeColor = 0x80000014;
// "BorderColor" is read and written with the application-workspace colour as its default, not
// with the colour a new control has; so a new control always stores its colour, and a bag
// without the key gives the workspace colour.
constexpr host::OLE_COLOR kBagBorderColor = 0x8000000C;

}  // namespace

const ClassInfo& Line3D::Class() {
    static const ClassInfo info =
        ClassBuilder<Line3D>("Line3D", "Korvex_Tools.Line3D")
            .Method("ShowAboutBox", {}, [](Line3D& c, std::span<Variant>) { c.ShowAboutBox(); })
            .DispId(host::kDispIdAboutBox)
            .Property(KORVEX_PROPERTY(BorderColor))
            .Property(KORVEX_PROPERTY(BorderForeColor))
            .Property(KORVEX_PROPERTY(BorderWidth))
            .Method("Refresh", {}, [](Line3D& c, std::span<Variant>) { c.Refresh(); })
            .Property(KORVEX_PROPERTY(Orientation), "OrientationConstants")
            .Method("DrawLine", {}, [](Line3D& c, std::span<Variant>) { c.DrawLine(); })
            .Enum("OrientationConstants", {{"lHorizontal", 0}, {"lVertical", 1}, {"lAuto", 2}})
            .Build();
    return info;
}

Line3D::Line3D(host::HostContext& context)
    : SurfaceControl(context), Line1(UserControl), Line2(UserControl) {
    for (forms::Shape* strip : {&Line1, &Line2}) {
        strip->BackStyle(1);
        strip->BorderStyle(0);
    }
    Line1.BackColor(kCreatedBorderColor);
    Line2.BackColor(kDefaultBorderForeColor);
}

// ---------------------------------------------------------------------------------------------
// Lifecycle

void Line3D::UserControl_Initialize() {
    BorderWidth(1);
}

void Line3D::UserControl_InitProperties() {
    Orientation_ = OrientationConstants::lAuto;
    BorderWidth_ = 1;
}

// The lets below run DrawLine before any resize has measured the length; the container puts the
// saved size back after loading, and the resize that follows lays the line out.
void Line3D::UserControl_ReadProperties(host::PropertyBag& PropBag) {
    Line1.BackColor(static_cast<host::OLE_COLOR>(
        PropBag.ReadProperty("BorderColor", Variant(kBagBorderColor)).ToLong()));
    Line2.BackColor(static_cast<host::OLE_COLOR>(
        PropBag.ReadProperty("BorderForeColor", Variant(kDefaultBorderForeColor)).ToLong()));
    Orientation(static_cast<OrientationConstants>(
        PropBag.ReadProperty("Orientation", std::int16_t{2}).ToInteger()));
    BorderWidth(PropBag.ReadProperty("BorderWidth", std::int16_t{1}).ToInteger());
}

void Line3D::UserControl_WriteProperties(host::PropertyBag& PropBag) {
    PropBag.WriteProperty("BorderColor", Variant(BorderColor()), Variant(kBagBorderColor));
    PropBag.WriteProperty("BorderForeColor", Variant(BorderForeColor()), Variant(kDefaultBorderForeColor));
    PropBag.WriteProperty("Orientation", static_cast<std::int16_t>(Orientation_), std::int16_t{2});
    PropBag.WriteProperty("BorderWidth", BorderWidth_, std::int16_t{1});
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
    const std::int16_t thickness = host::MulInteger(BorderWidth_, static_cast<std::int16_t>(2 * perPixel));
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
