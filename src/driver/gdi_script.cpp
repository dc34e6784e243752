#include "driver/gdi_script.hpp"

#include "base/file.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <limits>
#include <map>
#include <sstream>

// Sections: errors · constant names · call table · parser · runner · files and command line ·
// hex output

namespace korvex::platform {

GdiScriptError::GdiScriptError(int line, const std::string& message)
    : std::runtime_error("line " + std::to_string(line) + ": " + message), line_(line) {}

namespace {

// ---------------------------------------------------------------------------------------------
// Constant names, so scripts can say R2_XORPEN instead of 7. Only gdi.hpp's own constants, so
// both runners read a script identically.

struct NamedConstant {
    std::string_view name;
    std::int64_t value;
};

// clang-format off
#define KORVEX_CONSTANT(name) NamedConstant{#name, static_cast<std::int64_t>(name)}
constexpr std::array kConstants = {
    KORVEX_CONSTANT(PS_SOLID), KORVEX_CONSTANT(PS_DASH), KORVEX_CONSTANT(PS_DOT),
    KORVEX_CONSTANT(PS_DASHDOT), KORVEX_CONSTANT(PS_DASHDOTDOT), KORVEX_CONSTANT(PS_NULL),
    KORVEX_CONSTANT(PS_INSIDEFRAME),
    KORVEX_CONSTANT(WHITE_BRUSH), KORVEX_CONSTANT(LTGRAY_BRUSH), KORVEX_CONSTANT(GRAY_BRUSH),
    KORVEX_CONSTANT(DKGRAY_BRUSH), KORVEX_CONSTANT(BLACK_BRUSH), KORVEX_CONSTANT(NULL_BRUSH),
    KORVEX_CONSTANT(WHITE_PEN), KORVEX_CONSTANT(BLACK_PEN), KORVEX_CONSTANT(NULL_PEN),
    KORVEX_CONSTANT(SYSTEM_FONT), KORVEX_CONSTANT(DEFAULT_GUI_FONT),
    KORVEX_CONSTANT(R2_BLACK), KORVEX_CONSTANT(R2_NOTMERGEPEN), KORVEX_CONSTANT(R2_MASKNOTPEN),
    KORVEX_CONSTANT(R2_NOTCOPYPEN), KORVEX_CONSTANT(R2_MASKPENNOT), KORVEX_CONSTANT(R2_NOT),
    KORVEX_CONSTANT(R2_XORPEN), KORVEX_CONSTANT(R2_NOTMASKPEN), KORVEX_CONSTANT(R2_MASKPEN),
    KORVEX_CONSTANT(R2_NOTXORPEN), KORVEX_CONSTANT(R2_NOP), KORVEX_CONSTANT(R2_MERGENOTPEN),
    KORVEX_CONSTANT(R2_COPYPEN), KORVEX_CONSTANT(R2_MERGEPENNOT), KORVEX_CONSTANT(R2_MERGEPEN),
    KORVEX_CONSTANT(R2_WHITE),
    KORVEX_CONSTANT(SRCCOPY), KORVEX_CONSTANT(SRCPAINT), KORVEX_CONSTANT(SRCAND),
    KORVEX_CONSTANT(SRCINVERT), KORVEX_CONSTANT(SRCERASE), KORVEX_CONSTANT(NOTSRCCOPY),
    KORVEX_CONSTANT(NOTSRCERASE), KORVEX_CONSTANT(MERGECOPY), KORVEX_CONSTANT(MERGEPAINT),
    KORVEX_CONSTANT(PATCOPY), KORVEX_CONSTANT(PATPAINT), KORVEX_CONSTANT(PATINVERT),
    KORVEX_CONSTANT(DSTINVERT), KORVEX_CONSTANT(BLACKNESS), KORVEX_CONSTANT(WHITENESS),
    KORVEX_CONSTANT(HS_HORIZONTAL), KORVEX_CONSTANT(HS_VERTICAL), KORVEX_CONSTANT(HS_FDIAGONAL),
    KORVEX_CONSTANT(HS_BDIAGONAL), KORVEX_CONSTANT(HS_CROSS), KORVEX_CONSTANT(HS_DIAGCROSS),
    KORVEX_CONSTANT(AC_SRC_OVER), KORVEX_CONSTANT(AC_SRC_ALPHA),
    KORVEX_CONSTANT(TRANSPARENT), KORVEX_CONSTANT(OPAQUE), KORVEX_CONSTANT(BLACKONWHITE),
    KORVEX_CONSTANT(WHITEONBLACK), KORVEX_CONSTANT(COLORONCOLOR), KORVEX_CONSTANT(HALFTONE),
    KORVEX_CONSTANT(TA_LEFT), KORVEX_CONSTANT(TA_TOP), KORVEX_CONSTANT(TA_RIGHT),
    KORVEX_CONSTANT(TA_CENTER), KORVEX_CONSTANT(TA_BOTTOM), KORVEX_CONSTANT(TA_BASELINE),
    KORVEX_CONSTANT(RGN_AND), KORVEX_CONSTANT(RGN_OR), KORVEX_CONSTANT(RGN_XOR),
    KORVEX_CONSTANT(RGN_DIFF), KORVEX_CONSTANT(RGN_COPY), KORVEX_CONSTANT(ALTERNATE),
    KORVEX_CONSTANT(WINDING),
    KORVEX_CONSTANT(BDR_RAISEDOUTER), KORVEX_CONSTANT(BDR_SUNKENOUTER),
    KORVEX_CONSTANT(BDR_RAISEDINNER), KORVEX_CONSTANT(BDR_SUNKENINNER),
    KORVEX_CONSTANT(EDGE_RAISED), KORVEX_CONSTANT(EDGE_SUNKEN), KORVEX_CONSTANT(EDGE_ETCHED),
    KORVEX_CONSTANT(EDGE_BUMP),
    KORVEX_CONSTANT(BF_LEFT), KORVEX_CONSTANT(BF_TOP), KORVEX_CONSTANT(BF_RIGHT),
    KORVEX_CONSTANT(BF_BOTTOM), KORVEX_CONSTANT(BF_TOPLEFT), KORVEX_CONSTANT(BF_BOTTOMRIGHT),
    KORVEX_CONSTANT(BF_RECT), KORVEX_CONSTANT(BF_DIAGONAL), KORVEX_CONSTANT(BF_MIDDLE),
    KORVEX_CONSTANT(BF_SOFT), KORVEX_CONSTANT(BF_ADJUST), KORVEX_CONSTANT(BF_FLAT),
    KORVEX_CONSTANT(BF_MONO),
    KORVEX_CONSTANT(COLOR_SCROLLBAR), KORVEX_CONSTANT(COLOR_BACKGROUND),
    KORVEX_CONSTANT(COLOR_ACTIVECAPTION), KORVEX_CONSTANT(COLOR_INACTIVECAPTION),
    KORVEX_CONSTANT(COLOR_MENU), KORVEX_CONSTANT(COLOR_WINDOW), KORVEX_CONSTANT(COLOR_WINDOWFRAME),
    KORVEX_CONSTANT(COLOR_MENUTEXT), KORVEX_CONSTANT(COLOR_WINDOWTEXT),
    KORVEX_CONSTANT(COLOR_CAPTIONTEXT), KORVEX_CONSTANT(COLOR_ACTIVEBORDER),
    KORVEX_CONSTANT(COLOR_INACTIVEBORDER), KORVEX_CONSTANT(COLOR_APPWORKSPACE),
    KORVEX_CONSTANT(COLOR_HIGHLIGHT), KORVEX_CONSTANT(COLOR_HIGHLIGHTTEXT),
    KORVEX_CONSTANT(COLOR_BTNFACE), KORVEX_CONSTANT(COLOR_BTNSHADOW),
    KORVEX_CONSTANT(COLOR_GRAYTEXT), KORVEX_CONSTANT(COLOR_BTNTEXT),
    KORVEX_CONSTANT(COLOR_INACTIVECAPTIONTEXT), KORVEX_CONSTANT(COLOR_BTNHIGHLIGHT),
    KORVEX_CONSTANT(COLOR_3DDKSHADOW), KORVEX_CONSTANT(COLOR_3DLIGHT),
    KORVEX_CONSTANT(COLOR_INFOTEXT), KORVEX_CONSTANT(COLOR_INFOBK), KORVEX_CONSTANT(COLOR_HOTLIGHT),
    KORVEX_CONSTANT(COLOR_GRADIENTACTIVECAPTION), KORVEX_CONSTANT(COLOR_GRADIENTINACTIVECAPTION),
    KORVEX_CONSTANT(COLOR_MENUHILIGHT), KORVEX_CONSTANT(COLOR_MENUBAR),
    KORVEX_CONSTANT(FW_NORMAL), KORVEX_CONSTANT(FW_BOLD),
};
#undef KORVEX_CONSTANT
// clang-format on

// ---------------------------------------------------------------------------------------------
// The call table. A signature lists the argument kinds in order:
//   i  number (or constant names joined by |)
//   n  name of a new object
//   o  an existing object: its name, a raw handle number, or `none`
//   p  one or more X Y pairs up to the end of the line
//   t  the rest of the line as text (at least one word)

class Runner;
using Handler = void (*)(Runner&, const GdiScriptCall&);

struct CallDef {
    std::string_view name;
    std::string_view signature;
    std::string_view usage;
    Handler run;
};

class Runner {
  public:
    explicit Runner(Gdi& gdi) : gdi_(gdi) {}

