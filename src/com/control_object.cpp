#include "com/control_object.hpp"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <vector>

#include "base/error.hpp"
#include "com/convert.hpp"
#include "com/module.hpp"
#include "com/property_bag.hpp"
#include "host/text.hpp"

namespace korvex::com {

namespace {

// A stream holds the control's bag as its JSON text, after a tag and the text's length.
constexpr char kStreamTag[4] = {'K', 'V', 'X', '1'};
constexpr ULONG kMaxStreamText = 64u << 20;
constexpr const wchar_t* kStorageStream = L"Contents";

std::int32_t HimetricToTwips(LONG himetric) {
    return MulDiv(himetric, 1440, 2540);
}

LONG TwipsToHimetric(std::int32_t twips) {
    return MulDiv(twips, 2540, 1440);
}

template <class T>
void Replace(T*& slot, T* value) {
    if (value) value->AddRef();
    if (slot) slot->Release();
    slot = value;
}

HRESULT ReadAll(IStream* stream, void* data, ULONG size) {
    ULONG read = 0;
    const HRESULT hr = stream->Read(data, size, &read);
    if (FAILED(hr)) return hr;
    return read == size ? S_OK : E_FAIL;
}

// The object's two connection points, in turn. Holding them holds the object.
class PointEnumerator final : public IEnumConnectionPoints {
  public:
    PointEnumerator(std::vector<IConnectionPoint*> points, std::size_t at)
        : points_(std::move(points)), at_(at) {
        for (IConnectionPoint* point : points_) point->AddRef();
    }
    ~PointEnumerator() {
        for (IConnectionPoint* point : points_) point->Release();
    }
    PointEnumerator(const PointEnumerator&) = delete;
    PointEnumerator& operator=(const PointEnumerator&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) override {
        if (!ppv) return E_POINTER;
        if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IEnumConnectionPoints)) {
            *ppv = static_cast<IEnumConnectionPoints*>(this);
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
    HRESULT STDMETHODCALLTYPE Next(ULONG count, IConnectionPoint** out, ULONG* fetched) override {
        if (!out) return E_POINTER;
        ULONG got = 0;
        for (; got < count && at_ < points_.size(); ++got) {
            out[got] = points_[at_++];
            out[got]->AddRef();
        }
        if (fetched) *fetched = got;
        return got == count ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Skip(ULONG count) override {
        at_ = std::min<std::size_t>(points_.size(), at_ + count);
        return at_ < points_.size() ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Reset() override {
        at_ = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Clone(IEnumConnectionPoints** out) override {
        if (!out) return E_POINTER;
        *out = new (std::nothrow) PointEnumerator(points_, at_);
        return *out ? S_OK : E_OUTOFMEMORY;
    }

  private:
    long refs_ = 1;
    std::vector<IConnectionPoint*> points_;
    std::size_t at_;
};

}  // namespace

HRESULT ControlObject::Create(const ClassEntry& entry, REFIID riid, void** ppv) {
    if (!ppv) return E_POINTER;
    *ppv = nullptr;
    ControlObject* object = nullptr;
    try {
        object = new ControlObject(entry);
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return E_FAIL;
    }
    const HRESULT hr = object->QueryInterface(riid, ppv);
    object->Release();
    return hr;
}

ControlObject::ControlObject(const ClassEntry& entry)
    : context_(ThreadContext::Current()),
      entry_(entry),
      source_(entry.info->progId),
      events_(this, entry.eventIid),
      notify_(this, IID_IPropertyNotifySink) {
    AddModuleRef();
    ReadAmbient();
}

ControlObject::~ControlObject() {
    DestroyControl();
    ReleaseFrame();
    Replace(inPlaceSite_, static_cast<IOleInPlaceSite*>(nullptr));
    Replace(clientSite_, static_cast<IOleClientSite*>(nullptr));
    Replace(adviseHolder_, static_cast<IOleAdviseHolder*>(nullptr));
    Replace(viewSink_, static_cast<IAdviseSink*>(nullptr));
    if (accelerators_) DestroyAcceleratorTable(accelerators_);
    ReleaseModuleRef();
}

// ---------------------------------------------------------------------------------------------
// IUnknown

HRESULT ControlObject::QueryInterface(REFIID riid, void** ppv) {
    if (!ppv) return E_POINTER;
    void* out = nullptr;
    if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IDispatch) ||
        IsEqualIID(riid, entry_.iid))
        out = static_cast<IDispatch*>(this);
    else if (IsEqualIID(riid, IID_IProvideClassInfo) || IsEqualIID(riid, IID_IProvideClassInfo2))
        out = static_cast<IProvideClassInfo2*>(this);
    else if (IsEqualIID(riid, IID_IConnectionPointContainer))
        out = static_cast<IConnectionPointContainer*>(this);
    else if (IsEqualIID(riid, IID_IPersist) || IsEqualIID(riid, IID_IPersistStreamInit) ||
             IsEqualIID(riid, IID_IPersistStream))
        out = static_cast<IPersistStreamInit*>(this);
    else if (IsEqualIID(riid, IID_IPersistPropertyBag))
        out = static_cast<IPersistPropertyBag*>(this);
    else if (IsEqualIID(riid, IID_IPersistStorage))
        out = static_cast<IPersistStorage*>(this);
    else if (IsEqualIID(riid, IID_IOleObject))
        out = static_cast<IOleObject*>(this);
    else if (IsEqualIID(riid, IID_IOleWindow) || IsEqualIID(riid, IID_IOleInPlaceObject))
        out = static_cast<IOleInPlaceObject*>(this);
    else if (IsEqualIID(riid, IID_IOleInPlaceActiveObject))
        out = static_cast<IOleInPlaceActiveObject*>(this);
    else if (IsEqualIID(riid, IID_IOleControl))
        out = static_cast<IOleControl*>(this);
    else if (IsEqualIID(riid, IID_IViewObject) || IsEqualIID(riid, IID_IViewObject2))
        out = static_cast<IViewObject2*>(this);
    else if (IsEqualIID(riid, IID_IQuickActivate))
        out = static_cast<IQuickActivate*>(this);
    *ppv = out;
    if (!out) return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

ULONG ControlObject::AddRef() {
    return static_cast<ULONG>(++refs_);
}

ULONG ControlObject::Release() {
    const long left = --refs_;
    if (left == 0) delete this;
    return static_cast<ULONG>(left);
}

HRESULT ControlObject::Failed() {
    const HRESULT hr = ExceptionResult(nullptr, source_);
    return hr == DISP_E_EXCEPTION ? E_FAIL : hr;
}

// ---------------------------------------------------------------------------------------------
// The control

void ControlObject::EnsureControl(host::PropertyBag* bag) {
    if (control_) return;
    const HWND site = SiteWindow();
    parent_ = site ? context_->Platform().AdoptWindow(site) : platform::HWND{};
    host::HostContext& host = context_->Host();
    std::shared_ptr<host::Control> control;
    {
        const host::HostContext::CreatingIn in(host, parent_);
        control = entry_.info->create(host);
    }
    struct Loading {
        bool& flag;
        explicit Loading(bool& f) : flag(f) { flag = true; }
        ~Loading() { flag = false; }
    };
    try {
        const Loading loading(loading_);
        control->UserControl_Initialize();
        control->SetExtent(widthTwips_, heightTwips_);
        control_ = control;
        control->AttachSite(this);
        Place();
        if (bag)
            control->UserControl_ReadProperties(*bag);
        else
            control->UserControl_InitProperties();
    } catch (...) {
        control->AttachSite(nullptr);
        control_.reset();
        throw;
    }
    Place();
    // A form sizes a control before its first Resize. A container may give the extent after
    // InitNew or Load (ATL sets it from its window then), or only with the in-place position:
    // the first Resize waits for it, or for the first use of the control without one.
    resizePending_ = true;
    if (extentGiven_) Settle();
}

void ControlObject::Settle() {
    if (!control_ || !resizePending_) return;
    resizePending_ = false;
    Place();
    control_->UserControl_Resize();
}

void ControlObject::DestroyControl() {
    if (!control_) return;
    const std::shared_ptr<host::Control> control = std::move(control_);
    control->UserControl_Terminate();
    control->AttachSite(nullptr);
}

void ControlObject::Recreate() {
    if (!control_) return;
    host::JsonPropertyBag bag = SaveBag();
    DestroyControl();
    EnsureControl(&bag);
}

host::JsonPropertyBag ControlObject::SaveBag() const {
    host::JsonPropertyBag bag;
    control_->UserControl_WriteProperties(bag);
    return bag;
}

HRESULT ControlObject::LoadBag(host::PropertyBag& bag) {
    if (control_) return CO_E_ALREADYINITIALIZED;
    try {
        EnsureControl(&bag);
        dirty_ = false;
        return S_OK;
    } catch (const host::HostError& e) {
        return ErrorCode(e.Number());
    } catch (...) {
        return Failed();
    }
}

platform::RECT ControlObject::Bounds() const {
    platform::Platform& p = context_->Platform();
    const int tx = platform::TwipsPerPixelX(p);
    const int ty = platform::TwipsPerPixelY(p);
    return {position_.left * tx, position_.top * ty, position_.left * tx + widthTwips_,
            position_.top * ty + heightTwips_};
}

void ControlObject::Place() {
    if (control_) control_->Place(Bounds(), visible_, true);
}

void ControlObject::SetTwips(std::int32_t width, std::int32_t height) {
    const bool changed = width != widthTwips_ || height != heightTwips_;
    widthTwips_ = width;
    heightTwips_ = height;
    if (!control_ || (!changed && !resizePending_)) return;
    control_->SetExtent(width, height);
    resizePending_ = false;
    Place();
    control_->UserControl_Resize();
}

void ControlObject::RequestExtent(std::int32_t width, std::int32_t height) {
    if (loading_ || (width == widthTwips_ && height == heightTwips_)) return;
    platform::Platform& p = context_->Platform();
    RECT wanted = position_;
    wanted.right = wanted.left + width / platform::TwipsPerPixelX(p);
    wanted.bottom = wanted.top + height / platform::TwipsPerPixelY(p);
    SetTwips(width, height);
    position_ = wanted;
    if (inPlaceSite_) inPlaceSite_->OnPosRectChange(&wanted);
    if (viewSink_) viewSink_->OnViewChange(DVASPECT_CONTENT, -1);
}

HWND ControlObject::NativeControlWindow() const {
    if (!control_ || !control_->SurfaceWindow()) return nullptr;
    return static_cast<HWND>(context_->Platform().NativeWindow(control_->SurfaceWindow()));
}

HWND ControlObject::SiteWindow() const {
    HWND window = nullptr;
    if (inPlaceSite_) {
        inPlaceSite_->GetWindow(&window);
        return window;
    }
    IOleInPlaceSite* site = nullptr;
    if (clientSite_ && SUCCEEDED(clientSite_->QueryInterface(IID_IOleInPlaceSite,
                                                             reinterpret_cast<void**>(&site)))) {
        if (FAILED(site->GetWindow(&window))) window = nullptr;
        site->Release();
    }
    return window;
}

void ControlObject::MoveInto(HWND site) {
    const HWND own = NativeControlWindow();
    if (!own || ::GetParent(own) == site) return;
    platform::win32::Win32Platform& p = context_->Platform();
    parent_ = site ? p.AdoptWindow(site) : platform::HWND{};
    p.windows().SetParent(control_->SurfaceWindow(), parent_);
}

// ---------------------------------------------------------------------------------------------
// host::ControlSite

void ControlObject::ReadAmbient() {
    host::AmbientProperties ambient;
    ambient.Font = context_->Host().DefaultFont();
    // Without a container (a script host) the control runs.
    ambient.UserMode = true;
    ambient.DisplayName = entry_.info->name;
    IDispatch* site = nullptr;
    if (clientSite_ &&
        SUCCEEDED(clientSite_->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&site)))) {
        const auto read = [site](DISPID id, VARTYPE type, VARIANT* out) {
            DISPPARAMS none{};
            VARIANT value;
            VariantInit(&value);
            VariantInit(out);
            const HRESULT hr = site->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET,
                                            &none, &value, nullptr, nullptr);
            const bool ok = SUCCEEDED(hr) && SUCCEEDED(VariantChangeType(out, &value, 0, type));
            VariantClear(&value);
            return ok;
        };
        VARIANT v;
        if (read(DISPID_AMBIENT_USERMODE, VT_BOOL, &v))
            ambient.UserMode = V_BOOL(&v) != VARIANT_FALSE;
        if (read(DISPID_AMBIENT_BACKCOLOR, VT_I4, &v))
            ambient.BackColor = static_cast<host::OLE_COLOR>(V_I4(&v));
        if (read(DISPID_AMBIENT_FORECOLOR, VT_I4, &v))
            ambient.ForeColor = static_cast<host::OLE_COLOR>(V_I4(&v));
        if (read(DISPID_AMBIENT_DISPLAYNAME, VT_BSTR, &v)) {
            ambient.DisplayName = Narrow(V_BSTR(&v));
            VariantClear(&v);
        }
        if (read(DISPID_AMBIENT_FONT, VT_DISPATCH, &v)) {
            try {
                const host::Variant font = ToHost(v);
                if (font.Kind() == host::VarKind::Font && font.ToFont())
                    ambient.Font = font.ToFont();
            } catch (const host::HostError&) {
                // Not a font the host can read: the default stays.
            }
            VariantClear(&v);
        }
        site->Release();
    }
    ambient_ = std::move(ambient);
}

