#include "forms/picture_box.hpp"

#include "base/error.hpp"

namespace korvex::forms {

using namespace platform;

PictureBox::PictureBox(DrawingSurface& container)
    : DrawingSurface(
          container.Platform(), container.hWnd(), true,
          RECT{container.Inset(), container.Inset(), container.Inset(), container.Inset()}),
      container_(&container) {
    container.AttachWindow(this);
    ApplyFrame();
    Platform().windows().ShowWindow(hWnd(), true);
    if (container.IsTransparent()) container.Invalidate();
}

PictureBox::~PictureBox() {
    if (container_) container_->DetachWindow(this);
}

float PictureBox::Left() const {
    return bounds_.Left(container_ ? &container_->Scale() : nullptr);
}
float PictureBox::Top() const {
    return bounds_.Top(container_ ? &container_->Scale() : nullptr);
}
float PictureBox::Width() const {
    return bounds_.Width(container_ ? &container_->Scale() : nullptr);
}
float PictureBox::Height() const {
    return bounds_.Height(container_ ? &container_->Scale() : nullptr);
}

void PictureBox::SetBounds(std::optional<float> left, std::optional<float> top,
                           std::optional<float> width, std::optional<float> height) {
    CheckSizes(width, height);
    if (!container_) return;
    bounds_ = bounds_.With(container_->Scale(), left, top, width, height);
    Place();
}

void PictureBox::Place() {
    if (!container_) return;
    PlaceWindow(bounds_.Device(container_->Inset()));
    if (container_->IsTransparent()) container_->Invalidate();
}

void PictureBox::Visible(bool value) {
    if (value == visible_) return;
    visible_ = value;
    Platform().windows().ShowWindow(hWnd(), value);
    if (container_ && container_->IsTransparent()) container_->Invalidate();
}

void PictureBox::BorderStyle(std::int16_t value) {
    if (value != 0 && value != 1)
        throw host::HostError(host::kErrInvalidPropertyValue, "BorderStyle");
    if (value == borderStyle_) return;
    borderStyle_ = value;
    ApplyFrame();
}

void PictureBox::Appearance(std::int16_t value) {
    if (value != 0 && value != 1)
        throw host::HostError(host::kErrInvalidPropertyValue, "Appearance");
    if (value == appearance_) return;
    appearance_ = value;
    ApplyFrame();
}

void PictureBox::ApplyFrame() {
    SetFrame(borderStyle_ == 0 ? Frame::None : appearance_ == 1 ? Frame::Sunken : Frame::Single);
    FitToPicture();
}

void PictureBox::AutoSize(bool value) {
    if (value == autoSize_) return;
    autoSize_ = value;
    FitToPicture();
}

void PictureBox::Picture(std::shared_ptr<host::StdPicture> value) {
    DrawingSurface::Picture(std::move(value));
    FitToPicture();
}

void PictureBox::FitToPicture() {
    const auto& picture = DrawingSurface::Picture();
    if (!autoSize_ || !IsDrawable(picture)) return;
    bounds_.width = picture->PixelWidth() + 2 * Inset();
    bounds_.height = picture->PixelHeight() + 2 * Inset();
    Place();
}

void PictureBox::ZOrder(ZOrderConstants Position) {
    const HWND after = Position == ZOrderConstants::vbSendToBack ? HWND_BOTTOM : HWND_TOP;
    Platform().windows().SetWindowPos(hWnd(), after, 0, 0, 0, 0,
                                      SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
}

}  // namespace korvex::forms