    Gdi& gdi() { return gdi_; }
    HDC dc() const { return dc_; }

    PixelView Run(const GdiScript& script);

    HGDIOBJ Object(const GdiScriptCall& call, std::size_t word) const {
        const std::string& name = call.words.at(word);
        if (name == "none") return HGDIOBJ{};
        if (IsNumberWord(name)) return HGDIOBJ{static_cast<std::uint32_t>(std::stoll(name))};
        auto it = objects_.find(name);
        if (it == objects_.end()) throw GdiScriptError(call.line, "no object named '" + name + "'");
        return it->second;
    }

    void Define(const GdiScriptCall& call, HGDIOBJ object) {
        const std::string& name = call.words.at(0);
        if (objects_.contains(name) || bitmaps_.contains(name)) {
            throw GdiScriptError(call.line, "object '" + name + "' already exists");
        }
        objects_.emplace(name, object);
    }

    void Forget(const GdiScriptCall& call, std::size_t word) {
        objects_.erase(call.words.at(word));
    }

    // A 32-bit bitmap of the script's own, selected into a memory DC: the source of AlphaBlend.
    struct Bitmap {
        HDC dc;
        HBITMAP bitmap;
    };
    void DefineBitmap(const GdiScriptCall& call, std::int32_t width, std::int32_t height);
    const Bitmap& FindBitmap(const GdiScriptCall& call, std::size_t word) const {
        const std::string& name = call.words.at(word);
        auto it = bitmaps_.find(name);
        if (it == bitmaps_.end()) throw GdiScriptError(call.line, "no bitmap named '" + name + "'");
        return it->second;
    }
    ~Runner();
    Runner(const Runner&) = delete;
    Runner& operator=(const Runner&) = delete;

