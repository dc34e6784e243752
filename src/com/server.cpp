#include "com/server.hpp"

#include <string>

#include "com/classes.hpp"
#include "com/control_object.hpp"
#include "com/module.hpp"
#include "library/library.hpp"

// oleaut32 exports these (Vista on); MinGW-w64's headers do not declare them.
extern "C" HRESULT WINAPI RegisterTypeLibForUser(ITypeLib* library, OLECHAR* path, OLECHAR* help);
extern "C" HRESULT WINAPI UnRegisterTypeLibForUser(REFGUID library, WORD major, WORD minor,
                                                   LCID locale, SYSKIND system);

namespace korvex::com {

namespace {

// CATID_Control
constexpr SYSKIND kSystem = sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32;

constexpr GUID kCategoryControl = {
    0x40FC6ED4, 0x2438, 0x11CF, {0xA3, 0xDB, 0x08, 0x00, 0x36, 0xF1, 0x25, 0x02}};

class ClassFactory final : public IClassFactory {
  public:
    explicit ClassFactory(const ClassEntry& entry) : entry_(entry) { AddModuleRef(); }
    ~ClassFactory() { ReleaseModuleRef(); }
    ClassFactory(const ClassFactory&) = delete;
    ClassFactory& operator=(const ClassFactory&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) override {
        if (!ppv) return E_POINTER;
        if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IClassFactory)) {
            *ppv = static_cast<IClassFactory*>(this);
            AddRef();
            return S_OK;
        }
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++refs_); }
    ULONG STDMETHODCALLTYPE Release() override {
        const long left = --refs_;
        if (left == 0) delete this;
        return static_cast<ULONG>(left);
    }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID riid, void** ppv) override {
        if (ppv) *ppv = nullptr;
        if (outer) return CLASS_E_NOAGGREGATION;
        return ControlObject::Create(entry_, riid, ppv);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
        if (lock)
            AddModuleRef();
        else
            ReleaseModuleRef();
        return S_OK;
    }

  private:
    long refs_ = 1;
    const ClassEntry& entry_;
};

class Key {
  public:
    Key(HKEY parent, const std::wstring& path) {
        if (RegCreateKeyExW(parent, path.c_str(), 0, nullptr, 0, KEY_WRITE | KEY_READ, nullptr,
                            &key_, nullptr) != ERROR_SUCCESS)
            key_ = nullptr;
    }
    ~Key() {
        if (key_) RegCloseKey(key_);
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;
    [[nodiscard]] HKEY Handle() const { return key_; }
    bool Set(const wchar_t* name, const std::wstring& value) {
        return key_ &&
               RegSetValueExW(key_, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                              static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t))) ==
                   ERROR_SUCCESS;
    }

  private:
    HKEY key_ = nullptr;
};

// The toolbox bitmap the DLL holds for a control, 0 for none.
int ToolboxBitmap(const std::string& name) {
    const std::wstring wanted = Widen(name);
    for (int id = kFirstToolboxBitmap; id < kFirstToolboxBitmap + 100; ++id) {
        wchar_t text[64] = {};
        if (LoadStringW(Module(), static_cast<UINT>(id), text, 64) > 0 && wanted == text &&
            FindResourceW(Module(), MAKEINTRESOURCEW(id), MAKEINTRESOURCEW(2)))
            return id;
    }
    return 0;
}

// The root of class registrations: per user or per machine.
HKEY OpenClassesRoot(bool perUser) {
    HKEY root = nullptr;
    if (RegCreateKeyExW(perUser ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE, L"Software\\Classes", 0,
                        nullptr, 0, KEY_ALL_ACCESS, nullptr, &root, nullptr) != ERROR_SUCCESS)
        return nullptr;
    return root;
}

bool SetKey(HKEY root, const std::wstring& path, const std::wstring& value,
            const wchar_t* name = nullptr) {
    Key key(root, path);
    return key.Set(name, value);
}

