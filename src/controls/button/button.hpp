#pragma once
// Button: the owner-drawn push button. One class, three behaviours (OptionMode): a push button,
// a switch that latches in on one click and out on the next, and a group button that latches
// and raises Group so the host can release the others of its group.
//
// The face PicBild1 is a picture box inside the control; the frame is drawn on the control's
// own surface around it, the gradient and the focus rectangle on the face. The image and the
// caption (lbl2, with its 3D copy lbl1 behind it) are windowless objects on the face.
//
// Every change of look goes through five named operations, which the state machine calls in a
// fixed order (button_paint.cpp, button_images.cpp): the layout pass, frame state s, gradient
// state s, image state s and the caption colours; plus the focus rectangle.
//
//   look        frame / image state   entered by
//   normal      1 (0 for Cool, XPcool) creation, pointer leaves
//   hover       2                     pointer enters (run mode), release of a push button,
//                                     Value = False on a latched button
//   down        3                     press of a push button
//   latched     3, hover poll off     press or Value = True of a switch or group button

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "forms/image.hpp"
#include "forms/label.hpp"
#include "forms/picture_box.hpp"
#include "forms/surface_control.hpp"
#include "forms/timer.hpp"
#include "host/ole_types.hpp"
#include "host/property_bag.hpp"

namespace korvex::controls {

enum class EnumMode : std::int32_t { optButton = 0, optSwitch = 1, optGroup = 2 };
enum class EnumSwitched : std::int32_t { bFalse = 0, bLeft = 1, bRight = 2 };
enum class EnumStyle : std::int32_t {
    nOff = 0, Cool = 1, Flat = 2, nStandard = 3, extra = 4, XPStyle = 5, XPcool = 6, XPflat = 7
};
enum class Enum3D : std::int32_t { pTop = 0, pTopOver = 1, pDown = 2, pDownOver = 3, pStandard = 4 };
enum class EnumTextAlignment : std::int32_t { tOff = 0, Arrow = 1, tRight = 2, tBottom = 3 };
// 0 the designer's own pictures, 1 to 50 the built-in images, 51 no image.
enum class EnumButton : std::int32_t {
    Benutzerdefiniert = 0, btnCancel, btnConvert, btnColor, btnCopy, btnComputer, btnCut, btnCDRom,
    btnDVD, btnDelete, btnDesktop, btnEdit, btnFavorites, btnFill, btnHelp, btnHome, btnIE, btnInfo,
    btnMail, btnMusic, btnNew, btnOK, btnOpen, btnPaste, btnPrinter, btnProperties, btnRedo, btnSave,
    btnSave2, btnScan, btnSearch, btnSecurity, btnSpeaker, btnStop, btnTextEditor, btnTools, btnUndo,
    btnRefresh, btnUser, btnView, btnClock, btnX, CheckBox, LEDred, LEDgreen, LEDyellow, LEDblue,
    btnIcon, btnSmallIcon, btnList, btnReport, pOff
};
// The pointer values 0 to 15 and 99 (bMouseIcon); see host::MousePointerMembers.
enum class MousePointerConst : std::int32_t {};

// The member names of EnumButton, by value (0 to 51).
const std::vector<std::pair<std::string, std::int32_t>>& ButtonImageNames();

// Fills rect of dc with a vertical gradient from colorA to colorB, one brush per row. Direction
// 1 paints rows top + 1 to bottom from A downwards, direction 2 rows bottom to top + 1 from A
// upwards; row `top` keeps what the DC held, and any other direction paints nothing. Each
// component is A + k × (B − A) / n for the k-th row painted, n = rect.bottom, rounded and clamped.
void FillGradient(platform::Gdi& gdi, platform::HDC dc, const platform::RECT& rect, host::OLE_COLOR colorA,
                  host::OLE_COLOR colorB, std::int32_t direction);

class Button final : public forms::SurfaceControl {
  public:
    enum EventId : std::int32_t {
        kClick = 1, kMouseDown, kMouseMove, kMouseUp, kKeyDown, kKeyPress, kKeyUp, kGroup
    };

    // The colours derived from ButtonColor (0x00BBGGRR), recomputed when it changes.
    struct Colours {
        host::OLE_COLOR clrFace = 0, clrDown = 0, clrHover = 0, clrLight = 0, clrDark = 0, clrGradTop = 0,
                        clrGradBottom = 0;
    };

    explicit Button(host::HostContext& context);
    ~Button() override;

    static const host::ClassInfo& Class();
    [[nodiscard]] const host::ClassInfo& TypeInfo() const override { return Class(); }