    static bool IsNumberWord(std::string_view word) {
        return !word.empty() &&
               (std::isdigit(static_cast<unsigned char>(word[0])) != 0 || word[0] == '-');
    }

  private:
    Gdi& gdi_;
    HDC dc_{};
    std::map<std::string, HGDIOBJ, std::less<>> objects_;
    std::map<std::string, Bitmap, std::less<>> bitmaps_;
    std::int64_t bitmapPixels_ = 0;
};

// All of a script's own bitmaps together stay small, whatever the script asks for.
constexpr std::int64_t kMaxBitmapPixels = std::int64_t{1} << 24;

void Runner::DefineBitmap(const GdiScriptCall& call, std::int32_t width, std::int32_t height) {
    const std::string& name = call.words.at(0);
    if (objects_.contains(name) || bitmaps_.contains(name))
        throw GdiScriptError(call.line, "object '" + name + "' already exists");
    if (width < 1 || height < 1 || width > 16384 || height > 16384)
        throw GdiScriptError(call.line, "bitmap size must be 1 to 16384 pixels each way");
    if (bitmapPixels_ + std::int64_t{width} * height > kMaxBitmapPixels)
        throw GdiScriptError(call.line, "the script's bitmaps exceed 16777216 pixels together");
    const HDC dc = gdi_.CreateCompatibleDC(HDC{});
    const HBITMAP bitmap = gdi_.CreateDIBSection32(width, height);
    if (!dc || !bitmap) throw GdiScriptError(call.line, "cannot create bitmap '" + name + "'");
    gdi_.SelectObject(dc, bitmap);
    bitmapPixels_ += std::int64_t{width} * height;
    bitmaps_.emplace(name, Bitmap{dc, bitmap});
}

// The script's bitmaps go with their DCs; the canvas stays, the caller reads it.
Runner::~Runner() {
    for (const auto& [name, b] : bitmaps_) {
        gdi_.DeleteDC(b.dc);
        gdi_.DeleteObject(b.bitmap);
    }
}

std::int32_t I(const GdiScriptCall& c, std::size_t i) {
    return static_cast<std::int32_t>(c.numbers.at(i));
}
COLORREF C(const GdiScriptCall& c, std::size_t i) {
    return static_cast<COLORREF>(c.numbers.at(i));
}
RECT R(const GdiScriptCall& c, std::size_t i) {
    return RECT{I(c, i), I(c, i + 1), I(c, i + 2), I(c, i + 3)};
}

std::vector<POINT> Points(const GdiScriptCall& c, std::size_t first) {
    std::vector<POINT> points;
    for (std::size_t i = first; i + 1 < c.numbers.size(); i += 2)
        points.push_back({I(c, i), I(c, i + 1)});
    return points;
}

constexpr std::array kCalls = {
    CallDef{"CreatePen", "niii", "NAME STYLE WIDTH COLOR",
             [](Runner& r, const GdiScriptCall& c) {
                 r.Define(c, r.gdi().CreatePen(I(c, 0), I(c, 1), C(c, 2)));
             }},
    CallDef{"CreateSolidBrush", "ni", "NAME COLOR",
             [](Runner& r, const GdiScriptCall& c) {
                 r.Define(c, r.gdi().CreateSolidBrush(C(c, 0)));
             }},
    CallDef{"CreateHatchBrush", "nii", "NAME STYLE COLOR",
             [](Runner& r, const GdiScriptCall& c) {
                 r.Define(c, r.gdi().CreateHatchBrush(I(c, 0), C(c, 1)));
             }},
    CallDef{"GetStockObject", "ni", "NAME INDEX",
             [](Runner& r, const GdiScriptCall& c) {
                 r.Define(c, r.gdi().GetStockObject(I(c, 0)));
             }},
    CallDef{"CreateFont", "niit", "NAME HEIGHT WEIGHT FACE",
             [](Runner& r, const GdiScriptCall& c) {
                 LOGFONT font;
                 font.lfHeight = I(c, 0);
                 font.lfWeight = I(c, 1);
                 font.lfFaceName = c.words.at(1);
                 r.Define(c, r.gdi().CreateFontIndirect(font));
             }},
    CallDef{"CreateRectRgn", "niiii", "NAME L T R B",
             [](Runner& r, const GdiScriptCall& c) {
                 r.Define(c, r.gdi().CreateRectRgn(I(c, 0), I(c, 1), I(c, 2), I(c, 3)));
             }},
    CallDef{"CreateRoundRectRgn", "niiiiii", "NAME L T R B W H",
             [](Runner& r, const GdiScriptCall& c) {
                 r.Define(c, r.gdi().CreateRoundRectRgn(I(c, 0), I(c, 1), I(c, 2), I(c, 3), I(c, 4),
                                                        I(c, 5)));
             }},
    CallDef{"CreateEllipticRgn", "niiii", "NAME L T R B",
             [](Runner& r, const GdiScriptCall& c) {
                 r.Define(c, r.gdi().CreateEllipticRgn(I(c, 0), I(c, 1), I(c, 2), I(c, 3)));
             }},
    CallDef{"CreatePolygonRgn", "nip", "NAME MODE X1 Y1 X2 Y2 ...",
             [](Runner& r, const GdiScriptCall& c) {
                 const std::vector<POINT> points = Points(c, 1);
                 r.Define(c, r.gdi().CreatePolygonRgn(points, I(c, 0)));
             }},
    CallDef{"CombineRgn", "oooi", "DEST SRC1 SRC2 MODE",
             [](Runner& r, const GdiScriptCall& c) {
                 r.gdi().CombineRgn(r.Object(c, 0), r.Object(c, 1), r.Object(c, 2), I(c, 0));
             }},
    CallDef{"OffsetRgn", "oii", "RGN DX DY",
             [](Runner& r, const GdiScriptCall& c) {
                 r.gdi().OffsetRgn(r.Object(c, 0), I(c, 0), I(c, 1));
             }},
    CallDef{"SelectObject", "o", "NAME",
             [](Runner& r, const GdiScriptCall& c) {
                 r.gdi().SelectObject(r.dc(), r.Object(c, 0));
             }},
    CallDef{"DeleteObject", "o", "NAME",
             [](Runner& r, const GdiScriptCall& c) {
                 r.gdi().DeleteObject(r.Object(c, 0));
                 r.Forget(c, 0);
             }},
    CallDef{"MoveToEx", "ii", "X Y",
             [](Runner& r, const GdiScriptCall& c) {
                 r.gdi().MoveToEx(r.dc(), I(c, 0), I(c, 1), nullptr);
             }},
    CallDef{"SetBrushOrgEx", "ii", "X Y",
             [](Runner& r, const GdiScriptCall& c) {
                 r.gdi().SetBrushOrgEx(r.dc(), I(c, 0), I(c, 1), nullptr);
             }},
    CallDef{"LineTo", "ii", "X Y",
             [](Runner& r, const GdiScriptCall& c) { r.gdi().LineTo(r.dc(), I(c, 0), I(c, 1)); }},
    CallDef{"Polyline", "p", "X1 Y1 X2 Y2 ...",
             [](Runner& r, const GdiScriptCall& c) { r.gdi().Polyline(r.dc(), Points(c, 0)); }},
    CallDef{"Polygon", "p", "X1 Y1 X2 Y2 ...",
             [](Runner& r, const GdiScriptCall& c) { r.gdi().Polygon(r.dc(), Points(c, 0)); }},
    CallDef{"Rectangle", "iiii", "L T R B",
             [](Runner& r, const GdiScriptCall& c) {
                 r.gdi().Rectangle(r.dc(), I(c, 0), I(c, 1), I(c, 2), I(c, 3));
             }},
    CallDef{"RoundRect", "iiiiii", "L T R B W H",
             [](Runner& r, const GdiScriptCall& c) {
                 r.gdi().RoundRect(r.dc(), I(c, 0), I(c, 1), I(c, 2), I(c, 3), I(c, 4), I(c, 5));
             }},
    CallDef{"Ellipse", "iiii", "L T R B",
             [](Runner& r, const GdiScriptCall& c) {
                 r.gdi().Ellipse(r.dc(), I(c, 0), I(c, 1), I(c, 2), I(c, 3));
             }},
    CallDef{"FillRect", "iiiio", "L T R B BRUSH",
             [](Runner& r, const GdiScriptCall& c) {
                 r.gdi().FillRect(r.dc(), R(c, 0), r.Object(c, 0));
             }},
    CallDef{"FrameRect", "iiiio", "L T R B BRUSH",
             [](Runner& r, const GdiScriptCall& c) {
                 r.gdi().FrameRect(r.dc(), R(c, 0), r.Object(c, 0));
             }},
    CallDef{"InvertRect", "iiii", "L T R B",
             [](Runner& r, const GdiScriptCall& c) { r.gdi().InvertRect(r.dc(), R(c, 0)); }},
    CallDef{"PatBlt", "iiiii", "X Y W H ROP",
             [](Runner& r, const GdiScriptCall& c) {
                 r.gdi().PatBlt(r.dc(), I(c, 0), I(c, 1), I(c, 2), I(c, 3), C(c, 4));
             }},
    CallDef{"FillRgn", "oo", "RGN BRUSH",
             [](Runner& r, const GdiScriptCall& c) {
                 r.gdi().FillRgn(r.dc(), r.Object(c, 0), r.Object(c, 1));
             }},
    CallDef{"FrameRgn", "ooii", "RGN BRUSH W H",
             [](Runner& r, const GdiScriptCall& c) {
                 r.gdi().FrameRgn(r.dc(), r.Object(c, 0), r.Object(c, 1), I(c, 0), I(c, 1));
             }},
    CallDef{"PaintRgn", "o", "RGN",
             [](Runner& r, const GdiScriptCall& c) { r.gdi().PaintRgn(r.dc(), r.Object(c, 0)); }},
    CallDef{"SelectClipRgn", "o", "RGN|none",
             [](Runner& r, const GdiScriptCall& c) {
                 r.gdi().SelectClipRgn(r.dc(), r.Object(c, 0));
             }},
    CallDef{"DrawEdge", "iiiiii", "L T R B EDGE FLAGS",
             [](Runner& r, const GdiScriptCall& c) {
                 RECT rect = R(c, 0);
                 r.gdi().DrawEdge(r.dc(), &rect, static_cast<unsigned>(C(c, 4)),
                                  static_cast<unsigned>(C(c, 5)));
             }},
    CallDef{"SetROP2", "i", "MODE",
             [](Runner& r, const GdiScriptCall& c) { r.gdi().SetROP2(r.dc(), I(c, 0)); }},
    CallDef{"SetPixel", "iii", "X Y COLOR",
             [](Runner& r, const GdiScriptCall& c) {
                 r.gdi().SetPixel(r.dc(), I(c, 0), I(c, 1), C(c, 2));
             }},
    CallDef{"SetBkMode", "i", "MODE",
             [](Runner& r, const GdiScriptCall& c) { r.gdi().SetBkMode(r.dc(), I(c, 0)); }},
    CallDef{"SetBkColor", "i", "COLOR",
             [](Runner& r, const GdiScriptCall& c) { r.gdi().SetBkColor(r.dc(), C(c, 0)); }},
    CallDef{"SetTextColor", "i", "COLOR",
             [](Runner& r, const GdiScriptCall& c) { r.gdi().SetTextColor(r.dc(), C(c, 0)); }},
    CallDef{"SetTextAlign", "i", "ALIGN",
             [](Runner& r, const GdiScriptCall& c) {
                 r.gdi().SetTextAlign(r.dc(), static_cast<unsigned>(C(c, 0)));
             }},
    CallDef{"SetStretchBltMode", "i", "MODE",
             [](Runner& r, const GdiScriptCall& c) { r.gdi().SetStretchBltMode(r.dc(), I(c, 0)); }},
    CallDef{"BitBlt", "iiiiiii", "DX DY W H SX SY ROP",
             [](Runner& r, const GdiScriptCall& c) {
                 const HDC dc = r.dc();  // the canvas is its own source
                 r.gdi().BitBlt(dc, I(c, 0), I(c, 1), I(c, 2), I(c, 3), dc, I(c, 4), I(c, 5), C(c, 6));
             }},
    CallDef{"StretchBlt", "iiiiiiiii", "DX DY DW DH SX SY SW SH ROP",
             [](Runner& r, const GdiScriptCall& c) {
                 const HDC dc = r.dc();
                 r.gdi().StretchBlt(dc, I(c, 0), I(c, 1), I(c, 2), I(c, 3), dc, I(c, 4), I(c, 5),
                                    I(c, 6), I(c, 7), C(c, 8));
             }},
    // Bitmaps of 32-bit words 0xAARRGGBB, as a DIB section holds them, for AlphaBlend.
    CallDef{"CreateBitmap32", "nii", "NAME W H",
             [](Runner& r, const GdiScriptCall& c) { r.DefineBitmap(c, I(c, 0), I(c, 1)); }},
    CallDef{"FillPixels", "oiiiii", "BITMAP L T R B 0xAARRGGBB",
             [](Runner& r, const GdiScriptCall& c) {
                 const PixelView view = r.gdi().BitmapPixels(r.FindBitmap(c, 0).bitmap);
                 const std::int32_t l = std::max(I(c, 0), 0), t = std::max(I(c, 1), 0);
                 const std::int32_t right = std::min(I(c, 2), view.width);
                 const std::int32_t bottom = std::min(I(c, 3), view.height);
                 const auto word = static_cast<std::uint32_t>(c.numbers.at(4));
                 for (std::int32_t y = t; y < bottom; ++y)
                     for (std::int32_t x = l; x < right; ++x)
                         view.bits[static_cast<std::size_t>(y) * static_cast<std::size_t>(view.width) +
                                   static_cast<std::size_t>(x)] = word;
             }},
    CallDef{"AlphaBlend", "iiiioiiiiii", "DX DY DW DH BITMAP SX SY SW SH CONSTALPHA FORMAT",
             [](Runner& r, const GdiScriptCall& c) {
                 BLENDFUNCTION blend;
                 blend.SourceConstantAlpha = static_cast<std::uint8_t>(I(c, 8));
                 blend.AlphaFormat = static_cast<std::uint8_t>(I(c, 9));
                 r.gdi().AlphaBlend(r.dc(), I(c, 0), I(c, 1), I(c, 2), I(c, 3),
                                    r.FindBitmap(c, 0).dc, I(c, 4), I(c, 5), I(c, 6), I(c, 7),
                                    blend);
             }},
    CallDef{"SetSysColor", "ii", "INDEX COLOR",
             [](Runner& r, const GdiScriptCall& c) {
                 const int index = I(c, 0);
                 const COLORREF color = C(c, 1);
                 r.gdi().SetSysColors(std::span(&index, 1), std::span(&color, 1));
             }},
    CallDef{"TextOut", "iit", "X Y TEXT",
             [](Runner& r, const GdiScriptCall& c) {
                 r.gdi().TextOut(r.dc(), I(c, 0), I(c, 1), c.words.at(0));
             }},
};

constexpr std::string_view kCanvasUsage = "canvas W H [COLOR]";
constexpr std::int64_t kMaxCanvasPixels = std::int64_t{1} << 26;  // 256 MiB

// ---------------------------------------------------------------------------------------------
// Parser

struct Token {
    std::string_view text;
    std::size_t offset;  // into the line, for the rest-of-line text argument
};

std::vector<Token> Tokenize(std::string_view line) {
    std::vector<Token> tokens;
    std::size_t i = 0;
    while (i < line.size()) {
        while (i < line.size() && (line[i] == ' ' || line[i] == '\t')) ++i;
        const std::size_t start = i;
        while (i < line.size() && line[i] != ' ' && line[i] != '\t') ++i;
        if (i > start) tokens.push_back({line.substr(start, i - start), start});
    }
    return tokens;
}

std::int64_t ParseNumberPart(std::string_view part, int line) {
    for (const NamedConstant& constant : kConstants) {
        if (constant.name == part) return constant.value;
    }
    bool negative = false;
    std::string_view digits = part;
    if (!digits.empty() && digits[0] == '-') {
        negative = true;
        digits.remove_prefix(1);
    }
    int base = 10;
    if (digits.size() > 2 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X')) {
        base = 16;
        digits.remove_prefix(2);
    }
    std::int64_t value = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), value, base);
    // One sign only: from_chars takes another, and the smallest 64-bit number cannot be negated.
    if (digits.empty() || digits[0] == '-' || error != std::errc{} ||
        end != digits.data() + digits.size()) {
        throw GdiScriptError(line, "'" + std::string(part) + "' is not a number or known constant");
    }
    return negative ? -value : value;
}

