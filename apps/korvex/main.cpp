// korvex: renders and runs Korvex Tools forms headlessly.

#include <array>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <iostream>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "base/error.hpp"
#include "commands.hpp"

namespace korvex::cli {
namespace {

int Version(Args) {
    std::printf("korvex %s\n", KORVEX_VERSION);
    return kExitOk;
}

int Help(Args);

// The Windows build has the commands that run on the Win32 backend; showing a form through
// SDL2, the gallery and the drawing scripts are the portable platform's.
constexpr std::array kCommands = {
    Command{"help", "korvex help", "shows this text", Help},
    Command{"version", "korvex version", "prints the version", Version},
    Command{"bag", "korvex bag FORM.json", "prints every control's saved property bag", RunBag},
#if defined(_WIN32)
    Command{"run", "korvex run FORM.json [--script FILE] [--out DIR]",
            "runs a form with a script of input, prints its events", RunForm},
#else
    Command{"run", "korvex run FORM.json [--script FILE] [--out DIR] [--wav FILE]",
            "runs a form with a script of input, prints its events", RunForm},
#endif
#if !defined(_WIN32)
    Command{"show", "korvex show FORM.json [--scale N] [--for SECONDS]",
            "opens the form in a window to try it with mouse and keyboard", ShowForm},
#endif
    Command{"render", "korvex render FORM.json -o FILE.png",
            "renders a form as it looks at run time", RenderForm},
#if !defined(_WIN32)
    Command{"gallery", "korvex gallery --out DIR",
            "renders every control in its main looks, with index.html", RunGallery},
    Command{"gdi", "korvex gdi SCRIPT [--png FILE] [--hex FILE]",
            "runs a drawing script and writes the canvas", RunGdi},
#endif
    Command{"members", "korvex members CLASS | --all --out DIR | --idl FILE",
            "the member reference of a class (e.g. Korvex_Tools.Button) as Markdown, or the "
            "type library's IDL",
            RunMembers},
};

int Help(Args) {
    std::printf(
        "korvex - renders and runs Korvex Tools forms headlessly\n\n"
        "Usage: korvex COMMAND [ARGUMENTS]\n\nCommands:\n");
    for (const Command& command : kCommands) {
        std::printf("  %-52.*s %.*s\n", static_cast<int>(command.usage.size()),
                    command.usage.data(), static_cast<int>(command.summary.size()),
                    command.summary.data());
    }
    std::printf(
        "\nExit status:\n"
        "  0  done (korvex run: host errors of single script steps are part of its output)\n"
        "  1  the host's error ended the command: a file that cannot be read or written, a form\n"
        "     that does not load (the message names the file, control, key and value)\n"
        "  2  usage: unknown command, missing or unknown argument\n"
        "  3  a malformed script line (korvex run, korvex gdi), named by file and line\n"
        "  4  a fault of the tool itself\n"
        "Every failure prints one line to standard error, after all output printed so far.\n");
    return kExitOk;
}

}  // namespace

namespace {

// One line, however the message came: line breaks from a file's text are shown escaped, and an
// enormous value is cut, so the line stays readable.
std::string OneLine(std::string_view message) {
    constexpr std::size_t kLongest = 2000;
    std::string line;
    for (const char c : message.substr(0, kLongest)) {
        if (c == '\n')
            line += "\\n";
        else if (c == '\r')
            line += "\\r";
        else if (static_cast<unsigned char>(c) < 0x20)
            line += ' ';
        else
            line += c;
    }
    if (message.size() > kLongest) line += " ...";
    return line;
}

}  // namespace

int Fail(std::string_view command, std::string_view message, int status) {
    // What the command printed before it failed stays, and stays ahead of the error.
    std::cout.flush();
    std::fflush(stdout);
    std::fprintf(stderr, "korvex %.*s: %s\n", static_cast<int>(command.size()), command.data(),
                 OneLine(message).c_str());
    return status;
}

void MakeFolder(const std::filesystem::path& dir) {
    std::error_code ec;
    std::filesystem::create_directories(dir, ec);
    if (!std::filesystem::is_directory(dir, ec)) {
        throw korvex::host::HostError(
            korvex::host::kErrPathFileAccess,
            "Path/File access error (" + dir.string() + " is not a folder that can be made)",
            "korvex");
    }
}

std::span<const Command> AllCommands() {
    return kCommands;
}

}  // namespace korvex::cli

int main(int argc, char** argv) {
    using namespace korvex::cli;
    std::vector<std::string_view> args(argv + 1, argv + argc);
    if (args.empty() || args[0] == "--help" || args[0] == "-h") return AllCommands()[0].run({});
    for (const Command& command : AllCommands()) {
        if (command.name != args[0]) continue;
        try {
            const int status = command.run(Args(args).subspan(1));
            std::cout.flush();
            return status;
        } catch (const korvex::host::HostError& e) {
            return Fail(command.name, e.what(), kExitHostError);
        } catch (const std::bad_alloc&) {
            return Fail(command.name, korvex::host::HostError(korvex::host::kErrOutOfMemory).what(),
                        kExitHostError);
        } catch (const std::exception& e) {
            return Fail(command.name, std::string("internal error: ") + e.what(), kExitInternal);
        } catch (...) {
            return Fail(command.name, "internal error", kExitInternal);
        }
    }
    std::fprintf(stderr, "korvex: unknown command '%s' (see korvex --help)\n", argv[1]);
    return kExitUsage;
}
