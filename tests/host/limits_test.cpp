// What the container and the form file refuse at their edges: nesting, oversized objects,
// extender values beyond their type or beyond the container's limits, and numbers beyond 64
// bits. Each is the host's error naming where, and the form stays as it was.

#include <gtest/gtest.h>

#include <string>

#include "base/error.hpp"
#include "host/container.hpp"
#include "host/form_file.hpp"
#include "host/json_codec.hpp"
#include "probe_control.hpp"
#include "support/bench.hpp"
#include "support/error_of.hpp"

using namespace korvex::host;
using korvex::test::ErrorOf;
using korvex::test::Probe;

namespace {

class LimitsTest : public ::testing::Test, public korvex::test::HostBench {
  protected:
    LimitsTest() : HostBench({Probe::Class()}) {}

    // Probes nested `depth` levels deep, F1 outermost.
    static std::string Nested(int depth) {
        std::string text = R"({"Controls": [)";
        for (int i = 1; i <= depth; ++i) {
            text += R"({"ProgID": "Korvex_Tools.Probe", "Name": "F)" + std::to_string(i) +
                    R"(", "Width": 300, "Height": 300)";
            if (i < depth) text += R"(, "Controls": [)";
        }
        text += "}";
        for (int i = 1; i < depth; ++i) text += "]}";
        return text + "]}";
    }
    static std::string OneProbe(const std::string& keys) {
        return R"({"Controls": [{"ProgID": "Korvex_Tools.Probe", "Name": "P", )" + keys + "}]}";
    }
};

TEST_F(LimitsTest, AFormFileBeyondTheLimitsIsRefusedNamingWhere) {
    std::string manyKeys = R"("Properties": {)";
    for (int i = 0; i <= 1024; ++i)
        manyKeys += (i ? ", " : "") + ("\"K" + std::to_string(i)) + "\": 1";
    manyKeys += "}";
    const struct {
        std::string text;
        int number;
        std::string says;
    } cases[] = {
        {Nested(kMaxNesting + 1), 380,
         "control F65 (Korvex_Tools.Probe): controls are nested deeper than 64 levels"},
        // Deep enough to overflow the stack of a recursive loader or parser.
        {Nested(20000), 380, "controls are nested deeper than 64 levels"},
        {OneProbe(manyKeys), 380, "control P: an object has more than 1024 keys"},
        {OneProbe(R"("Left": 4294967296)"), 6,
         R"(control P (Korvex_Tools.Probe): Overflow (key "Left", value 4294967296))"},
        {OneProbe(R"("TabIndex": 40000)"), 6, R"(Overflow (key "TabIndex", value 40000))"},
        {OneProbe(R"("Top": -9223372036854775808)"), 6,
         R"(Overflow (key "Top", value -9223372036854775808))"},
        {OneProbe(R"("Width": 18446744073709551615)"), 6, R"(key "Width")"},
        {OneProbe(R"("Left": 2147483647)"), 380,
         R"(control P (Korvex_Tools.Probe): Invalid property value (key "Left", value 2147483647)"},
        {OneProbe(R"("Width": 245745, "Height": 300)"), 380, R"((key "Width", value 245745)"},
        {OneProbe(R"("Height": -1)"), 380, R"((key "Height", value -1))"},
        {R"({"Form": {"Width": 4294967296}})", 6, R"(Form: Overflow (key "Width")"},
        {R"({"Form": {"Height": 2147483647}})", 380, R"(Form: Invalid property value)"},
        {OneProbe(R"("Properties": {"Value": {"Integer": 18446744073709551615}})"), 380, ""},
    };
    Add("Korvex_Tools.Probe", {"Keep", 120, 240, 1500, 450});
    const std::string before = SaveFormJson(form);
    for (const auto& c : cases) {
        try {
            LoadFormJson(form, c.text);
            ADD_FAILURE() << "loaded: " << c.text.substr(0, 120);
        } catch (const HostError& e) {
            EXPECT_EQ(e.Number(), c.number) << e.Description();
            EXPECT_NE(e.Description().find(c.says), std::string::npos) << e.Description();
        }
        EXPECT_EQ(SaveFormJson(form), before);
    }
}

TEST_F(LimitsTest, NestingUpToTheLimitLoads) {
    LoadFormJson(form, Nested(kMaxNesting));
    EXPECT_EQ(form.Find("F64")->Parent(), form.Find("F63"));
}

// The setters check the value on a copy: a refused one leaves the control where it was.
TEST_F(LimitsTest, ExtenderSettersRefuseValuesBeyondTheLimits) {
    Site& site = Add("Korvex_Tools.Probe", {"P", 120, 240, 1500, 450});
    const std::int32_t tpp = korvex::platform::TwipsPerPixelX(platform);
    const struct {
        const char* property;
        Variant value;
        int number;
    } cases[] = {
        {"Left", 2147483647, 380},
        {"Left", -2147483647 - 1, 380},
        {"Top", (kMaxPositionPixels + 1) * tpp, 380},
        {"Width", (kMaxExtentPixels + 1) * tpp, 380},
        {"Height", 245745, 380},
        {"Width", 1e10, 6},
        {"TabIndex", 40000, 6},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(ErrorOf([&] { form.LetProperty(site, c.property, c.value); }), c.number)
            << c.property << " " << DisplayText(c.value);
        const Extender& e = site.GetExtender();
        EXPECT_EQ((std::vector<std::int32_t>{e.Left, e.Top, e.Width, e.Height, e.TabIndex}),
                  (std::vector<std::int32_t>{120, 240, 1500, 450, 0}));
    }
    // At the limits themselves the window is placed, and its rectangle does not wrap.
    form.LetProperty(site, "Left", kMaxPositionPixels * tpp);
    form.LetProperty(site, "Width", kMaxExtentPixels * tpp);
    EXPECT_EQ(site.Bounds().right, (kMaxPositionPixels + kMaxExtentPixels) * tpp);
}

// A JSON number beyond the signed 64-bit range is a Double, not a wrapped negative Long.
TEST(JsonNumbers, BeyondSixtyFourBitsDoNotWrap) {
    const struct {
        const char* text;
        Variant expected;
    } cases[] = {
        {"-9223372036854775808", -9223372036854775808.0},
        {"9223372036854775808", 9223372036854775808.0},
        {"18446744073709551615", 18446744073709551615.0},
        {"4294967295", Variant(std::uint32_t{0xFFFFFFFF})},
        {"-2147483648", Variant(std::int32_t{-2147483647 - 1})},
    };
    for (const auto& c : cases) {
        const Variant value = json::Decode(json::Json::parse(c.text));
        EXPECT_TRUE(SameValue(value, c.expected)) << c.text << " read as " << DisplayText(value);
    }
}

}  // namespace
