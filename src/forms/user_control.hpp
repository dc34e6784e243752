#pragma once
// UserControlSurface: the surface a control is built on (what the control calls UserControl).
// Its window is a child of the container's window; its size is in the container's units
// (twips); it can be transparent, letting the container show through everywhere but its
// windowless objects and child windows.

#include <cstdint>
#include <optional>

#include "forms/drawing_surface.hpp"

namespace korvex::forms {

class UserControlSurface final : public DrawingSurface {
  public:
    // A hidden window, 4800 x 3600 twips, at 0,0 of parent (a top-level window without one);
    // the host shows it when it sites the control.
    explicit UserControlSurface(platform::Platform& platform, platform::HWND parent = {});

    // Size and position in the container's units, twips. A size change raises Resize.
    [[nodiscard]] float Width() const;
    [[nodiscard]] float Height() const;
    void Width(float value) { Move(Left(), Top(), value); }
    void Height(float value) { Move(Left(), Top(), Width(), value); }
    [[nodiscard]] float Left() const;
    [[nodiscard]] float Top() const;
    void Move(float Left, std::optional<float> Top = {}, std::optional<float> Width = {},
              std::optional<float> Height = {});

    // 0 transparent, 1 opaque (the default).
    [[nodiscard]] std::int16_t BackStyle() const { return IsTransparent() ? 0 : 1; }
    void BackStyle(std::int16_t value);
    // 0 none (the default), 1 fixed single: a one-pixel frame inside the control's rectangle.
    [[nodiscard]] std::int16_t BorderStyle() const { return borderStyle_; }
    void BorderStyle(std::int16_t value);

  private:
    std::int16_t borderStyle_ = 0;
};

}  // namespace korvex::forms
