// korvex run FORM.json [--script FILE] [--out DIR]: shows a form at run time on the virtual
// screen, runs a script of input and property operations, prints what the controls raise.
// korvex render FORM.json -o FILE.png: the form as it looks at run time.

#include <cstdio>
#include <filesystem>
#include <iostream>
#include <sstream>
#include <string>

#include "base/error.hpp"
#include "base/file.hpp"
#include "commands.hpp"
#include "driver/script_runner.hpp"
#include "host/container.hpp"
#include "platform/png.hpp"
#include "session.hpp"

namespace korvex::cli {

namespace {

constexpr const char* kRunUsage =
    "usage: korvex run FORM.json [--script FILE] [--out DIR] [--wav FILE]\n";

std::string ReadAll(std::istream& in) {
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

}  // namespace

int RunForm(Args args) {
    std::string formPath, scriptPath, wavPath, outDir = ".";
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--script" && i + 1 < args.size())
            scriptPath = args[++i];
        else if (args[i] == "--wav" && i + 1 < args.size())
            wavPath = args[++i];
        else if (args[i] == "--out" && i + 1 < args.size())
            outDir = args[++i];
        else if (formPath.empty() && !args[i].starts_with("--"))
            formPath = args[i];
        else {
            std::fputs(kRunUsage, stderr);
            return kExitUsage;
        }
    }
    if (formPath.empty()) {
        std::fputs(kRunUsage, stderr);
        return kExitUsage;
    }
    const std::string scriptName = scriptPath.empty() ? "standard input" : scriptPath;
    const std::string script = scriptPath.empty() ? ReadAll(std::cin) : ReadFileText(scriptPath);
    // Snapshots land in the output folder, which a user should not have to make first.
    MakeFolder(outDir);

    Session session;
    session.OpenFile(formPath);
    host::ScriptRunner runner(session.form, session.platform.driver(), std::cout, outDir);
    try {
        runner.Run(script);
    } catch (const host::ScriptError& e) {
        return Fail("run", scriptName + ": line " + std::to_string(e.Line()) + ": " + e.Message(),
                    kExitBadScript);
    }
    // What the controls played, along the virtual timeline, for a person to listen to. The
    // Windows build plays nothing and records nothing to write.
#if defined(_WIN32)
    if (!wavPath.empty())
        return Fail("run", "--wav needs the portable platform's sound (the Linux build)",
                    kExitUsage);
#else
    if (!wavPath.empty() && !session.platform.sound().WriteWav(wavPath)) {
        throw host::HostError(host::kErrPathFileAccess,
                              "Path/File access error (cannot write " + wavPath + ")", "korvex");
    }
#endif
    return kExitOk;
}

int RenderForm(Args args) {
    std::string formPath, output;
    for (std::size_t i = 0; i < args.size(); ++i) {
        if ((args[i] == "-o" || args[i] == "--out") && i + 1 < args.size()) {
            output = args[++i];
        } else if (formPath.empty() && !args[i].starts_with("-")) {
            formPath = args[i];
        } else {
            formPath.clear();
            break;
        }
    }
    if (formPath.empty() || output.empty()) {
        std::fprintf(stderr, "usage: korvex render FORM.json -o FILE.png\n");
        return kExitUsage;
    }
    Session session;
    session.OpenFile(formPath);
    platform::Windows& windows = session.platform.windows();
    std::vector<std::uint32_t> pixels =
        session.platform.driver().ComposeWindow(session.form.FormWindow());
    platform::RECT r;
    windows.GetWindowRect(session.form.FormWindow(), &r);
    try {
        platform::WritePng(output, {pixels.data(), r.Width(), r.Height()});
    } catch (const host::HostError&) {
        throw;
    } catch (const std::runtime_error& e) {
        throw host::HostError(host::kErrPathFileAccess,
                              std::string("Path/File access error (") + e.what() + ")", "korvex");
    }
    return kExitOk;
}

}  // namespace korvex::cli
