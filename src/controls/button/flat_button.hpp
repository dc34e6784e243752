#pragma once
// FlatButton: the library's own small push button, used by its message box and not offered to
// hosts. A flat face with a thin rounded ring, raised while the pointer is over it and sunken
// while pressed, with a caption written straight onto the surface (its access letter
// underlined). A 1 ms poll (10 ms on the platform's clock) tracks the pointer and the keys, so
// Enter presses the Default button, Escape the Cancel button and Alt with the access letter
// this one, wherever the focus is.
//
// Input, step by step (fPressedLook decides whether the release clicks):
//
//   step                         state                                      raised
//   mouse down (any button)      fMouseDown, !fEnteredDown, fPressedLook     MouseDown
//   move, button held, inside    fPressedLook (and fEnteredDown w/o press)  MouseMove
//   move, button held, outside   !fEnteredDown                              MouseMove
//   poll: pointer left           !fHover, !fPressedLook                     -
//   mouse up                     !fMouseDown, !fEnteredDown, !fPressedLook  MouseUp, Click if
//                                                                           the look was on
//   Enter down / up (focused)    as mouse down / up with button 1 at 0, 0   then KeyDown / KeyUp
//   poll: key fires              fKeyLatch; down at 1, 1, 0.1 s, up         MouseDown, MouseUp,
//                                                                           Click
//   poll: Alt, access key,       !fKeyLatch                                 -
//         Enter, Escape all up
//
// Firing keys: Escape with Cancel (once per press, through fKeyLatch), Enter with Default (on
// every tick it is held), Alt plus the access letter with UseMnemonic.

#include <cstdint>
#include <memory>
#include <string>

#include "forms/surface_control.hpp"
#include "forms/timer.hpp"
#include "host/declare.hpp"
#include "host/font.hpp"
#include "host/ole_types.hpp"
#include "host/property_bag.hpp"

namespace korvex::controls {

// The bevel painter of the flat button: mode 1 a single ring with open (rounded) corners, mode 2
// a two-tone bevel, any other mode nothing. Colours are OLE colours; rect is half-open.
void DrawFlatBevel(platform::Gdi& gdi, platform::HDC dc, const platform::RECT& rect,
                   std::int32_t mode, host::OLE_COLOR color1, host::OLE_COLOR color2,
                   host::OLE_COLOR color3, host::OLE_COLOR color4, std::int32_t penStyle,
                   std::int32_t width);

KORVEX_EVENTS(FlatButtonEvents, Click, MouseDown, MouseUp, MouseMove, KeyDown, KeyPress, KeyUp)

class FlatButton final : public forms::SurfaceControl {
  public:
    // The looks the face can show; Paint derives one from the state.
    enum class Look { Normal, Hover, Pressed };

    explicit FlatButton(host::HostContext& context);

    static const host::ClassInfo& Class();
    [[nodiscard]] const host::ClassInfo& TypeInfo() const override { return Class(); }

    // ---- lifecycle
    void UserControl_InitProperties() override;
    void UserControl_ReadProperties(host::PropertyBag& PropBag) override;
    void UserControl_WriteProperties(host::PropertyBag& PropBag) override;
    void UserControl_Resize() override;
    void UserControl_Paint() override { Paint(); }

    // ---- properties
    [[nodiscard]] std::string Caption() const { return Caption_; }
    void Caption(std::string New_Caption);
    [[nodiscard]] std::shared_ptr<host::StdFont> Font() const { return UserControl.Font(); }
    void Font(std::shared_ptr<host::StdFont> New_Font);
    [[nodiscard]] host::OLE_COLOR TextColor() const { return TextColor_; }
    void TextColor(host::OLE_COLOR New_TextColor);
    [[nodiscard]] host::OLE_COLOR HoverColor() const { return HoverColor_; }
    void HoverColor(host::OLE_COLOR New_HoverColor);
    [[nodiscard]] host::OLE_COLOR BackColor() const { return UserControl.BackColor(); }
    void BackColor(host::OLE_COLOR New_BackColor);
    [[nodiscard]] bool UseMnemonic() const { return UseMnemonic_; }
    void UseMnemonic(bool New_UseMnemonic);
    [[nodiscard]] bool Default() const { return Default_; }
    void Default(bool New_Default);
    [[nodiscard]] bool Cancel() const { return Cancel_; }
    void Cancel(bool New_Cancel);
    [[nodiscard]] bool FocusRect() const { return FocusRect_; }
    void FocusRect(bool New_FocusRect);
    // Whether the button shows the focus now.
    [[nodiscard]] bool BackFocus() const { return fHasFocus; }
    // The control's own enabled state, persisted as "Enabled". It has no member of its own in
    // the table: the host's extender owns that name.
    [[nodiscard]] bool Enabled() const { return UserControl.Enabled(); }
    void Enabled(bool New_Enabled);

    // ---- methods
    // Shows the focus indication (the message box restores its buttons' focus look with it).
    void sFocus();

    // ---- state, for whoever needs to look (the message box, tests)
    [[nodiscard]] std::int16_t AccessKey() const { return nAccessKey; }
    [[nodiscard]] Look CurrentLook() const;
    // The caption as written: access prefixes removed, "&&" as one "&".
    [[nodiscard]] std::string DisplayCaption() const;

  private:
    struct Props;  // the property declarations

    void StartValues();
    // Input routines shared by the mouse, the keyboard and the poll.
    void DoMouseDown(std::int16_t Button, std::int16_t Shift, float x, float y);
    void DoMouseMove(std::int16_t Button, std::int16_t Shift, float x, float y);
    void DoMouseUp(std::int16_t Button, std::int16_t Shift, float x, float y);
    void OnPoll();
    void Fire();

    void ComputeAccessKey();
    void WatchFont();
    void Paint();

    forms::Timer tmrEvents;

    // State record.
    std::string Caption_;
    host::OLE_COLOR TextColor_ = 0;
    host::OLE_COLOR HoverColor_ = 0;
    bool UseMnemonic_ = false;
    bool Default_ = false;
    bool Cancel_ = false;
    bool FocusRect_ = false;

    bool fHover = false;
    bool fPressedLook = false;
    bool fMouseDown = false;
    bool fEnteredDown = false;
    bool fHasFocus = false;
    bool fKeyLatch = false;
    std::int16_t nAccessKey = 0;
    // Where the caption was last written (pixels, before the pressed shift).
    std::int32_t textX_ = 0;
    std::int32_t textY_ = 0;

    // A tick that fires waits 0.1 s with the loop running; ticks falling due meanwhile are
    // dropped, as the host never re-enters a timer's handler.
    bool inTick_ = false;
    // Where the pointer last was, for a double click (which comes without coordinates).
    float lastX_ = 0, lastY_ = 0;
    std::shared_ptr<void> fontWatch_;
};

}  // namespace korvex::controls
