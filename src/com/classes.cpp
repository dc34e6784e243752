#include "com/classes.hpp"

#include <vector>

#include "com/module.hpp"
#include "library/library.hpp"

namespace korvex::com {

GUID ToGuid(const host::Guid& guid) {
    const auto& b = guid.bytes;
    GUID out{};
    out.Data1 = (static_cast<unsigned long>(b[0]) << 24) |
                (static_cast<unsigned long>(b[1]) << 16) | (static_cast<unsigned long>(b[2]) << 8) |
                b[3];
    out.Data2 = static_cast<unsigned short>((b[4] << 8) | b[5]);
    out.Data3 = static_cast<unsigned short>((b[6] << 8) | b[7]);
    for (int i = 0; i < 8; ++i) out.Data4[i] = b[static_cast<std::size_t>(8 + i)];
    return out;
}

std::wstring GuidText(const GUID& guid) {
    wchar_t text[40] = {};
    StringFromGUID2(guid, text, 40);
    return text;
}

std::span<const ClassEntry> PublicClasses() {
    static const std::vector<ClassEntry> entries = [] {
        // The tables are the classes' own constants; a context without a platform lists them.
        host::HostContext context;
        RegisterLibrary(context);
        const std::string lib(kLibraryName);
        std::vector<ClassEntry> out;
        for (const host::ClassInfo* info : context.Classes().Classes()) {
            ClassEntry entry;
            entry.info = info;
            entry.clsid = ToGuid(host::TypeLibraryGuid(info->progId));
            entry.iid = ToGuid(host::TypeLibraryGuid(lib + "._" + info->name));
            entry.eventIid = ToGuid(host::TypeLibraryGuid(lib + ".__" + info->name));
            out.push_back(entry);
        }
        return out;
    }();
    return entries;
}

const ClassEntry* FindClass(REFCLSID clsid) {
    for (const ClassEntry& entry : PublicClasses())
        if (IsEqualGUID(entry.clsid, clsid)) return &entry;
    return nullptr;
}

GUID LibraryId() {
    return ToGuid(host::TypeLibraryGuid(kLibraryName));
}

}  // namespace korvex::com
