#pragma once
// Button: the owner-drawn push button. One class, three behaviours (OptionMode): a push button,
// a switch that latches in on one click and out on the next, and a group button that latches
// and raises Group so the host can release the others of its group.
//
// The face PicBild1 is a picture box inside the control; the frame is drawn on the control's
// own surface around it, the gradient and the focus rectangle on the face. The image and the
// caption (lbl2, with its 3D copy lbl1 behind it) are windowless objects on the face.
//
// Three parts: the model (button_model.hpp: look properties and interaction state), the
// behaviour (button_behaviour.cpp: input, timers and Value turned into state and events) and
// the painter (button_painter.hpp), which draws from the model and changes none of it.
//
//   look        frame / image look         entered by
//   normal      Normal (Plain: Cool,       creation, pointer leaves
//               XPcool)
//   hover       Hover                      pointer enters (run mode), release of a push button,
//                                          Value = False on a latched button
//   down        Down                       press of a push button
//   latched     Down, hover poll off       press or Value = True of a switch or group button

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "controls/button/button_model.hpp"
#include "controls/button/button_painter.hpp"
#include "forms/image.hpp"
#include "forms/label.hpp"
#include "forms/picture_box.hpp"
#include "forms/surface_control.hpp"
#include "forms/timer.hpp"
#include "host/ole_types.hpp"
#include "host/property_bag.hpp"

namespace korvex::controls {

class Button final : public forms::SurfaceControl {
  public:
    explicit Button(host::HostContext& context);
    ~Button() override;

    static const host::ClassInfo& Class();
    [[nodiscard]] const host::ClassInfo& TypeInfo() const override { return Class(); }

    // ---- lifecycle
    void UserControl_Initialize() override;
    void UserControl_InitProperties() override;
    void UserControl_ReadProperties(host::PropertyBag& PropBag) override;
    void UserControl_WriteProperties(host::PropertyBag& PropBag) override;
    void UserControl_Resize() override { Layout(); }
    // The caption's "&" letter; Alt with it clicks the button.
    [[nodiscard]] std::u32string AccessKeys() const override { return lbl2.ShownAccessKeys(); }
    void UserControl_AccessKeyPress(std::int16_t KeyAscii) override;

    // ---- properties, in the order they persist
    [[nodiscard]] std::shared_ptr<host::StdPicture> PictureUp() const { return look_.pictures[0]; }
    void PictureUp(std::shared_ptr<host::StdPicture> New_PictureUp);
    [[nodiscard]] std::shared_ptr<host::StdPicture> PictureDown() const {
        return look_.pictures[2];
    }
    void PictureDown(std::shared_ptr<host::StdPicture> New_PictureDown);
    [[nodiscard]] std::shared_ptr<host::StdPicture> PictureOver() const {
        return look_.pictures[1];
    }
    void PictureOver(std::shared_ptr<host::StdPicture> New_PictureOver);
    [[nodiscard]] bool EnabledB() const { return look_.enabled; }
    void EnabledB(bool New_EnabledB);
    [[nodiscard]] EnumMode OptionMode() const { return OptionMode_; }
    void OptionMode(EnumMode New_OptionMode);
    [[nodiscard]] bool Value() const { return Value_; }
    void Value(bool New_Value);
    // False: 16-pixel images, True: 32-pixel images (for the images that have them). Changes
    // only while EnabledB is True.
    [[nodiscard]] bool IconSize() const { return look_.iconSize; }
    void IconSize(bool New_IconSize);
    [[nodiscard]] EnumStyle BorderStyle() const { return look_.style; }
    void BorderStyle(EnumStyle New_BorderStyle);
    [[nodiscard]] bool Gradient() const { return look_.gradient; }
    void Gradient(bool New_Gradient);
    [[nodiscard]] EnumButton ButtonShow() const { return look_.show; }
    void ButtonShow(EnumButton New_ButtonShow);
    [[nodiscard]] EnumTextAlignment TextAlignment() const { return look_.textAlignment; }
    void TextAlignment(EnumTextAlignment New_TextAlignment);
    [[nodiscard]] host::OLE_COLOR BackColorB() const { return UserControl.BackColor(); }
    void BackColorB(host::OLE_COLOR New_BackColorB);
    [[nodiscard]] host::OLE_COLOR ButtonColor() const { return look_.buttonColor; }
    void ButtonColor(host::OLE_COLOR New_ButtonColor);
    [[nodiscard]] std::string Caption() const { return look_.caption; }
    void Caption(std::string New_Caption);
    [[nodiscard]] Enum3D Font3D() const { return look_.font3D; }
    void Font3D(Enum3D New_Font3D);
    [[nodiscard]] host::OLE_COLOR FontColor() const { return look_.fontColor; }
    void FontColor(host::OLE_COLOR New_FontColor);
    [[nodiscard]] host::OLE_COLOR FontShadowColor() const { return look_.fontShadowColor; }
    void FontShadowColor(host::OLE_COLOR New_FontShadowColor);
    [[nodiscard]] bool ToolTip() const { return ToolTip_; }
    void ToolTip(bool New_ToolTip);
    [[nodiscard]] std::string ToolTipText() const { return ToolTipText_; }
    void ToolTipText(std::string New_ToolTipText);
    // Enables pressing with Enter and the focus rectangle.
    [[nodiscard]] bool FocusRect() const { return FocusRect_; }
    void FocusRect(bool New_FocusRect);
    [[nodiscard]] std::shared_ptr<host::StdFont> Font() const { return look_.font; }
    void Font(std::shared_ptr<host::StdFont> New_Font);
    [[nodiscard]] std::shared_ptr<host::StdPicture> MouseIcon() const {
        return UserControl.MouseIcon();
    }
    void MouseIcon(std::shared_ptr<host::StdPicture> New_MouseIcon);
    [[nodiscard]] MousePointerConst MousePointer() const {
        return static_cast<MousePointerConst>(UserControl.MousePointer());
    }
    void MousePointer(MousePointerConst New_MousePointer);

