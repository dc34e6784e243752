#pragma once
// The driver face of the platform: what a test, the script runner or a tool does to a platform
// from the outside, as a user and the passing of time would. Controls see only the other face
// (platform/window.hpp) and never include this header; only a backend that can be driven
// offers it (sim::SimPlatform::driver()).
//
//   time     Advance moves the virtual clock, firing due timers; NextDue looks ahead
//   input    the one inbound funnel: pointer moves, buttons and keys in screen terms
//   scripts  the source a modal loop pulls its next step from once it has nothing else to do
//   pixels   the screen, or one window, composed as the user would see it

#include <cstdint>
#include <string>
#include <vector>

#include "platform/window.hpp"

namespace korvex::platform {

// Scripted input: the event loop pulls the next step from here when it has nothing else to do
// (a nested modal loop keeps pulling until its form closes).
class InputSource {
  public:
    virtual ~InputSource() = default;
    // Performs the next step (input, time, a property operation); false when none is left.
    virtual bool Step() = 0;
};

class Driver {
  public:
    virtual ~Driver() = default;

    // Moves time forward by ms, firing due timers in order (a timer due twice fires twice).
    virtual void Advance(std::int64_t ms) = 0;
    // Due time of the earliest timer, or -1 when there is none.
    [[nodiscard]] virtual std::int64_t NextDue() = 0;

    // Input funnel (screen coordinates), stamped with the clock and routed as the platform
    // routes input. A press captures the pointer for the window under it until the release; a
    // second press within the double-click time and distance is a double click.
    virtual void MouseMove(POINT screen) = 0;
    virtual void MouseDown(int button, int shift) = 0;
    virtual void MouseUp(int button, int shift) = 0;
    virtual void KeyDown(int keyCode, int shift) = 0;
    virtual void KeyUp(int keyCode, int shift) = 0;
    virtual void KeyPress(int character) = 0;

    // Where modal loops take their next step from; when it has none left, they let time run
    // from timer to timer (up to a limit) and then give up with the host's error.
    virtual void SetInputSource(InputSource* source) = 0;

    // Composes the desktop and every visible window (z-order, regions, parents' clipping) into
    // a bitmap of the screen size; or one window alone with its children, window-sized.
    // The screen holds the tooltip shown now; one window alone does not, as a window's own
    // capture leaves out the tooltip floating over it.
    virtual std::vector<std::uint32_t> ComposeScreen() = 0;  // 0x00RRGGBB, top-down
    virtual std::vector<std::uint32_t> ComposeWindow(HWND window) = 0;

    // The tooltip on the screen now: its text and screen rectangle; empty text when none shows.
    struct ShownToolTip {
        std::string text;
        RECT screen;
    };
    [[nodiscard]] virtual ShownToolTip ToolTip() = 0;
};

}  // namespace korvex::platform
