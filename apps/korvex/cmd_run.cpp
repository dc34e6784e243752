// korvex run FORM.json [--script FILE] [--out DIR]: shows a form at run time on the virtual
// screen, runs a script of input and property operations, prints what the controls raise.
// korvex render FORM.json -o FILE.png: the form as it looks at run time.

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

#include "commands.hpp"
#include "driver/script_runner.hpp"
#include "host/container.hpp"
#include "platform/png.hpp"
#include "session.hpp"

namespace korvex::cli {

namespace {

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
            std::fprintf(stderr,
                         "usage: korvex run FORM.json [--script FILE] [--out DIR] [--wav FILE]\n");
            return 2;
        }
    }
    if (formPath.empty()) {
        std::fprintf(stderr,
                     "usage: korvex run FORM.json [--script FILE] [--out DIR] [--wav FILE]\n");
        return 2;
    }
    std::string script;
    if (scriptPath.empty()) {
        script = ReadAll(std::cin);
    } else {
        std::ifstream in(scriptPath);
        if (!in) {
            std::fprintf(stderr, "korvex run: cannot read the script %s\n", scriptPath.c_str());
            return 1;
        }
        script = ReadAll(in);
    }

    // Snapshots land in the output folder, which a user should not have to make first.
    std::error_code made;
    std::filesystem::create_directories(outDir, made);

    Session session;
    session.OpenFile(formPath);
    host::ScriptRunner runner(session.form, session.platform.driver(), std::cout, outDir);
    try {
        runner.Run(script);
    } catch (const host::ScriptError& e) {
        std::cout.flush();
        std::fprintf(stderr, "korvex run: %s\n", e.what());
        return 1;
    }
    // What the controls played, along the virtual timeline, for a person to listen to.
    if (!wavPath.empty() && !session.platform.sound().WriteWav(wavPath)) {
        std::fprintf(stderr, "korvex run: cannot write %s\n", wavPath.c_str());
        return 1;
    }
    return 0;
}

int RenderForm(Args args) {
    std::string formPath, output;
    for (std::size_t i = 0; i < args.size(); ++i) {
        if ((args[i] == "-o" || args[i] == "--out") && i + 1 < args.size())
            output = args[++i];
        else if (formPath.empty())
            formPath = args[i];
    }
    if (formPath.empty() || output.empty()) {
        std::fprintf(stderr, "usage: korvex render FORM.json -o FILE.png\n");
        return 2;
    }
    Session session;
    session.OpenFile(formPath);
    platform::Windows& windows = session.platform.windows();
    std::vector<std::uint32_t> pixels =
        session.platform.driver().ComposeWindow(session.form.FormWindow());
    platform::RECT r;
    windows.GetWindowRect(session.form.FormWindow(), &r);
    platform::WritePng(output, {pixels.data(), r.Width(), r.Height()});
    return 0;
}

}  // namespace korvex::cli
