// Button's behaviour: mouse, keys, focus, the hover poll and the Value setter turned into state
// changes, painting steps and raised events.
//
// The press cycle of each kind of button, step by step (events in the order raised):
//
//   step               kind              state afterwards                         raised
//   pointer in (poll)  any, not Down     hover; hotEntry unless pressed;          -
//                                        look Hover
//   press              push              phase Down; look Down                    MouseDown
//   press              switch or group,  phase Latched, poll off; look Down       Group (group
//                      not latched                                                only), MouseDown
//   press              switch, latched   phase Up; the look waits for release     MouseDown
//   press              group, latched    nothing                                  MouseDown
//   pointer out / in   Down or Latched   nothing (the poll skips Down and is      -
//                                        off while latched)
//   release            push              phase Up, poll on; look Hover;           Click, MouseUp
//                                        Value = True
//   release            switch, Up        phase Up, poll on; look Hover;           Click, MouseUp
//                                        Value = False; Switched bFalse
//   release            switch, latched   Value = True                             Click
//   release            group, latched    first time Value = True, then nothing    Click, once
//   pointer out (poll) any, not Down     hover off; look Normal (Plain for        -
//                                        Cool and XPcool)
//
// Value = True on an unpressed switch or group button latches it as a press does (Group for a
// group button, no other event); Value = False on a latched one releases it to the hover look
// without an event. A push button only stores Value. Enter, with FocusRect, is a press with
// button 1 at 0, 0 on key down and the release on key up.

#include "controls/button/button.hpp"
#include "foundation/hover.hpp"

