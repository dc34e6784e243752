#include <gtest/gtest.h>

#include "support/error_of.hpp"

#include <filesystem>
#include <fstream>
#include <iterator>

#include "base/error.hpp"
#include "host/container.hpp"
#include "host/form_file.hpp"
#include "probe_control.hpp"
#include "support/bench.hpp"

using namespace korvex::host;
using korvex::test::pMode;
using korvex::test::Probe;

using korvex::test::ErrorOf;

namespace {

class ContractTest : public ::testing::Test, public korvex::test::HostBench {
  protected:
    ContractTest() : HostBench({Probe::Class()}) { form.SetSink(&recorder); }
    Probe& ProbeNamed(const std::string& name) { return Control<Probe>(name); }
    Site& AddProbe(const std::string& name) {
        return Add("Korvex_Tools.Probe", {name, 120, 240, 1500, 450});
    }

    korvex::test::EventLog recorder;
};

TEST_F(ContractTest, NewControlGoesThroughInitPropertiesAndWritesNothing) {
    AddProbe("Probe1");
    Probe& probe = ProbeNamed("Probe1");
    EXPECT_EQ(probe.log, (std::vector<std::string>{"Initialize", "InitProperties", "Resize"}));
    EXPECT_EQ(probe.Caption(), "Probe1");  // from the ambient display name
    EXPECT_EQ(probe.ExtentWidth(), 1500);
    EXPECT_TRUE(recorder.lines.empty()) << "InitProperties reports no change";

    // The caption differs from its default, and the colour's read default is not its write
    // default, so an untouched control still writes it.
    JsonPropertyBag bag = form.SaveBag(form.Get("Probe1"));
    ASSERT_EQ(bag.Entries().size(), 2u) << bag.ToJson();
    EXPECT_EQ(bag.Entries()[0].first, "Caption");
    EXPECT_EQ(bag.Entries()[1].first, "BackColorP");
}

TEST_F(ContractTest, EmptyBagRestoresTheDefaults) {
    form.Restore("Korvex_Tools.Probe", {"Probe1", 0, 0, 100, 100}, JsonPropertyBag{});
    Probe& probe = ProbeNamed("Probe1");
    EXPECT_EQ(probe.log, (std::vector<std::string>{"Initialize", "ReadProperties", "Resize"}));
    EXPECT_EQ(probe.Value(), 7);
    EXPECT_EQ(probe.BackColorP(), Probe::kReadDefaultColor);
    EXPECT_EQ(probe.Mode(), pMode::pOff);
    EXPECT_TRUE(probe.Font()->SameAttributes(*form.Font()));
}

TEST_F(ContractTest, LetSaveRestoreRoundTripsEveryProperty) {
    Site& site = AddProbe("Probe1");
    form.LetProperty(site, "Caption", "Hallo");
    form.LetProperty(site, "Value", "42");
    form.LetProperty(site, "BackColorP", 0x00FF00);
    form.LetProperty(site, "Mode", 2);
    form.LetProperty(site, "MousePointer", 99);
    auto font = std::make_shared<StdFont>("Arial", 12, true);
    form.LetProperty(site, "Font", font);

    const JsonPropertyBag bag = form.SaveBag(site);
    form.Restore("Korvex_Tools.Probe", {"Probe2"}, bag);
    Probe& copy = ProbeNamed("Probe2");
    EXPECT_EQ(copy.Caption(), "Hallo");
    EXPECT_EQ(copy.Value(), 42);
    EXPECT_EQ(copy.BackColorP(), 0x00FF00u);
    EXPECT_EQ(copy.Mode(), pMode::pBlink);
    EXPECT_EQ(copy.MousePointer(), 99);
    EXPECT_TRUE(copy.Font()->SameAttributes(*font));
    EXPECT_EQ(form.SaveBag(form.Get("Probe2")), bag);
}

TEST_F(ContractTest, BagOfTheWrongTypeFailsTheRestoreAndLeavesTheFormAlone) {
    JsonPropertyBag bad;
    bad.WriteProperty("Value", "not a number");
    EXPECT_EQ(ErrorOf([&] { form.Restore("Korvex_Tools.Probe", {"Probe1"}, bad); }), 13);
    EXPECT_EQ(form.Find("Probe1"), nullptr);
    EXPECT_EQ(ErrorOf([&] { form.Add("Korvex_Tools.Nope", {"X"}); }), 429);
    AddProbe("Probe1");
    EXPECT_EQ(ErrorOf([&] { AddProbe("probe1"); }), 5);
}

TEST_F(ContractTest, DesignToRunSwitchRecreatesFromTheSavedBags) {
    Site& site = AddProbe("Probe1");
    int terminated = 0;
    ProbeNamed("Probe1").terminated = &terminated;
    form.LetProperty(site, "Value", 99);
    recorder.lines.clear();

    form.SwitchMode(true);
    Probe& run = ProbeNamed("Probe1");
    EXPECT_EQ(terminated, 1);
    EXPECT_TRUE(form.UserMode());
    EXPECT_EQ(run.Value(), 99);
    EXPECT_EQ(run.Caption(), "Probe1");
    EXPECT_EQ(run.log, (std::vector<std::string>{"Initialize", "ReadProperties", "Resize"}));
    // The let procedures ReadProperties calls report their changes; harmless.
    EXPECT_EQ(recorder.lines, (std::vector<std::string>{"changed Probe1.Caption"}));
}

TEST_F(ContractTest, PropertyChangedReachesTheHost) {
    Site& site = AddProbe("Probe1");
    form.LetProperty(site, "Caption", "x");
    form.LetProperty(site, "Left", 300);  // extender: the control reports nothing
    EXPECT_EQ(recorder.lines, (std::vector<std::string>{"changed Probe1.Caption"}));
    EXPECT_EQ(form.GetProperty(site, "Left"), Variant(300));
}

TEST_F(ContractTest, HandlersChangeByReferenceArguments) {
    AddProbe("Probe1");
    Probe& probe = ProbeNamed("Probe1");
    recorder.onEvent = [](const EventInfo& event, std::span<Variant> args) {
        if (event.name == "KeyPress" && args[0].ToInteger() == 'a') args[0] = 0;
        if (event.name == "KeyPress" && args[0].ToInteger() == 'b') args[0] = "66";
    };
    EXPECT_EQ(probe.PressKey('a'), 0);
    EXPECT_EQ(probe.PressKey('b'), 66);  // converted back by the host's rules
    EXPECT_EQ(probe.PressKey('c'), 'c');
    probe.Press(1, 2, 1.5f, 30);
    probe.Click();
    EXPECT_EQ(
        recorder.lines,
        (std::vector<std::string>{
            "event Probe1.KeyPress(97)", "event Probe1.KeyPress(98)", "event Probe1.KeyPress(99)",
            "event Probe1.MouseDown(1, 2, 1.5, 30)", "event Probe1.Click()"}));
}

TEST_F(ContractTest, LateBindingByName) {
    Site& site = AddProbe("Probe1");
    Probe& probe = ProbeNamed("Probe1");
    EXPECT_EQ(ErrorOf([&] { (void)form.GetProperty(site, "NoSuchThing"); }), 438);
    EXPECT_EQ(ErrorOf([&] { form.LetProperty(site, "Clicks", 3); }), 383);
    EXPECT_EQ(ErrorOf([&] { form.LetProperty(site, "Name", "Other"); }), 383);
    EXPECT_EQ(ErrorOf([&] { form.LetProperty(site, "Value", "abc"); }), 13);
    EXPECT_EQ(ErrorOf([&] { form.LetProperty(site, "MousePointer", 16); }), 380);
    EXPECT_EQ(probe.MousePointer(), 0) << "a refused value leaves the property as it was";

    std::vector<Variant> none;
    EXPECT_EQ(ErrorOf([&] { (void)form.CallMethod(site, "Bump", none); }), 449);
    std::vector<Variant> three{1, 2, 3};
    EXPECT_EQ(ErrorOf([&] { (void)form.CallMethod(site, "Bump", three); }), 450);

    std::vector<Variant> one{std::int16_t{3}};
    EXPECT_EQ(form.CallMethod(site, "bump", one),
              Variant(std::int16_t{10}));  // 7 + 3, optional left out
    EXPECT_EQ(one[0], Variant(std::int16_t{0})) << "by-reference argument written back";
    std::vector<Variant> two{std::int16_t{16000}, std::int16_t{3}};
    EXPECT_EQ(ErrorOf([&] { (void)form.CallMethod(site, "Bump", two); }), 6);
    EXPECT_EQ(probe.Value(), 10);
}

TEST_F(ContractTest, MemberTableDescribesTheClass) {
    const ClassInfo& info = Probe::Class();
    EXPECT_EQ(info.progId, "Korvex_Tools.Probe");
    ASSERT_NE(info.FindMember("ShowAboutBox"), nullptr);
    EXPECT_EQ(info.FindMember("ShowAboutBox")->dispId, kDispIdAboutBox);
    EXPECT_EQ(info.FindMember("Caption")->dispId, 1);  // slot order continues after the about box
    EXPECT_EQ(info.FindMember("Value")->type.code, TypeCode::Integer);
    EXPECT_EQ(info.FindMember("BackColorP")->type.code, TypeCode::Color);
    EXPECT_EQ(info.FindMember("Mode")->type.enumName, "pMode");
    EXPECT_TRUE(info.FindMember("Clicks")->ReadOnly());
    EXPECT_EQ(info.FindEvent("MouseDown")->id, 3);
    EXPECT_EQ(info.Event(2)->params[0].name, "KeyAscii");
    const EnumInfo* pointers = info.FindEnum("pMousePointerConst");
    ASSERT_NE(pointers, nullptr);
    EXPECT_EQ(pointers->members.size(), 17u);
    EXPECT_EQ(pointers->members[5].first, "Größenänderung");
    EXPECT_EQ(pointers->members.back(), (std::pair<std::string, std::int32_t>{"pMouseIcon", 99}));
}

TEST_F(ContractTest, AboutBoxGoesThroughTheHost) {
    Site& site = AddProbe("Probe1");
    std::vector<Variant> none;
    EXPECT_EQ(ErrorOf([&] { (void)form.CallMethod(site, "ShowAboutBox", none); }), 5);
    int shown = 0;
    context.SetAboutBox([&] { ++shown; });
    form.CallMethod(site, "ShowAboutBox", none);
    EXPECT_EQ(shown, 1);
}

TEST_F(ContractTest, AmbientFontIsSharedByReference) {
    AddProbe("Probe1");
    AddProbe("Probe2");
    Probe& a = ProbeNamed("Probe1");
    Probe& b = ProbeNamed("Probe2");
    ASSERT_EQ(a.Font(), b.Font());
    a.Font()->Bold(true);
    EXPECT_TRUE(b.Font()->Bold());
}

TEST_F(ContractTest, FormFileRoundTripsWithNesting) {
    Site& outer = AddProbe("Outer");
    form.LetProperty(outer, "Value", 1);
    Site& inner =
        form.Add("Korvex_Tools.Probe", {"Inner", 15, 30, 300, 150, false, true, 1}, &outer);
    form.LetProperty(inner, "Caption", "Innen");
    form.Caption = "Prüfung";
    const std::string text = SaveFormJson(form);

    HostContext otherContext;
    otherContext.Classes().Register(Probe::Class());
    Container other(otherContext);
    LoadFormJson(other, text);
    EXPECT_EQ(other.Caption, "Prüfung");
    ASSERT_NE(other.Find("Inner"), nullptr);
    EXPECT_EQ(other.Find("Inner")->Parent(), other.Find("Outer"));
    EXPECT_FALSE(other.Find("Inner")->GetExtender().Visible);
    EXPECT_EQ(other.GetProperty(*other.Find("Inner"), "Container"), Variant("Outer"));
    EXPECT_EQ(static_cast<Probe&>(other.Find("Inner")->GetControl()).Caption(), "Innen");
    EXPECT_EQ(SaveFormJson(other), text);
}

TEST_F(ContractTest, MalformedFormFileLeavesTheFormAsItWas) {
    AddProbe("Keep");
    const std::string before = SaveFormJson(form);
    EXPECT_EQ(ErrorOf([&] { LoadFormJson(form, "{ not json"); }), 380);
    EXPECT_EQ(ErrorOf([&] { LoadFormJson(form, R"({"Controls": [{"Name": "A"}]})"); }), 380);
    EXPECT_EQ(
        ErrorOf([&] {
            LoadFormJson(
                form,
                R"({"Controls": [{"ProgID": "Korvex_Tools.Probe", "Name": "A", "Left": "x"}]})");
        }),
        380);
    EXPECT_EQ(ErrorOf([&] {
                  LoadFormJson(form, R"({"Form": {"Caption": "changed"}, "Controls": [
                      {"ProgID": "Korvex_Tools.Probe", "Name": "A"},
                      {"ProgID": "Korvex_Tools.Missing", "Name": "B"}]})");
              }),
              429);
    EXPECT_EQ(SaveFormJson(form), before);
    EXPECT_EQ(ErrorOf([&] { LoadFormFile(form, "/nonexistent/form.json"); }), 53);
}

