#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <vector>

#include "platform/png.hpp"

namespace korvex::testing {
namespace {

using platform::Image;
using platform::PixelView;

// A 5 x 3 bitmap whose pixels all differ in every channel, with a stray top byte the file
// cannot keep.
std::vector<std::uint32_t> Pattern() {
    std::vector<std::uint32_t> pixels(15);
    for (std::uint32_t i = 0; i < pixels.size(); ++i) {
        pixels[i] = 0xAB000000u | ((i * 17) << 16) | ((255 - i * 13) << 8) | (i * 7 + 1);
    }
    return pixels;
}

void ExpectSamePixels(const Image& image, const std::vector<std::uint32_t>& source) {
    ASSERT_EQ(image.width, 5);
    ASSERT_EQ(image.height, 3);
    ASSERT_EQ(image.pixels.size(), source.size());
    for (std::size_t i = 0; i < source.size(); ++i) {
        EXPECT_EQ(image.pixels[i], source[i] & 0x00FFFFFFu) << "pixel " << i;
    }
}

TEST(Png, RoundTripsThroughMemoryAndFiles) {
    std::vector<std::uint32_t> pixels = Pattern();
    const PixelView view{pixels.data(), 5, 3};

    const std::vector<std::uint8_t> bytes = platform::EncodePng(view);
    ASSERT_GT(bytes.size(), 8u);
    EXPECT_EQ(bytes[1], 'P');
    ExpectSamePixels(platform::DecodePng(bytes), pixels);

    const auto path = std::filesystem::path(KORVEX_BINARY_DIR) / "png_test_round_trip.png";
    platform::WritePng(path.string(), view);
    ExpectSamePixels(platform::ReadPng(path.string()), pixels);
    std::filesystem::remove(path);
}

TEST(Png, FailuresThrowWithAMessage) {
    const std::vector<std::uint8_t> garbage = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    EXPECT_THROW(platform::DecodePng(garbage), std::runtime_error);
    EXPECT_THROW(platform::DecodePng({}), std::runtime_error);

    std::vector<std::uint32_t> pixels = Pattern();
    std::vector<std::uint8_t> truncated = platform::EncodePng(PixelView{pixels.data(), 5, 3});
    truncated.resize(truncated.size() / 2);
    EXPECT_THROW(platform::DecodePng(truncated), std::runtime_error);

    EXPECT_THROW(platform::EncodePng(PixelView{}), std::runtime_error);
    try {
        platform::ReadPng("/nonexistent/korvex/missing.png");
        FAIL() << "expected an error";
    } catch (const std::runtime_error& e) {
        EXPECT_NE(std::string(e.what()).find("missing.png"), std::string::npos) << e.what();
    }
    EXPECT_THROW(platform::WritePng("/nonexistent/korvex/out.png", PixelView{pixels.data(), 5, 3}),
                 std::runtime_error);
}

}  // namespace
}  // namespace korvex::testing
