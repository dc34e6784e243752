#pragma once
// The classes the DLL serves: every public control of the library with the identifiers the type
// library gives it (the same name-based GUIDs, so the registry, the DLL and the .tlb agree).

#include <span>
#include <string>

#include "com/win.hpp"
#include "host/type_info.hpp"
#include "host/type_library.hpp"

namespace korvex::com {

struct ClassEntry {
    const host::ClassInfo* info = nullptr;
    GUID clsid{};
    GUID iid{};       // the default dispinterface
    GUID eventIid{};  // the event dispinterface
};

// The toolbox bitmaps are resources from here on; the string of the same id names the control.
inline constexpr int kFirstToolboxBitmap = 30000;
inline constexpr WORD kTypeLibMajor = 1;
inline constexpr WORD kTypeLibMinor = 0;

// In the library's registration order; FlatButton, private, is not among them.
std::span<const ClassEntry> PublicClasses();
// nullptr for a CLSID the DLL does not serve.
const ClassEntry* FindClass(REFCLSID clsid);
[[nodiscard]] GUID LibraryId();

GUID ToGuid(const host::Guid& guid);
// "{7C6AE222-9323-4D5E-8C2E-368E7104A492}"
std::wstring GuidText(const GUID& guid);

}  // namespace korvex::com