// Numbers are 32-bit in every call; colours and raster codes use the unsigned half of the range.
std::int64_t ParseNumber(std::string_view token, int line) {
    std::int64_t value = 0;
    std::size_t start = 0;
    while (true) {
        const std::size_t bar = token.find('|', start);
        const std::string_view part =
            token.substr(start, bar == std::string_view::npos ? bar : bar - start);
        const std::int64_t partValue = ParseNumberPart(part, line);
        value = start == 0 ? partValue : (value | partValue);
        if (bar == std::string_view::npos) break;
        start = bar + 1;
    }
    if (value < std::numeric_limits<std::int32_t>::min() ||
        value > std::numeric_limits<std::uint32_t>::max()) {
        throw GdiScriptError(line, "'" + std::string(token) + "' is out of the 32-bit range");
    }
    return value;
}

bool IsName(std::string_view word) {
    if (word.empty() || Runner::IsNumberWord(word) || word == "none") return false;
    return std::all_of(word.begin(), word.end(), [](char ch) {
        return std::isalnum(static_cast<unsigned char>(ch)) != 0 || ch == '_' || ch == '.' ||
               ch == '-';
    });
}

std::string WrongCount(std::string_view name, std::string_view usage, std::size_t got) {
    return std::string(name) + " takes " + std::string(usage) + " but got " + std::to_string(got) +
           (got == 1 ? " argument" : " arguments");
}

