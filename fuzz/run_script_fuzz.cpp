// Scripts for korvex run come from users: any text must run against a form, reporting host
// errors line by line or stopping at a malformed line with a ScriptError, never crashing,
// hanging or exhausting memory. The form is the worked example with the push button, switch
// and group buttons.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <unistd.h>

#include "base/error.hpp"
#include "driver/script_runner.hpp"
#include "host/text.hpp"
#include "session.hpp"

namespace {

using namespace korvex;

const std::string& FormText() {
    static const std::string text = [] {
        std::ifstream in(KORVEX_SOURCE_DIR "/examples/buttons.json");
        std::stringstream all;
        all << in.rdbuf();
        if (all.str().empty()) __builtin_trap();
        return all.str();
    }();
    return text;
}

// Snapshots and saved forms land in a scratch folder of this process, removed at exit.
std::filesystem::path ScratchPath() {
    return std::filesystem::temp_directory_path() /
           ("korvex-run-fuzz-" + std::to_string(::getpid()));
}

const std::filesystem::path& OutDir() {
    static const std::filesystem::path dir = [] {
        std::filesystem::create_directories(ScratchPath());
        std::atexit([] {
            std::error_code ignored;
            std::filesystem::remove_all(ScratchPath(), ignored);
        });
        return ScratchPath();
    }();
    return dir;
}

bool PlainFileName(const std::string& word) {
    if (word.empty() || word.size() > 64 || word[0] == '.') return false;
    for (const char c : word) {
        const bool ok = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                        (c >= '0' && c <= '9') || c == '.' || c == '_' || c == '-';
        if (!ok) return false;
    }
    return true;
}

// Lines the target must not run as they are, blanked so the line numbers stay: files written
// outside the scratch folder, and more than a minute of virtual time in all (the runner allows an
// hour a wait; spending it here would only slow the search down).
constexpr long kMostWaited = 60000;
std::string Tame(std::string_view input) {
    std::string out;
    std::istringstream in{std::string(input)};
    std::string line;
    int number = 0;
    long waited = 0;
    while (std::getline(in, line)) {
        ++number;
        std::vector<std::string> words;
        try {
            words = host::SplitScriptLine(line, number);
        } catch (const host::ScriptError&) {
        }
        if (!words.empty()) {
            std::string command = words[0];
            for (char& c : command) c = host::AsciiLower(c);
            if ((command == "save" || command == "snapshot") &&
                (words.size() < 2 || !PlainFileName(words[1])))
                line = "#";
            if (command == "wait" && words.size() == 2) {
                const bool plain = words[1].size() <= 5 &&
                                   words[1].find_first_not_of("0123456789") == std::string::npos;
                waited += plain ? std::stol(words[1]) : 0;
                if (!plain || waited > kMostWaited) line = "#";
            }
        }
        out += line;
        out += '\n';
    }
    return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string script = Tame({reinterpret_cast<const char*>(data), size});
    cli::Session session;
    session.Open(FormText());
    std::ostringstream out;
    host::ScriptRunner runner(session.form, session.platform.driver(), out, OutDir());
    try {
        runner.Run(script);
    } catch (const host::ScriptError&) {
    }
    return 0;
}
