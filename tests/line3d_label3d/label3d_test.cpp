// Label3D: member table, persistence (what a new control writes, the empty bag, round trips, the
// background colour that follows the surface), the shadow's nine directions in pixels, the
// transparent look, and the focus behaviour driven by scripts.

#include "display_fixture.hpp"

#include <algorithm>
#include <set>

namespace korvex::test {
namespace {

using controls::EnumBack;
using controls::Label3D;

constexpr const char* kLabel = "Korvex_Tools.Label3D";
constexpr std::uint32_t kWhite = 0xFFFFFF;
constexpr std::uint32_t kRed = 0xFF0000;   // as a pixel
constexpr std::uint32_t kBlue = 0x0000FF;  // as a pixel

class Label3DTest : public DisplayTest {
  protected:
    Label3D& Label(const char* name = "L") { return Control<Label3D>(name); }

    // Every readable property of the member table except the handles.
    std::map<std::string, std::string> State(const char* name = "L") {
        std::map<std::string, std::string> out;
        for (const host::MemberInfo& m : Label3D::Class().members) {
            if (m.kind != host::MemberInfo::Kind::Property || m.name == "HDC" || m.name == "hwnd") continue;
            const Variant v = Get(name, m.name.c_str());
            if (v.Kind() == host::VarKind::Font) {
                const host::StdFont& f = *v.ToFont();
                out[m.name] = f.Name() + " " + std::to_string(f.Size()) + (f.Bold() ? " bold" : "") +
                              (f.Italic() ? " italic" : "") + (f.Strikethrough() ? " strike" : "");
            } else {
                out[m.name] = host::DisplayText(v);
            }
        }
        return out;
    }

