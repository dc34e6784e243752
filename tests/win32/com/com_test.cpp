// The ActiveX server korvex_tools.dll under Wine, loaded as a host loads it: registration per
// user and per machine, creation by ProgID, late binding through IDispatch compared with the
// member tables' own late binding on a control of the same class, errors as EXCEPINFO, events
// and property notifications through connection points, in-place activation in a site of
// tests/win32/support, and the property bags compared with the bags the native `korvex bag` writes
// for the same forms.
//
// Usage: korvex-com-test DLL [FORM.json EXPECTED-BAGS.json]...
// Prints what it checked per group and every failure; exits 1 on a failure.

// GCC 12 takes std::variant's object alternative for uninitialised when it is moved about in
// the outcome records below (a false positive, as with -Wrestrict in KorvexWin32.cmake).
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <initializer_list>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "base/error.hpp"
#include "com/classes.hpp"
#include "com/control_object.hpp"
#include "com/convert.hpp"
#include "com/module.hpp"
#include "host/font.hpp"
#include "host/json_codec.hpp"
#include "host/text.hpp"
#include "library/library.hpp"

// After every header of the library: it brings in <windows.h>.
#include "ole_container.hpp"

namespace {

using namespace korvex;
using com::Narrow;
using com::Widen;

using ole::Check;
using ole::Hex;
using ole::NotifySink;
using ole::Ptr;
using ole::Query;
using ole::Site;

std::vector<std::string> gNotes;

std::string Lower(std::string text) {
    for (char& c : text) c = host::AsciiLower(c);
    return text;
}

// ---------------------------------------------------------------------------------------------
// Small COM objects of the container's side

// A property bag's JSON: each value read back into the host's kinds.
host::json::Json ToJson(const ole::PropertyBag& bag) {
    host::json::Json out = host::json::Json::object();
    for (const auto& [key, value] : bag.Entries())
        out[Narrow(key.c_str(), key.size())] = host::json::Encode(com::ToHost(value));
    return out;
}

// An event sink as a script engine is one: it reads each argument as a VARIANT, through whatever
// reference it gets, records the call, the types and the values (as numbers), and may write 7
// into the first argument as an assignment to a ByRef parameter does.
class EventSink final : public ole::Dispatch {
  public:
    explicit EventSink(const IID& iid) : Dispatch(iid) {}
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* params, VARIANT*,
                                     EXCEPINFO* exception, UINT*) override {
        if (result == DISP_E_EXCEPTION && exception) {
            *exception = EXCEPINFO{};
            exception->scode = E_INVALIDARG;
            exception->bstrSource = SysAllocString(L"Sink");
            exception->bstrDescription = SysAllocString(L"the handler failed");
        }
        Call call{id, {}, {}};
        for (UINT i = params->cArgs; i-- > 0;) {
            VARIANT& arg = params->rgvarg[i];
            call.types.push_back(V_VT(&arg));
            VARIANT number;
            VariantInit(&number);
            // VariantChangeType reads through VT_BYREF, as a script engine's copy does.
            call.values.push_back(
                SUCCEEDED(VariantChangeType(&number, &arg, 0, VT_R8)) ? V_R8(&number) : -99999);
        }
        calls.push_back(call);
        if (writeFirst && params->cArgs > 0) {
            VARIANT& first = params->rgvarg[params->cArgs - 1];
            VARIANT seven;
            VariantInit(&seven);
            V_VT(&seven) = VT_I2;
            V_I2(&seven) = 7;
            if (V_VT(&first) == (VT_BYREF | VT_VARIANT)) {
                VariantClear(V_VARIANTREF(&first));
                *V_VARIANTREF(&first) = seven;
            } else if (V_VT(&first) & VT_BYREF) {
                // Assigned to a typed ByRef parameter, the value takes the parameter's type.
                VARIANT typed;
                VariantInit(&typed);
                if (SUCCEEDED(VariantChangeType(&typed, &seven, 0, V_VT(&first) & ~VT_BYREF))) {
                    if (V_VT(&typed) == VT_I2) *V_I2REF(&first) = V_I2(&typed);
                    if (V_VT(&typed) == VT_R4) *V_R4REF(&first) = V_R4(&typed);
                    if (V_VT(&typed) == VT_BOOL) *V_BOOLREF(&first) = V_BOOL(&typed);
                }
            }
        }
        return result;
    }
    struct Call {
        DISPID id;
        std::vector<VARTYPE> types;
        std::vector<double> values;
    };
    std::vector<Call> calls;
    bool writeFirst = false;
    HRESULT result = S_OK;  // what Invoke answers, after recording the call
};

// An event interface's handlers as a C++ class implements them, in vtable slots, one per list of
// argument types; each changes what it is given: an Integer by one, a Single by a half, a
// Boolean to its opposite.
class Handlers {
  public:
    virtual HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** out) {
        *out = nullptr;
        return E_NOINTERFACE;
    }
    virtual ULONG STDMETHODCALLTYPE AddRef() { return 1; }
    virtual ULONG STDMETHODCALLTYPE Release() { return 1; }
    virtual HRESULT STDMETHODCALLTYPE None() { return Heard(); }
    virtual HRESULT STDMETHODCALLTYPE Mouse(short* button, short* shift, float* x, float* y) {
        *button += 1;
        *shift += 1;
        *x += 0.5f;
        *y += 0.5f;
        return Heard();
    }
    virtual HRESULT STDMETHODCALLTYPE Key(short* code, short* shift) {
        *code += 1;
        *shift += 1;
        return Heard();
    }
    virtual HRESULT STDMETHODCALLTYPE Ascii(short* key) {
        *key += 1;
        return Heard();
    }
    virtual HRESULT STDMETHODCALLTYPE Flag(VARIANT_BOOL* value) {
        *value = *value ? VARIANT_FALSE : VARIANT_TRUE;
        return Heard();
    }
    // A value and five texts (Spin's Changed): the value by one, each text holding a whole
    // number to the next one.
    virtual HRESULT STDMETHODCALLTYPE ValueAndTexts(short* value, BSTR* t1, BSTR* t2, BSTR* t3,
                                                    BSTR* t4, BSTR* t5) {
        *value += 1;
        for (BSTR* text : {t1, t2, t3, t4, t5}) {
            const long number = *text ? std::wcstol(*text, nullptr, 10) : 0;
            SysFreeString(*text);
            *text = SysAllocString(std::to_wstring(number + 1).c_str());
        }
        return Heard();
    }
    int heard = 0;

  protected:
    ~Handlers() = default;

  private:
    HRESULT Heard() {
        ++heard;
        return S_OK;
    }
};

class HandlerObject final : public Handlers {};

// The vtable slot of the handler for a list of argument types (by reference, as declared).
int HandlerSlot(const std::vector<VARTYPE>& types) {
    constexpr VARTYPE i2 = VT_BYREF | VT_I2, r4 = VT_BYREF | VT_R4, flag = VT_BYREF | VT_BOOL,
                      text = VT_BYREF | VT_BSTR;
    static const std::vector<std::pair<std::vector<VARTYPE>, int>> slots = {
        {{}, 3},     {{i2, i2, r4, r4}, 4}, {{i2, i2}, 5}, {{i2}, 6}, {{flag}, 7},
        {{i2, text, text, text, text, text}, 8}};
    for (const auto& [list, slot] : slots)
        if (list == types) return slot;
    return -1;
}

using ole::DeclaredTypes;

