// The drawing-script runner: errors name the line, constants and hex output are read and
// written the way both runners (software and real GDI) rely on.

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "driver/gdi_script.hpp"
#include "platform/sim/sim_gdi.hpp"

namespace korvex::platform {
namespace {

// Errors found while reading the script and while running it alike.
TEST(GdiScript, ErrorsNameTheLine) {
    const struct {
        const char* text;
        int line;
        const char* mentions;
    } cases[] = {
        {"canvas 4 4\n\n# comment\nFooBar 1 2\n", 4, "unknown call 'FooBar'"},
        {"canvas 4 4\nLineTo 1\n", 2, "LineTo takes X Y but got 1 argument"},
        {"canvas 4 4\nMoveToEx 0 0\nRectangle 1 2 3 4 5\n", 3, "Rectangle takes L T R B but got 5"},
        {"canvas 4 4\nCreatePolygonRgn p ALTERNATE 1 2 3\n", 2, "CreatePolygonRgn"},
        {"canvas 4 4\nSetROP2 R2_NOSUCH\n", 2, "'R2_NOSUCH' is not a number"},
        // Two signs: negating the smallest 64-bit number would overflow.
        {"canvas 4 4\nLineTo --9223372036854775808 0\n", 2, "is not a number"},
        {"canvas 4\n", 1, "canvas takes W H [COLOR]"},
        {"# nothing yet\nLineTo 1 1\n", 2, "the first call must be"},
        {"canvas 4 4\ncanvas 4 4\n", 2, "only once"},
        {"# too big to hold twice\ncanvas 16384 16384\n", 2, "16384 x 16384 is more than"},
        {"canvas 4 4\nCreatePen p PS_SOLID 1 0\nSelectObject q\n", 3, "'q'"},
        {"canvas 4 4\nCreateBitmap32 b 4 0\n", 2, "bitmap size must be 1 to 16384"},
        {"canvas 4 4\nCreateBitmap32 a 4096 4096\nCreateBitmap32 b 1 1\n", 3,
         "exceed 16777216 pixels"},
        {"canvas 4 4\nCreatePen b 0 1 0\nCreateBitmap32 b 1 1\n", 3, "'b' already exists"},
        {"canvas 4 4\nCreateBitmap32 b 1 1\nCreatePen b 0 1 0\n", 3, "'b' already exists"},
        {"canvas 4 4\nAlphaBlend 0 0 1 1 src 0 0 1 1 255 AC_SRC_ALPHA\n", 2,
         "no bitmap named 'src'"},
    };
    for (const auto& c : cases) {
        std::string what;
        int line = 0;
        try {
            sim::SimGdi gdi;
            RunGdiScript(gdi, ParseGdiScript(c.text));
        } catch (const GdiScriptError& e) {
            what = e.what();
            line = e.line();
        }
        EXPECT_EQ(line, c.line) << c.text;
        EXPECT_NE(what.find("line " + std::to_string(c.line) + ": "), std::string::npos) << what;
        EXPECT_NE(what.find(c.mentions), std::string::npos) << what;
    }
}

TEST(GdiScript, ConstantsJoinWithBarHexIsReadAndWrittenRowByRow) {
    const GdiScript script = ParseGdiScript(
        "canvas 0x10 8 0x00112233\nDrawEdge 0 0 4 -4 EDGE_ETCHED BF_RECT|BF_MIDDLE|0x4000\n");
    EXPECT_EQ(script.width, 16);
    EXPECT_EQ(script.height, 8);
    EXPECT_EQ(script.background, 0x00112233u);
    ASSERT_EQ(script.calls.size(), 1u);
    EXPECT_EQ(script.calls[0].numbers, (std::vector<std::int64_t>{0, 0, 4, -4, 6, 0x480F}));

    sim::SimGdi gdi;
    const PixelView pixels =
        RunGdiScript(gdi, ParseGdiScript("canvas 3 2 0x0000FF   # red background\n"
                                         "SetPixel 1 1 0x00FF00\n"
                                         "SetPixel 2 0 0xFF8001\n"));
    EXPECT_EQ(pixels.bits[2], 0x000180FFu);  // the bitmap word is 0x00RRGGBB
    std::ostringstream hex;
    WritePixelsHex(hex, pixels);
    EXPECT_EQ(hex.str(), "3 2\n0000FF 0000FF FF8001\n0000FF 00FF00 0000FF\n");
}

// The script's own bitmaps hold raw words, clipped to the bitmap, and feed AlphaBlend.
TEST(GdiScript, FillPixelsWritesRawWordsThatAlphaBlendTakes) {
    sim::SimGdi gdi;
    const PixelView pixels = RunGdiScript(gdi, ParseGdiScript("canvas 3 1 0x000000\n"
                                                              "CreateBitmap32 s 2 1\n"
                                                              "FillPixels s -5 -5 1 9 0xFF0000FF\n"
                                                              "FillPixels s 1 0 99 1 0x80400000\n"
                                                              "AlphaBlend 1 0 2 1 s 0 0 2 1 255 "
                                                              "AC_SRC_ALPHA\n"));
    EXPECT_EQ(pixels.bits[0] & 0xFFFFFFu, 0u);
    EXPECT_EQ(pixels.bits[1] & 0xFFFFFFu, 0x0000FFu);
    EXPECT_EQ(pixels.bits[2] & 0xFFFFFFu, 0x400000u);
}

}  // namespace
}  // namespace korvex::platform