// A form file that cannot be loaded says where: the file, the control with its class, the key
// and the value, after the host's own text.
TEST_F(ContractTest, ALoadErrorNamesFileControlKeyAndValue) {
    namespace fs = std::filesystem;
    const fs::path dir = fs::path(KORVEX_BINARY_DIR) / "load_test";
    fs::create_directories(dir);
    const std::string path = (dir / "bad.json").string();
    std::ofstream(path) << R"({"Controls": [{"ProgID": "Korvex_Tools.Probe", "Name": "Knopf",
                                             "Properties": {"Value": "abc"}}]})";
    try {
        LoadFormFile(form, path);
        FAIL() << "loaded";
    } catch (const HostError& e) {
        EXPECT_EQ(e.Number(), 13);
        EXPECT_EQ(e.Description(), path + R"(: control Knopf (Korvex_Tools.Probe): Type mismatch )"
                                          R"((key "Value", value "abc"))");
    }
    EXPECT_EQ(ErrorOf([&] { LoadFormFile(form, dir.string()); }), 75);
}

// A save that fails for any reason leaves the file it would have replaced byte for byte, and
// leaves no temporary beside it.
TEST_F(ContractTest, AFailedSaveKeepsTheOldFile) {
    namespace fs = std::filesystem;
    const fs::path dir = fs::path(KORVEX_BINARY_DIR) / "save_test";
    fs::remove_all(dir);
    fs::create_directories(dir);
    const std::string path = (dir / "form.json").string();
    AddProbe("Keep");
    SaveFormFile(form, path);
    const auto read = [&] {
        std::ifstream in(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    };
    const std::string saved = read();
    ASSERT_NE(saved.find("Keep"), std::string::npos);

    // A value that cannot be written: a caption that is not UTF-8.
    form.Caption = "caf\xE9";
    EXPECT_EQ(ErrorOf([&] { SaveFormFile(form, path); }), 380);
    EXPECT_EQ(read(), saved);
    // The file system refuses the write: the temporary's place is taken by a folder.
    form.Caption = "Neu";
    fs::create_directories(path + ".korvex-new");
    EXPECT_EQ(ErrorOf([&] { SaveFormFile(form, path); }), 75);
    EXPECT_EQ(read(), saved);
    fs::remove(path + ".korvex-new");
    // A folder where the file should be.
    EXPECT_EQ(ErrorOf([&] { SaveFormFile(form, dir.string()); }), 75);

    SaveFormFile(form, path);
    EXPECT_NE(read().find("Neu"), std::string::npos);
    EXPECT_EQ(std::distance(fs::directory_iterator(dir), fs::directory_iterator()), 1);
}

}  // namespace
