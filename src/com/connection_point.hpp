#pragma once
// A connection point of a control object: the event dispinterface's (Sink = IDispatch) or
// IPropertyNotifySink's. It lives inside its object and counts references on it.

#include <type_traits>
#include <vector>

#include "com/win.hpp"

namespace korvex::com {

template <class Sink>
class ConnectionPoint final : public IConnectionPoint {
  public:
    ConnectionPoint(IConnectionPointContainer* owner, const IID& iid) : owner_(owner), iid_(iid) {}
    ~ConnectionPoint() {
        for (Sink* sink : sinks_)
            if (sink) sink->Release();
    }
    ConnectionPoint(const ConnectionPoint&) = delete;
    ConnectionPoint& operator=(const ConnectionPoint&) = delete;

    [[nodiscard]] const IID& Iid() const { return iid_; }

    // Calls fn(sink) on every sink connected now; sinks that connect or go meanwhile do not
    // change the round.
    template <class Fn>
    void ForEach(Fn fn) {
        std::vector<Sink*> round;
        for (Sink* sink : sinks_) {
            if (!sink) continue;
            sink->AddRef();
            round.push_back(sink);
        }
        for (Sink* sink : round) {
            fn(sink);
            sink->Release();
        }
    }
    [[nodiscard]] bool Empty() const {
        for (Sink* sink : sinks_)
            if (sink) return false;
        return true;
    }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) override {
        if (!ppv) return E_POINTER;
        if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IConnectionPoint)) {
            *ppv = static_cast<IConnectionPoint*>(this);
            AddRef();
            return S_OK;
        }
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return owner_->AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return owner_->Release(); }

    HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* iid) override {
        if (!iid) return E_POINTER;
        *iid = iid_;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE
    GetConnectionPointContainer(IConnectionPointContainer** out) override {
        if (!out) return E_POINTER;
        *out = owner_;
        owner_->AddRef();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Advise(IUnknown* unknown, DWORD* cookie) override {
        if (!unknown || !cookie) return E_POINTER;
        *cookie = 0;
        Sink* sink = nullptr;
        if (FAILED(unknown->QueryInterface(iid_, reinterpret_cast<void**>(&sink))) &&
            (!std::is_same_v<Sink, IDispatch> ||
             FAILED(unknown->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&sink)))))
            return CONNECT_E_CANNOTCONNECT;
        for (std::size_t i = 0; i < sinks_.size(); ++i) {
            if (!sinks_[i]) {
                sinks_[i] = sink;
                *cookie = static_cast<DWORD>(i + 1);
                return S_OK;
            }
        }
        sinks_.push_back(sink);
        *cookie = static_cast<DWORD>(sinks_.size());
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) override {
        if (cookie == 0 || cookie > sinks_.size() || !sinks_[cookie - 1])
            return CONNECT_E_NOCONNECTION;
        Sink* sink = sinks_[cookie - 1];
        sinks_[cookie - 1] = nullptr;
        sink->Release();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections** out) override {
        if (out) *out = nullptr;
        return E_NOTIMPL;
    }

  private:
    IConnectionPointContainer* owner_;
    IID iid_;
    std::vector<Sink*> sinks_;
};

}  // namespace korvex::com
