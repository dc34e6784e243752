// Frames: the edge kinds its styles keep, how it looks in every border style and caption
// position, and the events its surface raises.

#include "fixture.hpp"

#include "controls/display/frames.hpp"
#include "forms/graphics.hpp"
#include "foundation/border.hpp"
#include "host/numeric.hpp"

namespace korvex::test {
namespace {

using controls::Frames;
using platform::COLOR_BTNFACE;
using platform::COLOR_BTNHIGHLIGHT;
using platform::COLOR_BTNSHADOW;

// The frame under test: 120 x 60 pixels at 10, 10 of the form.
constexpr int kW = 120, kH = 60;
const Extender kFrame{"F", 150, 150, kW * 15, kH * 15};

class FramesTest : public DisplayTest {
  protected:
    // Columns of row y in the shadow colour, as runs [begin, end).
    std::vector<std::pair<int, int>> ShadowRuns(const Shot& shot, int y) {
        std::vector<std::pair<int, int>> runs;
        const std::uint32_t shadow = Sys(COLOR_BTNSHADOW);
        for (int x = 0; x < shot.width; ++x) {
            if (shot.at(x, y) != shadow) continue;
            if (!runs.empty() && runs.back().second == x)
                ++runs.back().second;
            else
                runs.push_back({x, x + 1});
        }
        return runs;
    }

