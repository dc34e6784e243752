// FlatButton: member table, persistence, the access letter, mouse and keyboard sessions on the
// virtual clock (the poll ticks every 10 ms there), and the pixels of its three looks.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "controls/button/flat_button.hpp"
#include "host/container.hpp"
#include "driver/script_runner.hpp"
#include "platform/sim/sim_platform.hpp"

namespace korvex::test {
namespace {

using namespace korvex::host;
using controls::FlatButton;

// Two buttons of 75 x 25 pixels: F at 20, 20 of the form and G at 120, 20.
const Extender kF{"F", 300, 300, 75 * 15, 25 * 15};
const Extender kG{"G", 1800, 300, 75 * 15, 25 * 15};
constexpr int kW = 75, kH = 25;

// Composed pixels, 0x00RRGGBB.
constexpr std::uint32_t kFace = 0xD4D0C8;   // the classic button face
constexpr std::uint32_t kBlack = 0x000000;  // the classic button text
constexpr std::uint32_t kRing = 0xC0C0C0;
constexpr std::uint32_t kLight = 0xE7E6D6;  // 0x00D6E6E7 as RGB
constexpr std::uint32_t kDark = 0x868686;
constexpr std::uint32_t kWhite = 0xFFFFFF;

struct Shot {
    std::vector<std::uint32_t> bits;
    int width = 0, height = 0;
    [[nodiscard]] std::uint32_t at(int x, int y) const { return bits[static_cast<std::size_t>(y * width + x)]; }
    // The four corners of the frame, three pixels deep: rows 0, 1, 2, h-3, h-2, h-1, each the
    // columns 0..3, a blank and w-4..w-1, through a legend ('?' for other colours).
    [[nodiscard]] std::vector<std::string> Corners(const std::map<std::uint32_t, char>& legend) const {
        std::vector<std::string> rows;
        for (int y : {0, 1, 2, height - 3, height - 2, height - 1}) {
            std::string row;
            for (int x : {0, 1, 2, 3, -1, width - 4, width - 3, width - 2, width - 1}) {
                if (x < 0) {
                    row += ' ';
                    continue;
                }
                const auto it = legend.find(at(x, y));
                row += it == legend.end() ? '?' : it->second;
            }
            rows.push_back(row);
        }
        return rows;
    }
    // Bounding box of the pixels of one colour inside the frame (two pixels in from each edge):
    // left, top, right, bottom inclusive; {-1...} when there are none.
    [[nodiscard]] std::vector<int> Box(std::uint32_t colour) const {
        std::vector<int> box{-1, -1, -1, -1};
        for (int y = 2; y < height - 2; ++y)
            for (int x = 2; x < width - 2; ++x) {
                if (at(x, y) != colour) continue;
                if (box[0] < 0) box = {x, y, x, y};
                box = {std::min(box[0], x), std::min(box[1], y), std::max(box[2], x), std::max(box[3], y)};
            }
        return box;
    }
    [[nodiscard]] int Count(std::uint32_t colour) const {
        return static_cast<int>(std::count(bits.begin(), bits.end(), colour));
    }
};

class FlatButtonTest : public ::testing::Test {
protected:
    FlatButtonTest() { context.Classes().Register(FlatButton::Class()); }

    // F and G on the form at run time, as the message box has them.
    void Running() {
        form.Add("Korvex_Tools.FlatButton", kF);
        form.Add("Korvex_Tools.FlatButton", kG);
        form.SwitchMode(true);
        form.Show();
    }

    std::string Run(const std::string& script) {
        std::ostringstream out;
        ScriptRunner runner(form, platform.driver(), out, dir);
        runner.Run(script);
        return out.str();
    }

    Shot Pixels(const std::string& name) {
        const platform::HWND window = form.Get(name).GetControl().SurfaceWindow();
        platform::RECT r;
        platform.windows().GetWindowRect(window, &r);
        return {platform.driver().ComposeWindow(window), r.Width(), r.Height()};
    }

    FlatButton& Button(const std::string& name) { return dynamic_cast<FlatButton&>(form.Get(name).GetControl()); }

