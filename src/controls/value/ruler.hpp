#pragma once
// Ruler: a measuring scale along the control's long side in one of four units, calibrated by four
// texts that give the twips of one unit, with a movable marker line the host sets with
// MouseMoved and a right-click menu for choosing the unit (plus three entries the host defines).
//
// The scale is drawn into the surface's persistent drawing on resize and after Mode,
// Orientation, SmallZoom or Adjust; nothing repaints it otherwise. The marker is drawn inverted,
// so drawing it again at the same place takes it away.

#include <cstdint>
#include <string>

#include "forms/popup_menu.hpp"
#include "forms/surface_control.hpp"
#include "host/declare.hpp"
#include "host/ole_types.hpp"
#include "host/property_bag.hpp"

namespace korvex::controls {

KORVEX_ENUM(RulerModeConst, Millimeter = 0, Twips = 1, Inch = 2, Pixel = 3)
KORVEX_ENUM(asrOrientationConstants, Horizontal = 0, Vertical = 1, Auto = 2)
KORVEX_EVENTS(RulerEvents, Click, RightClick, MenuClick, KeyDown, KeyPress, KeyUp)

class Ruler final : public forms::SurfaceControl {
  public:
    explicit Ruler(host::HostContext& context);

    static const host::ClassInfo& Class();
    [[nodiscard]] const host::ClassInfo& TypeInfo() const override { return Class(); }

    // ---- lifecycle
    void UserControl_Initialize() override;
    void UserControl_InitProperties() override;
    void UserControl_ReadProperties(host::PropertyBag& PropBag) override;
    void UserControl_WriteProperties(host::PropertyBag& PropBag) override;
    void UserControl_Resize() override;

    // ---- properties
    [[nodiscard]] bool Mode2() const { return Mode2_; }
    void Mode2(bool New_Mode2);
    [[nodiscard]] bool Mode3() const { return Mode3_; }
    void Mode3(bool New_Mode3);
    [[nodiscard]] bool Mode4() const { return Mode4_; }
    void Mode4(bool New_Mode4);
    [[nodiscard]] bool Mode3Check() const { return Mode3Check_; }
    void Mode3Check(bool New_Mode3Check);
    [[nodiscard]] bool Mode4Check() const { return Mode4Check_; }
    void Mode4Check(bool New_Mode4Check);
    // Recalibrates from the mode's text and redraws. Error 380 outside the four units, 13 when
    // the text is not a number, 380 when it is not a positive length; nothing changes then.
    [[nodiscard]] RulerModeConst Mode() const { return Mode_; }
    void Mode(RulerModeConst New_Mode);
    // Twips per unit as text; they take effect at the next Mode or Adjust.
    [[nodiscard]] std::string AdjCm() const { return AdjCm_; }
    void AdjCm(std::string New_AdjCm);
    [[nodiscard]] std::string AdjTwip() const { return AdjTwip_; }
    void AdjTwip(std::string New_AdjTwip);
    [[nodiscard]] std::string AdjInch() const { return AdjInch_; }
    void AdjInch(std::string New_AdjInch);
    [[nodiscard]] std::string AdjPixel() const { return AdjPixel_; }
    void AdjPixel(std::string New_AdjPixel);
    // Error 380 outside Horizontal..Auto.
    [[nodiscard]] asrOrientationConstants Orientation() const { return Orientation_; }
    void Orientation(asrOrientationConstants New_Orientation);
    [[nodiscard]] host::OLE_COLOR BackColorR() const { return UserControl.BackColor(); }
    void BackColorR(host::OLE_COLOR New_BackColorR);
    [[nodiscard]] host::OLE_COLOR ForeColor() const { return UserControl.ForeColor(); }
    void ForeColor(host::OLE_COLOR New_ForeColor);
    // 1, 2, 4 or 8 units to a labelled division; any other value leaves the surface empty.
    [[nodiscard]] std::int16_t SmallZoom() const { return SmallZoom_; }
    void SmallZoom(std::int16_t New_SmallZoom);

    // ---- methods
    void ShowAboutBox();
    void Adjust();
    // Moves the marker line to x twips along the scale. Error 5 for a position that is not a
    // finite number.
    void MouseMoved(float x);

    // ---- what tests and the gallery look at
    [[nodiscard]] std::int32_t UnitLength() const { return UnitLength_; }
    [[nodiscard]] float MarkerPos() const { return MarkerPos_; }
    [[nodiscard]] const forms::PopupMenu& mnuMenu() const { return mnuMenu_; }

  private:
    struct Props;  // the property declarations

    void Redraw();
    void DrawScale();
    void ApplySeparatorRule();
    void UserControl_MouseUp(std::int16_t Button, float X, float Y);
    void mnuMode_Click(std::int16_t Index);
    [[nodiscard]] bool IsHorizontal() const {
        return Orientation_ == asrOrientationConstants::Horizontal;
    }

    forms::PopupMenu mnuMenu_;

    // State record.
    std::int32_t UnitLength_ = 0;
    float MarkerPos_ = 0;
    std::string AdjCm_, AdjTwip_, AdjInch_, AdjPixel_;
    RulerModeConst Mode_ = RulerModeConst::Millimeter;
    asrOrientationConstants Orientation_ = asrOrientationConstants::Auto;
    std::int16_t SmallZoom_ = 1;
    bool Mode2_ = false, Mode3_ = false, Mode4_ = false;
    bool Mode3Check_ = false, Mode4Check_ = false;
};

}  // namespace korvex::controls
