// PNG files of 0x00RRGGBB pixels: the top byte is not kept, and every failure is an exception
// with a message.

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <vector>

#include "platform/png.hpp"

namespace korvex::platform {
namespace {

TEST(Png, RoundTripsThroughMemoryAndFilesWithoutTheTopByte) {
    // 5 x 3 pixels that all differ in every channel, with a stray top byte.
    std::vector<std::uint32_t> pixels(15);
    for (std::uint32_t i = 0; i < 15; ++i)
        pixels[i] = 0xAB000000u | ((i * 17) << 16) | ((255 - i * 13) << 8) | (i * 7 + 1);
    const PixelView view{pixels.data(), 5, 3};
    std::vector<std::uint32_t> want = pixels;
    for (std::uint32_t& p : want) p &= 0x00FFFFFFu;

    const std::vector<std::uint8_t> bytes = EncodePng(view);
    const auto path = std::filesystem::path(KORVEX_BINARY_DIR) / "png_test_round_trip.png";
    WritePng(path.string(), view);
    for (const Image& image : {DecodePng(bytes), ReadPng(path.string())}) {
        EXPECT_EQ(image.width, 5);
        EXPECT_EQ(image.height, 3);
        EXPECT_EQ(image.pixels, want);
    }
    std::filesystem::remove(path);

    const auto half = static_cast<std::ptrdiff_t>(bytes.size() / 2);
    EXPECT_THROW(DecodePng(std::vector<std::uint8_t>(bytes.begin(), bytes.begin() + half)),
                 std::runtime_error);
}

TEST(Png, FailuresThrowWithAMessage) {
    EXPECT_THROW(DecodePng(std::vector<std::uint8_t>{1, 2, 3, 4, 5, 6, 7, 8, 9}),
                 std::runtime_error);
    EXPECT_THROW(DecodePng({}), std::runtime_error);
    EXPECT_THROW(EncodePng(PixelView{}), std::runtime_error);
    try {
        ReadPng("/nonexistent/korvex/missing.png");
        FAIL() << "expected an error";
    } catch (const std::runtime_error& e) {
        EXPECT_NE(std::string(e.what()).find("missing.png"), std::string::npos) << e.what();
    }
    std::uint32_t pixel = 0;
    EXPECT_THROW(WritePng("/nonexistent/korvex/out.png", PixelView{&pixel, 1, 1}),
                 std::runtime_error);
}

}  // namespace
}  // namespace korvex::platform
