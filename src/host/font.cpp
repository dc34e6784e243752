#include "host/font.hpp"

#include <algorithm>
#include <cmath>

#include "base/error.hpp"
#include "host/type_info.hpp"

namespace korvex::host {

StdFont::StdFont(std::string name, double size, bool bold) : name_(std::move(name)) {
    Size(size);
    weight_ = bold ? 700 : 400;
}

void StdFont::Name(std::string value) {
    if (value == name_) return;
    name_ = std::move(value);
    Changed("Name");
}

void StdFont::Size(double value) {
    if (!(value > 0) || value > 32767) throw HostError(kErrInvalidPropertyValue, "StdFont");
    value = std::round(value * 10000.0) / 10000.0;
    if (value == size_) return;
    size_ = value;
    Changed("Size");
}

void StdFont::Bold(bool value) {
    if (value == Bold()) return;
    weight_ = value ? 700 : 400;
    Changed("Bold");
}

void StdFont::Italic(bool value) {
    if (value == italic_) return;
    italic_ = value;
    Changed("Italic");
}

void StdFont::Underline(bool value) {
    if (value == underline_) return;
    underline_ = value;
    Changed("Underline");
}

void StdFont::Strikethrough(bool value) {
    if (value == strikethrough_) return;
    strikethrough_ = value;
    Changed("Strikethrough");
}

void StdFont::Weight(std::int16_t value) {
    if (value < 0 || value > 1000) throw HostError(kErrInvalidPropertyValue, "StdFont");
    if (value == weight_) return;
    weight_ = value;
    Changed("Weight");
}

void StdFont::Charset(std::int16_t value) {
    if (value == charset_) return;
    charset_ = value;
    Changed("Charset");
}

std::shared_ptr<StdFont> StdFont::Clone() const {
    auto copy = std::make_shared<StdFont>();
    copy->name_ = name_;
    copy->size_ = size_;
    copy->weight_ = weight_;
    copy->italic_ = italic_;
    copy->underline_ = underline_;
    copy->strikethrough_ = strikethrough_;
    copy->charset_ = charset_;
    return copy;
}

bool StdFont::SameAttributes(const StdFont& other) const {
    return name_ == other.name_ && size_ == other.size_ && weight_ == other.weight_ &&
           italic_ == other.italic_ && underline_ == other.underline_ &&
           strikethrough_ == other.strikethrough_ && charset_ == other.charset_;
}

std::shared_ptr<void> StdFont::Subscribe(Listener listener) {
    auto holder = std::make_shared<Listener>(std::move(listener));
    listeners_.push_back(holder);
    return holder;
}

void StdFont::Changed(std::string_view property) {
    std::erase_if(listeners_, [](const std::weak_ptr<Listener>& w) { return w.expired(); });
    // A listener may subscribe or drop others while we notify, so walk a copy.
    auto snapshot = listeners_;
    for (const auto& weak : snapshot) {
        if (auto listener = weak.lock()) (*listener)(property);
    }
}

const ClassInfo& StdFont::TypeInfo() const {
    static const ClassInfo info = ClassBuilder<StdFont>("StdFont")
                                      .Property(KORVEX_PROPERTY(Name))
                                      .Property(KORVEX_PROPERTY(Size))
                                      .Property(KORVEX_PROPERTY(Bold))
                                      .Property(KORVEX_PROPERTY(Italic))
                                      .Property(KORVEX_PROPERTY(Underline))
                                      .Property(KORVEX_PROPERTY(Strikethrough))
                                      .Property(KORVEX_PROPERTY(Weight))
                                      .Property(KORVEX_PROPERTY(Charset))
                                      .Build();
    return info;
}

std::int32_t PixelsToHimetric(std::int32_t pixels) {
    return static_cast<std::int32_t>(std::lround(pixels * 2540.0 / 96.0));
}

StdPicture::StdPicture(PictureType type, std::int32_t width, std::int32_t height,
                       std::vector<std::uint32_t> pixels)
    : type_(type), width_(width), height_(height), pixels_(std::move(pixels)) {
    if (width < 0 || height < 0 ||
        pixels_.size() != static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) {
        throw HostError(kErrInvalidPicture, "StdPicture");
    }
}

std::int32_t StdPicture::Width() const {
    return PixelsToHimetric(width_);
}
std::int32_t StdPicture::Height() const {
    return PixelsToHimetric(height_);
}

bool StdPicture::SameContent(const StdPicture& other) const {
    return type_ == other.type_ && width_ == other.width_ && height_ == other.height_ &&
           pixels_ == other.pixels_;
}

const ClassInfo& StdPicture::TypeInfo() const {
    static const ClassInfo info = ClassBuilder<StdPicture>("StdPicture")
                                      .ReadOnly(KORVEX_READONLY(Handle))
                                      .ReadOnly(KORVEX_READONLY(Type), "PictureTypeConstants")
                                      .ReadOnly(KORVEX_READONLY(Width))
                                      .ReadOnly(KORVEX_READONLY(Height))
                                      .Build();
    return info;
}

}  // namespace korvex::host
