#pragma once
// One ActiveX control: a COM object around one host control, sited in the container through the
// OLE interfaces. The object is the control's host::ControlSite: ambient properties come from
// the client site, property changes go to IPropertyNotifySink, events to the event sinks. The
// control itself is made on first need (InitNew, Load, activation, or a script's first call),
// following the host's order: Initialize, siting, InitProperties or ReadProperties, Resize; the
// first Resize comes at the container's extent, whenever the container gives it.

#include <cstdint>
#include <memory>

#include "com/classes.hpp"
#include "com/connection_point.hpp"
#include "com/context.hpp"
#include "com/dispatch.hpp"
#include "com/win.hpp"
#include "host/control.hpp"

namespace korvex::com {

// OLEMISC_RECOMPOSEONRESIZE | CANTLINKINSIDE | INSIDEOUT | ACTIVATEWHENVISIBLE |
// SETCLIENTSITEFIRST
inline constexpr DWORD kMiscStatus = 0x1 | 0x10 | 0x80 | 0x100 | 0x20000;

class ControlObject final : public IDispatch,
                            public IProvideClassInfo2,
                            public IConnectionPointContainer,
                            public IPersistStreamInit,
                            public IPersistPropertyBag,
                            public IPersistStorage,
                            public IOleObject,
                            public IOleInPlaceObject,
                            public IOleInPlaceActiveObject,
                            public IOleControl,
                            public IViewObject2,
                            public IQuickActivate,
                            public host::ControlSite,
                            private EditGate {
  public:
    static HRESULT Create(const ClassEntry& entry, REFIID riid, void** ppv);

    // The host control behind the object, made now if there is none yet; for programs that link
    // the layer and compare the late-bound path with direct calls.
    std::shared_ptr<host::Control> HostControl() {
        EnsureControl(nullptr);
        Settle();
        return control_;
    }

    // IUnknown
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;

    // IDispatch
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID, ITypeInfo** info) override;
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID,
                                            DISPID* ids) override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID riid, LCID, WORD flags, DISPPARAMS* params,
                                     VARIANT* result, EXCEPINFO* exception,
                                     UINT* argError) override;

    // IProvideClassInfo2
    HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** info) override;
    HRESULT STDMETHODCALLTYPE GetGUID(DWORD kind, GUID* guid) override;

    // IConnectionPointContainer
    HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints** out) override;
    HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID riid, IConnectionPoint** out) override;

    // IPersist, IPersistStreamInit, IPersistPropertyBag, IPersistStorage
    HRESULT STDMETHODCALLTYPE GetClassID(CLSID* clsid) override;
    HRESULT STDMETHODCALLTYPE IsDirty() override;
    HRESULT STDMETHODCALLTYPE Load(IStream* stream) override;
    HRESULT STDMETHODCALLTYPE Save(IStream* stream, BOOL clearDirty) override;
    HRESULT STDMETHODCALLTYPE GetSizeMax(ULARGE_INTEGER* size) override;
    HRESULT STDMETHODCALLTYPE InitNew() override;
    HRESULT STDMETHODCALLTYPE Load(IPropertyBag* bag, IErrorLog* log) override;
    HRESULT STDMETHODCALLTYPE Save(IPropertyBag* bag, BOOL clearDirty, BOOL saveAll) override;
    HRESULT STDMETHODCALLTYPE InitNew(IStorage* storage) override;
    HRESULT STDMETHODCALLTYPE Load(IStorage* storage) override;
    HRESULT STDMETHODCALLTYPE Save(IStorage* storage, BOOL sameAsLoad) override;
    HRESULT STDMETHODCALLTYPE SaveCompleted(IStorage* storage) override;
    HRESULT STDMETHODCALLTYPE HandsOffStorage() override;

    // IOleObject
    HRESULT STDMETHODCALLTYPE SetClientSite(IOleClientSite* site) override;
    HRESULT STDMETHODCALLTYPE GetClientSite(IOleClientSite** site) override;
    HRESULT STDMETHODCALLTYPE SetHostNames(LPCOLESTR, LPCOLESTR) override;
    HRESULT STDMETHODCALLTYPE Close(DWORD saveOption) override;
    HRESULT STDMETHODCALLTYPE SetMoniker(DWORD, IMoniker*) override;
    HRESULT STDMETHODCALLTYPE GetMoniker(DWORD, DWORD, IMoniker** moniker) override;
    HRESULT STDMETHODCALLTYPE InitFromData(IDataObject*, BOOL, DWORD) override;
    HRESULT STDMETHODCALLTYPE GetClipboardData(DWORD, IDataObject** data) override;
    HRESULT STDMETHODCALLTYPE DoVerb(LONG verb, LPMSG, IOleClientSite* activeSite, LONG,
                                     HWND parent, LPCRECT position) override;
    HRESULT STDMETHODCALLTYPE EnumVerbs(IEnumOLEVERB** verbs) override;
    HRESULT STDMETHODCALLTYPE Update() override;
    HRESULT STDMETHODCALLTYPE IsUpToDate() override;
    HRESULT STDMETHODCALLTYPE GetUserClassID(CLSID* clsid) override;
    HRESULT STDMETHODCALLTYPE GetUserType(DWORD, LPOLESTR* name) override;
    HRESULT STDMETHODCALLTYPE SetExtent(DWORD aspect, SIZEL* size) override;
    HRESULT STDMETHODCALLTYPE GetExtent(DWORD aspect, SIZEL* size) override;
    HRESULT STDMETHODCALLTYPE Advise(IAdviseSink* sink, DWORD* cookie) override;
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) override;
    HRESULT STDMETHODCALLTYPE EnumAdvise(IEnumSTATDATA** out) override;
    HRESULT STDMETHODCALLTYPE GetMiscStatus(DWORD aspect, DWORD* status) override;
    HRESULT STDMETHODCALLTYPE SetColorScheme(LOGPALETTE*) override;

    // IOleWindow, IOleInPlaceObject, IOleInPlaceActiveObject
    HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) override;
    HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL) override;
    HRESULT STDMETHODCALLTYPE InPlaceDeactivate() override;
    HRESULT STDMETHODCALLTYPE UIDeactivate() override;
    HRESULT STDMETHODCALLTYPE SetObjectRects(LPCRECT position, LPCRECT clip) override;
    HRESULT STDMETHODCALLTYPE ReactivateAndUndo() override;
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(LPMSG message) override;
    HRESULT STDMETHODCALLTYPE OnFrameWindowActivate(BOOL) override;
    HRESULT STDMETHODCALLTYPE OnDocWindowActivate(BOOL) override;
    HRESULT STDMETHODCALLTYPE ResizeBorder(LPCRECT, IOleInPlaceUIWindow*, BOOL) override;
    HRESULT STDMETHODCALLTYPE EnableModeless(BOOL) override;

    // IOleControl
    HRESULT STDMETHODCALLTYPE GetControlInfo(CONTROLINFO* info) override;
    HRESULT STDMETHODCALLTYPE OnMnemonic(MSG* message) override;
    HRESULT STDMETHODCALLTYPE OnAmbientPropertyChange(DISPID id) override;
    HRESULT STDMETHODCALLTYPE FreezeEvents(BOOL freeze) override;

    // IViewObject2
    HRESULT STDMETHODCALLTYPE Draw(DWORD aspect, LONG, void*, DVTARGETDEVICE*, HDC, HDC dc,
                                   LPCRECTL bounds, LPCRECTL, BOOL(STDMETHODCALLTYPE*)(ULONG_PTR),
                                   ULONG_PTR) override;
    HRESULT STDMETHODCALLTYPE GetColorSet(DWORD, LONG, void*, DVTARGETDEVICE*, HDC,
                                          LOGPALETTE** palette) override;
    HRESULT STDMETHODCALLTYPE Freeze(DWORD, LONG, void*, DWORD* cookie) override;
    HRESULT STDMETHODCALLTYPE Unfreeze(DWORD) override;
    HRESULT STDMETHODCALLTYPE SetAdvise(DWORD aspects, DWORD flags, IAdviseSink* sink) override;
    HRESULT STDMETHODCALLTYPE GetAdvise(DWORD* aspects, DWORD* flags, IAdviseSink** sink) override;
    HRESULT STDMETHODCALLTYPE GetExtent(DWORD aspect, LONG, DVTARGETDEVICE*, LPSIZEL size) override;

    // IQuickActivate
    HRESULT STDMETHODCALLTYPE QuickActivate(QACONTAINER* container, QACONTROL* control) override;
    HRESULT STDMETHODCALLTYPE SetContentExtent(LPSIZEL size) override;
    HRESULT STDMETHODCALLTYPE GetContentExtent(LPSIZEL size) override;

    // host::ControlSite
    [[nodiscard]] host::AmbientProperties Ambient() const override { return ambient_; }
    void PropertyChanged(std::string_view name) override;
    void RaiseEvent(const host::EventInfo& event, std::span<host::Variant> args) override;
    [[nodiscard]] host::HostContext& Context() const override { return context_->Host(); }
    [[nodiscard]] platform::HWND ContainerWindow() const override { return parent_; }
    [[nodiscard]] platform::RECT Bounds() const override;
    void RequestExtent(std::int32_t width, std::int32_t height) override;

  private:
    explicit ControlObject(const ClassEntry& entry);
    ~ControlObject() override;

    bool MayEdit(const host::MemberInfo& member) override;

    // Makes the control if there is none yet: restored from `bag`, or new.
    void EnsureControl(host::PropertyBag* bag);
    void DestroyControl();
    // The control's first Resize, if it has not had it yet.
    void Settle();
    // Re-creates the control from its own bag, as a designer does when it switches modes.
    void Recreate();
    void ReadAmbient();
    void Place();
    // The control's window and the window of the in-place site, as the system numbers them.
    [[nodiscard]] HWND NativeControlWindow() const;
    [[nodiscard]] HWND SiteWindow() const;
    void MoveInto(HWND site);
    HRESULT Activate(IOleClientSite* activeSite, bool uiActivate);
    // The class's status, and OLEMISC_ACTSLIKELABEL for a control that hands the focus on.
    [[nodiscard]] DWORD MiscStatus() const;
    void ReleaseFrame();
    void SetTwips(std::int32_t width, std::int32_t height);
    host::JsonPropertyBag SaveBag() const;
    HRESULT LoadBag(host::PropertyBag& bag);
    HRESULT Failed();

    long refs_ = 1;
    std::shared_ptr<ThreadContext> context_;
    const ClassEntry& entry_;
    std::string source_;  // the ProgID, as errors name it
    std::shared_ptr<host::Control> control_;
    host::AmbientProperties ambient_;
    ConnectionPoint<IDispatch> events_;
    ConnectionPoint<IPropertyNotifySink> notify_;

    IOleClientSite* clientSite_ = nullptr;
    IOleInPlaceSite* inPlaceSite_ = nullptr;
    IOleInPlaceFrame* frame_ = nullptr;
    IOleInPlaceUIWindow* document_ = nullptr;
    IOleAdviseHolder* adviseHolder_ = nullptr;
    IAdviseSink* viewSink_ = nullptr;
    DWORD viewAspects_ = 0;
    DWORD viewFlags_ = 0;
    HACCEL accelerators_ = nullptr;

    platform::HWND parent_{};  // the site's window as the platform knows it; zero before
    RECT position_{};          // in the parent's client area, pixels
    std::int32_t widthTwips_ = 1215;
    std::int32_t heightTwips_ = 495;
    bool visible_ = false;
    bool uiActive_ = false;
    bool loading_ = false;
    bool extentGiven_ = false;  // by SetExtent or a position; the first Resize waits for it
    bool resizePending_ = false;
    bool dirty_ = false;
    int frozen_ = 0;
};

}  // namespace korvex::com