// Fills `call` from the tokens after the call name according to `def`.
void ParseArguments(const CallDef& def, std::string_view line, const std::vector<Token>& tokens,
                    GdiScriptCall& call) {
    const std::size_t given = tokens.size() - 1;
    std::size_t next = 1;
    for (const char kind : def.signature) {
        if (kind == 'p') {
            const std::size_t rest = tokens.size() - next;
            if (rest == 0 || rest % 2 != 0)
                throw GdiScriptError(call.line, WrongCount(def.name, def.usage, given));
            for (; next < tokens.size(); ++next)
                call.numbers.push_back(ParseNumber(tokens[next].text, call.line));
            continue;
        }
        if (next >= tokens.size())
            throw GdiScriptError(call.line, WrongCount(def.name, def.usage, given));
        const Token& token = tokens[next];
        switch (kind) {
            case 'i':
                call.numbers.push_back(ParseNumber(token.text, call.line));
                ++next;
                break;
            case 'n':
                if (!IsName(token.text)) {
                    throw GdiScriptError(
                        call.line, "'" + std::string(token.text) + "' is not a usable object name");
                }
                call.words.emplace_back(token.text);
                ++next;
                break;
            case 'o':
                // A raw handle is kept in decimal so the runner reads it back without a base
                // question.
                if (Runner::IsNumberWord(token.text)) {
                    call.words.push_back(std::to_string(ParseNumber(token.text, call.line)));
                } else {
                    call.words.emplace_back(token.text);
                }
                ++next;
                break;
            case 't':
                call.words.emplace_back(line.substr(token.offset));
                next = tokens.size();
                break;
            default:
                throw std::logic_error("bad signature for " + std::string(def.name));
        }
    }
    if (next != tokens.size())
        throw GdiScriptError(call.line, WrongCount(def.name, def.usage, given));
}

