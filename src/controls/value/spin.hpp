#pragma once
// Spin: a text field with an up/down scroll bar beside it.
//
//   +- Text2 (border per BorderStyle) ------+
//   | Text1 (the value or hh:mm)  |VScroll1|
//   +-------------------------------------+
//
// Numeric mode edits a 16-bit Value between Min and Max and keeps Result1 to Result5, each its
// base per 100 units of Value. Time mode edits hours and minutes: the bar runs over the minutes
// from -1 to 60, so one step past either end is seen and carried into the hours.
//
// The bar is inverted (its Min is the spinner's Max), so its upper arrow raises the value.
// Setting the field's text or the bar's value runs the other's change handler, so one click
// raises the events of the whole chain; ChangeBusy and TimeEditBusy keep the text handlers from
// running into themselves.

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "forms/picture_box.hpp"
#include "forms/scroll_bar.hpp"
#include "forms/surface_control.hpp"
#include "forms/text_box.hpp"
#include "host/declare.hpp"
#include "host/font.hpp"
#include "host/ole_types.hpp"
#include "host/property_bag.hpp"

namespace korvex::controls {

KORVEX_ENUM(EnStyle, sOff = 0, sFlat = 1, sStandard = 2)
KORVEX_ENUM(sAlignmentConst, sLeft = 0, sRight = 1, sCenter = 2)
KORVEX_POINTER_ENUM(sMousePointerConst, "sMouseIcon")
KORVEX_EVENTS(SpinEvents, Changed, Click)

class Spin final : public forms::SurfaceControl {
  public:
    explicit Spin(host::HostContext& context);

    static const host::ClassInfo& Class();
    [[nodiscard]] const host::ClassInfo& TypeInfo() const override { return Class(); }

    // ---- lifecycle
    void UserControl_Initialize() override;
    void UserControl_InitProperties() override;
    void UserControl_ReadProperties(host::PropertyBag& PropBag) override;
    void UserControl_WriteProperties(host::PropertyBag& PropBag) override;
    void UserControl_Resize() override;

    // ---- properties
    [[nodiscard]] std::int16_t Min() const { return Min_; }
    void Min(std::int16_t New_Min);
    [[nodiscard]] std::int16_t Max() const { return Max_; }
    void Max(std::int16_t New_Max);
    // Clamped into Min..Max; shows its text and moves the bar.
    [[nodiscard]] std::int16_t Value() const { return Value_; }
    void Value(std::int16_t New_Value);
    // A result set while its base is 0 becomes its base.
    [[nodiscard]] float Result(int k) const { return Result_[static_cast<std::size_t>(k)]; }
    void Result(int k, float New_Result);
    [[nodiscard]] float Result1() const { return Result(0); }
    void Result1(float v) { Result(0, v); }
    [[nodiscard]] float Result2() const { return Result(1); }
    void Result2(float v) { Result(1, v); }
    [[nodiscard]] float Result3() const { return Result(2); }
    void Result3(float v) { Result(2, v); }
    [[nodiscard]] float Result4() const { return Result(3); }
    void Result4(float v) { Result(3, v); }
    [[nodiscard]] float Result5() const { return Result(4); }
    void Result5(float v) { Result(4, v); }
    [[nodiscard]] float ResultBase(int k) const { return ResultBase_[static_cast<std::size_t>(k)]; }
    [[nodiscard]] bool PointPosition() const { return PointPosition_; }
    void PointPosition(bool New_PointPosition);
    // Switching re-ranges the bar: -1..60 over the minutes, or Min..Max.
    [[nodiscard]] bool TimeState() const { return TimeState_; }
    void TimeState(bool New_TimeState);
    // Stored only; the field shows them at the next step of the bar.
    [[nodiscard]] float CurrTimeH() const { return CurrTimeH_; }
    void CurrTimeH(float New_CurrTimeH);
    [[nodiscard]] float CurrTimeM() const { return CurrTimeM_; }
    void CurrTimeM(float New_CurrTimeM);
    [[nodiscard]] std::shared_ptr<host::StdFont> Font() const { return Text1.Font(); }
    void Font(std::shared_ptr<host::StdFont> New_Font);
    [[nodiscard]] float FontSize() const;
    void FontSize(float New_FontSize);
    [[nodiscard]] std::shared_ptr<host::StdPicture> MouseIcon() const { return Text1.MouseIcon(); }
    void MouseIcon(std::shared_ptr<host::StdPicture> New_MouseIcon);
    [[nodiscard]] sMousePointerConst MousePointer() const {
        return static_cast<sMousePointerConst>(Text1.MousePointer());
    }
    void MousePointer(sMousePointerConst New_MousePointer);
    [[nodiscard]] EnStyle BorderStyle() const { return BorderStyle_; }
    void BorderStyle(EnStyle New_BorderStyle);
    [[nodiscard]] sAlignmentConst Alignment() const {
        return static_cast<sAlignmentConst>(Text1.Alignment());
    }
    void Alignment(sAlignmentConst New_Alignment);
    [[nodiscard]] bool EnabledS() const { return Text1.Enabled(); }
    void EnabledS(bool New_EnabledS);
    [[nodiscard]] host::OLE_COLOR BackColorS() const { return Text1.BackColor(); }
    void BackColorS(host::OLE_COLOR New_BackColorS);
    [[nodiscard]] host::OLE_COLOR ForeColor() const { return Text1.ForeColor(); }
    void ForeColor(host::OLE_COLOR New_ForeColor);
    [[nodiscard]] std::string ToolTipText() const { return Text1.ToolTipText(); }
    void ToolTipText(std::string New_ToolTipText);

    // ---- methods
    // A decimal amount written with a comma or a point, scaled by 10^Nachkomma and rounded to a
    // Long: "12,34" with 2 gives 1234. Error 5 for a negative Nachkomma, 6 beyond a Long.
    static std::int32_t SaveAsLong(std::string_view Betrag, std::int16_t Nachkomma = 2);
    void ShowAboutBox() {}

    // The constituent objects, for the tests and the gallery.
    [[nodiscard]] const forms::TextBox& Field() const { return Text1; }
    [[nodiscard]] forms::TextBox& Field() { return Text1; }
    [[nodiscard]] const forms::VScrollBar& Bar() const { return VScroll1; }

  private:
    struct Props;  // the property declarations

    // VScroll1_Change: the bar's value into the field, the results, then Changed and Click.
    void ScrollProcedure();
    void Text1_KeyPress(std::int16_t& KeyAscii);
    void Text1_Change();
    void TimeTextChanged();
    void NumberTextChanged();
    void Text1_LostFocus();
    void RaiseClick();

    forms::PictureBox Text2;
    forms::TextBox Text1;
    forms::VScrollBar VScroll1;

    // State record.
    std::int16_t Max_ = 100;
    std::int16_t Min_ = 0;
    std::int16_t Value_ = 0;
    bool PointPosition_ = false;
    bool TimeState_ = false;
    EnStyle BorderStyle_ = EnStyle::sFlat;
    float CurrTimeH_ = 0;
    float CurrTimeM_ = 0;
    std::array<float, 5> Result_{};
    std::array<float, 5> ResultBase_{};

    // Editing state.
    bool ChangeBusy = false;
    bool TimeEditBusy = false;
    std::string LastTimeText;
    std::int32_t LastSelStart = 0;
    std::int32_t LastSelLength = 0;
};

}  // namespace korvex::controls
