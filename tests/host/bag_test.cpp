#include <gtest/gtest.h>

#include "support/error_of.hpp"

#include "base/error.hpp"
#include "host/font.hpp"
#include "host/property_bag.hpp"
#include "host/type_info.hpp"

using namespace korvex::host;

using korvex::test::ErrorOf;

namespace {

TEST(JsonPropertyBag, ValueEqualToWriteDefaultIsNotStored) {
    JsonPropertyBag bag;
    bag.WriteProperty("Caption", "", "");
    bag.WriteProperty("Value", std::int16_t{7}, std::int16_t{7});
    bag.WriteProperty("Enabled", true, true);
    bag.WriteProperty("Color", Variant(0x8000000Fu), Variant(0x8000000Fu));
    // Equal by the host's rules, not by kind or identity: Integer 7 and Long 7, True and -1, a
    // font and its copy.
    bag.WriteProperty("Width", std::int16_t{7}, std::int32_t{7});
    bag.WriteProperty("Shown", true, std::int16_t{-1});
    const auto font = std::make_shared<StdFont>();
    bag.WriteProperty("Font", font->Clone(), font);
    EXPECT_TRUE(bag.Empty());

    bag.WriteProperty("Value", std::int16_t{8}, std::int16_t{7});
    EXPECT_TRUE(bag.Contains("Value"));
    // Writing the default again forgets the earlier value.
    bag.WriteProperty("Value", std::int16_t{7}, std::int16_t{7});
    EXPECT_FALSE(bag.Contains("Value"));
    // Without a default every value is stored, even an empty one.
    bag.WriteProperty("Tag", "");
    EXPECT_TRUE(bag.Contains("Tag"));
}

TEST(JsonPropertyBag, MissingKeyYieldsTheReadDefault) {
    JsonPropertyBag bag;
    EXPECT_EQ(bag.ReadProperty("Value", std::int16_t{3}), Variant(std::int16_t{3}));
    EXPECT_TRUE(bag.ReadProperty("Nothing here").IsEmpty());

    // Read default 0x8000000F, write default 0x80000005: a value equal to the write default is
    // not stored and so comes back as the read default.
    const Variant readDefault(0x8000000Fu), writeDefault(0x80000005u);
    bag.WriteProperty("BackColor", writeDefault, writeDefault);
    EXPECT_EQ(bag.ReadProperty("BackColor", readDefault), readDefault);
}

TEST(JsonPropertyBag, ReadConvertsToTheDefaultsKind) {
    JsonPropertyBag bag;
    bag.WriteProperty("Value", "12");
    bag.WriteProperty("Flag", std::int16_t{-1});
    bag.WriteProperty("Text", 2.5);
    bag.WriteProperty("Bad", "12abc");
    bag.WriteProperty("Big", 100000);
    EXPECT_EQ(bag.ReadProperty("Value", std::int16_t{0}), Variant(std::int16_t{12}));
    EXPECT_EQ(bag.ReadProperty("Flag", false), Variant(true));
    EXPECT_EQ(bag.ReadProperty("Text", ""), Variant("2.5"));
    EXPECT_EQ(ErrorOf([&] { (void)bag.ReadProperty("Bad", std::int16_t{0}); }), 13);
    EXPECT_EQ(ErrorOf([&] { (void)bag.ReadProperty("Big", std::int16_t{0}); }), 6);
    EXPECT_EQ(ErrorOf([&] { (void)bag.ReadProperty("Value", std::make_shared<StdFont>()); }), 13);
}

TEST(JsonPropertyBag, KeysKeepOrderAndMatchWithoutCase) {
    JsonPropertyBag bag;
    bag.WriteProperty("Zeta", 1);
    bag.WriteProperty("Alpha", 2);
    bag.WriteProperty("zeta", 3);  // same key: replaced in place
    ASSERT_EQ(bag.Entries().size(), 2u);
    EXPECT_EQ(bag.Entries()[0].first, "Zeta");
    EXPECT_EQ(bag.Entries()[0].second, Variant(3));
    EXPECT_EQ(bag.ReadProperty("ALPHA", 0), Variant(2));
}

TEST(JsonPropertyBag, FontsAreStoredAsTheyWereWhenWritten) {
    auto font = std::make_shared<StdFont>("Arial", 10);
    JsonPropertyBag bag;
    bag.WriteProperty("Font", font);
    font->Bold(true);
    EXPECT_FALSE(bag.ReadProperty("Font").ToFont()->Bold());
}

TEST(JsonPropertyBag, JsonRoundTripsEveryValueKind) {
    auto font = std::make_shared<StdFont>("Times New Roman", 12.75, true);
    font->Italic(true);
    font->Underline(true);
    font->Strikethrough(true);
    font->Charset(2);
    auto picture = std::make_shared<StdPicture>(
        PictureType::Icon, 3, 2,
        std::vector<std::uint32_t>{0xFF000000, 0x00FFFFFF, 0xFF123456, 0x80ABCDEF, 0, 0xFFFFFFFF});
    const std::pair<const char*, Variant> values[] = {{"Empty", Variant()},
                                                      {"Boolean", true},
                                                      {"Integer", std::int16_t{-32768}},
                                                      {"Long", 2147483647},
                                                      {"Color", Variant(0x8000000Fu)},
                                                      {"Single", 1.1f},
                                                      {"Double", 2.0},
                                                      {"String", "Grüße \"quoted\"\nline"},
                                                      {"Font", font},
                                                      {"Picture", picture},
                                                      {"Nothing", Variant::Nothing()},
                                                      {"Missing", Variant::Missing()}};
    JsonPropertyBag bag;
    for (const auto& [name, value] : values) bag.WriteProperty(name, value);
    const JsonPropertyBag back = JsonPropertyBag::FromJson(bag.ToJson());
    EXPECT_EQ(back, bag) << bag.ToJson();
    EXPECT_EQ(back.ReadProperty("Single").Kind(), VarKind::Single);
    EXPECT_EQ(back.ReadProperty("Double").Kind(), VarKind::Double);
    EXPECT_EQ(back.ReadProperty("Integer").Kind(), VarKind::Integer);
    EXPECT_EQ(back.ReadProperty("Font").ToFont()->Charset(), 2);
    EXPECT_EQ(back.ReadProperty("Picture").ToPicture()->Pixels()[3], 0x80ABCDEFu);
}

TEST(JsonPropertyBag, JsonWrittenByHandIsRead) {
    const JsonPropertyBag bag = JsonPropertyBag::FromJson(
        R"({"BackColor": 2147483663, "Caption": "Hi", "Size": 1.5, "Count": 3,
            "Font": {"Font": {"Name": "Arial", "Size": 9}}})");
    EXPECT_EQ(bag.ReadProperty("BackColor", Variant(0u)).ToLong(),
              static_cast<std::int32_t>(0x8000000F));
    EXPECT_EQ(bag.ReadProperty("Count", std::int16_t{0}), Variant(std::int16_t{3}));
    EXPECT_EQ(bag.ReadProperty("Font").ToFont()->Name(), "Arial");
    EXPECT_FALSE(bag.ReadProperty("Font").ToFont()->Bold());
}