std::string_view StripLine(std::string_view line) {
    if (const std::size_t hash = line.find('#'); hash != std::string_view::npos)
        line = line.substr(0, hash);
    while (!line.empty() && (line.back() == ' ' || line.back() == '\t' || line.back() == '\r'))
        line.remove_suffix(1);
    while (!line.empty() && (line.front() == ' ' || line.front() == '\t')) line.remove_prefix(1);
    return line;
}

}  // namespace

GdiScript ParseGdiScript(std::string_view text) {
    GdiScript script;
    bool haveCanvas = false;
    int lineNumber = 0;
    std::size_t pos = 0;
    while (pos < text.size()) {
        std::size_t end = text.find('\n', pos);
        if (end == std::string_view::npos) end = text.size();
        const std::string_view line = StripLine(text.substr(pos, end - pos));
        pos = end + 1;
        ++lineNumber;
        if (line.empty()) continue;

        const std::vector<Token> tokens = Tokenize(line);
        const std::string_view name = tokens[0].text;
        if (name == "canvas") {
            if (haveCanvas) throw GdiScriptError(lineNumber, "canvas may appear only once");
            if (tokens.size() < 3 || tokens.size() > 4) {
                throw GdiScriptError(lineNumber,
                                     WrongCount(name, kCanvasUsage.substr(7), tokens.size() - 1));
            }
            const std::int64_t w = ParseNumber(tokens[1].text, lineNumber);
            const std::int64_t h = ParseNumber(tokens[2].text, lineNumber);
            if (w < 1 || h < 1 || w > 16384 || h > 16384) {
                throw GdiScriptError(lineNumber, "canvas size must be 1 to 16384 pixels each way");
            }
            // A canvas is 4 bytes a pixel and a blit within it may copy it once more.
            if (w * h > kMaxCanvasPixels) {
                throw GdiScriptError(lineNumber, "canvas of " + std::to_string(w) + " x " +
                                                     std::to_string(h) + " is more than " +
                                                     std::to_string(kMaxCanvasPixels) + " pixels");
            }
            script.width = static_cast<std::int32_t>(w);
            script.height = static_cast<std::int32_t>(h);
            if (tokens.size() == 4)
                script.background = static_cast<COLORREF>(ParseNumber(tokens[3].text, lineNumber));
            haveCanvas = true;
            continue;
        }
        const auto def = std::find_if(kCalls.begin(), kCalls.end(), [&](const CallDef& candidate) {
            return candidate.name == name;
        });
        if (def == kCalls.end())
            throw GdiScriptError(lineNumber, "unknown call '" + std::string(name) + "'");
        if (!haveCanvas)
            throw GdiScriptError(lineNumber,
                                 "the first call must be '" + std::string(kCanvasUsage) + "'");
        GdiScriptCall call;
        call.line = lineNumber;
        call.op = static_cast<int>(def - kCalls.begin());
        ParseArguments(*def, line, tokens, call);
        script.calls.push_back(std::move(call));
    }
    if (!haveCanvas)
        throw GdiScriptError(std::max(lineNumber, 1),
                             "the script has no '" + std::string(kCanvasUsage) + "'");
    return script;
}

