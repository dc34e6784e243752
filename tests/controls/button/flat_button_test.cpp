// FlatButton: the access letter, mouse and keyboard sessions on the virtual clock (the poll ticks
// every 10 ms there), the looks it goes through and the focus it reports. (Its normal, hover,
// pressed and focused pixels are the gallery's flat-button tile.)

#include "controls/button/flat_button.hpp"
#include "support/control_fixture.hpp"

namespace korvex::test {
namespace {

using controls::FlatButton;

class FlatButtonTest : public ControlsTest {
  protected:
    // F and G, 75 x 25 pixels at 20, 20 and 120, 20 of the form, at run time as the message
    // box has them.
    void Running() {
        New("FlatButton", kF);
        New("FlatButton", {"G", 1800, 300, 75 * 15, 25 * 15});
        form.SwitchMode(true);
    }
    FlatButton& Flat(const char* name = "F") { return Control<FlatButton>(name); }

    const Extender kF{"F", 300, 300, 75 * 15, 25 * 15};
};

TEST_F(FlatButtonTest, AccessLetter) {
    Running();
    struct Row {
        const char* caption;
        bool mnemonic;
        std::int16_t key;
        const char* shown;
    };
    // clang-format off
    for (const Row& row : std::vector<Row>{
             {"&&a", true, 0, "&a"}, {"&yes", true, 'Y', "yes"}, {"OK", true, 0, "OK"},
             {"a&&b&c", true, 'C', "a&bc"},     // "&&" is never a prefix
             {"Abbruch&", true, 0, "Abbruch"},  // a trailing ampersand names no letter
             {"&über", true, 0xDC, "über"},     // upper-cased as the host does for 256 characters
             {"a&&b&c", false, 0, "a&&b&c"}}) {
        // clang-format on
        Let("F", "UseMnemonic", row.mnemonic);
        Let("F", "Caption", row.caption);
        EXPECT_EQ(Flat().AccessKey(), row.key) << row.caption;
        EXPECT_EQ(Flat().DisplayCaption(), row.shown) << row.caption;
    }
}

// ---------------------------------------------------------------------------------------------
// Sessions: each row runs its script on a fresh pair; Escape is G's (Cancel), Enter F's (Default).

struct Session {
    const char* name;
    const char* script;
    const char* expected;  // Brief, F's name dropped
};

// clang-format off
const std::vector<Session> kSessions = {
    {"click: down, up, then Click; any button", "move F 10 10\nwait 20\nclick\nclick right\n",
     "MouseMove(0, 0, 150, 150); MouseDown(1, 0, 150, 150); MouseUp(1, 0, 150, 150); Click(); "
     "MouseDown(2, 0, 150, 150); MouseUp(2, 0, 150, 150); Click()"},
    {"released outside: the poll took the pressed look, no Click",
     "move F 10 10\nwait 20\ndown\nmove 300 200\nwait 20\nup\n",
     "MouseMove(0, 0, 150, 150); MouseDown(1, 0, 150, 150); MouseMove(1, 0, 4200, 2700); MouseUp(1, 0, 4200, 2700)"},
    {"coming back while held presses again",
     "move F 10 10\nwait 20\ndown\nmove 300 200\nwait 20\nmove F 20 10\nwait 20\nup\n",
     "MouseMove(0, 0, 150, 150); MouseDown(1, 0, 150, 150); MouseMove(1, 0, 4200, 2700); "
     "MouseMove(1, 0, 300, 150); MouseUp(1, 0, 300, 150); Click()"},
    {"double click: each press clicks", "move F 10 10\nwait 20\ndblclick\n",
     "MouseMove(0, 0, 150, 150); MouseDown(1, 0, 150, 150); MouseUp(1, 0, 150, 150); Click(); "
     "MouseDown(1, 0, 150, 150); MouseUp(1, 0, 150, 150); Click()"},
    {"Enter on the focused button clicks between its key events",
     "focus F\nkey down enter\nkey press 13\nkey up enter\nkey down 65 shift=1\n",
     "MouseDown(1, 0, 0, 0); KeyDown(13, 0); KeyPress(13); MouseUp(1, 0, 0, 0); Click(); KeyUp(13, 0); KeyDown(65, 1)"},
    {"Escape fires the Cancel button once however long it is held, again after a release",
     "set G.Cancel True\nkey down escape\nwait 400\nkey up escape\nwait 20\nkey down escape\nwait 30\n",
     "changed G.Cancel; G.MouseDown(1, 0, 1, 1); G.MouseUp(1, 0, 1, 1); G.Click(); "
     "G.MouseDown(1, 0, 1, 1); G.MouseUp(1, 0, 1, 1); G.Click()"},
    {"a disabled or hidden Cancel button answers Escape all the same",
     "set G.Cancel True\nset G.Enabled False\nkey down escape\nwait 50\nkey up escape\nwait 20\n"
     "set G.Enabled True\nset G.Visible False\nkey down escape\nwait 50\nkey up escape\nwait 20\n",
     "changed G.Cancel; G.MouseDown(1, 0, 1, 1); G.MouseUp(1, 0, 1, 1); G.Click(); "
     "G.MouseDown(1, 0, 1, 1); G.MouseUp(1, 0, 1, 1); G.Click()"},
    {"Alt with the access letter fires; the letter alone, another letter or no mnemonics do not",
     "set G.Caption \"&Nein\"\nkey down alt\nkey down 78\nwait 10\nkey up 78\nkey up alt\nwait 20\n"
     "key down 78\nwait 30\nkey up 78\nkey down alt\nkey down 74\nwait 30\nkey up 74\nkey up alt\n"
     "set G.UseMnemonic False\nkey down alt\nkey down 78\nwait 30\nkey up 78\nkey up alt\n",
     "changed G.Caption; G.MouseDown(1, 0, 1, 1); G.MouseUp(1, 0, 1, 1); G.Click(); changed G.UseMnemonic"},
    // Ticks every 10 ms; a firing holds 100 ms and drops the ticks inside it, so a 250 ms hold
    // fires at +10, +120 and +230.
    {"Enter fires the Default button on every tick it is held",
     "set F.Default True\nkey down enter\nwait 250\nkey up enter\nwait 50\n",
     "changed Default; MouseDown(1, 0, 1, 1); MouseUp(1, 0, 1, 1); Click(); MouseDown(1, 0, 1, 1); "
     "MouseUp(1, 0, 1, 1); Click(); MouseDown(1, 0, 1, 1); MouseUp(1, 0, 1, 1); Click()"},
};
// clang-format on

TEST_F(FlatButtonTest, Sessions) {
    for (const Session& session : kSessions) {
        SCOPED_TRACE(session.name);
        Running();
        EXPECT_EQ(Brief(session.script, "F"), session.expected);
        Run("key up enter\nkey up escape\nup\nmove 600 300\nwait 50\n");
        form.Remove("F");
        form.Remove("G");
        form.SwitchMode(false);
    }
}

// At design time neither button shows the hover look; the flat button's poll stops itself.
TEST_F(FlatButtonTest, DesignModePollsChangeNothing) {
    New("FlatButton", kF);
    New("Button", {"B", 300, 1200, 1800, 600});
    const Shot flat = Pixels("F"), button = Pixels("B");
    EXPECT_EQ(Run("set F.Cancel True\nset F.Default True\nmove F\nkey down escape\nkey down "
                  "enter\nwait 100\n"),
              "changed F.Cancel\nchanged F.Default\nevent F.MouseMove(0, 0, 555, 180)\n");
    EXPECT_EQ(Pixels("F").bits, flat.bits);
    Run("key up escape\nkey up enter\nmove B\nwait 200\nmove 5 5\nwait 200\nmove B\nwait 200\n");
    EXPECT_EQ(Pixels("B").bits, button.bits);
    form.Remove("B");
    EXPECT_EQ(platform.driver().NextDue(), -1) << "the poll stopped itself";
}

// Enabled is not in the button's member table, yet the button keeps it in its bag: a disabled
// button comes back disabled.
TEST_F(FlatButtonTest, KeepsItsEnabledState) {
    Running();
    Flat().Enabled(false);
    Restore("FlatButton", {"Copy", 300, 1200, 1125, 375}, Save("F"));
    EXPECT_FALSE(Flat("Copy").Enabled());
}

// Hover raises the frame, a press sinks it, and a press dragged away goes flat again.
TEST_F(FlatButtonTest, LooksFollowThePointer) {
    Running();
    using Look = FlatButton::Look;
    for (const auto& [script, look] :
         {std::pair{"", Look::Normal}, std::pair{"move F\nwait 20\n", Look::Hover},
          std::pair{"down\n", Look::Pressed}, std::pair{"up\n", Look::Hover},
          std::pair{"down\nmove 400 300\nwait 20\n", Look::Normal}}) {
        Run(script);
        EXPECT_EQ(Flat().CurrentLook(), look) << script;
    }
}

// A press takes the focus, which BackFocus reports while FocusRect shows it; sFocus shows it
// without FocusRect.
TEST_F(FlatButtonTest, BackFocusReportsTheShownFocus) {
    Running();
    Run("set F.FocusRect True\nmove F 10 10\nwait 20\nclick\nmove 400 300\nwait 20\n");
    EXPECT_TRUE(Get("F", "BackFocus").ToBool());
    Run("focus G\n");
    EXPECT_FALSE(Get("F", "BackFocus").ToBool());
    EXPECT_FALSE(Get("G", "BackFocus").ToBool()) << "G has no FocusRect";
    Run("call G.sFocus\n");
    EXPECT_TRUE(Get("G", "BackFocus").ToBool());
}

}  // namespace
}  // namespace korvex::test
