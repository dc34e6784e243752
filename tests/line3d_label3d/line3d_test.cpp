// Line3D: member table, sizing (the automatic orientation, the forced thickness, the nested
// resize), persistence with its two defaults for "BorderColor", overflow, and the pixels of the
// engraved line.

#include "display_fixture.hpp"

#include "host/numeric.hpp"

namespace korvex::test {
namespace {

using controls::Line3D;
using controls::OrientationConstants;

constexpr const char* kLine = "Korvex_Tools.Line3D";

class Line3DTest : public DisplayTest {
  protected:
    Line3D& Line(const char* name = "L") { return Control<Line3D>(name); }
    // Every property through the member table, as a saved form would show it.
    std::vector<std::string> State(const char* name = "L") {
        std::vector<std::string> out;
        for (const char* p : {"BorderColor", "BorderForeColor", "BorderWidth", "Orientation", "Width", "Height"})
            out.push_back(std::string(p) + "=" + host::DisplayText(Get(name, p)));
        return out;
    }
};

TEST_F(Line3DTest, MemberTableIsInSlotOrder) {
    const host::ClassInfo& info = Line3D::Class();
    EXPECT_EQ(info.progId, "Korvex_Tools.Line3D");
    std::vector<std::string> names;
    for (const host::MemberInfo& m : info.members) names.push_back(m.name);
    EXPECT_EQ(names, (std::vector<std::string>{"ShowAboutBox", "BorderColor", "BorderForeColor", "BorderWidth",
                                               "Refresh", "Orientation", "DrawLine"}));
    EXPECT_EQ(info.members[0].dispId, host::kDispIdAboutBox);
    EXPECT_EQ(info.members[1].dispId, 1);
    EXPECT_EQ(info.members[6].dispId, 6);
    EXPECT_TRUE(info.events.empty());
    const host::EnumInfo* e = info.FindEnum("OrientationConstants");
    ASSERT_NE(e, nullptr);
    EXPECT_EQ(e->members, (std::vector<std::pair<std::string, std::int32_t>>{
                              {"lHorizontal", 0}, {"lVertical", 1}, {"lAuto", 2}}));
    EXPECT_EQ(info.FindMember("Orientation")->type.enumName, "OrientationConstants");
}

TEST_F(Line3DTest, FirstResizeChoosesTheOrientationForGood) {
    AddNew(kLine, "L", 150, 150, 3000, 600);  // wider than high
    EXPECT_EQ(Line().Orientation(), OrientationConstants::lHorizontal);
    EXPECT_EQ(Extent("L", "Width"), 3000);
    EXPECT_EQ(Extent("L", "Height"), 30);

    AddNew(kLine, "V", 3300, 150, 600, 1995);  // higher than wide
    EXPECT_EQ(Line("V").Orientation(), OrientationConstants::lVertical);
    EXPECT_EQ(Extent("V", "Width"), 30);
    EXPECT_EQ(Extent("V", "Height"), 1995);

    AddNew(kLine, "S", 4500, 150, 900, 900);  // a square becomes vertical
    EXPECT_EQ(Line("S").Orientation(), OrientationConstants::lVertical);
    EXPECT_EQ(Extent("S", "Width"), 30);
    EXPECT_EQ(Extent("S", "Height"), 900);

    // Once chosen, later proportions do not change it: the host's new height is forced back.
    Let("L", "Height", 4000);
    EXPECT_EQ(Line().Orientation(), OrientationConstants::lHorizontal);
    EXPECT_EQ(Extent("L", "Height"), 30);
    Let("L", "Width", 1200);
    EXPECT_EQ(Extent("L", "Width"), 1200);
    EXPECT_EQ(Extent("L", "Height"), 30);
}

// The first resize forces the thickness; the host's resize of the extender calls Resize again,
// which finds the sizes right and ends there: the orientation is chosen (and reported) once,
// and the window agrees with the extender.
TEST_F(Line3DTest, NestedResizeEndsAfterOnePass) {
    ChangeLog log;
    form.SetSink(&log);
    AddNew(kLine, "L", 150, 150, 3000, 600);
    Let("L", "Height", 450);
    form.SetSink(nullptr);
    EXPECT_EQ(log.lines, (std::vector<std::string>{"changed L.Orientation"}));
    platform::RECT r;
    platform.windows().GetWindowRect(form.Get("L").GetControl().SurfaceWindow(), &r);
    EXPECT_EQ(r, (platform::RECT{10, 10, 210, 12}));
}

TEST_F(Line3DTest, ControlPlacedAtItsThicknessKeepsItsLength) {
    AddNew(kLine, "L", 150, 150, 3000, 30);
    EXPECT_EQ(Line().Orientation(), OrientationConstants::lHorizontal);
    EXPECT_EQ(Extent("L", "Width"), 3000);
    EXPECT_EQ(Extent("L", "Height"), 30);
}

TEST_F(Line3DTest, AutoAgainDecidesAtTheNextResize) {
    AddNew(kLine, "L", 150, 150, 3000, 300);
    Let("L", "Orientation", static_cast<std::int32_t>(OrientationConstants::lAuto));
    EXPECT_EQ(Line().Orientation(), OrientationConstants::lAuto);
    EXPECT_EQ(Extent("L", "Height"), 30);  // lAuto is drawn horizontally
    Let("L", "Height", 3000);             // now square: vertical, as long as it is high
    EXPECT_EQ(Line().Orientation(), OrientationConstants::lVertical);
    EXPECT_EQ(Extent("L", "Width"), 30);
    EXPECT_EQ(Extent("L", "Height"), 3000);
}

TEST_F(Line3DTest, OrientationIsClampedIntoItsRange) {
    AddNew(kLine, "L", 150, 150, 3000, 300);
    Let("L", "Orientation", 7);
    EXPECT_EQ(Line().Orientation(), OrientationConstants::lAuto);
    Let("L", "Orientation", -1);
    EXPECT_EQ(Line().Orientation(), OrientationConstants::lHorizontal);
}

TEST_F(Line3DTest, BorderWidthSetsThicknessAndReportsAfterDrawing) {
    AddNew(kLine, "L", 150, 150, 3000, 300);
    ChangeLog log;
    form.SetSink(&log);
    Let("L", "BorderWidth", 3);
    form.SetSink(nullptr);
    EXPECT_EQ(Extent("L", "Height"), 90);
    EXPECT_EQ(Extent("L", "Width"), 3000);
    EXPECT_EQ(log.lines, (std::vector<std::string>{"changed L.BorderWidth"}));

    AddNew(kLine, "V", 3300, 150, 300, 3000);
    Let("V", "BorderWidth", 2);
    EXPECT_EQ(Extent("V", "Width"), 60);
    EXPECT_EQ(Extent("V", "Height"), 3000);
}

// Sizes are 16-bit products: a width whose double no longer fits raises error 6 before any size
// changes, yet stays stored, so every later DrawLine fails too until it is made smaller.
TEST_F(Line3DTest, OverflowingWidthKeepsEverySize) {
    AddNew(kLine, "L", 150, 150, 3000, 300);
    EXPECT_HOST_ERROR(Let("L", "BorderWidth", 1093), host::kErrOverflow);
    EXPECT_EQ(Line().BorderWidth(), 1093);
    EXPECT_EQ(Extent("L", "Height"), 30);
    EXPECT_EQ(Extent("L", "Width"), 3000);
    EXPECT_HOST_ERROR(Line().DrawLine(), host::kErrOverflow);
    EXPECT_HOST_ERROR(Let("L", "Width", 2400), host::kErrOverflow);
    Let("L", "BorderWidth", 4);
    EXPECT_EQ(Extent("L", "Height"), 120);
    EXPECT_EQ(Extent("L", "Width"), 2400);
}

TEST_F(Line3DTest, LengthBeyondSixteenBitsOverflowsInResize) {
    AddNew(kLine, "L", 0, 150, 3000, 300);
    EXPECT_HOST_ERROR(Let("L", "Width", 33000), host::kErrOverflow);
    Let("L", "Width", 32760);  // 2184 pixels still fit
    EXPECT_EQ(Extent("L", "Width"), 32760);
}

TEST_F(Line3DTest, NewControlWritesItsColourAndItsChosenOrientation) {
    AddNew(kLine, "L", 150, 150, 3000, 300);
    AddNew(kLine, "V", 3300, 150, 300, 3000);
    // The created colour differs from the key's default (the workspace colour), and the chosen
    // orientation from lAuto; nothing else was changed.
    for (const auto& [name, orientation] : {std::pair{"L", 0}, std::pair{"V", 1}}) {
        const host::PropertyBag bag = Save(name);
        ASSERT_EQ(bag.Entries().size(), 2u) << bag.ToJson();
        EXPECT_EQ(bag.Entries()[0].first, "BorderColor");
        EXPECT_EQ(bag.Entries()[0].second, Variant(std::int32_t{static_cast<std::int32_t>(0x80000010)}));
        EXPECT_EQ(bag.Entries()[1].first, "Orientation");
        EXPECT_EQ(bag.Entries()[1].second, Variant(static_cast<std::int16_t>(orientation)));
    }
}

TEST_F(Line3DTest, EmptyBagGivesTheWorkspaceColourAndOtherwiseANewControl) {
    AddNew(kLine, "N", 150, 150, 3000, 300);
    Restore(kLine, "R", host::PropertyBag{}, 150, 600, 3000, 300);
    std::vector<std::string> fresh = State("N"), restored = State("R");
    EXPECT_EQ(restored[0], "BorderColor=" + std::to_string(static_cast<std::int32_t>(0x8000000C)));
    EXPECT_EQ(fresh[0], "BorderColor=" + std::to_string(static_cast<std::int32_t>(0x80000010)));
    fresh.erase(fresh.begin());
    restored.erase(restored.begin());
    EXPECT_EQ(restored, fresh);
    // The workspace colour equals its write default: a restored control writes nothing of it.
    EXPECT_FALSE(Save("R").Contains("BorderColor"));
}

TEST_F(Line3DTest, EveryPropertySurvivesSaveAndRestore) {
    AddNew(kLine, "L", 150, 150, 3000, 300);
    Let("L", "BorderColor", 0x000000FF);
    Let("L", "BorderForeColor", static_cast<std::int32_t>(0x8000000F));
    Let("L", "BorderWidth", 2);
    Let("L", "Orientation", 1);
    const std::vector<std::string> before = State("L");
    Restore(kLine, "R", Save("L"), 150, 150, Extent("L", "Width"), Extent("L", "Height"));
    EXPECT_EQ(State("R"), before);
    EXPECT_EQ(Save("R"), Save("L"));

    // The designer's switch to run mode re-creates it from the bag it wrote.
    form.SwitchMode(true);
    EXPECT_EQ(State("L"), before);
}

TEST_F(Line3DTest, RestoredLineKeepsItsPlacedLength) {
    host::PropertyBag bag;
    bag.WriteProperty("BorderWidth", std::int16_t{2});
    bag.WriteProperty("Orientation", std::int16_t{0});
    Restore(kLine, "L", bag, 150, 150, 2400, 60);
    EXPECT_EQ(Extent("L", "Width"), 2400);
    EXPECT_EQ(Extent("L", "Height"), 60);
    // A bag without an orientation decides it at the first resize, as a new control does.
    host::PropertyBag automatic;
    automatic.WriteProperty("BorderWidth", std::int16_t{1});
    Restore(kLine, "A", automatic, 150, 600, 45, 1800);
    EXPECT_EQ(Line("A").Orientation(), OrientationConstants::lVertical);
    EXPECT_EQ(Extent("A", "Width"), 30);
    EXPECT_EQ(Extent("A", "Height"), 1800);
}

TEST_F(Line3DTest, ShowAboutBoxDoesNothing) {
    AddNew(kLine, "L", 150, 150, 3000, 300);
    // No about box is installed in this host: opening one would be error 5.
    EXPECT_TRUE(Run("call L.ShowAboutBox\n").empty());
}

// ---- pixels

TEST_F(Line3DTest, HorizontalLineIsDarkOverLight) {
    AddNew(kLine, "L", 150, 150, 300, 150);
    const WindowPixels px = Pixels("L");
    const std::map<std::uint32_t, char> legend{{SysColour(platform::COLOR_BTNSHADOW), 'd'},
                                               {SysColour(platform::COLOR_BTNHIGHLIGHT), 'l'}};
    EXPECT_EQ(px.Map(legend), (std::vector<std::string>{std::string(20, 'd'), std::string(20, 'l')}));
}

TEST_F(Line3DTest, VerticalLineIsDarkLeftOfLight) {
    AddNew(kLine, "L", 150, 150, 90, 150);
    const WindowPixels px = Pixels("L");
    const std::map<std::uint32_t, char> legend{{SysColour(platform::COLOR_BTNSHADOW), 'd'},
                                               {SysColour(platform::COLOR_BTNHIGHLIGHT), 'l'}};
    EXPECT_EQ(px.Map(legend), (std::vector<std::string>(10, "dl")));
}

TEST_F(Line3DTest, BorderWidthThreeMakesThreePixelStrips) {
    AddNew(kLine, "L", 150, 150, 150, 20);
    Let("L", "BorderColor", 0x000000FF);      // red
    Let("L", "BorderForeColor", 0x00FF0000);  // blue
    Let("L", "BorderWidth", 3);
    EXPECT_EQ(Extent("L", "Height"), 90);
    const WindowPixels px = Pixels("L");
    EXPECT_EQ(px.Map({{0xFF0000, 'r'}, {0x0000FF, 'b'}}),
              (std::vector<std::string>{"rrrrrrrrrr", "rrrrrrrrrr", "rrrrrrrrrr", "bbbbbbbbbb", "bbbbbbbbbb",
                                        "bbbbbbbbbb"}));
}

TEST_F(Line3DTest, SwappedColoursRaiseTheLineOnTheScreen) {
    form.BackColor = 0x00000000;
    AddNew(kLine, "L", 300, 300, 600, 300);
    Let("L", "BorderColor", static_cast<std::int32_t>(0x80000014));
    Let("L", "BorderForeColor", static_cast<std::int32_t>(0x80000010));
    const std::vector<std::uint32_t> screen = platform.driver().ComposeScreen();
    const int width = platform.windows().ScreenSize().cx;
    const auto at = [&](int x, int y) { return screen[static_cast<std::size_t>(y * width + x)]; };
    // The form's client area starts at the screen's corner; the line at 20, 20, 40 pixels long.
    for (int x = 20; x < 60; ++x) {
        ASSERT_EQ(at(x, 19), 0u) << x;
        ASSERT_EQ(at(x, 20), SysColour(platform::COLOR_BTNHIGHLIGHT)) << x;
        ASSERT_EQ(at(x, 21), SysColour(platform::COLOR_BTNSHADOW)) << x;
        ASSERT_EQ(at(x, 22), 0u) << x;
    }
    EXPECT_EQ(at(19, 20), 0u);
    EXPECT_EQ(at(60, 20), 0u);
}

}  // namespace
}  // namespace korvex::test
