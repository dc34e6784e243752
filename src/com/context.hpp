#pragma once
// What one apartment thread shares between the controls it creates: the Win32 platform, the host
// context with the library registered, and the type library. Objects hold it; it goes with the
// thread's last object.

#include <memory>

#include "com/win.hpp"
#include "host/control.hpp"
#include "platform/win32/win32_platform.hpp"

namespace korvex::com {

class ThreadContext : public std::enable_shared_from_this<ThreadContext> {
  public:
    // The calling thread's context, made on first use.
    static std::shared_ptr<ThreadContext> Current();

    ThreadContext();
    ~ThreadContext();
    ThreadContext(const ThreadContext&) = delete;
    ThreadContext& operator=(const ThreadContext&) = delete;

    [[nodiscard]] platform::win32::Win32Platform& Platform() { return platform_; }
    [[nodiscard]] host::HostContext& Host() { return host_; }
    // The DLL's embedded type library; nullptr if it cannot be loaded.
    [[nodiscard]] ITypeLib* TypeLib() const { return typeLib_; }

    // A keystroke the container offers before dispatching it.
    bool OfferKey(const MSG* message);

  private:
    platform::win32::Win32Platform platform_;
    host::HostContext host_;
    ITypeLib* typeLib_ = nullptr;
};

}  // namespace korvex::com
