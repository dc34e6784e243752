// Spin: the value's clamping, the results and their bases, SaveAsLong, the time mode's carry,
// the key filter and its beeps, the time field's five characters, the arrows' events and
// auto-repeat, restored results, and bad values that must leave everything as it was.

#include <gmock/gmock.h>

#include "controls/value/spin.hpp"
#include "support/control_fixture.hpp"
#include "support/error_of.hpp"

namespace korvex::test {
namespace {

using controls::Spin;
using ::testing::HasSubstr;
using ::testing::Not;

// 80 x 40 pixels: a bar tall enough for two 16-pixel arrows and no thumb.
const Extender kSpin{"S", 300, 300, 1200, 600};

// Script positions of the arrows, from the control's right edge and its top or bottom.
constexpr const char* kUpArrow = "move S -12 8\n";
constexpr const char* kDownArrow = "move S -12 -10\n";

class SpinTest : public ControlsTest {
  protected:
    SpinTest() : ControlsTest(true) { New("Spin", kSpin); }

    Spin& S() { return Control<Spin>("S"); }
    std::string Text() { return S().Field().Text(); }
    std::size_t Beeps() { return platform.sound().Beeps().size(); }
    // A time in the field, from hours and minutes set before the mode switch.
    void Time(int hours, int minutes) {
        Let("S", "CurrTimeH", Variant(static_cast<std::int16_t>(hours)));
        Let("S", "CurrTimeM", Variant(static_cast<std::int16_t>(minutes)));
        Let("S", "TimeState", Variant(true));
    }
    // One script step after the other, apart enough that two clicks are not a double click.
    std::string Clicks(const char* where, int count) {
        std::string script = where;
        for (int i = 0; i < count; ++i) script += "click\nwait 600\n";
        return Brief(script, "S");
    }
};

TEST_F(SpinTest, ValueClampsToItsLimitsAndShowsWhatItKept) {
    struct Case {
        std::int16_t min, max, value, kept;
    };
    for (const Case c :
         {Case{0, 10, 15, 10}, Case{0, 10, -3, 0}, Case{-20, -5, 0, -5}, Case{0, 10, 7, 7}}) {
        Let("S", "Max", Variant(c.max));
        Let("S", "Min", Variant(c.min));
        Let("S", "Value", Variant(c.value));
        EXPECT_EQ(Get("S", "Value").ToInteger(), c.kept) << c.value;
        EXPECT_EQ(Text(), std::to_string(c.kept)) << c.value;
        EXPECT_EQ(S().Bar().Value(), c.kept) << c.value;
    }
}

TEST_F(SpinTest, SaveAsLongScalesCommaOrPointAmounts) {
    struct Case {
        const char* amount;
        std::int16_t places;
        std::int32_t expected;
    };
    for (const Case c :
         {Case{"12,34", 2, 1234}, Case{"  7.5  ", 2, 750}, Case{"3,14159", 3, 3142}, Case{"", 2, 0},
          Case{"abc", 2, 0}, Case{"-1,5", 0, -1}, Case{"0,005", 2, 1}, Case{"1,2,3", 2, 120}})
        EXPECT_EQ(Spin::SaveAsLong(c.amount, c.places), c.expected) << c.amount;
    // Late bound, the places default to 2.
    std::vector<Variant> args{Variant(std::string("12,34"))};
    EXPECT_EQ(form.CallMethod(form.Get("S"), "SaveAsLong", args).ToLong(), 1234);
}

TEST_F(SpinTest, SaveAsLongRefusesWhatNoLongHolds) {
    EXPECT_EQ(ErrorOf([] { Spin::SaveAsLong("1", -1); }), 5);
    EXPECT_EQ(ErrorOf([] { Spin::SaveAsLong("99999999,99", 2); }), 6);
    EXPECT_EQ(ErrorOf([] { Spin::SaveAsLong("1", 400); }), 6);
    EXPECT_EQ(ErrorOf([] { Spin::SaveAsLong("1E300", 2); }), 6);
}

// A result set while its base is 0 becomes its base; the next step scales it by Value / 100,
// kept exact with PointPosition and rounded to a whole number without.
TEST_F(SpinTest, ResultsFollowTheValueFromTheirBases) {
    struct Case {
        bool point;
        float result1;
    };
    for (const Case c : {Case{true, 1.25F}, Case{false, 1.0F}}) {
        form.Remove("S");
        New("Spin", kSpin);
        Let("S", "Result1", Variant(2.5F));
        Let("S", "Result2", Variant(-3.0F));
        EXPECT_EQ(S().ResultBase(0), 2.5F);
        Let("S", "PointPosition", Variant(c.point));
        Let("S", "Value", Variant(std::int16_t{50}));
        EXPECT_EQ(Get("S", "Result1").ToSingle(), c.result1) << c.point;
        // -1.5 rounds away from zero.
        EXPECT_EQ(Get("S", "Result2").ToSingle(), c.point ? -1.5F : -2.0F) << c.point;
        // The base stays: a later result is scaled from it, not from the last result.
        Let("S", "Value", Variant(std::int16_t{100}));
        EXPECT_EQ(Get("S", "Result1").ToSingle(), c.point ? 2.5F : 3.0F) << c.point;
    }
}

TEST_F(SpinTest, RestoredResultsBecomeTheirBases) {
    form.Remove("S");
    Restore("Spin", kSpin,
            JsonPropertyBag::FromJson(R"({"Result3": {"Single": 4}, "PointPosition": true})"));
    EXPECT_EQ(S().ResultBase(2), 4.0F);
    EXPECT_EQ(S().ResultBase(0), 0.0F);
    Let("S", "Value", Variant(std::int16_t{25}));
    EXPECT_EQ(Get("S", "Result3").ToSingle(), 1.0F);
}

TEST_F(SpinTest, TimeStepsCarryIntoTheHours) {
    struct Case {
        int hours, minutes;
        const char* arrow;
        const char* shown;
    };
    for (const Case c : {Case{23, 59, kUpArrow, "00:00"}, Case{0, 0, kDownArrow, "23:59"},
                         Case{9, 59, kUpArrow, "10:00"}, Case{10, 0, kDownArrow, "09:59"},
                         Case{9, 4, kUpArrow, "09:05"}}) {
        Time(c.hours, c.minutes);
        Clicks(c.arrow, 1);
        EXPECT_EQ(Text(), c.shown) << c.hours << ":" << c.minutes;
        const std::string shown = c.shown;
        EXPECT_EQ(Get("S", "CurrTimeH").ToSingle(), std::stof(shown.substr(0, 2))) << shown;
        EXPECT_EQ(Get("S", "CurrTimeM").ToSingle(), std::stof(shown.substr(3))) << shown;
        Let("S", "TimeState", Variant(false));
    }
}

TEST_F(SpinTest, RefusedKeysBeepAndChangeNothing) {
    Let("S", "Value", Variant(std::int16_t{12}));
    const std::string events = Brief("focus S\ntype abc\n", "S");
    EXPECT_EQ(Beeps(), 3U);
    EXPECT_EQ(Text(), "12");
    EXPECT_EQ(Get("S", "Value").ToInteger(), 12);
    EXPECT_THAT(events, Not(HasSubstr("Changed")));
    EXPECT_THAT(events, Not(HasSubstr("Click")));
    // Digits, the point, the minus sign and Backspace pass without a sound.
    Brief("key down 35\ntype 3\nkey press 8\ntype .-\n", "S");
    EXPECT_EQ(Beeps(), 3U);
}

// The field's rewrite puts the caret back at the start, so each digit here goes to the end.
TEST_F(SpinTest, TypingSetsTheValueWithinItsLimits) {
    Let("S", "Max", Variant(std::int16_t{50}));
    Brief("focus S\nkey down 35\ntype 4\n", "S");  // "04"
    EXPECT_EQ(Get("S", "Value").ToInteger(), 4);
    EXPECT_EQ(S().Bar().Value(), 4);
    EXPECT_EQ(S().Field().SelStart(), 0);
    Brief("key down 35\ntype 9\n", "S");  // "49"
    EXPECT_EQ(Get("S", "Value").ToInteger(), 49);
    Brief("key down 35\ntype 9\n", "S");  // "499": above Max, the field shows Max
    EXPECT_EQ(Get("S", "Value").ToInteger(), 50);
    EXPECT_EQ(Text(), "50");
    Brief("type 7\n", "S");  // "750" at the start
    EXPECT_EQ(Text(), "50");
}

TEST_F(SpinTest, ASixthCharacterInTheTimeFieldIsTakenBack) {
    Time(12, 30);
    ASSERT_EQ(Text(), "12:30");
    Brief("focus S\nkey down 35\nkey press 8\ntype 0\n", "S");  // "12:3", then "12:30"
    ASSERT_EQ(Text(), "12:30");
    ASSERT_EQ(S().Field().SelStart(), 5);
    Brief("type 7\n", "S");
    EXPECT_EQ(Text(), "12:30");
    EXPECT_EQ(S().Field().SelStart(), 5);
    EXPECT_EQ(Get("S", "CurrTimeH").ToSingle(), 12.0F);
    EXPECT_EQ(Get("S", "CurrTimeM").ToSingle(), 30.0F);
}

// The upper arrow raises the value (the bar is inverted); each step shows the chain of
// handlers: the field's rewrite runs the text handler, which runs the bar's procedure again.
TEST_F(SpinTest, ArrowClicksRaiseChangedThenClick) {
    const std::string up = Clicks(kUpArrow, 2);
    EXPECT_EQ(Get("S", "Value").ToInteger(), 2);
    EXPECT_THAT(up, HasSubstr("Changed(1, \"0\", \"0\", \"0\", \"0\", \"0\"); Click()"));
    EXPECT_THAT(up, HasSubstr("Changed(2, \"0\", \"0\", \"0\", \"0\", \"0\"); Click()"));
    Clicks(kDownArrow, 3);
    EXPECT_EQ(Get("S", "Value").ToInteger(), 0);  // stops at Min
}

// A held arrow steps at once, again after the first delay and then at every repeat delay.
TEST_F(SpinTest, AHeldArrowRepeats) {
    Run(std::string(kUpArrow) + "down\nwait " +
        std::to_string(platform::kScrollFirstDelayMs + 3 * platform::kScrollRepeatDelayMs) +
        "\nup\nwait 1000\n");
    EXPECT_EQ(Get("S", "Value").ToInteger(), 5);
    // Moving off the arrow while holding stops the repeat.
    Run(std::string(kUpArrow) + "down\nmove S 5 5\nwait 1000\nup\n");
    EXPECT_EQ(Get("S", "Value").ToInteger(), 6);
}

TEST_F(SpinTest, BadValuesLeaveEverythingAsItWas) {
    Let("S", "Value", Variant(std::int16_t{7}));
    Let("S", "Alignment", Variant(std::int32_t{1}));
    const Shot before = Pixels("S");
    struct Case {
        const char* property;
        Variant value;
        int error;
    };
    for (const Case& c :
         {Case{"Value", Variant(std::int32_t{40000}), 6}, Case{"Min", Variant(1e10), 6},
          Case{"Alignment", Variant(std::int32_t{3}), 380}, Case{"Result1", Variant(1e40), 6},
          Case{"Value", Variant(std::string("x")), 13}, Case{"Font", Variant::Nothing(), 380}}) {
        EXPECT_EQ(ErrorOf([&] { Let("S", c.property, c.value); }), c.error) << c.property;
        EXPECT_EQ(Get("S", "Value").ToInteger(), 7) << c.property;
        EXPECT_EQ(Get("S", "Alignment").ToLong(), 1) << c.property;
        EXPECT_EQ(Get("S", "Result1").ToSingle(), 0.0F) << c.property;
        EXPECT_EQ(Pixels("S").bits, before.bits) << c.property;
    }
}

// Switching to time mode hands the minutes to the bar while it has the numeric range.
TEST_F(SpinTest, TimeModeRefusesMinutesTheBarCannotTake) {
    Let("S", "Max", Variant(std::int16_t{10}));
    const Shot before = Pixels("S");
    for (const float minutes : {41.0F, 1e30F, -1.0F}) {
        Let("S", "CurrTimeM", Variant(minutes));
        EXPECT_EQ(ErrorOf([&] { Let("S", "TimeState", Variant(true)); }), minutes > 40000 ? 6 : 380)
            << minutes;
        EXPECT_FALSE(Get("S", "TimeState").ToBool()) << minutes;
        EXPECT_EQ(Pixels("S").bits, before.bits) << minutes;
    }
    Let("S", "CurrTimeM", Variant(9.0F));
    Let("S", "TimeState", Variant(true));
    EXPECT_EQ(Text(), "00:09");
}

// Min above Max leaves no value to clamp to: the let would call itself without end, so the
// host's error 28 comes, and the value stays.
TEST_F(SpinTest, MinAboveMaxRefusesEveryValue) {
    Let("S", "Value", Variant(std::int16_t{7}));
    Let("S", "Min", Variant(std::int16_t{50}));  // the bar pulls the value up to 50
    Let("S", "Max", Variant(std::int16_t{10}));
    ASSERT_EQ(Get("S", "Value").ToInteger(), 50);
    for (const std::int16_t value : {std::int16_t{0}, std::int16_t{30}, std::int16_t{60}}) {
        EXPECT_EQ(ErrorOf([&] { Let("S", "Value", Variant(value)); }), 28) << value;
        EXPECT_EQ(Get("S", "Value").ToInteger(), 50) << value;
        EXPECT_EQ(Text(), "50") << value;
    }
}

// The field: Shift+arrows select, Ctrl+C and Ctrl+V go through the platform's clipboard, a
// locked field keeps its text, MaxLength refuses with a beep.
TEST_F(SpinTest, TheFieldSelectsCopiesAndPastes) {
    Let("S", "Max", Variant(std::int16_t{30000}));
    Let("S", "Value", Variant(std::int16_t{123}));
    Brief("focus S\nkey down 35\nkey down 37 shift=1\nkey down 37 shift=1\n", "S");
    EXPECT_EQ(S().Field().SelText(), "23");
    Brief("key press 3\n", "S");  // Ctrl+C: the filter refuses it before the copy
    EXPECT_EQ(Beeps(), 1U);
    EXPECT_EQ(platform.clipboard().GetText(), std::nullopt);
    S().Field().Copy();
    EXPECT_EQ(platform.clipboard().GetText(), "23");
    Brief("key down 36\n", "S");
    S().Field().Paste();
    EXPECT_EQ(Get("S", "Value").ToInteger(), 23123);
    EXPECT_EQ(Text(), "23123");

    forms::TextBox& field = S().Field();
    field.Locked(true);
    field.SelStart(0);
    field.SelLength(5);
    field.Cut();
    EXPECT_EQ(Text(), "23123");
    EXPECT_EQ(platform.clipboard().GetText(), "23");
    field.Locked(false);
    field.MaxLength(5);
    field.SelStart(5);
    Brief("type 1\n", "S");
    EXPECT_EQ(Text(), "23123");
    EXPECT_EQ(Beeps(), 2U);
    EXPECT_EQ(field.GetLine(field.LineFromChar(-1), 3), "231");
}

}  // namespace
}  // namespace korvex::test
