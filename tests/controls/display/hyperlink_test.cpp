// Hyperlink: the colour states on the virtual clock, the shell request of a click, the caption
// colour it saves, cursors, self-sizing and sounds.

#include <gmock/gmock.h>

#include "controls/display/hyperlink.hpp"
#include "support/control_fixture.hpp"
#include "support/error_of.hpp"

namespace korvex::test {
namespace {

using controls::Hyperlink;
using controls::MouSymbol;

// The link under test: 160 x 30 pixels at 20, 20 of the form; a second control to move the
// focus to.
const Extender kLink{"H", 300, 300, 160 * 15, 30 * 15};
const Extender kOther{"Other", 300, 1200, 160 * 15, 30 * 15};

// The state colours as composed pixels (0x00RRGGBB).
constexpr std::uint32_t kLinkPixel = 0x0000FF;     // blue
constexpr std::uint32_t kHoverPixel = 0x00FFFF;    // cyan
constexpr std::uint32_t kActivePixel = 0xFF0000;   // red
constexpr std::uint32_t kVisitedPixel = 0x800080;  // purple

class HyperlinkTest : public ControlsTest {
  protected:
    // The one state colour the caption shows; "mixed" or "none" otherwise.
    std::string CaptionState(const Site& site) {
        const Shot shot = Pixels(site.Name().c_str());
        std::string found;
        for (const auto& [pixel, name] :
             std::vector<std::pair<std::uint32_t, const char*>>{{kLinkPixel, "link"},
                                                                {kHoverPixel, "hover"},
                                                                {kActivePixel, "active"},
                                                                {kVisitedPixel, "visited"},
                                                                {0x00FF00, "green"}})
            if (shot.Count(pixel) > 0) found = found.empty() ? name : "mixed";
        return found.empty() ? "none" : found;
    }

    // A new link on the form in run mode, the way a user meets it.
    Site& Running() {
        form.Add("Korvex_Tools.Hyperlink", kLink);
        form.Add("Korvex_Tools.Hyperlink", kOther);
        form.SwitchMode(true);
        return form.Get("H");
    }

