// Label3D: the background colour that follows the surface, the shadow's nine directions in
// pixels, the transparent look, overflow, and the focus behaviour driven by scripts.

#include "fixture.hpp"

#include <set>

#include "controls/display/label3d.hpp"

namespace korvex::test {
namespace {

using controls::Label3D;

constexpr std::uint32_t kWhite = 0xFFFFFF;
constexpr std::uint32_t kRed = 0xFF0000;   // as a pixel
constexpr std::uint32_t kBlue = 0x0000FF;  // as a pixel
constexpr std::uint32_t kGreen = 0x00FF00;

using Points = std::set<std::pair<int, int>>;

class Label3DTest : public DisplayTest {
  protected:
    Site& Add(const char* name = "L", std::int32_t top = 150) {
        return New("Label3D", {name, 150, top, 1800, 600});
    }

    // A 120 x 40 pixel label with plain colours: red text, blue shadow on white.
    void AddPlain(std::int16_t distance = 45) {
        Add();
        Let("L", "TextColor", 0x000000FF);
        Let("L", "ShadowColor", 0x00FF0000);
        Let("L", "BackColorL", 0x00FFFFFF);
        Let("L", "FontSize", 12);
        Let("L", "Caption", "Wg&8#");
        Let("L", "xDist", distance);
    }
    static Points Of(const Shot& px, std::uint32_t colour) {
        Points found;
        for (int y = 0; y < px.height; ++y)
            for (int x = 0; x < px.width; ++x)
                if (px.at(x, y) == colour) found.insert({x, y});
        return found;
    }
};

// The default of "BackColorL" is the surface's colour, which the let keeps in step with the
// field: the colour shows at once but is never stored, so a restored control takes the colour of
// its new surface. Restoring reports the lets it runs, in key order.
TEST_F(Label3DTest, BackColorFollowsTheSurface) {
    Add();
    ChangeLog log;
    form.SetSink(&log);
    Let("L", "BackColorL", 0x0000FFFF);
    EXPECT_EQ(Long("L", "BackColorL"), 0x0000FFFF);
    EXPECT_EQ(Pixels("L").at(119, 39), 0xFFFF00u);
    EXPECT_FALSE(Save("L").Contains("BackColorL"));
    Restore("Label3D", {"R", 150, 900, 1800, 600}, Save("L"));
    EXPECT_EQ(Long("R", "BackColorL"), static_cast<std::int32_t>(0x8000000F));

    // Transparent: the assignment is ignored entirely.
    Let("L", "BackStyle", 1);
    Let("L", "BackColorL", 0x000000FF);
    form.SetSink(nullptr);
    EXPECT_EQ(Long("L", "BackColorL"), 0x0000FFFF);
    EXPECT_EQ(log.lines,
              (std::vector<std::string>{"L.BackColorL", "R.Font", "R.Shadow", "R.TextColor",
                                        "R.BackColorL", "R.ShadowColor", "R.FocusRect",
                                        "R.ToolTipText", "R.xDist", "R.BackStyle", "L.BackStyle"}));
}

TEST_F(Label3DTest, FontSizeIsSavedInWholePoints) {
    Add();
    Let("L", "FontSize", 10.5);
    EXPECT_EQ(Save("L").ReadProperty("FontSize"), Variant(std::int16_t{10}));  // half to even
    Restore("Label3D", {"R", 150, 900, 1800, 600}, Save("L"));
    EXPECT_FLOAT_EQ(Get("R", "FontSize").ToSingle(), 10.0f);
}

// For every direction the text pixels stay where they are, and the shadow shows as the text's
// own pixels shifted by 3 pixels (xDist 45 twips) wherever the text does not cover them; mode 8
// hides it under the text. Unknown modes are kept and leave the shadow where it was.
TEST_F(Label3DTest, ShadowIsTheTextShiftedInItsDirection) {
    AddPlain();
    Let("L", "Shadow", false);
    const Shot plain = Pixels("L");
    const Points text = Of(plain, kRed);
    ASSERT_GT(text.size(), 100u);
    ASSERT_TRUE(Of(plain, kBlue).empty());
    Let("L", "Shadow", true);

    const int d = 3;
    const std::pair<int, int> offsets[9] = {{d, d},  {0, d},  {-d, d}, {-d, 0}, {-d, -d},
                                            {0, -d}, {d, -d}, {d, 0},  {0, 0}};
    for (std::int16_t mode = 0; mode <= 8; ++mode) {
        SCOPED_TRACE("TextMode " + std::to_string(mode));
        Let("L", "TextMode", mode);
        const Shot px = Pixels("L");
        EXPECT_EQ(px.Count(kWhite) + px.Count(kRed) + px.Count(kBlue), px.width * px.height)
            << "three plain colours";
        EXPECT_EQ(Of(px, kRed), text);
        Points expected;
        for (const auto& [x, y] : text) {
            const int sx = x + offsets[mode].first, sy = y + offsets[mode].second;
            if (sx >= 0 && sy >= 0 && sx < px.width && sy < px.height && !text.count({sx, sy}))
                expected.insert({sx, sy});
        }
        EXPECT_EQ(Of(px, kBlue), expected);
    }

    Let("L", "TextMode", 3);
    const Shot before = Pixels("L");
    for (const std::int16_t unknown : {9, -1}) {
        Let("L", "TextMode", unknown);
        EXPECT_EQ(Pixels("L").bits, before.bits) << unknown;
    }
    Restore("Label3D", {"R", 150, 900, 1800, 600}, Save("L"));
    EXPECT_EQ(Get("R", "TextMode").ToInteger(), -1);
}

TEST_F(Label3DTest, TransparentLabelShowsTheFormAroundItsGlyphs) {
    form.BackColor = 0x0000FF00;  // green
    AddPlain(15);
    Let("L", "BackStyle", 1);
    const std::vector<std::uint32_t> screen = platform.driver().ComposeScreen();
    const int width = platform.windows().ScreenSize().cx;
    std::map<std::uint32_t, int> seen;
    // The control covers 10..129, 10..49 on the screen.
    for (int y = 10; y < 50; ++y)
        for (int x = 10; x < 130; ++x) ++seen[screen[static_cast<std::size_t>(y * width + x)]];
    EXPECT_EQ(seen.size(), 3u) << "only the form, the text and the shadow";
    EXPECT_GT(seen[kGreen], 2000);
    EXPECT_GT(seen[kRed], 100);
    EXPECT_GT(seen[kBlue], 20);
    Let("L", "BackStyle", 0);
    EXPECT_EQ(Pixels("L").at(119, 39), kWhite) << "opaque again: the surface's colour";
}

// -d is taken in 16 bits: only the directions that negate the distance overflow.
TEST_F(Label3DTest, DistanceWhoseNegationOverflowsFailsOnlyWhereNegated) {
    AddPlain();
    Let("L", "xDist", -32768);  // TextMode 0 uses d itself
    EXPECT_EQ(ErrorOf([&] { Let("L", "TextMode", 2); }), kErrOverflow);
    EXPECT_EQ(Control<Label3D>("L").TextMode(), 2);
    Let("L", "TextMode", 7);
    EXPECT_EQ(ErrorOf([&] { Let("L", "TextMode", 5); }), kErrOverflow);
}

// ---- input and focus

// Without FocusRect only key presses come through; with it, KeyDown and KeyUp too, and Enter
// clicks instead of raising them.
TEST_F(Label3DTest, KeysFollowFocusRect) {
    Add();
    const std::string keys =
        "focus L\nkey down 65 shift=1\nkey press 97\nkey up 65 shift=1\n"
        "key down enter\nkey press 13\nkey up enter\n";
    EXPECT_EQ(Run(keys), "event L.KeyPress(97)\nevent L.KeyPress(13)\n");
    EXPECT_EQ(Run("set L.FocusRect True\n" + keys),
              "changed L.FocusRect\n"
              "event L.KeyDown(65, 1)\n"
              "event L.KeyPress(97)\n"
              "event L.KeyUp(65, 1)\n"
              "event L.KeyPress(13)\n"
              "event L.Click()\n");
}

TEST_F(Label3DTest, MouseInputComesFromTheLabels) {
    Add();
    EXPECT_EQ(Run("move L 4 2\nclick\nwait 1000\ndblclick\n"),
              "event L.MouseMove(0, 0, 60, 30)\n"
              "event L.MouseDown(1, 0, 60, 30)\n"
              "event L.MouseUp(1, 0, 60, 30)\n"
              "event L.Click()\n"
              "event L.MouseDown(1, 0, 60, 30)\n"
              "event L.MouseUp(1, 0, 60, 30)\n"
              "event L.Click()\n"
              "event L.DblClick()\n"
              "event L.MouseUp(1, 0, 60, 30)\n");
    EXPECT_NE(platform.windows().GetFocus(), form.Get("L").GetControl().SurfaceWindow())
        << "without FocusRect a click leaves the focus where it was";
    // Disabled labels pass clicks to the surface, which takes no focus either.
    EXPECT_EQ(Run("set L.EnabledL False\nmove L\nclick\nkey press 97\n"), "changed L.EnabledL\n");
}

// With FocusRect a click takes the focus, and the shadow shows FocusColor while focused: a new
// ShadowColor shows at once, and losing the focus restores ShadowColor.
TEST_F(Label3DTest, ClickTakesTheFocusAndTheShadowShowsIt) {
    AddPlain(15);
    Add("M", 900);
    EXPECT_EQ(
        Run("set L.FocusRect True\nset L.FocusColor &HFF00&\nmove L\nclick\nget L.ShadowColor\n"),
        "changed L.FocusRect\n"
        "changed L.FocusColor\n"
        "event L.MouseMove(0, 0, 900, 300)\n"
        "event L.MouseDown(1, 0, 900, 300)\n"
        "event L.MouseUp(1, 0, 900, 300)\n"
        "event L.Click()\n"
        "L.ShadowColor = 65280\n");
    EXPECT_EQ(platform.windows().GetFocus(), form.Get("L").GetControl().SurfaceWindow());
    EXPECT_TRUE(Of(Pixels("L"), kBlue).empty());
    EXPECT_GT(Of(Pixels("L"), kGreen).size(), 20u);
    Run("focus M\n");
    EXPECT_TRUE(Of(Pixels("L"), kGreen).empty());
    EXPECT_GT(Of(Pixels("L"), kBlue).size(), 20u);

    EXPECT_EQ(Run("focus L\nset L.ShadowColor 4\nget L.ShadowColor\nfocus M\nget L.ShadowColor\n"
                  "set L.FocusRect False\nfocus L\nget L.ShadowColor\n"),
              "changed L.ShadowColor\n"
              "L.ShadowColor = 4\n"
              "L.ShadowColor = 4\n"
              "changed L.FocusRect\n"
              "L.ShadowColor = 4\n");
}

}  // namespace
}  // namespace korvex::test