// ---------------------------------------------------------------------------------------------
// Runner

PixelView Runner::Run(const GdiScript& script) {
    // Both runners start from the same scheme, whatever the machine's own colours are.
    std::array<int, kSysColorCount> indices{};
    for (int i = 0; i < kSysColorCount; ++i) indices[static_cast<std::size_t>(i)] = i;
    gdi_.SetSysColors(indices, ClassicSysColors());

    dc_ = gdi_.CreateCompatibleDC(HDC{});
    const HBITMAP bitmap = gdi_.CreateDIBSection32(script.width, script.height);
    if (!dc_ || !bitmap) throw std::runtime_error("cannot create the canvas");
    gdi_.SelectObject(dc_, bitmap);
    const HBRUSH background = gdi_.CreateSolidBrush(script.background);
    gdi_.FillRect(dc_, RECT{0, 0, script.width, script.height}, background);
    gdi_.DeleteObject(background);

    for (const GdiScriptCall& call : script.calls)
        kCalls.at(static_cast<std::size_t>(call.op)).run(*this, call);
    return gdi_.BitmapPixels(bitmap);
}

PixelView RunGdiScript(Gdi& gdi, const GdiScript& script) {
    Runner runner(gdi);
    return runner.Run(script);
}

// ---------------------------------------------------------------------------------------------
// Files and command line