// An event sink the way ATL's IDispEventImpl or a CreateStdDispatch object is one: a type
// description of the handlers' vtable, made from the event interface's own declarations, and
// IDispatch::Invoke handed to DispInvoke, which converts the arguments to the declared types
// and calls the handler in its slot.
class TypedSink final : public ole::Dispatch {
  public:
    TypedSink(const IID& iid, ITypeInfo* events) : Dispatch(iid) {
        TYPEATTR* attr = nullptr;
        if (!events || FAILED(events->GetTypeAttr(&attr))) return;
        for (WORD f = 0; f < attr->cFuncs; ++f) {
            FUNCDESC* desc = nullptr;
            if (FAILED(events->GetFuncDesc(f, &desc))) continue;
            const DISPID id = desc->memid;
            events->ReleaseFuncDesc(desc);
            const std::vector<VARTYPE> types = DeclaredTypes(events, id);
            const int slot = HandlerSlot(types);
            if (slot < 0) {
                unhandled.push_back(id);
                continue;
            }
            names_.push_back(L"On" + std::to_wstring(id));
            params_.emplace_back();
            for (VARTYPE t : types) params_.back().push_back({const_cast<OLECHAR*>(L"a"), t});
            methods_.push_back({nullptr, nullptr, id, static_cast<UINT>(slot), CC_STDCALL,
                                static_cast<UINT>(types.size()), DISPATCH_METHOD, VT_HRESULT});
        }
        events->ReleaseTypeAttr(attr);
        for (std::size_t i = 0; i < methods_.size(); ++i) {
            methods_[i].szName = names_[i].data();
            methods_[i].ppdata = params_[i].empty() ? nullptr : params_[i].data();
        }
        INTERFACEDATA data{methods_.data(), static_cast<UINT>(methods_.size())};
        ITypeInfo* described = nullptr;
        if (FAILED(CreateDispTypeInfo(&data, LOCALE_SYSTEM_DEFAULT, &described))) return;
        // The description is a class around the interface; the handlers are the interface's.
        HREFTYPE ref = 0;
        if (FAILED(described->GetRefTypeOfImplType(0, &ref)) ||
            FAILED(described->GetRefTypeInfo(ref, &info_)))
            info_ = nullptr;
        described->Release();
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params,
                                     VARIANT* result, EXCEPINFO* exception,
                                     UINT* argError) override {
        if (!info_) return E_UNEXPECTED;
        answer = DispInvoke(&handlers, info_, id, flags, params, result, exception, argError);
        return answer;
    }
    [[nodiscard]] bool Ready() const { return info_ != nullptr; }

    HandlerObject handlers;
    HRESULT answer = S_OK;
    std::vector<DISPID> unhandled;

  private:
    ITypeInfo* info_ = nullptr;
    std::vector<std::wstring> names_;
    std::vector<std::vector<PARAMDATA>> params_;
    std::vector<METHODDATA> methods_;
};

// ---------------------------------------------------------------------------------------------
// Late binding through IDispatch

struct Outcome {
    int number = 0;  // 0: done; the host's error number; -1: an HRESULT that is no host error
    HRESULT hr = S_OK;
    std::string source;
    host::Variant value;
};

Outcome Dispatch(IDispatch* object, DISPID id, WORD flags, std::vector<VARIANT> args) {
    Outcome out;
    DISPID named = DISPID_PROPERTYPUT;
    const bool put = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
    DISPPARAMS params{args.empty() ? nullptr : args.data(), put ? &named : nullptr,
                      static_cast<UINT>(args.size()), put ? 1u : 0u};
    VARIANT result;
    VariantInit(&result);
    EXCEPINFO exception{};
    out.hr = object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &params, &result, &exception,
                            nullptr);
    if (out.hr == DISP_E_EXCEPTION) {
        out.number = HRESULT_FACILITY(exception.scode) == FACILITY_CONTROL
                         ? static_cast<int>(HRESULT_CODE(exception.scode))
                         : -1;
        out.source = Narrow(exception.bstrSource);
        SysFreeString(exception.bstrSource);
        SysFreeString(exception.bstrDescription);
        SysFreeString(exception.bstrHelpFile);
    } else if (FAILED(out.hr)) {
        out.number = -1;
    } else {
        try {
            out.value = com::ToHost(result);
        } catch (const host::HostError& e) {
            out.number = -2;
        }
    }
    VariantClear(&result);
    for (VARIANT& v : args) VariantClear(&v);
    return out;
}

VARIANT ToVariant(const host::Variant& value) {
    VARIANT v;
    com::ToVariant(value, &v);
    return v;
}

// The host's own late binding on the reference control.
Outcome HostGet(host::Object& object, const host::MemberInfo& member) {
    Outcome out;
    try {
        out.value = member.get(object);
    } catch (const host::HostError& e) {
        out.number = e.Number();
    }
    return out;
}

int HostPut(host::Object& object, const host::MemberInfo& member, const host::Variant& value) {
    try {
        member.put(object, value);
        return 0;
    } catch (const host::HostError& e) {
        return e.Number();
    }
}

// A font as OLE hands it back: the face and the size the system realises (a font that is not
// installed reads as its substitute, a size as the nearest the face has), as every font read
// from an OLE font object carries them.
host::StdFont Realized(const host::StdFont& font) {
    VARIANT v = ToVariant(host::Variant(font.Clone()));
    host::StdFont out = *com::ToHost(v).ToFont();
    VariantClear(&v);
    return out;
}

// Values as a comparison sees them: pictures by type and size (the OLE picture keeps no alpha),
// fonts by their attributes as OLE realises them.
bool Same(const host::Variant& a, const host::Variant& b) {
    if (a.Kind() == host::VarKind::Picture && b.Kind() == host::VarKind::Picture) {
        const auto pa = a.ToPicture();
        const auto pb = b.ToPicture();
        if (!pa || !pb) return pa == pb;
        return pa->Type() == pb->Type() && pa->PixelWidth() == pb->PixelWidth() &&
               pa->PixelHeight() == pb->PixelHeight();
    }
    if (a.Kind() == host::VarKind::Font && b.Kind() == host::VarKind::Font) {
        const auto fa = a.ToFont();
        const auto fb = b.ToFont();
        if (!fa || !fb) return fa == fb;
        return Realized(*fa).SameAttributes(Realized(*fb));
    }
    return host::SameValue(a, b);
}

// What a property of this type is given in the checks: valid values, and values the host
// refuses as mismatched (13), out of range (6) or invalid for the property (380).
std::vector<host::Variant> Candidates(const host::ClassInfo& info, const host::MemberInfo& m) {
    using host::Variant;
    const Variant text("Grüße ✓ \xF0\x9D\x84\x9E");
    switch (m.type.code) {
        case host::TypeCode::Boolean:
            return {Variant(true), Variant(false), Variant(std::int16_t{0}), Variant("abc")};
        case host::TypeCode::Integer:
            return {Variant(std::int16_t{0}),
                    Variant(std::int16_t{1}),
                    Variant(std::int16_t{7}),
                    Variant(std::int16_t{-1}),
                    Variant(std::int32_t{40000}),
                    Variant(1e10),
                    Variant("abc"),
                    Variant(std::int16_t{2})};
        case host::TypeCode::Long:
            return {Variant(std::int32_t{0}),
                    Variant(std::int32_t{5}),
                    Variant(std::int32_t{-1}),
                    Variant(1e12),
                    Variant("abc"),
                    Variant(std::int32_t{1})};
        case host::TypeCode::Single:
        case host::TypeCode::Double:
            return {Variant(0.0),  Variant(2.5),   Variant(12.0),
                    Variant(-1.0), Variant("abc"), Variant(9.75)};
        case host::TypeCode::String:
            return {Variant(""), text, Variant(std::int32_t{42}), Variant("Korvex")};
        case host::TypeCode::Color:
            return {Variant(std::int32_t{0x0000FF}), Variant(std::uint32_t{0x8000000F}),
                    Variant(std::uint32_t{0x80000012}), Variant("abc"),
                    Variant(std::int32_t{0x123456})};
        case host::TypeCode::Enum: {
            std::vector<Variant> values;
            std::int32_t highest = 0;
            if (const host::EnumInfo* e = info.FindEnum(m.type.enumName)) {
                for (const auto& [name, value] : e->members) {
                    values.emplace_back(value);
                    highest = std::max(highest, value);
                }
            }
            values.emplace_back(highest + 1);
            values.emplace_back(std::int32_t{-1});
            values.emplace_back("abc");
            return values;
        }
        case host::TypeCode::Font:
            return {Variant(std::make_shared<host::StdFont>("Arial", 12.0, true)),
                    Variant(std::make_shared<host::StdFont>("Tahoma", 8.25, false))};
        default:
            return {};
    }
}

std::string Describe(const host::Variant& v) {
    if (v.Kind() != host::VarKind::Font || !v.ToFont()) return host::DisplayText(v);
    const auto f = v.ToFont();
    return host::DisplayText(v) + " " + std::to_string(f->Size()) + " w" +
           std::to_string(f->Weight()) + (f->Italic() ? " i" : "") + (f->Underline() ? " u" : "") +
           (f->Strikethrough() ? " s" : "") + " cs" + std::to_string(f->Charset());
}

