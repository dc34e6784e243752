#pragma once
// Text layout of a classic static label, kept apart from any device so it can be checked on its
// own: access-letter markers ("&x" underlines x, "&&" is a literal "&") and line breaking
// (explicit CR/LF, then word breaks inside a width, a word wider than the line broken at the
// last character that fits).

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace korvex::forms {

struct MnemonicText {
    std::string text;                 // what is shown
    std::ptrdiff_t underline = -1;    // byte offset in text of the underlined character
    std::size_t underlineLength = 0;  // its UTF-8 length
    char32_t accessKey = 0;           // the access letter, upper-cased as UCase does, 0 for none
};

// With useMnemonic false the caption is shown as it is. A lone "&" at the end shows nothing.
// Only the first "&x" names the access key; later ones are shown without their "&", as
// DrawText does, and only the first is underlined.
MnemonicText ParseMnemonic(std::string_view caption, bool useMnemonic = true);

struct TextLine {
    std::size_t begin = 0;  // byte range in the laid-out text
    std::size_t end = 0;
};

// Breaks text into lines. `measure` gives the pixel width of a piece of text; with wrapWidth < 0
// only CR, LF and CR LF break lines. Spaces at a word break belong to neither line.
std::vector<TextLine> BreakLines(std::string_view text, std::int32_t wrapWidth,
                                 const std::function<std::int32_t(std::string_view)>& measure);

}  // namespace korvex::forms
