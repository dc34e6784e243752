#pragma once
// VScrollBar: a vertical scroll bar in the classic look, a child window of its container.
//
//   +-----+  up arrow     value - SmallChange, towards Min
//   |  ^  |
//   +-----+
//   |:::::|  page area    value - LargeChange
//   |#####|  thumb        dragged: Scroll while it moves, Change once it is dropped
//   |:::::|  page area    value + LargeChange
//   +-----+
//   |  v  |  down arrow   value + SmallChange, towards Max
//   +-----+
//
// Min may be above Max: the bar then counts backwards, and the up arrow still moves towards Min.
// A held arrow or page area repeats after the platform's first delay, then at its repeat delay,
// while the pointer stays on the part it pressed. Value changes raise Change, also when code
// sets Value.

#include <cstdint>
#include <functional>
#include <optional>

#include "forms/boxed_control.hpp"
#include "forms/events.hpp"
#include "forms/picture_box.hpp"
#include "forms/timer.hpp"

namespace korvex::forms {

class VScrollBar : public BoxedControl {
  public:
    // Min 0, Max 32767, Value 0, SmallChange and LargeChange 1.
    explicit VScrollBar(DrawingSurface& container);

    using BoxedControl::Enabled;
    void Enabled(bool value);

    // A value outside Min..Max (in either order) is error 380. Changing a limit pulls Value
    // inside the new range, raising Change.
    [[nodiscard]] std::int16_t Min() const { return min_; }
    void Min(std::int16_t value);
    [[nodiscard]] std::int16_t Max() const { return max_; }
    void Max(std::int16_t value);
    [[nodiscard]] std::int16_t Value() const { return value_; }
    void Value(std::int16_t value);
    // 1 to 32767; error 380 otherwise.
    [[nodiscard]] std::int16_t SmallChange() const { return smallChange_; }
    void SmallChange(std::int16_t value);
    [[nodiscard]] std::int16_t LargeChange() const { return largeChange_; }
    void LargeChange(std::int16_t value);

    // The parts, top to bottom, and the one at a pixel of the bar.
    enum class Part { None, UpArrow, PageUp, Thumb, PageDown, DownArrow };
    [[nodiscard]] Part PartAt(int x, int y) const;

    std::function<void()> Change;
    std::function<void()> Scroll;
    SurfaceEvents events;  // GotFocus, LostFocus, the mouse events

  private:
    struct Layout {
        int width = 0, height = 0;
        int arrow = 0;                    // height of each arrow
        int thumbTop = 0, thumbSize = 0;  // thumbSize 0: no thumb
    };
    [[nodiscard]] Layout Measure() const;
    // The value one step of `amount` towards Min (negative) or Max (positive) gives, kept inside.
    [[nodiscard]] std::int16_t Stepped(int amount) const;
    void Step(Part part);
    void SetValue(std::int16_t value, bool change);
    [[nodiscard]] std::int16_t ValueAtThumb(int thumbTop) const;
    void OnDown(int x, int y);
    void OnMove(int x, int y);
    void OnUp();
    void Paint();

    Timer repeat_;
    std::int16_t min_ = 0;
    std::int16_t max_ = 32767;
    std::int16_t value_ = 0;
    std::int16_t smallChange_ = 1;
    std::int16_t largeChange_ = 1;

    Part pressed_ = Part::None;   // the part held down
    bool over_ = false;           // the pointer is on the pressed part
    int dragOffset_ = 0;          // pointer y minus thumb top while the thumb is dragged
    std::optional<int> dragTop_;  // where the dragged thumb is drawn
};

}  // namespace korvex::forms
