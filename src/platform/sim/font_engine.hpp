#pragma once
// Text for the software device: FreeType glyphs found through fontconfig, measured and rendered
// the way classic GDI does it (hinted monochrome glyphs, no kerning, cell = ascent + descent).
// Each engine owns its FreeType library and face cache, so two devices never share state.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/gdi.hpp"

namespace korvex::platform::sim {

// The text cell with its top-left at (0,0): width = text extent cx, height = tmHeight; coverage is
// row-major, 0 or 255, underline and strike-out lines included.
struct GlyphMask {
    std::int32_t width = 0, height = 0;
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
    GlyphMask Render(const Face& face, std::string_view utf8) const;

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace korvex::platform::sim
