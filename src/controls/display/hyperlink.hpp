#pragma once
// Hyperlink: a link label. Its caption (Label1, centred vertically on the surface) shows the
// link colour, takes the hover colour while the pointer is over the control, opens Url with the
// shell when clicked and then shows the active and visited colours. It can fit itself to its
// caption, show one of two hand cursors and play the library's sounds.
//
// Colour of the caption, step by step (C is Label1's fore colour):
//
//   step                                   Clicked false            Clicked true
//   loaded / Refresh                       LinkColor (Clicked := false)
//   hover poll: pointer moved, inside      HoverColor, tooltip      -
//   hover poll: pointer moved, outside     LinkColor                -
//   click on the caption (run time)        Click event, shell opens Url, Clicked := true,
//                                          ActiveColor
//   button released on the surface         VisitedColor             VisitedColor
//   got focus / lost focus                 -                        ActiveColor / VisitedColor
//
// The hover poll is the 50 ms timer of every hover-aware control; it acts only at run time.

#include <cstdint>
#include <memory>
#include <string>

#include "forms/label.hpp"
#include "forms/surface_control.hpp"
#include "forms/timer.hpp"
#include "foundation/hover.hpp"
#include "foundation/sounds.hpp"
#include "host/declare.hpp"
#include "host/ole_types.hpp"
#include "host/property_bag.hpp"

namespace korvex::controls {

KORVEX_ENUM(MouSymbol, lOff = 0, lHand_IE = 1, lHand_NC = 2)
KORVEX_POINTER_ENUM(hMousePointerConst, "hMouseIcon")
KORVEX_EVENTS(HyperlinkEvents, Hover, Click)

// The hot spot of both hand cursors: the tip of the pointing finger, in cursor pixels. The
// cursor pictures carry no hot spot of their own, so it is kept here beside the code that
// loads them (resources/tools/make_cursors.py draws the fingertip there).
inline constexpr platform::POINT kHandHotSpot{7, 0};

// The two hand cursors as pictures (32 x 32, transparent around the hand).
std::shared_ptr<host::StdPicture> LoadHandCursor(MouSymbol symbol);

class Hyperlink final : public forms::SurfaceControl {
  public:
    explicit Hyperlink(host::HostContext& context);

    static const host::ClassInfo& Class();
    [[nodiscard]] const host::ClassInfo& TypeInfo() const override { return Class(); }

    // ---- lifecycle
    void UserControl_Initialize() override;
    void UserControl_InitProperties() override;
    void UserControl_ReadProperties(host::PropertyBag& PropBag) override;
    void UserControl_WriteProperties(host::PropertyBag& PropBag) override;
    void UserControl_Resize() override;
    // The caption's "&" letter follows the link as a click on it does.
    [[nodiscard]] std::u32string AccessKeys() const override { return Label1.ShownAccessKeys(); }
    void UserControl_AccessKeyPress(std::int16_t KeyAscii) override {
        (void)KeyAscii;
        OnCaptionClick();
    }

