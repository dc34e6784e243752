#include "driver/script_runner.hpp"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdint>
#include <map>
#include <ostream>
#include <sstream>

#include "driver/event_log.hpp"
#include "host/form_file.hpp"
#include "host/numeric.hpp"
#include "host/text.hpp"
#include "platform/png.hpp"

namespace korvex::host {

namespace {

// Key names a script may use instead of virtual key numbers.
const std::map<std::string, int, std::less<>>& KeyNames() {
    static const std::map<std::string, int, std::less<>> names = {
        {"backspace", 8}, {"tab", 9},  {"enter", 13},  {"return", 13}, {"shift", 16},
        {"ctrl", 17},     {"alt", 18}, {"escape", 27}, {"esc", 27},    {"space", 32},
        {"left", 37},     {"up", 38},  {"right", 39},  {"down", 40},   {"delete", 46},
        {"end", 35},      {"home", 36}, {"insert", 45},
    };
    return names;
}

std::string Lower(std::string s) {
    for (char& c : s) c = AsciiLower(c);
    return s;
}

bool IsInteger(const std::string& s) {
    if (s.empty()) return false;
    std::size_t i = (s[0] == '-' || s[0] == '+') ? 1 : 0;
    if (i == s.size()) return false;
    for (; i < s.size(); ++i) {
        if (s[i] < '0' || s[i] > '9') return false;
    }
    return true;
}

// A whole number of the type's range: coordinates, key codes and shift states are ints, waits
// 64-bit. A number beyond it is a malformed line, not a value to wrap.
template <class T>
bool IsIntegerOf(const std::string& s) {
    if (!IsInteger(s)) return false;
    const char* first = s.data() + (s[0] == '+' ? 1 : 0);
    T value{};
    const auto [end, ec] = std::from_chars(first, s.data() + s.size(), value);
    return ec == std::errc() && end == s.data() + s.size();
}

bool IsInt(const std::string& s) {
    return IsIntegerOf<int>(s);
}

std::int32_t Clamped(std::int64_t v) {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(v, INT32_MIN, INT32_MAX));
}

struct Pointer {
    int button = platform::kButtonLeft;
    int shift = 0;
};

// "[left|right|middle] [shift=N]" in any order; false when a word is neither.
bool ParseButtonWords(const std::vector<std::string>& words, std::size_t from, Pointer& out) {
    for (std::size_t i = from; i < words.size(); ++i) {
        const std::string w = Lower(words[i]);
        if (w == "left")
            out.button = platform::kButtonLeft;
        else if (w == "right")
            out.button = platform::kButtonRight;
        else if (w == "middle")
            out.button = platform::kButtonMiddle;
        else if (w.rfind("shift=", 0) == 0 && IsInt(w.substr(6)))
            out.shift = std::stoi(w.substr(6));
        else
            return false;
    }
    return true;
}

bool ParseKeyCode(const std::string& word, int& code) {
    if (IsInt(word)) {
        code = std::stoi(word);
        return true;
    }
    // A letter alone is its own key: the virtual key of its upper-case character.
    if (word.size() == 1 && std::isalpha(static_cast<unsigned char>(word[0]))) {
        code = std::toupper(static_cast<unsigned char>(word[0]));
        return true;
    }
    auto it = KeyNames().find(Lower(word));
    if (it == KeyNames().end()) return false;
    code = it->second;
    return true;
}

// Names are only known while the form runs (a mode switch re-creates controls), so an unknown
// one is the host's run-time error, not a malformed line.
HostError NoControl(const std::string& name) {
    return HostError(kErrObjectRequired, "Object required: there is no control named " + name,
                     "korvex");
}

std::string Unquote(const std::string& word) {
    if (word.size() < 2 || word.front() != '"') return word;
    std::string out;
    for (std::size_t i = 1; i + 1 < word.size(); ++i) {
        out += word[i];
        if (word[i] == '"') ++i;  // "" inside stands for one quote
    }
    return out;
}

}  // namespace

