#pragma once
// ProgressBar: how far Value has come towards Max, drawn on the picture box PB in one of ten
// styles, optionally with the percentage printed in the middle. Everything is drawn in PB's
// pixels; the label lblVal only holds the caption and measures it for centring.
//
// The XP styles draw chunk pictures into a trough picture and fit the control's height to the
// trough; choosing one takes PB's border away and remembers whether there was one, so that a
// picture style chosen later can give it back.

#include <cstdint>
#include <memory>

#include "forms/label.hpp"
#include "forms/picture_box.hpp"
#include "forms/surface_control.hpp"
#include "host/declare.hpp"
#include "host/font.hpp"
#include "host/ole_types.hpp"
#include "host/property_bag.hpp"

namespace korvex::controls {

KORVEX_ENUM(StyleConstants, Standart = 0, Smooth = 1, ValueDependant = 2, SmoothDoubleColor = 3,
            DoubleColor = 4, XPStyleBig = 5, XPStyleSmall = 6, CustomPictureLandscape = 7,
            CustomPictureStrech = 8, CustomPictureTile = 9)
KORVEX_ENUM(bXPcolor, bGreen = 0, bBlue = 1)
KORVEX_ENUM(AppearanceConstants, vbFlat = 0, vb3D = 1)
KORVEX_ENUM(BorderStyleConstantsH, vbNoBorder = 0, vbSingle = 1)

KORVEX_EVENTS(ProgressBarEvents, KeyDown, KeyPress, KeyUp, MouseMove, MouseUp, MouseDown)

// The built-in pictures of the XP styles: the two troughs (229 x 19 and 208 x 13) and the four
// chunks, 6 pixels wide, one colour per row.
struct XPPictures {
    std::shared_ptr<host::StdPicture> trough, troughSmall;
    std::shared_ptr<host::StdPicture> green, greenSmall, blue, blueSmall;
};
const XPPictures& BuiltinXPPictures();

class ProgressBar final : public forms::SurfaceControl {
  public:
    using Picture_t = std::shared_ptr<host::StdPicture>;

    explicit ProgressBar(host::HostContext& context);

    static const host::ClassInfo& Class();
    [[nodiscard]] const host::ClassInfo& TypeInfo() const override { return Class(); }

    // ---- lifecycle
    void UserControl_Initialize() override;
    void UserControl_InitProperties() override;
    void UserControl_ReadProperties(host::PropertyBag& PropBag) override;
    void UserControl_WriteProperties(host::PropertyBag& PropBag) override;
    void UserControl_Resize() override;
    // The whole bar in the current style, ending with the percentage caption.
    void UserControl_Paint() override;

    // ---- properties
    [[nodiscard]] bXPcolor BarXPcolor() const { return BarXPcolor_; }
    void BarXPcolor(bXPcolor New_BarXPcolor);
    // The surface always keeps its drawing; the flag is kept and persisted for the host.
    [[nodiscard]] bool AutoRedraw() const { return AutoRedraw_; }
    void AutoRedraw(bool New_AutoRedraw);
    [[nodiscard]] std::int32_t Max() const { return Max_; }
    void Max(std::int32_t New_Max);
    [[nodiscard]] bool ShowText() const { return ShowText_; }
    void ShowText(bool New_ShowText);
    [[nodiscard]] AppearanceConstants Appearance() const;
    void Appearance(AppearanceConstants New_Appearance);
    [[nodiscard]] BorderStyleConstantsH BorderStyle() const;
    void BorderStyle(BorderStyleConstantsH New_BorderStyle);
    [[nodiscard]] std::int32_t Value() const { return Value_; }
    void Value(std::int32_t New_Value);
    [[nodiscard]] StyleConstants Style() const { return Style_; }
    void Style(StyleConstants New_Style);
    [[nodiscard]] host::OLE_COLOR TextColor() const { return TextColor_; }
    void TextColor(host::OLE_COLOR New_TextColor);
    // Both bar colours are kept converted: a system colour reads back as the RGB it had.
    [[nodiscard]] host::OLE_COLOR BarColor2() const { return BarColor2_; }
    void BarColor2(host::OLE_COLOR New_BarColor2);
    [[nodiscard]] host::OLE_COLOR BarColor1() const { return BarColor1_; }
    void BarColor1(host::OLE_COLOR New_BarColor1);
    [[nodiscard]] host::OLE_COLOR BackColorP() const { return BackColorP_; }
    void BackColorP(host::OLE_COLOR New_BackColorP);
    [[nodiscard]] Picture_t PictureLandscape() const { return PictureLandscape_; }
    void PictureLandscape(Picture_t New_PictureLandscape);
    [[nodiscard]] Picture_t PictureStretch() const { return PictureStretch_; }
    void PictureStretch(Picture_t New_PictureStretch);
    [[nodiscard]] Picture_t PictureTile() const { return PictureTile_; }
    void PictureTile(Picture_t New_PictureTile);

    void ShowAboutBox();

    // ---- what the paint leaves behind, for tests and the property page
    [[nodiscard]] const forms::PictureBox& Bar() const { return PB; }
    [[nodiscard]] const std::string& CaptionText() const { return lblVal.Caption(); }
    [[nodiscard]] double LastFraction() const { return LastFraction_; }
    [[nodiscard]] std::int16_t BarEnd() const { return BarEnd_; }
    [[nodiscard]] bool XPActive() const { return XPActive_; }
    [[nodiscard]] bool XPBorderSaved() const { return XPBorderSaved_; }
    [[nodiscard]] bool XPFramePainted() const { return XPFramePainted_; }

  private:
    struct Props;

    void PaintOrRestore(std::int32_t& field, std::int32_t old);
    void PaintStyle();
    void DrawBlocksTail(std::int16_t i, double W, double H, host::OLE_COLOR back);
    void DrawXP(double f);
    void DrawPercentText();
    // A Box of the paint: both corners included, no outline.
    void Box(double x1, double y1, double x2, double y2, host::OLE_COLOR colour);

    forms::PictureBox PB;
    forms::Label lblVal;
    Picture_t CustomF, CustomS, CustomT;

    // State record.
    Picture_t PictureLandscape_;
    Picture_t PictureStretch_;
    Picture_t PictureTile_;
    StyleConstants Style_ = StyleConstants::Smooth;
    host::OLE_COLOR TextColor_ = 0;
    host::OLE_COLOR BarColor2_ = 0x0000FF00;
    host::OLE_COLOR BarColor1_ = 0;
    host::OLE_COLOR BackColorP_ = 0x8000000F;
    std::int32_t Value_ = 100;
    std::int32_t Max_ = 500000;
    bool ShowText_ = false;
    bXPcolor BarXPcolor_ = bXPcolor::bGreen;
    bool AutoRedraw_ = false;

    // Drawing state, not persisted.
    double LastFraction_ = 0;
    std::int16_t BarEnd_ = 0;
    bool XPActive_ = false;
    bool XPBorderSaved_ = false;
    bool XPFramePainted_ = false;
};

}  // namespace korvex::controls
