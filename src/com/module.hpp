#pragma once
// The DLL as a whole: its module handle and path, and the counts DllCanUnloadNow reads (live
// objects, class factories and server locks).

#include <string>

#include "com/win.hpp"

namespace korvex::com {

void SetModule(HINSTANCE module);
[[nodiscard]] HINSTANCE Module();
// The DLL's full path: the InprocServer32 value and where the type library is loaded from.
[[nodiscard]] std::wstring ModulePath();

void AddModuleRef();
void ReleaseModuleRef();
[[nodiscard]] bool ModuleInUse();

std::wstring Widen(std::string_view utf8);
std::string Narrow(const wchar_t* utf16, std::size_t length);
std::string Narrow(BSTR text);

}  // namespace korvex::com
