#include "ole_container.hpp"

#include <cmath>
#include <cstdio>

namespace ole {

namespace {

std::map<std::string, int> checked;
int failures = 0;
bool echo = false;

}  // namespace

void Line(const std::string& text) {
    std::printf("%s\n", text.c_str());
    std::fflush(stdout);
}

void Check(bool ok, const std::string& group, const std::string& what) {
    ++checked[group];
    if (!ok) ++failures;
    if (!ok || echo) Line((ok ? "ok " : "FAIL ") + (group.empty() ? what : group + ": " + what));
}

void Echo(bool passes) {
    echo = passes;
}

int Failures() {
    return failures;
}

int PrintCounts() {
    int total = 0;
    for (const auto& [group, count] : checked) {
        if (!group.empty()) Line(group + ": " + std::to_string(count));
        total += count;
    }
    Line("total: " + std::to_string(total) + " checks, " + std::to_string(failures) + " failed");
    return failures;
}

std::wstring Widen(const std::string& text) {
    if (text.empty()) return {};
    const int n =
        MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
    std::wstring out(static_cast<std::size_t>(n), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), out.data(), n);
    return out;
}

std::string Narrow(const wchar_t* text) {
    if (!text) return {};
    const int n = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    std::string out(static_cast<std::size_t>(n > 0 ? n - 1 : 0), '\0');
    if (n > 1) WideCharToMultiByte(CP_UTF8, 0, text, -1, out.data(), n, nullptr, nullptr);
    return out;
}

std::string Hex(HRESULT hr) {
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, "0x%08lX", static_cast<unsigned long>(hr));
    return buffer;
}

// ---------------------------------------------------------------------------------------------

HRESULT TypelessDispatch::GetTypeInfoCount(UINT* count) {
    *count = 0;
    return S_OK;
}

HRESULT TypelessDispatch::GetTypeInfo(UINT, LCID, ITypeInfo** out) {
    *out = nullptr;
    return E_NOTIMPL;
}

HRESULT TypelessDispatch::GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) {
    return E_NOTIMPL;
}

IFontDisp* MakeFont(const std::wstring& name, double size, bool bold, bool italic, bool underline,
                    bool strike, short weight, short charset) {
    FONTDESC desc{};
    desc.cbSizeofstruct = sizeof desc;
    desc.lpstrName = const_cast<LPOLESTR>(name.c_str());
    desc.cySize.int64 = static_cast<LONGLONG>(std::llround(size * 10000));
    desc.sWeight = bold && weight < FW_BOLD ? FW_BOLD : weight;
    desc.sCharset = charset;
    desc.fItalic = italic;
    desc.fUnderline = underline;
    desc.fStrikethrough = strike;
    IFontDisp* font = nullptr;
    OleCreateFontIndirect(&desc, IID_IFontDisp, reinterpret_cast<void**>(&font));
    return font;
}

PropertyBag::~PropertyBag() {
    for (auto& [key, value] : entries_) VariantClear(&value);
}

HRESULT PropertyBag::Read(LPCOLESTR name, VARIANT* value, IErrorLog*) {
    for (auto& [key, stored] : entries_) {
        if (_wcsicmp(key.c_str(), name) != 0) continue;
        const VARTYPE wanted = value->vt;
        VariantClear(value);
        if (wanted == VT_EMPTY || wanted == stored.vt) return VariantCopy(value, &stored);
        return VariantChangeType(value, &stored, 0, wanted);
    }
    return E_INVALIDARG;
}

HRESULT PropertyBag::Write(LPCOLESTR name, VARIANT* value) {
    for (auto& [key, stored] : entries_) {
        if (_wcsicmp(key.c_str(), name) != 0) continue;
        VariantClear(&stored);
        return VariantCopy(&stored, value);
    }
    entries_.emplace_back(name, VARIANT{});
    VariantInit(&entries_.back().second);
    return VariantCopy(&entries_.back().second, value);
}

HRESULT NotifySink::OnChanged(DISPID id) {
    changed.push_back(id);
    if (heard_) heard_(id);
    return S_OK;
}

// ---------------------------------------------------------------------------------------------
// The site

