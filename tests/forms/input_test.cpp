// Input on the test control: which object a press reaches (topmost enabled windowless object
// taking input, else the surface), the order MouseDown, MouseUp, Click and the double-click
// sequence, coordinates in twips relative to the receiving object, keys, focus, mouse pointers.

#include "form_fixture.hpp"

namespace korvex::forms::testing {
namespace {

class InputTest : public FormTest {
  protected:
    InputTest() {
        shape.Move(Tx(0), Ty(30), Tx(40), Ty(20));  // bottom: a plain rectangle, no input
        shape.BackStyle(1);
        image.Move(Tx(60), Ty(30), Tx(20), Ty(20));
        image.Stretch(true);
        label.Move(Tx(10), Ty(10), Tx(50), Ty(15));  // top
        label.Caption("Label");
        Record(surface.events, "surface", log);
        Record(label.events, "label", log);
        Record(image.events, "image", log);
    }

    Shape shape{surface};
    Image image{surface};
    Label label{surface};
};

TEST_F(InputTest, ClickOnALabelRaisesDownUpClickWithTwipsRelativeToIt) {
    Click({15, 12});
    EXPECT_EQ(TakeLog(),
              (Log{"label MouseDown 1 0 75,30", "label MouseUp 1 0 75,30", "label Click"}));

    // Released elsewhere: the label keeps the input but there is no Click.
    Press({15, 12});
    Release({100, 40});
    EXPECT_EQ(TakeLog(), (Log{"label MouseDown 1 0 75,30", "label MouseUp 1 0 1350,450"}));

    // The surface's own coordinates count from its client origin.
    Click({100, 5});
    EXPECT_EQ(TakeLog(), (Log{"surface MouseDown 1 0 1500,75", "surface MouseUp 1 0 1500,75",
                              "surface Click"}));

    // The right button raises no Click.
    Click({15, 12});
    TakeLog();
    Press({15, 12}, kButtonRight);
    Release({15, 12}, kButtonRight);
    EXPECT_EQ(TakeLog(), (Log{"label MouseDown 2 0 75,30", "label MouseUp 2 0 75,30"}));
}

TEST_F(InputTest, DisabledOrHiddenObjectsAndShapesPassThePressBeneath) {
    label.Enabled(false);
    Click({15, 12});
    EXPECT_EQ(TakeLog(), (Log{"surface MouseDown 1 0 225,180", "surface MouseUp 1 0 225,180",
                              "surface Click"}));
    label.Enabled(true);
    label.Visible(false);
    Click({15, 12});
    EXPECT_EQ(TakeLog()[0], "surface MouseDown 1 0 225,180");

    Click({5, 35});  // on the shape
    EXPECT_EQ(TakeLog()[0], "surface MouseDown 1 0 75,525");
    Click({65, 35});  // on the image
    EXPECT_EQ(TakeLog()[0], "image MouseDown 1 0 75,75");

    // A disabled surface drops everything.
    surface.Enabled(false);
    Click({100, 5});
    Click({65, 35});
    EXPECT_TRUE(TakeLog().empty());
}

// The window's tooltip is the text of the object under the pointer, the surface's own where the
// object has none or input passes through it (a shape, a disabled object); a text changed under
// a resting pointer reaches the platform at once.
TEST_F(InputTest, TheTooltipIsTheTextOfTheObjectUnderThePointer) {
    surface.ToolTipText("Fläche");
    label.ToolTipText("Beschriftung");
    const auto over = [&](POINT client) {
        MoveTo(client);
        return windows.GetToolTip(surface.hWnd());
    };
    EXPECT_EQ(over({15, 12}), "Beschriftung");
    EXPECT_EQ(over({65, 35}), "Fläche") << "the image has no text";
    EXPECT_EQ(over({5, 35}), "Fläche") << "shapes take no input";
    image.ToolTipText("Bild");
    EXPECT_EQ(over({65, 35}), "Bild");
    label.Enabled(false);
    EXPECT_EQ(over({15, 12}), "Fläche");
    label.Enabled(true);
    EXPECT_EQ(over({16, 12}), "Beschriftung");
    label.ToolTipText("Neu");
    EXPECT_EQ(windows.GetToolTip(surface.hWnd()), "Neu");
    surface.ToolTipText("");
    EXPECT_EQ(over({100, 5}), "");
    // The platform shows it after the pointer rests there.
    MoveTo({15, 12});
    Advance(platform::ToolTipState::kInitial);
    EXPECT_EQ(platform.driver().ToolTip().text, "Neu");
}

TEST_F(InputTest, DoubleClickAddsDblClickAndASecondMouseUp) {
    Click({15, 12});
    Advance(100);
    PressQuickly({15, 12});
    Release({15, 12});
    EXPECT_EQ(TakeLog(), (Log{"label MouseDown 1 0 75,30", "label MouseUp 1 0 75,30", "label Click",
                              "label DblClick", "label MouseUp 1 0 75,30"}));
    // Too late for a double click: two single clicks.
    Click({15, 12});
    Click({15, 12});
    EXPECT_EQ(TakeLog().size(), 6u);
    // The second press of a double click on another object than the first click's is an
    // ordinary press there.
    Click({100, 5});
    label.Move(Tx(95), Ty(0));
    PressQuickly({100, 5});
    Release({100, 5});
    EXPECT_EQ(TakeLog(),
              (Log{"surface MouseDown 1 0 1500,75", "surface MouseUp 1 0 1500,75", "surface Click",
                   "label MouseDown 1 0 75,75", "label MouseUp 1 0 75,75", "label Click"}));
}

TEST_F(InputTest, AClickHandlerMayRemoveItsObject) {
    auto doomed = std::make_unique<Label>(surface);
    doomed->Move(Tx(90), Ty(40), Tx(20), Ty(10));
    int clicks = 0;
    doomed->events.MouseUp = [&](std::int16_t, std::int16_t, float, float) { doomed.reset(); };
    doomed->events.Click = [&] { ++clicks; };
    Click({95, 45});
    EXPECT_EQ(doomed, nullptr);
    EXPECT_EQ(clicks, 0);
    Click({95, 45});
    EXPECT_EQ(TakeLog(), (Log{"surface MouseDown 1 0 1425,675", "surface MouseUp 1 0 1425,675",
                              "surface Click"}));
}

TEST_F(InputTest, KeysAndFocusReachTheSurface) {
    Log keys;
    auto note = [&](std::string s) { keys.push_back(std::move(s)); };
    surface.events.KeyDown = [&](std::int16_t& c, std::int16_t s) {
        note("down " + std::to_string(c) + " " + std::to_string(s));
    };
    surface.events.KeyPress = [&](std::int16_t& c) { note("press " + std::to_string(c)); };
    surface.events.KeyUp = [&](std::int16_t& c, std::int16_t) { note("up " + std::to_string(c)); };
    surface.events.GotFocus = [&] { note("got"); };
    surface.events.LostFocus = [&] { note("lost"); };

    surface.SetFocus();
    Key('A', kShiftMask);
    windows.SetFocus(form);
    EXPECT_EQ(keys, (Log{"got", "down 65 1", "press 65", "up 65", "lost"}));
}

TEST_F(InputTest, MousePointerFollowsTheObjectUnderThePointer) {
    MoveTo({100, 5});
    const int standard = windows.CurrentCursor();
    surface.MousePointer(2);
    label.MousePointer(11);
    MoveTo({15, 12});
    EXPECT_EQ(windows.CurrentCursor(), 11);
    MoveTo({100, 5});
    EXPECT_EQ(windows.CurrentCursor(), 2);
    // Custom without an icon shows the default.
    surface.MousePointer(99);
    MoveTo({101, 5});
    EXPECT_EQ(windows.CurrentCursor(), standard);
    surface.MouseIcon(std::make_shared<host::StdPicture>(host::PictureType::Icon, 1, 1,
                                                         std::vector<std::uint32_t>{0xFF000000u}));
    MoveTo({102, 5});
    EXPECT_EQ(windows.CurrentCursor(), 99);
    EXPECT_THROW(label.MousePointer(16), host::HostError);
    EXPECT_EQ(label.MousePointer(), 11);
}

}  // namespace
}  // namespace korvex::forms::testing