    // The bounding box of the black caption text.
    platform::RECT TextBox(const Shot& shot) {
        platform::RECT box{shot.width, shot.height, -1, -1};
        for (int y = 0; y < shot.height; ++y)
            for (int x = 0; x < shot.width; ++x)
                if (shot.at(x, y) == 0) {
                    box.left = std::min(box.left, x);
                    box.top = std::min(box.top, y);
                    box.right = std::max(box.right, x + 1);
                    box.bottom = std::max(box.bottom, y + 1);
                }
        return box;
    }
};

TEST_F(FramesTest, BorderStyleKeepsTheEdgeOfTheLastEdgeStyle) {
    Site& site = form.Add("Korvex_Tools.Frames", kFrame);
    auto& frame = dynamic_cast<Frames&>(site.GetControl());
    EXPECT_EQ(frame.EdgeKind(), 6);
    const std::vector<std::pair<int, int>> steps{{1, 10}, {0, 10}, {2, 5}, {9, 5}, {3, 2},  {10, 2},
                                                 {4, 4},  {5, 8},  {6, 1}, {7, 9}, {11, 9}, {8, 6}};
    for (const auto& [style, edge] : steps) {
        form.LetProperty(site, "BorderStyle", style);
        EXPECT_EQ(frame.EdgeKind(), edge) << "after style " << style;
    }
}

// Each style against the painter it names, drawn on a canvas of the frame's size: the frame's
// top is half the (hidden) caption's height down.
TEST_F(FramesTest, EachBorderStylePaintsWithItsPainter) {
    Site& site = form.Add("Korvex_Tools.Frames", kFrame);
    form.LetProperty(site, "Caption", "");
    const int top = static_cast<int>(RoundHalfEven(TextSize("").cy / 2.0));
    platform::Gdi& gdi = platform.gdi();
    const std::map<int, unsigned> edges{{1, 10}, {2, 5}, {3, 2}, {4, 4},
                                        {5, 8},  {6, 1}, {7, 9}, {8, 6}};
    for (int style = 0; style <= 10; ++style) {
        form.LetProperty(site, "BorderStyle", style);
        const Shot shot = Pixels("F");

        forms::MemoryBitmap canvas(gdi, {kW, kH});
        gdi.FillRect(canvas.dc(), {0, 0, kW, kH},
                     forms::MakeBrush(gdi, gdi.GetSysColor(COLOR_BTNFACE)).get());
        platform::RECT rect{0, top, kW, kH};
        OLE_COLOR c[6] = {};
        if (edges.contains(style)) {
            gdi.DrawEdge(canvas.dc(), &rect, edges.at(style), platform::BF_RECT);
        } else if (style == 9) {
            c[0] = c[1] = 0x00914B00;
            foundation::DrawBorderStyle(gdi, canvas.dc(), rect, 1, c[0], c[1], c[2], c[3], c[4],
                                        c[5], 0, 1);
        } else if (style == 10) {
            c[0] = c[1] = c[3] = c[4] = c[5] = 0x009BA2A4;
            c[2] = 0x8000000F;
            foundation::DrawXPFrame(gdi, canvas.dc(), rect, 1, c[0], c[1], c[2], c[3], c[4], c[5],
                                    0, 1);
        }
        const platform::PixelView want = canvas.pixels();
        for (int y = 0; y < kH; ++y)
            for (int x = 0; x < kW; ++x)
                ASSERT_EQ(shot.at(x, y), want.bits[y * kW + x] & 0xFFFFFF)
                    << "style " << style << " first differs at " << x << "," << y;
    }
}

// The etched line runs through the middle of the caption, which starts 7 pixels in and hides
// the line (and its highlight row) where it lies.
TEST_F(FramesTest, NewFrameShowsTheEtchedLineThroughItsCaption) {
    form.Add("Korvex_Tools.Frames", kFrame);
    const Shot shot = Pixels("F");
    const platform::SIZE caption = TextSize("Korvex-Frames");
    const int top = static_cast<int>(RoundHalfEven(caption.cy / 2.0));  // 13 / 2 -> 6
    const std::uint32_t shadow = Sys(COLOR_BTNSHADOW), light = Sys(COLOR_BTNHIGHLIGHT);
    EXPECT_EQ(shot.at(7 + caption.cx, top + 1), light);
    EXPECT_NE(shot.at(7, top + 1), light);
    EXPECT_EQ(shot.at(0, kH - 2), shadow);
    EXPECT_EQ(shot.at(kW - 1, kH - 1), light);
    const platform::RECT text = TextBox(shot);
    EXPECT_GE(text.left, 7);
    EXPECT_LE(text.right, 7 + caption.cx);
    EXPECT_LT(text.top, top);
    EXPECT_GT(text.bottom, top) << "the line passes through the text";
}

// Where the caption sits decides the frame's top line and the gap the opaque caption cuts in
// it: through the caption's middle, above it (fOverBorder), or at the top with the caption 2
// pixels down (fUnderBorder); the caption 7 pixels from the left or the right edge. An empty
// caption hides the label and leaves the line whole at the empty label's middle.
TEST_F(FramesTest, CaptionPlacesTheTopLineAndItsGap) {
    using Runs = std::vector<std::pair<int, int>>;
    const platform::SIZE c = TextSize("Korvex-Frames");
    const int middle = static_cast<int>(RoundHalfEven(c.cy / 2.0));
    const struct {
        int alignment, alignmentTop;
        const char* caption;
        int line;
        Runs runs;
        int textTop;
    } rows[] = {
        {0, 0, "Korvex-Frames", middle, {{0, 7}, {7 + c.cx, kW - 1}}, 0},
        {2, 0, "Korvex-Frames", middle, {{0, kW - 7 - c.cx}, {kW - 7, kW - 1}}, 0},
        {0, 2, "Korvex-Frames", c.cy, {{0, kW - 1}}, 0},
        {0, 1, "Korvex-Frames", 0, {{0, kW - 1}}, 2},
        {0, 0, "", static_cast<int>(RoundHalfEven(TextSize("").cy / 2.0)), {{0, kW - 1}}, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.alignment) + "/" + std::to_string(row.alignmentTop) + " " +
                     row.caption);
        form.Add("Korvex_Tools.Frames", kFrame);
        Let("F", "Alignment", row.alignment);
        Let("F", "AlignmentTop", row.alignmentTop);
        Let("F", "Caption", row.caption);
        const Shot shot = Pixels("F");
        EXPECT_EQ(ShadowRuns(shot, row.line), row.runs);
        for (int y = 0; y < row.line; ++y)
            EXPECT_TRUE(ShadowRuns(shot, y).empty()) << "above the frame, row " << y;
        if (*row.caption == '\0') {
            EXPECT_EQ(shot.Count(0), 0) << "no caption text";
        } else {
            EXPECT_GE(TextBox(shot).top, row.textTop);
            EXPECT_LE(TextBox(shot).bottom, row.textTop + c.cy);
        }
        form.Remove("F");
    }
    // Centred: the gap is the caption's width, in the middle within a pixel.
    form.Add("Korvex_Tools.Frames", kFrame);
    Let("F", "Alignment", 1);
    const auto runs = ShadowRuns(Pixels("F"), middle);
    ASSERT_EQ(runs.size(), 2u);
    EXPECT_EQ(runs[1].first - runs[0].second, c.cx);
    EXPECT_LE(std::abs(runs[0].second - (kW - runs[1].first)), 1);
}

TEST_F(FramesTest, SurfaceInputBecomesTheFramesEvents) {
    form.Add("Korvex_Tools.Frames", kFrame);
    form.Add("Korvex_Tools.Frames", {"Other", 150, 1200, kW * 15, kH * 15});
    form.SwitchMode(true);
    EXPECT_EQ(
        Run("move F 60 40\nclick\nfocus F\nkey down 65\nkey press 97\nkey up 65\nfocus Other\n"),
        "event F.MouseMove(0, 0, 60, 40)\n"
        "event F.MouseDown(1, 0, 60, 40)\n"
        "event F.MouseUp(1, 0, 60, 40)\n"
        "event F.Click()\n"
        "event F.Focus(True)\n"
        "event F.KeyDown(65, 0)\n"
        "event F.KeyPress(97)\n"
        "event F.KeyUp(65, 0)\n"
        "event F.Focus(False)\n"
        "event Other.Focus(True)\n");
    // The caption label keeps its own clicks, as a label on a frame does.
    EXPECT_EQ(Run("move F 12 3\nclick\n"), "");
}

TEST_F(FramesTest, PointerValuesOutsideTheIntegerRangeOverflow) {
    form.Add("Korvex_Tools.Frames", kFrame);
    EXPECT_EQ(ErrorOf([&] { Let("F", "MousePointer", 40000); }), kErrOverflow);
    EXPECT_EQ(Long("F", "MousePointer"), 0);
}

}  // namespace
}  // namespace korvex::test
