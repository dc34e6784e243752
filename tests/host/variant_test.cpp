#include <gtest/gtest.h>

#include "support/error_of.hpp"

#include "base/error.hpp"
#include "host/font.hpp"
#include "host/variant.hpp"

using namespace korvex::host;
using korvex::test::ErrorOf;

namespace {

TEST(HostVariant, ConversionFollowsTheHostRules) {
    const std::pair<Variant, std::int32_t> numbers[] = {
        {true, -1},     {false, 0},
        {2.5, 2},       {3.5f, 4},
        {" 12 ", 12},   {"2.5", 2},
        {"&HFF", 255},  {"true", -1},
        {Variant(), 0}, {Variant(0x8000000Fu), -2147483633}};
    for (const auto& [in, want] : numbers) {
        EXPECT_EQ(in.ToLong(), want) << DisplayText(in);
        if (want >= -32768) {
            EXPECT_EQ(in.ToInteger(), want) << DisplayText(in);
        }
    }
    const std::pair<Variant, const char*> texts[] = {
        {Variant(), ""}, {std::int16_t{5}, "5"}, {1.1f, "1.1"}, {true, "True"}};
    for (const auto& [in, want] : texts) EXPECT_EQ(in.ToString(), want) << DisplayText(in);
    EXPECT_TRUE(Variant("-1").ToBool());
    EXPECT_FALSE(Variant(0.0).ToBool());
}

TEST(HostVariant, ImpossibleConversionsRaiseTheirErrors) {
    EXPECT_EQ(ErrorOf([] { (void)Variant("12abc").ToInteger(); }), 13);
    EXPECT_EQ(ErrorOf([] { (void)Variant("").ToDouble(); }), 13);
    EXPECT_EQ(ErrorOf([] { (void)Variant("yes").ToBool(); }), 13);
    EXPECT_EQ(ErrorOf([] { (void)Variant("40000").ToInteger(); }), 6);
    EXPECT_EQ(ErrorOf([] { (void)Variant(std::int32_t{40000}).ToInteger(); }), 6);
    EXPECT_EQ(ErrorOf([] { (void)Variant::Missing().ToLong(); }), 13);
    EXPECT_EQ(ErrorOf([] { (void)Variant(5).ToFont(); }), 13);
    EXPECT_EQ(ErrorOf([] { (void)Variant(std::make_shared<StdFont>()).ToPicture(); }), 13);
    EXPECT_EQ(ErrorOf([] { (void)Variant(5).ToObject(); }), 424);
}

TEST(HostVariant, KindsAreKeptApart) {
    EXPECT_EQ(Variant(std::int16_t{1}).Kind(), VarKind::Integer);
    EXPECT_EQ(Variant(1).Kind(), VarKind::Long);
    EXPECT_EQ(Variant(1.0f).Kind(), VarKind::Single);
    EXPECT_EQ(Variant(1.0).Kind(), VarKind::Double);
    EXPECT_EQ(Variant(std::shared_ptr<StdFont>()).Kind(), VarKind::Object);  // Nothing
    std::shared_ptr<Object> asObject = std::make_shared<StdPicture>();
    EXPECT_EQ(Variant(asObject).Kind(), VarKind::Picture);
    EXPECT_NE(Variant(std::int16_t{1}), Variant(1));
    EXPECT_EQ(Variant("1").ConvertedLike(std::int16_t{0}).Kind(), VarKind::Integer);
}

TEST(HostVariant, DefaultComparisonAcrossKinds) {
    EXPECT_TRUE(ValueEquals(std::int16_t{5}, 5));
    EXPECT_TRUE(ValueEquals(true, std::int16_t{-1}));
    EXPECT_TRUE(ValueEquals(5, "5"));
    EXPECT_FALSE(ValueEquals(5, "five"));
    EXPECT_FALSE(ValueEquals("abc", "ABC"));
    EXPECT_TRUE(ValueEquals(Variant(), ""));
    EXPECT_TRUE(ValueEquals(Variant(), 0));
    EXPECT_FALSE(ValueEquals(0, Variant::Missing()));
    auto a = std::make_shared<StdFont>("Arial", 10);
    auto b = std::make_shared<StdFont>("Arial", 10);
    EXPECT_TRUE(ValueEquals(a, b));  // fonts by attributes
    b->Italic(true);
    EXPECT_FALSE(ValueEquals(a, b));
    auto p = std::make_shared<StdPicture>();
    EXPECT_FALSE(ValueEquals(p, std::make_shared<StdPicture>()));  // other objects by identity
    EXPECT_TRUE(ValueEquals(p, p));
}

TEST(HostVariant, DisplayTextForLogs) {
    EXPECT_EQ(DisplayText("say \"hi\""), "\"say \"\"hi\"\"\"");
    EXPECT_EQ(DisplayText(2.5f), "2.5");
    EXPECT_EQ(DisplayText(false), "False");
    EXPECT_EQ(DisplayText(Variant::Nothing()), "Nothing");
}

TEST(HostFont, SharedByReferenceAndObserved) {
    auto font = std::make_shared<StdFont>("Arial", 8);
    std::vector<std::string> heard;
    auto token = font->Subscribe([&](std::string_view p) { heard.emplace_back(p); });
    auto sameFont = font;  // a second holder sees the same object
    sameFont->Bold(true);
    EXPECT_TRUE(font->Bold());
    EXPECT_EQ(font->Weight(), 700);
    font->Weight(400);
    EXPECT_FALSE(font->Bold());
    font->Size(9.123456);
    EXPECT_DOUBLE_EQ(font->Size(), 9.1235);
    font->Size(9.1235);  // unchanged: no notification
    EXPECT_EQ(heard, (std::vector<std::string>{"Bold", "Weight", "Size"}));
    token.reset();
    font->Italic(true);
    EXPECT_EQ(heard.size(), 3u);
    EXPECT_EQ(ErrorOf([&] { font->Size(0); }), 380);
}

TEST(HostPicture, SizesInPixelsAndHimetric) {
    StdPicture icon(PictureType::Icon, 16, 16, std::vector<std::uint32_t>(256));
    EXPECT_EQ(icon.Width(), 423);
    EXPECT_EQ(icon.Height(), 423);
    EXPECT_EQ(PixelsToHimetric(32), 847);
    EXPECT_EQ(ErrorOf([] { StdPicture(PictureType::Bitmap, 2, 2, std::vector<std::uint32_t>(3)); }),
              481);
}

}  // namespace
