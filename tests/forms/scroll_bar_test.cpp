// VScrollBar: arrows and page areas in both directions of the range, the thumb drag's Scroll and
// Change, auto-repeat on the virtual clock, and refused values. TextBox: the mouse selection.

#include "forms/scroll_bar.hpp"
#include "form_fixture.hpp"
#include "forms/text_box.hpp"
#include "support/error_of.hpp"

namespace korvex::forms::testing {
namespace {

// The bar: 16 x 100 pixels at 10, 10 of the surface; arrows 16 high, a 16-pixel thumb on a
// 68-pixel track.
constexpr POINT kUp{18, 15};
constexpr POINT kDown{18, 104};
constexpr POINT kBelowThumbAtStart{18, 80};

class ScrollBarTest : public FormTest {
  protected:
    ScrollBarTest() {
        surface.Move(Tx(20), Ty(10), Tx(160), Ty(130));  // room for the bar
        surface.ScaleMode(ScaleModeConstants::vbPixels);
        bar.Move(10, 10, 16, 100);
        bar.Change = [this] { log.push_back("Change " + std::to_string(bar.Value())); };
        bar.Scroll = [this] { log.push_back("Scroll"); };
    }

    VScrollBar bar{surface};
};

TEST_F(ScrollBarTest, ArrowsAndPagesMoveTowardsMinOrMaxInEitherOrder) {
    struct Case {
        std::int16_t min, max, start;
        POINT at;
        std::int16_t expected;
    };
    for (const Case c :
         {Case{0, 100, 50, kUp, 49}, Case{0, 100, 50, kDown, 51}, Case{100, 0, 50, kUp, 51},
          Case{100, 0, 50, kDown, 49}, Case{0, 100, 0, kUp, 0}, Case{100, 0, 100, kUp, 100},
          Case{0, 100, 0, kBelowThumbAtStart, 10}, Case{100, 0, 100, kBelowThumbAtStart, 90}}) {
        bar.Min(c.min);
        bar.Max(c.max);
        bar.LargeChange(10);
        bar.Value(c.start);
        TakeLog();
        Click(c.at);
        Advance(600);
        EXPECT_EQ(bar.Value(), c.expected) << c.min << ".." << c.max << " from " << c.start;
        EXPECT_EQ(TakeLog().size(), c.expected == c.start ? 0U : 1U);
    }
}

TEST_F(ScrollBarTest, TheThumbScrollsWhileDraggedAndChangesOnceDropped) {
    bar.Max(68 - 16);  // one value per pixel of travel
    Press({18, 30});   // on the thumb, 4 pixels below its top
    MoveTo({18, 40});
    MoveTo({18, 200});  // beyond the track: the thumb stops at its end
    EXPECT_EQ(bar.Value(), 0);
    Release({18, 200});
    EXPECT_EQ(TakeLog(), (Log{"Scroll", "Scroll", "Change 52"}));
    EXPECT_EQ(bar.Value(), 52);
}

TEST_F(ScrollBarTest, AHeldArrowRepeatsAfterTheFirstDelay) {
    bar.Max(1000);
    Press(kDown);
    EXPECT_EQ(bar.Value(), 1);
    Advance(kScrollFirstDelayMs - 1);
    EXPECT_EQ(bar.Value(), 1);
    Advance(1 + 4 * kScrollRepeatDelayMs);
    EXPECT_EQ(bar.Value(), 6);
    // Off the arrow it waits; back on, it goes on.
    MoveTo({18, 60});
    Advance(10 * kScrollRepeatDelayMs);
    EXPECT_EQ(bar.Value(), 6);
    MoveTo(kDown);
    Advance(kScrollRepeatDelayMs);
    EXPECT_EQ(bar.Value(), 7);
    Release(kDown);
    Advance(1000);
    EXPECT_EQ(bar.Value(), 7);
}

TEST_F(ScrollBarTest, ValuesOutsideTheRangeAreRefused) {
    bar.Min(10);
    bar.Max(-10);
    bar.Value(3);
    const Shot before = ShotOf(bar.hWnd());
    for (const std::int16_t bad : {std::int16_t{11}, std::int16_t{-11}, std::int16_t{32767}}) {
        EXPECT_EQ(test::ErrorOf([&] { bar.Value(bad); }), 380) << bad;
        EXPECT_EQ(bar.Value(), 3);
    }
    EXPECT_EQ(test::ErrorOf([&] { bar.SmallChange(0); }), 380);
    EXPECT_EQ(ShotOf(bar.hWnd()).bits, before.bits);
    // Narrowing the range pulls the value in.
    bar.Min(0);
    EXPECT_EQ(bar.Value(), 0);
}

TEST_F(ScrollBarTest, ATextBoxSelectsWithTheMouse) {
    TextBox box{surface};
    box.Move(40, 10, 100, 20);
    box.Text("abcdef");
    Press({42, 15});
    MoveTo({138, 15});
    Release({138, 15});
    EXPECT_TRUE(box.HasFocus());
    EXPECT_EQ(box.SelStart(), 0);
    EXPECT_EQ(box.SelText(), "abcdef");
    // Shift and a press extend from the anchor.
    Press({42, 15});
    Release({42, 15});
    EXPECT_EQ(box.SelLength(), 0);
    // Arrows and Delete come as key downs only.
    platform.driver().KeyDown(VK_RIGHT, kShiftMask);
    platform.driver().KeyDown(VK_RIGHT, kShiftMask);
    EXPECT_EQ(box.SelText(), "ab");
    platform.driver().KeyDown(VK_DELETE, 0);
    EXPECT_EQ(box.Text(), "cdef");
}

}  // namespace
}  // namespace korvex::forms::testing
