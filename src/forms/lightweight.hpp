#pragma once
// Windowless objects: labels, images and shapes drawn by their container on top of its
// persistent bitmap. They hold a place in the container's z-order and a rectangle in the
// container's scale units; input reaches them through the container's one dispatch routine.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "forms/events.hpp"
#include "forms/scale.hpp"
#include "host/font.hpp"
#include "platform/window.hpp"

namespace korvex::forms {

class DrawingSurface;
class InputLightweight;

enum class ZOrderConstants : std::int32_t { vbBringToFront = 0, vbSendToBack = 1 };

class Lightweight {
  public:
    virtual ~Lightweight();
    Lightweight(const Lightweight&) = delete;
    Lightweight& operator=(const Lightweight&) = delete;

    // Position and size in the container's scale units. Negative sizes are error 380.
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

    // Front (0) or back (1) of the container's windowless objects.
    void ZOrder(ZOrderConstants Position = ZOrderConstants::vbBringToFront);
    void Refresh();

    // The container, or null once the container has gone.
    [[nodiscard]] DrawingSurface* Container() const { return container_; }

    // Container side: the rectangle in the container's client pixels, and painting into dc at
    // rect (which the container has already clipped to).
    [[nodiscard]] platform::RECT PixelRect() const;
    virtual void Paint(platform::HDC dc, const platform::RECT& rect) const = 0;
    // Objects that take mouse input; the others are transparent to it.
    [[nodiscard]] virtual InputLightweight* Input() { return nullptr; }

  protected:
    explicit Lightweight(DrawingSurface& container);

    // Repaints the container.
    void Invalidate() const;
    [[nodiscard]] platform::Gdi* Device() const;
    // Sets the size in pixels without going through scale units (auto-sizing).
    void SizePixels(double width, double height);
    // After every move or resize; auto-sizing objects re-measure here.
    virtual void OnBoundsChanged() {}

  private:
    friend class DrawingSurface;
    // Values left out keep their current pixels exactly.
    void SetBounds(std::optional<float> left, std::optional<float> top, std::optional<float> width,
                   std::optional<float> height);

    DrawingSurface* container_;
    // Container client pixels, unrounded, so that a position set in twips reads back the same.
    PixelBounds bounds_;
    bool visible_ = true;
};

// A windowless object that takes mouse input: enabled state, mouse pointer and events.
class InputLightweight : public Lightweight {
  public:
    // Disabled objects are transparent to input: it goes to whatever lies beneath.
    [[nodiscard]] bool Enabled() const { return enabled_; }
    void Enabled(bool value);

    // 0 to 15 and 99 (custom, showing MouseIcon); error 380 for other values. 0 shows the
    // container's pointer.
    [[nodiscard]] std::int16_t MousePointer() const { return mousePointer_; }
    void MousePointer(std::int16_t value);
    [[nodiscard]] std::shared_ptr<host::StdPicture> MouseIcon() const { return mouseIcon_; }
    void MouseIcon(std::shared_ptr<host::StdPicture> value);

    [[nodiscard]] InputLightweight* Input() override { return this; }

    // The tooltip the platform shows while the pointer rests on the object; "" for none, which
    // lets the container's own show.
    [[nodiscard]] const std::string& ToolTipText() const { return toolTipText_; }
    void ToolTipText(std::string value);

    MouseEvents events;

  protected:
    using Lightweight::Lightweight;
    // Enabled as it shows (labels grey their text).
    virtual void OnEnabledChanged() {}

  private:
    bool enabled_ = true;
    std::int16_t mousePointer_ = 0;
    std::shared_ptr<host::StdPicture> mouseIcon_;
    std::string toolTipText_;
};

// Error 380 unless value is 0 to 15 or 99.
std::int16_t CheckedMousePointer(std::int16_t value);

}  // namespace korvex::forms
