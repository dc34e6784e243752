// Caption text without a device: access-letter markers and line breaking with a fake measure
// of 6 pixels a byte, so each case's breaks can be worked out by hand.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
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

// Proportional widths, so breaks depend on which characters a line holds and not only on
// how many: narrow "i" and "l", wide "W" and "M", multi-byte characters wider still.
std::int32_t Proportional(std::string_view piece) {
    std::int32_t width = 0;
    for (std::size_t i = 0; i < piece.size(); ++i) {
        const auto c = static_cast<unsigned char>(piece[i]);
        if (c == 'i' || c == 'l')
            width += 2;
        else if (c == 'W' || c == 'M')
            width += 11;
        else if (c >= 0xC0)
            width += 9;  // the lead byte carries a multi-byte character's width
        else if (c < 0x80)
            width += 6;
    }
    return width;
}

// The rule the breaker follows, written out the direct way: every candidate line is measured
// whole. Quadratic in a long word, but plainly right, so the real breaker must agree with it.
std::vector<TextLine> GreedyByWholeLines(
    std::string_view text, std::int32_t width,
    const std::function<std::int32_t(std::string_view)>& measure) {
    std::vector<TextLine> lines;
    const auto length = [&](std::size_t at) {
        const auto c = static_cast<unsigned char>(text[at]);
        std::size_t n = c >= 0xF0 ? 4 : c >= 0xE0 ? 3 : c >= 0xC0 ? 2 : 1;
        for (std::size_t k = 1; k < n; ++k) {
            if (at + k >= text.size() || (static_cast<unsigned char>(text[at + k]) & 0xC0) != 0x80)
                return std::size_t{1};
        }
        return n;
    };
    const auto paragraph = [&](std::size_t begin, std::size_t end) {
        if (begin == end) {
            lines.push_back({begin, end});
            return;
        }
        std::size_t start = begin;
        while (start < end) {
            std::size_t lineEnd = start, next = start, i = start;
            bool any = false;
            while (i < end) {
                std::size_t j = i;
                while (j < end && text[j] != ' ') ++j;
                if (measure(text.substr(start, j - start)) > width) {
                    if (!any) {
                        std::size_t cut = start + length(start);
                        while (cut < j &&
                               measure(text.substr(start, cut + length(cut) - start)) <= width)
                            cut += length(cut);
                        lineEnd = next = std::min(cut, j);
                    }
                    break;
                }
                lineEnd = j;
                next = j;
                while (next < end && text[next] == ' ') ++next;
                any = true;
                i = next;
            }
            lines.push_back({start, lineEnd});
            start = next;
        }
    };
    std::size_t begin = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\r' && text[i] != '\n') continue;
        paragraph(begin, i);
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
        begin = i + 1;
    }
    paragraph(begin, text.size());
    return lines;
}

TEST(TextLayout, LineBreaksAgreeWithWholeLineMeasuring) {
    const std::vector<std::string> texts{
        "Korvex Tools",
        "Illumination with WWW and MMM mixed in little words",
        "Supercalifragilisticexpialidocious is long, iiiiiiiiiiiiiiiiiiiiiiii is narrow",
        "  two leading, three   inner and trailing spaces   ",
        "Gr\xC3\xBC\xC3\x9F\xC3\xA9 \xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC \xF0\x9F\x98\x80 und "
        "\xC3\xA4\xC3\xB6\xC3\xBC\xC3\xA4\xC3\xB6\xC3\xBC\xC3\xA4\xC3\xB6\xC3\xBC",
        "broken \xC3 bytes \xE2\x82 and \xFF\xFE lone \x80 continuation",
        "line one\r\nline two\rline three\n\nafter a blank line",
        "W",
        "",
        std::string(300, 'W') + " " + std::string(200, 'i') + " tail",
    };
    for (const std::string& text : texts) {
        for (const std::int32_t width : {0, 1, 5, 11, 12, 20, 47, 60, 100, 1000}) {
            const std::vector<TextLine> expected = GreedyByWholeLines(text, width, Proportional);
            const std::vector<TextLine> got = BreakLines(text, width, Proportional);
            ASSERT_EQ(got.size(), expected.size()) << text << " at " << width;
            for (std::size_t i = 0; i < got.size(); ++i) {
                EXPECT_EQ(got[i].begin, expected[i].begin) << text << " at " << width;
                EXPECT_EQ(got[i].end, expected[i].end) << text << " at " << width;
            }
        }
    }
}

// A caption that is one long word is cut into many lines; measuring each candidate line whole
// would hand the measure the rest of the word for every line. The breaker measures each
// distinct character once, so the work follows the text's length.
TEST(TextLayout, LongWordIsMeasuredInLinearWork) {
    for (const std::size_t length : {1000u, 100000u}) {
        const std::string word(length, 'x');
        std::size_t measured = 0;
        const auto counting = [&](std::string_view piece) {
            measured += piece.size();
            return static_cast<std::int32_t>(piece.size()) * 6;
        };
        const std::vector<TextLine> lines = BreakLines(word, 60, counting);
        ASSERT_EQ(lines.size(), length / 10);
        EXPECT_EQ(lines.back().end, length);
        EXPECT_LE(measured, 4u) << length;
    }
}

}  // namespace
}  // namespace korvex::forms
