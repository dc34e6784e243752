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
    return bounds_.Left(container_ ? &container_->Scale() : nullptr);
}
float Lightweight::Top() const {
    return bounds_.Top(container_ ? &container_->Scale() : nullptr);
}
float Lightweight::Width() const {
    return bounds_.Width(container_ ? &container_->Scale() : nullptr);
}
float Lightweight::Height() const {
    return bounds_.Height(container_ ? &container_->Scale() : nullptr);
}

void Lightweight::SetBounds(std::optional<float> left, std::optional<float> top,
                            std::optional<float> width, std::optional<float> height) {
    CheckSizes(width, height);
    if (!container_) return;
    const PixelBounds moved = bounds_.With(container_->Scale(), left, top, width, height);
    if (moved == bounds_) return;
    bounds_ = moved;
    OnBoundsChanged();
    Invalidate();
}

void Lightweight::SizePixels(double width, double height) {
    bounds_.width = width;
    bounds_.height = height;
}

RECT Lightweight::PixelRect() const {
    return bounds_.Device();
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

void InputLightweight::ToolTipText(std::string value) {
    if (value == toolTipText_) return;
    toolTipText_ = std::move(value);
    if (DrawingSurface* surface = Container()) surface->RefreshToolTip();
}

void InputLightweight::MousePointer(std::int16_t value) {
    mousePointer_ = CheckedMousePointer(value);
}

void InputLightweight::MouseIcon(std::shared_ptr<host::StdPicture> value) {
    mouseIcon_ = std::move(value);
}

}  // namespace korvex::forms
