// Frames: its member table, what it saves and restores, how it looks in every border style and
// caption position, and the events its surface raises.

#include <gtest/gtest.h>

#include "fixture.hpp"
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

class FramesTest : public FormFixture {
protected:
    // Width and line height of a text in the caption's font (the ambient MS Sans Serif 8.25).
    platform::SIZE TextSize(std::string_view text) {
        platform::Gdi& gdi = platform.gdi();
        const platform::HDC dc = gdi.CreateCompatibleDC({});
        const forms::GdiObject font = forms::MakeFont(gdi, *context.DefaultFont());
        const platform::HGDIOBJ old = gdi.SelectObject(dc, font.get());
        platform::SIZE size;
        gdi.GetTextExtentPoint32(dc, text, &size);
        platform::TEXTMETRIC tm;
        gdi.GetTextMetrics(dc, &tm);
        gdi.SelectObject(dc, old);
        gdi.DeleteDC(dc);
        return {size.cx, tm.tmHeight};
    }

    // Columns of row y in the shadow colour, as runs [begin, end).
    std::vector<std::pair<int, int>> ShadowRuns(const Shot& shot, int y) {
        std::vector<std::pair<int, int>> runs;
        const std::uint32_t shadow = SysPixel(COLOR_BTNSHADOW);
        for (int x = 0; x < shot.width; ++x) {
            if (shot.at(x, y) != shadow) continue;
            if (!runs.empty() && runs.back().second == x) ++runs.back().second;
            else runs.push_back({x, x + 1});
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

TEST_F(FramesTest, MemberTableFollowsTheInterface) {
    const ClassInfo& info = Frames::Class();
    EXPECT_EQ(info.progId, "Korvex_Tools.Frames");
    std::vector<std::string> names;
    for (const MemberInfo& m : info.members) names.push_back(m.name + ":" + std::to_string(m.dispId));
    EXPECT_EQ(names, (std::vector<std::string>{
                         "Font:1", "TextColor:2", "BackColorF:3", "FontBold:4", "FontItalic:5", "FontName:6",
                         "FontSize:7", "FontStrikethru:8", "MouseIcon:9", "MousePointer:10", "BorderStyle:11",
                         "Alignment:12", "AlignmentTop:13", "EnabledF:14", "HasDC:15", "HDC:16", "hwnd:17",
                         "Caption:18"}));
    EXPECT_TRUE(info.FindMember("HDC")->ReadOnly());
    EXPECT_EQ(info.FindMember("ShowAboutBox"), nullptr);
    EXPECT_EQ(info.FindMember("BorderStyle")->type.enumName, "BoStyle");
    std::vector<std::string> events;
    for (const EventInfo& e : info.events) events.push_back(std::to_string(e.id) + e.name);
    EXPECT_EQ(events, (std::vector<std::string>{"1Click", "2DblClick", "3MouseDown", "4MouseMove", "5MouseUp",
                                                "6KeyDown", "7KeyPress", "8KeyUp", "9Focus"}));
    EXPECT_EQ(info.FindEnum("BoStyle")->members.back(), (std::pair<std::string, std::int32_t>{"XP_Frame", 10}));
    EXPECT_EQ(info.FindEnum("BoAl")->members[2].first, "fOverBorder");
    EXPECT_EQ(info.FindEnum("fMousePointerConst")->members.back(),
              (std::pair<std::string, std::int32_t>{"fMouseIcon", 99}));
}

// A new frame carries the caption it was created with, not the bag's default; its font size and
// name are saved too, since a font never has size 0 or name "" (the size in whole points).
TEST_F(FramesTest, NewFrameSavesItsCaptionAndFontSizeAndName) {
    Site& site = form.Add("Korvex_Tools.Frames", kFrame);
    const JsonPropertyBag bag = form.SaveBag(site);
    EXPECT_EQ(Keys(bag), (std::vector<std::string>{"Caption", "FontSize", "FontName"}));
    EXPECT_EQ(bag.ReadProperty("FontName").ToString(), "MS Sans Serif");
    EXPECT_EQ(bag.ReadProperty("Caption").ToString(), "Korvex-Frames");
    EXPECT_EQ(bag.ReadProperty("FontSize").Kind(), VarKind::Integer);
    EXPECT_EQ(bag.ReadProperty("FontSize").ToInteger(), 8);
}

TEST_F(FramesTest, EmptyBagGivesANewFrameButForTheCaption) {
    Site& created = form.Add("Korvex_Tools.Frames", kFrame);
    Site& restored = form.Restore("Korvex_Tools.Frames", {"G", 150, 1200, kW * 15, kH * 15}, JsonPropertyBag{});
    EXPECT_EQ(Differences(created, restored),
              (std::vector<std::string>{"Caption: \"Korvex-Frames\" vs \"Korvex-Frame\""}));
    EXPECT_EQ(form.GetProperty(restored, "BorderStyle").ToLong(), 8);
    EXPECT_EQ(form.GetProperty(restored, "BackColorF").ToLong(), static_cast<std::int32_t>(0x8000000F));
}

TEST_F(FramesTest, EveryPropertySurvivesSaveAndRestore) {
    Site& site = form.Add("Korvex_Tools.Frames", kFrame);
    const auto icon = std::make_shared<StdPicture>(PictureType::Icon, 2, 1, std::vector<std::uint32_t>{0xFF112233, 0});
    auto font = std::make_shared<StdFont>("Arial", 12);
    form.LetProperty(site, "Font", Variant(font));
    form.LetProperty(site, "TextColor", 0x00FF0000);  // above &H7FFF: must not be read as an Integer
    form.LetProperty(site, "BackColorF", 0x00C0FFC0);
    form.LetProperty(site, "FontBold", true);
    form.LetProperty(site, "FontItalic", true);
    form.LetProperty(site, "FontName", "Courier New");
    form.LetProperty(site, "FontSize", 10);
    form.LetProperty(site, "FontStrikethru", true);
    form.LetProperty(site, "MouseIcon", Variant(icon));
    form.LetProperty(site, "MousePointer", 11);
    form.LetProperty(site, "BorderStyle", 3);
    form.LetProperty(site, "Alignment", 2);
    form.LetProperty(site, "AlignmentTop", 1);
    form.LetProperty(site, "EnabledF", false);
    form.LetProperty(site, "Caption", "Gruppe");
    EXPECT_FALSE(font->Bold()) << "the caption's font attributes must not reach the assigned font";

    Site& copy = form.Restore("Korvex_Tools.Frames", {"G", 150, 1200, kW * 15, kH * 15}, form.SaveBag(site));
    EXPECT_EQ(Differences(site, copy), std::vector<std::string>{});
    EXPECT_EQ(form.GetProperty(copy, "FontName").ToString(), "Courier New");
    EXPECT_EQ(form.GetProperty(copy, "TextColor").ToLong(), 0x00FF0000);

    // And across the designer's switch to run mode, the hourglass included.
    form.SwitchMode(true);
    EXPECT_EQ(form.GetProperty(form.Get("F"), "MousePointer").ToLong(), 11);
    EXPECT_EQ(form.GetProperty(form.Get("F"), "Alignment").ToLong(), 2);
}

TEST_F(FramesTest, ReadsTheSameKeysInTheOrderItWritesThem) {
    Site& site = form.Add("Korvex_Tools.Frames", kFrame);
    for (const auto& [name, value] : std::vector<std::pair<std::string, Variant>>{
             {"Caption", "x"}, {"Font", Variant(std::make_shared<StdFont>("Arial", 9))}, {"TextColor", 1},
             {"BackColorF", 2}, {"BorderStyle", 1}, {"EnabledF", false},
             {"MouseIcon", Variant(std::make_shared<StdPicture>(PictureType::Icon, 1, 1, std::vector<std::uint32_t>{0}))},
             {"MousePointer", 2}, {"FontBold", true}, {"FontItalic", true}, {"FontSize", 11},
             {"FontStrikethru", true}, {"FontName", "Arial Black"}, {"Alignment", 1}, {"AlignmentTop", 2}})
        form.LetProperty(site, name, value);
    EXPECT_EQ(Keys(form.SaveBag(site)),
              (std::vector<std::string>{"Caption", "Font", "TextColor", "BackColorF", "BorderStyle", "EnabledF",
                                        "MouseIcon", "MousePointer", "FontBold", "FontItalic", "FontSize",
                                        "FontStrikethru", "FontName", "Alignment", "AlignmentTop"}));
}

TEST_F(FramesTest, BorderStyleKeepsTheEdgeOfTheLastEdgeStyle) {
    Site& site = form.Add("Korvex_Tools.Frames", kFrame);
    auto& frame = dynamic_cast<Frames&>(site.GetControl());
    EXPECT_EQ(frame.EdgeKind(), 6);
    const std::vector<std::pair<int, int>> steps{{1, 10}, {0, 10}, {2, 5},  {9, 5}, {3, 2}, {10, 2},
                                                 {4, 4},  {5, 8}, {6, 1}, {7, 9},  {11, 9}, {8, 6}};
    for (const auto& [style, edge] : steps) {
        form.LetProperty(site, "BorderStyle", style);
        EXPECT_EQ(frame.EdgeKind(), edge) << "after style " << style;
    }
}

// Each style against the painter it names, drawn on a canvas of the frame's size: the frame's
// top is half the (hidden) caption's height down.
TEST_F(FramesTest, EachBorderStylePaintsWithItsPainter) {
    Site& site = form.Add("Korvex_Tools.Frames", kFrame);
    form.Show();
    form.LetProperty(site, "Caption", "");
    const int top = static_cast<int>(RoundHalfEven(TextSize("").cy / 2.0));
    platform::Gdi& gdi = platform.gdi();
    const std::map<int, unsigned> edges{{1, 10}, {2, 5}, {3, 2}, {4, 4}, {5, 8}, {6, 1}, {7, 9}, {8, 6}};
    for (int style = 0; style <= 10; ++style) {
        form.LetProperty(site, "BorderStyle", style);
        const Shot shot = Pixels(site);

        forms::MemoryBitmap canvas(gdi, {kW, kH});
        gdi.FillRect(canvas.dc(), {0, 0, kW, kH}, forms::MakeBrush(gdi, gdi.GetSysColor(COLOR_BTNFACE)).get());
        platform::RECT rect{0, top, kW, kH};
        OLE_COLOR c[6] = {};
        if (edges.contains(style)) {
            gdi.DrawEdge(canvas.dc(), &rect, edges.at(style), platform::BF_RECT);
        } else if (style == 9) {
            c[0] = c[1] = 0x00914B00;
            foundation::DrawBorderStyle(gdi, canvas.dc(), rect, 1, c[0], c[1], c[2], c[3], c[4], c[5], 0, 1);
        } else if (style == 10) {
            c[0] = c[1] = c[3] = c[4] = c[5] = 0x009BA2A4;
            c[2] = 0x8000000F;
            foundation::DrawXPFrame(gdi, canvas.dc(), rect, 1, c[0], c[1], c[2], c[3], c[4], c[5], 0, 1);
        }
        const platform::PixelView want = canvas.pixels();
        for (int y = 0; y < kH; ++y)
            for (int x = 0; x < kW; ++x)
                ASSERT_EQ(shot.at(x, y), want.bits[y * kW + x] & 0xFFFFFF)
                    << "style " << style << " first differs at " << x << "," << y;
    }
}

// The etched line runs through the middle of the caption, which starts 7 pixels in and hides
// the line where it lies.
TEST_F(FramesTest, NewFrameShowsTheEtchedLineThroughItsCaption) {
    Site& site = form.Add("Korvex_Tools.Frames", kFrame);
    form.Show();
    const Shot shot = Pixels(site);
    const platform::SIZE caption = TextSize("Korvex-Frames");
    const int top = static_cast<int>(RoundHalfEven(caption.cy / 2.0));  // 13 / 2 -> 6
    const std::uint32_t shadow = SysPixel(COLOR_BTNSHADOW), light = SysPixel(COLOR_BTNHIGHLIGHT);

    EXPECT_EQ(ShadowRuns(shot, top), (std::vector<std::pair<int, int>>{{0, 7}, {7 + caption.cx, kW - 1}}));
    EXPECT_EQ(shot.at(7 + caption.cx, top + 1), light);
    EXPECT_NE(shot.at(7, top + 1), light) << "the label covers the highlight row too";
    for (int y = 0; y < top; ++y) EXPECT_NE(shot.at(0, y), shadow) << "nothing above the frame, row " << y;
    EXPECT_EQ(shot.at(0, top), shadow);
    EXPECT_EQ(shot.at(0, kH - 2), shadow);
    EXPECT_EQ(shot.at(kW - 1, kH - 1), light);
    const platform::RECT text = TextBox(shot);
    EXPECT_GE(text.left, 7);
    EXPECT_LE(text.right, 7 + caption.cx);
    EXPECT_LT(text.top, top);
    EXPECT_GT(text.bottom, top) << "the line passes through the text";
    EXPECT_LE(text.bottom, caption.cy);
}

TEST_F(FramesTest, EmptyCaptionHidesTheLabelAndKeepsTheFrameTop) {
    Site& site = form.Add("Korvex_Tools.Frames", kFrame);
    form.Show();
    form.LetProperty(site, "Caption", "");
    const Shot shot = Pixels(site);
    const int top = static_cast<int>(RoundHalfEven(TextSize("").cy / 2.0));
    EXPECT_EQ(ShadowRuns(shot, top), (std::vector<std::pair<int, int>>{{0, kW - 1}}));
    EXPECT_EQ(shot.Count(0), 0) << "no caption text";
    EXPECT_EQ(form.GetProperty(site, "Caption").ToString(), "");
    form.LetProperty(site, "Caption", "Wieder da");
    EXPECT_GT(Pixels(site).Count(0), 0);
}

TEST_F(FramesTest, VerticalPositionsPutTheLineAboveThroughOrBelowTheCaption) {
    Site& site = form.Add("Korvex_Tools.Frames", kFrame);
    form.Show();
    const platform::SIZE caption = TextSize("Korvex-Frames");

    // Above the frame: the line lies at the label's height, whole and unbroken.
    form.LetProperty(site, "AlignmentTop", 2);
    Shot shot = Pixels(site);
    EXPECT_EQ(ShadowRuns(shot, caption.cy), (std::vector<std::pair<int, int>>{{0, kW - 1}}));
    for (int y = 0; y < caption.cy; ++y) EXPECT_TRUE(ShadowRuns(shot, y).empty()) << "row " << y;
    EXPECT_LE(TextBox(shot).bottom, caption.cy);

    // Under the border: the line at the very top, the caption two pixels down.
    form.LetProperty(site, "AlignmentTop", 1);
    shot = Pixels(site);
    EXPECT_EQ(ShadowRuns(shot, 0), (std::vector<std::pair<int, int>>{{0, kW - 1}}));
    EXPECT_GE(TextBox(shot).top, 2);
    EXPECT_LE(TextBox(shot).bottom, 2 + caption.cy);
}

TEST_F(FramesTest, HorizontalAlignmentsPlaceTheGapInTheLine) {
    Site& site = form.Add("Korvex_Tools.Frames", kFrame);
    form.Show();
    const platform::SIZE caption = TextSize("Korvex-Frames");
    const int top = static_cast<int>(RoundHalfEven(caption.cy / 2.0));

    form.LetProperty(site, "Alignment", 2);
    EXPECT_EQ(ShadowRuns(Pixels(site), top),
              (std::vector<std::pair<int, int>>{{0, kW - 7 - caption.cx}, {kW - 7, kW - 1}}));

    form.LetProperty(site, "Alignment", 1);
    const auto runs = ShadowRuns(Pixels(site), top);
    ASSERT_EQ(runs.size(), 2u);
    EXPECT_EQ(runs[1].first - runs[0].second, caption.cx);
    EXPECT_LE(std::abs(runs[0].second - (kW - runs[1].first)), 1) << "centred within a pixel";
}

TEST_F(FramesTest, SurfaceInputBecomesTheFramesEvents) {
    form.Add("Korvex_Tools.Frames", kFrame);
    form.Add("Korvex_Tools.Frames", {"Other", 150, 1200, kW * 15, kH * 15});
    form.SwitchMode(true);
    form.Show();
    EXPECT_EQ(Run("move F 60 40\nclick\nfocus F\nkey down 65\nkey press 97\nkey up 65\nfocus Other\n"),
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
    Site& site = form.Add("Korvex_Tools.Frames", kFrame);
    try {
        form.LetProperty(site, "MousePointer", 40000);
        FAIL() << "no error";
    } catch (const HostError& e) {
        EXPECT_EQ(e.Number(), 6);
    }
    EXPECT_EQ(form.GetProperty(site, "MousePointer").ToLong(), 0);
}

}  // namespace
}  // namespace korvex::test
