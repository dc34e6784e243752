// The drawing-script runner: errors name the line, constants and hex output are read and
// written the way both runners (software and real GDI) rely on.

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "driver/gdi_script.hpp"
#include "platform/sim/sim_gdi.hpp"

namespace korvex::platform {
namespace {

// Parses `text` expecting a GdiScriptError; returns it for inspection.
GdiScriptError ParseError(const std::string& text) {
    try {
        ParseGdiScript(text);
    } catch (const GdiScriptError& e) {
        return e;
    }
    ADD_FAILURE() << "no error for:\n" << text;
    return GdiScriptError(0, "");
}

TEST(GdiScript, ErrorsNameTheLine) {
    struct Case {
        const char* text;
        int line;
        const char* mentions;
    };
    const Case cases[] = {
        {"canvas 4 4\n\n# comment\nFooBar 1 2\n", 4, "unknown call 'FooBar'"},
        {"canvas 4 4\nLineTo 1\n", 2, "LineTo takes X Y but got 1 argument"},
        {"canvas 4 4\nMoveToEx 0 0\nRectangle 1 2 3 4 5\n", 3, "Rectangle takes L T R B but got 5"},
        {"canvas 4 4\nCreatePolygonRgn p ALTERNATE 1 2 3\n", 2, "CreatePolygonRgn"},
        {"canvas 4 4\nSetROP2 R2_NOSUCH\n", 2, "'R2_NOSUCH' is not a number"},
        {"canvas 4\n", 1, "canvas takes W H [COLOR]"},
        {"# nothing yet\nLineTo 1 1\n", 2, "the first call must be"},
        {"canvas 4 4\ncanvas 4 4\n", 2, "only once"},
    };
    for (const Case& c : cases) {
        const GdiScriptError e = ParseError(c.text);
        EXPECT_EQ(e.line(), c.line) << c.text;
        EXPECT_NE(std::string(e.what()).find("line " + std::to_string(c.line) + ": "),
                  std::string::npos)
            << e.what();
        EXPECT_NE(std::string(e.what()).find(c.mentions), std::string::npos) << e.what();
    }
}

TEST(GdiScript, UnknownObjectIsAnErrorAtItsLine) {
    const GdiScript script =
        ParseGdiScript("canvas 4 4\nCreatePen p PS_SOLID 1 0\nSelectObject q\n");
    sim::SimGdi gdi;
    try {
        RunGdiScript(gdi, script);
        FAIL() << "selecting an undefined object must fail";
    } catch (const GdiScriptError& e) {
        EXPECT_EQ(e.line(), 3);
        EXPECT_NE(std::string(e.what()).find("'q'"), std::string::npos) << e.what();
    }
}

TEST(GdiScript, ConstantsJoinWithBarAndHexIsAccepted) {
    const GdiScript script = ParseGdiScript(
        "canvas 0x10 8 0x00112233\nDrawEdge 0 0 4 -4 EDGE_ETCHED BF_RECT|BF_MIDDLE|0x4000\n");
    EXPECT_EQ(script.width, 16);
    EXPECT_EQ(script.height, 8);
    EXPECT_EQ(script.background, 0x00112233u);
    ASSERT_EQ(script.calls.size(), 1u);
    EXPECT_EQ(script.calls[0].line, 2);
    EXPECT_EQ(script.calls[0].numbers, (std::vector<std::int64_t>{0, 0, 4, -4, 6, 0x480F}));
}

TEST(GdiScript, HexOutputIsColorrefOrderRowByRow) {
    const GdiScript script = ParseGdiScript(
        "canvas 3 2 0x0000FF   # red background\n"
        "SetPixel 1 1 0x00FF00\n"
        "SetPixel 2 0 0xFF8001\n");
    sim::SimGdi gdi;
    const PixelView pixels = RunGdiScript(gdi, script);
    ASSERT_EQ(pixels.width, 3);
    EXPECT_EQ(pixels.bits[2], 0x000180FFu);  // the bitmap word is 0x00RRGGBB
    std::ostringstream hex;
    WritePixelsHex(hex, pixels);
    EXPECT_EQ(hex.str(), "3 2\n0000FF 0000FF FF8001\n0000FF 00FF00 0000FF\n");
}

}  // namespace
}  // namespace korvex::platform