bool InstanceSpecific(const host::MemberInfo& m) {
    // Window and device handles differ from one instance to the next.
    return host::EqualsNoCase(m.name, "hWnd") || host::EqualsNoCase(m.name, "hDC");
}

bool OpensWindow(const host::MemberInfo& m) {
    return m.dispId == host::kDispIdAboutBox || host::EqualsNoCase(m.name, "ShowAboutBox");
}

// ---------------------------------------------------------------------------------------------
// The DLL

struct Server {
    HMODULE module = nullptr;
    HRESULT(STDAPICALLTYPE* getClassObject)(REFCLSID, REFIID, void**) = nullptr;
    HRESULT(STDAPICALLTYPE* canUnloadNow)() = nullptr;
    HRESULT(STDAPICALLTYPE* registerServer)() = nullptr;
    HRESULT(STDAPICALLTYPE* unregisterServer)() = nullptr;
    HRESULT(STDAPICALLTYPE* install)(BOOL, LPCWSTR) = nullptr;
    std::wstring path;

    bool Load(const std::string& file) {
        wchar_t full[MAX_PATH];
        GetFullPathNameW(Widen(file).c_str(), MAX_PATH, full, nullptr);
        path = full;
        module = LoadLibraryW(full);
        if (!module) return false;
        const auto get = [&](auto& fn, const char* name) {
            fn = reinterpret_cast<std::remove_reference_t<decltype(fn)>>(
                reinterpret_cast<void*>(GetProcAddress(module, name)));
            return fn != nullptr;
        };
        return get(getClassObject, "DllGetClassObject") && get(canUnloadNow, "DllCanUnloadNow") &&
               get(registerServer, "DllRegisterServer") &&
               get(unregisterServer, "DllUnregisterServer") && get(install, "DllInstall");
    }

    Ptr<IDispatch> Create(const com::ClassEntry& entry) const {
        Ptr<IClassFactory> factory;
        Ptr<IDispatch> object;
        if (SUCCEEDED(getClassObject(entry.clsid, IID_IClassFactory,
                                     reinterpret_cast<void**>(&factory.p))))
            factory->CreateInstance(nullptr, IID_IDispatch, reinterpret_cast<void**>(&object.p));
        return object;
    }
};

std::wstring ReadKey(HKEY root, const std::wstring& path, const wchar_t* name = nullptr) {
    wchar_t value[1024] = {};
    DWORD size = sizeof value;
    if (RegGetValueW(root, path.c_str(), name, RRF_RT_REG_SZ, nullptr, value, &size) !=
        ERROR_SUCCESS)
        return L"<missing>";
    return value;
}

bool KeyExists(HKEY root, const std::wstring& path) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
    RegCloseKey(key);
    return true;
}

void CheckRegistration(const Server& server, bool perUser) {
    const std::string group = perUser ? "registration per user" : "registration per machine";
    const HKEY hive = perUser ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
    const std::wstring root = L"Software\\Classes\\";
    const HRESULT hr = perUser ? server.install(TRUE, L"user") : server.registerServer();
    Check(SUCCEEDED(hr), group, "registering: " + Hex(hr));
    for (const com::ClassEntry& entry : com::PublicClasses()) {
        const std::string& name = entry.info->name;
        const std::wstring progId = Widen(entry.info->progId);
        const std::wstring clsid = com::GuidText(entry.clsid);
        const std::wstring key = root + L"CLSID\\" + clsid;
        Check(ReadKey(hive, key + L"\\InprocServer32") == server.path, group,
              name + " InprocServer32");
        Check(ReadKey(hive, key + L"\\InprocServer32", L"ThreadingModel") == L"Apartment", group,
              name + " ThreadingModel");
        Check(ReadKey(hive, key + L"\\ProgID") == progId + L".1", group, name + " ProgID");
        Check(ReadKey(hive, key + L"\\VersionIndependentProgID") == progId, group,
              name + " VersionIndependentProgID");
        Check(KeyExists(hive, key + L"\\Control"), group, name + " Control");
        Check(ReadKey(hive, key + L"\\MiscStatus\\1") == std::to_wstring(com::kMiscStatus), group,
              name + " MiscStatus");
        Check(ReadKey(hive, key + L"\\TypeLib") == com::GuidText(com::LibraryId()), group,
              name + " TypeLib");
        Check(ReadKey(hive, key + L"\\Version") == L"1.0", group, name + " Version");
        const std::wstring toolbox = ReadKey(hive, key + L"\\ToolboxBitmap32");
        Check(toolbox.rfind(server.path + L", 300", 0) == 0, group,
              name + " ToolboxBitmap32: " + Narrow(toolbox.c_str(), toolbox.size()));
        if (toolbox.size() > server.path.size() + 2) {
            const int id = _wtoi(toolbox.c_str() + server.path.size() + 2);
            HBITMAP bitmap = static_cast<HBITMAP>(LoadImageW(server.module, MAKEINTRESOURCEW(id),
                                                             IMAGE_BITMAP, 0, 0, LR_DEFAULTCOLOR));
            BITMAP info{};
            Check(bitmap && GetObjectW(bitmap, sizeof info, &info) && info.bmWidth == 16 &&
                      info.bmHeight == 15,
                  group, name + " toolbox bitmap is 16 x 15");
            if (bitmap) DeleteObject(bitmap);
        }
        Check(KeyExists(hive,
                        key + L"\\Implemented Categories\\{40FC6ED4-2438-11CF-A3DB-080036F12502}"),
              group, name + " control category");
        Check(ReadKey(hive, root + progId + L"\\CLSID") == clsid, group, name + " ProgID's CLSID");
        Check(ReadKey(hive, root + progId + L"\\CurVer") == progId + L".1", group,
              name + " CurVer");
        Check(ReadKey(hive, root + progId + L".1\\CLSID") == clsid, group,
              name + " versioned ProgID's CLSID");
        // Creatable by either ProgID, as a script host creates it. (Wine's COM reads only the
        // machine's classes, so the per-user registration is checked by its keys alone.)
        if (perUser) continue;
        for (const std::wstring& id : {progId, progId + L".1"}) {
            CLSID found{};
            Ptr<IDispatch> object;
            const HRESULT h = CLSIDFromProgID(id.c_str(), &found);
            HRESULT created = E_FAIL;
            if (SUCCEEDED(h))
                created = CoCreateInstance(found, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                                           reinterpret_cast<void**>(&object.p));
            Check(SUCCEEDED(h) && IsEqualGUID(found, entry.clsid) && object, group,
                  "CoCreateInstance " + Narrow(id.c_str(), id.size()) + ": " + Hex(h) + ", " +
                      Hex(created));
        }
    }
    // The type library is registered and loads by its identifier.
    ITypeLib* library = nullptr;
    if (!perUser)
        Check(SUCCEEDED(LoadRegTypeLib(com::LibraryId(), 1, 0, 0, &library)), group,
              "LoadRegTypeLib");
    if (library) library->Release();
    // FlatButton is the library's own: not registered, not served.
    CLSID flat{};
    Check(FAILED(CLSIDFromProgID(L"Korvex_Tools.FlatButton", &flat)), group,
          "FlatButton has no ProgID");

    const HRESULT undo = perUser ? server.install(FALSE, L"user") : server.unregisterServer();
    Check(SUCCEEDED(undo), group, "unregistering: " + Hex(undo));
    for (const com::ClassEntry& entry : com::PublicClasses()) {
        const std::wstring progId = Widen(entry.info->progId);
        Check(!KeyExists(hive, root + L"CLSID\\" + com::GuidText(entry.clsid)), group,
              entry.info->name + " CLSID key gone");
        Check(!KeyExists(hive, root + progId) && !KeyExists(hive, root + progId + L".1"), group,
              entry.info->name + " ProgID keys gone");
    }
}

// ---------------------------------------------------------------------------------------------
// Late binding, compared with the host's

