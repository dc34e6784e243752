#include "base/file.hpp"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

#include "base/error.hpp"
#include "base/os_file.hpp"

namespace korvex {

namespace {

[[noreturn]] void Refuse(const std::string& path, const std::string& why) {
    throw host::HostError(host::kErrPathFileAccess,
                          "Path/File access error (" + path + ": " + why + ")", "WriteFile");
}

}  // namespace

std::string ReadFileText(const std::string& path) {
    namespace fs = std::filesystem;
    const fs::path file = os::Utf8Path(path);
    std::error_code ec;
    if (fs::is_directory(file, ec)) {
        throw host::HostError(host::kErrPathFileAccess,
                              "Path/File access error (" + path + " is a folder)", "ReadFile");
    }
    if (!fs::exists(file, ec)) {
        throw host::HostError(host::kErrFileNotFound, "File not found (" + path + ")", "ReadFile");
    }
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        throw host::HostError(host::kErrPathFileAccess,
                              "Path/File access error (" + path + ": " + std::strerror(errno) + ")",
                              "ReadFile");
    }
    std::ostringstream text;
    text << in.rdbuf();
    if (in.bad()) {
        throw host::HostError(host::kErrPathFileAccess,
                              "Path/File access error (" + path + ": reading failed)", "ReadFile");
    }
    return std::move(text).str();
}

void WriteFileReplacing(const std::string& path, std::string_view bytes) {
    namespace fs = std::filesystem;
    const fs::path target = os::Utf8Path(path);
    std::error_code ec;
    if (fs::is_directory(target, ec)) Refuse(path, "is a folder");
    // Beside the target, so the rename stays within one file system.
    const std::string temporaryName = path + ".korvex-new";
    const fs::path temporary = os::Utf8Path(temporaryName);
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        if (!out)
            Refuse(path,
                   std::string("cannot create ") + temporaryName + ": " + std::strerror(errno));
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        out.flush();
        out.close();
        if (!out) {
            const std::string why = std::strerror(errno);
            fs::remove(temporary, ec);
            Refuse(path, "writing failed: " + why);
        }
    }
    ec = os::MoveReplacing(temporary, target);
    if (ec) {
        std::error_code ignored;
        fs::remove(temporary, ignored);
        Refuse(path, ec.message());
    }
}

}  // namespace korvex
