// Text for the software device, measured and drawn the way classic GDI draws TrueType text.
//
// Sections: substitution · engine state · realisation · metrics · glyphs · public API
//
// What GDI does and this mirrors:
// - The cell is tmAscent + tmDescent tall, from the OS/2 "win" metrics (the clipping box Windows
//   uses), each scaled to pixels and rounded up.
// - Advances are the hinted, whole-pixel advances; no kerning (TextOut never kerns).
// - Glyphs are hinted monochrome bitmaps, so text is crisp and pixel tests see only 0 or 255.
// - A bold request without a bold face is emboldened by OR-ing the glyph with itself shifted one
//   pixel right and widening each advance by one pixel; an italic request without an italic face
//   is sheared.
// - Underline and strike-out are solid bars across the whole extent, drawn after the glyphs.

#include "platform/sim/font_engine.hpp"

#include "base/utf8.hpp"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_TRUETYPE_TABLES_H
#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <stdexcept>
#include <tuple>
#include <unordered_map>

namespace korvex::platform::sim {

namespace {

// ---------------------------------------------------------------------------------------------
// Substitution

// Faces the controls name, mapped to metric-compatible or metric-close free faces.
// - Arial, Times New Roman, Courier New: the Liberation faces share their advance widths exactly.
// - Tahoma, MS Sans Serif, Microsoft Sans Serif, MS Shell Dlg, System: Liberation Sans. These
//   dialog faces average about 0.44-0.45 em per character, as Arial does; DejaVu Sans is about
//   15% wider and would overflow captions laid out for them.
// - Verdana: DejaVu Sans, which descends from Bitstream Vera and was drawn to Verdana's wide,
//   large-x-height proportions; its average width is within a few percent of Verdana's.
// An empty or unknown face falls back to Liberation Sans, so the result never depends on the
// machine's fontconfig default.
struct Substitute {
    std::string_view requested;
    std::string_view family;
};
constexpr Substitute kSubstitutes[] = {
    {"arial", "Liberation Sans"},
    {"helvetica", "Liberation Sans"},
    {"times new roman", "Liberation Serif"},
    {"times", "Liberation Serif"},
    {"courier new", "Liberation Mono"},
    {"courier", "Liberation Mono"},
    {"tahoma", "Liberation Sans"},
    {"ms sans serif", "Liberation Sans"},
    {"microsoft sans serif", "Liberation Sans"},
    {"ms shell dlg", "Liberation Sans"},
    {"ms shell dlg 2", "Liberation Sans"},
    {"system", "Liberation Sans"},
    {"verdana", "DejaVu Sans"},
};
constexpr std::string_view kDefaultFamily = "Liberation Sans";
// What GDI reports for a request without a face name.
constexpr std::string_view kDefaultFaceName = "Arial";

// The classic 8-point dialog font's cell, used when a request gives no height.
constexpr std::int32_t kDefaultCellHeight = 13;
// Larger requests are clamped: a glyph bitmap grows with the square of the size, and nothing
// the controls draw comes near this.
constexpr std::int32_t kMaxPixels = 2048;

std::string Lower(std::string_view text) {
    std::string out(text);
    for (char& c : out) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return out;
}

std::string_view SubstituteFamily(std::string_view face) {
    const std::string key = Lower(face);
    for (const Substitute& s : kSubstitutes) {
        if (s.requested == key) return s.family;
    }
    return face;
}

// Scales font units to pixels: value * ppem / unitsPerEm, rounded up, to nearest or down.
std::int32_t ScaleCeil(std::int64_t value, std::int64_t ppem, std::int64_t upem) {
    const std::int64_t num = value * ppem;
    return static_cast<std::int32_t>(num >= 0 ? (num + upem - 1) / upem : -((-num) / upem));
}
std::int32_t ScaleRound(std::int64_t value, std::int64_t ppem, std::int64_t upem) {
    const std::int64_t num = value * ppem;
    return static_cast<std::int32_t>(num >= 0 ? (num + upem / 2) / upem
                                              : -((-num + upem / 2) / upem));
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Engine state

struct FontEngine::Face {
    // A rendered glyph: one byte per pixel, 0 or 1, already emboldened when that is synthesised.
    struct Glyph {
        std::int32_t advance = 0;
        std::int32_t left = 0;  // from the pen position to the bitmap's first column
        std::int32_t top = 0;   // from the baseline up to the bitmap's first row
        std::int32_t width = 0;
        std::int32_t rows = 0;
        std::vector<std::uint8_t> bits;
    };

    FT_Face ft = nullptr;
    std::string requestedName;
    std::int32_t ppem = 0;
    bool fakeBold = false;
    bool fakeItalic = false;
    TEXTMETRIC metrics;
    std::int32_t underlineTop = 0;  // rows from the cell's top
    std::int32_t underlineSize = 1;
    std::int32_t strikeTop = 0;
    std::int32_t strikeSize = 1;
    // Glyphs are rendered on first use; the cache belongs to this face of this engine only.
    mutable std::unordered_map<char32_t, Glyph> glyphs;

    Face() = default;
    Face(const Face&) = delete;
    Face& operator=(const Face&) = delete;
    ~Face() {
        if (ft) FT_Done_Face(ft);
    }

    const Glyph& GlyphFor(char32_t cp) const;
};

struct FontEngine::Impl {
    FT_Library library = nullptr;
    // Loaded on the first realisation (a few milliseconds), so devices that never draw text
    // pay nothing; owned, so engines never share fontconfig state.
    FcConfig* config = nullptr;
    // Requests are cached by every field that changes the result, the face name as spelled,
    // because the realised font reports that spelling back.
    using Key = std::tuple<std::string, std::int32_t, std::int32_t, bool, bool, bool, bool>;
    std::map<Key, std::unique_ptr<Face>> faces;
    // Fontconfig answers by (family, bold, italic): file, index, and whether the face is really
    // bold and italic.
    struct Match {
        std::string file;
        int index = 0;
        bool bold = false;
        bool italic = false;
    };
    std::map<std::tuple<std::string, bool, bool>, Match> matches;

    Match Resolve(std::string_view family, bool bold, bool italic);
    std::unique_ptr<Face> Open(const LOGFONT& request, bool bold, bool italic);
};

// ---------------------------------------------------------------------------------------------
// Realisation

namespace {

bool FamilyMatches(FcPattern* font, std::string_view family) {
    const std::string wanted = Lower(family);
    FcChar8* value = nullptr;
    for (int n = 0; FcPatternGetString(font, FC_FAMILY, n, &value) == FcResultMatch; ++n) {
        if (Lower(reinterpret_cast<const char*>(value)) == wanted) return true;
    }
    return false;
}

struct PatternDeleter {
    void operator()(FcPattern* p) const { FcPatternDestroy(p); }
};
using PatternPtr = std::unique_ptr<FcPattern, PatternDeleter>;

PatternPtr MatchFamily(FcConfig* config, std::string_view family, bool bold, bool italic) {
    PatternPtr pattern(FcPatternCreate());
    const std::string name(family);
    FcPatternAddString(pattern.get(), FC_FAMILY, reinterpret_cast<const FcChar8*>(name.c_str()));
    FcPatternAddInteger(pattern.get(), FC_WEIGHT, bold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
    FcPatternAddInteger(pattern.get(), FC_SLANT, italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    FcPatternAddBool(pattern.get(), FC_SCALABLE, FcTrue);
    FcConfigSubstitute(config, pattern.get(), FcMatchPattern);
    FcDefaultSubstitute(pattern.get());
    FcResult result = FcResultNoMatch;
    return PatternPtr(FcFontMatch(config, pattern.get(), &result));
}

}  // namespace

FontEngine::Impl::Match FontEngine::Impl::Resolve(std::string_view family, bool bold, bool italic) {
    auto key = std::make_tuple(Lower(family), bold, italic);
    if (auto it = matches.find(key); it != matches.end()) return it->second;

    if (!config) {
        config = FcInitLoadConfigAndFonts();
        if (!config)
            throw std::runtime_error("font engine: fontconfig failed to load its configuration");
    }
    PatternPtr font = MatchFamily(config, family, bold, italic);
    // Fontconfig always answers with something; an answer of another family is replaced by our
    // own default, so an unknown face looks the same on every machine that has it.
    if (!font || !FamilyMatches(font.get(), family)) {
        PatternPtr fallback = MatchFamily(config, kDefaultFamily, bold, italic);
        if (fallback && FamilyMatches(fallback.get(), kDefaultFamily)) font = std::move(fallback);
    }
    if (!font) throw std::runtime_error("font engine: fontconfig found no font at all");

    Match match;
    FcChar8* file = nullptr;
    if (FcPatternGetString(font.get(), FC_FILE, 0, &file) != FcResultMatch) {
        throw std::runtime_error("font engine: fontconfig match has no file for \"" +
                                 std::string(family) + "\"");
    }
    match.file = reinterpret_cast<const char*>(file);
    FcPatternGetInteger(font.get(), FC_INDEX, 0, &match.index);
    int weight = FC_WEIGHT_REGULAR;
    int slant = FC_SLANT_ROMAN;
    FcPatternGetInteger(font.get(), FC_WEIGHT, 0, &weight);
    FcPatternGetInteger(font.get(), FC_SLANT, 0, &slant);
    match.bold = weight >= FC_WEIGHT_DEMIBOLD;
    match.italic = slant != FC_SLANT_ROMAN;
    matches.emplace(std::move(key), match);
    return match;
}

namespace {

// The average character width as OS/2 tables before version 3 defined it: lowercase letters and
// space weighted by their frequency in English text. Later tables average every glyph, which the
// free faces' large character sets inflate (Liberation Sans says 0.57 em where Arial, with the
// same Latin advances, says 0.44 em), while GDI's figure for Arial is the weighted one. Returns
// font units, or 0 when a letter is missing.
std::int64_t WeightedAverageWidth(FT_Face ft) {
    static constexpr int kWeights[27] = {64, 14, 27, 35, 100, 20, 14, 42, 63, 3, 6,  35, 20, 56,
                                         56, 17, 4,  49, 56,  71, 31, 10, 18, 3, 18, 2,  166};
    std::int64_t sum = 0;
    for (int k = 0; k < 27; ++k) {
        const FT_ULong cp = k < 26 ? static_cast<FT_ULong>('a' + k) : FT_ULong{' '};
        const FT_UInt index = FT_Get_Char_Index(ft, cp);
        if (index == 0 || FT_Load_Glyph(ft, index, FT_LOAD_NO_SCALE | FT_LOAD_NO_HINTING) != 0) {
            return 0;
        }
        sum += static_cast<std::int64_t>(ft->glyph->advance.x) * kWeights[k];
    }
    return (sum + 500) / 1000;
}

}  // namespace

std::unique_ptr<FontEngine::Face> FontEngine::Impl::Open(const LOGFONT& request, bool bold,
                                                         bool italic) {
    const std::string_view family =
        request.lfFaceName.empty() ? kDefaultFamily : SubstituteFamily(request.lfFaceName);
    const Match match = Resolve(family, bold, italic);

    auto face = std::make_unique<Face>();
    if (FT_New_Face(library, match.file.c_str(), match.index, &face->ft) != 0) {
        face->ft = nullptr;
        throw std::runtime_error("font engine: FreeType cannot open " + match.file);
    }
    FT_Face ft = face->ft;
    if (!FT_IS_SCALABLE(ft) || ft->units_per_EM == 0) {
        throw std::runtime_error("font engine: " + match.file + " is not a scalable font");
    }
    face->requestedName =
        request.lfFaceName.empty() ? std::string(kDefaultFaceName) : request.lfFaceName;
    face->fakeBold = bold && !match.bold;
    face->fakeItalic = italic && !match.italic;

    // The OS/2 "win" metrics bound every glyph and are what GDI's cell is made of; fonts without
    // an OS/2 table fall back to the horizontal header.
    const auto* os2 = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(ft, FT_SFNT_OS2));
    const auto* hhea = static_cast<const TT_HoriHeader*>(FT_Get_Sfnt_Table(ft, FT_SFNT_HHEA));
    const auto* post = static_cast<const TT_Postscript*>(FT_Get_Sfnt_Table(ft, FT_SFNT_POST));
    const std::int64_t upem = ft->units_per_EM;
    std::int64_t winAscent = ft->ascender;
    std::int64_t winDescent = -ft->descender;
    if (os2 && os2->version != 0xFFFF && os2->usWinAscent + os2->usWinDescent > 0) {
        winAscent = os2->usWinAscent;
        winDescent = os2->usWinDescent;
    }
    if (winAscent + winDescent <= 0) winAscent = upem, winDescent = 0;

    // Height rules: negative asks for the em size, positive for the cell height, zero for the
    // default cell. A cell request keeps exactly the requested height, as GDI does.
    TEXTMETRIC& tm = face->metrics;
    std::int32_t cell = std::clamp(request.lfHeight, -kMaxPixels, kMaxPixels);
    if (cell == 0) cell = kDefaultCellHeight;
    if (cell < 0) {
        face->ppem = std::max<std::int32_t>(1, -cell);
        tm.tmAscent = ScaleCeil(winAscent, face->ppem, upem);
        tm.tmDescent = ScaleCeil(winDescent, face->ppem, upem);
    } else {
        face->ppem = std::max<std::int32_t>(1, ScaleRound(upem, cell, winAscent + winDescent));
        tm.tmAscent = ScaleRound(winAscent, cell, winAscent + winDescent);
        tm.tmDescent = cell - tm.tmAscent;
    }
    tm.tmHeight = tm.tmAscent + tm.tmDescent;
    tm.tmInternalLeading = std::max(0, tm.tmHeight - face->ppem);
    // The line gap the horizontal header asks for beyond the win box.
    if (hhea) {
        const std::int64_t hheaSpan = hhea->Ascender - hhea->Descender + hhea->Line_Gap;
        tm.tmExternalLeading =
            std::max(0, ScaleRound(hheaSpan - (winAscent + winDescent), face->ppem, upem));
    }

    // The average character width in font units, then the horizontal size: a width request
    // scales the glyphs so the average character is that wide.
    std::int64_t avgUnits = WeightedAverageWidth(ft);
    if (avgUnits == 0 && os2 && os2->version != 0xFFFF) avgUnits = os2->xAvgCharWidth;
    FT_UInt xppem = static_cast<FT_UInt>(face->ppem);
    if (request.lfWidth > 0 && avgUnits > 0) {
        const std::int64_t avgAtPpem = std::max<std::int64_t>(1, avgUnits * face->ppem);
        const std::int64_t width = std::min(request.lfWidth, kMaxPixels);
        xppem = static_cast<FT_UInt>(std::clamp<std::int64_t>(
            (width * upem * face->ppem + avgAtPpem / 2) / avgAtPpem, 1, kMaxPixels));
    }
    if (FT_Set_Pixel_Sizes(ft, xppem, static_cast<FT_UInt>(face->ppem)) != 0) {
        throw std::runtime_error("font engine: cannot size " + match.file);
    }
    if (face->fakeItalic) {
        // The same 12-degree-ish shear FreeType's oblique synthesis uses (0x0366A / 0x10000).
        FT_Matrix shear{0x10000, 0x0366A, 0, 0x10000};
        FT_Set_Transform(ft, &shear, nullptr);
    }

    if (avgUnits > 0) {
        tm.tmAveCharWidth = ScaleRound(avgUnits, static_cast<std::int64_t>(xppem), upem);
    } else {
        tm.tmAveCharWidth = face->GlyphFor(U'x').advance;
    }
    tm.tmMaxCharWidth =
        ScaleCeil(ft->bbox.xMax - ft->bbox.xMin, static_cast<std::int64_t>(xppem), upem);
    if (face->fakeBold) {
        tm.tmAveCharWidth += 1;
        tm.tmMaxCharWidth += 1;
    }
    tm.tmWeight = bold ? FW_BOLD : FW_NORMAL;
    tm.tmItalic = italic ? 1 : 0;
    tm.tmUnderlined = request.lfUnderline ? 1 : 0;
    tm.tmStruckOut = request.lfStrikeOut ? 1 : 0;
    tm.tmCharSet = request.lfCharSet == SYMBOL_CHARSET ? SYMBOL_CHARSET : ANSI_CHARSET;

    // Underline: the post table gives the bar's centre below the baseline; strike-out: OS/2 gives
    // the bar's top above the baseline. Both are kept inside the cell.
    const std::int32_t baseline = tm.tmAscent;
    std::int32_t underlinePos = -std::max(1, face->ppem / 10);
    std::int32_t underlineSize = std::max(1, face->ppem / 14);
    if (post && post->underlineThickness > 0) {
        underlinePos = ScaleRound(post->underlinePosition, face->ppem, upem);
        underlineSize = std::max(1, ScaleRound(post->underlineThickness, face->ppem, upem));
    }
    face->underlineSize = std::min(underlineSize, tm.tmHeight);
    face->underlineTop = std::clamp(baseline - underlinePos - face->underlineSize / 2, 0,
                                    tm.tmHeight - face->underlineSize);
    std::int32_t strikePos = std::max(1, tm.tmAscent / 3);
    std::int32_t strikeSize = underlineSize;
    if (os2 && os2->version != 0xFFFF && os2->yStrikeoutSize > 0) {
        strikePos = ScaleRound(os2->yStrikeoutPosition, face->ppem, upem);
        strikeSize = std::max(1, ScaleRound(os2->yStrikeoutSize, face->ppem, upem));
    }
    face->strikeSize = std::min(strikeSize, tm.tmHeight);
    face->strikeTop = std::clamp(baseline - strikePos, 0, tm.tmHeight - face->strikeSize);
    return face;
}

// ---------------------------------------------------------------------------------------------
// Glyphs

const FontEngine::Face::Glyph& FontEngine::Face::GlyphFor(char32_t cp) const {
    if (auto it = glyphs.find(cp); it != glyphs.end()) return it->second;

    Glyph glyph;
    // Glyph index 0 is the font's missing-glyph box, which is also what GDI shows.
    const FT_UInt index = FT_Get_Char_Index(ft, static_cast<FT_ULong>(cp));
    if (FT_Load_Glyph(ft, index, FT_LOAD_DEFAULT | FT_LOAD_TARGET_MONO) == 0 &&
        FT_Render_Glyph(ft->glyph, FT_RENDER_MODE_MONO) == 0) {
        const FT_GlyphSlot slot = ft->glyph;
        const FT_Bitmap& bitmap = slot->bitmap;
        glyph.advance = static_cast<std::int32_t>((slot->advance.x + 32) >> 6);
        glyph.left = slot->bitmap_left;
        glyph.top = slot->bitmap_top;
        glyph.width = static_cast<std::int32_t>(bitmap.width);
        glyph.rows = static_cast<std::int32_t>(bitmap.rows);
        glyph.bits.assign(
            static_cast<std::size_t>(glyph.width) * static_cast<std::size_t>(glyph.rows), 0);
        for (std::int32_t y = 0; y < glyph.rows; ++y) {
            const unsigned char* row =
                bitmap.buffer + static_cast<std::ptrdiff_t>(y) * bitmap.pitch;
            for (std::int32_t x = 0; x < glyph.width; ++x) {
                const bool on = bitmap.pixel_mode == FT_PIXEL_MODE_MONO
                                    ? (row[x >> 3] & (0x80 >> (x & 7))) != 0
                                    : row[x] >= 128;
                glyph.bits[static_cast<std::size_t>(y * glyph.width + x)] = on ? 1 : 0;
            }
        }
    }
    if (fakeBold) {
        // Smear one pixel to the right: the glyph grows one column and the advance one pixel.
        if (glyph.width > 0) {
            std::vector<std::uint8_t> bold(
                static_cast<std::size_t>(glyph.width + 1) * static_cast<std::size_t>(glyph.rows),
                0);
            for (std::int32_t y = 0; y < glyph.rows; ++y) {
                for (std::int32_t x = 0; x <= glyph.width; ++x) {
                    const std::uint8_t here =
                        x < glyph.width ? glyph.bits[static_cast<std::size_t>(y * glyph.width + x)]
                                        : 0;
                    const std::uint8_t left =
                        x > 0 ? glyph.bits[static_cast<std::size_t>(y * glyph.width + x - 1)] : 0;
                    bold[static_cast<std::size_t>(y * (glyph.width + 1) + x)] = here | left;
                }
            }
            glyph.bits = std::move(bold);
            glyph.width += 1;
        }
        glyph.advance += 1;
    }
    return glyphs.emplace(cp, std::move(glyph)).first->second;
}

// ---------------------------------------------------------------------------------------------
// Public API

FontEngine::FontEngine() : impl_(std::make_unique<Impl>()) {
    if (FT_Init_FreeType(&impl_->library) != 0) {
        throw std::runtime_error("font engine: FreeType failed to initialise");
    }
}

FontEngine::~FontEngine() {
    impl_->faces.clear();  // faces first: they belong to the library
    FT_Done_FreeType(impl_->library);
    if (impl_->config) FcConfigDestroy(impl_->config);
}

const FontEngine::Face& FontEngine::Realize(const LOGFONT& request) {
    const bool bold = request.lfWeight >= 600;
    const bool italic = request.lfItalic != 0;
    Impl::Key key{request.lfFaceName,
                  request.lfHeight,
                  std::max(0, request.lfWidth),
                  bold,
                  italic,
                  request.lfUnderline != 0,
                  request.lfStrikeOut != 0};
    auto it = impl_->faces.find(key);
    if (it == impl_->faces.end()) {
        it = impl_->faces.emplace(std::move(key), impl_->Open(request, bold, italic)).first;
    }
    return *it->second;
}

TEXTMETRIC FontEngine::Metrics(const Face& face) const {
    return face.metrics;
}

SIZE FontEngine::Extent(const Face& face, std::string_view utf8) const {
    std::int32_t width = 0;
    for (std::size_t pos = 0; pos < utf8.size();)
        width += face.GlyphFor(NextCodePoint(utf8, pos)).advance;
    return SIZE{std::max(0, width), face.metrics.tmHeight};
}

std::string FontEngine::FaceName(const Face& face) const {
    return face.requestedName;
}

GlyphMask FontEngine::Render(const Face& face, std::string_view utf8, std::int64_t from,
                             std::int64_t to) const {
    GlyphMask mask;
    const SIZE extent = Extent(face, utf8);
    from = std::clamp<std::int64_t>(from, 0, extent.cx);
    to = std::clamp<std::int64_t>(to, from, extent.cx);
    mask.left = static_cast<std::int32_t>(from);
    mask.width = static_cast<std::int32_t>(to - from);
    mask.height = extent.cy;
    mask.coverage.assign(
        static_cast<std::size_t>(mask.width) * static_cast<std::size_t>(mask.height), 0);
    const auto set = [&](std::int64_t cellX, std::int32_t y) {
        const std::int64_t x = cellX - mask.left;
        if (x >= 0 && x < mask.width && y >= 0 && y < mask.height) {
            mask.coverage[static_cast<std::size_t>(y) * static_cast<std::size_t>(mask.width) +
                          static_cast<std::size_t>(x)] = 255;
        }
    };
    const std::int32_t baseline = face.metrics.tmAscent;
    std::int64_t pen = 0;
    for (std::size_t pos = 0; pos < utf8.size();) {
        const Face::Glyph& g = face.GlyphFor(NextCodePoint(utf8, pos));
        const std::int64_t glyphLeft = pen + g.left;
        pen += g.advance;
        if (glyphLeft + g.width <= from || glyphLeft >= to) continue;
        for (std::int32_t y = 0; y < g.rows; ++y) {
            for (std::int32_t x = 0; x < g.width; ++x) {
                if (g.bits[static_cast<std::size_t>(y * g.width + x)]) {
                    set(glyphLeft + x, baseline - g.top + y);
                }
            }
        }
    }
    const auto bar = [&](std::int32_t top, std::int32_t size) {
        for (std::int32_t y = top; y < top + size; ++y) {
            for (std::int64_t x = from; x < to; ++x) set(x, y);
        }
    };
    if (face.metrics.tmUnderlined) bar(face.underlineTop, face.underlineSize);
    if (face.metrics.tmStruckOut) bar(face.strikeTop, face.strikeSize);
    return mask;
}

}  // namespace korvex::platform::sim