HRESULT Site::QueryInterface(REFIID iid, void** out) {
    *out = nullptr;
    if (iid == IID_IUnknown || iid == IID_IOleClientSite)
        *out = static_cast<IOleClientSite*>(this);
    else if (iid == IID_IOleWindow || iid == IID_IOleInPlaceSite || iid == IID_IOleInPlaceSiteEx)
        *out = static_cast<IOleInPlaceSiteEx*>(this);
    else if (iid == IID_IOleInPlaceUIWindow || iid == IID_IOleInPlaceFrame)
        *out = static_cast<IOleInPlaceFrame*>(this);
    else if (iid == IID_IOleControlSite)
        *out = static_cast<IOleControlSite*>(this);
    else if (iid == IID_IDispatch)
        *out = static_cast<IDispatch*>(this);
    if (!*out) return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

HRESULT Site::GetMoniker(DWORD, DWORD, IMoniker** out) {
    *out = nullptr;
    return E_NOTIMPL;
}

HRESULT Site::GetContainer(IOleContainer** out) {
    *out = nullptr;
    return E_NOINTERFACE;
}

HRESULT Site::GetWindow(HWND* out) {
    *out = frame;
    return S_OK;
}

HRESULT Site::OnInPlaceActivate() {
    inPlace = true;
    ++activated;
    return S_OK;
}

HRESULT Site::OnInPlaceActivateEx(BOOL* noRedraw, DWORD) {
    if (noRedraw) *noRedraw = FALSE;
    return OnInPlaceActivate();
}

HRESULT Site::OnUIActivate() {
    ++uiActivated;
    return S_OK;
}

HRESULT Site::GetWindowContext(IOleInPlaceFrame** frameOut, IOleInPlaceUIWindow** document,
                               LPRECT positionOut, LPRECT clip, LPOLEINPLACEFRAMEINFO info) {
    *frameOut = static_cast<IOleInPlaceFrame*>(this);
    AddRef();
    *document = nullptr;
    *positionOut = position;
    *clip = position;
    info->fMDIApp = FALSE;
    info->hwndFrame = frame;
    info->haccel = nullptr;
    info->cAccelEntries = 0;
    return S_OK;
}

HRESULT Site::OnUIDeactivate(BOOL) {
    ++uiDeactivated;
    return S_OK;
}

HRESULT Site::OnInPlaceDeactivate() {
    inPlace = false;
    ++deactivated;
    return S_OK;
}

HRESULT Site::OnInPlaceDeactivateEx(BOOL) {
    return OnInPlaceDeactivate();
}

HRESULT Site::OnPosRectChange(LPCRECT rect) {
    position = *rect;
    return S_OK;
}

HRESULT Site::GetExtendedControl(IDispatch** out) {
    *out = nullptr;
    return E_NOTIMPL;
}

HRESULT Site::TransformCoords(POINTL* himetric, POINTF* container, DWORD flags) {
    // The container's unit is the pixel at 96 dots per inch.
    if (flags & XFORMCOORDS_HIMETRICTOCONTAINER) {
        container->x = static_cast<float>(himetric->x * 96.0 / 2540.0);
        container->y = static_cast<float>(himetric->y * 96.0 / 2540.0);
    } else {
        himetric->x = std::lround(container->x * 2540.0 / 96.0);
        himetric->y = std::lround(container->y * 2540.0 / 96.0);
    }
    return S_OK;
}

HRESULT Site::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                     UINT*) {
    ++asked[id];
    if (!(flags & DISPATCH_PROPERTYGET) || !result) return DISP_E_MEMBERNOTFOUND;
    VariantInit(result);
    switch (id) {
        case DISPID_AMBIENT_USERMODE:
            result->vt = VT_BOOL;
            result->boolVal = userMode ? VARIANT_TRUE : VARIANT_FALSE;
            return S_OK;
        case DISPID_AMBIENT_DISPLAYNAME:
            result->vt = VT_BSTR;
            result->bstrVal = SysAllocString(Widen(name_).c_str());
            return S_OK;
        case DISPID_AMBIENT_BACKCOLOR:
            result->vt = VT_I4;
            result->lVal = static_cast<LONG>(0x8000000F);
            return S_OK;
        case DISPID_AMBIENT_FORECOLOR:
            result->vt = VT_I4;
            result->lVal = static_cast<LONG>(0x80000012);
            return S_OK;
        case DISPID_AMBIENT_FONT:
            // The font a new form of the korvex tool starts with.
            result->vt = VT_DISPATCH;
            result->pdispVal = MakeFont(L"MS Sans Serif", 8.25);
            return S_OK;
        case DISPID_AMBIENT_LOCALEID:
            result->vt = VT_I4;
            result->lVal = 1033;
            return S_OK;
        case DISPID_AMBIENT_SUPPORTSMNEMONICS:
            result->vt = VT_BOOL;
            result->boolVal = VARIANT_TRUE;
            return S_OK;
        case DISPID_AMBIENT_UIDEAD:
        case DISPID_AMBIENT_SHOWGRABHANDLES:
        case DISPID_AMBIENT_SHOWHATCHING:
        case DISPID_AMBIENT_MESSAGEREFLECT:
            result->vt = VT_BOOL;
            result->boolVal = VARIANT_FALSE;
            return S_OK;
        default:
            return DISP_E_MEMBERNOTFOUND;
    }
}

