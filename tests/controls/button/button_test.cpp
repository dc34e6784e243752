// Button: member table and persistence, the event sessions of push, switch and group buttons on
// the virtual clock, and the looks they leave (frames, gradient, focus, images, layout).

#include <cmath>

#include "fixture.hpp"
#include "foundation/images.hpp"
#include "platform/sim/sim_gdi.hpp"
#include "support/error_of.hpp"

namespace korvex::test {
namespace {

using controls::Button;

TEST_F(ButtonsTest, MemberTableIsInSlotOrder) {
    const host::ClassInfo& info = Button::Class();
    EXPECT_EQ(info.progId, "Korvex_Tools.Button");
    EXPECT_EQ(
        Members(info),
        "ShowAboutBox NotFrmFocus DrawRectB Refresh PlaySound EndPlaySound PictureUp PictureDown "
        "PictureOver EnabledB OptionMode Value IconSize BorderStyle Gradient ButtonShow "
        "TextAlignment BackColorB ButtonColor Caption Font3D FontColor FontShadowColor ToolTip "
        "ToolTipText FocusRect Font MouseIcon MousePointer Switched(ro) HDC(ro) hwnd(ro) "
        "HasDC(ro) ");
    EXPECT_EQ(Events(info),
              "1Click 2MouseDown 3MouseMove 4MouseUp 5KeyDown 6KeyPress 7KeyUp 8Group ");
    EXPECT_EQ(info.FindEvent("MouseUp")->params.size(), 4u);
    const host::EnumInfo* images = info.FindEnum("EnumButton");
    ASSERT_EQ(images->members.size(), 52u);
    for (std::int32_t value : {0, 21, 42, 50, 51})
        EXPECT_EQ(images->members[static_cast<std::size_t>(value)].second, value);
    EXPECT_EQ(images->members[21].first, "btnOK");
    EXPECT_EQ(images->members[42].first, "CheckBox");
    EXPECT_EQ(images->members[51].first, "pOff");
    EXPECT_EQ(info.FindEnum("MousePointerConst")->members.back().first, "bMouseIcon");
}

// clang-format off
const std::vector<std::pair<const char*, Variant>> kDefaults = {
    {"Caption", "Caption"}, {"ToolTipText", "Quick-Info"}, {"ButtonShow", 21}, {"BorderStyle", 2},
    {"TextAlignment", 2}, {"ButtonColor", 0x8000000FU}, {"BackColorB", 0x8000000FU}, {"FontShadowColor", 0x00FFFFFF},
    {"FontColor", 0}, {"Gradient", true}, {"ToolTip", true}, {"EnabledB", true}, {"MousePointer", 0},
    {"OptionMode", 0}, {"Font3D", 0}, {"Value", false}, {"IconSize", false}, {"FocusRect", false}};
const std::vector<std::pair<const char*, Variant>> kChanges = {
    {"OptionMode", 2}, {"IconSize", true}, {"BorderStyle", 5}, {"Gradient", false}, {"ButtonShow", 24},
    {"TextAlignment", 3}, {"BackColorB", 0x00102030}, {"ButtonColor", 0x00C0FFEE}, {"Caption", "Drucken"},
    {"Font3D", 3}, {"FontColor", 0x000000FF}, {"FontShadowColor", 0x00FF0000}, {"ToolTip", false},
    {"ToolTipText", "Drucken"}, {"FocusRect", true}, {"MousePointer", 11}, {"EnabledB", false}};
// clang-format on

// A new button stores nothing and one restored from an empty bag is the same button; every key
// keeps its order and its kind, and a changed button survives a save and restore.
TEST_F(ButtonsTest, PersistsInOrderWithItsKindsAndRoundTrips) {
    Add();
    EXPECT_TRUE(Keys("B").empty());
    for (const auto& [name, value] : kDefaults)
        EXPECT_EQ(host::DisplayText(Read("B", name)), host::DisplayText(value)) << name;

    const auto& changes = kChanges;
    for (const auto& [name, value] : changes) Let("B", name, value);
    EXPECT_EQ(ErrorOf([&] { Let("B", "MousePointer", 50); }), 380);
    EXPECT_EQ(Keys("B"),
              (std::vector<std::string>{
                  "EnabledB Boolean", "OptionMode Long", "IconSize Boolean", "BorderStyle Long",
                  "Gradient Boolean", "ButtonShow Long", "TextAlignment Long", "BackColorB Long",
                  "ButtonColor Long", "Caption String", "Font3D Long", "FontColor Long",
                  "FontShadowColor Long", "ToolTip Boolean", "ToolTipText String",
                  "FocusRect Boolean", "MousePointer Integer"}));

    form.Restore("Korvex_Tools.Button", {"R", 300, 1200, 1800, 600}, form.SaveBag(form.Get("B")));
    for (const auto& [name, value] : changes) {
        // IconSize is read after EnabledB, and a disabled button does not take a new size.
        const Variant expected = std::string(name) == "IconSize" ? Variant(false) : value;
        EXPECT_EQ(host::DisplayText(Read("R", name)), host::DisplayText(expected)) << name;
    }
    form.Restore("Korvex_Tools.Button", {"E", 300, 2100, 1800, 600}, host::JsonPropertyBag{});
    EXPECT_TRUE(Keys("E").empty());
}

// ---------------------------------------------------------------------------------------------
// Event sessions: each row sets B up, then runs its scripts in turn on the virtual clock.

struct Session {
    const char* name;
    std::vector<std::pair<const char*, Variant>> setup;
    std::vector<std::pair<const char*, const char*>> steps;  // script, what it prints (Brief)
};

// clang-format off
const std::vector<Session> kSessions = {
    {"push button: down, Click, up; Value stays True and setting it only stores it", {},
     {{"move B 5 5\nclick\nget B.Value\n",
       "MouseMove(0, 0, 4, 4); MouseDown(1, 0, 4, 4); changed Value; Click(); MouseUp(1, 0, 4, 4); Value = True"},
      {"set B.Value False\nget B.Value\n", "changed Value; Value = False"}}},
    {"double click: the second press is a press at the last position", {},
     {{"move B 5 5\ndblclick\n", "MouseMove(0, 0, 4, 4); MouseDown(1, 0, 4, 4); changed Value; Click(); "
       "MouseUp(1, 0, 4, 4); MouseDown(1, 0, 4, 4); changed Value; Click(); MouseUp(1, 0, 4, 4)"}}},
    {"switch: latches without MouseUp, comes out with it", {{"OptionMode", 1}},
     {{"move B 5 5\nclick\nget B.Value\nget B.Switched\n",
       "MouseMove(0, 0, 4, 4); MouseDown(1, 0, 4, 4); changed Value; Click(); Value = True; Switched = 1"},
      {"wait 600\nclick\nget B.Value\nget B.Switched\n",
       "MouseDown(1, 0, 4, 4); changed Value; Click(); MouseUp(1, 0, 4, 4); Value = False; Switched = 0"}}},
    {"switch latched by the right button keeps that side", {{"OptionMode", 1}},
     {{"move B 5 5\nclick right\nget B.Switched\n",
       "MouseMove(0, 0, 4, 4); MouseDown(2, 0, 4, 4); changed Value; Click(); Switched = 2"},
      {"wait 600\ndown left\nget B.Switched\n", "MouseDown(1, 0, 4, 4); Switched = 2"}}},
    {"group button: Group first, reports once while latched, again after a release", {{"OptionMode", 2}},
     {{"move B 5 5\nclick\n", "MouseMove(0, 0, 4, 4); Group(); MouseDown(1, 0, 4, 4); changed Value; Click()"},
      {"wait 600\nclick\nwait 600\nclick\nget B.Value\n",
       "MouseDown(1, 0, 4, 4); MouseDown(1, 0, 4, 4); Value = True"},
      {"set B.Value False\nwait 600\nclick\n",
       "changed Value; Group(); MouseDown(1, 0, 4, 4); changed Value; Click()"}}},
    {"Value latches a switch silently and releases it to bFalse", {{"OptionMode", 1}},
     {{"click right\nset B.Value True\n", "changed Value"},
      {"set B.Value False\nget B.Switched\n", "changed Value; Switched = 0"}}},
    {"Value on a group button: Group on latching; a second True while latched releases it", {{"OptionMode", 2}},
     {{"set B.Value True\nset B.Value True\nset B.Value True\n",
       "changed Value; Group(); changed Value; changed Value; Group()"}}},
    {"disabled: Value stored without latching, the face takes no input", {{"OptionMode", 2}, {"EnabledB", false}},
     {{"set B.Value True\nmove B\nclick\nget B.Value\n", "changed Value; Value = True"}}},
    {"Enter and space do not press without FocusRect", {},
     {{"focus B\nkey down enter\nkey up enter\nkey down space\nkey up space\n",
       "KeyDown(13, 0); KeyUp(13, 0); KeyDown(32, 0); KeyUp(32, 0)"}}},
    {"Enter presses with FocusRect, around the key events", {{"FocusRect", true}},
     {{"focus B\nkey down enter\nkey press 13\nkey up enter\n", "MouseDown(1, 0, 0, 0); KeyDown(13, 0); "
       "KeyPress(13); changed Value; Click(); MouseUp(1, 0, 0, 0); KeyUp(13, 0)"}}},
};
// clang-format on

TEST_F(ButtonsTest, EventSessions) {
    for (const Session& session : kSessions) {
        SCOPED_TRACE(session.name);
        Add();
        Add("Other", 300, 1200);
        for (const auto& [name, value] : session.setup) Let("B", name, value);
        for (const auto& [script, expected] : session.steps)
            EXPECT_EQ(Brief(script), expected) << script;
        form.Remove("B");
        form.Remove("Other");
        Run("up\nup right\nmove 5 5\nwait 600\n");
    }
}

// ---------------------------------------------------------------------------------------------
// Looks. A grey plain button (no image, no caption) on green: face 0x80, light and gradient
// top 0xA8 (+40), gradient bottom 0x62 (-30), dark 0x1C (-100).

class ButtonLookTest : public ButtonsTest {
  protected:
    Button& AddPlain(int style, std::int32_t colour = 0x00808080) {
        Button& b = Add();
        // clang-format off
        for (const auto& [name, value] : std::vector<std::pair<const char*, Variant>>{
                 {"ButtonShow", 51}, {"TextAlignment", 0}, {"BorderStyle", style}, {"ButtonColor", colour},
                 {"BackColorB", 0x0000FF00}})
            Let("B", name, value);
        // clang-format on
        return b;
    }
};

constexpr std::uint32_t kGreen = 0x00FF00, kLight = 0xA8A8A8, kDark = 0x1C1C1C;

struct FramePixel {
    int style;
    std::vector<std::pair<const char*, Variant>> setup;
    const char* script;
    int x, y;
    std::uint32_t expected;
};

TEST_F(ButtonLookTest, FramesOfEachStyleAndLook) {
    // clang-format off
    const std::vector<FramePixel> rows = {
        {2, {}, "", 0, 20, kLight},  // Flat: raised, light on the left
        {2, {}, "", 119, 20, kDark},
        {2, {}, "move B\ndown\n", 0, 20, kDark},  // and sunken when down
        {2, {}, "move B\ndown\n", 119, 20, kLight},
        {2, {{"ButtonColor", 0x00FFFFFF}}, "", 0, 20, 0xFFFFFF},  // white: light clamps
        {2, {{"ButtonColor", 0x00FFFFFF}}, "", 119, 20, 0x9B9B9B},
        {1, {}, "", 0, 20, kGreen},  // Cool rests without a frame, shows one on hover
        {1, {}, "move B\nwait 100\n", 0, 20, kLight},
        {1, {}, "move B\nwait 100\nmove 5 5\nwait 100\n", 0, 20, kGreen},
        {6, {}, "move B\nwait 100\nmove 5 5\nwait 100\n", 0, 20, kGreen},
        {5, {}, "", 1, 20, kLight},
        {5, {}, "move B\nwait 100\n", 1, 20, 0xF8B230},  // the hot XPStyle frame
        {5, {}, "move B\nwait 100\nmove 5 5\nwait 100\n", 1, 20, kLight},
        {5, {{"OptionMode", 1}}, "set B.Value True\nmove B\nwait 100\nset B.Value False\n", 1, 20, kLight},
        {5, {{"EnabledB", false}}, "", 0, 20, 0xC4C3BF},
        {5, {{"EnabledB", false}}, "", 1, 20, 0xF1F1ED},
        {7, {{"OptionMode", 1}}, "move B\nwait 100\n", 0, 0, kGreen},  // XPflat: never a frame
        {7, {{"OptionMode", 1}}, "move B\nclick\n", 0, 0, kGreen},
    };
    // clang-format on
    for (const FramePixel& row : rows) {
        SCOPED_TRACE(::testing::Message() << "style " << row.style << " after \"" << row.script
                                          << "\" at " << row.x << "," << row.y);
        AddPlain(row.style);
        for (const auto& [name, value] : row.setup) Let("B", name, value);
        Run(row.script);
        EXPECT_EQ(Pixels().at(row.x, row.y), row.expected);
        form.Remove("B");
        Run("up\nmove 5 5\nwait 600\n");
    }
}

// The Flat face (at 1, 1, 38 rows) runs from the top colour down: face row 0 keeps the top
// colour, row 1 + k is 0xA8 + k × (0x62 − 0xA8) / 38, rounded.
TEST_F(ButtonLookTest, GradientRunsFromTopToBottomColour) {
    AddPlain(2);
    const Shot shot = Pixels();
    for (const auto& [faceRow, grey] : std::vector<std::pair<int, std::uint32_t>>{
             {0, 0xA8}, {1, 0xA8}, {2, 0xA6}, {19, 0x87}, {37, 0x66}})
        EXPECT_EQ(shot.at(60, 1 + faceRow), grey * 0x010101u) << "face row " << faceRow;
    for (int row = 1; row < 38; ++row) EXPECT_LE(shot.at(60, 1 + row), shot.at(60, row)) << row;
}

// The XP down look is the normal gradient upside down (the XPStyle face: at 2, 3, 34 rows).
TEST_F(ButtonLookTest, DownLookTurnsTheGradient) {
    AddPlain(5);
    const Shot normal = Pixels();
    Run("move B\ndown\n");
    const Shot down = Pixels();
    EXPECT_EQ(down.at(10, 3 + 33), kLight);
    EXPECT_EQ(down.at(10, 3), 0x646464u);
    for (int row = 1; row < 34; ++row)
        EXPECT_EQ(down.at(10, 3 + row), normal.at(10, 3 + 34 - row)) << row;

    platform::sim::SimGdi gdi;
    const platform::HDC dc = gdi.CreateCompatibleDC({});
    gdi.SelectObject(dc, gdi.CreateDIBSection32(4, 4));
    controls::FillGradient(gdi, dc, {0, 0, 4, 0}, 0x00FFFFFF, 0, 1);  // no rows
    controls::FillGradient(gdi, dc, {0, 0, 4, 4}, 0x00FFFFFF, 0, 3);  // no such direction
    for (int y = 0; y < 4; ++y) EXPECT_EQ(gdi.GetPixel(dc, 1, y), 0u) << y;
}

// The dotted rectangle inverts pixels on the outline only, every other one, and goes again
// with the focus or with NotFrmFocus.
TEST_F(ButtonLookTest, FocusRectangleInvertsTheDottedPixels) {
    AddPlain(2);
    Add("Other", 300, 1200);
    Let("B", "FocusRect", true);
    const Shot before = Pixels();
    Run("focus B\nwait 20\n");
    const Shot focused = Pixels();
    // The face at (1, 1), 118 x 38: the rectangle runs from face (1, 1) to (116, 36).
    const auto onOutline = [](int x, int y) {
        return (x >= 2 && x <= 117 && (y == 2 || y == 37)) ||
               (y >= 2 && y <= 37 && (x == 2 || x == 117));
    };
    for (int y = 0; y < before.height; ++y)
        for (int x = 0; x < before.width; ++x) {
            if (focused.at(x, y) == before.at(x, y)) continue;
            EXPECT_TRUE(onOutline(x, y)) << x << "," << y;
            EXPECT_EQ(focused.at(x, y), before.at(x, y) ^ 0xFFFFFFu) << x << "," << y;
        }
    // Dots, not a line: short runs with gaps, about half of each side.
    int changed = 0, run = 0, longest = 0;
    for (int x = 2; x <= 117; ++x) {
        run = focused.at(x, 2) != before.at(x, 2) ? run + 1 : 0;
        changed += run > 0;
        longest = std::max(longest, run);
    }
    EXPECT_TRUE(changed > 116 / 3 && changed < 116 * 2 / 3 && longest > 0 && longest <= 3)
        << changed << " " << longest;
    Run("focus Other\n");
    EXPECT_EQ(Pixels().bits, before.bits);
    Run("focus B\nwait 20\ncall B.NotFrmFocus True\n");
    EXPECT_EQ(Pixels().bits, before.bits);
}

TEST_F(ButtonsTest, ImageFollowsTheLookSizeAndSide) {
    Button& b = Add();
    struct Step {
        const char* script;
        std::int32_t group, size;  // group 0: no image shown
    };
    // clang-format off
    const std::vector<Step> steps = {
        {"", 21, 16}, {"set B.IconSize True\n", 21, 32}, {"move B\nwait 100\n", 121, 32}, {"down\n", 221, 32},
        {"up\nmove 5 5\nwait 100\nset B.ButtonShow 41\n", 41, 16},  // btnX has no 32-pixel form
        {"set B.ButtonShow 47\n", 47, 16},
        {"set B.ButtonShow 42\nset B.OptionMode 1\nmove B\nclick right\n", 242, 14},  // checked, right
        {"wait 600\nclick\nwait 600\nclick\n", 142, 14},                             // checked, left
        {"set B.ButtonShow 44\nwait 600\nclick\nwait 100\n", 44, 11},                // an LED stays dark on hover
        {"wait 600\nclick\n", 244, 11},                                              // and lights when latched
        {"set B.ButtonShow 51\n", 0, 0}, {"wait 600\nclick\n", 0, 0}, {"move 5 5\nwait 100\n", 0, 0}};
    // clang-format on
    for (const Step& step : steps) {
        Run(step.script);
        if (step.group == 0) {
            EXPECT_FALSE(b.FaceImage().Visible()) << step.script;
            continue;
        }
        const auto expected = foundation::LoadResImage(step.group, step.size, foundation::LR_COLOR);
        const auto shown = b.FaceImage().Picture();
        EXPECT_TRUE(b.FaceImage().Visible() && shown && expected && shown->SameContent(*expected))
            << step.script << " should show " << step.group << " at " << step.size;
    }
}

// A disabled XPStyle button embosses its image on 0x00EDF1F1 whatever its face colour: the
// border ring and every pixel whose diagonal neighbour matches it take the base colour.
TEST_F(ButtonsTest, DisabledXPStyleEmbossesOnItsOwnGrey) {
    Button& b = Add();
    Let("B", "BorderStyle", 5);
    Let("B", "ButtonColor", 0x000000FF);
    Let("B", "EnabledB", false);
    const auto picture = b.FaceImage().Picture();
    ASSERT_TRUE(picture);
    ASSERT_EQ(picture->PixelWidth(), 16);
    constexpr std::uint32_t kBase = 0xF1F1ED;
    const auto source = foundation::ComposeOnColor(*foundation::LoadResImage(21, 16, 2), kBase);
    const auto pixel = [](const std::vector<std::uint32_t>& p, int x, int y) {
        return p[static_cast<std::size_t>(y * 16 + x)] & 0xFFFFFF;
    };
    int lifted = 0;
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x) {
            const bool ring = x == 0 || y == 0 || x == 15 || y == 15;
            if (ring || pixel(source, x, y) == pixel(source, x + 1, y + 1))
                EXPECT_EQ(pixel(picture->Pixels(), x, y), kBase) << x << "," << y;
            else
                ++lifted;
        }
    EXPECT_GT(lifted, 10) << "the outline shows";
    EXPECT_EQ(b.CaptionLabel().ForeColor(), 0x00808080u);
}

TEST_F(ButtonsTest, LayoutKeepsTheMinimumSizeAndCentresTheRow) {
    Button& b = Add("B", 300, 300, 150, 150);
    // tRight with a 16-pixel image: caption width + 16 + 3 wide, 16 + 2 high at least.
    const float caption = b.CaptionLabel().Width();
    EXPECT_EQ(Read("B", "Width").ToLong(), static_cast<std::int32_t>(std::ceil(caption + 19) * 15));
    EXPECT_EQ(Read("B", "Height").ToLong(), 18 * 15);
    // On a wide face image and caption form one centred row; the shadow copy sits up-left.
    Run("set B.Width 3000\nset B.Height 600\n");
    EXPECT_NEAR(b.FaceImage().Left() + 8 + caption / 2, b.Face().ScaleWidth() / 2, 0.01);
    EXPECT_NEAR(b.CaptionLabel().Left(), b.FaceImage().Left() + 16, 0.01);
    EXPECT_NEAR(b.CaptionCopy().Left(), b.CaptionLabel().Left() - 1, 0.01);
    // Pressed, a Flat button's caption moves one pixel right and down; the image stays.
    const float left = b.CaptionLabel().Left(), image = b.FaceImage().Left();
    Run("move B\ndown\n");
    EXPECT_NEAR(b.CaptionLabel().Left(), left + 1, 0.01);
    EXPECT_NEAR(b.FaceImage().Left(), image, 0.01);
    // A bottom caption needs image + caption + 3 rows, and then gets 10 more.
    Run("up\nset B.TextAlignment 3\nset B.Height 300\n");
    EXPECT_EQ(Read("B", "Height").ToLong(),
              static_cast<std::int32_t>(std::lround((b.CaptionLabel().Height() + 16 + 13) * 15)));
}

std::shared_ptr<host::StdPicture> Solid(int width, int height, std::uint32_t rgb) {
    return std::make_shared<host::StdPicture>(
        host::PictureType::Bitmap, width, height,
        std::vector<std::uint32_t>(static_cast<std::size_t>(width * height), 0xFF000000u | rgb));
}

// Small designer's pictures show per look; a large one becomes the face and the control fits
// round it, until a built-in image is chosen.
TEST_F(ButtonsTest, DesignerPicturesSmallAndLarge) {
    Button& b = Add();
    Let("B", "ButtonShow", 0);
    Let("B", "PictureOver", Solid(16, 16, 0x00FF00));
    Let("B", "PictureUp", Solid(16, 16, 0xFF0000));
    EXPECT_EQ(b.FaceImage().Picture(), b.PictureUp());
    Run("move B\nwait 100\n");
    EXPECT_EQ(b.FaceImage().Picture(), b.PictureOver());
    Run("move 5 5\nwait 100\n");

    Let("B", "PictureUp", Solid(48, 40, 0x0000FF));
    EXPECT_FALSE(b.FaceImage().Visible());
    EXPECT_EQ(Read("B", "Width").ToLong(), 50 * 15);
    EXPECT_EQ(Read("B", "Height").ToLong(), 42 * 15);
    EXPECT_EQ(Pixels().at(1, 1), 0x0000FFu);
    EXPECT_EQ(Pixels().at(48, 40), 0x0000FFu);
    Let("B", "ButtonShow", 21);
    EXPECT_TRUE(b.FaceImage().Visible());
    EXPECT_NE(Pixels().at(1, 1), 0x0000FFu);
}

TEST_F(ButtonsTest, SoundsPlayFromMemoryAndStopOnlyTheirOwn) {
    Button& b = Add();
    for (std::int16_t id : {102, 100, 107}) b.PlaySound(id);
    b.EndPlaySound();
    const auto& requests = platform.sound().Requests();
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(requests[0].flags, 7u);
    EXPECT_EQ(requests[0].image.size(), 17132u) << "the only 16-bit sound, handed over whole";
    EXPECT_TRUE(!requests[1].name && requests[1].image.empty() && requests[1].flags == 0)
        << "stopped";
    // Going away, a button stops only a sound of its own, which may still be read from its buffers.
    Add("Quiet", 300, 1200);
    form.Remove("Quiet");
    EXPECT_EQ(requests.size(), 2u);
    b.PlaySound(101);
    form.Remove("B");
    ASSERT_EQ(requests.size(), 4u);
    EXPECT_TRUE(!requests[3].name && requests[3].image.empty() && requests[3].flags == 0)
        << "stopped";
}

}  // namespace
}  // namespace korvex::test