TEST(JsonPropertyBag, PlainNumbersBeyondLongKeepTheirValue) {
    const JsonPropertyBag bag = JsonPropertyBag::FromJson(
        R"({"Big": 18446744073709551615, "Low": -9223372036854775808, "Wide": 4294967296})");
    EXPECT_EQ(bag.ReadProperty("Big").Kind(), VarKind::Double);
    EXPECT_DOUBLE_EQ(bag.ReadProperty("Big").ToDouble(), 18446744073709551615.0);
    EXPECT_DOUBLE_EQ(bag.ReadProperty("Low").ToDouble(), -9223372036854775808.0);
    EXPECT_DOUBLE_EQ(bag.ReadProperty("Wide").ToDouble(), 4294967296.0);
}

TEST(JsonPropertyBag, MalformedJsonIsAClearError) {
    const std::pair<const char*, int> cases[] = {
        {"{", 380},
        {"[1]", 380},
        {R"({"X": {"Unknown": 1}})", 380},
        {R"({"X": {"Integer": 40000}})", 380},
        // Numbers beyond a field's type are refused, not wrapped or cast undefined.
        {R"({"X": {"Integer": 6.5e93}})", 380},
        {R"({"X": {"Integer": 18446744073709551615}})", 380},
        {R"({"F": {"Font": {"Name": "Arial", "Weight": 70000}}})", 380},
        {R"({"F": {"Font": {"Name": "Arial", "Charset": -1e300}}})", 380},
        {R"({"P": {"Picture": {"Width": 1e20, "Height": 1, "Pixels": ""}}})", 380},
        {R"({"P": {"Picture": {"Width": 2, "Height": 2, "Pixels": "AAAAAA=="}}})", 481}};
    for (const auto& [text, error] : cases)
        EXPECT_EQ(ErrorOf([&] { (void)JsonPropertyBag::FromJson(text); }), error) << text;
}

TEST(JsonPropertyBag, ObjectsThatCannotPersistAreRefused) {
    class Plain final : public Object {
        const ClassInfo& TypeInfo() const override {
            static const ClassInfo info;
            return info;
        }
    };
    JsonPropertyBag bag;
    EXPECT_EQ(ErrorOf([&] {
                  bag.WriteProperty("Obj", std::shared_ptr<Object>(std::make_shared<Plain>()));
              }),
              330);
    EXPECT_TRUE(bag.Empty());
}

}  // namespace