    // Every readable property but the handles, which differ per instance.
    std::vector<std::pair<std::string, Variant>> Properties(Site& site) {
        std::vector<std::pair<std::string, Variant>> values;
        for (const MemberInfo& m : site.Class().members)
            if (m.kind == MemberInfo::Kind::Property && m.name != "HDC" && m.name != "hwnd")
                values.emplace_back(m.name, m.get(site.GetControl()));
        const auto& button = dynamic_cast<FlatButton&>(site.GetControl());
        values.emplace_back("(enabled)", Variant(button.Enabled()));
        values.emplace_back("(access key)", Variant(button.AccessKey()));
        return values;
    }
    std::vector<std::string> Differences(Site& a, Site& b) {
        std::vector<std::string> names;
        const auto va = Properties(a), vb = Properties(b);
        for (std::size_t i = 0; i < va.size(); ++i)
            if (!SameValue(va[i].second, vb[i].second))
                names.push_back(va[i].first + ": " + DisplayText(va[i].second) + " vs " + DisplayText(vb[i].second));
        return names;
    }

    static int Occurrences(const std::string& text, const std::string& line) {
        int n = 0;
        for (std::size_t at = text.find(line); at != std::string::npos; at = text.find(line, at + 1)) ++n;
        return n;
    }

    platform::sim::SimPlatform platform;
    HostContext context{&platform};
    Container form{context};
    std::filesystem::path dir = std::filesystem::path(KORVEX_BINARY_DIR) / "flat_button_test";
};

// ---------------------------------------------------------------------------------------------
// Member table and persistence

TEST_F(FlatButtonTest, MemberTableFollowsTheInterface) {
    const ClassInfo& info = FlatButton::Class();
    EXPECT_EQ(info.progId, "Korvex_Tools.FlatButton");
    std::vector<std::string> members;
    for (const MemberInfo& m : info.members)
        members.push_back(m.name + (m.kind == MemberInfo::Kind::Method ? "()" : m.ReadOnly() ? " (ro)" : ""));
    EXPECT_EQ(members, (std::vector<std::string>{"Caption", "Font", "TextColor", "HoverColor", "BackColor",
                                                 "UseMnemonic", "Default", "Cancel", "FocusRect", "hwnd (ro)",
                                                 "HDC (ro)", "BackFocus (ro)", "sFocus()"}));
    std::vector<std::string> events;
    for (const EventInfo& e : info.events) events.push_back(std::to_string(e.id) + " " + e.name);
    EXPECT_EQ(events, (std::vector<std::string>{"1 Click", "2 MouseDown", "3 MouseUp", "4 MouseMove", "5 KeyDown",
                                                "6 KeyPress", "7 KeyUp"}));
    EXPECT_EQ(info.FindEvent("MouseUp")->params[2].name, "x");
    EXPECT_EQ(info.FindEvent("KeyPress")->params[0].name, "KeyAscii");
}

// The caption's default is the display name, on writing and on reading, so a new button stores
// nothing and a button moved to run mode keeps its name as caption.
TEST_F(FlatButtonTest, NewButtonStoresNothingAndShowsItsName) {
    Site& site = form.Add("Korvex_Tools.FlatButton", kF);
    EXPECT_TRUE(form.SaveBag(site).Empty()) << form.SaveBag(site).ToJson();
    EXPECT_EQ(form.GetProperty(site, "Caption").ToString(), "F");
    EXPECT_EQ(form.GetProperty(site, "TextColor").ToLong(), static_cast<std::int32_t>(0x80000012));
    EXPECT_EQ(form.GetProperty(site, "BackColor").ToLong(), static_cast<std::int32_t>(0x8000000F));
    EXPECT_TRUE(form.GetProperty(site, "UseMnemonic").ToBool());
    form.SwitchMode(true);
    EXPECT_EQ(form.GetProperty(form.Get("F"), "Caption").ToString(), "F");
}

TEST_F(FlatButtonTest, EmptyBagGivesANewButton) {
    Site& created = form.Add("Korvex_Tools.FlatButton", kF);
    const auto fresh = Properties(created);
    form.Remove("F");
    Site& restored = form.Restore("Korvex_Tools.FlatButton", kF, JsonPropertyBag{});
    const auto back = Properties(restored);
    ASSERT_EQ(fresh.size(), back.size());
    for (std::size_t i = 0; i < fresh.size(); ++i)
        EXPECT_TRUE(SameValue(fresh[i].second, back[i].second))
            << fresh[i].first << ": " << DisplayText(fresh[i].second) << " vs " << DisplayText(back[i].second);
}

TEST_F(FlatButtonTest, EveryPropertySurvivesSaveAndRestore) {
    Running();
    Site& site = form.Get("F");
    const auto font = std::make_shared<StdFont>("Arial", 12, true);
    for (const auto& [name, value] : std::vector<std::pair<std::string, Variant>>{
             {"Caption", "&Abbrechen"}, {"Font", Variant(font)}, {"TextColor", 0x00112233},
             {"HoverColor", 0x00FF0000}, {"BackColor", 0x00E0E0E0}, {"UseMnemonic", false}, {"Default", true},
             {"Cancel", true}, {"FocusRect", true}})
        form.LetProperty(site, name, value);
    Button("F").Enabled(false);

    const JsonPropertyBag bag = form.SaveBag(site);
    std::vector<std::string> keys;
    for (const auto& [key, value] : bag.Entries()) keys.push_back(key);
    EXPECT_EQ(keys, (std::vector<std::string>{"Caption", "Font", "Enabled", "TextColor", "HoverColor", "BackColor",
                                              "UseMnemonic", "Default", "Cancel", "FocusRect"}));
    Site& copy = form.Restore("Korvex_Tools.FlatButton", {"Copy", 300, 1200, 1125, 375}, bag);
    EXPECT_EQ(Differences(site, copy), std::vector<std::string>{});
    EXPECT_FALSE(Button("Copy").Enabled());
}

TEST_F(FlatButtonTest, SettersReportTheirChange) {
    Running();
    EXPECT_EQ(Run("set F.Caption \"Ja\"\nset F.Default True\nset F.HoverColor 255\n"),
              "changed F.Caption\nchanged F.Default\nchanged F.HoverColor\n");
}

// ---------------------------------------------------------------------------------------------
// Access letter

TEST_F(FlatButtonTest, AccessLetterSkipsDoubledAmpersandsAndIsUpperCased) {
    Running();
    Site& site = form.Get("F");
    const auto access = [&](const char* caption) {
        form.LetProperty(site, "Caption", caption);
        return Button("F").AccessKey();
    };
    EXPECT_EQ(access("&&a"), 0);
    EXPECT_EQ(access("&yes"), 89);
    EXPECT_EQ(access("a&&b&c"), 'C');
    EXPECT_EQ(access("OK"), 0);
    EXPECT_EQ(access("Abbruch&"), 0) << "a trailing ampersand names no letter";
    EXPECT_EQ(access("&über"), 0xDC) << "upper-cased as the host does for the first 256 characters";
    EXPECT_EQ(Button("F").DisplayCaption(), "über");
    access("a&&b&c");
    EXPECT_EQ(Button("F").DisplayCaption(), "a&bc");

    form.LetProperty(site, "UseMnemonic", false);
    EXPECT_EQ(Button("F").AccessKey(), 0);
    EXPECT_EQ(Button("F").DisplayCaption(), "a&&b&c");
    form.LetProperty(site, "UseMnemonic", true);
    EXPECT_EQ(Button("F").AccessKey(), 'C');
}

// ---------------------------------------------------------------------------------------------
// Mouse

TEST_F(FlatButtonTest, ClickRaisesDownUpThenClick) {
    Running();
    EXPECT_EQ(Run("move F 10 10\nwait 20\nclick\n"),
              "event F.MouseMove(0, 0, 150, 150)\n"
              "event F.MouseDown(1, 0, 150, 150)\n"
              "event F.MouseUp(1, 0, 150, 150)\n"
              "event F.Click()\n");
    // A right click presses the button all the same.
    EXPECT_EQ(Run("click right\n"),
              "event F.MouseDown(2, 0, 150, 150)\n"
              "event F.MouseUp(2, 0, 150, 150)\n"
              "event F.Click()\n");
}

// Step table: press inside, leave (the poll clears the pressed look), release outside.
TEST_F(FlatButtonTest, ReleaseOutsideRaisesNoClick) {
    Running();
    EXPECT_EQ(Run("move F 10 10\nwait 20\ndown\nmove 300 200\nwait 20\nup\n"),
              "event F.MouseMove(0, 0, 150, 150)\n"
              "event F.MouseDown(1, 0, 150, 150)\n"
              "event F.MouseMove(1, 0, 4200, 2700)\n"
              "event F.MouseUp(1, 0, 4200, 2700)\n");
    EXPECT_EQ(Button("F").CurrentLook(), FlatButton::Look::Normal);
}

// Coming back while still held presses the button again, and the release clicks.
TEST_F(FlatButtonTest, ReturningWhileHeldClicksAgain) {
    Running();
    const std::string out = Run("move F 10 10\nwait 20\ndown\nmove 300 200\nwait 20\nmove F 20 10\nwait 20\nup\n");
    EXPECT_EQ(out.substr(out.rfind("event F.MouseMove")),
              "event F.MouseMove(1, 0, 300, 150)\n"
              "event F.MouseUp(1, 0, 300, 150)\n"
              "event F.Click()\n");
}

TEST_F(FlatButtonTest, PressTakesTheFocusAndFocusRectShowsIt) {
    Running();
    Run("set F.FocusRect True\nmove F 10 10\nwait 20\nclick\n");
    EXPECT_TRUE(form.GetProperty(form.Get("F"), "BackFocus").ToBool());
    Run("focus G\n");
    EXPECT_FALSE(form.GetProperty(form.Get("F"), "BackFocus").ToBool());
    EXPECT_FALSE(form.GetProperty(form.Get("G"), "BackFocus").ToBool()) << "G has no FocusRect";
    Run("call G.sFocus\n");
    EXPECT_TRUE(form.GetProperty(form.Get("G"), "BackFocus").ToBool());
}

// ---------------------------------------------------------------------------------------------
// Keyboard

TEST_F(FlatButtonTest, EnterOnTheFocusedButtonClicksBetweenItsKeyEvents) {
    Running();
    EXPECT_EQ(Run("focus F\nkey down enter\nkey press 13\nkey up enter\nkey down 65 shift=1\n"),
              "event F.MouseDown(1, 0, 0, 0)\n"
              "event F.KeyDown(13, 0)\n"
              "event F.KeyPress(13)\n"
              "event F.MouseUp(1, 0, 0, 0)\n"
              "event F.Click()\n"
              "event F.KeyUp(13, 0)\n"
              "event F.KeyDown(65, 1)\n");
}

// A firing holds the button 100 ms while the poll's own ticks are dropped. Escape on a Cancel
// button fires once however long it is held, and again after a release.
TEST_F(FlatButtonTest, EscapeFiresTheCancelButtonOncePerPress) {
    Running();
    Run("set G.Cancel True\n");
    const std::string fired =
        "event G.MouseDown(1, 0, 1, 1)\n"
        "event G.MouseUp(1, 0, 1, 1)\n"
        "event G.Click()\n";
    EXPECT_EQ(Run("key down escape\nwait 400\nkey up escape\nwait 20\n"), fired);
    EXPECT_EQ(Run("key down escape\nwait 30\n"), fired);
    EXPECT_EQ(Run("wait 200\nkey up escape\nwait 50\n"), "");
}

// A disabled or hidden Cancel button does not answer Escape.
TEST_F(FlatButtonTest, DisabledOrHiddenButtonIgnoresTheKeys) {
    Running();
    Run("set G.Cancel True\nset G.Enabled False\n");
    EXPECT_EQ(Run("key down escape\nwait 50\nkey up escape\nwait 20\n"), "");
    Run("set G.Enabled True\nset G.Visible False\n");
    EXPECT_EQ(Run("key down escape\nwait 50\nkey up escape\nwait 20\n"), "");
}

// Both presses of a double click press the button; each release clicks.
TEST_F(FlatButtonTest, DoubleClickClicksTwice) {
    Running();
    const std::string out = Run("move F 10 10\nwait 20\ndblclick\n");
    std::size_t clicks = 0;
    for (std::size_t at = out.find("F.Click()"); at != std::string::npos; at = out.find("F.Click()", at + 1)) ++clicks;
    EXPECT_EQ(clicks, 2u) << out;
}

// Enter on a Default button fires on every tick it is held: ticks at 10 ms, each firing takes
// 100 ms and the ticks inside it are dropped, so 250 ms hold ticks at +10, +120 and +230.
TEST_F(FlatButtonTest, EnterFiresTheDefaultButtonOnEveryTickItIsHeld) {
    Running();
    Run("set F.Default True\n");
    const std::string out = Run("key down enter\nwait 250\nkey up enter\nwait 50\n");
    EXPECT_EQ(Occurrences(out, "event F.Click()"), 3) << out;
    EXPECT_EQ(Occurrences(out, "event F.MouseDown(1, 0, 1, 1)"), 3);
    EXPECT_EQ(Occurrences(out, "event G."), 0);
    EXPECT_EQ(out.substr(0, out.find("event F.Click()")),
              "event F.MouseDown(1, 0, 1, 1)\nevent F.MouseUp(1, 0, 1, 1)\n");
}

TEST_F(FlatButtonTest, AltWithTheAccessLetterFires) {
    Running();
    Run("set G.Caption \"&Nein\"\n");
    EXPECT_EQ(Run("key down alt\nkey down 78\nwait 10\nkey up 78\nkey up alt\nwait 20\n"),
              "event G.MouseDown(1, 0, 1, 1)\n"
              "event G.MouseUp(1, 0, 1, 1)\n"
              "event G.Click()\n");
    // The letter alone, Alt with another letter, or the letter without mnemonics: nothing.
    EXPECT_EQ(Run("key down 78\nwait 30\nkey up 78\nkey down alt\nkey down 74\nwait 30\nkey up 74\nkey up alt\n"),
              "");
    EXPECT_EQ(Run("set G.UseMnemonic False\nkey down alt\nkey down 78\nwait 30\nkey up 78\nkey up alt\n"),
              "changed G.UseMnemonic\n");
}

TEST_F(FlatButtonTest, DesignModePollStopsAndNeverHovers) {
    form.Add("Korvex_Tools.FlatButton", kF);
    form.Show();
    const Shot before = Pixels("F");
    EXPECT_EQ(Run("set F.Cancel True\nset F.Default True\nmove F\nkey down escape\nkey down enter\nwait 100\n"),
              "changed F.Cancel\nchanged F.Default\nevent F.MouseMove(0, 0, 555, 180)\n");
    EXPECT_EQ(platform.driver().NextDue(), -1) << "the poll stopped itself";
    EXPECT_EQ(Pixels("F").bits, before.bits);
}

// ---------------------------------------------------------------------------------------------
// Pixels

// The normal look: a thin ring whose corners are cut by one pixel each way, so it looks rounded.
TEST_F(FlatButtonTest, NormalLookIsARingWithOpenCorners) {
    Running();
    const Shot shot = Pixels("F");
    ASSERT_EQ(shot.width, kW);
    EXPECT_EQ(shot.Corners({{kRing, '#'}, {kFace, '.'}}),
              (std::vector<std::string>{
                  "..## ##..",
                  ".#.. ..#.",
                  "#... ...#",
                  "#... ...#",
                  ".#.. ..#.",
                  "..## ##..",
              }));
    for (int x = 2; x < kW - 2; ++x) {
        ASSERT_EQ(shot.at(x, 0), kRing) << x;
        ASSERT_EQ(shot.at(x, kH - 1), kRing) << x;
    }
    for (int y = 2; y < kH - 2; ++y) {
        ASSERT_EQ(shot.at(0, y), kRing) << y;
        ASSERT_EQ(shot.at(kW - 1, y), kRing) << y;
    }
    EXPECT_EQ(shot.Count(0xFF0000), 0) << "the unused colours of the ring never show";
}

TEST_F(FlatButtonTest, HoverLooksRaisedAndPressedSunken) {
    Running();
    const std::map<std::uint32_t, char> legend{{kLight, 'L'}, {kDark, 'D'}, {kWhite, 'W'}, {kFace, '.'}};
    Run("move F\nwait 20\n");
    EXPECT_EQ(Button("F").CurrentLook(), FlatButton::Look::Hover);
    EXPECT_EQ(Pixels("F").Corners(legend), (std::vector<std::string>{
                                               "LLLL LLLD",
                                               "LWWW WW.D",
                                               "LW.. ...D",
                                               "LW.. ...D",
                                               "L... ...D",
                                               "DDDD DDDD",
                                           }));
    Run("down\n");
    EXPECT_EQ(Button("F").CurrentLook(), FlatButton::Look::Pressed);
    EXPECT_EQ(Pixels("F").Corners(legend), (std::vector<std::string>{
                                               "DDDD DDDL",
                                               "D... ..WL",
                                               "D... ..WL",
                                               "D... ..WL",
                                               "DWWW WWWL",
                                               "LLLL LLLL",
                                           }));
    Run("up\n");
    EXPECT_EQ(Button("F").CurrentLook(), FlatButton::Look::Hover);
}

TEST_F(FlatButtonTest, CaptionIsCentredAndPressedMovesItByOnePixel) {
    Running();
    Run("set F.Caption \"OK\"\n");
    const std::vector<int> normal = Pixels("F").Box(kBlack);
    ASSERT_GE(normal[0], 0);
    // Centred within a pixel each way.
    EXPECT_LE(std::abs(normal[0] - (kW - 1 - normal[2])), 1) << normal[0] << " " << normal[2];
    EXPECT_LE(std::abs(normal[1] - (kH - 1 - normal[3])), 3) << normal[1] << " " << normal[3];
    Run("focus F\nkey down enter\n");
    EXPECT_EQ(Pixels("F").Box(kBlack), (std::vector<int>{normal[0] + 1, normal[1] + 1, normal[2] + 1, normal[3] + 1}));
    Run("key up enter\n");
    EXPECT_EQ(Pixels("F").Box(kBlack), normal);
}

TEST_F(FlatButtonTest, CaptionTakesTheHoverColourWhileThePointerIsOver) {
    Running();
    Run("set F.Caption \"Ja\"\nset F.HoverColor &HFF&\n");
    constexpr std::uint32_t kRed = 0xFF0000;
    EXPECT_EQ(Pixels("F").Count(kRed), 0);
    Run("move F\nwait 20\n");
    const Shot hover = Pixels("F");
    EXPECT_GT(hover.Count(kRed), 0);
    EXPECT_EQ(hover.Box(kBlack)[0], -1) << "no caption pixel keeps the text colour";
    Run("down\n");
    EXPECT_EQ(Pixels("F").Count(kRed), hover.Count(kRed)) << "pressed under the pointer: still the hover colour";
    Run("up\nmove 400 300\nwait 20\n");
    EXPECT_EQ(Pixels("F").Count(kRed), 0);
    EXPECT_GE(Pixels("F").Box(kBlack)[0], 0);
}

// The access letter is written without its "&" and underlined: the only pixels that differ
// from the plain caption lie on one row under the letter.
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
    EXPECT_EQ(*std::min_element(rows.begin(), rows.end()), *std::max_element(rows.begin(), rows.end()));
    const std::vector<int> glyphs = plain.Box(kBlack);
    EXPECT_GT(rows[0], glyphs[1] + 4) << "below the letters' tops";
    EXPECT_GE(*std::min_element(columns.begin(), columns.end()), glyphs[0] - 1) << "starts at the J";
    EXPECT_LT(*std::max_element(columns.begin(), columns.end()), (glyphs[0] + glyphs[2]) / 2 + 2)
        << "and ends before the a";
}

// The focus indication: a dotted rectangle three pixels inside the edge, every other pixel.
TEST_F(FlatButtonTest, FocusIndicationIsADottedRectangle) {
    Running();
    Run("set F.Caption \"\"\nset F.FocusRect True\nfocus F\n");
    const Shot shot = Pixels("F");
    std::string top, left;
    for (int x = 2; x < 10; ++x) top += shot.at(x, 3) == kBlack ? '#' : '.';
    for (int y = 2; y < 10; ++y) left += shot.at(3, y) == kBlack ? '#' : '.';
    EXPECT_EQ(top, ".#.#.#.#");
    EXPECT_EQ(left, ".#.#.#.#");
    EXPECT_EQ(shot.Box(kBlack), (std::vector<int>{3, 3, kW - 4, kH - 4}));
    Run("focus G\n");
    EXPECT_EQ(Pixels("F").Box(kBlack)[0], -1);
}

}  // namespace
}  // namespace korvex::test