// ---------------------------------------------------------------------------------------------
// Hosting

namespace {

LRESULT CALLBACK FrameProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return DefWindowProcW(window, message, wParam, lParam);
}

}  // namespace

HWND MakeFrame(int width, int height) {
    static const ATOM frameClass = [] {
        WNDCLASSW c{};
        c.lpfnWndProc = FrameProc;
        c.hInstance = GetModuleHandleW(nullptr);
        c.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
        c.lpszClassName = L"KorvexContainerFrame";
        return RegisterClassW(&c);
    }();
    HWND frame =
        CreateWindowExW(0, reinterpret_cast<LPCWSTR>(static_cast<ULONG_PTR>(frameClass)),
                        L"Korvex container", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, 0, 0, width,
                        height, nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
    ShowWindow(frame, SW_SHOW);
    SetForegroundWindow(frame);
    SetActiveWindow(frame);
    return frame;
}

void Pump(DWORD milliseconds) {
    const DWORD end = GetTickCount() + milliseconds;
    MSG msg;
    do {
        while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&msg);
            DispatchMessageW(&msg);
        }
        if (milliseconds) Sleep(5);
    } while (static_cast<LONG>(end - GetTickCount()) > 0);
}

DWORD Advise(IUnknown* control, REFIID iid, IUnknown* sink) {
    Ptr<IConnectionPointContainer> points =
        Query<IConnectionPointContainer>(control, IID_IConnectionPointContainer);
    Ptr<IConnectionPoint> point;
    DWORD cookie = 0;
    if (points && SUCCEEDED(points->FindConnectionPoint(iid, &point)) &&
        FAILED(point->Advise(sink, &cookie)))
        cookie = 0;
    return cookie;
}

std::string MemberName(ITypeInfo* info, DISPID id) {
    BSTR name = nullptr;
    UINT count = 0;
    if (!info || FAILED(info->GetNames(id, &name, 1, &count)) || count == 0)
        return "#" + std::to_string(id);
    std::string out = Narrow(name);
    SysFreeString(name);
    return out;
}

std::vector<VARTYPE> DeclaredTypes(ITypeInfo* events, DISPID id) {
    std::vector<VARTYPE> types;
    TYPEATTR* attr = nullptr;
    if (!events || FAILED(events->GetTypeAttr(&attr))) return types;
    for (WORD f = 0; f < attr->cFuncs; ++f) {
        FUNCDESC* desc = nullptr;
        if (FAILED(events->GetFuncDesc(f, &desc))) continue;
        if (desc->memid == id)
            for (SHORT p = 0; p < desc->cParams; ++p) {
                const TYPEDESC& t = desc->lprgelemdescParam[p].tdesc;
                types.push_back(t.vt == VT_PTR ? static_cast<VARTYPE>(VT_BYREF | t.lptdesc->vt)
                                               : t.vt);
            }
        events->ReleaseFuncDesc(desc);
    }
    events->ReleaseTypeAttr(attr);
    return types;
}

}  // namespace ole
