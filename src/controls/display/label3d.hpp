#pragma once
// Label3D: a caption with a shadow. Two labels cover the whole control with the same caption and
// font: lbShadow behind, shifted by xDist in the direction TextMode names and coloured
// separately, and lbFont in front with a transparent background. With FocusRect on, the control
// behaves like a small push button: the shadow takes FocusColor while focused and Enter clicks.
//
// Input, as raised:
//   click on either label        Click, then (FocusRect) the control asks for the focus
//   double click / mouse         DblClick, MouseDown, MouseMove, MouseUp with the label's args
//   key down                     KeyDown, only with FocusRect and never for Enter
//   key press                    KeyPress, always
//   key up                       with FocusRect: Enter raises Click, other keys KeyUp
//   got / lost focus             with FocusRect: shadow in FocusColor / back to ShadowColor

#include <cstdint>
#include <memory>
#include <string>

#include "forms/label.hpp"
#include "forms/surface_control.hpp"
#include "host/declare.hpp"
#include "host/font.hpp"
#include "host/ole_types.hpp"
#include "host/property_bag.hpp"

namespace korvex::controls {

KORVEX_ENUM(EnumBack, BgColor = 0, cTRANSPARENT = 1)
KORVEX_EVENTS(Label3DEvents, Click, DblClick, MouseDown, MouseMove, MouseUp, KeyDown, KeyPress,
              KeyUp)

class Label3D final : public forms::SurfaceControl {
  public:
    explicit Label3D(host::HostContext& context);

    static const host::ClassInfo& Class();
    [[nodiscard]] const host::ClassInfo& TypeInfo() const override { return Class(); }

    // ---- lifecycle
    void UserControl_Initialize() override;
    void UserControl_InitProperties() override;
    void UserControl_ReadProperties(host::PropertyBag& PropBag) override;
    void UserControl_WriteProperties(host::PropertyBag& PropBag) override;
    void UserControl_Resize() override;
    // A label takes the focus only while FocusRect makes it a small push button. Its caption's
    // "&" letter then clicks it, as Enter does; otherwise the letter moves the focus on to the
    // next control, as a label's does.
    [[nodiscard]] bool CanGetFocus() const override { return FocusRect_; }
    [[nodiscard]] std::u32string AccessKeys() const override { return lbFont.ShownAccessKeys(); }
    [[nodiscard]] bool ForwardFocus() const override { return !FocusRect_; }
    void UserControl_AccessKeyPress(std::int16_t KeyAscii) override;

    // ---- properties
    [[nodiscard]] bool FocusRect() const { return FocusRect_; }
    void FocusRect(bool New_FocusRect);
    [[nodiscard]] bool EnabledL() const { return lbFont.Enabled(); }
    void EnabledL(bool New_EnabledL);
    [[nodiscard]] bool Shadow() const { return Shadow_; }
    void Shadow(bool New_Shadow);
    [[nodiscard]] std::shared_ptr<host::StdFont> Font() const { return lbFont.Font(); }
    void Font(std::shared_ptr<host::StdFont> New_Font);
    [[nodiscard]] host::OLE_COLOR FocusColor() const { return FocusColor_; }
    void FocusColor(host::OLE_COLOR New_FocusColor);
    [[nodiscard]] host::OLE_COLOR TextColor() const { return lbFont.ForeColor(); }
    void TextColor(host::OLE_COLOR New_TextColor);
    [[nodiscard]] host::OLE_COLOR BackColorL() const { return BackColorL_; }
    void BackColorL(host::OLE_COLOR New_BackColorL);
    // The shadow label's colour: FocusColor while it shows the focus.
    [[nodiscard]] host::OLE_COLOR ShadowColor() const { return lbShadow.ForeColor(); }
    void ShadowColor(host::OLE_COLOR New_ShadowColor);
    // 0..8 name the shadow's direction; other values are kept and leave the shadow in place.
    [[nodiscard]] std::int16_t TextMode() const { return TextMode_; }
    void TextMode(std::int16_t New_TextMode);
    [[nodiscard]] bool FontBold() const { return lbFont.Font()->Bold(); }
    void FontBold(bool New_FontBold);
    [[nodiscard]] bool FontItalic() const { return lbFont.Font()->Italic(); }
    void FontItalic(bool New_FontItalic);
    [[nodiscard]] std::string FontName() const { return lbFont.Font()->Name(); }
    void FontName(std::string New_FontName);
    [[nodiscard]] float FontSize() const { return static_cast<float>(lbFont.Font()->Size()); }
    void FontSize(float New_FontSize);
    [[nodiscard]] bool FontStrikethru() const { return lbFont.Font()->Strikethrough(); }
    void FontStrikethru(bool New_FontStrikethru);
    [[nodiscard]] std::string ToolTipText() const { return ToolTipText_; }
    void ToolTipText(std::string New_ToolTipText);
    [[nodiscard]] std::string Caption() const { return lbFont.Caption(); }
    void Caption(std::string New_Caption);
    [[nodiscard]] EnumBack BackStyle() const { return BackStyle_; }
    void BackStyle(EnumBack New_BackStyle);
    // Shadow distance in twips.
    [[nodiscard]] std::int16_t xDist() const { return xDist_; }
    void xDist(std::int16_t New_xDist);

    // ---- methods
    void Refresh();
    void ShowAboutBox() { OpenAboutBox(); }

  private:
    struct Props;  // the property declarations

    void SetNewState();
    void LayOut();
    void Forward(forms::MouseEvents& events);
    // The font both labels share after a Font set; before it each has its own.
    template <class Apply>
    void OnBothFonts(Apply apply);

    // Created first, so it lies behind lbFont.
    forms::Label lbShadow;
    forms::Label lbFont;

    // State record; the constructor gives it the new control's values.
    std::int16_t xDist_ = 0;
    std::int16_t TextMode_ = 0;
    EnumBack BackStyle_ = EnumBack::BgColor;
    std::string ToolTipText_;
    host::OLE_COLOR BackColorL_ = 0;
    host::OLE_COLOR TextColor_ = 0;
    host::OLE_COLOR ShadowColor_ = 0;
    host::OLE_COLOR FocusColor_ = 0;
    bool Shadow_ = false;
    bool FocusRect_ = false;
};

}  // namespace korvex::controls
