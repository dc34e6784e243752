// Line3D: the automatic orientation, the forced thickness and the nested resize, 16-bit
// overflow and a restored line's placed length. (Its strips are the gallery's line3d.png.)

#include "controls/display/line3d.hpp"
#include "support/control_fixture.hpp"
#include "support/error_of.hpp"

namespace korvex::test {
namespace {

using controls::Line3D;
using controls::OrientationConstants;

class Line3DTest : public ControlsTest {
  protected:
    Site& Add(const char* name, std::int32_t width, std::int32_t height) {
        return New("Line3D", {name, 150, 150, width, height});
    }
    OrientationConstants Orientation(const char* name = "L") {
        return Control<Line3D>(name).Orientation();
    }
    std::pair<std::int32_t, std::int32_t> Size(const char* name = "L") {
        return {Long(name, "Width"), Long(name, "Height")};
    }
};

// The first resize chooses for good: at least as high as wide is vertical; the thickness is
// forced to BorderWidth × 2 pixels (30 twips) and the length kept, also for a line placed at its
// thickness.
TEST_F(Line3DTest, FirstResizeChoosesTheOrientationAndForcesTheThickness) {
    const struct {
        std::int32_t width, height;
        std::int16_t borderWidth;
        OrientationConstants orientation;
        std::pair<std::int32_t, std::int32_t> size;
    } rows[] = {
        {3000, 600, 1, OrientationConstants::lHorizontal, {3000, 30}},
        {600, 1995, 1, OrientationConstants::lVertical, {30, 1995}},
        {900, 900, 1, OrientationConstants::lVertical, {30, 900}},
        {3000, 30, 3, OrientationConstants::lHorizontal, {3000, 90}},
        {300, 3000, 2, OrientationConstants::lVertical, {60, 3000}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.width) + " x " + std::to_string(row.height));
        Add("L", row.width, row.height);
        Let("L", "BorderWidth", row.borderWidth);
        EXPECT_EQ(Orientation(), row.orientation);
        EXPECT_EQ(Size(), row.size);
        form.Remove("L");
    }
    // Once chosen, later proportions do not change it: the host's new height is forced back.
    Add("L", 3000, 600);
    Let("L", "Height", 4000);
    Let("L", "Width", 1200);
    EXPECT_EQ(Orientation(), OrientationConstants::lHorizontal);
    EXPECT_EQ(Size(), std::pair(1200, 30));
}

// The host's resize of the extender calls Resize again, which finds the sizes right and ends:
// the orientation is chosen (and reported) once, a new BorderWidth is reported after drawing,
// and the window agrees with the extender.
TEST_F(Line3DTest, NestedResizeEndsAfterOnePass) {
    ChangeLog log;
    form.SetSink(&log);
    Add("L", 3000, 600);
    Let("L", "Height", 450);
    platform::RECT r;
    platform.windows().GetWindowRect(form.Get("L").GetControl().SurfaceWindow(), &r);
    EXPECT_EQ(r, (platform::RECT{10, 10, 210, 12}));
    Let("L", "BorderWidth", 3);
    form.SetSink(nullptr);
    EXPECT_EQ(log.lines, (std::vector<std::string>{"L.Orientation", "L.BorderWidth"}));
}

TEST_F(Line3DTest, OrientationIsClampedAndAutoDecidesAgainAtTheNextResize) {
    Add("L", 3000, 300);
    for (const auto& [value, kept] : {std::pair{7, OrientationConstants::lAuto},
                                      std::pair{-1, OrientationConstants::lHorizontal},
                                      std::pair{2, OrientationConstants::lAuto}}) {
        Let("L", "Orientation", value);
        EXPECT_EQ(Orientation(), kept) << value;
    }
    EXPECT_EQ(Size(), std::pair(3000, 30)) << "lAuto is drawn horizontally";
    Let("L", "Height", 3000);  // now square: vertical, as long as it is high
    EXPECT_EQ(Orientation(), OrientationConstants::lVertical);
    EXPECT_EQ(Size(), std::pair(30, 3000));
}

// Sizes are 16-bit products: a width whose double no longer fits raises error 6 before any size
// changes, yet stays stored, so every later DrawLine fails too until it is made smaller; a
// length beyond 16 bits overflows in the resize.
TEST_F(Line3DTest, OverflowKeepsEverySize) {
    Add("L", 3000, 300);
    EXPECT_EQ(ErrorOf([&] { Let("L", "BorderWidth", 1093); }), kErrOverflow);
    EXPECT_EQ(Control<Line3D>("L").BorderWidth(), 1093);
    EXPECT_EQ(Size(), std::pair(3000, 30));
    EXPECT_EQ(ErrorOf([&] { Let("L", "Width", 2400); }), kErrOverflow);
    Let("L", "BorderWidth", 4);
    EXPECT_EQ(Size(), std::pair(2400, 120));

    EXPECT_EQ(ErrorOf([&] { Let("L", "Width", 33000); }), kErrOverflow);
    Let("L", "Width", 32760);  // 2184 pixels still fit
    EXPECT_EQ(Long("L", "Width"), 32760);
}

// A restored line keeps the length its form gives it; without an orientation it decides at the
// first resize, as a new control does.
TEST_F(Line3DTest, RestoredLineKeepsItsPlacedLength) {
    Restore("Line3D", {"L", 150, 150, 2400, 60},
            JsonPropertyBag::FromJson(
                R"({"BorderWidth": {"Integer": 2}, "Orientation": {"Integer": 0}})"));
    EXPECT_EQ(Size(), std::pair(2400, 60));
    Restore("Line3D", {"A", 150, 600, 45, 1800},
            JsonPropertyBag::FromJson(R"({"BorderWidth": {"Integer": 1}})"));
    EXPECT_EQ(Orientation("A"), OrientationConstants::lVertical);
    EXPECT_EQ(Size("A"), std::pair(30, 1800));
}

// A line whose width its resize refuses fails the designer's switch, but every control is
// re-created all the same and the form goes on working.
TEST_F(Line3DTest, AFailingSwitchLeavesEveryControlInPlace) {
    Add("L", 2400, 30);
    New("Label3D", {"After", 150, 600, 2400, 300});
    EXPECT_EQ(ErrorOf([&] { Let("L", "BorderWidth", std::int16_t{-1}); }), 380);
    EXPECT_EQ(ErrorOf([&] { form.SwitchMode(true); }), 380);
    EXPECT_EQ(Get("After", "Caption").ToString(), "Korvex-Label");
    EXPECT_EQ(Get("L", "BorderWidth").ToInteger(), -1);
    Let("L", "BorderWidth", std::int16_t{2});
    EXPECT_EQ(ErrorOf([&] { form.SwitchMode(false); }), 0);
    EXPECT_EQ(Long("L", "Height"), 60);
}

}  // namespace
}  // namespace korvex::test
