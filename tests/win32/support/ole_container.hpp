// The container's side of OLE controls, shared by the test programs that host korvex_tools.dll
// under Wine (tests/win32/com, tests/win32/container): the client site with its ambient
// properties, the in-place site and frame, an ordered property bag, the sinks, COM pointers and
// the counting and printing of checks.
#pragma once

#include <windows.h>

#include <ocidl.h>
#include <ole2.h>
#include <oleauto.h>
#include <olectl.h>

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

// COM interfaces have no destructors: an object goes through Release, never through a base
// pointer's delete, so the warning about their non-virtual destructors does not apply here.
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

namespace ole {

// ---------------------------------------------------------------------------------------------
// Checks: counted per group; every failure is printed, and with Echo(true) every pass too.

void Check(bool ok, const std::string& group, const std::string& what);
void Echo(bool passes);
void Line(const std::string& text);
[[nodiscard]] int Failures();
// One line per group with its count, then the total; returns the number of failures.
int PrintCounts();

std::wstring Widen(const std::string& text);
std::string Narrow(const wchar_t* text);
std::string Hex(HRESULT hr);

// ---------------------------------------------------------------------------------------------
// Pointers

template <class T>
struct Ptr {
    T* p = nullptr;
    Ptr() = default;
    explicit Ptr(T* raw) : p(raw) {}
    Ptr(const Ptr&) = delete;
    Ptr(Ptr&& other) noexcept : p(std::exchange(other.p, nullptr)) {}
    Ptr& operator=(const Ptr&) = delete;
    Ptr& operator=(Ptr&&) = delete;
    ~Ptr() {
        if (p) p->Release();
    }
    T* operator->() const { return p; }
    T** operator&() { return &p; }
    explicit operator bool() const { return p != nullptr; }
};

template <class T>
Ptr<T> Query(IUnknown* unknown, const IID& iid) {
    Ptr<T> out;
    if (unknown) unknown->QueryInterface(iid, reinterpret_cast<void**>(&out.p));
    return out;
}

// ---------------------------------------------------------------------------------------------
// Objects of the container. They are counted but never deleted: a control may keep its site or
// a sink past the point where a check is done with it, and the process ends soon after. The
// count tells whether the control let go.

template <class... Interfaces>
class Object : public Interfaces... {
  public:
    virtual ~Object() = default;
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++refs); }
    ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(refs > 0 ? --refs : 0); }
    long refs = 0;
};

// One interface and its IUnknown; `also` is one more interface the object answers for as the
// first (a sink's event interface).
template <class Interface>
class Single : public Object<Interface> {
  public:
    explicit Single(const IID& iid, const IID& also = IID_NULL) : iid_(iid), also_(also) {}
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override {
        if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, iid_) ||
            (!IsEqualIID(also_, IID_NULL) && IsEqualIID(riid, also_))) {
            *out = static_cast<Interface*>(this);
            this->AddRef();
            return S_OK;
        }
        *out = nullptr;
        return E_NOINTERFACE;
    }

  private:
    IID iid_;
    IID also_;
};

// The container's IDispatch: no type information, members known by id only (Invoke).
class TypelessDispatch : public IDispatch {
  public:
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo** out) override;
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override;
};

// A sink: an IDispatch of the container's, answering for `also` (the event interface) too.
class Dispatch : public Single<TypelessDispatch> {
  public:
    explicit Dispatch(const IID& also = IID_NULL) : Single(IID_IDispatch, also) {}
};

IFontDisp* MakeFont(const std::wstring& name, double size, bool bold = false, bool italic = false,
                    bool underline = false, bool strike = false, short weight = FW_NORMAL,
                    short charset = 0);

// A property bag that keeps its entries in the order they were written, as a form file does;
// read in any case, converted to the type the reader asks for.
class PropertyBag final : public Single<IPropertyBag> {
  public:
    PropertyBag() : Single(IID_IPropertyBag) {}
    ~PropertyBag() override;
    HRESULT STDMETHODCALLTYPE Read(LPCOLESTR name, VARIANT* value, IErrorLog*) override;
    HRESULT STDMETHODCALLTYPE Write(LPCOLESTR name, VARIANT* value) override;
    [[nodiscard]] const std::vector<std::pair<std::wstring, VARIANT>>& Entries() const {
        return entries_;
    }

  private:
    std::vector<std::pair<std::wstring, VARIANT>> entries_;
};

// Property change notifications: every id heard, in order; `heard` is told of each as well.
// Edits are allowed unless `allowEdit` says otherwise.
class NotifySink final : public Single<IPropertyNotifySink> {
  public:
    explicit NotifySink(std::function<void(DISPID)> heard = {})
        : Single(IID_IPropertyNotifySink), heard_(std::move(heard)) {}
    HRESULT STDMETHODCALLTYPE OnChanged(DISPID id) override;
    HRESULT STDMETHODCALLTYPE OnRequestEdit(DISPID) override { return allowEdit ? S_OK : S_FALSE; }
    std::vector<DISPID> changed;
    bool allowEdit = true;

  private:
    std::function<void(DISPID)> heard_;
};