void CheckDispatch(const Server& server, const com::ClassEntry& entry) {
    const host::ClassInfo& info = *entry.info;
    const std::string group = "dispatch";
    Ptr<IDispatch> object = server.Create(entry);
    Check(static_cast<bool>(object), group, info.name + " created");
    if (!object) return;
    Query<IPersistStreamInit>(object.p, IID_IPersistStreamInit)->InitNew();

    // The reference: the same class driven through its member table directly.
    Ptr<IDispatch> local;
    com::ControlObject::Create(entry, IID_IDispatch, reinterpret_cast<void**>(&local.p));
    auto* reference = static_cast<com::ControlObject*>(local.p);
    const std::shared_ptr<host::Control> control = reference->HostControl();

    // Names, in any case.
    for (const host::MemberInfo& m : info.members) {
        for (std::string name : {m.name, Lower(m.name)}) {
            std::wstring wide = Widen(name);
            LPOLESTR names[] = {wide.data()};
            DISPID id = 0;
            const HRESULT hr = object->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
            Check(hr == S_OK && id == m.dispId, group, info.name + "." + name + " dispatch id");
        }
    }
    std::wstring unknown = L"NoSuchMember";
    LPOLESTR unknownNames[] = {unknown.data()};
    DISPID unknownId = 0;
    Check(object->GetIDsOfNames(IID_NULL, unknownNames, 1, 0, &unknownId) == DISP_E_UNKNOWNNAME,
          group, info.name + " unknown name");
    Check(Dispatch(object.p, 12345, DISPATCH_PROPERTYGET, {}).hr == DISP_E_MEMBERNOTFOUND, group,
          info.name + " unknown dispatch id");

    // Every property reads as the host reads it.
    for (const host::MemberInfo& m : info.members) {
        if (m.kind != host::MemberInfo::Kind::Property || InstanceSpecific(m)) continue;
        const Outcome got = Dispatch(object.p, m.dispId, DISPATCH_PROPERTYGET, {});
        const Outcome want = HostGet(*control, m);
        Check(got.number == want.number && Same(got.value, want.value), group,
              info.name + "." + m.name + " reads " + host::DisplayText(got.value) + ", host " +
                  host::DisplayText(want.value));
    }

    // A font handed out is the control's: a change made through it reaches the control, and
    // only the attribute changed moves.
    for (const host::MemberInfo& m : info.members) {
        if (m.type.code != host::TypeCode::Font || m.kind != host::MemberInfo::Kind::Property)
            continue;
        // The face and size as the control keeps them, where the class shows them: a face the
        // system lacks and a size between its pixel heights, which an OLE font would realise.
        const host::MemberInfo* size = info.FindMember("FontSize");
        const host::MemberInfo* face = info.FindMember("FontName");
        if (size) {
            HostPut(*control, *size, host::Variant(16.0f));
            Dispatch(object.p, size->dispId, DISPATCH_PROPERTYPUT,
                     {ToVariant(host::Variant(16.0f))});
        }
        if (face) {
            HostPut(*control, *face, host::Variant("Arial"));
            Dispatch(object.p, face->dispId, DISPATCH_PROPERTYPUT,
                     {ToVariant(host::Variant("Arial"))});
        }
        const auto kept = [&] {
            std::string text;
            if (size)
                text += host::DisplayText(
                    Dispatch(object.p, size->dispId, DISPATCH_PROPERTYGET, {}).value);
            if (face)
                text += " " + host::DisplayText(
                                  Dispatch(object.p, face->dispId, DISPATCH_PROPERTYGET, {}).value);
            return text;
        };
        const std::string keptBefore = kept();
        VARIANT font;
        VariantInit(&font);
        DISPPARAMS none{};
        object->Invoke(m.dispId, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, &font, nullptr, nullptr);
        Ptr<IFont> ole =
            Query<IFont>(V_VT(&font) == VT_DISPATCH ? V_DISPATCH(&font) : nullptr, IID_IFont);
        const host::Variant before = Dispatch(object.p, m.dispId, DISPATCH_PROPERTYGET, {}).value;
        if (ole && before.ToFont()) {
            ole->put_Bold(before.ToFont()->Bold() ? FALSE : TRUE);
            ole->put_Italic(TRUE);
            const host::Variant after =
                Dispatch(object.p, m.dispId, DISPATCH_PROPERTYGET, {}).value;
            const auto f = after.ToFont();
            Check(f && f->Bold() != before.ToFont()->Bold() && f->Italic() &&
                      f->Size() == before.ToFont()->Size() && f->Name() == before.ToFont()->Name(),
                  group, info.name + "." + m.name + " changed through the font it handed out");
            Check(kept() == keptBefore, group,
                  info.name + "." + m.name + " keeps its face and size: " + kept() + ", was " +
                      keptBefore);
            ole->put_Bold(before.ToFont()->Bold() ? TRUE : FALSE);
            ole->put_Italic(before.ToFont()->Italic() ? TRUE : FALSE);
            Check(
                host::SameValue(Dispatch(object.p, m.dispId, DISPATCH_PROPERTYGET, {}).value,
                                before) ||
                    Realized(*Dispatch(object.p, m.dispId, DISPATCH_PROPERTYGET, {}).value.ToFont())
                        .SameAttributes(Realized(*before.ToFont())),
                group, info.name + "." + m.name + " changed back");
        } else {
            Check(false, group, info.name + "." + m.name + " reads as an OLE font");
        }
        VariantClear(&font);
        Dispatch(object.p, m.dispId, DISPATCH_PROPERTYPUTREF,
                 {ToVariant(HostGet(*control, m).value)});
    }

    // Every writable property takes or refuses what the host takes or refuses, with its number;
    // a refused value changes nothing.
    for (const host::MemberInfo& m : info.members) {
        if (m.kind != host::MemberInfo::Kind::Property || !m.put) continue;
        for (const host::Variant& candidate : Candidates(info, m)) {
            const std::string what =
                info.name + "." + m.name + " = " + host::DisplayText(candidate);
            const Outcome before = Dispatch(object.p, m.dispId, DISPATCH_PROPERTYGET, {});
            const Outcome hostBefore = HostGet(*control, m);
            const int wantNumber = HostPut(*control, m, candidate);
            const WORD flags =
                candidate.IsObject() ? DISPATCH_PROPERTYPUTREF : DISPATCH_PROPERTYPUT;
            const Outcome put = Dispatch(object.p, m.dispId, flags, {ToVariant(candidate)});
            const Outcome after = Dispatch(object.p, m.dispId, DISPATCH_PROPERTYGET, {});
            const Outcome want = HostGet(*control, m);
            Check(put.number == wantNumber, "errors",
                  what + ": number " + std::to_string(put.number) + ", host " +
                      std::to_string(wantNumber));
            if (put.number > 0) {
                Check(put.source == info.progId, "errors", what + ": source " + put.source);
                // Where the control itself keeps a refused value, so must the server; where it
                // does not, that is the control's doing, reported and left to it.
                if (Same(hostBefore.value, want.value))
                    Check(Same(before.value, after.value), "errors", what + ": the value moved");
                else
                    gNotes.push_back(what + ": error " + std::to_string(wantNumber) +
                                     ", yet the control keeps the value");
                Check(true, "error " + std::to_string(put.number), what);
            }
            Check(Same(after.value, want.value), group,
                  what + " reads back " + Describe(after.value) + ", host " + Describe(want.value));
        }
    }

    // Methods: those that need no window of their own, with no arguments and with one too many.
    for (const host::MemberInfo& m : info.members) {
        if (m.kind != host::MemberInfo::Kind::Method || OpensWindow(m)) continue;
        bool required = false;
        for (const host::ParamInfo& p : m.params) required = required || !p.optional;
        const Outcome called = Dispatch(object.p, m.dispId, DISPATCH_METHOD, {});
        int wantNumber = 0;
        try {
            host::Invoke(*control, m.name, host::InvokeKind::Call);
        } catch (const host::HostError& e) {
            wantNumber = e.Number();
        }
        Check(called.number == wantNumber, group,
              info.name + "." + m.name + "() number " + std::to_string(called.number) + ", host " +
                  std::to_string(wantNumber) + (required ? " (required arguments)" : ""));
        std::vector<VARIANT> tooMany(m.params.size() + 1);
        for (VARIANT& v : tooMany) {
            VariantInit(&v);
            V_VT(&v) = VT_I4;
        }
        Check(Dispatch(object.p, m.dispId, DISPATCH_METHOD, tooMany).number ==
                  host::kErrWrongArguments,
              "errors", info.name + "." + m.name + " with too many arguments");

        // With every argument, numbers passed by reference as a compiled host passes its
        // variables; the result is the host's. (Sounds stay quiet.)
        if (m.params.empty() || m.name.find("Sound") != std::string::npos) continue;
        std::vector<host::Variant> hostArgs;
        std::vector<std::int16_t> shorts(m.params.size(), 1);
        std::vector<LONG> longs(m.params.size(), 1);
        std::vector<VARIANT> comArgs(m.params.size());
        for (std::size_t i = 0; i < m.params.size(); ++i) {
            VARIANT& v = comArgs[m.params.size() - 1 - i];
            VariantInit(&v);
            switch (m.params[i].type.code) {
                case host::TypeCode::Integer:
                    hostArgs.emplace_back(std::int16_t{1});
                    V_VT(&v) = VT_BYREF | VT_I2;
                    V_I2REF(&v) = &shorts[i];
                    break;
                case host::TypeCode::Long:
                    hostArgs.emplace_back(std::int32_t{1});
                    V_VT(&v) = VT_BYREF | VT_I4;
                    V_I4REF(&v) = &longs[i];
                    break;
                case host::TypeCode::String:
                    hostArgs.emplace_back("16");
                    v = ToVariant(host::Variant("16"));
                    break;
                default:
                    hostArgs.emplace_back(true);
                    v = ToVariant(host::Variant(true));
                    break;
            }
        }
        Outcome want;
        try {
            want.value = host::Invoke(*control, m.name, host::InvokeKind::Call, hostArgs);
        } catch (const host::HostError& e) {
            want.number = e.Number();
        }
        DISPPARAMS params{comArgs.data(), nullptr, static_cast<UINT>(comArgs.size()), 0};
        VARIANT result;
        VariantInit(&result);
        EXCEPINFO exception{};
        const HRESULT hr = object->Invoke(m.dispId, IID_NULL, 0, DISPATCH_METHOD, &params, &result,
                                          &exception, nullptr);
        const int number = hr == DISP_E_EXCEPTION ? static_cast<int>(HRESULT_CODE(exception.scode))
                           : FAILED(hr)           ? -1
                                                  : 0;
        SysFreeString(exception.bstrSource);
        SysFreeString(exception.bstrDescription);
        SysFreeString(exception.bstrHelpFile);
        Check(number == want.number && (number != 0 || Same(com::ToHost(result), want.value)),
              group, info.name + "." + m.name + "(...) as the host calls it");
        VariantClear(&result);
        for (VARIANT& v : comArgs)
            if (!(V_VT(&v) & VT_BYREF)) VariantClear(&v);
    }

    // The type information is the embedded type library's.
    Ptr<ITypeInfo> type;
    Check(SUCCEEDED(object->GetTypeInfo(0, 0, &type)) && type, group, info.name + " GetTypeInfo");
    if (type) {
        TYPEATTR* attr = nullptr;
        type->GetTypeAttr(&attr);
        Check(attr && IsEqualGUID(attr->guid, entry.iid), group, info.name + " interface GUID");
        if (attr) type->ReleaseTypeAttr(attr);
    }
    Ptr<IProvideClassInfo2> provide = Query<IProvideClassInfo2>(object.p, IID_IProvideClassInfo2);
    GUID source{};
    Check(provide && SUCCEEDED(provide->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &source)) &&
              IsEqualGUID(source, entry.eventIid),
          group, info.name + " default source interface");
    Ptr<ITypeInfo> coclass;
    if (provide) provide->GetClassInfo(&coclass);
    if (coclass) {
        TYPEATTR* attr = nullptr;
        coclass->GetTypeAttr(&attr);
        Check(attr && IsEqualGUID(attr->guid, entry.clsid), group, info.name + " coclass GUID");
        if (attr) coclass->ReleaseTypeAttr(attr);
    } else {
        Check(false, group, info.name + " GetClassInfo");
    }
}