std::vector<std::string> SplitScriptLine(const std::string& line, int number) {
    std::vector<std::string> words;
    std::size_t i = 0;
    while (i < line.size()) {
        const char c = line[i];
        if (c == ' ' || c == '\t' || c == '\r') {
            ++i;
            continue;
        }
        if (c == '#') break;
        std::string word;
        if (c == '"') {
            word += c;
            ++i;
            bool closed = false;
            while (i < line.size()) {
                word += line[i];
                if (line[i] == '"') {
                    if (i + 1 < line.size() && line[i + 1] == '"') {
                        word += '"';
                        i += 2;
                        continue;
                    }
                    closed = true;
                    ++i;
                    break;
                }
                ++i;
            }
            if (!closed) throw ScriptError(number, "unterminated text");
        } else {
            while (i < line.size() && line[i] != ' ' && line[i] != '\t' && line[i] != '\r')
                word += line[i++];
        }
        words.push_back(std::move(word));
    }
    return words;
}

Variant ScriptRunner::ParseValue(const std::string& token) {
    if (!token.empty() && token.front() == '"') return Unquote(token);
    const std::string lower = Lower(token);
    if (lower == "true") return true;
    if (lower == "false") return false;
    if (lower == "nothing") return Variant::Nothing();
    if (auto number = ParseNumber(token)) {
        if (IsInteger(token) || token.rfind("&", 0) == 0) {
            if (*number >= -2147483648.0 && *number <= 2147483647.0)
                return static_cast<std::int32_t>(*number);
            if (*number > 0 && *number <= 4294967295.0) return static_cast<std::uint32_t>(*number);
        }
        return *number;
    }
    return token;  // a bare word is text
}

ScriptRunner::ScriptRunner(Container& form, platform::Driver& driver, std::ostream& out,
                           std::filesystem::path outDir)
    : form_(form),
      platform_(*form.Context().Platform()),
      driver_(driver),
      out_(out),
      outDir_(std::move(outDir)),
      previousSink_(form.Sink()) {
    form_.SetSink(this);
    driver_.SetInputSource(this);
}

ScriptRunner::~ScriptRunner() {
    driver_.SetInputSource(nullptr);
    form_.SetSink(previousSink_);
}

void ScriptRunner::Run(const std::string& script) {
    std::istringstream in(script);
    std::string text;
    int number = 0;
    std::vector<Line> lines;
    while (std::getline(in, text)) {
        ++number;
        Line line{number, SplitScriptLine(text, number)};
        if (line.words.empty()) continue;
        Validate(line);
        lines.push_back(std::move(line));
    }
    lines_ = std::move(lines);
    next_ = 0;
    while (Step()) {
    }
}

bool ScriptRunner::Step() {
    if (next_ >= lines_.size()) return false;
    const Line& line = lines_[next_++];
    try {
        Execute(line);
        platform_.loop().DoEvents();
    } catch (const HostError& e) {
        PrintError(out_, e);
    }
    // Whatever ends the run later, the lines of the steps done so far are out.
    out_.flush();
    return true;
}

void ScriptRunner::OnEvent(Site& site, const EventInfo& event, std::span<Variant> args) {
    PrintEvent(out_, site, event, args);
}

void ScriptRunner::OnPropertyChanged(Site& site, std::string_view property) {
    PrintChange(out_, site, property);
}

