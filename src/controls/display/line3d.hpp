#pragma once
// Line3D: an engraved (or raised) separator. Two strips of equal thickness, Line1 and Line2, lie
// side by side along the control; the control forces its own thickness to twice the strip width
// and stretches both strips along its length. It has no events.
//
//   horizontal: Line1 on top, Line2 below       vertical: Line1 left, Line2 right
//
// With the colours it is created with (button shadow over button highlight) a horizontal line
// is the classic 2-pixel engraved separator; swapping the colours raises it.

#include <cstdint>

#include "forms/shape.hpp"
#include "forms/surface_control.hpp"
#include "host/declare.hpp"
#include "host/ole_types.hpp"
#include "host/property_bag.hpp"

namespace korvex::controls {

KORVEX_ENUM(OrientationConstants, lHorizontal = 0, lVertical = 1, lAuto = 2)

class Line3D final : public forms::SurfaceControl {
  public:
    explicit Line3D(host::HostContext& context);

    static const host::ClassInfo& Class();
    [[nodiscard]] const host::ClassInfo& TypeInfo() const override { return Class(); }
    // A separator: Tab passes it by.
    [[nodiscard]] bool CanGetFocus() const override { return false; }

    // ---- lifecycle
    void UserControl_Initialize() override;
    void UserControl_InitProperties() override;
    void UserControl_ReadProperties(host::PropertyBag& PropBag) override;
    void UserControl_WriteProperties(host::PropertyBag& PropBag) override;
    void UserControl_Resize() override;

    // ---- properties
    // The strips' colours live in the strips themselves.
    [[nodiscard]] host::OLE_COLOR BorderColor() const { return Line1.BackColor(); }
    void BorderColor(host::OLE_COLOR New_BorderColor);
    [[nodiscard]] host::OLE_COLOR BorderForeColor() const { return Line2.BackColor(); }
    void BorderForeColor(host::OLE_COLOR New_BorderForeColor);
    // Thickness of each strip in pixels; stored unchecked, the size computation decides.
    [[nodiscard]] std::int16_t BorderWidth() const { return BorderWidth_; }
    void BorderWidth(std::int16_t New_BorderWidth);
    // Clamped into lHorizontal..lAuto.
    [[nodiscard]] OrientationConstants Orientation() const { return Orientation_; }
    void Orientation(OrientationConstants New_Orientation);

    // ---- methods
    // Lays out the surface and both strips from orientation, width and the measured length.
    void DrawLine();
    void Refresh();
    void ShowAboutBox() {}

  private:
    struct Props;  // the property declarations

    forms::Shape Line1;
    forms::Shape Line2;

    // State record.
    OrientationConstants Orientation_ = OrientationConstants::lHorizontal;
    std::int16_t BorderWidth_ = 0;
    std::int16_t length_ = 0;  // twips along the line, as the last resize measured it
};

}  // namespace korvex::controls
