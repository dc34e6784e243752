// Border painters as data: each border is a list of passes, each pass one colour and a few lines
// written as their coordinates (L, T, R, B of the rectangle, i the ring, W the width), parsed at
// compile time so the tables below read like the drawings they make.
//
// Sections: table notation · tables · painter

#include "foundation/border.hpp"

#include <array>
#include <initializer_list>
#include <limits>
#include <span>
#include <string_view>

#include "base/error.hpp"
#include "foundation/color.hpp"

namespace korvex::foundation {

namespace {

// ---------------------------------------------------------------------------------------------
// Table notation

// One coordinate: an edge of the rectangle, then up to two terms added or subtracted left to
// right ("R-i-1" is (R - i) - 1), each sum checked as the host checks 32-bit arithmetic.
struct Term {
    std::int8_t sign = 0;  // +1 or -1
    char what = 0;         // 'i', 'W' or '#' for the constant
    std::int8_t value = 0;
};
struct Coord {
    char edge = 0;  // 'L', 'T', 'R' or 'B'
    std::uint8_t count = 0;
    std::array<Term, 2> terms{};
};
// From one point to another; the end point itself is not painted.
struct Line {
    Coord x0, y0, x1, y1;
};

// A malformed entry fails to compile: a throw is not a constant expression.
consteval void Expect(bool ok) {
    if (!ok) throw "malformed border table entry";
}

consteval Coord ParseCoord(std::string_view s) {
    Coord c;
    Expect(!s.empty() && std::string_view("LTRB").find(s[0]) != std::string_view::npos);
    c.edge = s[0];
    std::size_t pos = 1;
    while (pos < s.size()) {
        Expect(c.count < 2 && (s[pos] == '+' || s[pos] == '-') && pos + 1 < s.size());
        Term t;
        t.sign = s[pos] == '+' ? 1 : -1;
        const char next = s[pos + 1];
        if (next == 'i' || next == 'W') {
            t.what = next;
            pos += 2;
        } else {
            Expect(next >= '0' && next <= '9');
            t.what = '#';
            t.value = static_cast<std::int8_t>(next - '0');
            pos += 2;
        }
        c.terms[c.count++] = t;
    }
    return c;
}

// "(L+i-1, T+i-1) to (R-i, T+i-1)"
consteval Line Ln(std::string_view s) {
    std::array<Coord, 4> coords{};
    std::size_t pos = 0;
    for (int k = 0; k < 4; ++k) {
        const bool first = (k % 2) == 0;
        if (first) {
            if (k == 2) {
                Expect(s.substr(pos, 4) == " to ");
                pos += 4;
            }
            Expect(s[pos] == '(');
            ++pos;
        }
        const char stop = first ? ',' : ')';
        const std::size_t end = s.find(stop, pos);
        Expect(end != std::string_view::npos);
        coords[static_cast<std::size_t>(k)] = ParseCoord(s.substr(pos, end - pos));
        pos = end + 1;
        if (first) {
            Expect(s[pos] == ' ');
            ++pos;
        }
    }
    Expect(pos == s.size());
    return Line{coords[0], coords[1], coords[2], coords[3]};
}

// How often a pass draws its lines: once per ring i = 1..W (none when W < 1), once with W
// only, or for exactly the two rings i = W and i = W + 1.
enum class Repeat : std::uint8_t { kPerUnit, kOnce, kLastTwo };

struct Pass {
    std::uint8_t color = 0;  // 1 to 6
    Repeat repeat = Repeat::kPerUnit;
    std::uint8_t count = 0;
    std::array<Line, 4> lines{};

