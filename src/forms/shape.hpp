#pragma once
// Shape: a windowless rectangle, filled with its back colour when opaque and outlined inside its
// rectangle when it has a border. It takes no input; clicks reach whatever lies beneath.

#include <cstdint>

#include "forms/lightweight.hpp"
#include "host/ole_types.hpp"

namespace korvex::forms {

class Shape final : public Lightweight {
  public:
    explicit Shape(DrawingSurface& container);

    [[nodiscard]] host::OLE_COLOR BackColor() const { return backColor_; }
    void BackColor(host::OLE_COLOR value);
    // 0 transparent (the default), 1 opaque.
    [[nodiscard]] std::int16_t BackStyle() const { return backStyle_; }
    void BackStyle(std::int16_t value);
    // 0 none, 1 solid (the default); the pen styles 2 to 6 of the host are drawn solid.
    [[nodiscard]] std::int16_t BorderStyle() const { return borderStyle_; }
    void BorderStyle(std::int16_t value);
    [[nodiscard]] host::OLE_COLOR BorderColor() const { return borderColor_; }
    void BorderColor(host::OLE_COLOR value);
    // In pixels, at least 1; the border grows inwards.
    [[nodiscard]] std::int16_t BorderWidth() const { return borderWidth_; }
    void BorderWidth(std::int16_t value);

    void Paint(platform::HDC dc, const platform::RECT& rect) const override;

  private:
    host::OLE_COLOR backColor_ = 0x80000005;
    std::int16_t backStyle_ = 0;
    std::int16_t borderStyle_ = 1;
    host::OLE_COLOR borderColor_ = 0x80000008;
    std::int16_t borderWidth_ = 1;
};

}  // namespace korvex::forms
