#pragma once
// What the forms layer's windowed controls (the text box, the scroll bar) share: each is a
// picture box of its own, so it has a window (focus, keys, capture) and draws into its bitmap.
// Position, visibility and the window are the box's.

#include <optional>

#include "forms/picture_box.hpp"

namespace korvex::forms {

class BoxedControl {
  public:
    // ---- position in the container's scale units
    [[nodiscard]] float Left() const { return box_.Left(); }
    [[nodiscard]] float Top() const { return box_.Top(); }
    [[nodiscard]] float Width() const { return box_.Width(); }
    [[nodiscard]] float Height() const { return box_.Height(); }
    void Left(float value) { box_.Left(value); }
    void Top(float value) { box_.Top(value); }
    void Width(float value) { box_.Width(value); }
    void Height(float value) { box_.Height(value); }
    void Move(float Left, std::optional<float> Top = {}, std::optional<float> Width = {},
              std::optional<float> Height = {}) {
        box_.Move(Left, Top, Width, Height);
    }
    [[nodiscard]] bool Visible() const { return box_.Visible(); }
    void Visible(bool value) { box_.Visible(value); }
    [[nodiscard]] bool Enabled() const { return box_.Enabled(); }
    [[nodiscard]] platform::HWND hWnd() const { return box_.hWnd(); }

  protected:
    explicit BoxedControl(DrawingSurface& container) : box_(container) {}

    PictureBox box_;
};

}  // namespace korvex::forms
