// korvex members CLASS | --all --out DIR | --idl FILE: the member reference of the library's
// classes and its type library's IDL, written from the member tables themselves
// (docs/reference/ and docs/korvex_tools.idl are this command's output).

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "base/error.hpp"
#include "base/file.hpp"
#include "commands.hpp"
#include "host/reference.hpp"
#include "host/type_library.hpp"
#include "session.hpp"

namespace korvex::cli {

namespace {

int Usage() {
    std::fprintf(
        stderr,
        "usage: korvex members CLASS          prints one class's reference (ProgID or class name)\n"
        "       korvex members --all --out DIR writes one Markdown file per class and README.md\n"
        "       korvex members --idl FILE          writes the type library's IDL (public "
        "controls)\n");
    return kExitUsage;
}

}  // namespace

int RunMembers(Args args) {
    if (args.size() == 2 && args[0] == "--idl") {
        // Only what the library offers to hosts: no private control, no platform needed.
        host::HostContext context;
        RegisterLibrary(context);
        WriteFileReplacing(std::string(args[1]),
                           host::TypeLibraryIdl(kLibraryName, context.Classes().Classes()));
        return kExitOk;
    }
    Session session;
    const std::vector<const host::ClassInfo*> classes = session.context.Classes().Classes();
    if (args.size() == 1 && args[0] != "--all" && args[0] != "--help") {
        for (const host::ClassInfo* info : classes) {
            if (info->progId == args[0] || info->name == args[0]) {
                std::fputs(host::MemberReference(*info).c_str(), stdout);
                return kExitOk;
            }
        }
        std::fprintf(stderr,
                     "korvex members: no class '%.*s' (ProgIDs look like Korvex_Tools.Button)\n",
                     static_cast<int>(args[0].size()), args[0].data());
        return kExitUsage;
    }
    if (args.size() != 3 || args[0] != "--all" || args[1] != "--out") return Usage();

    const std::filesystem::path dir{std::string(args[2])};
    MakeFolder(dir);
    for (const host::ClassInfo* info : classes)
        WriteFileReplacing((dir / (info->name + ".md")).string(), host::MemberReference(*info));
    WriteFileReplacing((dir / "README.md").string(), host::MemberReferenceIndex(classes));
    return kExitOk;
}

}  // namespace korvex::cli
