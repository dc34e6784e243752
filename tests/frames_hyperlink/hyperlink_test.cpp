// Hyperlink: its member table, persistence, the colour states on the virtual clock, the shell
// request of a click, cursors, self-sizing and sounds.

#include <gtest/gtest.h>

#include "base/resources.hpp"
#include "fixture.hpp"
#include "forms/graphics.hpp"

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

class HyperlinkTest : public FormFixture {
protected:
    // The one state colour the caption shows; "mixed" or "none" otherwise.
    std::string CaptionState(const Site& site) {
        const Shot shot = Pixels(site);
        std::string found;
        for (const auto& [pixel, name] : std::vector<std::pair<std::uint32_t, const char*>>{
                 {kLinkPixel, "link"}, {kHoverPixel, "hover"}, {kActivePixel, "active"}, {kVisitedPixel, "visited"}})
            if (shot.Count(pixel) > 0) found = found.empty() ? name : "mixed";
        return found.empty() ? "none" : found;
    }

    // A new link on the form in run mode, the way a user meets it.
    Site& Running() {
        form.Add("Korvex_Tools.Hyperlink", kLink);
        form.Add("Korvex_Tools.Hyperlink", kOther);
        form.SwitchMode(true);
        form.Show();
        return form.Get("H");
    }

    static Hyperlink& Link(Site& site) { return dynamic_cast<Hyperlink&>(site.GetControl()); }
};

TEST_F(HyperlinkTest, MemberTableFollowsTheInterface) {
    const ClassInfo& info = Hyperlink::Class();
    EXPECT_EQ(info.progId, "Korvex_Tools.Hyperlink");
    std::vector<std::string> names;
    for (const MemberInfo& m : info.members) names.push_back(m.name + ":" + std::to_string(m.dispId));
    EXPECT_EQ(names, (std::vector<std::string>{
                         "ShowAboutBox:-552", "Font:1", "Caption:2", "FontUnderline:3", "FontSize:4", "Style:5",
                         "MouseIcon:6", "MousePointer:7", "MouseSymbol:8", "ToolTipTxt:9", "Refresh:10",
                         "Clicked:11", "Url:12", "BackColorH:13", "LinkColor:14", "HoverColor:15",
                         "ActiveColor:16", "VisitedColor:17", "BorderStyle:18", "Alignment:19", "AutoSizeH:20",
                         "PlaySound:21", "EndPlaySound:22"}));
    EXPECT_EQ(info.FindMember("PlaySound")->params[0].name, "ResourceId");
    EXPECT_EQ(info.FindMember("MouseSymbol")->type.enumName, "MouSymbol");
    ASSERT_EQ(info.events.size(), 2u);
    EXPECT_EQ(info.events[0].name, "Hover");
    EXPECT_EQ(info.events[0].params.size(), 4u);
    EXPECT_EQ(info.Event(2)->name, "Click");
    EXPECT_EQ(info.FindEnum("MouSymbol")->members[2], (std::pair<std::string, std::int32_t>{"lHand_NC", 2}));
    EXPECT_EQ(info.FindEnum("hMousePointerConst")->members.back().first, "hMouseIcon");
}

// The hover colour a link starts with is not the bag's default, and a font size is never 0.
TEST_F(HyperlinkTest, NewLinkSavesOnlyItsFontSizeAndHoverColour) {
    const JsonPropertyBag bag = form.SaveBag(form.Add("Korvex_Tools.Hyperlink", kLink));
    EXPECT_EQ(Keys(bag), (std::vector<std::string>{"FontSize", "HoverColor"}));
    EXPECT_EQ(bag.ReadProperty("FontSize").ToDouble(), 8.25);
    EXPECT_EQ(bag.ReadProperty("HoverColor").ToLong(), 0x00FFFF00);
}

// Restored from nothing a link takes the bag's hover colour, and "MouseSymbol" 0 goes through
// its let, which gives the caption the arrow.
TEST_F(HyperlinkTest, EmptyBagGivesANewLinkButForHoverColourAndPointer) {
    Site& created = form.Add("Korvex_Tools.Hyperlink", kLink);
    Site& restored = form.Restore("Korvex_Tools.Hyperlink", kOther, JsonPropertyBag{});
    EXPECT_EQ(Differences(created, restored),
              (std::vector<std::string>{"MousePointer: 0 vs 1", "HoverColor: 16776960 vs 16777088"}));
    EXPECT_EQ(Link(restored).CaptionColor(), 0x00FF0000u);
}

