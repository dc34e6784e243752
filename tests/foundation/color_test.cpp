// OLE colours to COLORREF: the full form takes every bit below the system flag as the index,
// the top-byte form (the progress bar's) only a top byte of 0x80 and the low byte; RGB values
// pass through; system colours follow the current scheme.

#include <gtest/gtest.h>

#include <array>

#include "foundation/color.hpp"
#include "platform/sim/sim_gdi.hpp"

namespace korvex::foundation {
namespace {

using platform::ClassicSysColors;

TEST(OleColor, BothFormsOverRgbSystemAndOutOfRangeValues) {
    const auto& classic = ClassicSysColors();
    const struct {
        host::OLE_COLOR in;
        platform::COLORREF full, topByte;
    } cases[] = {
        {0x00FFFFFF, 0x00FFFFFF, 0x00FFFFFF},
        {0x00000000, 0x00000000, 0x00000000},
        {0x00123456, 0x00123456, 0x00123456},
        {0x7F000001, 0x7F000001, 0x7F000001},
        {0x8000000F, classic[platform::COLOR_BTNFACE], classic[platform::COLOR_BTNFACE]},
        {0x80000010, classic[platform::COLOR_BTNSHADOW], classic[platform::COLOR_BTNSHADOW]},
        {0x80000063, 0, 0},  // unknown index 99 is black, no error
        {0xFFFFFFFF, 0, 0xFFFFFFFF},
        {0x80000110, 0, classic[0x10]},
        {0x81000005, 0, 0x81000005},
    };
    platform::sim::SimGdi gdi;
    for (const auto& c : cases) {
        EXPECT_EQ(OleColorToRGB(gdi, c.in), c.full) << std::hex << c.in;
        EXPECT_EQ(OleColorToRGBTopByte(gdi, c.in), c.topByte) << std::hex << c.in;
    }
    // The next conversion sees a scheme change; other entries keep their colour.
    const std::array<int, 1> indices = {platform::COLOR_BTNFACE};
    const std::array<platform::COLORREF, 1> colors = {platform::RGB(10, 20, 30)};
    ASSERT_TRUE(gdi.SetSysColors(indices, colors));
    EXPECT_EQ(OleColorToRGB(gdi, 0x8000000F), platform::RGB(10, 20, 30));
    EXPECT_EQ(OleColorToRGBTopByte(gdi, 0x8000000F), platform::RGB(10, 20, 30));
    EXPECT_EQ(OleColorToRGB(gdi, 0x80000010), classic[platform::COLOR_BTNSHADOW]);
}

TEST(OleColor, ComponentExtractors) {
    EXPECT_EQ(RedComponent(0x00123456), 0x56);
    EXPECT_EQ(GreenComponent(0x00123456), 0x34);
    EXPECT_EQ(BlueComponent(0x00123456), 0x12);
    EXPECT_EQ(RedComponent(0x00FFFFFF), 255);
    EXPECT_EQ(BlueComponent(0x00FF0000), 255);
    EXPECT_EQ(GreenComponent(0x00FF00FF), 0);
}

}  // namespace
}  // namespace korvex::foundation
