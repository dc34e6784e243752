// Line3D: the automatic orientation, the forced thickness and the nested resize, 16-bit
// overflow, a restored line's placed length, and the pixels of its two strips.

#include "fixture.hpp"

#include "controls/display/line3d.hpp"

namespace korvex::test {
namespace {

using controls::Line3D;
using controls::OrientationConstants;

class Line3DTest : public DisplayTest {
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
// forced to 2 pixels (30 twips) and the length kept, also for a line placed at its thickness.
TEST_F(Line3DTest, FirstResizeChoosesTheOrientationAndForcesTheThickness) {
    const struct {
        std::int32_t width, height;
        OrientationConstants orientation;
        std::pair<std::int32_t, std::int32_t> size;
    } rows[] = {
        {3000, 600, OrientationConstants::lHorizontal, {3000, 30}},
        {600, 1995, OrientationConstants::lVertical, {30, 1995}},
        {900, 900, OrientationConstants::lVertical, {30, 900}},
        {3000, 30, OrientationConstants::lHorizontal, {3000, 30}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.width) + " x " + std::to_string(row.height));
        Add("L", row.width, row.height);
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
// the orientation is chosen (and reported) once, and the window agrees with the extender.
TEST_F(Line3DTest, NestedResizeEndsAfterOnePass) {
    ChangeLog log;
    form.SetSink(&log);
    Add("L", 3000, 600);
    Let("L", "Height", 450);
    form.SetSink(nullptr);
    EXPECT_EQ(log.lines, std::vector<std::string>{"L.Orientation"});
    platform::RECT r;
    platform.windows().GetWindowRect(form.Get("L").GetControl().SurfaceWindow(), &r);
    EXPECT_EQ(r, (platform::RECT{10, 10, 210, 12}));
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

TEST_F(Line3DTest, BorderWidthSetsTheThicknessAndReportsAfterDrawing) {
    Add("L", 3000, 300);
    New("Line3D", {"V", 3300, 150, 300, 3000});
    ChangeLog log;
    form.SetSink(&log);
    Let("L", "BorderWidth", 3);
    form.SetSink(nullptr);
    EXPECT_EQ(log.lines, std::vector<std::string>{"L.BorderWidth"});
    EXPECT_EQ(Size(), std::pair(3000, 90));
    Let("V", "BorderWidth", 2);
    EXPECT_EQ(Size("V"), std::pair(60, 3000));
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
    EXPECT_EQ(Run("call L.ShowAboutBox\n"), "") << "Line3D's about box does nothing";
}

// Line1 (BorderColor) above or left of Line2 (BorderForeColor), each BorderWidth pixels thick.
TEST_F(Line3DTest, StripsAreDarkOverLightInTheirWidth) {
    const std::uint32_t shadow = Sys(platform::COLOR_BTNSHADOW),
                        light = Sys(platform::COLOR_BTNHIGHLIGHT);
    const struct {
        std::int32_t width, height, borderWidth;
        std::vector<std::string> map;
    } rows[] = {
        {300, 150, 1, {std::string(20, 'd'), std::string(20, 'l')}},
        {90, 150, 1, std::vector<std::string>(10, "dl")},
        {150,
         20,
         3,
         {"dddddddddd", "dddddddddd", "dddddddddd", "llllllllll", "llllllllll", "llllllllll"}},
        {20, 150, 2, std::vector<std::string>(10, "ddll")},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.width) + " x " + std::to_string(row.height));
        Add("L", row.width, row.height);
        Let("L", "BorderWidth", row.borderWidth);
        EXPECT_EQ(Pixels("L").Map({{shadow, 'd'}, {light, 'l'}}), row.map);
        form.Remove("L");
    }
}

}  // namespace
}  // namespace korvex::test
