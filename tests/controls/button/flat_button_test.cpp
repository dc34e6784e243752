// FlatButton: member table, persistence, the access letter, mouse and keyboard sessions on the
// virtual clock (the poll ticks every 10 ms there), and the pixels of its three looks.

#include "fixture.hpp"

namespace korvex::test {
namespace {

using controls::FlatButton;

// Composed pixels of the classic scheme.
constexpr std::uint32_t kFace = 0xD4D0C8, kBlack = 0x000000, kRing = 0xC0C0C0;
constexpr std::uint32_t kLight = 0xE7E6D6, kDark = 0x868686, kWhite = 0xFFFFFF, kRed = 0xFF0000;
constexpr int kW = 75, kH = 25;

class FlatButtonTest : public ButtonsTest {
  protected:
    FlatButtonTest() : ButtonsTest(false) {}

    // F and G, 75 x 25 pixels at 20, 20 and 120, 20 of the form, at run time as the message
    // box has them.
    void Running() {
        form.Add("Korvex_Tools.FlatButton", kF);
        form.Add("Korvex_Tools.FlatButton", {"G", 1800, 300, 75 * 15, 25 * 15});
        form.SwitchMode(true);
    }
    FlatButton& Flat(const char* name = "F") { return Get<FlatButton>(name); }

    // Every readable property but the handles, with the enabled state and the access key.
    std::vector<std::string> State(const char* name) {
        std::vector<std::string> values;
        host::Site& site = form.Get(name);
        for (const host::MemberInfo& m : site.Class().members)
            if (m.kind == host::MemberInfo::Kind::Property && m.name != "HDC" && m.name != "hwnd")
                values.push_back(m.name + "=" + host::DisplayText(m.get(site.GetControl())));
        values.push_back("Enabled=" + std::to_string(Flat(name).Enabled()));
        values.push_back("AccessKey=" + std::to_string(Flat(name).AccessKey()));
        return values;
    }

