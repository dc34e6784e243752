#include "forms/lightweight.hpp"

#include "base/error.hpp"
#include "forms/drawing_surface.hpp"
#include "host/control.hpp"

namespace korvex::forms {

using namespace platform;

std::int16_t CheckedMousePointer(std::int16_t value) {
    if ((value < 0 || value > 15) && value != host::kMousePointerCustom)
        throw host::HostError(host::kErrInvalidPropertyValue, "MousePointer");
    return value;
}

Lightweight::Lightweight(DrawingSurface& container) : container_(&container) {
    container.Attach(this);
}

Lightweight::~Lightweight() {
    if (container_) container_->Detach(this);
}

// Without a container (it has gone) positions read as plain pixels.
float Lightweight::Left() const {
    return static_cast<float>(container_ ? container_->Scale().FromPixelX(left_) : left_);
}
float Lightweight::Top() const {
    return static_cast<float>(container_ ? container_->Scale().FromPixelY(top_) : top_);
}
float Lightweight::Width() const {
    return static_cast<float>(container_ ? container_->Scale().SizeFromPixelsX(width_) : width_);
}
float Lightweight::Height() const {
    return static_cast<float>(container_ ? container_->Scale().SizeFromPixelsY(height_) : height_);
}

void Lightweight::SetBounds(std::optional<float> left, std::optional<float> top,
                            std::optional<float> width, std::optional<float> height) {
    if ((width && *width < 0) || (height && *height < 0))
        throw host::HostError(host::kErrInvalidPropertyValue,
                              width && *width < 0 ? "Width" : "Height");
    if (!container_) return;
    const ScaleSystem& scale = container_->Scale();
    const double l = left ? scale.ToPixelX(*left) : left_;
    const double t = top ? scale.ToPixelY(*top) : top_;
    const double w = width ? scale.SizeToPixelsX(*width) : width_;
    const double h = height ? scale.SizeToPixelsY(*height) : height_;
    if (l == left_ && t == top_ && w == width_ && h == height_) return;
    left_ = l;
    top_ = t;
    width_ = w;
    height_ = h;
    OnBoundsChanged();
    Invalidate();
}

void Lightweight::SizePixels(double width, double height) {
    width_ = width;
    height_ = height;
}

RECT Lightweight::PixelRect() const {
    const std::int32_t l = ToDevice(left_), t = ToDevice(top_);
    return {l, t, l + ToDevice(width_), t + ToDevice(height_)};
}

void Lightweight::Visible(bool value) {
    if (value == visible_) return;
    visible_ = value;
    Invalidate();
}

void Lightweight::ZOrder(ZOrderConstants Position) {
    if (container_) container_->Restack(this, Position);
}

void Lightweight::Refresh() {
    Invalidate();
}

void Lightweight::Invalidate() const {
    if (container_) container_->Invalidate();
}

Gdi* Lightweight::Device() const {
    return container_ ? &container_->Platform().gdi() : nullptr;
}

void InputLightweight::Enabled(bool value) {
    if (value == enabled_) return;
    enabled_ = value;
    OnEnabledChanged();
    Invalidate();
}

void InputLightweight::MousePointer(std::int16_t value) {
    mousePointer_ = CheckedMousePointer(value);
}

void InputLightweight::MouseIcon(std::shared_ptr<host::StdPicture> value) {
    mouseIcon_ = std::move(value);
}

}  // namespace korvex::forms
