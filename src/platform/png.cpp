// PNG through libpng's simplified API: it reports errors in the image record instead of
// longjmp-ing through our frames, so C++ objects here are always destroyed normally.

#include "platform/png.hpp"

#include "base/file.hpp"

#include <png.h>

#include <cstring>
#include <stdexcept>

namespace korvex::platform {

namespace {

// Frees libpng's state on every path out of a read or write.
struct ImageGuard {
    png_image image;
    ImageGuard() {
        std::memset(&image, 0, sizeof image);
        image.version = PNG_IMAGE_VERSION;
    }
    ~ImageGuard() { png_image_free(&image); }
    ImageGuard(const ImageGuard&) = delete;
    ImageGuard& operator=(const ImageGuard&) = delete;
};

[[noreturn]] void Fail(const std::string& what, const png_image& image) {
    throw std::runtime_error("PNG " + what + ": " +
                             (image.message[0] ? std::string(image.message) : "unknown error"));
}

void CheckView(const PixelView& pixels, const char* what) {
    if (pixels.width <= 0 || pixels.height <= 0 || pixels.bits == nullptr) {
        throw std::runtime_error(std::string("PNG ") + what + ": empty bitmap (" +
                                 std::to_string(pixels.width) + "x" +
                                 std::to_string(pixels.height) + ")");
    }
}

// 0x00RRGGBB words to packed R, G, B bytes.
std::vector<std::uint8_t> ToRgb(const PixelView& pixels) {
    const auto count =
        static_cast<std::size_t>(pixels.width) * static_cast<std::size_t>(pixels.height);
    std::vector<std::uint8_t> rgb(count * 3);
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t p = pixels.bits[i];
        rgb[i * 3 + 0] = static_cast<std::uint8_t>(p >> 16);
        rgb[i * 3 + 1] = static_cast<std::uint8_t>(p >> 8);
        rgb[i * 3 + 2] = static_cast<std::uint8_t>(p);
    }
    return rgb;
}

void PrepareWrite(png_image& image, const PixelView& pixels) {
    image.width = static_cast<png_uint_32>(pixels.width);
    image.height = static_cast<png_uint_32>(pixels.height);
    image.format = PNG_FORMAT_RGB;
}

// Finishes a read begun on `guard`: converts to RGBA (alpha then dropped) and packs the words.
Image FinishRead(ImageGuard& guard, const std::string& what) {
    png_image& image = guard.image;
    image.format = PNG_FORMAT_RGBA;
    // A cap on the pixel count keeps a hostile header from asking for gigabytes.
    constexpr std::uint64_t kMaxPixels = std::uint64_t{1} << 26;
    if (image.width == 0 || image.height == 0 ||
        std::uint64_t{image.width} * image.height > kMaxPixels) {
        throw std::runtime_error("PNG " + what + ": unsupported size " +
                                 std::to_string(image.width) + "x" + std::to_string(image.height));
    }
    std::vector<std::uint8_t> rgba(PNG_IMAGE_SIZE(image));
    if (!png_image_finish_read(&image, nullptr, rgba.data(), 0, nullptr)) Fail(what, image);

    Image out;
    out.width = static_cast<std::int32_t>(image.width);
    out.height = static_cast<std::int32_t>(image.height);
    out.pixels.resize(static_cast<std::size_t>(out.width) * static_cast<std::size_t>(out.height));
    for (std::size_t i = 0; i < out.pixels.size(); ++i) {
        out.pixels[i] = (static_cast<std::uint32_t>(rgba[i * 4 + 0]) << 16) |
                        (static_cast<std::uint32_t>(rgba[i * 4 + 1]) << 8) |
                        static_cast<std::uint32_t>(rgba[i * 4 + 2]);
    }
    return out;
}

}  // namespace

void WritePng(const std::string& path, const PixelView& pixels) {
    const std::vector<std::uint8_t> bytes = EncodePng(pixels);
    WriteFileReplacing(path, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

std::vector<std::uint8_t> EncodePng(const PixelView& pixels) {
    CheckView(pixels, "encode");
    const std::vector<std::uint8_t> rgb = ToRgb(pixels);
    ImageGuard guard;
    PrepareWrite(guard.image, pixels);
    // First call measures, second writes.
    png_alloc_size_t size = 0;
    if (!png_image_write_to_memory(&guard.image, nullptr, &size, 0, rgb.data(), 0, nullptr)) {
        Fail("encode", guard.image);
    }
    std::vector<std::uint8_t> out(size);
    if (!png_image_write_to_memory(&guard.image, out.data(), &size, 0, rgb.data(), 0, nullptr)) {
        Fail("encode", guard.image);
    }
    out.resize(size);
    return out;
}

Image ReadPng(const std::string& path) {
    const std::string what = "read " + path;
    ImageGuard guard;
    if (!png_image_begin_read_from_file(&guard.image, path.c_str())) Fail(what, guard.image);
    return FinishRead(guard, what);
}

Image DecodePng(std::span<const std::uint8_t> bytes) {
    ImageGuard guard;
    if (bytes.empty()) throw std::runtime_error("PNG decode: no data");
    if (!png_image_begin_read_from_memory(&guard.image, bytes.data(), bytes.size())) {
        Fail("decode", guard.image);
    }
    return FinishRead(guard, "decode");
}

}  // namespace korvex::platform
