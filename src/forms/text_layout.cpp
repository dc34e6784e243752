#include "forms/text_layout.hpp"

#include <algorithm>

#include "base/utf8.hpp"

namespace korvex::forms {

namespace {

// Bytes of the code point at `pos`.
std::size_t CodePointLength(std::string_view text, std::size_t pos) {
    std::size_t next = pos;
    NextCodePoint(text, next);
    return next - pos;
}

}  // namespace

MnemonicText ParseMnemonic(std::string_view caption, bool useMnemonic) {
    MnemonicText out;
    if (!useMnemonic) {
        out.text = caption;
        return out;
    }
    out.text.reserve(caption.size());
    for (std::size_t i = 0; i < caption.size(); ++i) {
        if (caption[i] != '&') {
            out.text += caption[i];
            continue;
        }
        if (i + 1 == caption.size()) break;  // trailing marker: nothing to mark
        if (caption[i + 1] == '&') {
            out.text += '&';
            ++i;
            continue;
        }
        if (out.underline < 0) {
            std::size_t next = i + 1;
            const char32_t key = NextCodePoint(caption, next);
            out.underline = static_cast<std::ptrdiff_t>(out.text.size());
            out.underlineLength = next - i - 1;
            out.accessKey = UpperCaseLatin1(key);
        }
        // The marked character itself is copied by the next turn of the loop.
    }
    return out;
}

std::vector<TextLine> BreakLines(std::string_view text, std::int32_t wrapWidth,
                                 const std::function<std::int32_t(std::string_view)>& measure) {
    std::vector<TextLine> lines;
    auto breakParagraph = [&](std::size_t begin, std::size_t end) {
        if (wrapWidth < 0 || begin == end) {
            lines.push_back({begin, end});
            return;
        }
        std::size_t start = begin;
        while (true) {
            // Greedy: take words while the line up to the end of the word fits.
            std::size_t lineEnd = start;
            std::size_t next = start;
            bool any = false;
            for (std::size_t i = start; i < end;) {
                std::size_t j = i;
                while (j < end && text[j] != ' ') ++j;
                const bool fits = measure(text.substr(start, j - start)) <= wrapWidth;
                if (!fits && any) break;
                if (!fits) {
                    // The first word alone is too wide: cut it after the last character that
                    // fits, at least one so that the layout always advances.
                    std::size_t cut = start + CodePointLength(text, start);
                    for (std::size_t c = cut; c < j;) {
                        const std::size_t n = CodePointLength(text, c);
                        if (measure(text.substr(start, c + n - start)) > wrapWidth) break;
                        c += n;
                        cut = c;
                    }
                    lineEnd = next = std::min(cut, j);
                    any = true;
                    break;
                }
                std::size_t k = j;
                while (k < end && text[k] == ' ') ++k;
                lineEnd = j;
                next = k;
                any = true;
                i = k;
            }
            lines.push_back({start, lineEnd});
            if (next >= end) return;
            start = next;
        }
    };

    std::size_t begin = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\r' && text[i] != '\n') continue;
        breakParagraph(begin, i);
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
        begin = i + 1;
    }
    breakParagraph(begin, text.size());
    return lines;
}

}  // namespace korvex::forms