// The control's site: client site, in-place site, frame, control site and the ambient
// properties (UserMode as `userMode`, DisplayName as the site's name, the colours and font of a
// new form). It counts the activations the control reports and the ambients it asks for.
class Site final : public Object<IOleClientSite, IOleInPlaceSiteEx, IOleInPlaceFrame,
                                 IOleControlSite, TypelessDispatch> {
    using Base = Object<IOleClientSite, IOleInPlaceSiteEx, IOleInPlaceFrame, IOleControlSite,
                        TypelessDispatch>;

  public:
    Site(HWND frameWindow, RECT place, bool runMode, std::string name)
        : userMode(runMode), frame(frameWindow), position(place), name_(std::move(name)) {}

    ULONG STDMETHODCALLTYPE AddRef() override { return Base::AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return Base::Release(); }
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override;

    // IOleClientSite
    HRESULT STDMETHODCALLTYPE SaveObject() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetMoniker(DWORD, DWORD, IMoniker** out) override;
    HRESULT STDMETHODCALLTYPE GetContainer(IOleContainer** out) override;
    HRESULT STDMETHODCALLTYPE ShowObject() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnShowWindow(BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE RequestNewObjectLayout() override { return E_NOTIMPL; }

    // IOleWindow, for the in-place site and the frame alike
    HRESULT STDMETHODCALLTYPE GetWindow(HWND* out) override;
    HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }

    // IOleInPlaceSite(Ex)
    HRESULT STDMETHODCALLTYPE CanInPlaceActivate() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnInPlaceActivate() override;
    HRESULT STDMETHODCALLTYPE OnUIActivate() override;
    HRESULT STDMETHODCALLTYPE GetWindowContext(IOleInPlaceFrame** frame,
                                               IOleInPlaceUIWindow** document, LPRECT position,
                                               LPRECT clip, LPOLEINPLACEFRAMEINFO info) override;
    HRESULT STDMETHODCALLTYPE Scroll(SIZE) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE OnUIDeactivate(BOOL) override;
    HRESULT STDMETHODCALLTYPE OnInPlaceDeactivate() override;
    HRESULT STDMETHODCALLTYPE DiscardUndoState() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE DeactivateAndUndo() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnPosRectChange(LPCRECT rect) override;
    HRESULT STDMETHODCALLTYPE OnInPlaceActivateEx(BOOL* noRedraw, DWORD) override;
    HRESULT STDMETHODCALLTYPE OnInPlaceDeactivateEx(BOOL) override;
    HRESULT STDMETHODCALLTYPE RequestUIActivate() override { return S_OK; }

    // IOleInPlaceUIWindow, IOleInPlaceFrame: a frame without tools, menus or status bar
    HRESULT STDMETHODCALLTYPE GetBorder(LPRECT) override { return INPLACE_E_NOTOOLSPACE; }
    HRESULT STDMETHODCALLTYPE RequestBorderSpace(LPCBORDERWIDTHS) override {
        return INPLACE_E_NOTOOLSPACE;
    }
    HRESULT STDMETHODCALLTYPE SetBorderSpace(LPCBORDERWIDTHS) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE SetActiveObject(IOleInPlaceActiveObject*, LPCOLESTR) override {
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE InsertMenus(HMENU, LPOLEMENUGROUPWIDTHS) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE SetMenu(HMENU, HOLEMENU, HWND) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE RemoveMenus(HMENU) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE SetStatusText(LPCOLESTR) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE EnableModeless(BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(LPMSG, WORD) override { return S_FALSE; }

    // IOleControlSite
    HRESULT STDMETHODCALLTYPE OnControlInfoChanged() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE LockInPlaceActive(BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetExtendedControl(IDispatch** out) override;
    HRESULT STDMETHODCALLTYPE TransformCoords(POINTL* himetric, POINTF* container,
                                              DWORD flags) override;
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(MSG*, DWORD) override { return S_FALSE; }
    HRESULT STDMETHODCALLTYPE OnFocus(BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE ShowPropertyFrame() override { return E_NOTIMPL; }

    // IDispatch: the ambient properties
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS*,
                                     VARIANT* result, EXCEPINFO*, UINT*) override;

    bool userMode;
    HWND frame;
    RECT position;
    bool inPlace = false;
    int activated = 0;
    int uiActivated = 0;
    int uiDeactivated = 0;
    int deactivated = 0;
    std::map<DISPID, int> asked;

  private:
    std::string name_;
};

// ---------------------------------------------------------------------------------------------
// Hosting

// A visible top-level window for the sites' controls, of a class registered once.
HWND MakeFrame(int width, int height);
// Runs the thread's messages for this long (at least once through the queue).
void Pump(DWORD milliseconds = 0);
// Connects a sink to a control's connection point; the cookie, 0 when refused.
DWORD Advise(IUnknown* control, REFIID iid, IUnknown* sink);
// A member's name from a dispinterface's type information ("#id" when unknown).
std::string MemberName(ITypeInfo* info, DISPID id);
// The argument types an event interface declares for one of its events, first to last.
std::vector<VARTYPE> DeclaredTypes(ITypeInfo* events, DISPID id);

}  // namespace ole
