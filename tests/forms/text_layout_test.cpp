// Caption text without a device: access-letter markers and line breaking with a fake measure
// of 6 pixels a byte, so each case's breaks can be worked out by hand.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "forms/text_layout.hpp"

namespace korvex::forms {
namespace {

TEST(TextLayout, MnemonicMarkers) {
    struct Case {
        std::string caption;
        std::string text;
        std::ptrdiff_t underline;
        char32_t key;
    };
    const std::vector<Case> cases{
        {"&&a", "&a", -1, 0},
        {"&Yes", "Yes", 0, U'Y'},
        {"a&b&c", "abc", 1, U'B'},  // the first marker names the key
        {"x&&&y", "x&y", 2, U'Y'},
        {"end&", "end", -1, 0},                       // a marker with nothing to mark
        {"&\xC3\xA4nd", "\xC3\xA4nd", 0, U'\u00C4'},  // upper-cased as UCase does
        {"plain", "plain", -1, 0},
    };
    for (const Case& c : cases) {
        const MnemonicText parsed = ParseMnemonic(c.caption);
        EXPECT_EQ(parsed.text, c.text) << c.caption;
        EXPECT_EQ(parsed.underline, c.underline) << c.caption;
        EXPECT_EQ(parsed.accessKey, c.key) << c.caption;
    }
    EXPECT_EQ(ParseMnemonic("&\xC3\xA4nd").underlineLength, 2u);
    const MnemonicText off = ParseMnemonic("&&a&b", false);
    EXPECT_EQ(off.text, "&&a&b");
    EXPECT_EQ(off.accessKey, U'\0');
}

std::vector<std::string> Lines(std::string_view text, std::int32_t width) {
    std::vector<std::string> out;
    const auto measure = [](std::string_view s) { return static_cast<std::int32_t>(s.size()) * 6; };
    for (const TextLine& line : BreakLines(text, width, measure))
        out.emplace_back(text.substr(line.begin, line.end - line.begin));
    return out;
}

TEST(TextLayout, LineBreaks) {
    using V = std::vector<std::string>;
    EXPECT_EQ(Lines("one two three", 42), (V{"one two", "three"}));
    EXPECT_EQ(Lines("one two three", 41), (V{"one", "two", "three"}));
    EXPECT_EQ(Lines("one   two", 18), (V{"one", "two"}));            // the spaces at a break vanish
    EXPECT_EQ(Lines("  lead", 60), (V{"  lead"}));                   // leading spaces stay
    EXPECT_EQ(Lines("abcdefgh ij", 30), (V{"abcde", "fgh", "ij"}));  // a long word is cut
    EXPECT_EQ(Lines("abc", 1), (V{"a", "b", "c"}));  // at least one character a line
    EXPECT_EQ(Lines("a\r\nb\nc\rd", 100), (V{"a", "b", "c", "d"}));
    EXPECT_EQ(Lines("a\n\nb", 100), (V{"a", "", "b"}));
    EXPECT_EQ(Lines("", 100), (V{""}));
    EXPECT_EQ(Lines("no wrap at all", -1), (V{"no wrap at all"}));
}

}  // namespace
}  // namespace korvex::forms