    // ---- lifecycle
    void UserControl_Initialize() override;
    void UserControl_InitProperties() override;
    void UserControl_ReadProperties(host::PropertyBag& PropBag) override;
    void UserControl_WriteProperties(host::PropertyBag& PropBag) override;
    void UserControl_Resize() override { LayoutPass(); }

    // ---- properties, in the order they persist
    [[nodiscard]] std::shared_ptr<host::StdPicture> PictureUp() const { return Bild1[0]; }
    void PictureUp(std::shared_ptr<host::StdPicture> New_PictureUp);
    [[nodiscard]] std::shared_ptr<host::StdPicture> PictureDown() const { return Bild1[2]; }
    void PictureDown(std::shared_ptr<host::StdPicture> New_PictureDown);
    [[nodiscard]] std::shared_ptr<host::StdPicture> PictureOver() const { return Bild1[1]; }
    void PictureOver(std::shared_ptr<host::StdPicture> New_PictureOver);
    [[nodiscard]] bool EnabledB() const { return EnabledB_; }
    void EnabledB(bool New_EnabledB);
    [[nodiscard]] EnumMode OptionMode() const { return OptionMode_; }
    void OptionMode(EnumMode New_OptionMode);
    [[nodiscard]] bool Value() const { return Value_; }
    void Value(bool New_Value);
    // False: 16-pixel images, True: 32-pixel images (for the images that have them). Changes
    // only while EnabledB is True.
    [[nodiscard]] bool IconSize() const { return IconSize_; }
    void IconSize(bool New_IconSize);
    [[nodiscard]] EnumStyle BorderStyle() const { return BorderStyle_; }
    void BorderStyle(EnumStyle New_BorderStyle);
    [[nodiscard]] bool Gradient() const { return Gradient_; }
    void Gradient(bool New_Gradient);
    [[nodiscard]] EnumButton ButtonShow() const { return ButtonShow_; }
    void ButtonShow(EnumButton New_ButtonShow);
    [[nodiscard]] EnumTextAlignment TextAlignment() const { return TextAlignment_; }
    void TextAlignment(EnumTextAlignment New_TextAlignment);
    [[nodiscard]] host::OLE_COLOR BackColorB() const { return UserControl.BackColor(); }
    void BackColorB(host::OLE_COLOR New_BackColorB);
    [[nodiscard]] host::OLE_COLOR ButtonColor() const { return ButtonColor_; }
    void ButtonColor(host::OLE_COLOR New_ButtonColor);
    [[nodiscard]] std::string Caption() const { return Caption_; }
    void Caption(std::string New_Caption);
    [[nodiscard]] Enum3D Font3D() const { return Font3D_; }
    void Font3D(Enum3D New_Font3D);
    [[nodiscard]] host::OLE_COLOR FontColor() const { return FontColor_; }
    void FontColor(host::OLE_COLOR New_FontColor);
    [[nodiscard]] host::OLE_COLOR FontShadowColor() const { return FontShadowColor_; }
    void FontShadowColor(host::OLE_COLOR New_FontShadowColor);
    [[nodiscard]] bool ToolTip() const { return ToolTip_; }
    void ToolTip(bool New_ToolTip);
    [[nodiscard]] std::string ToolTipText() const { return ToolTipText_; }
    void ToolTipText(std::string New_ToolTipText);
    // Enables pressing with Enter and the focus rectangle.
    [[nodiscard]] bool FocusRect() const { return FocusRect_; }
    void FocusRect(bool New_FocusRect);
    [[nodiscard]] std::shared_ptr<host::StdFont> Font() const { return Font_; }
    void Font(std::shared_ptr<host::StdFont> New_Font);
    [[nodiscard]] std::shared_ptr<host::StdPicture> MouseIcon() const { return UserControl.MouseIcon(); }
    void MouseIcon(std::shared_ptr<host::StdPicture> New_MouseIcon);
    [[nodiscard]] MousePointerConst MousePointer() const {
        return static_cast<MousePointerConst>(UserControl.MousePointer());
    }
    void MousePointer(MousePointerConst New_MousePointer);

    // Not persisted; HDC, hwnd and HasDC are the surface's (SurfaceControl).
    [[nodiscard]] EnumSwitched Switched() const { return Switched_; }

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

