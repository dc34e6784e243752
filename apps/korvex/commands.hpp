#pragma once
// Sub-commands of the korvex tool. Each takes the arguments after its own name and returns the
// process exit status. A failure prints one line to stderr saying where (file, script line,
// control, key) and returns its status; a HostError or any other exception thrown out of a
// command is printed and given its status by main.

#include <filesystem>
#include <span>
#include <string_view>

namespace korvex::cli {

using Args = std::span<const std::string_view>;

// Exit statuses, listed by korvex --help.
enum ExitStatus : int {
    kExitOk = 0,
    kExitHostError = 1,  // the host's numbered error ended the command
    kExitUsage = 2,      // the command line: unknown command, missing or unknown argument
    kExitBadScript = 3,  // a malformed line of a korvex run or korvex gdi script
    kExitInternal = 4,   // anything else: a fault of the tool itself
};

struct Command {
    std::string_view name;
    std::string_view usage;
    std::string_view summary;
    int (*run)(Args args);
};

std::span<const Command> AllCommands();

// Prints "korvex COMMAND: MESSAGE" as one line to stderr, after flushing what was printed to
// stdout so far, and returns status.
int Fail(std::string_view command, std::string_view message, int status);

// Makes a folder for the command's output; error 75 naming it when it cannot be made.
void MakeFolder(const std::filesystem::path& dir);

int RunBag(Args args);
int RunForm(Args args);
int RenderForm(Args args);
int RunGallery(Args args);
int RunGdi(Args args);
int RunMembers(Args args);
int ShowForm(Args args);

}  // namespace korvex::cli