void ControlObject::PropertyChanged(std::string_view name) {
    if (loading_) return;
    dirty_ = true;
    const host::MemberInfo* member = entry_.info->FindMember(name);
    const DISPID id = member ? member->dispId : DISPID_UNKNOWN;
    notify_.ForEach([id](IPropertyNotifySink* sink) { sink->OnChanged(id); });
    if (viewSink_) viewSink_->OnViewChange(DVASPECT_CONTENT, -1);
}

bool ControlObject::MayEdit(const host::MemberInfo& member) {
    bool allowed = true;
    notify_.ForEach([&](IPropertyNotifySink* sink) {
        if (allowed && sink->OnRequestEdit(member.dispId) == S_FALSE) allowed = false;
    });
    return allowed;
}

void ControlObject::RaiseEvent(const host::EventInfo& event, std::span<host::Variant> args) {
    if (frozen_ > 0 || events_.Empty()) return;
    const std::size_t n = std::min(args.size(), event.params.size());
    std::vector<VARIANT> values(n);
    std::vector<VARIANT> refs(n);
    for (std::size_t i = 0; i < n; ++i) VariantInit(&values[i]);
    struct Clear {
        std::vector<VARIANT>& values;
        ~Clear() {
            for (VARIANT& v : values) VariantClear(&v);
        }
    } clear{values};
    // Every argument as the type library declares it, by reference ([in, out] T*), last to
    // first: the handler writes into the object's own storage, which comes back afterwards.
    for (std::size_t i = 0; i < n; ++i) {
        ToDeclared(args[i], event.params[i].type, &values[i]);
        VARIANT& ref = refs[n - 1 - i];
        VariantInit(&ref);
        const VARTYPE declared = DeclaredVarType(event.params[i].type);
        V_VT(&ref) = static_cast<VARTYPE>(VT_BYREF | declared);
        if (declared == VT_VARIANT)
            V_VARIANTREF(&ref) = &values[i];
        else
            V_BYREF(&ref) = &V_UI1(&values[i]);
    }
    DISPPARAMS params{refs.data(), nullptr, static_cast<UINT>(n), 0};
    // The object may be released by a handler; it stays until the round is over.
    AddRef();
    events_.ForEach([&](IDispatch* sink) {
        // A sink that fails or reports an error of its own stops nothing: the next one hears
        // the event too.
        VARIANT result;
        VariantInit(&result);
        EXCEPINFO exception{};
        UINT argError = 0;
        sink->Invoke(event.id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &params, &result,
                     &exception, &argError);
        VariantClear(&result);
        SysFreeString(exception.bstrSource);
        SysFreeString(exception.bstrDescription);
        SysFreeString(exception.bstrHelpFile);
    });
    for (std::size_t i = 0; i < n; ++i) {
        try {
            args[i] = FromDeclared(values[i], event.params[i].type);
        } catch (const host::HostError&) {
            // A value the declared type cannot hold leaves the argument as it was.
        }
    }
    Release();
}

