#pragma once
// Frame: a captioned group box on a surface, a child window of its own that holds windowless
// objects (labels, images, shapes) placed in the frame's own coordinates. It is drawn as the
// classic group box: an etched rectangle whose top line runs through the middle of the caption,
// the caption 8 pixels in from the left on the frame's back colour. An empty caption leaves the
// top line unbroken.
//
// The frame is placed in its container's scale units from the container's client corner; it
// must not outlive its container.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "forms/drawing_surface.hpp"

namespace korvex::forms {

class Frame final : public DrawingSurface {
  public:
    // Visible, empty, at 0,0 of the container until moved; caption "Frame1"'s look without text.
    explicit Frame(DrawingSurface& container);

    [[nodiscard]] const std::string& Caption() const { return caption_; }
    void Caption(std::string value);

    // Position and size in the container's scale units; negative sizes are error 380.
    [[nodiscard]] float Left() const;
    [[nodiscard]] float Top() const;
    [[nodiscard]] float Width() const;
    [[nodiscard]] float Height() const;
    void Move(float Left, std::optional<float> Top = {}, std::optional<float> Width = {},
              std::optional<float> Height = {});

    [[nodiscard]] bool Visible() const { return visible_; }
    void Visible(bool value);

    // The caption's colour and font, and the face; each change redraws the frame.
    [[nodiscard]] host::OLE_COLOR ForeColor() const { return DrawingSurface::ForeColor(); }
    void ForeColor(host::OLE_COLOR value);
    [[nodiscard]] host::OLE_COLOR BackColor() const { return DrawingSurface::BackColor(); }
    void BackColor(host::OLE_COLOR value);
    [[nodiscard]] std::shared_ptr<host::StdFont> Font() const { return DrawingSurface::Font(); }
    void Font(std::shared_ptr<host::StdFont> value);

    // Where the etched top line runs, in frame pixels: the middle of the caption's line.
    [[nodiscard]] std::int32_t BorderTop() const;

  private:
    void Redraw();

    DrawingSurface& container_;
    std::string caption_;
    bool visible_ = true;
    std::shared_ptr<void> fontSubscription_;
};

}  // namespace korvex::forms
