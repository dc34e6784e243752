// What the display controls keep in their bags, one table per question: what a new control
// saves, what an empty bag restores, and that a bag holding every key comes back key for key in
// the control's order. (Each property's own round trip is the library-wide round-trip test.)

#include "fixture.hpp"

#include "controls/display/hyperlink.hpp"

namespace korvex::test {
namespace {

const Extender kAt{"C", 150, 150, 3000, 600};

// A bag written as the form files write it, in its key order.
JsonPropertyBag Bag(std::string_view json) {
    return JsonPropertyBag::FromJson(json);
}

std::string Font(const char* name, double size, bool bold, bool italic, bool underline,
                 bool strike) {
    auto font = std::make_shared<StdFont>(name, size, bold);
    font->Italic(italic);
    font->Underline(underline);
    font->Strikethrough(strike);
    JsonPropertyBag bag;
    bag.WriteProperty("Font", Variant(font));
    const std::string json = bag.ToJson(-1);
    return json.substr(8, json.size() - 9);  // the value of {"Font":...}
}

class PersistenceTest : public DisplayTest {
  protected:
    // Every readable property of two controls of one class whose values differ, handles left out.
    std::vector<std::string> Differences(Site& a, Site& b) {
        std::vector<std::string> out;
        for (const MemberInfo& m : a.Class().members) {
            if (m.kind != MemberInfo::Kind::Property || m.name == "HDC" || m.name == "hwnd")
                continue;
            const Variant va = m.get(a.GetControl()), vb = m.get(b.GetControl());
            if (!SameValue(va, vb))
                out.push_back(m.name + ": " + DisplayText(va) + " vs " + DisplayText(vb));
        }
        return out;
    }
};

// Only the keys whose values differ from their write defaults: the created colour of a line and
// the orientation its first resize chose, the created font of a label (its size in whole
// points), a frame's created caption, a link's hover colour (its key's default is paler).
TEST_F(PersistenceTest, NewControlSavesOnlyWhatDiffersFromTheWriteDefaults) {
    const std::string arial = Font("Arial", 8.25, true, false, false, false);
    const struct {
        const char* cls;
        Extender at;
        std::string saved;
    } rows[] = {
        {"Line3D", kAt, R"({"BorderColor": -2147483632, "Orientation": {"Integer": 0}})"},
        {"Line3D",
         {"C", 150, 150, 300, 3000},
         R"({"BorderColor": -2147483632, "Orientation": {"Integer": 1}})"},
        {"Label3D", kAt,
         R"({"Font": )" + arial +
             R"(, "FontBold": {"Integer": -1}, "FontName": "Arial", "FontSize": {"Integer": 8}})"},
        {"Frames", kAt,
         R"({"Caption": "Korvex-Frames", "FontSize": {"Integer": 8}, "FontName": "MS Sans Serif"})"},
        {"Hyperlink", kAt, R"({"FontSize": 8.25, "HoverColor": 16776960})"},
        {"Icons", kAt, "{}"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.cls);
        EXPECT_EQ(form.SaveBag(New(row.cls, row.at)).ToJson(), Bag(row.saved).ToJson());
        form.Remove("C");
    }
}

// An empty bag gives a new control but for the keys whose read default is not what a new
// control starts with.
TEST_F(PersistenceTest, EmptyBagGivesANewControlButForItsReadDefaults) {
    const struct {
        const char* cls;
        std::vector<std::string> differences;  // new vs restored
    } rows[] = {
        {"Line3D", {"BorderColor: -2147483632 vs -2147483636"}},
        // The ambient font, with the flags and name of the font keys' defaults; their size 0 is
        // no size and leaves the ambient font's.
        {"Label3D",
         {"Font: Font(\"Arial\") vs Font(\"\")", "FontBold: True vs False",
          "FontName: \"Arial\" vs \"\""}},
        {"Frames", {"Caption: \"Korvex-Frames\" vs \"Korvex-Frame\""}},
        // "MouseSymbol" 0 goes through its let, which gives the caption the arrow.
        {"Hyperlink", {"MousePointer: 0 vs 1", "HoverColor: 16776960 vs 16777088"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.cls);
        Site& created = New(row.cls, kAt);
        Site& restored = Restore(row.cls, {"R", 150, 1500, 3000, 600}, JsonPropertyBag{});
        EXPECT_EQ(Differences(created, restored), row.differences);
        form.Remove("C");
        form.Remove("R");
    }
    EXPECT_EQ(form.Font()->Name(), "MS Sans Serif")
        << "the font keys must not change the container's font";
}

// Every key set away from its default, in the order the control writes them: reading puts each
// value where writing finds it again, under the same key, in the same kind and order. Hyperlink
// writes "ForeColor" in the first "LinkColor"'s place: the caption's colour, which loading took
// from "LinkColor"; its MouseSymbol 2 chose the second hand and the custom pointer.
TEST_F(PersistenceTest, BagWithEveryKeyComesBackKeyForKey) {
    const auto icon = std::make_shared<StdPicture>(PictureType::Icon, 2, 1,
                                                   std::vector<std::uint32_t>{0xFF112233, 0});
    const struct {
        const char* cls;
        std::string bag;
        std::vector<std::pair<const char*, std::shared_ptr<StdPicture>>>
            pictures;  // in place of the 0s
    } rows[] = {
        {"Line3D",
         R"({"BorderColor": 255, "BorderForeColor": -2147483633, "Orientation": {"Integer": 1},
             "BorderWidth": {"Integer": 2}})",
         {}},
        {"Label3D",
         R"({"EnabledL": false, "Font": )" + Font("Courier New", 12, true, true, false, true) +
             R"(, "Shadow": false, "TextColor": -2147483640, "ShadowColor": 11259375, "FocusColor": 1193046,
             "FocusRect": true, "TextMode": {"Integer": 5}, "FontBold": {"Integer": -1},
             "FontItalic": {"Integer": -1}, "FontName": "Courier New", "FontSize": {"Integer": 12},
             "FontStrikethru": {"Integer": -1}, "Caption": "Größe & Form", "ToolTipText": "Hinweis",
             "xDist": {"Integer": -30}, "BackStyle": 1})",
         {}},
        {"Frames",
         R"({"Caption": "Gruppe", "Font": )" + Font("Arial", 10, true, true, false, true) +
             R"(, "TextColor": 16711680, "BackColorF": 12648384, "BorderStyle": {"Integer": 3}, "EnabledF": false,
             "MouseIcon": 0, "MousePointer": {"Integer": 11}, "FontBold": {"Integer": -1},
             "FontItalic": {"Integer": -1}, "FontSize": {"Integer": 10}, "FontStrikethru": {"Integer": -1},
             "FontName": "Arial", "Alignment": 2, "AlignmentTop": 1})",
         {{"MouseIcon", icon}}},
        {"Hyperlink",
         R"({"Font": )" + Font("Arial", 9, false, false, true, false) +
             R"(, "Caption": "x", "FontUnderline": true, "FontSize": 9.0, "Picture": 0,
             "Style": {"Integer": 0}, "ForeColor": 1, "Clicked": true, "BackColorH": 2, "LinkColor": 1,
             "HoverColor": 3, "ActiveColor": 4, "VisitedColor": 5, "BorderStyle": {"Integer": 1},
             "Alignment": {"Integer": 1}, "AutoSizeH": false, "ToolTipTxt": "t", "MouseIcon": 0,
             "MousePointer": {"Integer": 99}, "MouseSymbol": 2})",
         {{"Picture", icon},
          {"MouseIcon", controls::LoadHandCursor(controls::MouSymbol::lHand_NC)}}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.cls);
        JsonPropertyBag bag = Bag(row.bag);
        for (const auto& [key, picture] : row.pictures) bag.WriteProperty(key, Variant(picture));
        EXPECT_EQ(form.SaveBag(Restore(row.cls, kAt, bag)).ToJson(), bag.ToJson());
        form.Remove("C");
    }
}

// The caption's own attribute lets change a copy of an assigned font, never the font itself
// (it may be the form's or another control's).
TEST_F(PersistenceTest, AttributeLetsDoNotReachTheAssignedFont) {
    for (const auto& [cls, attribute] :
         {std::pair{"Frames", "FontBold"}, std::pair{"Hyperlink", "FontUnderline"}}) {
        SCOPED_TRACE(cls);
        const auto font = std::make_shared<StdFont>("Arial", 10);
        New(cls, kAt);
        Let("C", "Font", Variant(font));
        Let("C", attribute, true);
        EXPECT_FALSE(font->Bold() || font->Underline());
        EXPECT_TRUE(Get("C", attribute).ToBool());
        form.Remove("C");
    }
}

}  // namespace
}  // namespace korvex::test