    const host::Extender kF{"F", 300, 300, 75 * 15, 25 * 15};
};

TEST_F(FlatButtonTest, MemberTableFollowsTheInterface) {
    const host::ClassInfo& info = FlatButton::Class();
    EXPECT_EQ(info.progId, "Korvex_Tools.FlatButton");
    EXPECT_EQ(Members(info),
              "Caption Font TextColor HoverColor BackColor UseMnemonic Default Cancel "
              "FocusRect hwnd(ro) HDC(ro) BackFocus(ro) sFocus ");
    EXPECT_EQ(Events(info), "1Click 2MouseDown 3MouseUp 4MouseMove 5KeyDown 6KeyPress 7KeyUp ");
    EXPECT_EQ(info.FindEvent("MouseUp")->params[2].name, "x");
    EXPECT_EQ(info.FindEvent("KeyPress")->params[0].name, "KeyAscii");
}

// The caption's default is the display name on writing and on reading: a new button stores
// nothing, shows its name, and an empty bag gives the same button. Changed, every key keeps its
// order and kind and the button survives a save and restore.
TEST_F(FlatButtonTest, PersistsInOrderAndRoundTrips) {
    form.Add("Korvex_Tools.FlatButton", kF);
    EXPECT_TRUE(Keys("F").empty());
    const std::vector<std::string> fresh = State("F");
    EXPECT_EQ(fresh, (std::vector<std::string>{"Caption=\"F\"", "Font=Font(\"MS Sans Serif\")",
                                               "TextColor=-2147483630", "HoverColor=-2147483630",
                                               "BackColor=-2147483633", "UseMnemonic=True",
                                               "Default=False", "Cancel=False", "FocusRect=False",
                                               "BackFocus=False", "Enabled=1", "AccessKey=0"}));
    form.Restore("Korvex_Tools.FlatButton", {"F2", 300, 1200, 1125, 375}, host::JsonPropertyBag{});
    std::vector<std::string> restored = State("F2");
    restored[0] = "Caption=\"F\"";  // its own name
    EXPECT_EQ(restored, fresh);
    form.Remove("F");
    form.Remove("F2");

    Running();
    EXPECT_EQ(
        Brief("set F.Caption \"&Abbrechen\"\nset F.Default True\nset F.HoverColor 255\n", "F"),
        "changed Caption; changed Default; changed HoverColor");
    Let("F", "Font", Variant(std::make_shared<host::StdFont>("Arial", 12, true)));
    // clang-format off
    for (const auto& [name, value] : std::vector<std::pair<const char*, Variant>>{
             {"TextColor", 0x00112233}, {"BackColor", 0x00E0E0E0}, {"UseMnemonic", false}, {"Cancel", true},
             {"FocusRect", true}})
        Let("F", name, value);
    // clang-format on
    Flat().Enabled(false);
    EXPECT_EQ(Keys("F"), (std::vector<std::string>{
                             "Caption String", "Font Font", "Enabled Boolean", "TextColor Long",
                             "HoverColor Long", "BackColor Long", "UseMnemonic Boolean",
                             "Default Boolean", "Cancel Boolean", "FocusRect Boolean"}));
    form.Restore("Korvex_Tools.FlatButton", {"Copy", 300, 1200, 1125, 375},
                 form.SaveBag(form.Get("F")));
    EXPECT_EQ(State("Copy"), State("F"));
}

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
    {"a disabled or hidden Cancel button ignores Escape",
     "set G.Cancel True\nset G.Enabled False\nkey down escape\nwait 50\nkey up escape\nwait 20\n"
     "set G.Enabled True\nset G.Visible False\nkey down escape\nwait 50\nkey up escape\nwait 20\n",
     "changed G.Cancel"},
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
    form.Add("Korvex_Tools.FlatButton", kF);
    Add("B", 300, 1200);
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

// ---------------------------------------------------------------------------------------------
// Pixels

// Normal: a thin ring with each corner cut by a pixel; hover raised; pressed sunken.
TEST_F(FlatButtonTest, LooksOfTheFrame) {
    Running();
    const std::map<std::uint32_t, char> legend{
        {kRing, '#'}, {kLight, 'L'}, {kDark, 'D'}, {kWhite, 'W'}, {kFace, '.'}};
    struct Row {
        const char* script;
        FlatButton::Look look;
        std::vector<std::string> corners;
    };
    using Look = FlatButton::Look;
    const std::vector<std::string> ring{"..## ##..", ".#.. ..#.", "#... ...#",
                                        "#... ...#", ".#.. ..#.", "..## ##.."};
    const std::vector<std::string> raised{"LLLL LLLD", "LWWW WW.D", "LW.. ...D",
                                          "LW.. ...D", "L... ...D", "DDDD DDDD"};
    const std::vector<std::string> sunken{"DDDD DDDL", "D... ..WL", "D... ..WL",
                                          "D... ..WL", "DWWW WWWL", "LLLL LLLL"};
    // clang-format off
    const std::vector<Row> rows = {{"", Look::Normal, ring}, {"move F\nwait 20\n", Look::Hover, raised},
                                   {"down\n", Look::Pressed, sunken}, {"up\n", Look::Hover, raised},
                                   {"down\nmove 400 300\nwait 20\n", Look::Normal, ring}};
    // clang-format on
    for (const Row& row : rows) {
        Run(row.script);
        EXPECT_EQ(Flat().CurrentLook(), row.look) << row.script;
        const Shot shot = Pixels("F");
        EXPECT_EQ(shot.Corners(legend), row.corners) << row.script;
        EXPECT_EQ(shot.Count(0xFF0000), 0) << "the unused colours of the ring never show";
    }
    const Shot normal = Pixels("F");
    for (int x = 2; x < kW - 2; ++x)
        EXPECT_TRUE(normal.at(x, 0) == kRing && normal.at(x, kH - 1) == kRing) << x;
    for (int y = 2; y < kH - 2; ++y)
        EXPECT_TRUE(normal.at(0, y) == kRing && normal.at(kW - 1, y) == kRing) << y;
}

TEST_F(FlatButtonTest, CaptionIsCentredSinksWhenPressedAndTakesTheHoverColour) {
    Running();
    Run("set F.Caption \"OK\"\nset F.HoverColor &HFF&\n");
    const std::vector<int> normal = Pixels("F").Box(kBlack);
    ASSERT_GE(normal[0], 0);
    EXPECT_LE(std::abs(normal[0] - (kW - 1 - normal[2])), 1) << normal[0] << " " << normal[2];
    EXPECT_LE(std::abs(normal[1] - (kH - 1 - normal[3])), 3) << normal[1] << " " << normal[3];
    EXPECT_EQ(Pixels("F").Count(kRed), 0);
    Run("focus F\nkey down enter\n");
    EXPECT_EQ(Pixels("F").Box(kBlack),
              (std::vector<int>{normal[0] + 1, normal[1] + 1, normal[2] + 1, normal[3] + 1}));
    Run("key up enter\n");
    EXPECT_EQ(Pixels("F").Box(kBlack), normal);

    Run("move F\nwait 20\n");
    const Shot hover = Pixels("F");
    EXPECT_GT(hover.Count(kRed), 0);
    EXPECT_EQ(hover.Box(kBlack)[0], -1) << "no caption pixel keeps the text colour";
    Run("down\n");
    EXPECT_EQ(Pixels("F").Count(kRed), hover.Count(kRed))
        << "pressed under the pointer: still the hover colour";
    Run("up\nmove 400 300\nwait 20\n");
    EXPECT_EQ(Pixels("F").Count(kRed), 0);
}

// The access letter is written without its "&" and underlined: the only pixels that differ from
// the plain caption lie on one row under the letter.
TEST_F(FlatButtonTest, AccessLetterIsUnderlined) {
    Running();
    Run("set F.Caption \"Ja\"\n");
    const Shot plain = Pixels("F");
    Run("set F.Caption \"&Ja\"\n");
    const Shot marked = Pixels("F");
    std::vector<int> rows, columns;
    for (int y = 0; y < kH; ++y)
        for (int x = 0; x < kW; ++x)
            if (plain.at(x, y) != marked.at(x, y)) {
                EXPECT_EQ(marked.at(x, y), kBlack);
                rows.push_back(y);
                columns.push_back(x);
            }
    ASSERT_FALSE(rows.empty());
    EXPECT_EQ(*std::min_element(rows.begin(), rows.end()),
              *std::max_element(rows.begin(), rows.end()));
    const std::vector<int> glyphs = plain.Box(kBlack);
    EXPECT_GT(rows[0], glyphs[1] + 4) << "below the letters' tops";
    EXPECT_GE(*std::min_element(columns.begin(), columns.end()), glyphs[0] - 1)
        << "starts at the J";
    EXPECT_LT(*std::max_element(columns.begin(), columns.end()), (glyphs[0] + glyphs[2]) / 2 + 2)
        << "and ends before the a";
}

// A press takes the focus; with FocusRect it shows as a dotted rectangle three pixels inside the
// edge, every other pixel, gone with the focus. sFocus shows it without FocusRect.
TEST_F(FlatButtonTest, FocusShowsAsADottedRectangle) {
    Running();
    Run("set F.Caption \"\"\nset F.FocusRect True\nmove F 10 10\nwait 20\nclick\nmove 400 "
        "300\nwait 20\n");
    EXPECT_TRUE(Read("F", "BackFocus").ToBool());
    const Shot shot = Pixels("F");
    std::string top, left;
    for (int i = 2; i < 10; ++i) {
        top += shot.at(i, 3) == kBlack ? '#' : '.';
        left += shot.at(3, i) == kBlack ? '#' : '.';
    }
    EXPECT_EQ(top + " " + left, ".#.#.#.# .#.#.#.#");
    EXPECT_EQ(shot.Box(kBlack), (std::vector<int>{3, 3, kW - 4, kH - 4}));
    Run("focus G\n");
    EXPECT_FALSE(Read("F", "BackFocus").ToBool());
    EXPECT_EQ(Pixels("F").Box(kBlack)[0], -1);
    EXPECT_FALSE(Read("G", "BackFocus").ToBool()) << "G has no FocusRect";
    Run("call G.sFocus\n");
    EXPECT_TRUE(Read("G", "BackFocus").ToBool());
}

}  // namespace
}  // namespace korvex::test