    // ---- members, in the interface's order
    void ShowAboutBox() { OpenAboutBox(); }
    // A copy of the assigned font: FontUnderline and FontSize change it, and they must not reach
    // the form's font or another control's.
    [[nodiscard]] std::shared_ptr<host::StdFont> Font() const { return Label1.Font(); }
    void Font(std::shared_ptr<host::StdFont> New_Font);
    [[nodiscard]] std::string Caption() const { return Label1.Caption(); }
    void Caption(std::string New_Caption);
    [[nodiscard]] bool FontUnderline() const { return Label1.Font()->Underline(); }
    void FontUnderline(bool New_FontUnderline);
    [[nodiscard]] float FontSize() const { return static_cast<float>(Label1.Font()->Size()); }
    void FontSize(float New_FontSize);
    // 0 transparent, 1 opaque.
    [[nodiscard]] std::int16_t Style() const { return UserControl.BackStyle(); }
    void Style(std::int16_t New_Style);
    [[nodiscard]] std::shared_ptr<host::StdPicture> MouseIcon() const { return Label1.MouseIcon(); }
    void MouseIcon(std::shared_ptr<host::StdPicture> New_MouseIcon);
    [[nodiscard]] hMousePointerConst MousePointer() const {
        return static_cast<hMousePointerConst>(Label1.MousePointer());
    }
    void MousePointer(hMousePointerConst New_MousePointer);
    [[nodiscard]] MouSymbol MouseSymbol() const { return MouseSymbol_; }
    void MouseSymbol(MouSymbol New_MouseSymbol);
    [[nodiscard]] std::string ToolTipTxt() const { return ToolTipTxt_; }
    void ToolTipTxt(std::string New_ToolTipTxt);
    // Back to the link colour and not clicked; at design time the colour changes and then the
    // assignment of Clicked raises error 387.
    void Refresh();
    [[nodiscard]] bool Clicked() const { return Clicked_; }
    // Run time only: error 387 at design time.
    void Clicked(bool New_Clicked);
    [[nodiscard]] std::string Url() const { return Url_; }
    void Url(std::string New_Url);
    [[nodiscard]] host::OLE_COLOR BackColorH() const { return UserControl.BackColor(); }
    void BackColorH(host::OLE_COLOR New_BackColorH);
    // The four state colours show at the next change of state, not at once.
    [[nodiscard]] host::OLE_COLOR LinkColor() const { return LinkColor_; }
    void LinkColor(host::OLE_COLOR New_LinkColor);
    [[nodiscard]] host::OLE_COLOR HoverColor() const { return HoverColor_; }
    void HoverColor(host::OLE_COLOR New_HoverColor);
    [[nodiscard]] host::OLE_COLOR ActiveColor() const { return ActiveColor_; }
    void ActiveColor(host::OLE_COLOR New_ActiveColor);
    [[nodiscard]] host::OLE_COLOR VisitedColor() const { return VisitedColor_; }
    void VisitedColor(host::OLE_COLOR New_VisitedColor);
    // 0 none, 1 single line.
    [[nodiscard]] std::int16_t BorderStyle() const { return UserControl.BorderStyle(); }
    void BorderStyle(std::int16_t New_BorderStyle);
    // The caption label's: 0 left, 1 right, 2 centre.
    [[nodiscard]] std::int16_t Alignment() const { return Label1.Alignment(); }
    void Alignment(std::int16_t New_Alignment);
    [[nodiscard]] bool AutoSizeH() const { return AutoSizeH_; }
    void AutoSizeH(bool New_AutoSizeH);
    // One of the library's WAVE resources 101 to 106 (error 326 for another), from memory,
    // asynchronously; EndPlaySound stops it.
    void PlaySound(std::int16_t ResourceId);
    void EndPlaySound();

    // The caption's colour now (what the colour steps above set).
    [[nodiscard]] host::OLE_COLOR CaptionColor() const { return Label1.ForeColor(); }

  private:
    struct Props;  // the property declarations

    void OnHoverTick();
    void OnCaptionClick();
    // Label1's caption changed: a self-sizing link fits the surface round it.
    void CaptionChanged();
    void CentreCaption();

    forms::Label Label1;
    // Carries the two hand cursors: the IE hand as its mouse icon, the NC hand as what its drag
    // icon would be (labels here have no drag icon, so that one is kept beside it).
    forms::Label Label2;
    std::shared_ptr<host::StdPicture> Label2DragIcon;
    forms::Timer timer;
    foundation::HoverPoll hover_;
    foundation::ResourceSoundPlayer sounds_;

    // State record.
    host::OLE_COLOR LinkColor_ = 0;
    host::OLE_COLOR HoverColor_ = 0;
    host::OLE_COLOR ActiveColor_ = 0;
    host::OLE_COLOR VisitedColor_ = 0;
    std::string Url_;
    bool Clicked_ = false;
    bool AutoSizeH_ = false;  // false until InitProperties or the bag sets it
    std::string ToolTipTxt_;
    MouSymbol MouseSymbol_ = MouSymbol::lOff;
};

}  // namespace korvex::controls
