// korvex_tools.dll: the library's controls as an in-process ActiveX server.

#include "com/module.hpp"
#include "com/server.hpp"

extern "C" {

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved) {
    if (reason == DLL_PROCESS_ATTACH) {
        korvex::com::SetModule(instance);
        DisableThreadLibraryCalls(instance);
    } else if (reason == DLL_PROCESS_DETACH && !reserved) {
        // Unloaded while the process goes on (DllCanUnloadNow said yes, so no window is left):
        // the platform's window classes go with the code of their window procedures.
        UnregisterClassW(L"KorvexWindow", instance);
        UnregisterClassW(L"KorvexMessages", instance);
    }
    return TRUE;
}

STDAPI DllGetClassObject(REFCLSID clsid, REFIID riid, LPVOID* ppv) {
    return korvex::com::GetClassObject(clsid, riid, ppv);
}

STDAPI DllCanUnloadNow() {
    return korvex::com::CanUnloadNow();
}

STDAPI DllRegisterServer() {
    return korvex::com::RegisterServer(false);
}

STDAPI DllUnregisterServer() {
    return korvex::com::UnregisterServer(false);
}

// regsvr32 /n /i:user registers for the current user only; without "user", for the machine.
STDAPI DllInstall(BOOL install, LPCWSTR commandLine) {
    const bool perUser = commandLine && _wcsicmp(commandLine, L"user") == 0;
    return install ? korvex::com::RegisterServer(perUser) : korvex::com::UnregisterServer(perUser);
}

}  // extern "C"