    consteval Pass(int colorNumber, Repeat r, std::initializer_list<Line> list)
        : color(static_cast<std::uint8_t>(colorNumber)), repeat(r) {
        Expect(colorNumber >= 1 && colorNumber <= 6 && list.size() <= lines.size());
        for (const Line& line : list) lines[count++] = line;
    }
};

// ---------------------------------------------------------------------------------------------
// Tables
//
// What each pass paints (ring i = 1 is the outermost, Cn = Color n):
//
//   Style 1 single bevel     1 C2 top and left edges of ring i
//                            2 C1 bottom and right edges of ring i (right edge one pixel longer)
//   Style 2 double bevel     1 C2 top and left of ring i      2 C1 bottom and right of ring i
//                            3 C4 top and left just inside the W rings
//                            4 C3 bottom and right just inside the W rings
//   Style 3 outlined bevel   1 C1 the full outline of ring i
//                            2 C2 top and left one ring in    3 C3 bottom and right one ring in
//                            4 C4 top and left inside those   5 C5 bottom and right inside those
//   Style 4 rounded frame    1-4 C1 the outline with its corner pixels cut, two rings deep
//                            5 C3 top highlight   6 C2 left and right sides   7 C4 bottom shade
//                            8 C5 two rows under the top   9 C6 two rows over the bottom,
//                              always rings W and W+1
//   XP frame (style 1)       1-4 C4 the rounded outline, two rings deep
//                            5, 7 C2 sides   6 C6 top   8 C5 bottom   9 C1 second row
//                            10 C1 second-last row   11, 12 C3 the same rows shortened by one
//                              pixel at each end
//
// Later passes paint over earlier ones; the order is part of the look.

constexpr Pass kSingleBevel[] = {
    {2,
     Repeat::kPerUnit,
     {Ln("(L+i-1, T+i-1) to (R-i, T+i-1)"), Ln("(L+i-1, T+i-1) to (L+i-1, B-i)")}},
    {1, Repeat::kPerUnit, {Ln("(L+i-1, B-i) to (R-i, B-i)"), Ln("(R-i, T+i-1) to (R-i, B-i+1)")}},
};

constexpr Pass kDoubleBevel[] = {
    {2,
     Repeat::kPerUnit,
     {Ln("(L+i-1, T+i-1) to (R-i, T+i-1)"), Ln("(L+i-1, T+i-1) to (L+i-1, B-i)")}},
    {1, Repeat::kPerUnit, {Ln("(L+i-1, B-i) to (R-i+1, B-i)"), Ln("(R-i, T+i-1) to (R-i, B-i)")}},
    {4, Repeat::kOnce, {Ln("(L+W, T+W) to (R-W, T+W)"), Ln("(L+W, T+W) to (L+W, B-W)")}},
    {3, Repeat::kOnce, {Ln("(L+W, B-W-1) to (R-W-1, B-W-1)"), Ln("(R-W-1, T+W) to (R-W-1, B-W)")}},
};

constexpr Pass kOutlinedBevel[] = {
    {1,
     Repeat::kPerUnit,
     {Ln("(L+i-1, T+i-1) to (R-i, T+i-1)"), Ln("(L+i-1, T+i-1) to (L+i-1, B-i)"),
      Ln("(L+i-1, B-i) to (R-i+1, B-i)"), Ln("(R-i, T+i-1) to (R-i, B-i)")}},
    {2, Repeat::kPerUnit, {Ln("(L+i, T+i) to (R-i, T+i)"), Ln("(L+i, T+i+1) to (L+i, B-i)")}},
    {3,
     Repeat::kPerUnit,
     {Ln("(L+i+1, B-i-1) to (R-i, B-i-1)"), Ln("(R-i-1, T+i+1) to (R-i-1, B-i-1)")}},
    {4,
     Repeat::kOnce,
     {Ln("(L+W+1, T+W+1) to (R-W-1, T+W+1)"), Ln("(L+W+1, T+W+1) to (L+W+1, B-W-1)")}},
    {5,
     Repeat::kOnce,
     {Ln("(L+W+2, B-W-2) to (R-W-1, B-W-2)"), Ln("(R-W-2, T+W+2) to (R-W-2, B-W-2)")}},
};

constexpr Pass kRoundedFrame[] = {
    {1,
     Repeat::kPerUnit,
     {Ln("(L+i+1, T+i-1) to (R-i-1, T+i-1)"), Ln("(L+i+1, B-i) to (R-i-1, B-i)")}},
    {1,
     Repeat::kPerUnit,
     {Ln("(L+i-1, T+i+1) to (L+i-1, B-i-1)"), Ln("(R-i, T+i+1) to (R-i, B-i-1)")}},
    {1, Repeat::kPerUnit, {Ln("(L+i, T+i) to (R-i, T+i)"), Ln("(L+i, T+i+1) to (L+i, B-i)")}},
    {1,
     Repeat::kPerUnit,
     {Ln("(L+i+1, B-i-1) to (R-i, B-i-1)"), Ln("(R-i-1, T+i+1) to (R-i-1, B-i-1)")}},
    {3, Repeat::kPerUnit, {Ln("(L+i+1, T+i) to (R-i-1, T+i)")}},
    {2,
     Repeat::kPerUnit,
     {Ln("(L+i, T+i+1) to (L+i, B-i-1)"), Ln("(R-i-1, T+i+1) to (R-i-1, B-i-1)")}},
    {4, Repeat::kPerUnit, {Ln("(L+i+1, B-i-1) to (R-i-1, B-i-1)")}},
    {5, Repeat::kLastTwo, {Ln("(L+i, T+i+1) to (R-i-1, T+i+1)")}},
    {6, Repeat::kLastTwo, {Ln("(L+i+1, B-i-2) to (R-i-1, B-i-2)")}},
};

constexpr Pass kXPFrame[] = {
    {4,
     Repeat::kPerUnit,
     {Ln("(L+i+1, T+i-1) to (R-i-1, T+i-1)"), Ln("(L+i-1, T+i+1) to (L+i-1, B-i-1)")}},
    {4, Repeat::kPerUnit, {Ln("(L+i+1, B-i) to (R-i-1, B-i)"), Ln("(R-i, T+i+1) to (R-i, B-i-1)")}},
    {4, Repeat::kPerUnit, {Ln("(L+i, T+i) to (R-i, T+i)"), Ln("(L+i, T+i+1) to (L+i, B-i)")}},
    {4,
     Repeat::kPerUnit,
     {Ln("(L+i+1, B-i-1) to (R-i, B-i-1)"), Ln("(R-i-1, T+i+1) to (R-i-1, B-i-1)")}},
    {2, Repeat::kPerUnit, {Ln("(L+i, T+i+1) to (L+i, B-i-1)")}},
    {6, Repeat::kPerUnit, {Ln("(L+i+1, T+i) to (R-i-1, T+i)")}},
    {2, Repeat::kPerUnit, {Ln("(R-i-1, T+i+1) to (R-i-1, B-i-1)")}},
    {5, Repeat::kPerUnit, {Ln("(L+i+1, B-i-1) to (R-i-1, B-i-1)")}},
    {1, Repeat::kPerUnit, {Ln("(L+i+1, T+i+1) to (R-i-1, T+i+1)")}},
    {1, Repeat::kPerUnit, {Ln("(L+i+1, B-i-2) to (R-i-1, B-i-2)")}},
    {3, Repeat::kPerUnit, {Ln("(L+i+2, T+i+1) to (R-i-2, T+i+1)")}},
    {3, Repeat::kPerUnit, {Ln("(L+i+2, B-i-2) to (R-i-2, B-i-2)")}},
};

// ---------------------------------------------------------------------------------------------
// Painter

std::int64_t CheckedAdd(std::int64_t a, std::int64_t b) {
    const std::int64_t sum = a + b;
    if (sum < std::numeric_limits<std::int32_t>::min() ||
        sum > std::numeric_limits<std::int32_t>::max()) {
        throw host::HostError(host::kErrOverflow);
    }
    return sum;
}

struct Frame {
    const platform::RECT& rect;
    std::int64_t w;

