#pragma once
// Sub-commands of the korvex tool. Each takes the arguments after its own name and returns the
// process exit status; usage errors print to stderr and return 2.

#include <span>
#include <string_view>

namespace korvex::cli {

using Args = std::span<const std::string_view>;

struct Command {
    std::string_view name;
    std::string_view usage;
    std::string_view summary;
    int (*run)(Args args);
};

std::span<const Command> AllCommands();

int RunBag(Args args);
int RunForm(Args args);
int RenderForm(Args args);
int RunGallery(Args args);
int RunGdi(Args args);
int RunMembers(Args args);
int ShowForm(Args args);

}  // namespace korvex::cli
