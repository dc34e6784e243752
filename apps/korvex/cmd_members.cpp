// korvex members CLASS | --all --out DIR: the member reference of the library's classes, written
// from the member tables themselves (docs/reference/ is this command's output).

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "base/error.hpp"
#include "base/file.hpp"
#include "commands.hpp"
#include "host/reference.hpp"
#include "session.hpp"

namespace korvex::cli {

namespace {

int Usage() {
    std::fprintf(
        stderr,
        "usage: korvex members CLASS          prints one class's reference (ProgID or class name)\n"
        "       korvex members --all --out DIR writes one Markdown file per class and README.md\n");
    return 2;
}

bool WriteFile(const std::filesystem::path& path, const std::string& text) {
    try {
        WriteFileReplacing(path.string(), text);
    } catch (const host::HostError&) {
        return false;
    }
    return true;
}

}  // namespace

int RunMembers(Args args) {
    Session session;
    const std::vector<const host::ClassInfo*> classes = session.context.Classes().Classes();
    if (args.size() == 1 && args[0] != "--all" && args[0] != "--help") {
        for (const host::ClassInfo* info : classes) {
            if (info->progId == args[0] || info->name == args[0]) {
                std::fputs(host::MemberReference(*info).c_str(), stdout);
                return 0;
            }
        }
        std::fprintf(stderr,
                     "korvex members: no class '%.*s' (ProgIDs look like Korvex_Tools.Button)\n",
                     static_cast<int>(args[0].size()), args[0].data());
        return 1;
    }
    if (args.size() != 3 || args[0] != "--all" || args[1] != "--out") return Usage();

    const std::filesystem::path dir{std::string(args[2])};
    std::filesystem::create_directories(dir);
    for (const host::ClassInfo* info : classes) {
        if (!WriteFile(dir / (info->name + ".md"), host::MemberReference(*info))) {
            std::fprintf(stderr, "korvex members: cannot write %s\n",
                         (dir / (info->name + ".md")).c_str());
            return 1;
        }
    }
    if (!WriteFile(dir / "README.md", host::MemberReferenceIndex(classes))) {
        std::fprintf(stderr, "korvex members: cannot write %s\n", (dir / "README.md").c_str());
        return 1;
    }
    return 0;
}

}  // namespace korvex::cli
