// Label3D: the background colour that follows the surface, the shadow's kept modes and 16-bit
// distance, and the focus behaviour driven by scripts. (The nine shadow directions, opaque and
// transparent, are the gallery's label3d pictures.)

#include "controls/display/label3d.hpp"
#include "support/control_fixture.hpp"

namespace korvex::test {
namespace {

using controls::Label3D;

constexpr std::uint32_t kBlue = 0x0000FF;  // as a pixel
constexpr std::uint32_t kGreen = 0x00FF00;

class Label3DTest : public ControlsTest {
  protected:
    Site& Add(const char* name = "L", std::int32_t top = 150) {
        return New("Label3D", {name, 150, top, 1800, 600});
    }
    // A 120 x 40 pixel label with plain colours: red text, blue shadow on white.
    void AddPlain() {
        Add();
        Let("L", "TextColor", 0x000000FF);
        Let("L", "ShadowColor", 0x00FF0000);
        Let("L", "BackColorL", 0x00FFFFFF);
        Let("L", "FontSize", 12);
        Let("L", "Caption", "Wg&8#");
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

// Unknown modes are kept and leave the shadow where it was. -d is taken in 16 bits: only the
// directions that negate the distance overflow.
TEST_F(Label3DTest, UnknownModesAndDistancesWhoseNegationOverflows) {
    AddPlain();
    Let("L", "TextMode", 3);
    const Shot before = Pixels("L");
    for (const std::int16_t unknown : {9, -1}) {
        Let("L", "TextMode", unknown);
        EXPECT_EQ(Pixels("L").bits, before.bits) << unknown;
    }
    Restore("Label3D", {"R", 150, 900, 1800, 600}, Save("L"));
    EXPECT_EQ(Get("R", "TextMode").ToInteger(), -1);

    Let("L", "TextMode", 0);
    Let("L", "xDist", -32768);  // TextMode 0 uses d itself
    EXPECT_EQ(ErrorOf([&] { Let("L", "TextMode", 2); }), kErrOverflow);
    EXPECT_EQ(Control<Label3D>("L").TextMode(), 2);
    Let("L", "TextMode", 7);
    EXPECT_EQ(ErrorOf([&] { Let("L", "TextMode", 5); }), kErrOverflow);
}

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
    EXPECT_EQ(Brief("move L 4 2\nclick\nwait 1000\ndblclick\n", "L"),
              "MouseMove(0, 0, 60, 30); MouseDown(1, 0, 60, 30); MouseUp(1, 0, 60, 30); Click(); "
              "MouseDown(1, 0, 60, 30); MouseUp(1, 0, 60, 30); Click(); DblClick(); "
              "MouseUp(1, 0, 60, 30)");
    EXPECT_NE(platform.windows().GetFocus(), form.Get("L").GetControl().SurfaceWindow())
        << "without FocusRect a click leaves the focus where it was";
    // Disabled labels pass clicks to the surface, which takes no focus either.
    EXPECT_EQ(Run("set L.EnabledL False\nmove L\nclick\nkey press 97\n"), "changed L.EnabledL\n");
}

// With FocusRect a click takes the focus, and the shadow shows FocusColor while focused, while
// ShadowColor reads back as set; losing the focus restores ShadowColor.
TEST_F(Label3DTest, ClickTakesTheFocusAndTheShadowShowsIt) {
    AddPlain();
    Add("M", 900);
    Run("set L.FocusRect True\nset L.FocusColor &HFF00&\nmove L\nclick\n");
    EXPECT_EQ(platform.windows().GetFocus(), form.Get("L").GetControl().SurfaceWindow());
    EXPECT_EQ(Pixels("L").Count(kBlue), 0);
    EXPECT_GT(Pixels("L").Count(kGreen), 20);
    EXPECT_EQ(Run("set L.ShadowColor 4\nget L.ShadowColor\nfocus M\nget L.ShadowColor\n"),
              "changed L.ShadowColor\nL.ShadowColor = 4\nL.ShadowColor = 4\n");
    EXPECT_EQ(Pixels("L").Count(kGreen), 0);
    EXPECT_GT(Pixels("L").Count(0x040000), 20);
}

}  // namespace
}  // namespace korvex::test
