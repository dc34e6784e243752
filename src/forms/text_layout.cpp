#include "forms/text_layout.hpp"

#include <algorithm>
#include <array>
#include <optional>
#include <unordered_map>

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

namespace {

// Widths of the code points of one text, each measured once per distinct code point and summed
// from the left, so the width of any piece between code point boundaries costs two lookups.
// Measuring whole candidate lines instead costs the line's length each time, which made a long
// word quadratic.
class PrefixWidths {
  public:
    PrefixWidths(std::string_view text,
                 const std::function<std::int32_t(std::string_view)>& measure)
        : text_(text), measure_(measure), sums_(text.size() + 1, 0) {}

    // Sums up to every code point boundary in [begin, end], decoding from begin.
    void Fill(std::size_t begin, std::size_t end) {
        std::int64_t sum = 0;
        sums_[begin] = 0;
        for (std::size_t pos = begin; pos < end;) {
            const std::size_t n = std::min(CodePointLength(text_, pos), end - pos);
            sum += Width(text_.substr(pos, n));
            pos += n;
            sums_[pos] = sum;
        }
    }
    // The width of [from, to); both must be boundaries inside the last range filled.
    [[nodiscard]] std::int64_t Between(std::size_t from, std::size_t to) const {
        return sums_[to] - sums_[from];
    }

  private:
    std::int32_t Width(std::string_view codePoint) {
        const auto first = static_cast<unsigned char>(codePoint[0]);
        if (codePoint.size() == 1 && first < 0x80) {
            if (!ascii_[first]) ascii_[first] = measure_(codePoint);
            return *ascii_[first];
        }
        std::uint64_t key = codePoint.size();
        for (const char c : codePoint) key = (key << 8) | static_cast<unsigned char>(c);
        const auto found = other_.find(key);
        if (found != other_.end()) return found->second;
        return other_.emplace(key, measure_(codePoint)).first->second;
    }

    std::string_view text_;
    const std::function<std::int32_t(std::string_view)>& measure_;
    std::vector<std::int64_t> sums_;
    std::array<std::optional<std::int32_t>, 0x80> ascii_{};
    std::unordered_map<std::uint64_t, std::int32_t> other_;
};

}  // namespace

std::vector<TextLine> BreakLines(std::string_view text, std::int32_t wrapWidth,
                                 const std::function<std::int32_t(std::string_view)>& measure) {
    std::vector<TextLine> lines;
    std::optional<PrefixWidths> widths;
    if (wrapWidth >= 0) widths.emplace(text, measure);

    auto breakParagraph = [&](std::size_t begin, std::size_t end) {
        if (wrapWidth < 0 || begin == end) {
            lines.push_back({begin, end});
            return;
        }
        widths->Fill(begin, end);
        const auto fits = [&](std::size_t from, std::size_t to) {
            return widths->Between(from, to) <= wrapWidth;
        };
        // The word last scanned, so that a long word cut over many lines is scanned once.
        std::size_t scannedFrom = end + 1, scannedEnd = end + 1;
        const auto wordEnd = [&](std::size_t i) {
            if (i >= scannedFrom && i <= scannedEnd) return scannedEnd;
            std::size_t j = i;
            while (j < end && text[j] != ' ') ++j;
            scannedFrom = i;
            scannedEnd = j;
            return j;
        };
        std::size_t start = begin;
        while (true) {
            // Greedy: take words while the line up to the end of the word fits.
            std::size_t lineEnd = start;
            std::size_t next = start;
            bool any = false;
            for (std::size_t i = start; i < end;) {
                const std::size_t j = wordEnd(i);
                if (!fits(start, j) && any) break;
                if (!fits(start, j)) {
                    // The first word alone is too wide: cut it after the last character that
                    // fits, at least one so that the layout always advances.
                    std::size_t cut = start + CodePointLength(text, start);
                    for (std::size_t c = cut; c < j;) {
                        const std::size_t n = CodePointLength(text, c);
                        if (!fits(start, c + n)) break;
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
