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
        {"canvas 4\n", 1, "canvas takes W H [COLOR]"},
        {"# nothing yet\nLineTo 1 1\n", 2, "the first call must be"},
        {"canvas 4 4\ncanvas 4 4\n", 2, "only once"},
        {"# too big to hold twice\ncanvas 16384 16384\n", 2, "16384 x 16384 is more than"},
        {"canvas 4 4\nCreatePen p PS_SOLID 1 0\nSelectObject q\n", 3, "'q'"},
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

}  // namespace
}  // namespace korvex::platform
