#pragma once
// The Windows and OLE headers of the COM layer. <windows.h> defines macros (CreateWindow,
// SetWindowText, SND_ASYNC, ...) that would rename members and constants of the platform seam,
// so the seam's headers are read first, whatever a file includes next.

#include "platform/driver.hpp"
#include "platform/gdi.hpp"
#include "platform/sound.hpp"
#include "platform/win32/win32_platform.hpp"
#include "platform/window.hpp"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <ocidl.h>
#include <ole2.h>
#include <olectl.h>

// COM objects are released through IUnknown::Release, never deleted through an interface
// pointer: the interfaces have no virtual destructors by design.
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