// ---------------------------------------------------------------------------------------------
// Events and property notifications

void CheckEvents(const Server& server, const com::ClassEntry& entry) {
    const host::ClassInfo& info = *entry.info;
    const std::string group = "events";

    // Raised on the object's own site, with arguments by reference: what the handler writes
    // comes back to the control; frozen events are dropped.
    Ptr<IDispatch> local;
    com::ControlObject::Create(entry, IID_IDispatch, reinterpret_cast<void**>(&local.p));
    auto* object = static_cast<com::ControlObject*>(local.p);
    object->HostControl();
    Ptr<IConnectionPointContainer> points =
        Query<IConnectionPointContainer>(local.p, IID_IConnectionPointContainer);
    Ptr<IConnectionPoint> point;
    Check(points && SUCCEEDED(points->FindConnectionPoint(entry.eventIid, &point)), group,
          info.name + " event connection point");
    if (!point) return;
    Ptr<IEnumConnectionPoints> all;
    std::vector<IID> iids;
    if (SUCCEEDED(points->EnumConnectionPoints(&all.p))) {
        IConnectionPoint* each = nullptr;
        while (all->Next(1, &each, nullptr) == S_OK) {
            IID iid{};
            each->GetConnectionInterface(&iid);
            iids.push_back(iid);
            each->Release();
        }
    }
    Check(iids.size() == 2 && IsEqualIID(iids[0], entry.eventIid) &&
              IsEqualIID(iids[1], IID_IPropertyNotifySink),
          group, info.name + " EnumConnectionPoints: the events and IPropertyNotifySink");
    // The event interface as a sink's type information describes it: the DLL's type library.
    Ptr<ITypeLib> library;
    Ptr<ITypeInfo> events;
    if (SUCCEEDED(LoadTypeLibEx(server.path.c_str(), REGKIND_NONE, &library.p)))
        library->GetTypeInfoOfGuid(entry.eventIid, &events.p);
    Check(events.p != nullptr, group, info.name + " the event interface in the type library");
    if (!events) return;

    // In order: a sink that reports an exception, one that fails, a typed sink (DispInvoke onto
    // vtable handlers) and a script's sink. The failures stop nothing; the typed handlers'
    // changes reach the script's sink and come back to the control.
    auto* throwing = new EventSink(entry.eventIid);
    throwing->result = DISP_E_EXCEPTION;
    auto* failing = new EventSink(entry.eventIid);
    failing->result = E_FAIL;
    auto* typed = new TypedSink(entry.eventIid, events.p);
    auto* sink = new EventSink(entry.eventIid);
    Check(typed->Ready() && typed->unhandled.empty(), group,
          info.name + " a typed handler for every event's argument list");
    std::vector<DWORD> cookies;
    for (IDispatch* each : std::initializer_list<IDispatch*>{throwing, failing, typed, sink}) {
        DWORD cookie = 0;
        Check(SUCCEEDED(point->Advise(each, &cookie)) && cookie != 0, group, info.name + " Advise");
        cookies.push_back(cookie);
    }
    const DWORD cookie = cookies.back();
    for (const host::EventInfo& event : info.events) {
        // What each argument is given, and what the typed handler makes of it.
        std::vector<host::Variant> args, changed;
        for (const host::ParamInfo& p : event.params) {
            switch (p.type.code) {
                case host::TypeCode::Single:
                    args.emplace_back(1.5f);
                    changed.emplace_back(2.0f);
                    break;
                case host::TypeCode::Boolean:
                    args.emplace_back(true);
                    changed.emplace_back(false);
                    break;
                case host::TypeCode::String:
                    args.emplace_back(std::string("1"));
                    changed.emplace_back(std::string("2"));
                    break;
                default:
                    args.emplace_back(std::int16_t{1});
                    changed.emplace_back(std::int16_t{2});
            }
        }
        sink->calls.clear();
        throwing->calls.clear();
        failing->calls.clear();
        const int heard = typed->handlers.heard;
        object->RaiseEvent(event, args);
        const std::string name = info.name + "." + event.name;
        Check(typed->answer == S_OK && typed->handlers.heard == heard + 1, group,
              name + " reaches the typed handler through DispInvoke (" + Hex(typed->answer) + ")");
        Check(throwing->calls.size() == 1 && failing->calls.size() == 1 && sink->calls.size() == 1,
              group, name + " reaches every sink, past one that throws and one that fails");
        const bool arrived = sink->calls.size() == 1 && sink->calls[0].id == event.id;
        Check(arrived && sink->calls[0].types == DeclaredTypes(events.p, event.id), group,
              name + " arrives with the argument types the type library declares");
        bool seen = arrived && sink->calls[0].values.size() == changed.size();
        for (std::size_t i = 0; seen && i < changed.size(); ++i)
            seen = sink->calls[0].values[i] == changed[i].ToDouble();
        Check(seen, group, name + ": the next sink reads what the typed handler wrote");
        bool back = true;
        for (std::size_t i = 0; i < args.size(); ++i)
            back = back && args[i].Kind() == changed[i].Kind() && args[i] == changed[i];
        Check(back, group, name + ": the control takes back what the typed handler wrote");
    }
    for (std::size_t i = 0; i + 1 < cookies.size(); ++i) point->Unadvise(cookies[i]);

    // A script's handler assigning to a ByRef argument, alone.
    sink->writeFirst = true;
    for (const host::EventInfo& event : info.events) {
        std::vector<host::Variant> args;
        for (const host::ParamInfo& p : event.params)
            args.emplace_back(p.type.code == host::TypeCode::Single
                                  ? host::Variant(1.5f)
                                  : host::Variant(std::int16_t{1}));
        sink->calls.clear();
        object->RaiseEvent(event, args);
        Check(sink->calls.size() == 1 && sink->calls[0].id == event.id, group,
              info.name + "." + event.name + " reaches a script's sink");
        if (!args.empty())
            Check(host::ValueEquals(args[0], event.params[0].type.code == host::TypeCode::Boolean
                                                 ? host::Variant(true)
                                                 : host::Variant(std::int16_t{7})),
                  group, info.name + "." + event.name + " takes back what the script wrote");
        Ptr<IOleControl> control = Query<IOleControl>(local.p, IID_IOleControl);
        control->FreezeEvents(TRUE);
        control->FreezeEvents(TRUE);
        control->FreezeEvents(FALSE);
        sink->calls.clear();
        object->RaiseEvent(event, args);
        Check(sink->calls.empty(), group, info.name + "." + event.name + " dropped while frozen");
        control->FreezeEvents(FALSE);
        object->RaiseEvent(event, args);
        Check(sink->calls.size() == 1, group, info.name + "." + event.name + " after thawing");
    }
    throwing->Release();
    failing->Release();
    typed->Release();
    Check(SUCCEEDED(point->Unadvise(cookie)), group, info.name + " Unadvise");
    Check(point->Unadvise(cookie) == CONNECT_E_NOCONNECTION, group, info.name + " Unadvise twice");
    sink->Release();

    // Property notifications on the DLL's object: OnChanged with the property's dispatch id;
    // a container that refuses the edit keeps the value.
    Ptr<IDispatch> dll = server.Create(entry);
    Query<IPersistStreamInit>(dll.p, IID_IPersistStreamInit)->InitNew();
    Ptr<IConnectionPointContainer> dllPoints =
        Query<IConnectionPointContainer>(dll.p, IID_IConnectionPointContainer);
    Ptr<IConnectionPoint> notifyPoint;
    Check(dllPoints &&
              SUCCEEDED(dllPoints->FindConnectionPoint(IID_IPropertyNotifySink, &notifyPoint)),
          "property notifications", info.name + " property notification point");
    if (!notifyPoint) return;
    auto* notify = new NotifySink;
    DWORD notifyCookie = 0;
    notifyPoint->Advise(notify, &notifyCookie);
    Ptr<IPersistStreamInit> persist = Query<IPersistStreamInit>(dll.p, IID_IPersistStreamInit);
    for (const host::MemberInfo& m : info.members) {
        if (!m.persisted || !m.put) continue;
        const Outcome before = Dispatch(dll.p, m.dispId, DISPATCH_PROPERTYGET, {});
        for (const host::Variant& candidate : Candidates(info, m)) {
            notify->changed.clear();
            notify->allowEdit = false;
            const WORD flags =
                candidate.IsObject() ? DISPATCH_PROPERTYPUTREF : DISPATCH_PROPERTYPUT;
            const Outcome refused = Dispatch(dll.p, m.dispId, flags, {ToVariant(candidate)});
            const Outcome kept = Dispatch(dll.p, m.dispId, DISPATCH_PROPERTYGET, {});
            notify->allowEdit = true;
            if (refused.number != host::kErrNotPermitted) continue;
            Check(Same(kept.value, before.value) && notify->changed.empty(),
                  "property notifications",
                  info.name + "." + m.name + " refused edit changes nothing");
            const Outcome put = Dispatch(dll.p, m.dispId, flags, {ToVariant(candidate)});
            const Outcome now = Dispatch(dll.p, m.dispId, DISPATCH_PROPERTYGET, {});
            if (put.number != 0 || Same(now.value, before.value)) continue;
            bool heard = false;
            for (DISPID id : notify->changed) heard = heard || id == m.dispId;
            Check(heard, "property notifications", info.name + "." + m.name + " OnChanged");
            Check(persist->IsDirty() == S_OK, "property notifications",
                  info.name + "." + m.name + " makes it dirty");
            break;
        }
    }
    notifyPoint->Unadvise(notifyCookie);
    notify->Release();
}

