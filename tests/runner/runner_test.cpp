#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "host/probe_control.hpp"
#include "driver/script_runner.hpp"
#include "host/form_file.hpp"
#include "platform/sim/sim_platform.hpp"

using namespace korvex::host;
using korvex::test::Probe;

namespace {

// Opens a modal loop of its own until CloseModal is called, as a message box does.
class Modal final : public Control {
public:
    static const ClassInfo& Class() {
        static const ClassInfo info =
            ClassBuilder<Modal>("Modal", "Korvex_Tools.Modal")
                .Method("ShowModal", {},
                        [](Modal& m, std::span<Variant>) -> std::int32_t {
                            m.open_ = true;
                            m.Site()->Context().Platform()->loop().RunModal([&m] { return m.open_; }, "test box");
                            return ++m.shown_;
                        },
                        TypeCode::Long)
                .Method("CloseModal", {}, [](Modal& m, std::span<Variant>) { m.open_ = false; })
                .Build();
        return info;
    }
    const ClassInfo& TypeInfo() const override { return Class(); }

private:
    bool open_ = false;
    std::int32_t shown_ = 0;
};

class RunnerTest : public ::testing::Test {
protected:
    RunnerTest() {
        context.Classes().Register(Probe::Class());
        context.Classes().Register(Modal::Class());
        form.Add("Korvex_Tools.Probe", {"P1", 150, 150, 1500, 450});
        form.Add("Korvex_Tools.Modal", {"M1"});
        form.SwitchMode(true);
        form.Show();
    }
    std::string Run(const std::string& script) {
        std::ostringstream out;
        ScriptRunner runner(form, platform.driver(), out, dir);
        runner.Run(script);
        return out.str();
    }

    korvex::platform::sim::SimPlatform platform;
    HostContext context{&platform};
    Container form{context};
    std::filesystem::path dir = std::filesystem::path(KORVEX_BINARY_DIR) / "runner_test";
};

TEST_F(RunnerTest, PropertyOperationsPrintInOrder) {
    EXPECT_EQ(Run("set P1.Caption \"Say \"\"hi\"\"\"\n"
                  "get P1.Caption\n"
                  "set P1.BackColorP &H8000000F&\n"
                  "get P1.BackColorP\n"
                  "call P1.Bump 3 2   # 7 + 3 * 2\n"
                  "get p1.value\n"
                  "get P1.Left\n"),
              "changed P1.Caption\n"
              "P1.Caption = \"Say \"\"hi\"\"\"\n"
              "changed P1.BackColorP\n"
              "P1.BackColorP = -2147483633\n"
              "changed P1.Value\n"
              "P1.Bump = 13\n"
              "P1.value = 13\n"
              "P1.Left = 150\n");
}

TEST_F(RunnerTest, HostErrorsAreReportedAndTheScriptGoesOn) {
    EXPECT_EQ(Run("set P1.Value 99999\n"
                  "get P1.Nonsense\n"
                  "get Ghost.Caption\n"
                  "call P1.Bump\n"
                  "get P1.Value\n"),
              "error 6: Overflow\n"
              "error 438: Object doesn't support this property or method\n"
              "error 424: Object required: there is no control named Ghost\n"
              "error 449: Argument not optional\n"
              "P1.Value = 7\n");
}

TEST_F(RunnerTest, MalformedLineStopsBeforeAnythingRuns) {
    std::ostringstream out;
    ScriptRunner runner(form, platform.driver(), out, dir);
    try {
        runner.Run("set P1.Value 1\nmove 10\nkey jump 13\n");
        FAIL() << "no error for a malformed line";
    } catch (const ScriptError& e) {
        EXPECT_EQ(e.Line(), 3);  // "move 10" is a control name; "key jump" is not a key action
    }
    EXPECT_EQ(out.str(), "");
    EXPECT_EQ(static_cast<Probe&>(form.Get("P1").GetControl()).Value(), 7);
    EXPECT_THROW(runner.Run("get P1\n"), ScriptError);
    EXPECT_THROW(runner.Run("set P1.Caption \"open\n"), ScriptError);
    EXPECT_THROW(runner.Run("wait -5\n"), ScriptError);
}

TEST_F(RunnerTest, ModeSwitchKeepsWhatWasSet) {
    EXPECT_EQ(Run("set P1.Value 42\ndesign\nget P1.Value\nrunmode\nget P1.Value\n"),
              "changed P1.Value\n"
              "changed P1.Caption\n"
              "P1.Value = 42\n"
              "changed P1.Caption\n"
              "P1.Value = 42\n");
    EXPECT_TRUE(form.UserMode());
}

TEST_F(RunnerTest, ModalLoopConsumesTheFollowingLines) {
    EXPECT_EQ(Run("call M1.ShowModal\nset P1.Value 1\ncall M1.CloseModal\nget P1.Value\n"),
              "changed P1.Value\n"
              "M1.ShowModal = 1\n"
              "P1.Value = 1\n");
}

TEST_F(RunnerTest, ModalLoopWithNothingLeftIsAnError) {
    EXPECT_EQ(Run("call M1.ShowModal\n"),
              "error 32000: The modal test box is still open and nothing left in the script can close it\n");
}

TEST_F(RunnerTest, SavedFormLoadsBack) {
    std::filesystem::create_directories(dir);
    Run("set P1.Caption Gespeichert\nsave saved.json\n");
    HostContext other;
    other.Classes().Register(Probe::Class());
    other.Classes().Register(Modal::Class());
    Container copy(other);
    LoadFormFile(copy, (dir / "saved.json").string());
    EXPECT_EQ(copy.GetProperty(copy.Get("P1"), "Caption"), Variant("Gespeichert"));
}

TEST(ScriptValues, ParseAsTheHostWritesThem) {
    EXPECT_EQ(ScriptRunner::ParseValue("12"), Variant(12));
    EXPECT_EQ(ScriptRunner::ParseValue("-2.5"), Variant(-2.5));
    EXPECT_EQ(ScriptRunner::ParseValue("&HFF"), Variant(255));
    EXPECT_EQ(ScriptRunner::ParseValue("2147483663"), Variant(0x8000000Fu));
    EXPECT_EQ(ScriptRunner::ParseValue("true"), Variant(true));
    EXPECT_EQ(ScriptRunner::ParseValue("\"a \"\"b\"\"\""), Variant("a \"b\""));
    EXPECT_EQ(ScriptRunner::ParseValue("word"), Variant("word"));
    EXPECT_TRUE(ScriptRunner::ParseValue("Nothing").IsObject());
    EXPECT_EQ(SplitScriptLine("  set X.Y \"a # b\"  # comment", 1),
              (std::vector<std::string>{"set", "X.Y", "\"a # b\""}));
}

}  // namespace
