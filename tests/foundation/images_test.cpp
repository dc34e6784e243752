#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

#include "base/resources.hpp"
#include "foundation/images.hpp"
#include "platform/png.hpp"
#include "platform/sim/sim_gdi.hpp"
#include "support/bytes.hpp"

namespace korvex::testing {
namespace {

using foundation::EmbossPicture;
using foundation::LoadIconImage;
using foundation::LoadResImage;
using foundation::LR_COLOR;
using test::Put;

// The sizes each normal group carries; hover (+100) and down (+200) groups carry the same.
std::vector<std::int32_t> SizesOf(std::int32_t group) {
    const std::int32_t kind = group % 100;
    if (kind <= 40 || kind == 51) return {16, 32};
    if (kind == 42) return {14};
    if (kind >= 43 && kind <= 46) return {11};
    return {16};
}

std::uint32_t At(const host::StdPicture& p, std::int32_t x, std::int32_t y) {
    return p.Pixels()[static_cast<std::size_t>(y) * p.PixelWidth() + x];
}

std::int64_t OpaqueBrightness(const host::StdPicture& p) {
    std::int64_t sum = 0;
    for (std::uint32_t w : p.Pixels()) {
        if ((w >> 24) == 255) sum += ((w >> 16) & 255) + ((w >> 8) & 255) + (w & 255);
    }
    return sum;
}

// ---------------------------------------------------------------------------------------------
// The library's icon groups

TEST(IconResources, EveryGroupLoadsAtEachOfItsSizes) {
    // Group 51 (no image) is a normal group only: a button never shows it, so it has no
    // hover or down variant.
    for (std::int32_t base : {0, 100, 200})
        for (std::int32_t group = base + 1; group <= base + (base == 0 ? 51 : 50); ++group)
            for (std::int32_t size : SizesOf(group)) {
                SCOPED_TRACE("group " + std::to_string(group) + " at " + std::to_string(size));
                const auto picture = LoadResImage(group, size, LR_COLOR);
                ASSERT_NE(picture, nullptr);
                EXPECT_EQ(picture->Type(), host::PictureType::Icon);
                EXPECT_EQ(picture->PixelWidth(), size);
                EXPECT_EQ(picture->PixelHeight(), size);
                const auto& px = picture->Pixels();
                const auto opaque = std::count_if(px.begin(), px.end(),
                                                  [](std::uint32_t w) { return (w >> 24) >= 128; });
                EXPECT_GE(opaque, size * size / 10) << "an image shows something";
            }
}

TEST(IconResources, GroupsWithTwoSizesHoldTwoDrawingsNotOneScaled) {
    // The 16-pixel image is drawn for its size: picking it must not go through the 32-pixel one.
    for (std::int32_t group = 1; group <= 51; group = group == 40 ? 51 : group + 1) {
        const auto small = LoadResImage(group, 16, LR_COLOR);
        const auto large = LoadResImage(group, 32, LR_COLOR);
        ASSERT_NE(small, nullptr);
        ASSERT_NE(large, nullptr);
        std::int32_t same = 0;
        for (std::int32_t y = 0; y < 16; ++y) {
            for (std::int32_t x = 0; x < 16; ++x)
                same += At(*small, x, y) == At(*large, 2 * x, 2 * y);
        }
        EXPECT_LT(same, 256) << "group " << group;
    }
}

TEST(IconResources, VariantsFollowTheirTransform) {
    // Groups 1-41 and 47-50: hover is lighter, down is moved one pixel down-right (its top row
    // and left column are empty) and darker.
    std::vector<std::int32_t> derived;
    for (std::int32_t n = 1; n <= 41; ++n) derived.push_back(n);
    for (std::int32_t n = 47; n <= 50; ++n) derived.push_back(n);
    for (std::int32_t n : derived) {
        SCOPED_TRACE("group " + std::to_string(n));
        const auto normal = LoadResImage(n, 16, LR_COLOR);
        const auto over = LoadResImage(n + 100, 16, LR_COLOR);
        const auto pressed = LoadResImage(n + 200, 16, LR_COLOR);
        ASSERT_TRUE(normal && over && pressed);
        EXPECT_GT(OpaqueBrightness(*over), OpaqueBrightness(*normal));
        for (std::int32_t i = 0; i < 16; ++i) {
            EXPECT_EQ(At(*pressed, i, 0) >> 24, 0u);
            EXPECT_EQ(At(*pressed, 0, i) >> 24, 0u);
        }
        for (std::int32_t y = 1; y < 16; ++y) {
            for (std::int32_t x = 1; x < 16; ++x) {
                EXPECT_EQ(At(*pressed, x, y) >> 24, At(*normal, x - 1, y - 1) >> 24)
                    << x << "," << y;
            }
        }
    }
}

TEST(IconResources, CheckBoxAndLedStates) {
    // The check box: three different faces. LEDs: hover shows the unlit LED, down the lit one,
    // which is brighter.
    const auto empty = LoadResImage(42, 14, LR_COLOR);
    const auto checked = LoadResImage(142, 14, LR_COLOR);
    const auto right = LoadResImage(242, 14, LR_COLOR);
    ASSERT_TRUE(empty && checked && right);
    EXPECT_FALSE(empty->SameContent(*checked));
    EXPECT_FALSE(checked->SameContent(*right));
    EXPECT_FALSE(empty->SameContent(*right));
    for (std::int32_t n = 43; n <= 46; ++n) {
        const auto off = LoadResImage(n, 11, LR_COLOR);
        const auto over = LoadResImage(n + 100, 11, LR_COLOR);
        const auto lit = LoadResImage(n + 200, 11, LR_COLOR);
        ASSERT_TRUE(off && over && lit);
        EXPECT_TRUE(off->SameContent(*over)) << n;
        EXPECT_GT(OpaqueBrightness(*lit), OpaqueBrightness(*off)) << n;
        EXPECT_EQ(At(*off, 0, 0) >> 24, 0u) << "a round LED leaves its corners transparent";
    }
}

TEST(IconLoader, AnotherSizeIsScaledFromTheNearestImage) {
    // Group 41 has only 16 pixels: a 32-pixel request doubles every pixel.
    const auto small = LoadResImage(41, 16, LR_COLOR);
    const auto big = LoadResImage(41, 32, LR_COLOR);
    ASSERT_TRUE(small && big);
    ASSERT_EQ(big->PixelWidth(), 32);
    for (std::int32_t y = 0; y < 32; ++y) {
        for (std::int32_t x = 0; x < 32; ++x)
            ASSERT_EQ(At(*big, x, y), At(*small, x / 2, y / 2)) << x << "," << y;
    }
    // 24 pixels from a 16/32 group come from the larger image, not the smaller.
    const auto mid = LoadResImage(4, 24, LR_COLOR);
    const auto large = LoadResImage(4, 32, LR_COLOR);
    ASSERT_TRUE(mid && large);
    ASSERT_EQ(mid->PixelWidth(), 24);
    for (std::int32_t y = 0; y < 24; ++y) {
        for (std::int32_t x = 0; x < 24; ++x)
            ASSERT_EQ(At(*mid, x, y), At(*large, x * 32 / 24, y * 32 / 24));
    }
    // Without a size the image nearest the system icon size comes back at its own size.
    const auto natural = LoadResImage(4, foundation::kDefaultIconSize, LR_COLOR);
    ASSERT_NE(natural, nullptr);
    EXPECT_TRUE(natural->SameContent(*large));
    const auto naturalX = LoadResImage(41, foundation::kDefaultIconSize, LR_COLOR);
    ASSERT_NE(naturalX, nullptr);
    EXPECT_EQ(naturalX->PixelWidth(), 16);
}

TEST(IconLoader, MissingGroupsGiveNothing) {
    for (std::int32_t id : {0, -1, 52, 91, 99, 100, 151, 200, 251, 1000}) {
        EXPECT_EQ(LoadResImage(id, 16, LR_COLOR), nullptr) << id;
    }
}

// ---------------------------------------------------------------------------------------------
// ICO parsing on hand-made files

// A 2 x 2, 24-bit entry: top row red, green; bottom row blue, white; the AND mask makes the
// top-right pixel transparent.
std::vector<std::uint8_t> Bmp24() {
    std::vector<std::uint8_t> b;
    Put(b, {40, 2, 4}, 4);  // header size, width, height of XOR and AND bitmaps together
    Put(b, {1, 24}, 2);
    Put(b, {0, 0, 0, 0, 0, 0}, 4);
    // XOR rows bottom-up, each 6 bytes padded to 8: blue, white / red, green (B, G, R order);
    // then the AND rows bottom-up, 4 bytes each.
    Put(b, {255, 0, 0, 255, 255, 255, 0, 0, 0, 0, 255, 0, 255, 0, 0, 0}, 1);
    Put(b, {0, 0, 0, 0, 0x40, 0, 0, 0}, 1);
    return b;
}

// An icon file with one 2 x 2 entry.
std::vector<std::uint8_t> Ico(const std::vector<std::uint8_t>& data, std::uint16_t bits = 24) {
    std::vector<std::uint8_t> ico;
    Put(ico, {0, 1, 1}, 2);
    Put(ico, {2, 2, 0, 0}, 1);
    Put(ico, {1, bits}, 2);
    Put(ico, {static_cast<std::uint32_t>(data.size()), 6 + 16}, 4);
    ico.insert(ico.end(), data.begin(), data.end());
    return ico;
}

TEST(IconLoader, ReadsBottomUpBitmapsWithTheirMask) {
    const auto ico = Ico(Bmp24());
    const auto picture = LoadIconImage(ico, 2);
    ASSERT_NE(picture, nullptr);
    EXPECT_EQ(At(*picture, 0, 0), 0xFFFF0000u);
    EXPECT_EQ(At(*picture, 1, 0) >> 24, 0u) << "masked";
    EXPECT_EQ(At(*picture, 0, 1), 0xFF0000FFu);
    EXPECT_EQ(At(*picture, 1, 1), 0xFFFFFFFFu);
}

TEST(IconLoader, ReadsPngEntries) {
    std::vector<std::uint32_t> bits = {0x00123456, 0x00ABCDEF, 0x00000000, 0x00FFFFFF};
    const auto png = platform::EncodePng(platform::PixelView{bits.data(), 2, 2});
    const auto ico = Ico(png, 32);
    const auto picture = LoadIconImage(ico, 2);
    ASSERT_NE(picture, nullptr);
    EXPECT_EQ(At(*picture, 0, 0), 0xFF123456u);
    EXPECT_EQ(At(*picture, 1, 1), 0xFFFFFFFFu);
}

TEST(IconLoader, DamagedFilesGiveNothing) {
    const auto good = Ico(Bmp24());
    for (std::size_t cut :
         {std::size_t{0}, std::size_t{5}, std::size_t{21}, std::size_t{40}, good.size() - 1}) {
        const std::vector<std::uint8_t> truncated(good.begin(),
                                                  good.begin() + static_cast<std::ptrdiff_t>(cut));
        EXPECT_EQ(LoadIconImage(truncated, 2), nullptr) << cut;
    }
    auto cursor = good;
    cursor[2] = 2;  // a cursor file, not an icon
    EXPECT_EQ(LoadIconImage(cursor, 2), nullptr);
}

// ---------------------------------------------------------------------------------------------
// Emboss

constexpr std::uint32_t kUntouched = 0xCCCCCCCC;

TEST(Emboss, InteriorIsTheLiftedDifferenceAndTheBorderIsLeft) {
    platform::sim::SimGdi gdi;
    // 4 x 3 source, words 0x00RRGGBB. The interior is (1, 1) and (2, 1).
    const std::vector<std::uint32_t> source = {
        0x000000, 0x000000, 0x000000, 0x000000, 0x000000, 0x805020,
        0x102030, 0x000000, 0x000000, 0x000000, 0xFF0000, 0x204060,
    };
    std::vector<std::uint32_t> destination(source.size(), kUntouched);
    // Base OLE colour 0x00302010 is red 0x10, green 0x20, blue 0x30.
    EmbossPicture(gdi, source, destination, 4, 3, 0x00302010);
    // (1, 1) against (2, 2): red |0x80 - 0xFF + 0x10| = 0x6F, green 0x50 + 0x20 = 0x70,
    // blue 0x20 + 0x30 = 0x50.
    EXPECT_EQ(destination[5] & 0xFFFFFF, 0x6F7050u);
    EXPECT_EQ(destination[5] >> 24, 0xCCu) << "the destination keeps its top byte";
    // (2, 1) against (3, 2): red 0x10 - 0x20 + 0x10 = 0, green 0x20 - 0x40 + 0x20 = 0,
    // blue 0x30 - 0x60 + 0x30 = 0.
    EXPECT_EQ(destination[6] & 0xFFFFFF, 0x000000u);
    for (std::size_t i : {0, 1, 2, 3, 4, 7, 8, 9, 10, 11})
        EXPECT_EQ(destination[i], kUntouched) << i;
}

TEST(Emboss, NegativeDifferencesTurnPositiveAndChannelsStopAt255) {
    platform::sim::SimGdi gdi;
    const std::vector<std::uint32_t> source = {
        0, 0, 0, 0, 0x00FF00, 0, 0, 0, 0xFFFF00,
    };
    std::vector<std::uint32_t> destination(source.size(), kUntouched);
    EmbossPicture(gdi, source, destination, 3, 3, 0x00F0F010);
    // red |0 - 0xFF + 0x10| = 0xEF; green |0xFF - 0xFF + 0xF0| = 0xF0; blue 0 + 0xF0 = 0xF0.
    EXPECT_EQ(destination[4] & 0xFFFFFF, 0xEFF0F0u);
    const std::vector<std::uint32_t> bright = {0, 0, 0, 0, 0xFFFFFF, 0, 0, 0, 0};
    EmbossPicture(gdi, bright, destination, 3, 3, 0x00808080);
    EXPECT_EQ(destination[4] & 0xFFFFFF, 0xFFFFFFu) << "0xFF + 0x80 is capped";
}

TEST(Emboss, SystemColourBaseAndSmallPictures) {
    platform::sim::SimGdi gdi;
    const std::vector<std::uint32_t> flat(9, 0x00336699);
    std::vector<std::uint32_t> destination(9, kUntouched);
    EmbossPicture(gdi, flat, destination, 3, 3, 0x8000000F);
    const platform::COLORREF face = platform::ClassicSysColors()[platform::COLOR_BTNFACE];
    const std::uint32_t faceWord = ((face & 0xFF) << 16) | (face & 0xFF00) | ((face >> 16) & 0xFF);
    EXPECT_EQ(destination[4] & 0xFFFFFF, faceWord) << "a flat picture takes the base colour";
    // Pictures with no interior are left alone.
    std::vector<std::uint32_t> two(4, kUntouched);
    EmbossPicture(gdi, std::vector<std::uint32_t>(4, 0x123456), two, 2, 2, 0);
    EXPECT_EQ(two, std::vector<std::uint32_t>(4, kUntouched));
}

TEST(Emboss, DisabledLookOfAnIcon) {
    // A disabled flat-style button draws its icon on 0x00EDF1F1 and embosses it on that colour:
    // the transparent margin comes out in the base colour, the drawing as a relief around it.
    platform::sim::SimGdi gdi;
    constexpr host::OLE_COLOR kBase = 0x00EDF1F1;
    constexpr std::uint32_t kBaseWord = 0xF1F1ED;
    const auto icon = LoadResImage(21, 16, LR_COLOR);
    ASSERT_NE(icon, nullptr);
    const auto drawn = foundation::ComposeOnColor(*icon, kBaseWord);
    std::vector<std::uint32_t> destination(drawn.size(), kBaseWord);
    EmbossPicture(gdi, drawn, destination, 16, 16, kBase);
    std::int32_t relief = 0;
    for (std::int32_t y = 1; y < 15; ++y) {
        for (std::int32_t x = 1; x < 15; ++x) {
            const std::size_t i = static_cast<std::size_t>(y) * 16 + x;
            const bool flat = drawn[i] == kBaseWord && drawn[i + 17] == kBaseWord;
            if (flat) {
                EXPECT_EQ(destination[i], kBaseWord) << x << "," << y;
            }
            relief += destination[i] != kBaseWord;
        }
    }
    EXPECT_GT(relief, 10) << "the tick's edges show";
}

}  // namespace
}  // namespace korvex::testing
