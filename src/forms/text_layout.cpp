#include "forms/text_layout.hpp"

#include <algorithm>

namespace korvex::forms {

namespace {

std::size_t Utf8Length(unsigned char lead) {
    if (lead < 0x80) return 1;
    if ((lead >> 5) == 0x6) return 2;
    if ((lead >> 4) == 0xE) return 3;
    if ((lead >> 3) == 0x1E) return 4;
    return 1;  // a stray continuation byte counts as one character
}

char32_t DecodeUtf8(std::string_view s) {
    if (s.empty()) return 0;
    const auto lead = static_cast<unsigned char>(s[0]);
    const std::size_t n = std::min(Utf8Length(lead), s.size());
    if (n == 1) return lead;
    char32_t c = lead & (0xFF >> (n + 1));
    for (std::size_t i = 1; i < n; ++i) c = (c << 6) | (static_cast<unsigned char>(s[i]) & 0x3F);
    return c;
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
        const std::size_t length = std::min(Utf8Length(static_cast<unsigned char>(caption[i + 1])),
                                            caption.size() - i - 1);
        if (out.underline < 0) {
            out.underline = static_cast<std::ptrdiff_t>(out.text.size());
            out.underlineLength = length;
            char32_t key = DecodeUtf8(caption.substr(i + 1, length));
            if (key >= 'a' && key <= 'z') key -= 'a' - 'A';
            out.accessKey = key;
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
                    std::size_t cut = start + Utf8Length(static_cast<unsigned char>(text[start]));
                    for (std::size_t c = cut; c < j;) {
                        const std::size_t n = Utf8Length(static_cast<unsigned char>(text[c]));
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
