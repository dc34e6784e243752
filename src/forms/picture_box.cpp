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
    return static_cast<float>(container_ ? container_->Scale().FromPixelX(left_) : left_);
}
float PictureBox::Top() const {
    return static_cast<float>(container_ ? container_->Scale().FromPixelY(top_) : top_);
}
float PictureBox::Width() const {
    return static_cast<float>(container_ ? container_->Scale().SizeFromPixelsX(width_) : width_);
}
float PictureBox::Height() const {
    return static_cast<float>(container_ ? container_->Scale().SizeFromPixelsY(height_) : height_);
}

void PictureBox::SetBounds(std::optional<float> left, std::optional<float> top,
                           std::optional<float> width, std::optional<float> height) {
    if ((width && *width < 0) || (height && *height < 0))
        throw host::HostError(host::kErrInvalidPropertyValue,
                              width && *width < 0 ? "Width" : "Height");
    if (!container_) return;
    const ScaleSystem& scale = container_->Scale();
    if (left) left_ = scale.ToPixelX(*left);
    if (top) top_ = scale.ToPixelY(*top);
    if (width) width_ = scale.SizeToPixelsX(*width);
    if (height) height_ = scale.SizeToPixelsY(*height);
    Place();
}

void PictureBox::Place() {
    if (!container_) return;
    const std::int32_t inset = container_->Inset();
    const std::int32_t l = inset + ToDevice(left_), t = inset + ToDevice(top_);
    PlaceWindow(RECT{l, t, l + ToDevice(width_), t + ToDevice(height_)});
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
    width_ = picture->PixelWidth() + 2 * Inset();
    height_ = picture->PixelHeight() + 2 * Inset();
    Place();
}

void PictureBox::ZOrder(ZOrderConstants Position) {
    const HWND after = Position == ZOrderConstants::vbSendToBack ? HWND_BOTTOM : HWND_TOP;
    Platform().windows().SetWindowPos(hWnd(), after, 0, 0, 0, 0,
                                      SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
}

}  // namespace korvex::forms