TEST_F(HyperlinkTest, EveryPropertySurvivesSaveAndRestore) {
    Site& site = Running();
    const auto icon = std::make_shared<StdPicture>(PictureType::Icon, 2, 1, std::vector<std::uint32_t>{0xFF112233, 0});
    const auto font = std::make_shared<StdFont>("Arial", 10);
    for (const auto& [name, value] : std::vector<std::pair<std::string, Variant>>{
             {"Font", Variant(font)}, {"Caption", "Zur Startseite"}, {"FontUnderline", true}, {"FontSize", 12},
             {"Style", 0}, {"MouseIcon", Variant(icon)}, {"MousePointer", 2}, {"MouseSymbol", 7},
             {"ToolTipTxt", "Öffnet die Seite"}, {"Clicked", true}, {"Url", "http://korvex.example/"},
             {"BackColorH", 0x00E0E0E0}, {"LinkColor", 0x00400000}, {"HoverColor", 0x00FFFF80},
             {"ActiveColor", 0x00000080}, {"VisitedColor", 0x00404040}, {"BorderStyle", 1}, {"Alignment", 2},
             {"AutoSizeH", false}})
        form.LetProperty(site, name, value);
    EXPECT_FALSE(font->Underline()) << "the caption's attributes must not reach the assigned font";
    EXPECT_EQ(form.GetProperty(site, "MousePointer").ToLong(), 2) << "MouseSymbol 7 changes nothing";

    // Url has no key of its own: a link's target is given at run time.
    Site& copy = form.Restore("Korvex_Tools.Hyperlink", {"Copy", 300, 2000, 2400, 450}, form.SaveBag(site));
    EXPECT_EQ(Differences(site, copy), std::vector<std::string>{"Url: \"http://korvex.example/\" vs \"\""});
    EXPECT_TRUE(form.GetProperty(copy, "Clicked").ToBool());
}