void ScriptRunner::Validate(const Line& line) const {
    const auto& w = line.words;
    const std::string command = Lower(w[0]);
    const std::size_t n = w.size() - 1;
    auto fail = [&](const std::string& why) {
        throw ScriptError(line.number, why + " (" + command + ")");
    };
    Pointer pointer;
    int code = 0;
    if (command == "move") {
        if (n == 2 && IsInt(w[1]) && IsInt(w[2])) return;
        if (n == 1 || (n == 3 && IsInt(w[2]) && IsInt(w[3]))) return;
        fail("expected: move X Y, or move NAME [DX DY]");
    } else if (command == "down" || command == "up" || command == "click") {
        if (!ParseButtonWords(w, 1, pointer)) fail("expected: [left|right|middle] [shift=N]");
    } else if (command == "dblclick") {
        if (!ParseButtonWords(w, 1, pointer))
            fail("expected: dblclick [left|right|middle] [shift=N]");
    } else if (command == "key") {
        if (n < 2) fail("expected: key down|up CODE [shift=N], or key press ASCII");
        const std::string kind = Lower(w[1]);
        if (kind == "press") {
            if (n != 2 || !IsInt(w[2])) fail("expected: key press ASCII");
        } else if (kind == "alt") {
            if (n != 2 || !ParseKeyCode(w[2], code)) fail("expected: key alt KEY");
        } else if (kind == "down" || kind == "up") {
            if (!ParseKeyCode(w[2], code)) fail("unknown key '" + w[2] + "'");
            for (std::size_t i = 3; i < w.size(); ++i) {
                if (Lower(w[i]).rfind("shift=", 0) != 0 || !IsInt(w[i].substr(6)))
                    fail("expected shift=N");
            }
        } else {
            fail("expected: key down|up|press|alt");
        }
    } else if (command == "type") {
        if (n < 1) fail("expected: type TEXT");
    } else if (command == "menu") {
        const std::string kind = n >= 1 ? Lower(w[1]) : "";
        if (!((kind == "pick" && n >= 2) || (kind == "escape" && n == 1)))
            fail("expected: menu pick CAPTION, or menu escape");
    } else if (command == "focus" || command == "get" || command == "save") {
        if (n != 1) fail("expected one argument");
    } else if (command == "snapshot") {
        if (n != 1 && n != 2) fail("expected: snapshot FILE.png [NAME|form|top]");
    } else if (command == "wait") {
        if (n != 1 || !IsInteger(w[1]) || w[1][0] == '-') fail("expected: wait MS");
        // Every timer tick on the way runs, so a wait costs time in proportion to its length.
        if (!IsIntegerOf<std::int64_t>(w[1]) || std::stoll(w[1]) > kMaxWaitMs)
            fail("wait " + w[1] + " is longer than " + std::to_string(kMaxWaitMs) + " ms");
    } else if (command == "set") {
        if (n != 2) fail("expected: set NAME.PROPERTY VALUE");
    } else if (command == "call") {
        if (n < 1) fail("expected: call NAME.METHOD [ARG ...]");
    } else if (command == "design" || command == "runmode") {
        if (n != 0) fail("takes no arguments");
    } else {
        throw ScriptError(line.number, "unknown command '" + w[0] + "'");
    }
    if ((command == "get" || command == "set" || command == "call") &&
        w[1].find('.') == std::string::npos) {
        fail("expected NAME.MEMBER");
    }
}

std::pair<Site*, std::string> ScriptRunner::Member(const std::string& dotted) const {
    const std::size_t dot = dotted.find('.');
    const std::string name = dotted.substr(0, dot);
    Site* site = form_.Find(name);
    if (!site) throw NoControl(name);
    return {site, dotted.substr(dot + 1)};
}

