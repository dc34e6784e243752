// The drawing sequence of Wine's DIB conformance test (dlls/gdi32/tests/dib.c), whose SHA-1
// digests of a 512x512 32-bit buffer also hold on Windows. Each step starts from a buffer of
// 0xCC bytes and is hashed the way that test stores it: bottom-up, row 511 first. State carries
// over between steps exactly as in the original sequence.

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "base/sha1.hpp"
#include "platform/sim/sim_gdi.hpp"
#include "support/shot.hpp"

namespace korvex::platform {
namespace {

using sim::SimGdi;

struct Quad {
    std::int32_t a, b, c, d;
};

// Radial lines from dib.c, truncated as the test truncates 200.5 + k*cos/sin(pi*i/8).
const std::vector<Quad> kDiagonal = {
    {210, 200, 300, 200}, {209, 204, 292, 238}, {207, 207, 271, 271}, {204, 209, 238, 292},
    {200, 210, 200, 300}, {196, 209, 162, 292}, {193, 207, 129, 271}, {191, 204, 108, 238},
    {190, 200, 100, 200}, {191, 196, 108, 162}, {193, 193, 129, 129}, {196, 191, 162, 108},
    {200, 190, 200, 100}, {204, 191, 238, 108}, {207, 193, 271, 129}, {209, 196, 292, 162}};
const std::vector<Quad> kHLines = {
    {120, 120, 140, 120}, {100, 122, 140, 122}, {99, 124, 140, 124},  {120, 126, 200, 126},
    {120, 128, 201, 128}, {99, 130, 201, 130},  {120, 100, 140, 100}, {120, 99, 140, 99},
    {120, 199, 140, 199}, {120, 200, 140, 200}, {120, 132, 310, 132}, {10, 134, 101, 134},
    {10, 136, 100, 136},  {199, 138, 220, 138}, {200, 140, 220, 140}};
const std::vector<Quad> kVLines = {
    {120, 120, 120, 140}, {100, 120, 100, 140}, {99, 120, 99, 140},   {199, 120, 199, 140},
    {200, 120, 200, 140}, {122, 99, 122, 201},  {124, 100, 124, 140}, {126, 99, 126, 140},
    {128, 120, 128, 200}, {130, 120, 130, 201}, {132, 12, 132, 140},  {134, 90, 134, 101},
    {136, 90, 136, 100},  {138, 199, 138, 220}, {140, 200, 140, 220}};
const std::vector<Quad> kCLines = {{90, 110, 310, 120}, {90, 120, 295, 130}, {90, 190, 110, 240},
                                   {90, 130, 100, 135}, {90, 132, 101, 137}, {200, 140, 210, 141},
                                   {199, 142, 210, 143}};
const std::vector<Quad> kPatRects = {
    {120, 120, 140, 126}, {100, 130, 140, 136}, {99, 140, 140, 146},  {180, 130, 200, 136},
    {180, 140, 201, 146}, {120, 100, 130, 110}, {140, 99, 150, 110},  {120, 180, 130, 200},
    {140, 180, 150, 201}, {199, 150, 210, 156}, {200, 160, 210, 166}, {90, 150, 101, 156},
    {90, 160, 100, 166},  {160, 90, 166, 101},  {170, 90, 176, 101},  {160, 199, 166, 210},
    {170, 200, 176, 210}};
const std::vector<Quad> kRects = {{10, 11, 100, 101}, {250, 100, 350, 10}, {120, 10, 120, 20},
                                  {120, 10, 130, 10}, {120, 40, 121, 41},  {130, 50, 132, 52},
                                  {140, 60, 143, 63}, {150, 70, 154, 74},  {120, 20, 121, 30},
                                  {130, 20, 132, 30}, {140, 20, 143, 30},  {200, 20, 210, 21},
                                  {200, 30, 210, 32}, {200, 40, 210, 43}};

struct Scene : test::Canvas {
    HPEN solidPen = gdi.CreatePen(PS_SOLID, 1, RGB(0, 0, 0xFF));
    HPEN dashPen = gdi.CreatePen(PS_DASH, 1, RGB(0xFF, 0, 0));
    HBRUSH solidBrush = gdi.CreateSolidBrush(RGB(0x33, 0xAA, 0xFF));
    HRGN clip = gdi.CreateRectRgn(10, 10, 200, 20);

    Scene() : Canvas(512, 512) {
        for (const RECT& r : {RECT{100, 100, 200, 200}, RECT{290, 100, 300, 200}}) {
            const HRGN part = gdi.CreateRectRgn(r.left, r.top, r.right, r.bottom);
            gdi.CombineRgn(clip, clip, part, RGN_OR);
            gdi.DeleteObject(part);
        }
    }

    std::string Hash() const {
        Sha1 sha;
        std::vector<std::uint8_t> row(512 * 4);
        for (std::int32_t y = 511; y >= 0; --y) {
            for (std::int32_t x = 0; x < 512; ++x) {
                const std::uint32_t p = Raw(x, y);
                for (int k = 0; k < 4; ++k)
                    row[static_cast<std::size_t>(4 * x + k)] =
                        static_cast<std::uint8_t>(p >> (8 * k));
            }
            sha.Update(row.data(), row.size());
        }
        return sha.HexDigest();
    }

