#pragma once
// The button's built-in images: loading an icon group of the library's resources as a picture
// object (as the platform's icon loader picks and scales an image), and the emboss filter that
// gives a disabled button its one-colour image.

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "host/font.hpp"
#include "host/ole_types.hpp"
#include "platform/gdi.hpp"

namespace korvex::foundation {

// LoadImageA's flag for a colour image, the one the controls pass.
inline constexpr std::int32_t LR_COLOR = 2;
// The requested size that means "the group's default": the image nearest the system icon size,
// returned at its own size.
inline constexpr std::int32_t kDefaultIconSize = -1;
// The system icon size the default request is matched against.
inline constexpr std::int32_t kSystemIconSize = 32;

// Icon group `id` ("icons/<id>.ico" among the resources) as an Icon picture of size x size
// pixels. The image picked is the group's exact size if it has one, else the smallest larger one
// scaled down, else the largest smaller one scaled up (nearest pixel); among images of one size
// the deepest colour wins. A missing or unreadable group gives nullptr, not an error. `flags` are
// LoadImageA's; colour is the only mode the library carries, so they pick nothing here.
std::shared_ptr<host::StdPicture> LoadResImage(std::int32_t id, std::int32_t size,
                                               std::int32_t flags);

// The same from the bytes of an .ico file; nullptr when they are no icon group.
std::shared_ptr<host::StdPicture> LoadIconImage(std::span<const std::uint8_t> ico,
                                                std::int32_t size);

// The pixels of `picture` drawn over a background of `background` (0x00RRGGBB), alpha blended,
// as an image box shows an icon on a surface of that colour. Words come back 0x00RRGGBB.
std::vector<std::uint32_t> ComposeOnColor(const host::StdPicture& picture,
                                          std::uint32_t background);

// The pixel table the emboss filter reads holds at most this many pixels each way; pixels
// beyond it are neither read nor written.
inline constexpr std::int32_t kEmbossTableSize = 501;

// Writes the embossed copy of `source` into `destination`, both width x height words of
// 0x??RRGGBB (the top byte of the source is ignored; the destination keeps its own). For every
// pixel (x, y) with 1 <= x <= width - 2 and 1 <= y <= height - 2 each channel becomes
// |c(x, y) - c(x + 1, y + 1) + base| capped at 255, as the host's RGB function caps a channel;
// the border row and column are not written, so they keep what the destination held.
void EmbossPicture(platform::Gdi& gdi, std::span<const std::uint32_t> source,
                   std::span<std::uint32_t> destination, std::int32_t width, std::int32_t height,
                   host::OLE_COLOR baseColor);

}  // namespace korvex::foundation