    std::int32_t Eval(const Coord& c, std::int64_t i) const {
        std::int64_t v = c.edge == 'L'   ? rect.left
                         : c.edge == 'T' ? rect.top
                         : c.edge == 'R' ? rect.right
                                         : rect.bottom;
        for (std::uint8_t k = 0; k < c.count; ++k) {
            const Term& t = c.terms[k];
            const std::int64_t operand = t.what == 'i' ? i : t.what == 'W' ? w : t.value;
            v = CheckedAdd(v, t.sign * operand);
        }
        return static_cast<std::int32_t>(v);
    }
};

void Paint(platform::Gdi& gdi, platform::HDC dc, const platform::RECT& rect,
           std::span<const Pass> passes, const std::array<platform::COLORREF, 6>& colors,
           std::int32_t penStyle, std::int32_t width) {
    const Frame frame{rect, width};
    platform::HPEN lastPen{};
    for (const Pass& pass : passes) {
        const platform::HPEN pen = gdi.CreatePen(penStyle, 1, colors[pass.color - 1u]);
        gdi.DeleteObject(gdi.SelectObject(dc, pen));
        lastPen = pen;

        const auto drawRing = [&](std::int64_t i) {
            for (std::uint8_t k = 0; k < pass.count; ++k) {
                const Line& line = pass.lines[k];
                // Start point first: an overflow in the end point leaves the move done, as
                // evaluating the arguments call by call does.
                const std::int32_t x0 = frame.Eval(line.x0, i);
                const std::int32_t y0 = frame.Eval(line.y0, i);
                gdi.MoveToEx(dc, x0, y0, nullptr);
                const std::int32_t x1 = frame.Eval(line.x1, i);
                const std::int32_t y1 = frame.Eval(line.y1, i);
                gdi.LineTo(dc, x1, y1);
            }
        };
        switch (pass.repeat) {
            case Repeat::kPerUnit:
                for (std::int64_t i = 1; i <= width; ++i) drawRing(i);
                break;
            case Repeat::kOnce:
                drawRing(0);
                break;
            case Repeat::kLastTwo:
                drawRing(width);
                drawRing(CheckedAdd(width, 1));
                break;
        }
    }
    gdi.SelectObject(dc, gdi.GetStockObject(platform::BLACK_PEN));
    if (lastPen) gdi.DeleteObject(lastPen);
}

std::array<platform::COLORREF, 6> ConvertInPlace(platform::Gdi& gdi,
                                                 std::array<host::OLE_COLOR*, 6> colors) {
    std::array<platform::COLORREF, 6> rgb{};
    for (std::size_t k = 0; k < colors.size(); ++k) {
        *colors[k] = OleColorToRGB(gdi, *colors[k]);
        rgb[k] = *colors[k];
    }
    return rgb;
}

}  // namespace

void DrawBorderStyle(platform::Gdi& gdi, platform::HDC dc, const platform::RECT& rect,
                     std::int32_t style, host::OLE_COLOR& color1, host::OLE_COLOR& color2,
                     host::OLE_COLOR& color3, host::OLE_COLOR& color4, host::OLE_COLOR& color5,
                     host::OLE_COLOR& color6, std::int32_t penStyle, std::int32_t width) {
    const auto colors = ConvertInPlace(gdi, {&color1, &color2, &color3, &color4, &color5, &color6});
    std::span<const Pass> passes;
    switch (style) {
        case 1:
            passes = kSingleBevel;
            break;
        case 2:
            passes = kDoubleBevel;
            break;
        case 3:
            passes = kOutlinedBevel;
            break;
        case 4:
            passes = kRoundedFrame;
            break;
        default:
            break;
    }
    Paint(gdi, dc, rect, passes, colors, penStyle, width);
}

void DrawXPFrame(platform::Gdi& gdi, platform::HDC dc, const platform::RECT& rect,
                 std::int32_t style, host::OLE_COLOR& color1, host::OLE_COLOR& color2,
                 host::OLE_COLOR& color3, host::OLE_COLOR& color4, host::OLE_COLOR& color5,
                 host::OLE_COLOR& color6, std::int32_t penStyle, std::int32_t width) {
    const auto colors = ConvertInPlace(gdi, {&color1, &color2, &color3, &color4, &color5, &color6});
    std::span<const Pass> passes;
    if (style == 1) passes = kXPFrame;
    Paint(gdi, dc, rect, passes, colors, penStyle, width);
}

}  // namespace korvex::foundation
