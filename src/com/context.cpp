#include "com/context.hpp"

#include "com/module.hpp"
#include "library/library.hpp"

// The platform's member, not the user32 function.
#undef TranslateAccelerator

namespace korvex::com {

namespace {
// A plain pointer: a thread_local with a destructor would leave the thread a call into this DLL
// to make at its exit, after the DLL may have been unloaded.
thread_local ThreadContext* tCurrent = nullptr;
}  // namespace

std::shared_ptr<ThreadContext> ThreadContext::Current() {
    if (tCurrent) return tCurrent->shared_from_this();
    auto context = std::make_shared<ThreadContext>();
    tCurrent = context.get();
    return context;
}

ThreadContext::ThreadContext() : host_(&platform_) {
    RegisterLibrary(host_);
    if (FAILED(LoadTypeLibEx(ModulePath().c_str(), REGKIND_NONE, &typeLib_))) typeLib_ = nullptr;
}

ThreadContext::~ThreadContext() {
    if (tCurrent == this) tCurrent = nullptr;
    if (typeLib_) typeLib_->Release();
}

bool ThreadContext::OfferKey(const MSG* message) {
    return platform_.TranslateAccelerator(message);
}

}  // namespace korvex::com
