#pragma once
// Image: a windowless picture. Without Stretch it takes the picture's size; with it the picture
// is stretched to the image's rectangle. Pixels with alpha 0 let the container show through;
// partial alpha (soft icon edges) blends with it.

#include <memory>

#include "forms/graphics.hpp"
#include "forms/lightweight.hpp"

namespace korvex::forms {

class Image final : public InputLightweight {
  public:
    explicit Image(DrawingSurface& container);

    [[nodiscard]] std::shared_ptr<host::StdPicture> Picture() const { return picture_; }
    void Picture(std::shared_ptr<host::StdPicture> value);
    [[nodiscard]] bool Stretch() const { return stretch_; }
    void Stretch(bool value);

    void Paint(platform::HDC dc, const platform::RECT& rect) const override;

  private:
    void FitToPicture();
    void OnBoundsChanged() override { FitToPicture(); }

    std::shared_ptr<host::StdPicture> picture_;
    // Realised once per picture, not on every paint.
    std::unique_ptr<PictureBitmap> bitmap_;
    bool stretch_ = false;
};

}  // namespace korvex::forms
