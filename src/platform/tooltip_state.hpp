#pragma once
// ToolTipState: the one tooltip of a screen, driven by the mouse input its windows get, as a
// tooltip control that subclasses its tools sees it; both backends keep theirs here.
//
// Step table (tool = the window the pointer moved on, when it has tooltip text):
//   move onto another tool   the shown tip goes; the show timer starts: 500 ms, or 100 ms when
//                            a tip was showing just now
//   move within the tool     before the tip shows, the pointer must rest again: the show timer
//                            restarts; while it shows, the 5000 ms before it goes restart
//   move off every tool      the tip goes, its timer stops
//   show timer               the tip shows below the pointer; the 5000 ms start
//   5000 ms at rest, press   the tip goes and stays away until the pointer moves on to another
//                            tool
//   text changed             shown: the new text in place; "" ends the tool
//   window hidden, disabled  as moving off every tool
//   or destroyed
//
// The look: the system's tooltip colours (COLOR_INFOBK behind COLOR_INFOTEXT), a one-pixel
// frame in the window-frame colour, the shell font, drawn through Gdi in screen coordinates.

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "platform/driver.hpp"
#include "platform/gdi.hpp"
#include "platform/window.hpp"

namespace korvex::platform {

class ToolTipState {
  public:
    // Timing: Windows' defaults for its 500 ms double-click time (TTM_GETDELAYTIME). A tooltip
    // shows once the pointer has rested 500 ms on its window, 100 ms after another window's
    // tooltip was showing, and goes after 5000 ms of a resting pointer.
    static constexpr std::int64_t kInitial = 500;
    static constexpr std::int64_t kReshow = 100;
    static constexpr std::int64_t kAutoPop = 5000;
    // The classic tooltip: a one-pixel frame around the text with 2 pixels of room on each
    // side, its top 20 pixels below the pointer's hot spot, moved back onto the screen.
    static constexpr std::int32_t kBelowPointer = 20;
    static constexpr std::int32_t kMargin = 2;

    // What the tip asks of its windows: a window's tooltip text (null for no such window), the
    // pointer and the screen's size; changed, when set, hears of every show and hide.
    struct Windows {
        std::function<const std::string*(std::uint32_t window)> textOf;
        std::function<POINT()> pointer;
        std::function<SIZE()> screen;
        std::function<void()> changed;
    };

    // Runs on clock's timers (without a clock it never shows); measures and paints through gdi.
    ToolTipState(Gdi& gdi, Clock* clock, Windows windows);
    ~ToolTipState();
    ToolTipState(const ToolTipState&) = delete;
    ToolTipState& operator=(const ToolTipState&) = delete;

    // The pointer moved onto target (0: no window of ours).
    void Track(std::uint32_t target);
    void Press();
    // window's text is now text.
    void TextChanged(std::uint32_t window, std::string_view text);
    // window stopped being a tool (hidden, disabled, destroyed).
    void Drop(std::uint32_t window);

    [[nodiscard]] std::uint32_t Tool() const { return tool_; }
    [[nodiscard]] bool Shown() const { return shown_; }
    [[nodiscard]] const RECT& Screen() const { return screen_; }
    [[nodiscard]] Driver::ShownToolTip OnScreen() const;
    // The tip in screen coordinates, when it shows.
    void Paint(HDC dc);

  private:
    void Hide(bool spent);
    // One-shot on the clock's periodic timers: the tick kills its timer first.
    void StartTimer(std::int64_t ms, bool show);
    void Show();
    void Changed() {
        if (windows_.changed) windows_.changed();
    }

    Gdi& gdi_;
    Clock* clock_;
    Windows windows_;
    // The window the pointer last moved on that has a tip (its tool), and whether the tip
    // shows. A press or the timeout hides it for good until the pointer moves on to another
    // tool. One timer at a time runs: the delay before showing, or the one before it goes.
    std::uint32_t tool_ = 0;
    bool shown_ = false;
    bool spent_ = false;
    std::string text_;
    RECT screen_;
    Clock::TimerId timer_ = 0;
};

}  // namespace korvex::platform