    void Lines(const std::vector<Quad>& lines) {
        for (const Quad& l : lines) {
            gdi.MoveToEx(dc, l.a, l.b, nullptr);
            gdi.LineTo(dc, l.c, l.d);
        }
    }
};

struct Step {
    const char* name;
    const char* sha1;
    std::function<void(Scene&)> draw;
};

const std::vector<Step>& Steps() {
    static const std::vector<Step> steps = {
        {"empty", "a3cadd34d95d3d5cc23344f69aab1c2e55935fcf", [](Scene&) {}},
        {"rop2_hv_lines", "2426172d9e8fec27d9228088f382ef3c93717da9",
         [](Scene& s) {
             s.gdi.SelectObject(s.dc, s.solidPen);
             for (int i = 1; i <= 16; ++i) {
                 s.gdi.SetROP2(s.dc, i);
                 s.Lines({{10, 3 * i, 100, 3 * i},
                          {100, 50 + 3 * i, 10, 50 + 3 * i},
                          {120 + 3 * i, 10, 120 + 3 * i, 100},
                          {170 + 3 * i, 100, 170 + 3 * i, 10}});
             }
         }},
        {"diagonal_lines", "9e8f27ca952cdba01dbf25d07c34e86a7820c012",
         [](Scene& s) {
             s.gdi.SetROP2(s.dc, R2_COPYPEN);
             s.Lines(kDiagonal);
         }},
        {"bias_check", "664fac17803859a4015c6ae29e5538e314d5c827",
         [](Scene& s) {
             const std::int32_t ends[8][2] = {{200, 150}, {150, 200}, {50, 200}, {0, 150},
                                              {0, 50},    {50, 0},    {150, 0},  {200, 50}};
             for (const auto& e : ends) s.Lines({{100, 100, e[0], e[1]}});
         }},
        {"solid_patblt_all_rop3", "17b2c177bdce5e94433574a928bda5c94a8cdfa5",
         [](Scene& s) {
             s.gdi.SelectObject(s.dc, s.solidBrush);
             std::int32_t y = 10;
             for (DWORD i = 0; i < 256; ++i) {
                 const DWORD rop = i << 16;
                 const bool usesSource = ((i >> 2) & 0x33) != (i & 0x33);
                 const bool ok = s.gdi.PatBlt(s.dc, 10, y, 100, 10, rop);
                 EXPECT_EQ(ok, !usesSource) << "rop3 index " << i;
                 if (ok) y += 20;
             }
         }},
        {"clipped_hlines", "fe6cc678fb13a3ead67839481bf22348adc69f52",
         [](Scene& s) {
             s.gdi.SelectClipRgn(s.dc, s.clip);
             s.Lines(kHLines);
         }},
        {"clipped_vlines", "d51bd330cec510cdccf5394328bd8e5411901e9e",
         [](Scene& s) { s.Lines(kVLines); }},
        {"clipped_lines", "df4aebf98d91f11be560dd232123b3ae327303d7",
         [](Scene& s) { s.Lines(kCLines); }},
        {"clipped_patblt", "f2af53dd073a09b1031d0032d28da35c82adc566",
         [](Scene& s) {
             for (const Quad& r : kPatRects)
                 s.gdi.PatBlt(s.dc, r.a, r.b, r.c - r.a, r.d - r.b, PATCOPY);
         }},
        {"dashed_hlines", "eb5a963a6f7b25533ddfb8915e70865d037bd156",
         [](Scene& s) {
             s.gdi.SelectObject(s.dc, s.dashPen);
             s.gdi.SetBkMode(s.dc, TRANSPARENT);
             s.gdi.SetBkColor(s.dc, RGB(0, 0xFF, 0));
             s.Lines(kHLines);
         }},
        {"dashed_hlines_reversed", "c387917268455017aa0b28bed73aa6554044bbb3",
         [](Scene& s) {
             for (const Quad& l : kHLines) s.Lines({{l.c - 1, l.d, l.a - 1, l.b}});
         }},
        {"dashed_vlines", "dcae44fee010dbf7a107797a503923fd8b1abe2e",
         [](Scene& s) { s.Lines(kVLines); }},
        {"dashed_vlines_reversed", "6c530622a025d872a642e8f950867884d7b136cb",
         [](Scene& s) {
             for (const Quad& l : kVLines) s.Lines({{l.c, l.d - 1, l.a, l.b - 1}});
         }},
        {"dashed_lines", "7c07d91b8f68fb31821701b3dcb96de018bf0c66",
         [](Scene& s) { s.Lines(kCLines); }},
        {"dashed_lines_opaque", "b2261353decda2712b83538ab434a49ce21f3172",
         [](Scene& s) {
             s.gdi.SetBkMode(s.dc, OPAQUE);
             s.Lines(kCLines);
         }},
        {"rectangles", "e2a8eef4aeda3a0f6c950075acba38f1f9e0814d",
         [](Scene& s) {
             s.gdi.SelectClipRgn(s.dc, HRGN{});
             s.gdi.SelectObject(s.dc, s.solidPen);
             for (const Quad& r : kRects) s.gdi.Rectangle(s.dc, r.a, r.b, r.c, r.d);
             s.gdi.SelectObject(s.dc, s.dashPen);
             for (const Quad& r : kRects) s.gdi.Rectangle(s.dc, r.a, r.b + 150, r.c, r.d + 150);
         }},
        {"paint_region", "8b66f14d51ecdeea12bc993302bb9b7d3ec085a1",
         [](Scene& s) {
             s.gdi.SelectObject(s.dc, s.solidPen);
             s.gdi.PaintRgn(s.dc, s.clip);
         }},
    };
    return steps;
}

TEST(DibConformance, EveryStepMatchesItsPublishedDigest) {
    Scene scene;
    for (const Step& step : Steps()) {
        scene.Fill(test::kSentinelPixel);
        step.draw(scene);
        EXPECT_EQ(scene.Hash(), step.sha1) << "step '" << step.name << "'";
    }
}

}  // namespace
}  // namespace korvex::platform