    // A 120 x 40 pixel label with plain colours: red text, blue shadow on white.
    void AddPlain(std::int16_t distance = 45) {
        AddNew(kLabel, "L", 150, 150, 1800, 600);
        Let("L", "TextColor", 0x000000FF);
        Let("L", "ShadowColor", 0x00FF0000);
        Let("L", "BackColorL", 0x00FFFFFF);
        Let("L", "FontSize", 12);
        Let("L", "Caption", "Wg&8#");
        Let("L", "xDist", distance);
    }
    static std::set<std::pair<int, int>> Of(const WindowPixels& px, std::uint32_t colour) {
        std::set<std::pair<int, int>> found;
        for (int y = 0; y < px.height; ++y)
            for (int x = 0; x < px.width; ++x)
                if (px.at(x, y) == colour) found.insert({x, y});
        return found;
    }
    // Only the three colours appear: the text is drawn without smoothing, the shadow and the
    // text each in one colour.
    static void ExpectOnlyPlainColours(const WindowPixels& px) {
        for (std::uint32_t p : px.bits) ASSERT_TRUE(p == kWhite || p == kRed || p == kBlue) << std::hex << p;
    }
};

TEST_F(Label3DTest, MemberTableIsInSlotOrder) {
    const host::ClassInfo& info = Label3D::Class();
    EXPECT_EQ(info.progId, "Korvex_Tools.Label3D");
    std::vector<std::string> names;
    for (const host::MemberInfo& m : info.members) names.push_back(m.name);
    EXPECT_EQ(names, (std::vector<std::string>{
                         "ShowAboutBox", "FocusRect", "EnabledL", "Shadow", "Font", "Refresh", "FocusColor",
                         "TextColor", "BackColorL", "ShadowColor", "TextMode", "FontBold", "FontItalic", "FontName",
                         "FontSize", "FontStrikethru", "HDC", "hwnd", "HasDC", "ToolTipText", "Caption",
                         "BackStyle", "xDist"}));
    // Slot order throughout: the about-box identifier belongs to other controls' tables.
    for (std::size_t i = 0; i < info.members.size(); ++i) EXPECT_EQ(info.members[i].dispId, static_cast<int>(i) + 1);
    for (const char* handle : {"HDC", "hwnd", "HasDC"}) EXPECT_TRUE(info.FindMember(handle)->ReadOnly()) << handle;

    std::vector<std::string> events;
    for (const host::EventInfo& e : info.events) events.push_back(std::to_string(e.id) + e.name);
    EXPECT_EQ(events, (std::vector<std::string>{"1Click", "2DblClick", "3MouseDown", "4MouseMove", "5MouseUp",
                                                "6KeyDown", "7KeyPress", "8KeyUp"}));
    EXPECT_EQ(info.events[2].params.size(), 4u);
    EXPECT_EQ(info.events[2].params[2].type.code, host::TypeCode::Single);
    EXPECT_EQ(info.events[5].params[0].type.code, host::TypeCode::Integer);
    const host::EnumInfo* e = info.FindEnum("EnumBack");
    ASSERT_NE(e, nullptr);
    EXPECT_EQ(e->members, (std::vector<std::pair<std::string, std::int32_t>>{{"BgColor", 0}, {"cTRANSPARENT", 1}}));
}

TEST_F(Label3DTest, NewControlHasItsCreatedLook) {
    AddNew(kLabel, "L", 150, 150, 1800, 600);
    const std::map<std::string, std::string> s = State();
    EXPECT_EQ(s.at("Caption"), "\"Korvex-Label\"");
    EXPECT_EQ(s.at("Font"), "Arial 8.250000 bold");
    EXPECT_EQ(s.at("ShadowColor"), std::to_string(0x00FFFF00));
    EXPECT_EQ(s.at("FocusColor"), std::to_string(0x0000FF00));
    EXPECT_EQ(s.at("TextColor"), "0");
    EXPECT_EQ(s.at("BackColorL"), std::to_string(static_cast<std::int32_t>(0x8000000F)));
    EXPECT_EQ(s.at("ToolTipText"), "\"Quick-Info\"");
    EXPECT_EQ(s.at("xDist"), "15");
    EXPECT_EQ(s.at("TextMode"), "0");
    EXPECT_EQ(s.at("BackStyle"), "0");
    EXPECT_EQ(s.at("Shadow"), "True");
    EXPECT_EQ(s.at("FocusRect"), "False");
    EXPECT_EQ(s.at("EnabledL"), "True");
    EXPECT_EQ(s.at("HasDC"), "True");
    EXPECT_NE(Get("L", "hwnd").ToLong(), 0);
    EXPECT_NE(Get("L", "HDC").ToLong(), 0);
}

// Only the font differs from its defaults (the ambient font; flags 0, name "", size 0), and the
// size goes into the bag rounded to whole points.
TEST_F(Label3DTest, NewControlWritesOnlyItsFont) {
    AddNew(kLabel, "L", 150, 150, 1800, 600);
    const host::PropertyBag bag = Save("L");
    std::vector<std::string> keys;
    for (const auto& [key, value] : bag.Entries()) keys.push_back(key);
    EXPECT_EQ(keys, (std::vector<std::string>{"Font", "FontBold", "FontName", "FontSize"}));
    EXPECT_EQ(bag.ReadProperty("FontBold"), Variant(std::int16_t{-1}));
    EXPECT_EQ(bag.ReadProperty("FontName"), Variant("Arial"));
    EXPECT_EQ(bag.ReadProperty("FontSize"), Variant(std::int16_t{8}));
}

TEST_F(Label3DTest, EmptyBagGivesANewControlButTheAmbientFont) {
    AddNew(kLabel, "N", 150, 150, 1800, 600);
    Restore(kLabel, "R", host::PropertyBag{}, 150, 900, 1800, 600);
    std::map<std::string, std::string> fresh = State("N"), restored = State("R");
    // The font keys restore the ambient font with the flags and name of their empty defaults; a
    // size of 0 is no size and leaves the ambient font's.
    EXPECT_EQ(restored.at("Font"), " 8.250000");
    EXPECT_EQ(restored.at("FontBold"), "False");
    EXPECT_EQ(restored.at("FontName"), "\"\"");
    EXPECT_EQ(restored.at("FontSize"), "8.25");
    for (const char* font : {"Font", "FontBold", "FontName"}) {
        fresh.erase(font);
        restored.erase(font);
    }
    EXPECT_EQ(restored, fresh);
    // The container's own font is left as it was.
    EXPECT_EQ(form.Font()->Name(), "MS Sans Serif");
}

TEST_F(Label3DTest, EveryPropertySurvivesSaveAndRestore) {
    AddNew(kLabel, "L", 150, 150, 1800, 600);
    Let("L", "FocusRect", true);
    Let("L", "EnabledL", false);
    Let("L", "Shadow", false);
    Let("L", "FocusColor", 0x00123456);
    Let("L", "TextColor", static_cast<std::int32_t>(0x80000008));
    Let("L", "ShadowColor", 0x00ABCDEF);
    Let("L", "TextMode", 5);
    Let("L", "FontName", "Courier New");
    Let("L", "FontSize", 14);
    Let("L", "FontBold", false);
    Let("L", "FontItalic", true);
    Let("L", "FontStrikethru", true);
    Let("L", "ToolTipText", "Hinweis");
    Let("L", "Caption", "Größe & Form");
    Let("L", "xDist", -30);
    Let("L", "BackStyle", 1);
    const std::map<std::string, std::string> before = State("L");
    Restore(kLabel, "R", Save("L"), 150, 900, 1800, 600);
    EXPECT_EQ(State("R"), before);
    EXPECT_EQ(Save("R"), Save("L"));
    form.SwitchMode(true);
    EXPECT_EQ(State("L"), before);
}

TEST_F(Label3DTest, FontSizeIsSavedInWholePoints) {
    AddNew(kLabel, "L", 150, 150, 1800, 600);
    Let("L", "FontSize", 10.5);
    EXPECT_EQ(Save("L").ReadProperty("FontSize"), Variant(std::int16_t{10}));  // half to even
    Restore(kLabel, "R", Save("L"), 150, 900, 1800, 600);
    EXPECT_FLOAT_EQ(Get("R", "FontSize").ToSingle(), 10.0f);
}

// The default of "BackColorL" is the surface's colour, which the let keeps in step with the
// field: the colour shows at once but is never stored, so a restored control takes the colour
// of its new surface.
TEST_F(Label3DTest, BackColorFollowsTheSurface) {
    AddNew(kLabel, "L", 150, 150, 1800, 600);
    ChangeLog log;
    form.SetSink(&log);
    Let("L", "BackColorL", 0x0000FFFF);
    EXPECT_EQ(Get("L", "BackColorL").ToLong(), 0x0000FFFF);
    EXPECT_EQ(Pixels("L").at(119, 39), 0xFFFF00u);
    EXPECT_FALSE(Save("L").Contains("BackColorL"));
    host::PropertyBag bag = Save("L");
    Restore(kLabel, "R", bag, 150, 900, 1800, 600);
    EXPECT_EQ(Get("R", "BackColorL").ToLong(), static_cast<std::int32_t>(0x8000000F));

    // Transparent: the assignment is ignored entirely.
    Let("L", "BackStyle", 1);
    Let("L", "BackColorL", 0x000000FF);
    form.SetSink(nullptr);
    EXPECT_EQ(Get("L", "BackColorL").ToLong(), 0x0000FFFF);
    EXPECT_EQ(log.lines, (std::vector<std::string>{"changed L.BackColorL", "changed R.Font", "changed R.Shadow",
                                                   "changed R.TextColor", "changed R.BackColorL",
                                                   "changed R.ShadowColor", "changed R.FocusRect",
                                                   "changed R.ToolTipText", "changed R.xDist", "changed R.BackStyle",
                                                   "changed L.BackStyle"}));
    EXPECT_FALSE(Save("L").Contains("BackColorL"));
}

TEST_F(Label3DTest, UnknownTextModeIsKeptAndLeavesTheShadowInPlace) {
    AddPlain();
    Let("L", "TextMode", 3);
    const WindowPixels before = Pixels("L");
    Let("L", "TextMode", 9);
    EXPECT_EQ(Pixels("L").bits, before.bits);
    Let("L", "TextMode", -1);
    EXPECT_EQ(Pixels("L").bits, before.bits);
    EXPECT_EQ(Save("L").ReadProperty("TextMode"), Variant(std::int16_t{-1}));
    Restore(kLabel, "R", Save("L"), 150, 900, 1800, 600);
    EXPECT_EQ(Get("R", "TextMode").ToInteger(), -1);
}

// ---- the shadow in pixels

// For every direction: the text pixels stay exactly where they are, and the shadow shows as the
// text's own pixels shifted by 3 pixels (xDist 45 twips), wherever the text does not cover them.
TEST_F(Label3DTest, ShadowIsTheTextShiftedInItsDirection) {
    AddPlain();
    Let("L", "Shadow", false);
    const WindowPixels plain = Pixels("L");
    const std::set<std::pair<int, int>> text = Of(plain, kRed);
    ASSERT_GT(text.size(), 100u);
    ASSERT_TRUE(Of(plain, kBlue).empty());
    Let("L", "Shadow", true);

    const int d = 3;
    const std::pair<int, int> offsets[9] = {{d, d}, {0, d}, {-d, d}, {-d, 0}, {-d, -d}, {0, -d}, {d, -d}, {d, 0}, {0, 0}};
    for (std::int16_t mode = 0; mode <= 8; ++mode) {
        SCOPED_TRACE("TextMode " + std::to_string(mode));
        Let("L", "TextMode", mode);
        const WindowPixels px = Pixels("L");
        ExpectOnlyPlainColours(px);
        EXPECT_EQ(Of(px, kRed), text);
        std::set<std::pair<int, int>> expected;
        for (const auto& [x, y] : text) {
            const int sx = x + offsets[mode].first, sy = y + offsets[mode].second;
            if (sx >= 0 && sy >= 0 && sx < px.width && sy < px.height && !text.count({sx, sy})) expected.insert({sx, sy});
        }
        EXPECT_EQ(Of(px, kBlue), expected);
    }
}

TEST_F(Label3DTest, StandardModePutsTheShadowExactlyUnderTheText) {
    AddPlain(15);
    Let("L", "TextMode", 8);
    const WindowPixels px = Pixels("L");
    EXPECT_TRUE(Of(px, kBlue).empty());
    EXPECT_GT(Of(px, kRed).size(), 100u);
    ExpectOnlyPlainColours(px);
}

TEST_F(Label3DTest, ModeZeroShiftsTheShadowByOnePixelPerFifteenTwips) {
    AddPlain(15);
    const WindowPixels px = Pixels("L");
    const std::set<std::pair<int, int>> text = Of(px, kRed), shadow = Of(px, kBlue);
    ASSERT_FALSE(shadow.empty());
    // Every shadow pixel lies one down and right of a text pixel, and the bottom-right-most text
    // pixel of each glyph run has its shadow.
    for (const auto& [x, y] : shadow) EXPECT_TRUE(text.count({x - 1, y - 1})) << x << "," << y;
    const auto last = *std::max_element(text.begin(), text.end());
    EXPECT_TRUE(shadow.count({last.first + 1, last.second + 1}));
}

TEST_F(Label3DTest, ShadowStopsAtTheControlsEdge) {
    AddPlain(45);
    Let("L", "Caption", "WWWWWWWWWWWWWWWWWWWWWWWWWWWWWW");  // wraps; fills the label's width
    Let("L", "TextMode", 7);                                // shifted right
    const WindowPixels px = Pixels("L");
    EXPECT_EQ(px.width, 120);
    // The right edge of the control: nothing is drawn beyond it, and its last column shows
    // either white, text or shadow, never garbage.
    for (int y = 0; y < px.height; ++y) {
        const std::uint32_t p = px.at(px.width - 1, y);
        EXPECT_TRUE(p == kWhite || p == kRed || p == kBlue);
    }
}

TEST_F(Label3DTest, TransparentLabelShowsTheFormAroundItsGlyphs) {
    form.BackColor = 0x0000FF00;  // green
    AddPlain(15);
    Let("L", "BackStyle", 1);
    const std::vector<std::uint32_t> screen = platform.driver().ComposeScreen();
    const int width = platform.windows().ScreenSize().cx;
    const auto at = [&](int x, int y) { return screen[static_cast<std::size_t>(y * width + x)]; };
    std::size_t text = 0, shadow = 0;
    // The control covers 10..129, 10..49 on the screen.
    for (int y = 10; y < 50; ++y) {
        for (int x = 10; x < 130; ++x) {
            const std::uint32_t p = at(x, y);
            ASSERT_TRUE(p == 0x00FF00 || p == kRed || p == kBlue) << std::hex << p << " at " << x << "," << y;
            text += p == kRed;
            shadow += p == kBlue;
        }
    }
    EXPECT_GT(text, 100u);
    EXPECT_GT(shadow, 20u);
    EXPECT_EQ(at(128, 48), 0x00FF00u);
    // Back to opaque: the surface's colour again.
    Let("L", "BackStyle", 0);
    EXPECT_EQ(Pixels("L").at(119, 39), kWhite);
}

TEST_F(Label3DTest, DistanceWhoseNegationOverflowsFailsOnlyWhereNegated) {
    AddPlain();
    Let("L", "xDist", -32768);  // TextMode 0 uses d itself
    EXPECT_HOST_ERROR(Let("L", "TextMode", 2), host::kErrOverflow);
    EXPECT_EQ(Label().TextMode(), 2);
    Let("L", "TextMode", 7);
    EXPECT_HOST_ERROR(Let("L", "TextMode", 5), host::kErrOverflow);
}

// ---- input and focus

TEST_F(Label3DTest, KeysWithoutFocusRectOnlyPress) {
    AddNew(kLabel, "L", 150, 150, 1800, 600);
    EXPECT_EQ(Run("focus L\nkey down 65\nkey press 97\nkey up 65\n"
                  "key down enter\nkey press 13\nkey up enter\n"),
              "event L.KeyPress(97)\n"
              "event L.KeyPress(13)\n");
}

TEST_F(Label3DTest, EnterClicksWithFocusRect) {
    AddNew(kLabel, "L", 150, 150, 1800, 600);
    EXPECT_EQ(Run("set L.FocusRect True\nfocus L\n"
                  "key down 65 shift=1\nkey press 65\nkey up 65 shift=1\n"
                  "key down enter\nkey press 13\nkey up enter\n"),
              "changed L.FocusRect\n"
              "event L.KeyDown(65, 1)\n"
              "event L.KeyPress(65)\n"
              "event L.KeyUp(65, 1)\n"
              "event L.KeyPress(13)\n"
              "event L.Click()\n");
}

TEST_F(Label3DTest, MouseInputComesFromTheLabels) {
    AddNew(kLabel, "L", 150, 150, 1800, 600);
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
    // Without FocusRect a click leaves the focus where it was.
    EXPECT_NE(platform.windows().GetFocus(), form.Get("L").GetControl().SurfaceWindow());
}

TEST_F(Label3DTest, ClickTakesTheFocusAndTheShadowShowsIt) {
    AddNew(kLabel, "L", 150, 150, 1800, 600);
    AddNew(kLabel, "M", 150, 900, 1800, 600);
    EXPECT_EQ(Run("set L.FocusRect True\nset L.FocusColor &HFF&\nmove L\nclick\nget L.ShadowColor\n"),
              "changed L.FocusRect\n"
              "changed L.FocusColor\n"
              "event L.MouseMove(0, 0, 900, 300)\n"
              "event L.MouseDown(1, 0, 900, 300)\n"
              "event L.MouseUp(1, 0, 900, 300)\n"
              "event L.Click()\n"
              "L.ShadowColor = 255\n");
    EXPECT_EQ(platform.windows().GetFocus(), form.Get("L").GetControl().SurfaceWindow());
    // A new shadow colour shows at once while focused; losing the focus restores the field.
    EXPECT_EQ(Run("set L.ShadowColor 4\nget L.ShadowColor\nfocus M\nget L.ShadowColor\n"
                  "set L.FocusRect False\nfocus L\nget L.ShadowColor\n"),
              "changed L.ShadowColor\n"
              "L.ShadowColor = 4\n"
              "L.ShadowColor = 4\n"
              "changed L.FocusRect\n"
              "L.ShadowColor = 4\n");
}

TEST_F(Label3DTest, FocusColourShowsOnlyWhileFocused) {
    AddPlain(15);
    Let("L", "FocusRect", true);
    Let("L", "FocusColor", 0x0000FF00);  // green
    EXPECT_TRUE(Of(Pixels("L"), 0x00FF00).empty());
    Run("focus L\n");
    const WindowPixels focused = Pixels("L");
    EXPECT_TRUE(Of(focused, kBlue).empty());
    EXPECT_GT(Of(focused, 0x00FF00).size(), 20u);
    AddNew(kLabel, "M", 150, 900, 1800, 600);
    Run("focus M\n");
    EXPECT_TRUE(Of(Pixels("L"), 0x00FF00).empty());
    EXPECT_GT(Of(Pixels("L"), kBlue).size(), 20u);
}

TEST_F(Label3DTest, DisabledLabelsPassClicksToTheSurface) {
    AddNew(kLabel, "L", 150, 150, 1800, 600);
    EXPECT_EQ(Run("set L.EnabledL False\nmove L\nclick\nkey press 97\n"),
              "changed L.EnabledL\n");  // no focus: the key went nowhere
}

}  // namespace
}  // namespace korvex::test
