#include "forms/image.hpp"

#include "forms/drawing_surface.hpp"

namespace korvex::forms {

using namespace platform;

Image::Image(DrawingSurface& container) : InputLightweight(container) {
    Invalidate();
}

void Image::Picture(std::shared_ptr<host::StdPicture> value) {
    if (value == picture_) return;
    picture_ = std::move(value);
    bitmap_.reset();
    if (IsDrawable(picture_) && Device())
        bitmap_ = std::make_unique<PictureBitmap>(*Device(), *picture_);
    FitToPicture();
    Invalidate();
}

void Image::Stretch(bool value) {
    if (value == stretch_) return;
    stretch_ = value;
    FitToPicture();
    Invalidate();
}

void Image::FitToPicture() {
    if (stretch_ || !bitmap_) return;
    SizePixels(bitmap_->size().cx, bitmap_->size().cy);
}

void Image::Paint(HDC dc, const RECT& rect) const {
    if (!bitmap_) return;
    const SIZE size = bitmap_->size();
    if (stretch_)
        bitmap_->Draw(dc, rect.left, rect.top, rect.Width(), rect.Height(), 0, 0, size.cx, size.cy);
    else
        bitmap_->Draw(dc, rect.left, rect.top);
}

}  // namespace korvex::forms
