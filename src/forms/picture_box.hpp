#pragma once
// PictureBox: a child window on a surface with a persistent bitmap of its own (Cls, Print, Line,
// PaintPicture, scale modes), a border (none or fixed single, flat or the sunken 3D edge), a
// picture it can size itself to, and the surface's mouse, key and focus events.

#include <cstdint>
#include <memory>
#include <optional>

#include "forms/drawing_surface.hpp"

namespace korvex::forms {

class PictureBox final : public DrawingSurface {
  public:
    // Visible, empty, at 0,0 of the container until moved; fixed single border, 3D.
    explicit PictureBox(DrawingSurface& container);
    ~PictureBox() override;

    // Position and size in the container's scale units; negative sizes are error 380.
    [[nodiscard]] float Left() const;
    [[nodiscard]] float Top() const;
    [[nodiscard]] float Width() const;
    [[nodiscard]] float Height() const;
    void Left(float value) { SetBounds(value, {}, {}, {}); }
    void Top(float value) { SetBounds({}, value, {}, {}); }
    void Width(float value) { SetBounds({}, {}, value, {}); }
    void Height(float value) { SetBounds({}, {}, {}, value); }
    void Move(float Left, std::optional<float> Top = {}, std::optional<float> Width = {},
              std::optional<float> Height = {}) {
        SetBounds(Left, Top, Width, Height);
    }

    [[nodiscard]] bool Visible() const { return visible_; }
    void Visible(bool value);
    // 0 none, 1 fixed single (the default).
    [[nodiscard]] std::int16_t BorderStyle() const { return borderStyle_; }
    void BorderStyle(std::int16_t value);
    // 0 flat (a one-pixel frame), 1 3D (the sunken two-pixel edge; the default).
    [[nodiscard]] std::int16_t Appearance() const { return appearance_; }
    void Appearance(std::int16_t value);
    // Sizes the box to its picture plus border whenever either changes.
    [[nodiscard]] bool AutoSize() const { return autoSize_; }
    void AutoSize(bool value);
    [[nodiscard]] std::shared_ptr<host::StdPicture> Picture() const {
        return DrawingSurface::Picture();
    }
    void Picture(std::shared_ptr<host::StdPicture> value);

    // Front (0) or back (1) among the container's child windows.
    void ZOrder(ZOrderConstants Position = ZOrderConstants::vbBringToFront);

    [[nodiscard]] DrawingSurface* Container() const { return container_; }

  private:
    friend class DrawingSurface;

    void SetBounds(std::optional<float> left, std::optional<float> top, std::optional<float> width,
                   std::optional<float> height);
    // Puts the window where the bounds say, inside the container's border.
    void Place();
    void ApplyFrame();
    void FitToPicture();

    DrawingSurface* container_;
    PixelBounds bounds_;
    bool visible_ = true;
    std::int16_t borderStyle_ = 1;
    std::int16_t appearance_ = 1;
    bool autoSize_ = false;
};

}  // namespace korvex::forms
