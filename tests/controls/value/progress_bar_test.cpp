// ProgressBar: the block, solid and gradient styles column by column, the XP chunks in their
// trough, the caption, the error handler, the style switch's border bookkeeping and the keys
// whose read and write defaults differ.

#include "controls/value/progress_bar.hpp"
#include "support/control_fixture.hpp"
#include "support/error_of.hpp"

namespace korvex::test {
namespace {

using controls::ProgressBar;
using controls::StyleConstants;

constexpr std::uint32_t kRed = 0xFF0000;  // as composed pixels, 0x00RRGGBB
constexpr std::uint32_t kWhite = 0xFFFFFF;
constexpr std::uint32_t kRedOle = 0x0000FF;  // the same red as an OLE colour
constexpr std::uint32_t kGreenOle = 0x00FF00;

class ProgressBarTest : public ControlsTest {
  protected:
    // A borderless bar of width x height pixels with white back and red first colour, so that
    // PB's pixels are the window's.
    ProgressBar& Add(std::int32_t width, std::int32_t height = 20) {
        New("ProgressBar", {"P", 150, 150, width * 15, height * 15});
        Let("P", "BorderStyle", 0);
        Let("P", "BackColorP", kWhite);
        Let("P", "BarColor1", kRedOle);
        Let("P", "Max", 100);
        return Control<ProgressBar>("P");
    }
    // Column colours along row y as a string: 'r' red, '.' white, '?' anything else.
    std::string Row(int y = 5) {
        const Shot shot = Pixels("P");
        std::string out;
        for (int x = 0; x < shot.width; ++x) {
            const std::uint32_t p = shot.at(x, y);
            out += p == kRed ? 'r' : p == kWhite ? '.' : '?';
        }
        return out;
    }
    static std::string Run(char c, int n) { return std::string(static_cast<std::size_t>(n), c); }
};

// Periods of 15 pixels (13 block, 2 gap) while Int(W x f) is beyond the period's start, then
// the tail: mirrored up to W - i while the blocks stay in the left half, else one column.
TEST_F(ProgressBarTest, StandartBlocksAndTail) {
    Add(100);
    Let("P", "Style", static_cast<std::int32_t>(StyleConstants::Standart));
    Let("P", "Value", 100);
    Let("P", "Value", 50);  // falling: the surface is cleared first
    std::string blocks;
    for (int k = 0; k < 4; ++k) blocks += Run('r', 13) + "..";
    EXPECT_EQ(Row(), blocks + Run('.', 40));

    // Rising from 50 % leaves what was drawn; at 20 % the tail reaches W - 30 = 70 after a
    // clear, so the columns beyond it keep whatever was there (white after the clear).
    Let("P", "Value", 20);
    EXPECT_EQ(Row(), Run('r', 13) + ".." + Run('r', 13) + ".." + Run('.', 70));
    EXPECT_DOUBLE_EQ(Control<ProgressBar>("P").LastFraction(), 0.2);
}

// Growing values draw over the previous bar: a red column beyond the tail stays red.
TEST_F(ProgressBarTest, StandartDrawsOverWhileTheValueGrows) {
    Add(100);
    Let("P", "Style", static_cast<std::int32_t>(StyleConstants::Standart));
    Let("P", "Value", 90);
    const std::string at90 = Row();
    Let("P", "Value", 95);  // Int(95) > 90: one more block, tail a single column at 105
    EXPECT_EQ(Row(), at90.substr(0, 90) + Run('r', 10));
    EXPECT_EQ(at90.substr(0, 15), Run('r', 13) + "..");
}

TEST_F(ProgressBarTest, SmoothBarEndsAtIntOfFractionTimesWidth) {
    ProgressBar& bar = Add(100);
    const struct {
        std::int32_t value;
        int end;
    } rows[] = {{0, 0}, {33, 33}, {100, 100}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.value);
        Let("P", "Value", row.value);
        EXPECT_EQ(bar.BarEnd(), row.end);
        const std::string line = Row();
        EXPECT_EQ(line, Run('r', std::min(row.end + 1, 100)) +
                            Run('.', 100 - std::min(row.end + 1, 100)));
    }
}

TEST_F(ProgressBarTest, ValueDependantMixesTheColoursByValue) {
    Add(100);
    Let("P", "BarColor1", 0);
    Let("P", "BarColor2", kGreenOle);
    Let("P", "Style", static_cast<std::int32_t>(StyleConstants::ValueDependant));
    Let("P", "Value", 50);
    const Shot shot = Pixels("P");
    EXPECT_EQ(shot.at(0, 5), 0x007F00u);
    EXPECT_EQ(shot.at(50, 5), 0x007F00u);
    EXPECT_EQ(shot.at(51, 5), kWhite);
    EXPECT_EQ(Control<ProgressBar>("P").Bar().ForeColor(), 0u) << "the caption's colour last";
}

// The gradient runs over columns 0 to n and its last colour covers n to n + 5; the blocks of
// DoubleColor take one gradient step each.
TEST_F(ProgressBarTest, GradientStyles) {
    Add(100);
    Let("P", "BarColor1", 0);
    Let("P", "BarColor2", 0x0000C8U);  // red 200
    Let("P", "Style", static_cast<std::int32_t>(StyleConstants::SmoothDoubleColor));
    Let("P", "Value", 50);
    Shot shot = Pixels("P");
    EXPECT_EQ(shot.at(0, 5), 0x000000u);
    EXPECT_EQ(shot.at(25, 5), 0x640000u);  // 200 / 50 x 25
    EXPECT_EQ(shot.at(55, 5), 0xC80000u);
    EXPECT_EQ(shot.at(56, 5), kWhite);

    Let("P", "Style", static_cast<std::int32_t>(StyleConstants::DoubleColor));
    Let("P", "Value", 0);  // falling to 0: cleared, nothing drawn
    Let("P", "Value", 30);
    shot = Pixels("P");
    // n = 30 / 15 = 2 blocks; steps of 100 red: blocks at 0, 15, 30 (the loop includes 30).
    EXPECT_EQ(shot.at(0, 5), 0x000000u);
    EXPECT_EQ(shot.at(14, 5), kWhite);
    EXPECT_EQ(shot.at(15, 5), 0x640000u);
    EXPECT_EQ(shot.at(30, 5), 0xC80000u);
    EXPECT_EQ(shot.at(43, 5), 0xC80000u);
}

// Value 0 ends the gradient styles before the caption: nothing but the back colour is shown.
TEST_F(ProgressBarTest, GradientStylesAtZeroShowNothing) {
    for (const auto style : {StyleConstants::SmoothDoubleColor, StyleConstants::DoubleColor}) {
        SCOPED_TRACE(static_cast<int>(style));
        Add(100);
        Let("P", "ShowText", true);
        Let("P", "Style", static_cast<std::int32_t>(style));
        Let("P", "Value", 40);
        Let("P", "Value", 0);
        const Shot shot = Pixels("P");
        EXPECT_EQ(shot.Count(kWhite), shot.width * shot.height);
        EXPECT_EQ(Control<ProgressBar>("P").CaptionText(), "40%");
        form.Remove("P");
    }
}

TEST_F(ProgressBarTest, CaptionIsSetAlsoWithoutShowText) {
    ProgressBar& bar = Add(100);
    Let("P", "Value", 42);
    EXPECT_EQ(bar.CaptionText(), "42%");
    EXPECT_EQ(Row().find('?'), std::string::npos) << "no text printed";
    Let("P", "ShowText", true);
    Let("P", "Value", 43);
    EXPECT_EQ(bar.CaptionText(), "43%");
    EXPECT_NE(Row(10).find('?'), std::string::npos) << "text printed";
    Let("P", "Max", 300);
    Let("P", "Value", -1);
    EXPECT_EQ(bar.CaptionText(), "-1%") << "Int rounds down";
}

// XPStyleSmall at 100 %: the trough, count + 1 chunks from x = 3 with a stride of 7, and white
// up to SW - 5; the control takes the trough's height.
TEST_F(ProgressBarTest, XPChunksInTheTrough) {
    ProgressBar& bar = Add(208, 30);
    Let("P", "Style", static_cast<std::int32_t>(StyleConstants::XPStyleSmall));
    EXPECT_EQ(Long("P", "Height"), 13 * 15);
    Let("P", "Value", 100);
    EXPECT_TRUE(bar.XPFramePainted());
    const Shot shot = Pixels("P");
    const std::uint32_t firstRow = controls::BuiltinXPPictures().greenSmall->Pixels()[0] & 0xFFFFFF;
    // slots = Int(203 / 7) - 1 = 28: chunks 0 to 28 at 3, 10, ... 199.
    for (int i = 0; i <= 27; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(shot.at(7 * i + 3, 2), firstRow);
        EXPECT_NE(shot.at(7 * i + 9, 2), firstRow) << "the gap shows the trough";
    }
    // After the loop i = 29: white from (6 + 1) x 29 + 3 = 206 back to SW - 5 = 203.
    for (int x = 203; x <= 206; ++x) EXPECT_EQ(shot.at(x, 5), kWhite) << x;
    EXPECT_EQ(shot.at(202, 5) == kWhite, false);

    Let("P", "BarXPcolor", 1);
    const std::uint32_t blueRow = controls::BuiltinXPPictures().blueSmall->Pixels()[0] & 0xFFFFFF;
    EXPECT_EQ(Pixels("P").at(3, 2), blueRow);
}

// Choosing an XP style takes PB's border and remembers it; a picture style gives it back; a
// plain style after an XP one leaves the bar borderless.
TEST_F(ProgressBarTest, StyleSwitchKeepsTheBorderBookkeeping) {
    New("ProgressBar", {"P", 150, 150, 3000, 600});
    ProgressBar& bar = Control<ProgressBar>("P");
    ASSERT_EQ(Long("P", "BorderStyle"), 1);
    Let("P", "Style", static_cast<std::int32_t>(StyleConstants::XPStyleSmall));
    EXPECT_EQ(Long("P", "BorderStyle"), 0);
    EXPECT_TRUE(bar.XPActive());
    EXPECT_TRUE(bar.XPBorderSaved());
    EXPECT_EQ(Long("P", "Height"), 13 * 15);
    Let("P", "Style", static_cast<std::int32_t>(StyleConstants::CustomPictureTile));
    EXPECT_EQ(Long("P", "BorderStyle"), 1);
    EXPECT_FALSE(bar.XPActive());

    Let("P", "Style", static_cast<std::int32_t>(StyleConstants::XPStyleBig));
    EXPECT_EQ(Long("P", "Height"), 19 * 15);
    Let("P", "Style", static_cast<std::int32_t>(StyleConstants::Smooth));
    EXPECT_EQ(Long("P", "BorderStyle"), 0);
    EXPECT_FALSE(bar.XPFramePainted());
}

// 11 clears and ends quietly, 481 falls back to SmoothDoubleColor, anything else reaches the
// caller (0 / 0 is the host's overflow).
TEST_F(ProgressBarTest, PaintErrors) {
    ProgressBar& bar = Add(100);
    Let("P", "Value", 60);
    Let("P", "Max", 0);  // Value 60 over Max 0: division by zero
    EXPECT_EQ(Long("P", "Max"), 0);
    Shot shot = Pixels("P");
    EXPECT_EQ(shot.Count(kWhite), shot.width * shot.height);

    // 0 / 0 is refused and changes nothing; neither does a bar end beyond 16 bits.
    EXPECT_EQ(ErrorOf([&] { Let("P", "Value", 0); }), 6);
    EXPECT_EQ(bar.Value(), 60);
    Let("P", "Max", 100);
    Let("P", "Value", 50);
    const std::string before = Row();
    Let("P", "Max", 1000);
    Let("P", "Value", 1000);
    EXPECT_EQ(ErrorOf([&] { Let("P", "Max", 1); }), 6) << "a bar 100 000 pixels long";
    EXPECT_EQ(bar.Max(), 1000);
    Let("P", "Max", 100);
    Let("P", "Value", 50);
    EXPECT_EQ(Row(), before);

    Let("P", "Max", 100);
    Let("P", "Value", 50);
    for (const auto style :
         {StyleConstants::CustomPictureLandscape, StyleConstants::CustomPictureStrech,
          StyleConstants::CustomPictureTile}) {
        SCOPED_TRACE(static_cast<int>(style));
        Let("P", "Style", static_cast<std::int32_t>(style));
        EXPECT_EQ(bar.Style(), StyleConstants::SmoothDoubleColor);
    }
}

// Value is capped at Max when set, not when restored; Max never moves Value.
TEST_F(ProgressBarTest, ValueAgainstMax) {
    ProgressBar& bar = Add(100);
    Let("P", "Value", 150);
    EXPECT_EQ(bar.Value(), 100);
    Let("P", "Max", 10);
    EXPECT_EQ(bar.Value(), 100);
    Restore("ProgressBar", {"Q", 150, 900, 1500, 300},
            JsonPropertyBag::FromJson(R"({"Max": 10, "Value": 20})"));
    EXPECT_EQ(Long("Q", "Value"), 20);
}

// A black first colour is not stored and comes back as the selection-text colour; a system
// colour assigned reads back as its RGB value.
TEST_F(ProgressBarTest, BarColor1ReadAndWriteDefaultsDiffer) {
    New("ProgressBar", {"P", 150, 150, 1500, 300});
    Let("P", "BarColor1", 0);
    JsonPropertyBag bag = Save("P");
    Restore("ProgressBar", {"Q", 150, 900, 1500, 300}, bag);
    EXPECT_EQ(static_cast<std::uint32_t>(Long("Q", "BarColor1")), 0x8000000Eu);

    Let("P", "BarColor1", 0x8000000DU);
    const platform::COLORREF highlight = platform.gdi().GetSysColor(13);
    EXPECT_EQ(static_cast<std::uint32_t>(Long("P", "BarColor1")), highlight);
}

// Mouse input on PB reaches the host as the control's own events, measured from PB's client
// area (inside its two-pixel 3D edge) moved by PB's place on the surface.
TEST_F(ProgressBarTest, ForwardsInputFromTheBar) {
    New("ProgressBar", {"P", 150, 150, 1500, 300});
    EXPECT_EQ(Brief("move P 10 5\ndown\nup\n", "P"),
              "MouseMove(0, 0, 8, 3); MouseDown(1, 0, 8, 3); MouseUp(1, 0, 8, 3)");
}

}  // namespace
}  // namespace korvex::test

