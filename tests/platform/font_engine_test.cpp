// The font engine measures and draws the way GDI's cell model says: extents of whole-pixel
// advances, a mask of the cell, crisp coverage, lines across the whole extent.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <string>

#include "platform/sim/font_engine.hpp"

namespace korvex::testing {
namespace {

using platform::LOGFONT;
using platform::sim::FontEngine;
using platform::sim::GlyphMask;

LOGFONT Font(std::string face, std::int32_t height, std::int32_t weight = platform::FW_NORMAL) {
    LOGFONT lf;
    lf.lfFaceName = std::move(face);
    lf.lfHeight = height;
    lf.lfWeight = weight;
    return lf;
}

int Coverage(const GlyphMask& mask) {
    return static_cast<int>(std::count(mask.coverage.begin(), mask.coverage.end(), 255));
}

int RowCoverage(const GlyphMask& mask, std::int32_t y) {
    int n = 0;
    for (std::int32_t x = 0; x < mask.width; ++x) n += mask.coverage[y * mask.width + x] ? 1 : 0;
    return n;
}

// TextOut never kerns: a pair is as wide as its two letters apart.
TEST(FontEngine, AdvancesAddUpWithoutKerning) {
    FontEngine engine;
    for (const char* faceName : {"Arial", "Times New Roman", "Tahoma"}) {
        const auto& face = engine.Realize(Font(faceName, -24));
        for (const char* pair : {"AV", "To", "LT", "Wa"}) {
            const std::string a(pair, 1), b(pair + 1, 1);
            EXPECT_EQ(engine.Extent(face, pair).cx,
                      engine.Extent(face, a).cx + engine.Extent(face, b).cx)
                << faceName << " \"" << pair << "\"";
        }
    }
}

TEST(FontEngine, HeightRules) {
    FontEngine engine;
    // Positive: the cell is exactly that tall.
    for (std::int32_t cell : {8, 13, 16, 20, 33})
        for (const char* faceName : {"Arial", "Verdana", "Courier New"})
            EXPECT_EQ(engine.Metrics(engine.Realize(Font(faceName, cell))).tmHeight, cell)
                << faceName << " cell " << cell;
    // Negative: the em, so the cell is taller by the internal leading, and grows with the em.
    const auto small = engine.Metrics(engine.Realize(Font("Arial", -11)));
    const auto large = engine.Metrics(engine.Realize(Font("Arial", -30)));
    EXPECT_GT(small.tmHeight, 11);
    EXPECT_LT(small.tmHeight, 11 * 3 / 2);
    EXPECT_GT(large.tmHeight, small.tmHeight);
    // Absurd requests are clamped, not undefined.
    for (std::int32_t extreme :
         {std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()}) {
        const auto& face = engine.Realize(Font("Arial", extreme));
        EXPECT_GT(engine.Metrics(face).tmHeight, 100);
        EXPECT_GT(engine.Extent(face, "x").cx, 0);
    }
    // Zero: a default around the classic dialog font's 13 pixels.
    const auto deflt = engine.Metrics(engine.Realize(Font("Arial", 0)));
    EXPECT_GE(deflt.tmHeight, 12);
    EXPECT_LE(deflt.tmHeight, 16);
}

// Liberation Sans keeps Arial's advances and win metrics, so the numbers GDI gives for Arial
// come out: average 5 and cell 13 at the 8-point size, average 6 at 13 pixels.
TEST(FontEngine, ArialSubstituteHasArialMetrics) {
    FontEngine engine;
    const auto eight = engine.Metrics(engine.Realize(Font("Arial", -11)));
    EXPECT_EQ((std::array{eight.tmHeight, eight.tmAveCharWidth}), (std::array{13, 5}));
    const auto ten = engine.Metrics(engine.Realize(Font("Arial", -13)));
    EXPECT_EQ((std::array{ten.tmAscent, ten.tmDescent, ten.tmInternalLeading, ten.tmAveCharWidth}),
              (std::array{12, 3, 2, 6}));
}

TEST(FontEngine, BoldIsAtLeastAsWideAndReportsItsWeight) {
    FontEngine engine;
    for (const char* faceName : {"Arial", "MS Sans Serif", "Courier New", "NoSuchFace"}) {
        const auto& regular = engine.Realize(Font(faceName, -13));
        const auto& bold = engine.Realize(Font(faceName, -13, platform::FW_BOLD));
        EXPECT_GE(engine.Extent(bold, "Wide Bold Text").cx,
                  engine.Extent(regular, "Wide Bold Text").cx)
            << faceName;
        EXPECT_GT(Coverage(engine.Render(bold, "Bold")), Coverage(engine.Render(regular, "Bold")))
            << faceName << ": bold strokes cover more pixels";
        EXPECT_EQ(engine.Metrics(bold).tmWeight, platform::FW_BOLD);
        EXPECT_EQ(engine.Metrics(regular).tmWeight, platform::FW_NORMAL);
    }
    // 600 is the threshold.
    EXPECT_EQ(engine.Metrics(engine.Realize(Font("Arial", -13, 599))).tmWeight,
              platform::FW_NORMAL);
    EXPECT_EQ(engine.Metrics(engine.Realize(Font("Arial", -13, 600))).tmWeight, platform::FW_BOLD);
}

// Unknown and empty face names still give a face and ink; the extent is whole-pixel advances as
// wide as the text's mask and as tall as the cell.
TEST(FontEngine, MaskIsTheCellAndMonochromeForEveryFace) {
    FontEngine engine;
    LOGFONT italic = Font("Times New Roman", -17);
    italic.lfItalic = 1;
    for (const LOGFONT& lf : {Font("Arial", -13), Font("Courier New", 20), italic,
                              Font("No Such Face", -13), Font("", 0)}) {
        const auto& face = engine.Realize(lf);
        EXPECT_EQ(&engine.Realize(lf), &face) << "faces are cached";
        const auto tm = engine.Metrics(face);
        EXPECT_EQ(tm.tmHeight, tm.tmAscent + tm.tmDescent);
        EXPECT_FALSE(engine.FaceName(face).empty());
        EXPECT_GT(engine.Extent(face, "Hello World").cx, engine.Extent(face, "Hello").cx);
        for (const char* text : {"", "x", "Hello, World", "Größe", "\xE2\x82\xAC 12"}) {
            const GlyphMask mask = engine.Render(face, text);
            const auto extent = engine.Extent(face, text);
            EXPECT_EQ(mask.width, extent.cx) << lf.lfFaceName << " \"" << text << "\"";
            EXPECT_EQ((std::array{mask.height, extent.cy}), (std::array{tm.tmHeight, tm.tmHeight}));
            ASSERT_EQ(mask.coverage.size(), static_cast<std::size_t>(mask.width * mask.height));
            EXPECT_TRUE(std::all_of(mask.coverage.begin(), mask.coverage.end(), [](std::uint8_t v) {
                return v == 0 || v == 255;
            })) << "hinted monochrome glyphs only";
            EXPECT_EQ(Coverage(mask) > 0, *text != '\0');
        }
    }
    EXPECT_NE(&engine.Realize(Font("Arial", -14)), &engine.Realize(Font("Arial", -13)));
}

// Underline and strike-out: bars across the whole extent, the underline below the baseline,
// the strike-out above it; the glyphs themselves are unchanged.
TEST(FontEngine, UnderlineAndStrikeOutAddFullRows) {
    FontEngine engine;
    const LOGFONT plain = Font("Arial", -16);
    const auto& plainFace = engine.Realize(plain);
    const std::int32_t baseline = engine.Metrics(plainFace).tmAscent;
    const GlyphMask p = engine.Render(plainFace, "ace mum");  // no descenders, no ascenders
    for (const bool underline : {true, false}) {
        LOGFONT lf = plain;
        (underline ? lf.lfUnderline : lf.lfStrikeOut) = 1;
        const auto& face = engine.Realize(lf);
        EXPECT_EQ(underline ? engine.Metrics(face).tmUnderlined : engine.Metrics(face).tmStruckOut,
                  1);
        const GlyphMask m = engine.Render(face, "ace mum");
        ASSERT_EQ(m.width, p.width);
        ASSERT_EQ(m.height, p.height);
        std::int32_t fullRow = -1;
        for (std::int32_t y = 0; y < m.height; ++y)
            if (RowCoverage(m, y) == m.width && RowCoverage(p, y) < p.width) fullRow = y;
        ASSERT_GE(fullRow, 0) << "a row becomes solid";
        if (underline) {
            EXPECT_GE(fullRow, baseline) << "underline below the baseline";
        } else {
            EXPECT_LT(fullRow, baseline) << "strike-out above the baseline";
            EXPECT_GT(fullRow, baseline / 2 - 1) << "strike-out through the lowercase letters";
        }
        for (std::size_t i = 0; i < p.coverage.size(); ++i)
            ASSERT_TRUE(!p.coverage[i] || m.coverage[i] == 255) << "glyph pixel " << i << " kept";
    }
}

// The logical name comes back as requested, substituted or not.
TEST(FontEngine, FacesKeepTheRequestedName) {
    FontEngine engine;
    for (const char* name : {"Korvex No Such Face", "MS Sans Serif", "tahoma"})
        EXPECT_EQ(engine.FaceName(engine.Realize(Font(name, -11))), name);
}

// Malformed UTF-8 becomes U+FFFD one byte at a time, never a stall or a skipped letter.
TEST(FontEngine, MalformedUtf8IsReplaced) {
    FontEngine engine;
    const auto& face = engine.Realize(Font("Arial", -13));
    const std::int32_t replacement = engine.Extent(face, "\xEF\xBF\xBD").cx;
    const std::int32_t a = engine.Extent(face, "a").cx;
    EXPECT_EQ(engine.Extent(face, "\xFF").cx, replacement);
    EXPECT_EQ(engine.Extent(face, "\xC3").cx, replacement) << "truncated at the end";
    EXPECT_EQ(engine
                  .Extent(face,
                          "\xC3"
                          "a")
                  .cx,
              replacement + a)
        << "bad continuation";
    EXPECT_EQ(engine.Extent(face, "\xC0\x80").cx, 2 * replacement) << "overlong form";
}

}  // namespace
}  // namespace korvex::testing