platform::POINT ScriptRunner::PointOf(const Line& line) const {
    const auto& w = line.words;
    if (w.size() == 3 && IsInt(w[1])) return {std::stoi(w[1]), std::stoi(w[2])};
    platform::Windows& windows = platform_.windows();
    platform::RECT r;
    if (Lower(w[1]) == "top") {
        const platform::HWND top = TopWindow();
        if (!top || !windows.GetWindowRect(top, &r))
            throw HostError(kErrInvalidCall, "There is no window on the screen", "korvex");
    } else {
        Site* site = form_.Find(w[1]);
        if (!site) throw NoControl(w[1]);
        if (platform::HWND window = site->GetControl().SurfaceWindow()) {
            windows.GetWindowRect(window, &r);
        } else {
            const platform::POINT origin = windows.ClientToScreen(form_.FormWindow(), {0, 0});
            const platform::RECT b = site->Bounds();
            r = {origin.x + form_.TwipsToPixelsX(b.left), origin.y + form_.TwipsToPixelsY(b.top),
                 origin.x + form_.TwipsToPixelsX(b.right),
                 origin.y + form_.TwipsToPixelsY(b.bottom)};
        }
    }
    if (w.size() == 4) {
        // Offsets count from the left and top edges, negative ones from the right and bottom.
        // Any offset a line may hold: the sum is taken wide and kept on the int range.
        const std::int64_t dx = std::stoi(w[2]), dy = std::stoi(w[3]);
        return {Clamped(dx < 0 ? r.right + dx : r.left + dx),
                Clamped(dy < 0 ? r.bottom + dy : r.top + dy)};
    }
    return {Clamped((std::int64_t{r.left} + r.right) / 2),
            Clamped((std::int64_t{r.top} + r.bottom) / 2)};
}

// An open pop-up menu is the topmost window, titled "PopupMenu" and then the captions it offers,
// one a line. An item is picked as a user does with the keys: Home, Down to it, Enter.
void ScriptRunner::PickMenuItem(const Line& line) {
    const auto& w = line.words;
    platform::Windows& windows = platform_.windows();
    const platform::HWND top = TopWindow();
    std::istringstream lines(top ? windows.GetWindowText(top) : std::string());
    std::string caption;
    std::getline(lines, caption);
    if (caption != "PopupMenu") throw ScriptError(line.number, "no pop-up menu is open (menu)");
    auto press = [this](int key) {
        driver_.KeyDown(key, 0);
        driver_.KeyUp(key, 0);
    };
    if (Lower(w[1]) == "escape") return press(platform::VK_ESCAPE);
    std::string wanted;
    for (std::size_t i = 2; i < w.size(); ++i) wanted += (i > 2 ? " " : "") + Unquote(w[i]);
    int index = 0;
    while (std::getline(lines, caption) && Lower(caption) != Lower(wanted)) ++index;
    if (Lower(caption) != Lower(wanted))
        throw ScriptError(line.number, "the menu has no item '" + wanted + "' (menu)");
    constexpr int kHome = 0x24, kDown = 0x28;
    press(kHome);
    for (int i = 0; i < index; ++i) press(kDown);
    press(platform::VK_RETURN);
}

platform::HWND ScriptRunner::TopWindow() const {
    platform::Windows& windows = platform_.windows();
    for (platform::HWND candidate : windows.ZOrder({})) {
        if (windows.IsWindowVisible(candidate)) return candidate;
    }
    return {};
}