GdiScript LoadGdiScript(const std::string& path) {
    const std::string text = ReadFileText(path);
    try {
        return ParseGdiScript(text);
    } catch (const GdiScriptError& e) {
        throw std::runtime_error(path + ": " + e.what());
    }
}

void WritePixelsHexFile(const std::string& path, const PixelView& pixels) {
    if (path == "-") {
        WritePixelsHex(std::cout, pixels);
        std::cout.flush();
        return;
    }
    std::ostringstream out;
    WritePixelsHex(out, pixels);
    WriteFileReplacing(path, out.str());
}

std::optional<GdiScriptArgs> ParseGdiScriptArgs(std::span<const std::string_view> args,
                                                std::string& error) {
    GdiScriptArgs parsed;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string_view arg = args[i];
        if (arg == "--png" || arg == "--hex") {
            if (i + 1 >= args.size()) {
                error = std::string(arg) + " needs a file name";
                return std::nullopt;
            }
            (arg == "--png" ? parsed.png : parsed.hex) = std::string(args[++i]);
        } else if (arg.starts_with("--")) {
            error = "unknown option " + std::string(arg);
            return std::nullopt;
        } else if (parsed.script.empty()) {
            parsed.script = std::string(arg);
        } else {
            error = "only one script at a time";
            return std::nullopt;
        }
    }
    if (parsed.script.empty()) {
        error = "no script given";
        return std::nullopt;
    }
    return parsed;
}

// ---------------------------------------------------------------------------------------------
// Hex output

void WritePixelsHex(std::ostream& out, const PixelView& pixels) {
    out << pixels.width << ' ' << pixels.height << '\n';
    std::string row;
    char cell[8];
    for (std::int32_t y = 0; y < pixels.height; ++y) {
        row.clear();
        const std::uint32_t* line =
            pixels.bits + static_cast<std::size_t>(y) * static_cast<std::size_t>(pixels.width);
        for (std::int32_t x = 0; x < pixels.width; ++x) {
            // The pixel word is 0x00RRGGBB; written as a COLORREF, 0x00BBGGRR, so a script's
            // colours read back unchanged. The top byte (touched by some raster operations) is not
            // a colour.
            const std::uint32_t p = line[x];
            const std::uint32_t colorref =
                ((p & 0xFFu) << 16) | (p & 0xFF00u) | ((p >> 16) & 0xFFu);
            std::snprintf(cell, sizeof cell, "%06X", static_cast<unsigned>(colorref));
            if (x > 0) row += ' ';
            row += cell;
        }
        out << row << '\n';
    }
}

}  // namespace korvex::platform
