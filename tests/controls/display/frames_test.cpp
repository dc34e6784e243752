// Frames: the edge kinds its styles keep, the empty caption, the events its surface raises, and
// the caption's own font attributes. (Every border style and caption placement is the gallery's
// frames pictures.)

#include "controls/display/frames.hpp"
#include "host/numeric.hpp"
#include "support/control_fixture.hpp"

namespace korvex::test {
namespace {

using controls::Frames;

// The frame under test: 120 x 60 pixels at 10, 10 of the form.
constexpr int kW = 120, kH = 60;
const Extender kFrame{"F", 150, 150, kW * 15, kH * 15};

using FramesTest = ControlsTest;

// Styles 9 to 11 are not drawn with an edge and keep the one of the last style that was.
TEST_F(FramesTest, BorderStyleKeepsTheEdgeOfTheLastEdgeStyle) {
    New("Frames", kFrame);
    auto& frame = Control<Frames>("F");
    EXPECT_EQ(frame.EdgeKind(), 6);
    const std::vector<std::pair<int, int>> steps{{1, 10}, {0, 10}, {2, 5}, {9, 5}, {3, 2},  {10, 2},
                                                 {4, 4},  {5, 8},  {6, 1}, {7, 9}, {11, 9}, {8, 6}};
    for (const auto& [style, edge] : steps) {
        Let("F", "BorderStyle", style);
        EXPECT_EQ(frame.EdgeKind(), edge) << "after style " << style;
    }
}

// An empty caption hides the label and leaves the top line whole at the empty label's middle.
TEST_F(FramesTest, EmptyCaptionLeavesTheTopLineWhole) {
    New("Frames", kFrame);
    Let("F", "Caption", "");
    const Shot shot = Pixels("F");
    const int line = static_cast<int>(RoundHalfEven(TextSize("").cy / 2.0));
    const std::uint32_t shadow = Sys(platform::COLOR_BTNSHADOW);
    for (int y = 0; y <= line; ++y) {
        int count = 0;
        for (int x = 0; x < kW; ++x) count += shot.at(x, y) == shadow;
        EXPECT_EQ(count, y == line ? kW - 1 : 0) << "row " << y;
    }
    EXPECT_EQ(shot.Count(0), 0) << "no caption text";
}

TEST_F(FramesTest, SurfaceInputBecomesTheFramesEvents) {
    New("Frames", kFrame);
    New("Frames", {"Other", 150, 1200, kW * 15, kH * 15});
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
    EXPECT_EQ(ErrorOf([&] { Let("F", "MousePointer", 40000); }), kErrOverflow);
    EXPECT_EQ(Long("F", "MousePointer"), 0);
}

// The caption's own attribute lets change a copy of an assigned font, never the font itself
// (it may be the form's or another control's).
TEST_F(FramesTest, AttributeLetsDoNotReachTheAssignedFont) {
    for (const auto& [cls, attribute] :
         {std::pair{"Frames", "FontBold"}, std::pair{"Hyperlink", "FontUnderline"}}) {
        SCOPED_TRACE(cls);
        const auto font = std::make_shared<StdFont>("Arial", 10);
        New(cls, {"C", 150, 150, 3000, 600});
        Let("C", "Font", Variant(font));
        Let("C", attribute, true);
        EXPECT_FALSE(font->Bold() || font->Underline());
        EXPECT_TRUE(Get("C", attribute).ToBool());
        form.Remove("C");
    }
}

// The single font keys after "Font": Frames restores them as Label3D does. A missing or empty
// "FontName" is the empty name; a missing or zero "FontSize" keeps the size "Font" gave; a
// negative size is no font's and fails the restore.
TEST_F(FramesTest, FontKeysRestoreAsLabel3DDoes) {
    struct Row {
        const char* what;
        std::vector<std::pair<const char*, Variant>> keys;
        const char* name;
        double size;
    };
    const std::vector<Row> rows{
        {"no single keys", {}, "", 12},
        {"an empty name, size 0", {{"FontName", ""}, {"FontSize", std::int16_t{0}}}, "", 12},
        {"a name and a size", {{"FontName", "Courier New"}, {"FontSize", std::int16_t{9}}},
         "Courier New", 9},
    };
    for (const char* cls : {"Frames", "Label3D"}) {
        for (const Row& row : rows) {
            SCOPED_TRACE(std::string(cls) + ": " + row.what);
            JsonPropertyBag bag;
            bag.WriteProperty("Font", Variant(std::make_shared<StdFont>("Arial", 12)));
            for (const auto& [key, value] : row.keys) bag.WriteProperty(key, value);
            Restore(cls, {"C", 150, 150, 1800, 900}, bag);
            EXPECT_EQ(Get("C", "FontName").ToString(), row.name);
            EXPECT_EQ(Get("C", "FontSize").ToDouble(), row.size);
            form.Remove("C");
        }
        JsonPropertyBag negative;
        negative.WriteProperty("FontSize", std::int16_t{-3});
        EXPECT_EQ(ErrorOf([&] { Restore(cls, {"C", 150, 150, 1800, 900}, negative); }),
                  kErrInvalidPropertyValue)
            << cls;
        EXPECT_EQ(form.Find("C"), nullptr) << cls;
    }
}

}  // namespace
}  // namespace korvex::test
