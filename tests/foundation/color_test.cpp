#include <gtest/gtest.h>

#include <array>

#include "foundation/color.hpp"
#include "platform/sim/sim_gdi.hpp"

namespace korvex::testing {
namespace {

using foundation::OleColorToRGB;
using foundation::OleColorToRGBTopByte;
using platform::RGB;

TEST(OleColor, SystemColoursFollowTheCurrentScheme) {
    platform::sim::SimGdi gdi;
    const platform::COLORREF classicFace = platform::ClassicSysColors()[platform::COLOR_BTNFACE];
    EXPECT_EQ(OleColorToRGB(gdi, 0x8000000F), classicFace);
    EXPECT_EQ(OleColorToRGB(gdi, 0x80000010), platform::ClassicSysColors()[platform::COLOR_BTNSHADOW]);
    EXPECT_EQ(OleColorToRGBTopByte(gdi, 0x8000000F), classicFace);

    const std::array<int, 1> indices = {platform::COLOR_BTNFACE};
    const std::array<platform::COLORREF, 1> colors = {RGB(10, 20, 30)};
    ASSERT_TRUE(gdi.SetSysColors(indices, colors));
    EXPECT_EQ(OleColorToRGB(gdi, 0x8000000F), RGB(10, 20, 30)) << "the next conversion sees the change";
    EXPECT_EQ(OleColorToRGBTopByte(gdi, 0x8000000F), RGB(10, 20, 30));
    EXPECT_EQ(OleColorToRGB(gdi, 0x80000010), platform::ClassicSysColors()[platform::COLOR_BTNSHADOW])
        << "other entries keep their colour";
}

TEST(OleColor, RgbValuesPassThroughUnchanged) {
    platform::sim::SimGdi gdi;
    for (host::OLE_COLOR c : {0x00FFFFFFu, 0x00000000u, 0x00123456u, 0x7F000001u}) {
        EXPECT_EQ(OleColorToRGB(gdi, c), c) << std::hex << c;
        EXPECT_EQ(OleColorToRGBTopByte(gdi, c), c) << std::hex << c;
    }
}

// The two forms read a system colour differently: the full form takes every bit below the flag
// as the index, the progress bar's form only a top byte of 0x80 and the low byte.
TEST(OleColor, TheTwoFormsDifferOnlyOutsideTheValuesControlsProduce) {
    platform::sim::SimGdi gdi;
    const auto& classic = platform::ClassicSysColors();
    EXPECT_EQ(OleColorToRGB(gdi, 0x80000063), 0u) << "unknown index 99 is black, no error";
    EXPECT_EQ(OleColorToRGB(gdi, 0xFFFFFFFF), 0u);
    EXPECT_EQ(OleColorToRGB(gdi, 0x80000110), 0u);
    EXPECT_EQ(OleColorToRGBTopByte(gdi, 0x80000110), classic[0x10]);
    EXPECT_EQ(OleColorToRGBTopByte(gdi, 0x81000005), 0x81000005u);
    EXPECT_EQ(OleColorToRGB(gdi, 0x81000005), 0u);
}

TEST(OleColor, ComponentExtractors) {
    EXPECT_EQ(foundation::RedComponent(0x00123456), 0x56);
    EXPECT_EQ(foundation::GreenComponent(0x00123456), 0x34);
    EXPECT_EQ(foundation::BlueComponent(0x00123456), 0x12);
    EXPECT_EQ(foundation::RedComponent(0x00FFFFFF), 255);
    EXPECT_EQ(foundation::BlueComponent(0x00FF0000), 255);
    EXPECT_EQ(foundation::GreenComponent(0x00FF00FF), 0);
}

}  // namespace
}  // namespace korvex::testing