    // ---- read by tests and tools
    [[nodiscard]] const Colours& DerivedColours() const { return colours_; }
    [[nodiscard]] std::int16_t FrameStateShown() const { return mFrameState; }
    [[nodiscard]] std::int16_t ImageStateShown() const { return mImageState; }
    [[nodiscard]] const forms::PictureBox& Face() const { return PicBild1; }
    [[nodiscard]] const forms::Image& FaceImage() const { return imgBild; }
    [[nodiscard]] const forms::Label& CaptionLabel() const { return lbl2; }
    [[nodiscard]] const forms::Label& CaptionCopy() const { return lbl1; }

  private:
    // The face of an XPflat button, whatever ButtonColor says.
    static constexpr host::OLE_COLOR kXPflatFace = 0x00F1FCFE;
    // ---- state machine (button.cpp)
    void Press(std::int16_t MouseButton, std::int16_t Shift, float x, float y);
    void Release(std::int16_t MouseButton, std::int16_t Shift, float x, float y);
    void OnHoverTick();
    void ForwardInput(forms::MouseEvents& events);
    void SetToolTips();
    void SetPicture(int index, std::shared_ptr<host::StdPicture> picture);
    [[nodiscard]] bool IsXP() const {
        return BorderStyle_ == EnumStyle::XPStyle || BorderStyle_ == EnumStyle::XPcool;
    }
    [[nodiscard]] platform::Platform& Platform() const { return UserControl.Platform(); }

    // ---- painting (button_paint.cpp)
    void ComputeColours();
    void LayoutPass();
    void PlaceFace();
    void EnforceMinimumSize();
    void FrameState(std::int16_t s);
    void GradientState(std::int16_t s);
    void CaptionColours();
    void DrawFocusRect();
    void SetFaceBack(host::OLE_COLOR colour);
    // The face colour of the normal look without a gradient.
    [[nodiscard]] host::OLE_COLOR PlainFace() const {
        return BorderStyle_ == EnumStyle::XPflat ? kXPflatFace : colours_.clrFace;
    }

    // ---- images (button_images.cpp)
    void ImageState(std::int16_t s);
    void ShowEmbossed();
    void ShowBigPicture(std::int16_t s);
    // A built-in image, loaded once per control and size.
    std::shared_ptr<host::StdPicture> Builtin(std::int32_t group, std::int32_t size);

    // Constituents. lbl1 is created before lbl2 so that it lies behind it.
    forms::PictureBox PicBild1;
    forms::Image imgBild;
    forms::Label lbl1;
    forms::Label lbl2;
    forms::Image pfl;
    forms::Image pfle;
    std::array<std::shared_ptr<host::StdPicture>, 5> Bild1;
    forms::Timer timer;
    forms::Timer tmrRect;

    // Properties.
    bool EnabledB_ = true;
    EnumMode OptionMode_ = EnumMode::optButton;
    bool Value_ = false;
    bool IconSize_ = false;
    EnumStyle BorderStyle_ = EnumStyle::Flat;
    bool Gradient_ = true;
    EnumButton ButtonShow_ = EnumButton::btnOK;
    EnumTextAlignment TextAlignment_ = EnumTextAlignment::tRight;
    host::OLE_COLOR ButtonColor_ = 0x8000000F;
    std::string Caption_ = "Caption";
    Enum3D Font3D_ = Enum3D::pTop;
    host::OLE_COLOR FontColor_ = 0;
    host::OLE_COLOR FontShadowColor_ = 0x00FFFFFF;
    bool ToolTip_ = true;
    std::string ToolTipText_ = "Quick-Info";
    bool FocusRect_ = false;
    std::shared_ptr<host::StdFont> Font_;
    EnumSwitched Switched_ = EnumSwitched::bFalse;

    // Interaction state.
    bool mHover = false;
    bool mDown = false;
    bool mLatched = false;
    bool mPressed = false;
    bool mHotEntry = false;
    bool mHasFocus = false;
    bool mGroupClicked = false;
    bool mRecheck = false;
    bool mNoFrmFocus = false;
    std::int16_t mFrameState = 1;
    std::int16_t mImageState = 1;
    bool mBigPicture = false;
    platform::POINT mLastCursor{0, 0};
    std::array<std::vector<std::uint8_t>, 6> mWave;
    // The platform may still be reading one of mWave.
    bool soundStarted_ = false;

    Colours colours_;
    // The face shows no focus rectangle since it was last repainted for that.
    bool faceClean_ = true;
    // Where the pointer last was on each element, for a double click (which comes without
    // coordinates) to press the button there.
    float lastX_ = 0, lastY_ = 0;
    struct CachedImage {
        std::int32_t group, size;
        std::shared_ptr<host::StdPicture> picture;
    };
    std::vector<CachedImage> images_;
};

}  // namespace korvex::controls