void ScriptRunner::Execute(const Line& line) {
    const auto& w = line.words;
    const std::string command = Lower(w[0]);
    platform::Driver& loop = driver_;
    platform::Windows& windows = platform_.windows();
    Pointer pointer;
    ParseButtonWords(
        w,
        command == "down" || command == "up" || command == "click" || command == "dblclick"
            ? 1
            : w.size(),
        pointer);

    if (command == "move") {
        loop.MouseMove(PointOf(line));
    } else if (command == "down") {
        loop.MouseDown(pointer.button, pointer.shift);
    } else if (command == "up") {
        loop.MouseUp(pointer.button, pointer.shift);
    } else if (command == "click") {
        loop.MouseDown(pointer.button, pointer.shift);
        loop.MouseUp(pointer.button, pointer.shift);
    } else if (command == "dblclick") {
        for (int i = 0; i < 2; ++i) {
            loop.MouseDown(pointer.button, pointer.shift);
            loop.MouseUp(pointer.button, pointer.shift);
        }
    } else if (command == "key") {
        const std::string kind = Lower(w[1]);
        int code = 0;
        ParseKeyCode(w[2], code);
        int shift = 0;
        for (std::size_t i = 3; i < w.size(); ++i) shift = std::stoi(w[i].substr(6));
        if (kind == "press") {
            loop.KeyPress(code);
        } else if (kind == "alt") {
            // Alt held around the key, as a user presses an access key: no character comes.
            loop.KeyDown(platform::VK_MENU, platform::kAltMask);
            loop.KeyDown(code, platform::kAltMask);
            loop.KeyUp(code, platform::kAltMask);
            loop.KeyUp(platform::VK_MENU, 0);
        } else if (kind == "down") {
            loop.KeyDown(code, shift);
        } else {
            loop.KeyUp(code, shift);
        }
    } else if (command == "type") {
        std::string text;
        for (std::size_t i = 1; i < w.size(); ++i) text += (i > 1 ? " " : "") + Unquote(w[i]);
        for (unsigned char c : text) {
            // Letters and digits have virtual keys of their own upper-case code.
            const int vk = (c >= 'a' && c <= 'z')                                           ? c - 32
                           : ((c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == ' ') ? c
                                                                                            : 0;
            if (vk) loop.KeyDown(vk, 0);
            loop.KeyPress(c);
            if (vk) loop.KeyUp(vk, 0);
        }
    } else if (command == "menu") {
        PickMenuItem(line);
    } else if (command == "focus") {
        Site* site = form_.Find(w[1]);
        if (!site) throw NoControl(w[1]);
        windows.SetFocus(site->GetControl().SurfaceWindow());
    } else if (command == "wait") {
        driver_.Advance(std::stoll(w[1]));
    } else if (command == "set") {
        auto [site, property] = Member(w[1]);
        form_.LetProperty(*site, property, ParseValue(w[2]));
    } else if (command == "get") {
        auto [site, property] = Member(w[1]);
        const Variant value = form_.GetProperty(*site, property);
        out_ << site->Name() << "." << property << " = " << DisplayText(value) << "\n";
    } else if (command == "call") {
        auto [site, method] = Member(w[1]);
        std::vector<Variant> args;
        for (std::size_t i = 2; i < w.size(); ++i) args.push_back(ParseValue(w[i]));
        const Variant result = form_.CallMethod(*site, method, args);
        if (!result.IsEmpty())
            out_ << site->Name() << "." << method << " = " << DisplayText(result) << "\n";
    } else if (command == "design" || command == "runmode") {
        form_.SwitchMode(command == "runmode");
    } else if (command == "snapshot") {
        std::vector<std::uint32_t> pixels;
        platform::SIZE size = windows.ScreenSize();
        if (w.size() == 3) {
            // One window alone: a control, the form, or the topmost window (a modal box).
            platform::HWND window;
            const std::string which = Lower(w[2]);
            if (which == "form") {
                window = form_.FormWindow();
            } else if (which == "top") {
                window = TopWindow();
            } else {
                Site* site = form_.Find(w[2]);
                if (!site) throw NoControl(w[2]);
                window = site->GetControl().SurfaceWindow();
            }
            platform::RECT r;
            if (!window || !windows.GetWindowRect(window, &r)) {
                throw HostError(kErrInvalidCall,
                                "There is no window to take a snapshot of (" + w[2] + ")",
                                "korvex");
            }
            pixels = driver_.ComposeWindow(window);
            size = {r.Width(), r.Height()};
        } else {
            pixels = driver_.ComposeScreen();
        }
        const std::string path = (outDir_ / w[1]).string();
        try {
            platform::WritePng(path, {pixels.data(), size.cx, size.cy});
        } catch (const std::runtime_error& e) {
            throw HostError(kErrPathFileAccess,
                            std::string("Path/File access error (") + e.what() + ")", "korvex");
        }
    } else if (command == "save") {
        SaveFormFile(form_, (outDir_ / w[1]).string());
    }
}

}  // namespace korvex::host
