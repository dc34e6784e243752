#include "com/context.hpp"

#include "com/module.hpp"
#include "library/library.hpp"

// The platform's member, not the user32 function.
#undef TranslateAccelerator

namespace korvex::com {

std::shared_ptr<ThreadContext> ThreadContext::Current() {
    thread_local std::weak_ptr<ThreadContext> current;
    std::shared_ptr<ThreadContext> context = current.lock();
    if (!context) {
        context = std::make_shared<ThreadContext>();
        current = context;
    }
    return context;
}

ThreadContext::ThreadContext() : host_(&platform_) {
    RegisterLibrary(host_);
    if (FAILED(LoadTypeLibEx(ModulePath().c_str(), REGKIND_NONE, &typeLib_))) typeLib_ = nullptr;
}

ThreadContext::~ThreadContext() {
    if (typeLib_) typeLib_->Release();
}

bool ThreadContext::OfferKey(const MSG* message) {
    return platform_.TranslateAccelerator(message);
}

}  // namespace korvex::com