// ---------------------------------------------------------------------------------------------
// In-place activation in a container of this program's own

// The container's window, where every site puts its control.
HWND gFrame = nullptr;

// A site at a place of its own in the container's window, in run mode.
Site& NewSite() {
    return *new Site(gFrame, RECT{10, 20, 110, 52}, true, "Control1");
}

RECT ChildRect(HWND child) {
    RECT r{};
    GetWindowRect(child, &r);
    MapWindowPoints(nullptr, GetParent(child), reinterpret_cast<POINT*>(&r), 2);
    return r;
}

bool Equal(const RECT& a, const RECT& b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

void CheckInPlace(const Server& server, const com::ClassEntry& entry) {
    const host::ClassInfo& info = *entry.info;
    const std::string group = "in place";
    Site& site = NewSite();
    {
        Ptr<IDispatch> object = server.Create(entry);
        Ptr<IOleObject> ole = Query<IOleObject>(object.p, IID_IOleObject);
        DWORD misc = 0;
        ole->GetMiscStatus(DVASPECT_CONTENT, &misc);
        Check(misc == com::kMiscStatus, group, info.name + " MiscStatus");
        Check(SUCCEEDED(ole->SetClientSite(&site)), group, info.name + " SetClientSite");
        Query<IPersistStreamInit>(object.p, IID_IPersistStreamInit)->InitNew();

        Check(ole->DoVerb(OLEIVERB_INPLACEACTIVATE, nullptr, &site, 0, site.frame,
                          &site.position) == S_OK &&
                  site.activated == 1,
              group, info.name + " in-place activated");
        HWND window = nullptr;
        Query<IOleWindow>(object.p, IID_IOleWindow)->GetWindow(&window);
        Check(window && GetParent(window) == site.frame && IsWindowVisible(window), group,
              info.name + " its window is a visible child of the site's");
        Check(Equal(ChildRect(window), site.position), group,
              info.name + " at the site's rectangle");
        // Moved and sized by the container; a control that keeps a size of its own asks for it
        // back (OnPosRectChange), and its window and extent follow what it asked.
        const RECT moved{30, 40, 150, 80};
        site.position = moved;
        Query<IOleInPlaceObject>(object.p, IID_IOleInPlaceObject)->SetObjectRects(&moved, &moved);
        const RECT now = ChildRect(window);
        Check(Equal(now, site.position) && now.left == moved.left && now.top == moved.top, group,
              info.name + " SetObjectRects moves it");
        SIZEL extent{};
        ole->GetExtent(DVASPECT_CONTENT, &extent);
        Check(extent.cx == MulDiv((now.right - now.left) * 15, 2540, 1440) &&
                  extent.cy == MulDiv((now.bottom - now.top) * 15, 2540, 1440),
              group, info.name + " extent in himetric");

        // Drawn into a device context of the container's: at its own size, and at twice that,
        // where every pixel is its own pixel doubled.
        const int w = now.right - now.left;
        const int h = now.bottom - now.top;
        const auto draw = [&](int scale, std::vector<std::uint32_t>& pixels) {
            const BITMAPINFO bi{
                {sizeof(BITMAPINFOHEADER), 2 * w + 8, -(2 * h + 8), 1, 32, BI_RGB, 0, 0, 0, 0, 0},
                {}};
            void* bits = nullptr;
            HDC dc = CreateCompatibleDC(nullptr);
            HBITMAP bitmap = CreateDIBSection(dc, &bi, DIB_RGB_COLORS, &bits, nullptr, 0);
            HGDIOBJ old = SelectObject(dc, bitmap);
            std::memset(bits, 0x5A, static_cast<std::size_t>((2 * w + 8) * (2 * h + 8) * 4));
            const RECTL bounds{0, 0, scale * w, scale * h};
            const HRESULT hr = Query<IViewObject2>(object.p, IID_IViewObject2)
                                   ->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, dc,
                                          &bounds, nullptr, nullptr, 0);
            GdiFlush();
            const auto* p = static_cast<const std::uint32_t*>(bits);
            pixels.assign(p, p + (2 * w + 8) * (2 * h + 8));
            SelectObject(dc, old);
            DeleteObject(bitmap);
            DeleteDC(dc);
            return hr;
        };
        std::vector<std::uint32_t> natural;
        std::vector<std::uint32_t> doubled;
        const HRESULT drawn = draw(1, natural);
        int painted = 0;
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
                if (natural[static_cast<std::size_t>(y * (2 * w + 8) + x)] != 0x5A5A5A5Au)
                    ++painted;
        Check(drawn == S_OK && painted == w * h, group,
              info.name + " IViewObject::Draw paints its whole rectangle");
        int same = 0;
        if (draw(2, doubled) == S_OK)
            for (int y = 0; y < h; ++y)
                for (int x = 0; x < w; ++x)
                    if (doubled[static_cast<std::size_t>(2 * y * (2 * w + 8) + 2 * x)] ==
                        natural[static_cast<std::size_t>(y * (2 * w + 8) + x)])
                        ++same;
        Check(same == w * h, group,
              info.name + " drawn at twice its size: " + std::to_string(same) + " of " +
                  std::to_string(w * h) + " pixels");

        // A click on its window reaches the event sink.
        // (Spin raises Click from its field's and bar's handlers, not for a click as such.)
        const host::EventInfo* click = info.name == "Spin" ? nullptr : info.FindEvent("Click");
        if (click) {
            Ptr<IConnectionPoint> point;
            Query<IConnectionPointContainer>(object.p, IID_IConnectionPointContainer)
                ->FindConnectionPoint(entry.eventIid, &point);
            auto* sink = new EventSink(entry.eventIid);
            DWORD cookie = 0;
            point->Advise(sink, &cookie);
            // The pointer is where the click is (controls test it to tell a click from a drag),
            // and the click goes to the window under it, as the system sends it.
            // A caption to click on, for controls that take clicks on their text only.
            if (const host::MemberInfo* caption = info.FindMember("Caption"))
                Dispatch(object.p, caption->dispId, DISPATCH_PROPERTYPUT,
                         {ToVariant(host::Variant("Klick"))});
            POINT inside{5, 5};
            ClientToScreen(window, &inside);
            SetCursorPos(inside.x, inside.y);
            HWND target = WindowFromPoint(inside);
            if (!target || (target != window && !IsChild(window, target))) target = window;
            POINT local = inside;
            ScreenToClient(target, &local);
            const LPARAM at = MAKELPARAM(local.x, local.y);
            SendMessageW(target, WM_MOUSEMOVE, 0, at);
            SendMessageW(target, WM_LBUTTONDOWN, MK_LBUTTON, at);
            SendMessageW(target, WM_LBUTTONUP, 0, at);
            bool clicked = false;
            std::string heard;
            for (const EventSink::Call& call : sink->calls) {
                clicked = clicked || call.id == click->id;
                heard += " " + std::to_string(call.id);
            }
            Check(clicked, group, info.name + " a click on its window raises Click; heard" + heard);
            point->Unadvise(cookie);
            sink->Release();
        }

        Check(ole->DoVerb(OLEIVERB_UIACTIVATE, nullptr, &site, 0, site.frame, &moved) == S_OK &&
                  site.uiActivated == 1,
              group, info.name + " UI-activated");

        // The designer's switch: the control is made again in the new mode, keeping its values.
        // The text is a number, since some texts (a ruler's calibration) are read as one.
        const host::MemberInfo* persisted = nullptr;
        for (const host::MemberInfo& m : info.members)
            if (!persisted && m.persisted && m.type.code == host::TypeCode::String) persisted = &m;
        if (persisted)
            Dispatch(object.p, persisted->dispId, DISPATCH_PROPERTYPUT,
                     {ToVariant(host::Variant("2345"))});
        site.userMode = false;
        Check(Query<IOleControl>(object.p, IID_IOleControl)
                      ->OnAmbientPropertyChange(DISPID_AMBIENT_USERMODE) == S_OK,
              group, info.name + " switches to design mode");
        HWND designWindow = nullptr;
        Query<IOleWindow>(object.p, IID_IOleWindow)->GetWindow(&designWindow);
        Check(designWindow && designWindow != window && !IsWindow(window) &&
                  GetParent(designWindow) == site.frame && IsWindowVisible(designWindow),
              group, info.name + " a new window in design mode, in the same place");
        if (persisted)
            Check(
                Dispatch(object.p, persisted->dispId, DISPATCH_PROPERTYGET, {}).value.ToString() ==
                    "2345",
                group, info.name + "." + persisted->name + " kept across the switch");

        Query<IOleInPlaceObject>(object.p, IID_IOleInPlaceObject)->InPlaceDeactivate();
        Check(site.deactivated == 1 && site.uiDeactivated == 1, group,
              info.name + " deactivated, UI first");
        Check(!IsWindowVisible(designWindow) && GetParent(designWindow) != site.frame, group,
              info.name + " its window waits hidden outside the site");
        Check(ole->Close(OLECLOSE_NOSAVE) == S_OK && ole->SetClientSite(nullptr) == S_OK, group,
              info.name + " closed");
    }
    Check(site.refs == 0, group, info.name + " lets go of its site");
}

