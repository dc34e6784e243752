#pragma once
// Text for the software device: FreeType glyphs found through fontconfig, measured and rendered
// the way classic GDI does it (hinted monochrome glyphs, no kerning, cell = ascent + descent).
// Each engine owns its FreeType library and face cache, so two devices never share state.

#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/gdi.hpp"

namespace korvex::platform::sim {

// Columns [left, left + width) of the text cell, whose top-left is (0,0); height = tmHeight;
// coverage is row-major, 0 or 255, underline and strike-out lines included.
struct GlyphMask {
    std::int32_t left = 0, width = 0, height = 0;
    std::vector<std::uint8_t> coverage;
};

class FontEngine {
  public:
    FontEngine();
    ~FontEngine();
    FontEngine(const FontEngine&) = delete;
    FontEngine& operator=(const FontEngine&) = delete;

    struct Face;  // opaque, owned and cached by the engine

    const Face& Realize(const LOGFONT& request);
    TEXTMETRIC Metrics(const Face& face) const;
    SIZE Extent(const Face& face, std::string_view utf8) const;
    std::string FaceName(const Face& face) const;
    // Only the columns [from, to) of the cell are built, so a long text costs memory for what
    // can be seen, not for its whole extent.
    GlyphMask Render(const Face& face, std::string_view utf8, std::int64_t from = 0,
                     std::int64_t to = std::numeric_limits<std::int64_t>::max()) const;

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace korvex::platform::sim