namespace korvex::test {
namespace {

// A bag may hold a Value far above Max: every style either draws the clipped bar or refuses
// with the host's overflow, and none loops for ever; a style number outside the ten draws
// nothing but still sets the caption.
TEST_F(ProgressBarTest, HostileBagsEndQuickly) {
    for (int style = 0; style <= 10; ++style) {
        SCOPED_TRACE(style);
        const std::string json =
            R"({"Max": 1, "Value": 2147483647, "Style": )" + std::to_string(style) + "}";
        const int error = ErrorOf([&] {
            Restore("ProgressBar", {"H", 150, 150, 4500, 300}, JsonPropertyBag::FromJson(json));
        });
        EXPECT_TRUE(error == 0 || error == 6) << error;
        if (form.Find("H")) form.Remove("H");
    }
    Restore("ProgressBar", {"H", 150, 150, 4500, 300},
            JsonPropertyBag::FromJson(R"({"Max": 100, "Value": 42, "Style": 42})"));
    EXPECT_EQ(Control<ProgressBar>("H").CaptionText(), "42%");
    const Shot shot = Pixels("H");
    for (int x = 4; x < shot.width - 4; ++x) ASSERT_EQ(shot.at(x, 10), Sys(15)) << x;
}

}  // namespace
}  // namespace korvex::test
