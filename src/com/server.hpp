#pragma once
// The server's entry points behind the DLL's exports: class objects and registration, per
// machine (HKLM\Software\Classes) or per user (HKCU\Software\Classes).

#include "com/win.hpp"

namespace korvex::com {

HRESULT GetClassObject(REFCLSID clsid, REFIID riid, void** ppv);
HRESULT CanUnloadNow();
HRESULT RegisterServer(bool perUser);
HRESULT UnregisterServer(bool perUser);

}  // namespace korvex::com
