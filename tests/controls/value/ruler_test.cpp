// Ruler: the scale of every unit and zoom in both directions, the automatic orientation, the
// inverting marker, the right-click menu with its keys and events, bad values, persistence.

#include <cmath>
#include <limits>
#include <map>

#include "controls/value/ruler.hpp"
#include "support/control_fixture.hpp"
#include "support/error_of.hpp"

namespace korvex::test {
namespace {

using controls::asrOrientationConstants;
using controls::Ruler;
using controls::RulerModeConst;

class RulerTest : public ControlsTest {
  protected:
    RulerTest() : ControlsTest(true) {}
    Site& Add(std::int32_t width, std::int32_t height, const char* name = "R") {
        return New("Ruler", {name, 150, 150, width, height});
    }
    Ruler& R(const char* name = "R") { return Control<Ruler>(name); }
    [[nodiscard]] std::uint32_t Fore() { return Sys(platform::COLOR_BTNTEXT); }
    [[nodiscard]] std::uint32_t Back() { return Sys(platform::COLOR_INFOBK); }

    // Columns (or rows) whose every pixel across the ruler is the fore colour: the long ticks.
    std::vector<int> FullLines(const Shot& shot, bool horizontal) {
        std::vector<int> found;
        const int along = horizontal ? shot.width : shot.height;
        const int across = horizontal ? shot.height : shot.width;
        for (int i = 0; i < along; ++i) {
            bool full = true;
            for (int j = 0; j < across && full; ++j)
                full = (horizontal ? shot.at(i, j) : shot.at(j, i)) == Fore();
            if (full) found.push_back(i);
        }
        return found;
    }
    // Where the ticks touch the ruler's lower (right) edge.
    std::vector<int> Ticks(const Shot& shot, bool horizontal) {
        std::vector<int> found;
        const int along = horizontal ? shot.width : shot.height;
        for (int i = 0; i < along; ++i)
            if ((horizontal ? shot.at(i, shot.height - 1) : shot.at(shot.width - 1, i)) == Fore())
                found.push_back(i);
        return found;
    }
    // How far the fore colour of a label reaches right of column x in the top rows, before the
    // next long tick: its width.
    int LabelWidth(const Shot& shot, int x, int rows) {
        const std::vector<int> full = FullLines(shot, true);
        const auto next = std::upper_bound(full.begin(), full.end(), x);
        const int end = next == full.end() ? shot.width : *next;
        int last = x;
        for (int c = x + 1; c < end; ++c)
            for (int r = 0; r < rows; ++r)
                if (shot.at(c, r) == Fore()) last = c;
        return last - x;
    }
    // The ink of a text ends up to three pixels short of its advance: a label's width tells its
    // digits apart (one digit 6 pixels, two 12 in the form's font).
    bool IsLabel(int inkWidth, const std::string& text) {
        const int advance = TextSize(text).cx;
        return inkWidth > advance - 4 && inkWidth <= advance;
    }
};

// A pixel column lies on a twip position when it holds the pixel the position falls in, rounded
// either way (15 twips a pixel).
bool Near(int pixel, double twips) {
    return std::abs(pixel - twips / 15) < 1;
}

// The scale of every unit at every zoom, horizontally: a long tick with a label every
// SmallZoom units, labels the whole multiples SmallZoom, 2 SmallZoom, ..., ten ticks a division.
TEST_F(RulerTest, EveryUnitAndZoomLabelsWholeMultiples) {
    const struct {
        RulerModeConst mode;
        double unit;  // twips, from the default calibration texts
    } units[] = {{RulerModeConst::Millimeter, 445},
                 {RulerModeConst::Twips, 1000},
                 {RulerModeConst::Inch, 1440},
                 {RulerModeConst::Pixel, 1500}};
    constexpr std::int32_t kWidth = 8400;  // 560 pixels
    const std::int16_t zooms[] = {1, 2, 4, 8};
    Add(kWidth, 450);
    for (const auto& unit : units) {
        for (const std::int16_t zoom : zooms) {
            SCOPED_TRACE("mode " + std::to_string(static_cast<int>(unit.mode)) + " zoom " +
                         std::to_string(zoom));
            Let("R", "Mode", static_cast<std::int16_t>(unit.mode));
            Let("R", "SmallZoom", zoom);
            const Shot shot = Pixels("R");
            const std::vector<int> full = FullLines(shot, true);
            // The scale starts a little past one step; division d's long tick is the tenth tick
            // of group d and says zoom x d.
            const double u = unit.unit;
            const std::map<int, std::pair<double, double>> startAndStep = {
                {1, {u / 10, u / 10}},
                {2, {u / 4.8, u / 5}},
                {4, {u / 2.48, u / 2.5}},
                {8, {u / 1.24, u / 1.25}}};
            const auto [start, step] = startAndStep.at(zoom);
            std::size_t expected = 0;
            for (int d = 1; start + (10 * d - 1) * step < kWidth - 15; ++d, ++expected) {
                ASSERT_LT(expected, full.size()) << "division " << d;
                EXPECT_TRUE(Near(full[expected], start + (10 * d - 1) * step))
                    << "division " << d << " at column " << full[expected];
                const std::string label = std::to_string(d * zoom);
                EXPECT_TRUE(IsLabel(LabelWidth(shot, full[expected], 12), label))
                    << "label " << label;
            }
            EXPECT_EQ(full.size(), expected);
            // Ten ticks to a division where they are three pixels or more apart.
            if (step >= 45) {
                const std::size_t ticks = Ticks(shot, true).size();
                const auto steps = static_cast<std::size_t>((kWidth - 15 - start) / step) + 1;
                EXPECT_NEAR(static_cast<double>(ticks), static_cast<double>(steps), 1);
            }
        }
    }
}

// Centimetres at zoom 1 over 4000 twips: ticks every 44.5 twips from 44.5 on, the long ones at
// 445 n labelled n, half-height ones at 222.5 + 445 n, and an eighth of the height elsewhere.
TEST_F(RulerTest, CentimetresTickEvery445TenthsWithHalfTicksBetween) {
    Add(4005, 480);  // 267 x 32 pixels
    const Shot shot = Pixels("R");
    const std::vector<int> ticks = Ticks(shot, true);
    ASSERT_EQ(ticks.size(), 89u);  // 44.5 k for k = 1 .. 89 inside 267 pixels
    for (std::size_t k = 1; k <= ticks.size(); ++k) {
        SCOPED_TRACE("tick " + std::to_string(k));
        const int x = ticks[k - 1];
        EXPECT_TRUE(Near(x, 44.5 * static_cast<double>(k))) << "at column " << x;
        int height = 0;
        while (height < shot.height && shot.at(x, shot.height - 1 - height) == Fore()) ++height;
        const int expected = k % 10 == 0 ? 32 : (k % 5 == 0 ? 16 : 4);
        EXPECT_NEAR(height, expected, 1);
    }
    for (int n = 1; n <= 5; ++n) {
        const std::vector<int> full = FullLines(shot, true);
        EXPECT_TRUE(IsLabel(LabelWidth(shot, full[static_cast<std::size_t>(n - 1)], 12),
                            std::to_string(n)));
    }
}

// Vertically the ticks stand at the right edge and the labels at the left, under their line.
TEST_F(RulerTest, VerticalScaleRunsDownTheHeight) {
    Add(450, 4005);
    EXPECT_EQ(R().Orientation(), asrOrientationConstants::Vertical);
    const Shot shot = Pixels("R");
    const std::vector<int> full = FullLines(shot, false);
    ASSERT_EQ(full.size(), 8u);
    for (std::size_t n = 1; n <= full.size(); ++n)
        EXPECT_TRUE(Near(full[n - 1], 445.0 * static_cast<double>(n))) << "row " << full[n - 1];
    EXPECT_EQ(Ticks(shot, false).size(), 89u);
    // The half tick at 222.5 twips reaches from the middle to the right edge, the short ones an
    // eighth.
    const std::vector<int> ticks = Ticks(shot, false);
    const auto width = [&](int row) {
        int w = 0;
        while (w < shot.width && shot.at(shot.width - 1 - w, row) == Fore()) ++w;
        return w;
    };
    EXPECT_NEAR(width(ticks[4]), 15, 1);
    EXPECT_NEAR(width(ticks[0]), 4, 1);
    // The label 1 lies just below its line at the left edge.
    int labelPixels = 0;
    for (int r = full[0] + 1; r < full[0] + 14; ++r)
        for (int c = 0; c < 10; ++c) labelPixels += shot.at(c, r) == Fore();
    EXPECT_GT(labelPixels, 0);
}

TEST_F(RulerTest, ZoomOutsideTheFourStepsLeavesTheSurfaceEmpty) {
    Add(3000, 450);
    for (const std::int16_t zoom : {0, 3, -8, 16}) {
        Let("R", "SmallZoom", zoom);
        const Shot shot = Pixels("R");
        EXPECT_EQ(shot.Count(Back()), shot.width * shot.height) << "zoom " << zoom;
    }
}

// The first resize replaces Auto for good (and reports it); later proportions do not change it.
TEST_F(RulerTest, AutoOrientationIsDecidedAtTheFirstResize) {
    ChangeLog log;
    form.SetSink(&log);
    Add(2000, 300);
    Add(300, 2000, "V");
    Add(600, 600, "S");
    form.SetSink(nullptr);
    EXPECT_EQ(log.lines,
              (std::vector<std::string>{"R.Orientation", "V.Orientation", "S.Orientation"}));
    EXPECT_EQ(R().Orientation(), asrOrientationConstants::Horizontal);
    EXPECT_EQ(R("V").Orientation(), asrOrientationConstants::Vertical);
    EXPECT_EQ(R("S").Orientation(), asrOrientationConstants::Vertical);
    Let("R", "Height", 3000);
    EXPECT_EQ(R().Orientation(), asrOrientationConstants::Horizontal);
    EXPECT_EQ(Save("R"), JsonPropertyBag::FromJson(R"({"Orientation": {"Integer": 0}})"));
}

// The marker inverts one line across the ruler: the next one takes the old away, so exactly one
// shows; a marker at 0 is never taken away; a resize forgets the marker with the drawing.
TEST_F(RulerTest, MarkerInvertsOneLineAndTakesTheLastAway) {
    Add(3000, 450);
    const Shot base = Pixels("R");
    const auto changed = [&](const Shot& now) {
        std::vector<int> columns;
        for (int x = 0; x < now.width; ++x) {
            int differing = 0;
            for (int y = 0; y < now.height; ++y) {
                if (now.at(x, y) != base.at(x, y)) {
                    EXPECT_EQ(now.at(x, y), ~base.at(x, y) & 0xFFFFFFu) << x << "," << y;
                    ++differing;
                }
            }
            if (differing) {
                EXPECT_EQ(differing, now.height) << "column " << x;
                columns.push_back(x);
            }
        }
        return columns;
    };
    const struct {
        float x;
        std::vector<int> columns;
    } steps[] = {
        {100, {7}},       {200, {13}},    {200, {13}},  // twice at one place: drawn, old taken away
        {0, {0}},         {600, {0, 40}},               // the marker at 0 stays
        {1500, {0, 100}},
    };
    for (const auto& step : steps) {
        R().MouseMoved(step.x);
        EXPECT_EQ(changed(Pixels("R")), step.columns) << "after " << step.x;
    }
    Let("R", "Width", 3015);
    Let("R", "Width", 3000);
    EXPECT_EQ(R().MarkerPos(), 0);
    EXPECT_TRUE(changed(Pixels("R")).empty());
    R().MouseMoved(300);
    EXPECT_EQ(changed(Pixels("R")), std::vector<int>{20});
}

TEST_F(RulerTest, VerticalMarkerRunsAcross) {
    Add(450, 3000);
    const Shot base = Pixels("R");
    R().MouseMoved(300);
    R().MouseMoved(450);
    const Shot now = Pixels("R");
    for (int y = 0; y < now.height; ++y)
        for (int x = 0; x < now.width; ++x)
            EXPECT_EQ(now.at(x, y) != base.at(x, y), y == 30) << x << "," << y;
}

// Bad values raise the host's numbered error and leave the value, the calibration and the
// picture as they were.
TEST_F(RulerTest, BadValuesRaiseAndChangeNothing) {
    Add(3000, 450);
    Let("R", "Mode", std::int16_t{2});
    R().MouseMoved(600);
    const Shot before = Pixels("R");
    const auto nan = std::numeric_limits<float>::quiet_NaN();
    const auto inf = std::numeric_limits<float>::infinity();
    const struct {
        const char* what;
        std::function<void()> act;
        int error;
    } rows[] = {
        {"Mode 4", [&] { Let("R", "Mode", 4); }, 380},
        {"Mode -1", [&] { Let("R", "Mode", -1); }, 380},
        {"Mode 70000", [&] { Let("R", "Mode", 70000); }, 380},
        {"Orientation 3", [&] { Let("R", "Orientation", 3); }, 380},
        {"Orientation -1", [&] { Let("R", "Orientation", -1); }, 380},
        {"AdjInch text", [&] { Let("R", "AdjInch", "zoll"), R().Adjust(); }, 13},
        {"AdjInch 0", [&] { Let("R", "AdjInch", "0"), R().Adjust(); }, 380},
        {"AdjInch negative", [&] { Let("R", "AdjInch", "-1440"), R().Adjust(); }, 380},
        {"AdjInch huge", [&] { Let("R", "AdjInch", "1e20"), R().Adjust(); }, 6},
        {"AdjCm text, Mode 0", [&] { Let("R", "AdjCm", "x"), Let("R", "Mode", 0); }, 13},
        {"MouseMoved NaN", [&] { R().MouseMoved(nan); }, 5},
        {"MouseMoved inf", [&] { R().MouseMoved(-inf); }, 5},
        {"SmallZoom 40000", [&] { Let("R", "SmallZoom", 40000); }, 6},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(ErrorOf(row.act), row.error);
        EXPECT_EQ(R().Mode(), RulerModeConst::Inch);
        EXPECT_EQ(R().UnitLength(), 1440);
        EXPECT_EQ(R().Orientation(), asrOrientationConstants::Horizontal);
        EXPECT_EQ(R().SmallZoom(), 1);
        EXPECT_EQ(R().MarkerPos(), 600);
        EXPECT_EQ(Pixels("R").bits, before.bits);
    }
    // A calibration the text allows is taken at the next Adjust, rounded to whole twips.
    Let("R", "AdjInch", "1000.5");
    R().Adjust();
    EXPECT_EQ(R().UnitLength(), 1000);
    // Far-off marker positions are drawn (outside the surface: nothing) without harm.
    R().MouseMoved(3.0e38F);
    R().MouseMoved(-3.0e38F);
    EXPECT_EQ(R().MarkerPos(), -3.0e38F);
}

// The event sequences of clicks and menu picks, and the menu's checks and shown entries.
TEST_F(RulerTest, MenuPicksRaiseMenuClickAndSetTheUnit) {
    Add(3000, 450);
    Let("R", "Mode3", true);
    const struct {
        const char* script;
        const char* events;
    } steps[] = {
        {"move R\nclick\n", "Click()"},
        {"move R\nclick right\nmenu pick Inch\n", "RightClick(); changed Mode; MenuClick(2)"},
        {"move R\nclick right\nmenu pick fixieren\n", "RightClick(); MenuClick(6)"},
        {"move R\nclick right\nmenu escape\n", "RightClick()"},
        // Keys: Down from nothing is the first item, Up wraps to the last shown.
        {"move R\nclick right\nkey down down\nkey down down\nkey down enter\n",
         "RightClick(); changed Mode; MenuClick(1)"},
        {"move R\nclick right\nkey down up\nkey down enter\n", "RightClick(); MenuClick(6)"},
        {"move R\nclick right\nkey down up\nkey down up\nkey down enter\n",
         "RightClick(); changed Mode; MenuClick(3)"},
        // An access letter chooses its only item at once.
        {"move R\nclick right\nkey press 67\n", "RightClick(); changed Mode; MenuClick(0)"},
        // Enter with nothing highlighted, a letter no item has: the menu stays open.
        {"move R\nclick right\nkey down enter\nkey press 122\nmenu pick Inch\n",
         "RightClick(); changed Mode; MenuClick(2)"},
        // A press outside closes it and goes nowhere else.
        {"move R\nclick right\nmove 590 390\nclick\n", "RightClick()"},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(step.script);
        EXPECT_EQ(Brief(step.script, "R"), step.events);
        EXPECT_FALSE(R().mnuMenu().Window());
    }
}

// A click on an item with the mouse chooses it; the pointer highlights on the way.
TEST_F(RulerTest, MenuItemIsChosenWithTheMouse) {
    Add(3000, 450);
    // The menu opens at the pointer: its first item's row lies a few pixels below it.
    EXPECT_EQ(Brief("move R 15 15\nclick right\nmove R 40 24\nclick\n", "R"),
              "RightClick(); changed Mode; MenuClick(0)");
    EXPECT_EQ(Brief("move R 15 15\nclick right\nmove R 40 44\nclick\n", "R"),
              "RightClick(); changed Mode; MenuClick(1)");
}

// What the menu shows: the unit of Mode checked and only it among the units, the host's entries
// as Mode2..Mode4 say with their checks, the separator while any of them shows.
TEST_F(RulerTest, MenuShowsTheUnitCheckedAndTheHostsEntries) {
    Add(3000, 450);
    const auto shown = [&] {
        std::string out;
        for (const forms::MenuItem& item : R().mnuMenu().Items)
            if (item.Visible) out += std::string(item.Checked ? "*" : "") + item.Caption + "|";
        return out;
    };
    Let("R", "Mode", std::int16_t{2});
    Run("move R\nclick right\nmenu escape\n");
    EXPECT_EQ(shown(), "Centimeter|Twip * 1000|*Inch|Pixel * 100|");
    Let("R", "Mode4", true);
    Let("R", "Mode4Check", true);
    Let("R", "Mode3Check", true);
    Run("move R\nclick right\nmenu escape\n");
    EXPECT_EQ(shown(), "Centimeter|Twip * 1000|*Inch|Pixel * 100|-|*Hilfslinien|");
    Let("R", "Mode2", true);
    Let("R", "Mode4", false);
    Run("move R\nclick right\nmenu escape\n");
    EXPECT_EQ(shown(), "Centimeter|Twip * 1000|*Inch|Pixel * 100|-|Ausblenden|");
    Let("R", "Mode2", false);
    EXPECT_EQ(shown(), "Centimeter|Twip * 1000|*Inch|Pixel * 100|");
    // The script says so when there is no menu or no such item.
    EXPECT_THROW(Run("menu escape\n"), ScriptError);
    EXPECT_THROW(Run("move R\nclick right\nmenu pick Fixieren\n"), ScriptError);
}

// A new ruler saves only the orientation its first resize chose; every key round-trips; a bag's
// calibration is in force once Mode is read.
TEST_F(RulerTest, PersistenceRoundTripsAndCalibratesOnRestore) {
    Add(3000, 450);
    EXPECT_EQ(Save("R"), JsonPropertyBag::FromJson(R"({"Orientation": {"Integer": 0}})"));
    EXPECT_EQ(R().AdjPixel(), "1500");
    JsonPropertyBag bag = JsonPropertyBag::FromJson(
        R"({"AdjCm": "500", "AdjTwip": "900", "AdjInch": "1400", "AdjPixel": "1600",
            "SmallZoom": {"Integer": 4}, "Orientation": {"Integer": 1}, "Mode": {"Integer": 1},
            "Mode2": true, "Mode3": true, "Mode3Check": true, "Mode4": true, "Mode4Check": true,
            "BackColorR": 255, "ForeColor": 65280})");
    Restore("Ruler", {"B", 150, 900, 450, 3000}, bag);
    EXPECT_EQ(R("B").UnitLength(), 900);
    EXPECT_EQ(R("B").Orientation(), asrOrientationConstants::Vertical);
    EXPECT_EQ(Save("B"), bag) << Save("B").ToJson();
    JsonPropertyBag bad = JsonPropertyBag::FromJson(R"({"AdjCm": "abc"})");
    EXPECT_EQ(ErrorOf([&] { Restore("Ruler", {"C", 150, 900, 450, 3000}, bad); }), 13);
}

}  // namespace
}  // namespace korvex::test