// ---------------------------------------------------------------------------------------------
// Persistence against the native bags

// A bag's JSON with every font as OLE realises it: a font a container's bag holds is an OLE
// font object, read back with the face and size the system gives it.
host::json::Json Realised(const host::json::Json& bag) {
    host::json::Json out = host::json::Json::object();
    for (const auto& [key, value] : bag.items()) {
        const host::Variant v = host::json::Decode(value);
        out[key] = v.Kind() == host::VarKind::Font && v.ToFont()
                       ? host::json::Encode(host::Variant(Realized(*v.ToFont()).Clone()))
                       : value;
    }
    return out;
}

host::json::Json SaveToBag(IUnknown* object) {
    auto* bag = new ole::PropertyBag;
    Ptr<IPersistPropertyBag> persist = Query<IPersistPropertyBag>(object, IID_IPersistPropertyBag);
    host::json::Json out;
    if (persist && SUCCEEDED(persist->Save(bag, TRUE, TRUE))) out = ToJson(*bag);
    return out;
}

// A form sizes a control before its first Resize, and the object keeps that rule whatever order
// a container takes: a Line3D left to find its orientation (lAuto) turns vertical in a tall
// place and horizontal in a wide one, however the place reaches it. Used without any place (a
// script's first call) it settles at its default extent, which is wide.
void CheckSizingOrder(const Server& server) {
    const std::string group = "sizing order";
    const com::ClassEntry* line = nullptr;
    for (const com::ClassEntry& entry : com::PublicClasses())
        if (entry.info->name == "Line3D") line = &entry;
    Check(line != nullptr, group, "Line3D is served");
    if (!line) return;
    const host::MemberInfo* orientation = line->info->FindMember("Orientation");
    const auto himetric = [](const RECT& r) {
        return SIZEL{MulDiv(r.right - r.left, 2540, 96), MulDiv(r.bottom - r.top, 2540, 96)};
    };
    using Steps = std::function<void(IDispatch*, Site&, const RECT&)>;
    const auto initNew = [](IDispatch* object) {
        Query<IPersistStreamInit>(object, IID_IPersistStreamInit)->InitNew();
    };
    const auto inPlace = [](IDispatch* object, Site& site, RECT position) {
        Ptr<IOleObject> ole = Query<IOleObject>(object, IID_IOleObject);
        site.position = position;
        ole->DoVerb(OLEIVERB_INPLACEACTIVATE, nullptr, &site, 0, site.frame, &position);
    };
    const std::vector<std::pair<std::string, Steps>> orders = {
        {"SetExtent, InitNew",
         [&](IDispatch* object, Site&, const RECT& place) {
             SIZEL size = himetric(place);
             Query<IOleObject>(object, IID_IOleObject)->SetExtent(DVASPECT_CONTENT, &size);
             initNew(object);
         }},
        {"InitNew, SetExtent (the ATL host's order)",
         [&](IDispatch* object, Site&, const RECT& place) {
             initNew(object);
             SIZEL size = himetric(place);
             Query<IOleObject>(object, IID_IOleObject)->SetExtent(DVASPECT_CONTENT, &size);
         }},
        {"SetClientSite, Load from a bag, SetExtent",
         [&](IDispatch* object, Site& site, const RECT& place) {
             Query<IOleObject>(object, IID_IOleObject)->SetClientSite(&site);
             Query<IPersistPropertyBag>(object, IID_IPersistPropertyBag)
                 ->Load(new ole::PropertyBag, nullptr);
             SIZEL size = himetric(place);
             Query<IOleObject>(object, IID_IOleObject)->SetExtent(DVASPECT_CONTENT, &size);
         }},
        {"SetClientSite, InitNew, in place at its position",
         [&](IDispatch* object, Site& site, const RECT& place) {
             Query<IOleObject>(object, IID_IOleObject)->SetClientSite(&site);
             initNew(object);
             inPlace(object, site, place);
         }},
        {"SetClientSite, InitNew, in place without a position, SetObjectRects",
         [&](IDispatch* object, Site& site, const RECT& place) {
             Query<IOleObject>(object, IID_IOleObject)->SetClientSite(&site);
             initNew(object);
             inPlace(object, site, RECT{place.left, place.top, place.left, place.top});
             site.position = place;
             Query<IOleInPlaceObject>(object, IID_IOleInPlaceObject)
                 ->SetObjectRects(&place, &place);
         }},
    };
    const std::vector<std::pair<RECT, int>> places = {{{10, 10, 40, 100}, 1},
                                                      {{10, 10, 100, 40}, 0}};
    for (const auto& [name, steps] : orders) {
        for (const auto& [place, expected] : places) {
            Site& site = NewSite();
            {
                Ptr<IDispatch> object = server.Create(*line);
                steps(object.p, site, place);
                const Outcome read =
                    Dispatch(object.p, orientation->dispId, DISPATCH_PROPERTYGET, {});
                Check(read.number == 0 && read.value.ToLong() == expected, group,
                      name + ": " + std::to_string(place.right - place.left) + "x" +
                          std::to_string(place.bottom - place.top) + " gives Orientation " +
                          std::to_string(expected) + " (read " + host::DisplayText(read.value) +
                          ")");
                Ptr<IOleObject> ole = Query<IOleObject>(object.p, IID_IOleObject);
                ole->Close(OLECLOSE_NOSAVE);
                ole->SetClientSite(nullptr);
            }
        }
    }
    Ptr<IDispatch> object = server.Create(*line);
    initNew(object.p);
    const Outcome read = Dispatch(object.p, orientation->dispId, DISPATCH_PROPERTYGET, {});
    Check(read.number == 0 && read.value.ToLong() == 0, group,
          "InitNew, then a script's first call: settled at the default extent, horizontal");
}