// "ForeColor" takes the first "LinkColor"'s place on saving; no reading uses it, so a link
// saved while hovered comes back in its link colour.
TEST_F(HyperlinkTest, SavesTheCaptionColourUnderForeColor) {
    JsonPropertyBag full;
    const auto picture = std::make_shared<StdPicture>(PictureType::Bitmap, 1, 1, std::vector<std::uint32_t>{0xFF000000});
    for (const auto& [key, value] : std::vector<std::pair<std::string, Variant>>{
             {"Font", Variant(std::make_shared<StdFont>("Arial", 9))}, {"Caption", "x"},
             {"FontUnderline", std::int16_t{-1}}, {"FontSize", 9.0}, {"Picture", Variant(picture)},
             {"Style", std::int16_t{0}}, {"LinkColor", 1}, {"Clicked", true}, {"BackColorH", 2}, {"HoverColor", 3},
             {"ActiveColor", 4}, {"VisitedColor", 5}, {"BorderStyle", std::int16_t{1}},
             {"Alignment", std::int16_t{1}}, {"AutoSizeH", false}, {"ToolTipTxt", "t"},
             {"MousePointer", std::int16_t{3}}, {"MouseSymbol", 2}})
        full.WriteProperty(key, value);
    Site& site = form.Restore("Korvex_Tools.Hyperlink", {"Full", 300, 2000, 2400, 450}, full);
    EXPECT_EQ(Keys(form.SaveBag(site)),
              (std::vector<std::string>{"Font", "Caption", "FontUnderline", "FontSize", "Picture", "Style",
                                        "ForeColor", "Clicked", "BackColorH", "LinkColor", "HoverColor",
                                        "ActiveColor", "VisitedColor", "BorderStyle", "Alignment", "AutoSizeH",
                                        "ToolTipTxt", "MouseIcon", "MousePointer", "MouseSymbol"}));
    EXPECT_EQ(form.SaveBag(site).ReadProperty("FontUnderline").Kind(), VarKind::Boolean);
    // MouseSymbol 2 came last and chose the second hand over pointer 3.
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
    form.Show();
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

// The colour steps of a running link, as a user drives it.
TEST_F(HyperlinkTest, ColoursFollowHoverClickFocusAndRefresh) {
    Site& site = Running();
    form.LetProperty(site, "Url", "http://korvex.example/hilfe");
    EXPECT_EQ(CaptionState(site), "link");

    EXPECT_EQ(Run("move H 10 15\nwait 50\n"), "event H.Hover(0, 0, 150, 90)\n");
    EXPECT_EQ(CaptionState(site), "hover");
    EXPECT_EQ(Run("move 600 600\nwait 50\n"), "");
    EXPECT_EQ(CaptionState(site), "link");

    EXPECT_EQ(Run("move H 10 15\nwait 50\nclick\n"),
              "event H.Hover(0, 0, 150, 90)\nevent H.Click()\nchanged H.Clicked\n");
    EXPECT_EQ(CaptionState(site), "active");
    ASSERT_EQ(platform.shell().Requests().size(), 1u);
    const platform::sim::ShellRequest& shell = platform.shell().Requests()[0];
    EXPECT_EQ(shell.owner, site.GetControl().SurfaceWindow());
    EXPECT_FALSE(shell.verb.has_value());
    EXPECT_EQ(shell.file, "http://korvex.example/hilfe");
    EXPECT_EQ(shell.parameters, "");
    EXPECT_EQ(shell.directory, "C:\\");
    EXPECT_EQ(shell.showCommand, 1);

    // Clicked: the poll leaves the colour alone.
    Run("move 600 600\nwait 50\nmove H 12 15\nwait 50\n");
    EXPECT_EQ(CaptionState(site), "active");
    Run("focus H\nfocus Other\n");
    EXPECT_EQ(CaptionState(site), "visited");
    Run("focus H\n");
    EXPECT_EQ(CaptionState(site), "active");
    // Released on the surface beside the caption (the poll sees the pointer there first).
    Run("move H 150 2\nwait 50\nclick\n");
    EXPECT_EQ(CaptionState(site), "visited");
    EXPECT_EQ(Run("call H.Refresh\n"), "changed H.Clicked\n");
    EXPECT_EQ(CaptionState(site), "link");
    // The pointer rests on the link: nothing until it moves.
    Run("wait 200\n");
    EXPECT_EQ(CaptionState(site), "link");
    Run("move H 11 15\nwait 50\n");
    EXPECT_EQ(CaptionState(site), "hover");
}

TEST_F(HyperlinkTest, NewHoverColourShowsOnlyAfterThePointerMoves) {
    Site& site = Running();
    Run("move H 10 15\nwait 50\nset H.HoverColor 65280\nwait 200\n");
    EXPECT_EQ(CaptionState(site), "hover");
    Run("move H 11 15\nwait 50\n");
    EXPECT_GT(Pixels(site).Count(0x00FF00), 0);
    EXPECT_EQ(Pixels(site).Count(kHoverPixel), 0);
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
        const auto first = std::find_if(px.begin(), px.end(), [](std::uint32_t p) { return (p >> 24) != 0; });
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
    EXPECT_EQ(Run("set H.MouseSymbol 1\nget H.MousePointer\n"), "changed H.MouseSymbol\nH.MousePointer = 99\n");
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
    form.Show();
    platform::Gdi& gdi = platform.gdi();
    forms::MemoryBitmap canvas(gdi, {1, 1});
    const forms::GdiObject font = forms::MakeFont(gdi, *context.DefaultFont());
    gdi.SelectObject(canvas.dc(), font.get());
    platform::SIZE text;
    gdi.GetTextExtentPoint32(canvas.dc(), "Ein längerer Verweis", &text);
    platform::TEXTMETRIC tm;
    gdi.GetTextMetrics(canvas.dc(), &tm);

    form.LetProperty(site, "Caption", "Ein längerer Verweis");
    // 20 twips round the caption; the window keeps whole pixels (20 twips -> 1 pixel).
    EXPECT_EQ(form.GetProperty(site, "Width").ToLong(), (text.cx + 1) * 15);
    EXPECT_EQ(form.GetProperty(site, "Height").ToLong(), (tm.tmHeight + 1) * 15);

    form.LetProperty(site, "AutoSizeH", false);
    form.LetProperty(site, "Caption", "Kurz");
    EXPECT_EQ(form.GetProperty(site, "Width").ToLong(), (text.cx + 1) * 15);

    // A restored link keeps the size its form gives it.
    Site& restored = form.Restore("Korvex_Tools.Hyperlink", kOther, JsonPropertyBag::FromJson(R"({"Caption": "Lang genug"})"));
    EXPECT_EQ(form.GetProperty(restored, "Width").ToLong(), kOther.Width);
}

TEST_F(HyperlinkTest, PlaysTheLibrarysSoundsFromMemory) {
    Running();
    EXPECT_EQ(Run("call H.PlaySound 102\n"), "");
    const auto& requests = platform.sound().Requests();
    ASSERT_EQ(requests.size(), 1u);
    const auto wave = resources::Find("sounds/102.wav");
    EXPECT_EQ(requests[0].channel, platform::sim::SoundRequest::Channel::SndPlaySound);
    EXPECT_EQ(requests[0].flags, 7u);
    EXPECT_TRUE(std::equal(requests[0].image.begin(), requests[0].image.end(), wave.begin(), wave.end()));

    EXPECT_EQ(Run("call H.PlaySound 100\n").substr(0, 10), "error 326:");
    EXPECT_EQ(requests.size(), 1u) << "nothing played";

    Run("call H.EndPlaySound\n");
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_FALSE(requests[1].name.has_value());
    EXPECT_TRUE(requests[1].image.empty());
    EXPECT_EQ(requests[1].flags, 0u);
}

}  // namespace
}  // namespace korvex::test
