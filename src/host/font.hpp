#pragma once
// Font and picture objects of the host. Both are held by reference: two labels holding one font
// see one change. A font tells its holders about every change so they can repaint.

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/object.hpp"

namespace korvex::host {

class StdFont final : public Object {
  public:
    using Listener = std::function<void(std::string_view property)>;

    StdFont() = default;
    StdFont(std::string name, double size, bool bold = false);

    // Attributes. Size is in points, kept to four decimals as the host's currency type does.
    [[nodiscard]] const std::string& Name() const { return name_; }
    void Name(std::string value);
    [[nodiscard]] double Size() const { return size_; }
    void Size(double value);
    [[nodiscard]] bool Bold() const { return weight_ >= 600; }
    void Bold(bool value);
    [[nodiscard]] bool Italic() const { return italic_; }
    void Italic(bool value);
    [[nodiscard]] bool Underline() const { return underline_; }
    void Underline(bool value);
    [[nodiscard]] bool Strikethrough() const { return strikethrough_; }
    void Strikethrough(bool value);
    [[nodiscard]] std::int16_t Weight() const { return weight_; }
    void Weight(std::int16_t value);
    [[nodiscard]] std::int16_t Charset() const { return charset_; }
    void Charset(std::int16_t value);

    // A new font with the same attributes and no listeners.
    [[nodiscard]] std::shared_ptr<StdFont> Clone() const;
    [[nodiscard]] bool SameAttributes(const StdFont& other) const;

    // The listener lives as long as the returned token.
    [[nodiscard]] std::shared_ptr<void> Subscribe(Listener listener);

    [[nodiscard]] const ClassInfo& TypeInfo() const override;

  private:
    void Changed(std::string_view property);

    std::string name_ = "MS Sans Serif";
    double size_ = 8.25;
    std::int16_t weight_ = 400;
    bool italic_ = false;
    bool underline_ = false;
    bool strikethrough_ = false;
    std::int16_t charset_ = 0;
    std::vector<std::weak_ptr<Listener>> listeners_;
};

enum class PictureType : std::int16_t {
    None = 0,
    Bitmap = 1,
    Metafile = 2,
    Icon = 3,
    EnhMetafile = 4
};

// A picture: its pixels as 0xAARRGGBB words, top-down (alpha 0 is transparent, as in icons).
// Sizes read in pixels and, as the host reports them, in himetric units at 96 pixels per inch.
class StdPicture final : public Object {
  public:
    StdPicture() = default;
    StdPicture(PictureType type, std::int32_t width, std::int32_t height,
               std::vector<std::uint32_t> pixels);

    [[nodiscard]] PictureType Type() const { return type_; }
    [[nodiscard]] std::int32_t PixelWidth() const { return width_; }
    [[nodiscard]] std::int32_t PixelHeight() const { return height_; }
    [[nodiscard]] std::int32_t Width() const;   // himetric
    [[nodiscard]] std::int32_t Height() const;  // himetric
    [[nodiscard]] const std::vector<std::uint32_t>& Pixels() const { return pixels_; }
    // The platform's handle of the picture once a device has realised it; 0 before.
    [[nodiscard]] std::int32_t Handle() const { return handle_; }
    void Handle(std::int32_t value) { handle_ = value; }

    [[nodiscard]] bool SameContent(const StdPicture& other) const;
    [[nodiscard]] const ClassInfo& TypeInfo() const override;

  private:
    PictureType type_ = PictureType::None;
    std::int32_t width_ = 0;
    std::int32_t height_ = 0;
    std::vector<std::uint32_t> pixels_;
    std::int32_t handle_ = 0;
};

// Pixels to himetric (1/100 mm) at 96 pixels per inch, rounded as the host rounds.
std::int32_t PixelsToHimetric(std::int32_t pixels);

}  // namespace korvex::host