    // Not persisted; HDC, hwnd and HasDC are the surface's (SurfaceControl).
    [[nodiscard]] EnumSwitched Switched() const { return state_.switched; }

    // ---- methods, in the interface's order
    void ShowAboutBox() { OpenAboutBox(); }
    // With FocusRect: suppresses (True) or allows the focus rectangle, redrawing it on a change.
    void NotFrmFocus(const host::Variant& cFocus);
    // With FocusRect: starts (True) or cancels the short delay before the focus rectangle shows.
    void DrawRectB(bool RECT);
    void Refresh();
    // One of the WAVE resources 101 to 106 from memory; any other number and any failure is
    // silence.
    void PlaySound(std::int16_t ResourceId);
    void EndPlaySound();

    // ---- read by tools: the interaction state and the constituents
    [[nodiscard]] const ButtonState& State() const { return state_; }
    [[nodiscard]] const forms::PictureBox& Face() const { return PicBild1; }
    [[nodiscard]] const forms::Image& FaceImage() const { return imgBild; }
    [[nodiscard]] const forms::Label& CaptionLabel() const { return lbl2; }
    [[nodiscard]] const forms::Label& CaptionCopy() const { return lbl1; }

  private:
    struct Props;  // the property declarations

    // ---- behaviour (button_behaviour.cpp)
    void Press(std::int16_t MouseButton, std::int16_t Shift, float x, float y);
    void Release(std::int16_t MouseButton, std::int16_t Shift, float x, float y);
    void OnHoverTick();
    void WireInput();
    void ForwardInput(forms::MouseEvents& events);
    void ShowFocus();

    // ---- painting steps, each recording in the state what it drew
    void Layout();
    void ShowFrame(FrameLook look);
    void ShowImage(ImageLook look);
    void Record(std::optional<FrameLook> drawn) {
        if (drawn) state_.frame = *drawn;
    }

    void StartValues();
    void SetToolTips();
    void SetPicture(std::size_t index, std::shared_ptr<host::StdPicture> picture);
    [[nodiscard]] platform::Platform& Platform() const { return UserControl.Platform(); }

    // Constituents. lbl1 is created before lbl2 so that it lies behind it.
    forms::PictureBox PicBild1;
    forms::Image imgBild;
    forms::Label lbl1;
    forms::Label lbl2;
    forms::Image pfl;
    forms::Image pfle;
    forms::Timer timer;
    forms::Timer tmrRect;

    // Properties: those the painter reads, then the rest.
    ButtonLook look_;
    EnumMode OptionMode_{};
    bool Value_ = false;
    bool ToolTip_ = false;
    std::string ToolTipText_;
    bool FocusRect_ = false;

    ButtonState state_;
    ButtonPainter painter_;

    std::array<std::vector<std::uint8_t>, 6> mWave;
    // The platform may still be reading one of mWave.
    bool soundStarted_ = false;
    // Where the pointer last was on each element, for a double click (which comes without
    // coordinates) to press the button there.
    float lastX_ = 0, lastY_ = 0;
};

}  // namespace korvex::controls