void CheckPersistence(const Server& server, const host::json::Json& controls,
                      const host::json::Json& expected) {
    for (const host::json::Json& c : controls) {
        const std::string progId = c.value("ProgID", "");
        const std::string name = c.value("Name", "");
        const com::ClassEntry* entry = nullptr;
        for (const com::ClassEntry& e : com::PublicClasses())
            if (host::EqualsNoCase(e.info->progId, progId)) entry = &e;
        if (c.contains("Controls")) CheckPersistence(server, c["Controls"], expected);
        if (!entry || !expected.contains(name)) continue;
        const host::json::Json want = Realised(expected[name]);

        Ptr<IDispatch> object = server.Create(*entry);
        Ptr<IOleObject> ole = Query<IOleObject>(object.p, IID_IOleObject);
        SIZEL extent{MulDiv(c.value("Width", 0), 2540, 1440),
                     MulDiv(c.value("Height", 0), 2540, 1440)};
        ole->SetExtent(DVASPECT_CONTENT, &extent);
        // The form's bag, as a container hands it over.
        auto* input = new ole::PropertyBag;
        const host::JsonPropertyBag properties =
            host::json::DecodeBag(c.value("Properties", host::json::Json::object()));
        for (const auto& [key, value] : properties.Entries()) {
            VARIANT v = ToVariant(value);
            input->Write(Widen(key).c_str(), &v);
            VariantClear(&v);
        }
        Ptr<IPersistPropertyBag> persist =
            Query<IPersistPropertyBag>(object.p, IID_IPersistPropertyBag);
        Check(SUCCEEDED(persist->Load(input, nullptr)), "property bags", name + " loads");
        const host::json::Json saved = Realised(SaveToBag(object.p));
        Check(saved.dump() == want.dump(), "property bags",
              name + " saves " + saved.dump() + ", native " + want.dump());

        // Saved, it is clean; loaded, it cannot be made new. (The stream and storage round
        // trips are the container's, tests/win32/container.)
        Ptr<IPersistStreamInit> streamPersist =
            Query<IPersistStreamInit>(object.p, IID_IPersistStreamInit);
        Check(streamPersist->IsDirty() == S_FALSE, "property bags", name + " is clean once saved");
        Check(streamPersist->InitNew() == CO_E_ALREADYINITIALIZED, "property bags",
              name + " cannot be initialised twice");
    }
}

// A script host never calls InitNew: the first call initialises the control.
void CheckWithoutInit(const Server& server, const com::ClassEntry& entry) {
    Ptr<IDispatch> object = server.Create(entry);
    const host::MemberInfo* readable = nullptr;
    for (const host::MemberInfo& m : entry.info->members)
        if (!readable && m.kind == host::MemberInfo::Kind::Property && m.persisted) readable = &m;
    if (!readable) return;
    Check(Dispatch(object.p, readable->dispId, DISPATCH_PROPERTYGET, {}).number == 0, "dispatch",
          entry.info->name + " works without InitNew");
}

std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2 || argc % 2 != 0) {
        std::fprintf(stderr, "usage: korvex-com-test DLL [FORM.json EXPECTED.json]...\n");
        return 2;
    }
    if (FAILED(OleInitialize(nullptr))) return 1;
    int status = 0;
    {
        Server server;
        if (!server.Load(argv[1])) {
            std::printf("FAIL: %s does not load or lacks an entry point\n", argv[1]);
            return 1;
        }
        gFrame = ole::MakeFrame(400, 300);
        Check(com::PublicClasses().size() >= 6, "classes", "the public controls");
        host::HostContext context;
        RegisterPrivateControls(context);
        for (const host::ClassInfo* info : context.Classes().Classes()) {
            IClassFactory* factory = nullptr;
            Check(server.getClassObject(com::ToGuid(host::TypeLibraryGuid(info->progId)),
                                        IID_IClassFactory, reinterpret_cast<void**>(&factory)) ==
                      CLASS_E_CLASSNOTAVAILABLE,
                  "classes", info->name + " is not served");
        }
        for (bool perUser : {true, false}) CheckRegistration(server, perUser);
        for (const com::ClassEntry& entry : com::PublicClasses()) {
            CheckDispatch(server, entry);
            CheckEvents(server, entry);
            CheckWithoutInit(server, entry);
            CheckInPlace(server, entry);
        }
        CheckSizingOrder(server);
        for (int i = 2; i + 1 < argc; i += 2) {
            try {
                const auto form = host::json::Json::parse(ReadFile(argv[i]));
                const auto expected = host::json::Json::parse(ReadFile(argv[i + 1]));
                CheckPersistence(server, form.value("Controls", host::json::Json::array()),
                                 expected);
            } catch (const std::exception& e) {
                Check(false, "property bags", std::string(argv[i]) + ": " + e.what());
            }
        }
        Check(server.canUnloadNow() == S_OK, "classes",
              "DllCanUnloadNow once every object is gone");
        // Unloaded and loaded again, it serves as before: nothing of the first load is left.
        CoFreeUnusedLibrariesEx(0, 0);
        FreeLibrary(server.module);
        Check(GetModuleHandleW(server.path.c_str()) == nullptr, "classes", "the DLL unloads");
        Server again;
        Check(again.Load(argv[1]), "classes", "the DLL loads again");
        if (again.module) {
            CheckInPlace(again, com::PublicClasses().back());
            Check(again.canUnloadNow() == S_OK, "classes", "DllCanUnloadNow after the second load");
        }
        for (const std::string& note : gNotes) std::printf("note: %s\n", note.c_str());
        status = ole::PrintCounts() == 0 ? 0 : 1;
    }
    OleUninitialize();
    return status;
}
