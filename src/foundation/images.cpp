#include "foundation/images.hpp"

#include <algorithm>
#include <cassert>
#include <cstdlib>
#include <exception>
#include <optional>
#include <string>

#include "base/resources.hpp"
#include "foundation/color.hpp"
#include "platform/png.hpp"

namespace korvex::foundation {

namespace {

// ---------------------------------------------------------------------------------------------
// ICO reading. The layout, all little-endian:
//   ICONDIR       reserved 0, type 1 (icon), count
//   ICONDIRENTRY  width, height (0 means 256), colour count, reserved, planes, bit count,
//                 bytes in the image, offset of the image from the start of the file
//   image         a PNG file, or a BITMAPINFOHEADER whose height counts the XOR bitmap and the
//                 AND mask together, a palette for 8 bits or fewer, the XOR rows bottom-up and
//                 the 1-bit AND rows bottom-up, every row padded to 4 bytes.

struct Image {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::vector<std::uint32_t> pixels;  // 0xAARRGGBB, top-down
};

struct DirEntry {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t bits = 0;
    std::span<const std::uint8_t> data;
};

std::uint16_t U16(std::span<const std::uint8_t> b, std::size_t at) {
    return static_cast<std::uint16_t>(b[at] | (b[at + 1] << 8));
}

std::uint32_t U32(std::span<const std::uint8_t> b, std::size_t at) {
    return static_cast<std::uint32_t>(b[at]) | (static_cast<std::uint32_t>(b[at + 1]) << 8) |
           (static_cast<std::uint32_t>(b[at + 2]) << 16) |
           (static_cast<std::uint32_t>(b[at + 3]) << 24);
}

std::optional<std::vector<DirEntry>> ReadDirectory(std::span<const std::uint8_t> ico) {
    if (ico.size() < 6 || U16(ico, 0) != 0 || U16(ico, 2) != 1) return std::nullopt;
    const std::size_t count = U16(ico, 4);
    if (count == 0 || ico.size() < 6 + 16 * count) return std::nullopt;
    std::vector<DirEntry> entries;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t at = 6 + 16 * i;
        const std::size_t length = U32(ico, at + 8);
        const std::size_t offset = U32(ico, at + 12);
        if (offset > ico.size() || length > ico.size() - offset) return std::nullopt;
        DirEntry entry;
        entry.width = ico[at] == 0 ? 256 : ico[at];
        entry.height = ico[at + 1] == 0 ? 256 : ico[at + 1];
        entry.bits = U16(ico, at + 6);
        entry.data = ico.subspan(offset, length);
        entries.push_back(entry);
    }
    return entries;
}

bool IsPng(std::span<const std::uint8_t> data) {
    static constexpr std::uint8_t kSignature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    return data.size() >= 8 &&
           std::equal(std::begin(kSignature), std::end(kSignature), data.begin());
}

std::optional<Image> DecodeBmpEntry(std::span<const std::uint8_t> data) {
    if (data.size() < 40) return std::nullopt;
    const std::uint32_t header = U32(data, 0);
    const auto width = static_cast<std::int32_t>(U32(data, 4));
    const auto doubled = static_cast<std::int32_t>(U32(data, 8));
    const std::uint16_t bits = U16(data, 14);
    const std::uint32_t compression = U32(data, 16);
    std::uint32_t colours = U32(data, 32);
    if (header < 40 || header > data.size() || compression != 0) return std::nullopt;
    if (width <= 0 || width > 256 || doubled <= 0 || doubled > 512 || doubled % 2 != 0)
        return std::nullopt;
    if (bits != 1 && bits != 4 && bits != 8 && bits != 24 && bits != 32) return std::nullopt;
    const std::int32_t height = doubled / 2;
    if (bits <= 8 && colours == 0) colours = 1u << bits;
    if (bits > 8) colours = 0;
    if (colours > 256) return std::nullopt;

    const std::size_t palette = header;
    const std::size_t xorStart = palette + 4 * std::size_t{colours};
    const std::size_t xorStride = ((static_cast<std::size_t>(width) * bits + 31) / 32) * 4;
    const std::size_t andStride = ((static_cast<std::size_t>(width) + 31) / 32) * 4;
    const std::size_t andStart = xorStart + xorStride * static_cast<std::size_t>(height);
    if (andStart + andStride * static_cast<std::size_t>(height) > data.size()) return std::nullopt;

    Image image{width, height,
                std::vector<std::uint32_t>(static_cast<std::size_t>(width) * height)};
    bool anyAlpha = false;
    for (std::int32_t y = 0; y < height; ++y) {
        const std::size_t row = xorStart + xorStride * static_cast<std::size_t>(height - 1 - y);
        for (std::int32_t x = 0; x < width; ++x) {
            const auto ux = static_cast<std::size_t>(x);
            std::uint32_t word = 0;  // 0xAARRGGBB
            if (bits == 32) {
                word = U32(data, row + 4 * ux);
                anyAlpha = anyAlpha || (word >> 24) != 0;
            } else if (bits == 24) {
                const std::size_t at = row + 3 * ux;
                word = data[at] | (data[at + 1] << 8) |
                       (static_cast<std::uint32_t>(data[at + 2]) << 16);
            } else {
                const std::size_t bit = ux * bits;
                const std::uint8_t byte = data[row + bit / 8];
                const unsigned index = (byte >> (8 - bits - bit % 8)) & ((1u << bits) - 1);
                if (index < colours)
                    word = U32(data, palette + 4 * std::size_t{index}) & 0x00FFFFFFu;
            }
            image.pixels[static_cast<std::size_t>(y) * width + ux] = word;
        }
    }
    // An image with an alpha channel is shaped by it; any other by its AND mask, whose set bits
    // are the transparent pixels (screen-inverting pixels are not kept apart here).
    if (!anyAlpha) {
        for (std::int32_t y = 0; y < height; ++y) {
            const std::size_t row = andStart + andStride * static_cast<std::size_t>(height - 1 - y);
            for (std::int32_t x = 0; x < width; ++x) {
                const auto ux = static_cast<std::size_t>(x);
                const bool transparent = (data[row + ux / 8] >> (7 - ux % 8)) & 1;
                std::uint32_t& word = image.pixels[static_cast<std::size_t>(y) * width + ux];
                word = transparent ? (word & 0x00FFFFFFu) : (word | 0xFF000000u);
            }
        }
    }
    return image;
}

std::optional<Image> DecodeEntry(const DirEntry& entry) {
    if (IsPng(entry.data)) {
        try {
            // The PNG reader keeps colours only, so a PNG entry comes out opaque; the library's
            // own icons are BMP entries and keep their alpha.
            platform::Image png = platform::DecodePng(entry.data);
            Image image{png.width, png.height, std::move(png.pixels)};
            for (std::uint32_t& word : image.pixels) word |= 0xFF000000u;
            return image;
        } catch (const std::exception&) {
            return std::nullopt;
        }
    }
    return DecodeBmpEntry(entry.data);
}

// The platform's choice within a group: the exact size, else the smallest of the larger images
// (scaling down loses least), else the largest of the smaller ones; ties go to more colour bits,
// then to the earlier entry.
const DirEntry* PickEntry(const std::vector<DirEntry>& entries, std::int32_t size) {
    const DirEntry* best = nullptr;
    auto rank = [size](const DirEntry& e) {
        const std::int32_t extent = std::max(e.width, e.height);
        if (e.width == size && e.height == size) return std::pair{0, 0};
        if (extent >= size) return std::pair{1, extent - size};
        return std::pair{2, size - extent};
    };
    for (const DirEntry& entry : entries) {
        if (best == nullptr || rank(entry) < rank(*best) ||
            (rank(entry) == rank(*best) && entry.bits > best->bits)) {
            best = &entry;
        }
    }
    return best;
}

std::vector<std::uint32_t> ScaleNearest(const Image& image, std::int32_t width,
                                        std::int32_t height) {
    std::vector<std::uint32_t> out(static_cast<std::size_t>(width) *
                                   static_cast<std::size_t>(height));
    for (std::int32_t y = 0; y < height; ++y) {
        const std::int32_t sy = y * image.height / height;
        for (std::int32_t x = 0; x < width; ++x) {
            const std::int32_t sx = x * image.width / width;
            out[static_cast<std::size_t>(y) * width + x] =
                image.pixels[static_cast<std::size_t>(sy) * image.width + sx];
        }
    }
    return out;
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Loading

std::shared_ptr<host::StdPicture> LoadIconImage(std::span<const std::uint8_t> ico,
                                                std::int32_t size) {
    const auto entries = ReadDirectory(ico);
    if (!entries) return nullptr;
    const DirEntry* entry = PickEntry(*entries, size > 0 ? size : kSystemIconSize);
    const std::optional<Image> image = DecodeEntry(*entry);
    if (!image) return nullptr;
    // Without a size the image keeps its own; otherwise it is stretched to what was asked.
    const std::int32_t width = size > 0 ? size : image->width;
    const std::int32_t height = size > 0 ? size : image->height;
    std::vector<std::uint32_t> pixels = (width == image->width && height == image->height)
                                            ? image->pixels
                                            : ScaleNearest(*image, width, height);
    return std::make_shared<host::StdPicture>(host::PictureType::Icon, width, height,
                                              std::move(pixels));
}

std::shared_ptr<host::StdPicture> LoadResImage(std::int32_t id, std::int32_t size,
                                               std::int32_t flags) {
    static_cast<void>(flags);
    const std::span<const std::uint8_t> ico =
        resources::Find("icons/" + std::to_string(id) + ".ico");
    if (ico.empty()) return nullptr;
    return LoadIconImage(ico, size);
}

std::vector<std::uint32_t> ComposeOnColor(const host::StdPicture& picture,
                                          std::uint32_t background) {
    std::vector<std::uint32_t> out;
    out.reserve(picture.Pixels().size());
    for (const std::uint32_t word : picture.Pixels()) {
        const std::uint32_t alpha = word >> 24;
        std::uint32_t mixed = 0;
        for (int shift = 0; shift <= 16; shift += 8) {
            const std::uint32_t fg = (word >> shift) & 0xFF;
            const std::uint32_t bg = (background >> shift) & 0xFF;
            mixed |= ((fg * alpha + bg * (255 - alpha) + 127) / 255) << shift;
        }
        out.push_back(mixed);
    }
    return out;
}

// ---------------------------------------------------------------------------------------------
// Emboss: each channel is the difference to the lower-right neighbour lifted by the base
// colour, so flat areas take the base colour and edges show as lighter or darker lines.

void EmbossPicture(platform::Gdi& gdi, std::span<const std::uint32_t> source,
                   std::span<std::uint32_t> destination, std::int32_t width, std::int32_t height,
                   host::OLE_COLOR baseColor) {
    assert(width >= 0 && height >= 0 && "EmbossPicture needs a non-negative size");
    assert(source.size() >= static_cast<std::size_t>(width) * static_cast<std::size_t>(height) &&
           destination.size() >= source.size() && "EmbossPicture needs width * height pixels");
    const auto base = static_cast<std::int32_t>(OleColorToRGB(gdi, baseColor));
    const int baseChannel[3] = {RedComponent(base), GreenComponent(base), BlueComponent(base)};
    // The table ends at index kEmbossTableSize - 1, and (x + 1, y + 1) must lie inside it.
    const std::int32_t lastX = std::min(width - 2, kEmbossTableSize - 2);
    const std::int32_t lastY = std::min(height - 2, kEmbossTableSize - 2);
    const auto channel = [](std::uint32_t word, int i) {
        // Pixel words are 0x00RRGGBB: red is the third byte.
        return static_cast<int>((word >> (16 - 8 * i)) & 0xFF);
    };
    for (std::int32_t y = 1; y <= lastY; ++y) {
        for (std::int32_t x = 1; x <= lastX; ++x) {
            const std::uint32_t here = source[static_cast<std::size_t>(y) * width + x];
            const std::uint32_t below = source[static_cast<std::size_t>(y + 1) * width + x + 1];
            std::uint32_t& out = destination[static_cast<std::size_t>(y) * width + x];
            std::uint32_t word = out & 0xFF000000u;
            for (int i = 0; i < 3; ++i) {
                const int value =
                    std::min(255, std::abs(channel(here, i) - channel(below, i) + baseChannel[i]));
                word |= static_cast<std::uint32_t>(value) << (16 - 8 * i);
            }
            out = word;
        }
    }
}

}  // namespace korvex::foundation