namespace korvex::controls {

namespace {

constexpr std::int16_t kKeyReturn = 13;
constexpr std::int16_t kLeftButton = 1;
constexpr std::int16_t kRightButton = 2;
constexpr std::uint32_t kFocusDelayMs = 10;

}  // namespace

// ---------------------------------------------------------------------------------------------
// Painting steps

void Button::Layout() {
    Record(painter_.Layout());
}

void Button::ShowFrame(FrameLook look) {
    painter_.Frame(look);
    state_.frame = look;
}

void Button::ShowImage(ImageLook look) {
    state_.image = look;
    Record(painter_.Image(look));
}

void Button::ShowFocus() {
    if (painter_.Focus(FocusRect_)) ShowImage(ImageLook::Normal);
}

// ---------------------------------------------------------------------------------------------
// Input

void Button::WireInput() {
    timer.Interval(static_cast<std::int32_t>(foundation::kHoverPollMs));
    timer.Tick = [this] { OnHoverTick(); };
    tmrRect.Interval(kFocusDelayMs);
    tmrRect.Enabled(false);
    tmrRect.Tick = [this] {
        ShowFocus();
        tmrRect.Enabled(false);
    };

    ForwardInput(PicBild1.events);
    for (forms::InputLightweight* element :
         std::initializer_list<forms::InputLightweight*>{&imgBild, &lbl1, &lbl2, &pfl})
        ForwardInput(element->events);

    forms::SurfaceEvents& face = PicBild1.events;
    face.KeyDown = [this](std::int16_t& KeyCode, std::int16_t Shift) {
        if (KeyCode == kKeyReturn && FocusRect_) Press(kLeftButton, 0, 0, 0);
        RaiseEvent(ButtonEvents::KeyDown, KeyCode, Shift);
    };
    face.KeyUp = [this](std::int16_t& KeyCode, std::int16_t Shift) {
        if (KeyCode == kKeyReturn && FocusRect_) {
            Release(kLeftButton, 0, 0, 0);
            state_.recheck = true;
            ShowFocus();
        }
        RaiseEvent(ButtonEvents::KeyUp, KeyCode, Shift);
    };
    face.KeyPress = [this](std::int16_t& KeyAscii) {
        RaiseEvent(ButtonEvents::KeyPress, KeyAscii);
    };
    face.GotFocus = [this] {
        if (!FocusRect_) return;
        state_.hasFocus = true;
        // Focus that came with a press shows once the pointer moves on.
        if (!state_.pressed) tmrRect.Enabled(true);
    };
    face.LostFocus = [this] {
        if (!FocusRect_) return;
        state_.hasFocus = false;
        ShowFocus();
    };
    // The host gives the focus to the control; the face is what takes keys.
    UserControl.events.GotFocus = [this] {
        if (PicBild1.Enabled()) PicBild1.SetFocus();
    };
}

// The host has focused the face; the access key clicks as Enter does with FocusRect: a press
// and release of the left button at 0, 0, whatever FocusRect says.
void Button::UserControl_AccessKeyPress(std::int16_t KeyAscii) {
    (void)KeyAscii;
    if (!look_.enabled) return;
    Press(kLeftButton, 0, 0, 0);
    Release(kLeftButton, 0, 0, 0);
    state_.recheck = true;
}

void Button::ForwardInput(forms::MouseEvents& events) {
    events.MouseDown = [this](std::int16_t MouseButton, std::int16_t Shift, float x, float y) {
        Press(MouseButton, Shift, x, y);
        if (PicBild1.Enabled()) PicBild1.SetFocus();
    };
    events.MouseMove = [this](std::int16_t MouseButton, std::int16_t Shift, float x, float y) {
        lastX_ = x;
        lastY_ = y;
        RaiseEvent(ButtonEvents::MouseMove, MouseButton, Shift, x, y);
    };
    events.MouseUp = [this](std::int16_t MouseButton, std::int16_t Shift, float x, float y) {
        lastX_ = x;
        lastY_ = y;
        Release(MouseButton, Shift, x, y);
    };
    // The second press of a double click arrives as DblClick; it presses the button as any
    // other press does.
    events.DblClick = [this] { Press(kLeftButton, 0, lastX_, lastY_); };
}

// ---------------------------------------------------------------------------------------------
// The press cycle

void Button::Press(std::int16_t MouseButton, std::int16_t Shift, float x, float y) {
    state_.pressed = true;
    if (!state_.Latched()) {
        if (MouseButton == kLeftButton) state_.switched = EnumSwitched::bLeft;
        if (MouseButton == kRightButton) state_.switched = EnumSwitched::bRight;
    }
    state_.hotEntry = false;
    if (OptionMode_ == EnumMode::optButton) {
        state_.hover = true;
        state_.phase = PressPhase::Down;
        state_.groupClicked = false;
        Layout();
        ShowImage(ImageLook::Down);
        ShowFrame(FrameLook::Down);
        if (look_.IsXP()) painter_.Gradient(GradientLook::Turned);
    } else if (state_.Latched()) {
        // A switch comes out at the release; a latched group button stays in.
        if (OptionMode_ == EnumMode::optSwitch) {
            state_.groupClicked = false;
            state_.phase = PressPhase::Up;
        }
    } else {
        state_.phase = PressPhase::Latched;
        timer.Enabled(false);
        Layout();
        ShowImage(ImageLook::Down);
        ShowFrame(FrameLook::Down);
        if (look_.IsXP()) painter_.Gradient(GradientLook::Turned);
        if (OptionMode_ == EnumMode::optGroup) RaiseEvent(ButtonEvents::Group);
    }
    RaiseEvent(ButtonEvents::MouseDown, MouseButton, Shift, x, y);
}

void Button::Release(std::int16_t MouseButton, std::int16_t Shift, float x, float y) {
    state_.pressed = false;
    if (state_.Latched()) {
        if (OptionMode_ == EnumMode::optGroup) {
            if (state_.groupClicked) return;
            state_.groupClicked = true;
        }
        Value(true);
        RaiseEvent(ButtonEvents::Click);
        return;
    }
    state_.hover = true;
    state_.phase = PressPhase::Up;
    timer.Enabled(true);
    Layout();
    state_.hotEntry = false;
    ShowImage(ImageLook::Hover);
    ShowFrame(FrameLook::Hover);
    if (look_.IsXP()) painter_.Gradient(GradientLook::Normal);
    if (OptionMode_ == EnumMode::optSwitch) {
        Value(false);
        state_.switched = EnumSwitched::bFalse;
    } else {
        Value(true);
    }
    RaiseEvent(ButtonEvents::Click);
    RaiseEvent(ButtonEvents::MouseUp, MouseButton, Shift, x, y);
}

void Button::Value(bool New_Value) {
    Value_ = New_Value;
    PropertyChanged("Value");
    if (!look_.enabled || OptionMode_ == EnumMode::optButton) return;
    if (New_Value && !state_.pressed) {
        state_.pressed = true;
        state_.hotEntry = false;
        if (state_.Latched()) return;
        state_.phase = PressPhase::Latched;
        timer.Enabled(false);
        Layout();
        ShowFrame(FrameLook::Down);
        ShowImage(ImageLook::Down);
        if (look_.IsXP()) painter_.Gradient(GradientLook::Turned);
        if (OptionMode_ == EnumMode::optGroup) RaiseEvent(ButtonEvents::Group);
    } else if (state_.Latched()) {
        state_.pressed = false;
        state_.hover = true;
        timer.Enabled(true);
        state_.hotEntry = false;
        Layout();
        ShowFrame(FrameLook::Hover);
        ShowImage(ImageLook::Hover);
        if (look_.IsXP()) painter_.Gradient(GradientLook::Normal);
        state_.phase = PressPhase::Up;
        state_.groupClicked = false;
        state_.switched = EnumSwitched::bFalse;
    }
}

// ---------------------------------------------------------------------------------------------
// Hover poll

void Button::OnHoverTick() {
    platform::Windows& windows = Platform().windows();
    platform::POINT cursor;
    windows.GetCursorPos(&cursor);
    if (cursor == state_.lastCursor && !state_.recheck) return;
    if (state_.phase != PressPhase::Down) {
        const bool inside = foundation::IsMouseInto(windows, UserControl.hWnd());
        if (inside != state_.hover) {
            // At design time the look stays; the position is not recorded, so the next tick
            // asks again.
            if (!Ambient().UserMode) return;
            if (!inside) {
                state_.hotEntry = false;
                Layout();
                ShowImage(ImageLook::Normal);
                ShowFrame(look_.RestsPlain() ? FrameLook::Plain : FrameLook::Normal);
                state_.hover = false;
            } else {
                state_.hover = true;
                if (!state_.pressed) state_.hotEntry = true;
                Layout();
                if (look_.style == EnumStyle::XPcool) painter_.Gradient(GradientLook::Normal);
                ShowImage(ImageLook::Hover);
                ShowFrame(FrameLook::Hover);
                if (ToolTip_) SetToolTips();
            }
            if (FocusRect_) ShowFocus();
        }
    }
    state_.recheck = false;
    state_.lastCursor = cursor;
}

}  // namespace korvex::controls
