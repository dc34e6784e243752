// korvex: renders and runs Korvex Tools forms headlessly.

#include <array>
#include <cstdio>
#include <exception>
#include <string_view>
#include <vector>

#include "commands.hpp"

namespace korvex::cli {
namespace {

int Version(Args) {
    std::printf("korvex %s\n", KORVEX_VERSION);
    return 0;
}

int Help(Args);

constexpr std::array kCommands = {
    Command{"help", "korvex help", "shows this text", Help},
    Command{"version", "korvex version", "prints the version", Version},
    Command{"bag", "korvex bag FORM.json", "prints every control's saved property bag", RunBag},
    Command{"run", "korvex run FORM.json [--script FILE] [--out DIR] [--wav FILE]",
            "runs a form with a script of input, prints its events", RunForm},
    Command{"show", "korvex show FORM.json [--scale N] [--for SECONDS]",
            "opens the form in a window to try it with mouse and keyboard", ShowForm},
    Command{"render", "korvex render FORM.json -o FILE.png",
            "renders a form as it looks at run time", RenderForm},
    Command{"gallery", "korvex gallery --out DIR",
            "renders every control in its main looks, with index.html", RunGallery},
    Command{"gdi", "korvex gdi SCRIPT [--png FILE] [--hex FILE]",
            "runs a drawing script and writes the canvas", RunGdi},
    Command{"members", "korvex members CLASS | --all --out DIR",
            "the member reference of a class (e.g. Korvex_Tools.Button) as Markdown", RunMembers},
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
    return 0;
}

}  // namespace

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
            return command.run(Args(args).subspan(1));
        } catch (const std::exception& e) {
            std::fprintf(stderr, "korvex %s: %s\n", argv[1], e.what());
            return 1;
        }
    }
    std::fprintf(stderr, "korvex: unknown command '%s' (see korvex --help)\n", argv[1]);
    return 2;
}