// ---------------------------------------------------------------------------------------------
// IDispatch, IProvideClassInfo2

HRESULT ControlObject::GetTypeInfoCount(UINT* count) {
    if (!count) return E_POINTER;
    *count = context_->TypeLib() ? 1 : 0;
    return S_OK;
}

HRESULT ControlObject::GetTypeInfo(UINT index, LCID, ITypeInfo** info) {
    if (!info) return E_POINTER;
    *info = nullptr;
    if (index != 0) return DISP_E_BADINDEX;
    if (!context_->TypeLib()) return TYPE_E_CANTLOADLIBRARY;
    return context_->TypeLib()->GetTypeInfoOfGuid(entry_.iid, info);
}

HRESULT ControlObject::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
    return GetIdsOfNames(*entry_.info, names, count, ids);
}

HRESULT ControlObject::Invoke(DISPID id, REFIID riid, LCID, WORD flags, DISPPARAMS* params,
                              VARIANT* result, EXCEPINFO* exception, UINT* argError) {
    if (!IsEqualIID(riid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
    try {
        EnsureControl(nullptr);
        Settle();
    } catch (...) {
        return ExceptionResult(exception, source_);
    }
    // A handler the call runs may release the object or re-create its control.
    AddRef();
    const std::shared_ptr<host::Control> control = control_;
    const HRESULT hr = InvokeMember(*control, *entry_.info, id, flags, params, result, exception,
                                    argError, source_, this);
    Release();
    return hr;
}

HRESULT ControlObject::GetClassInfo(ITypeInfo** info) {
    if (!info) return E_POINTER;
    *info = nullptr;
    if (!context_->TypeLib()) return TYPE_E_CANTLOADLIBRARY;
    return context_->TypeLib()->GetTypeInfoOfGuid(entry_.clsid, info);
}

HRESULT ControlObject::GetGUID(DWORD kind, GUID* guid) {
    if (!guid) return E_POINTER;
    if (kind != GUIDKIND_DEFAULT_SOURCE_DISP_IID) return E_INVALIDARG;
    *guid = entry_.eventIid;
    return S_OK;
}

// ---------------------------------------------------------------------------------------------
// IConnectionPointContainer

HRESULT ControlObject::EnumConnectionPoints(IEnumConnectionPoints** out) {
    if (!out) return E_POINTER;
    *out = new (std::nothrow) PointEnumerator({&events_, &notify_}, 0);
    return *out ? S_OK : E_OUTOFMEMORY;
}

HRESULT ControlObject::FindConnectionPoint(REFIID riid, IConnectionPoint** out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (IsEqualIID(riid, events_.Iid()))
        *out = &events_;
    else if (IsEqualIID(riid, notify_.Iid()))
        *out = &notify_;
    else
        return CONNECT_E_NOCONNECTION;
    (*out)->AddRef();
    return S_OK;
}

// ---------------------------------------------------------------------------------------------
// Persistence

HRESULT ControlObject::GetClassID(CLSID* clsid) {
    if (!clsid) return E_POINTER;
    *clsid = entry_.clsid;
    return S_OK;
}

HRESULT ControlObject::IsDirty() {
    return dirty_ ? S_OK : S_FALSE;
}

HRESULT ControlObject::InitNew() {
    if (control_) return CO_E_ALREADYINITIALIZED;
    try {
        EnsureControl(nullptr);
        dirty_ = false;
        return S_OK;
    } catch (...) {
        return Failed();
    }
}

HRESULT ControlObject::Load(IStream* stream) {
    if (!stream) return E_POINTER;
    char tag[4];
    std::uint32_t length = 0;
    HRESULT hr = ReadAll(stream, tag, sizeof tag);
    if (SUCCEEDED(hr)) hr = ReadAll(stream, &length, sizeof length);
    if (FAILED(hr)) return hr;
    if (std::memcmp(tag, kStreamTag, sizeof tag) != 0 || length > kMaxStreamText)
        return E_INVALIDARG;
    std::string text(length, '\0');
    if (FAILED(hr = ReadAll(stream, text.data(), length))) return hr;
    try {
        host::JsonPropertyBag bag = host::JsonPropertyBag::FromJson(text);
        return LoadBag(bag);
    } catch (const host::HostError& e) {
        return ErrorCode(e.Number());
    } catch (...) {
        return Failed();
    }
}

HRESULT ControlObject::Save(IStream* stream, BOOL clearDirty) {
    if (!stream) return E_POINTER;
    try {
        EnsureControl(nullptr);
        const std::string text = SaveBag().ToJson(0);
        const auto length = static_cast<std::uint32_t>(text.size());
        HRESULT hr = stream->Write(kStreamTag, sizeof kStreamTag, nullptr);
        if (SUCCEEDED(hr)) hr = stream->Write(&length, sizeof length, nullptr);
        if (SUCCEEDED(hr)) hr = stream->Write(text.data(), length, nullptr);
        if (SUCCEEDED(hr) && clearDirty) dirty_ = false;
        return hr;
    } catch (...) {
        return Failed();
    }
}

HRESULT ControlObject::GetSizeMax(ULARGE_INTEGER* size) {
    if (!size) return E_POINTER;
    try {
        EnsureControl(nullptr);
        size->QuadPart = sizeof kStreamTag + sizeof(std::uint32_t) + SaveBag().ToJson(0).size();
        return S_OK;
    } catch (...) {
        return Failed();
    }
}

HRESULT ControlObject::Load(IPropertyBag* bag, IErrorLog* log) {
    if (!bag) return E_POINTER;
    ComPropertyBag adapter(bag, log);
    return LoadBag(adapter);
}

HRESULT ControlObject::Save(IPropertyBag* bag, BOOL clearDirty, BOOL) {
    if (!bag) return E_POINTER;
    try {
        EnsureControl(nullptr);
        ComPropertyBag adapter(bag, nullptr);
        control_->UserControl_WriteProperties(adapter);
        if (clearDirty) dirty_ = false;
        return S_OK;
    } catch (const host::HostError& e) {
        return ErrorCode(e.Number());
    } catch (...) {
        return Failed();
    }
}

HRESULT ControlObject::InitNew(IStorage* storage) {
    if (!storage) return E_POINTER;
    return InitNew();
}

HRESULT ControlObject::Load(IStorage* storage) {
    if (!storage) return E_POINTER;
    IStream* stream = nullptr;
    HRESULT hr =
        storage->OpenStream(kStorageStream, nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0, &stream);
    if (FAILED(hr)) return hr;
    hr = Load(stream);
    stream->Release();
    return hr;
}

HRESULT ControlObject::Save(IStorage* storage, BOOL) {
    if (!storage) return E_POINTER;
    IStream* stream = nullptr;
    HRESULT hr = storage->CreateStream(
        kStorageStream, STGM_CREATE | STGM_WRITE | STGM_SHARE_EXCLUSIVE, 0, 0, &stream);
    if (FAILED(hr)) return hr;
    hr = Save(stream, TRUE);
    stream->Release();
    return hr;
}

HRESULT ControlObject::SaveCompleted(IStorage*) {
    return S_OK;
}

HRESULT ControlObject::HandsOffStorage() {
    return S_OK;
}

// ---------------------------------------------------------------------------------------------
// IOleObject

HRESULT ControlObject::SetClientSite(IOleClientSite* site) {
    if (!site) InPlaceDeactivate();
    Replace(clientSite_, site);
    ReadAmbient();
    return S_OK;
}

HRESULT ControlObject::GetClientSite(IOleClientSite** site) {
    if (!site) return E_POINTER;
    *site = clientSite_;
    if (clientSite_) clientSite_->AddRef();
    return S_OK;
}

HRESULT ControlObject::SetHostNames(LPCOLESTR, LPCOLESTR) {
    return S_OK;
}

HRESULT ControlObject::Close(DWORD saveOption) {
    if (saveOption != OLECLOSE_NOSAVE && dirty_ && clientSite_) clientSite_->SaveObject();
    InPlaceDeactivate();
    if (adviseHolder_) adviseHolder_->SendOnClose();
    return S_OK;
}

HRESULT ControlObject::SetMoniker(DWORD, IMoniker*) {
    return E_NOTIMPL;
}

HRESULT ControlObject::GetMoniker(DWORD, DWORD, IMoniker** moniker) {
    if (moniker) *moniker = nullptr;
    return E_NOTIMPL;
}

HRESULT ControlObject::InitFromData(IDataObject*, BOOL, DWORD) {
    return E_NOTIMPL;
}

HRESULT ControlObject::GetClipboardData(DWORD, IDataObject** data) {
    if (data) *data = nullptr;
    return E_NOTIMPL;
}

HRESULT ControlObject::DoVerb(LONG verb, LPMSG, IOleClientSite* activeSite, LONG, HWND, LPCRECT) {
    switch (verb) {
        case OLEIVERB_PRIMARY:
        case OLEIVERB_SHOW:
        case OLEIVERB_OPEN:
        case OLEIVERB_UIACTIVATE:
            return Activate(activeSite, true);
        case OLEIVERB_INPLACEACTIVATE:
            return Activate(activeSite, false);
        case OLEIVERB_HIDE:
            UIDeactivate();
            visible_ = false;
            try {
                Place();
            } catch (...) {
                return Failed();
            }
            return S_OK;
        default:
            // Verbs of its own it has none; the standard ones it does not take are not there.
            return verb > 0 ? OLEOBJ_S_INVALIDVERB : E_NOTIMPL;
    }
}

void ControlObject::ReleaseFrame() {
    Replace(frame_, static_cast<IOleInPlaceFrame*>(nullptr));
    Replace(document_, static_cast<IOleInPlaceUIWindow*>(nullptr));
}

HRESULT ControlObject::Activate(IOleClientSite* activeSite, bool uiActivate) {
    if (!clientSite_ && activeSite) SetClientSite(activeSite);
    if (!clientSite_) return E_UNEXPECTED;
    try {
        if (!inPlaceSite_) {
            IOleInPlaceSite* site = nullptr;
            if (FAILED(clientSite_->QueryInterface(IID_IOleInPlaceSite,
                                                   reinterpret_cast<void**>(&site))))
                return E_NOINTERFACE;
            if (site->CanInPlaceActivate() != S_OK) {
                site->Release();
                return E_FAIL;
            }
            inPlaceSite_ = site;
            inPlaceSite_->OnInPlaceActivate();
        }
        HWND window = nullptr;
        inPlaceSite_->GetWindow(&window);
        IOleInPlaceFrame* frame = nullptr;
        IOleInPlaceUIWindow* document = nullptr;
        RECT position{};
        RECT clip{};
        OLEINPLACEFRAMEINFO frameInfo{};
        frameInfo.cb = sizeof frameInfo;
        if (SUCCEEDED(
                inPlaceSite_->GetWindowContext(&frame, &document, &position, &clip, &frameInfo))) {
            ReleaseFrame();
            frame_ = frame;
            document_ = document;
            position_ = position;
        }
        EnsureControl(nullptr);
        MoveInto(window);
        platform::Platform& p = context_->Platform();
        visible_ = true;
        // An empty position is none yet: the extent stays, and SetObjectRects brings the size.
        if (position_.right > position_.left && position_.bottom > position_.top) {
            extentGiven_ = true;
            SetTwips((position_.right - position_.left) * platform::TwipsPerPixelX(p),
                     (position_.bottom - position_.top) * platform::TwipsPerPixelY(p));
        }
        Place();
        if (extentGiven_) Settle();
        if (uiActivate && !uiActive_) {
            uiActive_ = true;
            inPlaceSite_->OnUIActivate();
            if (control_->CanGetFocus()) p.windows().SetFocus(control_->SurfaceWindow());
            IOleInPlaceActiveObject* active = this;
            if (frame_) {
                frame_->SetActiveObject(active, nullptr);
                frame_->SetBorderSpace(nullptr);
            }
            if (document_) {
                document_->SetActiveObject(active, nullptr);
                document_->SetBorderSpace(nullptr);
            }
        }
        return S_OK;
    } catch (...) {
        return Failed();
    }
}

HRESULT ControlObject::EnumVerbs(IEnumOLEVERB** verbs) {
    if (verbs) *verbs = nullptr;
    return OLE_S_USEREG;
}

HRESULT ControlObject::Update() {
    return S_OK;
}

HRESULT ControlObject::IsUpToDate() {
    return S_OK;
}

HRESULT ControlObject::GetUserClassID(CLSID* clsid) {
    return GetClassID(clsid);
}

HRESULT ControlObject::GetUserType(DWORD, LPOLESTR* name) {
    if (name) *name = nullptr;
    return OLE_S_USEREG;
}

HRESULT ControlObject::SetExtent(DWORD aspect, SIZEL* size) {
    if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
    if (!size) return E_POINTER;
    if (size->cx < 0 || size->cy < 0) return E_INVALIDARG;
    try {
        const std::int32_t width = HimetricToTwips(size->cx);
        const std::int32_t height = HimetricToTwips(size->cy);
        extentGiven_ = true;
        if (!inPlaceSite_) {
            platform::Platform& p = context_->Platform();
            position_.right = position_.left + width / platform::TwipsPerPixelX(p);
            position_.bottom = position_.top + height / platform::TwipsPerPixelY(p);
        }
        SetTwips(width, height);
        return S_OK;
    } catch (...) {
        return Failed();
    }
}

HRESULT ControlObject::GetExtent(DWORD aspect, SIZEL* size) {
    if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
    if (!size) return E_POINTER;
    size->cx = TwipsToHimetric(widthTwips_);
    size->cy = TwipsToHimetric(heightTwips_);
    return S_OK;
}

HRESULT ControlObject::Advise(IAdviseSink* sink, DWORD* cookie) {
    if (!adviseHolder_ && FAILED(CreateOleAdviseHolder(&adviseHolder_))) return E_OUTOFMEMORY;
    return adviseHolder_->Advise(sink, cookie);
}

HRESULT ControlObject::Unadvise(DWORD cookie) {
    if (!adviseHolder_) return OLE_E_NOCONNECTION;
    return adviseHolder_->Unadvise(cookie);
}

HRESULT ControlObject::EnumAdvise(IEnumSTATDATA** out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (!adviseHolder_) return S_OK;
    return adviseHolder_->EnumAdvise(out);
}

HRESULT ControlObject::GetMiscStatus(DWORD, DWORD* status) {
    if (!status) return E_POINTER;
    *status = MiscStatus();
    return S_OK;
}

DWORD ControlObject::MiscStatus() const {
    return kMiscStatus | (control_ && control_->ForwardFocus() ? OLEMISC_ACTSLIKELABEL : 0);
}

HRESULT ControlObject::SetColorScheme(LOGPALETTE*) {
    return E_NOTIMPL;
}

// ---------------------------------------------------------------------------------------------
// IOleWindow, IOleInPlaceObject, IOleInPlaceActiveObject

HRESULT ControlObject::GetWindow(HWND* window) {
    if (!window) return E_POINTER;
    *window = NativeControlWindow();
    return *window ? S_OK : E_FAIL;
}

HRESULT ControlObject::ContextSensitiveHelp(BOOL) {
    return E_NOTIMPL;
}

HRESULT ControlObject::InPlaceDeactivate() {
    if (!inPlaceSite_) return S_OK;
    UIDeactivate();
    visible_ = false;
    try {
        Place();
        // The site's window may go before the object does: the control's window waits,
        // hidden, at the top level.
        MoveInto(nullptr);
    } catch (...) {
        // Deactivation goes on: the site is told either way.
    }
    ReleaseFrame();
    IOleInPlaceSite* site = inPlaceSite_;
    inPlaceSite_ = nullptr;
    site->OnInPlaceDeactivate();
    site->Release();
    return S_OK;
}

HRESULT ControlObject::UIDeactivate() {
    if (!uiActive_) return S_OK;
    uiActive_ = false;
    if (frame_) frame_->SetActiveObject(nullptr, nullptr);
    if (document_) document_->SetActiveObject(nullptr, nullptr);
    if (inPlaceSite_) inPlaceSite_->OnUIDeactivate(FALSE);
    return S_OK;
}

HRESULT ControlObject::SetObjectRects(LPCRECT position, LPCRECT) {
    if (!position) return E_POINTER;
    try {
        platform::Platform& p = context_->Platform();
        position_ = *position;
        extentGiven_ = true;
        const bool resized =
            (position_.right - position_.left) * platform::TwipsPerPixelX(p) != widthTwips_ ||
            (position_.bottom - position_.top) * platform::TwipsPerPixelY(p) != heightTwips_;
        if (resized)
            SetTwips((position_.right - position_.left) * platform::TwipsPerPixelX(p),
                     (position_.bottom - position_.top) * platform::TwipsPerPixelY(p));
        else
            Place();
        Settle();
        return S_OK;
    } catch (...) {
        return Failed();
    }
}

HRESULT ControlObject::ReactivateAndUndo() {
    return E_NOTIMPL;
}

HRESULT ControlObject::TranslateAccelerator(LPMSG message) {
    if (!message) return E_POINTER;
    try {
        return context_->OfferKey(message) ? S_OK : S_FALSE;
    } catch (...) {
        return S_FALSE;
    }
}

HRESULT ControlObject::OnFrameWindowActivate(BOOL) {
    return S_OK;
}

HRESULT ControlObject::OnDocWindowActivate(BOOL) {
    return S_OK;
}

HRESULT ControlObject::ResizeBorder(LPCRECT, IOleInPlaceUIWindow*, BOOL) {
    return S_OK;
}

HRESULT ControlObject::EnableModeless(BOOL) {
    return S_OK;
}

// ---------------------------------------------------------------------------------------------
// IOleControl

HRESULT ControlObject::GetControlInfo(CONTROLINFO* info) {
    if (!info) return E_POINTER;
    try {
        EnsureControl(nullptr);
        std::vector<ACCEL> keys;
        for (char32_t key : control_->AccessKeys())
            keys.push_back({FALT | FVIRTKEY, static_cast<WORD>(key), 0});
        if (accelerators_) DestroyAcceleratorTable(accelerators_);
        accelerators_ = keys.empty()
                            ? nullptr
                            : CreateAcceleratorTableW(keys.data(), static_cast<int>(keys.size()));
        info->cb = sizeof *info;
        info->hAccel = accelerators_;
        info->cAccel = static_cast<USHORT>(accelerators_ ? keys.size() : 0);
        info->dwFlags = 0;
        return S_OK;
    } catch (...) {
        return Failed();
    }
}

HRESULT ControlObject::OnMnemonic(MSG* message) {
    if (!message) return E_POINTER;
    if (!control_) return S_FALSE;
    const auto key = static_cast<char32_t>(message->wParam);
    if (control_->AccessKeys().find(key) == std::u32string::npos) return S_FALSE;
    try {
        Settle();
        const std::shared_ptr<host::Control> control = control_;
        // A control that hands the focus on (a frame, a plain label) neither takes it nor hears
        // the key: the next control is the container's to find, as OLEMISC_ACTSLIKELABEL says.
        if (control->ForwardFocus()) return S_OK;
        if (control->CanGetFocus())
            context_->Platform().windows().SetFocus(control->SurfaceWindow());
        control->UserControl_AccessKeyPress(static_cast<std::int16_t>(key));
        return S_OK;
    } catch (...) {
        return Failed();
    }
}

HRESULT ControlObject::OnAmbientPropertyChange(DISPID id) {
    const bool userMode = ambient_.UserMode;
    ReadAmbient();
    if ((id == DISPID_AMBIENT_USERMODE || id == DISPID_UNKNOWN) && userMode != ambient_.UserMode) {
        try {
            Recreate();
        } catch (...) {
            return Failed();
        }
    }
    return S_OK;
}

HRESULT ControlObject::FreezeEvents(BOOL freeze) {
    if (freeze)
        ++frozen_;
    else if (frozen_ > 0)
        --frozen_;
    return S_OK;
}

// ---------------------------------------------------------------------------------------------
// IViewObject2

HRESULT ControlObject::Draw(DWORD aspect, LONG, void*, DVTARGETDEVICE*, HDC, HDC dc,
                            LPCRECTL bounds, LPCRECTL, BOOL(STDMETHODCALLTYPE*)(ULONG_PTR),
                            ULONG_PTR) {
    if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
    if (!dc) return E_INVALIDARG;
    try {
        EnsureControl(nullptr);
        Settle();
        platform::win32::Win32Platform& p = context_->Platform();
        const platform::HWND window = control_->SurfaceWindow();
        RECT client{};
        GetClientRect(NativeControlWindow(), &client);
        const RECTL at = bounds ? *bounds : RECTL{0, 0, client.right, client.bottom};
        const DWORD kind = GetObjectType(dc);
        const bool direct = at.right - at.left == client.right &&
                            at.bottom - at.top == client.bottom && kind != OBJ_METADC &&
                            kind != OBJ_ENHMETADC;
        if (direct) return p.PrintWindow(window, dc, {at.left, at.top}) ? S_OK : E_FAIL;
        // Another size, or a metafile: the window's picture at its own size, stretched there.
        HDC memory = CreateCompatibleDC(nullptr);
        BITMAPINFO info{};
        info.bmiHeader = {
            sizeof info.bmiHeader, client.right, -client.bottom, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        void* bits = nullptr;
        HBITMAP bitmap = CreateDIBSection(memory, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
        const HGDIOBJ old = bitmap ? SelectObject(memory, bitmap) : nullptr;
        const bool ok = bitmap && p.PrintWindow(window, memory, {0, 0}) &&
                        StretchBlt(dc, at.left, at.top, at.right - at.left, at.bottom - at.top,
                                   memory, 0, 0, client.right, client.bottom, SRCCOPY);
        if (bitmap) {
            SelectObject(memory, old);
            DeleteObject(bitmap);
        }
        DeleteDC(memory);
        return ok ? S_OK : E_FAIL;
    } catch (...) {
        return Failed();
    }
}

HRESULT ControlObject::GetColorSet(DWORD, LONG, void*, DVTARGETDEVICE*, HDC, LOGPALETTE** palette) {
    if (palette) *palette = nullptr;
    return E_NOTIMPL;
}

HRESULT ControlObject::Freeze(DWORD, LONG, void*, DWORD* cookie) {
    if (cookie) *cookie = 0;
    return E_NOTIMPL;
}

HRESULT ControlObject::Unfreeze(DWORD) {
    return E_NOTIMPL;
}

HRESULT ControlObject::SetAdvise(DWORD aspects, DWORD flags, IAdviseSink* sink) {
    Replace(viewSink_, sink);
    viewAspects_ = aspects;
    viewFlags_ = flags;
    return S_OK;
}

HRESULT ControlObject::GetAdvise(DWORD* aspects, DWORD* flags, IAdviseSink** sink) {
    if (aspects) *aspects = viewAspects_;
    if (flags) *flags = viewFlags_;
    if (sink) {
        *sink = viewSink_;
        if (viewSink_) viewSink_->AddRef();
    }
    return S_OK;
}

HRESULT ControlObject::GetExtent(DWORD aspect, LONG, DVTARGETDEVICE*, LPSIZEL size) {
    return GetExtent(aspect, size);
}

// ---------------------------------------------------------------------------------------------
// IQuickActivate

HRESULT ControlObject::QuickActivate(QACONTAINER* container, QACONTROL* control) {
    if (!container || !control) return E_POINTER;
    SetClientSite(container->pClientSite);
    // A site that answers no ambient property through IDispatch hands them over here.
    IDispatch* ambient = nullptr;
    if (container->pClientSite && SUCCEEDED(container->pClientSite->QueryInterface(
                                      IID_IDispatch, reinterpret_cast<void**>(&ambient))))
        ambient->Release();
    else {
        ambient_.UserMode = (container->dwAmbientFlags & QACONTAINER_USERMODE) != 0;
        ambient_.ForeColor = container->colorFore;
        ambient_.BackColor = container->colorBack;
        if (container->pFont) {
            VARIANT font;
            VariantInit(&font);
            V_VT(&font) = VT_UNKNOWN;
            V_UNKNOWN(&font) = container->pFont;
            try {
                const host::Variant read = ToHost(font);
                if (read.Kind() == host::VarKind::Font && read.ToFont())
                    ambient_.Font = read.ToFont();
            } catch (const host::HostError&) {
                // Not a font the host can read: the default stays.
            }
        }
    }
    if (container->pAdviseSink) SetAdvise(DVASPECT_CONTENT, 0, container->pAdviseSink);
    control->cbSize = sizeof *control;
    control->dwEventCookie = 0;
    control->dwPropNotifyCookie = 0;
    if (container->pUnkEventSink) events_.Advise(container->pUnkEventSink, &control->dwEventCookie);
    if (container->pPropertyNotifySink)
        notify_.Advise(container->pPropertyNotifySink, &control->dwPropNotifyCookie);
    control->dwMiscStatus = MiscStatus();
    control->dwViewStatus = 0;
    control->dwPointerActivationPolicy = 0;
    return S_OK;
}

HRESULT ControlObject::SetContentExtent(LPSIZEL size) {
    return SetExtent(DVASPECT_CONTENT, size);
}

HRESULT ControlObject::GetContentExtent(LPSIZEL size) {
    return GetExtent(DVASPECT_CONTENT, size);
}

}  // namespace korvex::com
