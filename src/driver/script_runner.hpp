#pragma once
// Drives a form from a script of input and property operations on the virtual clock, and
// reports what the controls raise, one line each, in the order it happens:
//
//   event NAME.EVENT(ARG, ...)    changed NAME.PROPERTY    NAME.PROPERTY = VALUE
//   NAME.METHOD = VALUE           error N: TEXT
//
// Script lines ('#' starts a comment; coordinates are screen pixels):
//   move X Y | move NAME|top [DX DY]    down [left|right|middle] [shift=N] | up [BUTTON]
//   click [BUTTON] | dblclick           key down CODE [shift=N] | key up CODE | key press ASCII
//   key alt KEY                         Alt held around KEY (an access key); a letter names its key
//   type TEXT | focus NAME | wait MS    set NAME.PROPERTY VALUE | get NAME.PROPERTY
//   call NAME.METHOD [ARG ...]          design | runmode | save FILE.json
//   snapshot FILE.png [NAME|form|top]   the screen, or one window: a control, the form, or the
//                                       topmost window (a modal box)
// "move NAME" goes to the centre of a control, "move top" of the topmost window; with DX DY it
// goes that far from the top-left corner, and negative offsets count from the right or bottom.
//
// Values: numbers (whole numbers are Long, others Double, &H hex), "quoted text" (a doubled quote
// inside stands for one), True, False, Nothing. A host error inside a step is reported and the
// script goes on; a malformed line stops the run with a ScriptError naming the line.

#include <filesystem>
#include <iosfwd>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/container.hpp"
#include "platform/driver.hpp"
#include "platform/window.hpp"

namespace korvex::host {

// The longest single wait: an hour of virtual time. Timers fire at every tick it passes, so a
// wait is refused beyond it, as a malformed line, rather than running for hours.
inline constexpr long long kMaxWaitMs = 3'600'000;

class ScriptError : public std::runtime_error {
  public:
    ScriptError(int line, const std::string& message)
        : std::runtime_error("script line " + std::to_string(line) + ": " + message),
          line_(line),
          message_(message) {}
    [[nodiscard]] int Line() const { return line_; }
    // What is wrong with the line, without its number.
    [[nodiscard]] const std::string& Message() const { return message_; }

  private:
    int line_;
    std::string message_;
};

class ScriptRunner final : public platform::InputSource, public EventSink {
  public:
    // The form must belong to a host context with a platform, which `driver` drives. Output
    // goes to `out`; snapshots and saved forms are written below `outDir`.
    ScriptRunner(Container& form, platform::Driver& driver, std::ostream& out,
                 std::filesystem::path outDir = ".");
    ~ScriptRunner() override;
    ScriptRunner(const ScriptRunner&) = delete;
    ScriptRunner& operator=(const ScriptRunner&) = delete;

    // Checks every line, then runs them; a nested modal loop pulls lines from here too.
    void Run(const std::string& script);

    // InputSource: performs the next line; false at the end.
    bool Step() override;

    // EventSink
    void OnEvent(Site& site, const EventInfo& event, std::span<Variant> args) override;
    void OnPropertyChanged(Site& site, std::string_view property) override;

    // Parses a script value as written in `set` and `call`.
    static Variant ParseValue(const std::string& token);

  private:
    struct Line {
        int number = 0;
        std::vector<std::string> words;
    };
    void Execute(const Line& line);
    void Validate(const Line& line) const;
    platform::POINT PointOf(const Line& line) const;
    // The topmost visible top-level window (a modal box), or zero.
    platform::HWND TopWindow() const;
    void PickMenuItem(const Line& line);
    std::pair<Site*, std::string> Member(const std::string& dotted) const;

    Container& form_;
    platform::Platform& platform_;
    platform::Driver& driver_;
    std::ostream& out_;
    std::filesystem::path outDir_;
    EventSink* previousSink_;
    std::vector<Line> lines_;
    std::size_t next_ = 0;
};

// Splits a script line into words; double-quoted words keep their blanks and quotes. Returns no
// words for a blank or comment line.
std::vector<std::string> SplitScriptLine(const std::string& line, int number);

}  // namespace korvex::host