bool RegisterControlClass(HKEY root, const ClassEntry& entry, const std::wstring& path) {
    const std::wstring progId = Widen(entry.info->progId);
    const std::wstring versioned = progId + L".1";
    const std::wstring clsid = GuidText(entry.clsid);
    const std::wstring name = Widen(entry.info->name) + L" Control";
    const std::wstring key = L"CLSID\\" + clsid;
    bool ok = SetKey(root, key, name);
    ok = ok && SetKey(root, key + L"\\InprocServer32", path);
    ok = ok && SetKey(root, key + L"\\InprocServer32", L"Apartment", L"ThreadingModel");
    ok = ok && SetKey(root, key + L"\\ProgID", versioned);
    ok = ok && SetKey(root, key + L"\\VersionIndependentProgID", progId);
    ok = ok && SetKey(root, key + L"\\Control", L"");
    ok = ok && SetKey(root, key + L"\\MiscStatus", L"0");
    ok = ok && SetKey(root, key + L"\\MiscStatus\\1", std::to_wstring(kMiscStatus));
    ok = ok && SetKey(root, key + L"\\TypeLib", GuidText(LibraryId()));
    ok = ok && SetKey(root, key + L"\\Version",
                      std::to_wstring(kTypeLibMajor) + L"." + std::to_wstring(kTypeLibMinor));
    ok = ok && SetKey(root, key + L"\\Implemented Categories\\" + GuidText(kCategoryControl), L"");
    if (const int bitmap = ToolboxBitmap(entry.info->name))
        ok = ok && SetKey(root, key + L"\\ToolboxBitmap32", path + L", " + std::to_wstring(bitmap));
    ok = ok && SetKey(root, progId, name);
    ok = ok && SetKey(root, progId + L"\\CLSID", clsid);
    ok = ok && SetKey(root, progId + L"\\CurVer", versioned);
    ok = ok && SetKey(root, versioned, name);
    ok = ok && SetKey(root, versioned + L"\\CLSID", clsid);
    return ok;
}

void UnregisterControlClass(HKEY root, const ClassEntry& entry) {
    const std::wstring progId = Widen(entry.info->progId);
    RegDeleteTreeW(root, (L"CLSID\\" + GuidText(entry.clsid)).c_str());
    RegDeleteTreeW(root, progId.c_str());
    RegDeleteTreeW(root, (progId + L".1").c_str());
}

}  // namespace

HRESULT GetClassObject(REFCLSID clsid, REFIID riid, void** ppv) {
    if (!ppv) return E_POINTER;
    *ppv = nullptr;
    const ClassEntry* entry = FindClass(clsid);
    if (!entry) return CLASS_E_CLASSNOTAVAILABLE;
    auto* factory = new (std::nothrow) ClassFactory(*entry);
    if (!factory) return E_OUTOFMEMORY;
    const HRESULT hr = factory->QueryInterface(riid, ppv);
    factory->Release();
    return hr;
}

HRESULT CanUnloadNow() {
    return ModuleInUse() ? S_FALSE : S_OK;
}

HRESULT RegisterServer(bool perUser) {
    const std::wstring path = ModulePath();
    ITypeLib* typeLib = nullptr;
    HRESULT hr = LoadTypeLibEx(path.c_str(), REGKIND_NONE, &typeLib);
    if (FAILED(hr)) return hr;
    std::wstring writable = path;
    hr = perUser ? RegisterTypeLibForUser(typeLib, writable.data(), nullptr)
                 : RegisterTypeLib(typeLib, writable.data(), nullptr);
    typeLib->Release();
    if (FAILED(hr)) return hr;

    HKEY root = OpenClassesRoot(perUser);
    if (!root) return SELFREG_E_CLASS;
    bool ok = true;
    for (const ClassEntry& entry : PublicClasses())
        ok = RegisterControlClass(root, entry, path) && ok;
    RegCloseKey(root);
    return ok ? S_OK : SELFREG_E_CLASS;
}

HRESULT UnregisterServer(bool perUser) {
    if (HKEY root = OpenClassesRoot(perUser)) {
        for (const ClassEntry& entry : PublicClasses()) UnregisterControlClass(root, entry);
        RegCloseKey(root);
    }
    const GUID lib = LibraryId();
    const HRESULT hr =
        perUser
            ? UnRegisterTypeLibForUser(lib, kTypeLibMajor, kTypeLibMinor, LOCALE_NEUTRAL, kSystem)
            : UnRegisterTypeLib(lib, kTypeLibMajor, kTypeLibMinor, LOCALE_NEUTRAL, kSystem);
    // A library that was never registered is not an error of unregistering.
    return (SUCCEEDED(hr) || hr == TYPE_E_REGISTRYACCESS || hr == TYPE_E_LIBNOTREGISTERED) ? S_OK
                                                                                           : hr;
}

}  // namespace korvex::com
