#pragma once
// <windows.h> for the backend's .cpp files, read after every header of ours: its macros would
// rename the seam's members (CreateWindow, SetWindowText ...) and its constants clash with the
// seam's (VK_*, SWP_*, HWND_*). From here on Win32 things are spelled with :: and the seam's
// constants by value or with their platform:: names read before this header.

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
// clang-format off
#include <windows.h>
#include <windowsx.h>
#include <mmsystem.h>
#include <shellapi.h>
// clang-format on

#undef CreateWindow
#undef SetWindowText
#undef GetWindowText
#undef TextOut
#undef GetTextExtentPoint32
#undef GetTextMetrics
#undef GetTextFace
#undef CreateFontIndirect
#undef PlaySound
#undef sndPlaySound
#undef ShellExecute
#undef GetSystemDirectory
#undef GetTempPath
#undef TranslateAccelerator

// The module this code is linked into: the DLL when the backend serves controls from one. Its
// window classes are registered for it, so they never meet those of the program that loaded it
// (which may link a backend of its own) and can go when the DLL is unloaded.
inline ::HINSTANCE CodeModule() {
    ::HMODULE module = nullptr;
    ::GetModuleHandleExW(
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
        reinterpret_cast<LPCWSTR>(&CodeModule), &module);
    return module;
}

// The system's special window handles, spelt where HWND is still the system's type (inside our
// namespace it is the seam's, and these macros cast to it).
namespace korvex_win32_native {
inline const ::HWND kTop = HWND_TOP;
inline const ::HWND kBottom = HWND_BOTTOM;
inline const ::HWND kTopmost = HWND_TOPMOST;
inline const ::HWND kNoTopmost = HWND_NOTOPMOST;
inline const ::HWND kMessageOnly = HWND_MESSAGE;
}  // namespace korvex_win32_native
