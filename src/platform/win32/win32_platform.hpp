#pragma once
// Win32Platform: the platform over the real Windows API, for the ActiveX library and the
// Windows build of the korvex tool. Windows are user32 windows whose window procedure hands
// input, focus, capture and painting to the WindowHandler; drawing is Win32Gdi; timers are
// SetTimer's; Wait and RunModal pump messages; sound is winmm's; the shell is ShellExecuteW.
//
// This header stays free of <windows.h> (its macros clash with the seam's names): native
// handles cross it as void*.

#include <cstdint>
#include <memory>

#include "platform/driver.hpp"
#include "platform/sound.hpp"
#include "platform/window.hpp"

namespace korvex::platform::win32 {

struct Win32Options {
    // Scripted runs (korvex run) need the same event log on every run: the clock is then
    // virtual and moves only through the driver face, as on the portable platform. A control
    // library inside a real host runs on the system's time.
    bool virtualTime = false;
    // Nothing reaches the machine: sounds are not played and the shell opens nothing, answering
    // as if it had (a scripted run, a test). Checks of the arguments still apply.
    bool dryRun = false;
};

class Win32Platform final : public Platform {
  public:
    explicit Win32Platform(Win32Options options = {});
    ~Win32Platform() override;
    Win32Platform(const Win32Platform&) = delete;
    Win32Platform& operator=(const Win32Platform&) = delete;

    Gdi& gdi() override;
    Windows& windows() override;
    Clock& clock() override;
    EventLoop& loop() override;
    Sound& sound() override;
    Shell& shell() override;
    Clipboard& clipboard() override;

    // The driver face for the tool and the tests: input reaches the windows as real messages
    // sent through their window procedures; Advance moves virtual time (or pumps messages for
    // that long on the system's time); the pixels come from the windows' own painting.
    Driver& driver();

    // A window this platform did not create (an OLE container's), usable as a parent in
    // CreateWindow and SetParent. It is never destroyed by this platform.
    HWND AdoptWindow(void* nativeWindow);
    [[nodiscard]] void* NativeWindow(HWND window);
    // A device context handed in from outside (IViewObject::Draw) as a drawing-seam handle for
    // the duration of one call; Release forgets it without deleting it.
    HDC AdoptDC(void* nativeDC);
    void ReleaseAdoptedDC(HDC dc);
    // Paints a window (and its children) into a native device context at the given offset, as
    // WM_PRINT does; for IViewObject::Draw and for tests that read a window's pixels.
    bool PrintWindow(HWND window, void* nativeDC, POINT origin);
    // A keystroke message the host offers before dispatching it (IOleInPlaceActiveObject::
    // TranslateAccelerator): true when a key filter or the focused window took it.
    bool TranslateAccelerator(const void* nativeMsg);

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace korvex::platform::win32