    static Hyperlink& Link(Site& site) { return dynamic_cast<Hyperlink&>(site.GetControl()); }
};

// "FontUnderline" is read as a 16-bit integer and written as a Boolean; "MouseSymbol", read
// last, overrides the pointer. "ForeColor" holds the caption's colour when saved, but no reading
// uses it, so a link saved while hovered comes back in its link colour.
TEST_F(HyperlinkTest, SavesTheCaptionColourUnderForeColor) {
    Site& site = form.Restore("Korvex_Tools.Hyperlink", {"Full", 300, 2000, 2400, 450},
                              JsonPropertyBag::FromJson(R"({"FontUnderline": {"Integer": -1},
                                  "MousePointer": {"Integer": 3}, "MouseSymbol": 2})"));
    EXPECT_EQ(form.SaveBag(site).ReadProperty("FontUnderline"), Variant(true));
    EXPECT_EQ(form.GetProperty(site, "MousePointer").ToLong(), 99);

    Site& link = Running();
    Run("move H\nwait 50\n");
    ASSERT_EQ(CaptionState(link), "hover");
    const JsonPropertyBag saved = form.SaveBag(link);
    EXPECT_EQ(saved.ReadProperty("ForeColor").ToLong(), 0x00FFFF00);
    Site& copy = form.Restore("Korvex_Tools.Hyperlink", {"Copy", 300, 2000, 2400, 450}, saved);
    EXPECT_EQ(Link(copy).CaptionColor(), 0x00FF0000u);
}

TEST_F(HyperlinkTest, ClickedAndRefreshAreNotForTheDesigner) {
    Site& site = form.Add("Korvex_Tools.Hyperlink", kLink);
    EXPECT_EQ(Run("set H.Clicked True\nset H.LinkColor 65280\ncall H.Refresh\nget H.Clicked\n"),
              "error 387: Property can't be set in this mode\n"
              "changed H.LinkColor\n"
              "error 387: Property can't be set in this mode\n"
              "H.Clicked = False\n");
    EXPECT_EQ(Link(site).CaptionColor(), 0x0000FF00u) << "Refresh recolours before it fails";
    // No hover poll, and no link opening, in the designer.
    EXPECT_EQ(Run("set H.LinkColor &HFF0000\nmove H 10 15\nwait 200\nclick\n"),
              "changed H.LinkColor\nevent H.Hover(0, 0, 150, 90)\nevent H.Click()\n");
    EXPECT_EQ(Link(site).CaptionColor(), 0x0000FF00u);
    EXPECT_TRUE(platform.shell().Requests().empty());
}

// The colour steps of a running link, as a user drives it: the hover poll colours an unclicked
// link only; a click opens Url with the shell and turns the link active; focus moves between
// active and visited; a release beside the caption shows visited; Refresh starts over, and the
// resting pointer, like a new HoverColor, counts only once it moves.
TEST_F(HyperlinkTest, ColoursFollowHoverClickFocusAndRefresh) {
    Site& site = Running();
    form.LetProperty(site, "Url", "http://korvex.example/hilfe");
    EXPECT_EQ(CaptionState(site), "link");
    const struct {
        const char* script;
        const char* printed;  // nullptr: not checked
        const char* state;
    } steps[] = {
        {"move H 10 15\nwait 50\n", "event H.Hover(0, 0, 150, 90)\n", "hover"},
        {"move 600 600\nwait 50\n", "", "link"},
        {"move H 10 15\nwait 50\nclick\n",
         "event H.Hover(0, 0, 150, 90)\nevent H.Click()\nchanged H.Clicked\n", "active"},
        {"move 600 600\nwait 50\nmove H 12 15\nwait 50\n", nullptr, "active"},
        {"focus H\nfocus Other\n", "", "visited"},
        {"focus H\n", "", "active"},
        {"move H 150 2\nwait 50\nclick\n", nullptr, "visited"},
        {"call H.Refresh\n", "changed H.Clicked\n", "link"},
        {"wait 200\n", "", "link"},
        {"move H 11 15\nwait 50\n", nullptr, "hover"},
        // A new hover colour shows only once the pointer moves again.
        {"set H.HoverColor 65280\nwait 200\n", nullptr, "hover"},
        {"move H 12 15\nwait 50\n", nullptr, "green"},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(step.script);
        const std::string printed = Run(step.script);
        EXPECT_EQ(step.printed ? std::string(step.printed) : printed, printed);
        EXPECT_EQ(CaptionState(site), step.state);
    }
    ASSERT_EQ(platform.shell().Requests().size(), 1u);
    const platform::sim::ShellRequest& shell = platform.shell().Requests()[0];
    EXPECT_EQ(shell.owner, site.GetControl().SurfaceWindow());
    EXPECT_FALSE(shell.verb.has_value());
    EXPECT_EQ(std::tie(shell.file, shell.parameters, shell.directory, shell.showCommand),
              std::make_tuple(std::string("http://korvex.example/hilfe"), std::string(),
                              std::string("C:\\"), 1));
}

TEST_F(HyperlinkTest, EmptyUrlStillAsksTheShellAndCountsAsVisited) {
    Site& site = Running();
    Run("move H 10 15\nclick\n");
    ASSERT_EQ(platform.shell().Requests().size(), 1u);
    EXPECT_EQ(platform.shell().Requests()[0].file, "");
    EXPECT_TRUE(form.GetProperty(site, "Clicked").ToBool());
}

TEST_F(HyperlinkTest, HandCursorsHaveTheirHotSpotAtTheFingertip) {
    const auto ie = controls::LoadHandCursor(MouSymbol::lHand_IE);
    const auto nc = controls::LoadHandCursor(MouSymbol::lHand_NC);
    EXPECT_FALSE(ie->SameContent(*nc));
    for (const auto& hand : {ie, nc}) {
        ASSERT_EQ(hand->PixelWidth(), 32);
        ASSERT_EQ(hand->PixelHeight(), 32);
        const auto& px = hand->Pixels();
        EXPECT_EQ(px[0] >> 24, 0u) << "transparent background";
        EXPECT_EQ(px[32 * 32 - 1] >> 24, 0u);
        // The topmost, then leftmost, opaque pixel is the tip of the finger.
        const auto first =
            std::find_if(px.begin(), px.end(), [](std::uint32_t p) { return (p >> 24) != 0; });
        const auto index = static_cast<int>(first - px.begin());
        EXPECT_EQ(index % 32, controls::kHandHotSpot.x);
        EXPECT_EQ(index / 32, controls::kHandHotSpot.y);
        EXPECT_EQ(*first, 0xFF000000u) << "a black outline";
    }
}

TEST_F(HyperlinkTest, MouseSymbolChoosesTheCaptionsCursor) {
    Site& site = Running();
    const auto ie = controls::LoadHandCursor(MouSymbol::lHand_IE);
    const auto nc = controls::LoadHandCursor(MouSymbol::lHand_NC);
    EXPECT_EQ(Run("set H.MouseSymbol 1\nget H.MousePointer\n"),
              "changed H.MouseSymbol\nH.MousePointer = 99\n");
    EXPECT_TRUE(form.GetProperty(site, "MouseIcon").ToPicture()->SameContent(*ie));
    Run("move H 10 15\n");
    EXPECT_EQ(platform.windows().CurrentCursor(), 99);
    Run("set H.MouseSymbol 2\n");
    EXPECT_TRUE(form.GetProperty(site, "MouseIcon").ToPicture()->SameContent(*nc));
    Run("set H.MouseSymbol 0\nmove H 11 15\n");
    EXPECT_EQ(form.GetProperty(site, "MousePointer").ToLong(), 1);
    EXPECT_EQ(platform.windows().CurrentCursor(), 1);
}

TEST_F(HyperlinkTest, SelfSizingFitsTheControlToANewCaption) {
    Site& site = form.Add("Korvex_Tools.Hyperlink", kLink);
    const platform::SIZE text = TextSize("Ein längerer Verweis");
    form.LetProperty(site, "Caption", "Ein längerer Verweis");
    // 20 twips round the caption; the window keeps whole pixels (20 twips -> 1 pixel).
    EXPECT_EQ(form.GetProperty(site, "Width").ToLong(), (text.cx + 1) * 15);
    EXPECT_EQ(form.GetProperty(site, "Height").ToLong(), (text.cy + 1) * 15);

    // A caption too long for any control is refused whole: caption and size stay.
    const std::string endless(1'000'000, 'm');
    // 380 where the placement check meets it first, 480 where the surface's bitmap does.
    EXPECT_THAT(ErrorOf([&] { form.LetProperty(site, "Caption", endless); }),
                testing::AnyOf(kErrInvalidPropertyValue, kErrNoPersistentImage));
    // Compared as a truth value: a failure must not print a million characters.
    EXPECT_TRUE(form.GetProperty(site, "Caption").ToString() == "Ein längerer Verweis");
    EXPECT_EQ(form.GetProperty(site, "Width").ToLong(), (text.cx + 1) * 15);

    form.LetProperty(site, "AutoSizeH", false);
    form.LetProperty(site, "Caption", "Kurz");
    EXPECT_EQ(form.GetProperty(site, "Width").ToLong(), (text.cx + 1) * 15);

    // A restored link keeps the size its form gives it.
    Site& restored = form.Restore("Korvex_Tools.Hyperlink", kOther,
                                  JsonPropertyBag::FromJson(R"({"Caption": "Lang genug"})"));
    EXPECT_EQ(form.GetProperty(restored, "Width").ToLong(), kOther.Width);
}

// The methods reach the library's sound player (its rules are the sounds suite's).
TEST_F(HyperlinkTest, SoundMethodsReachThePlayer) {
    Running();
    Run("call H.PlaySound 102\ncall H.EndPlaySound\n");
    const auto& requests = platform.sound().Requests();
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_TRUE(!requests[0].image.empty() && requests[1].image.empty()) << "played, then stopped";
}

}  // namespace
}  // namespace korvex::test
