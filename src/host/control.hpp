#pragma once
// The control contract. The host creates a control, calls UserControl_Initialize, sites it,
// calls UserControl_InitProperties (new) or UserControl_ReadProperties (restored), sizes it
// (UserControl_Resize), lets it paint and forwards input; on save it calls
// UserControl_WriteProperties, and UserControl_Terminate at the end. A control reports property
// changes and raises its events by number through its site.

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "base/error.hpp"
#include "host/font.hpp"
#include "host/object.hpp"
#include "host/ole_types.hpp"
#include "host/property_bag.hpp"
#include "host/type_info.hpp"
#include "host/variant.hpp"
#include "platform/window.hpp"

namespace korvex::host {

struct AmbientProperties {
    std::shared_ptr<StdFont> Font;
    bool UserMode = false;
    std::string DisplayName;
    OLE_COLOR BackColor = 0x8000000F;  // button face
    OLE_COLOR ForeColor = 0x80000012;  // button text
};

// What the host thread shares with every control it drives: the creatable classes and the
// about box. One per user-interface thread; two hosts never see each other's.
class HostContext {
  public:
    // Without a platform the host persists and drives controls but shows nothing.
    explicit HostContext(platform::Platform* platform = nullptr);

    [[nodiscard]] platform::Platform* Platform() const { return platform_; }

    ClassRegistry& Classes() { return classes_; }
    [[nodiscard]] const ClassRegistry& Classes() const { return classes_; }

    // The ambient font a new form starts with.
    [[nodiscard]] std::shared_ptr<StdFont> DefaultFont() const { return defaultFont_; }

    // The dialog layer installs the about box here; controls open it through ShowAboutBox.
    void SetAboutBox(std::function<void()> show) { aboutBox_ = std::move(show); }
    void ShowAboutBox();

    // The window a control being created goes in: the container names it while it creates a
    // control, so the control's window is a child of its container from the start. Zero
    // otherwise (a control made on its own gets a top-level window).
    [[nodiscard]] platform::HWND NewControlParent() const { return newControlParent_; }
    class CreatingIn {
      public:
        CreatingIn(HostContext& context, platform::HWND parent)
            : context_(context), previous_(std::exchange(context.newControlParent_, parent)) {}
        ~CreatingIn() { context_.newControlParent_ = previous_; }
        CreatingIn(const CreatingIn&) = delete;
        CreatingIn& operator=(const CreatingIn&) = delete;

      private:
        HostContext& context_;
        platform::HWND previous_;
    };

  private:
    platform::Platform* platform_;
    ClassRegistry classes_;
    std::shared_ptr<StdFont> defaultFont_;
    std::function<void()> aboutBox_;
    bool aboutBoxOpen_ = false;
    platform::HWND newControlParent_;
};

// The host's side of one sited control.
class ControlSite {
  public:
    virtual ~ControlSite() = default;
    [[nodiscard]] virtual AmbientProperties Ambient() const = 0;
    virtual void PropertyChanged(std::string_view name) = 0;
    virtual void RaiseEvent(const EventInfo& event, std::span<Variant> args) = 0;
    [[nodiscard]] virtual HostContext& Context() const = 0;
    // The window the control's own window is a child of (zero without a platform).
    [[nodiscard]] virtual platform::HWND ContainerWindow() const = 0;
    // The control's position in the container, in twips.
    [[nodiscard]] virtual platform::RECT Bounds() const = 0;
    // The control changed its own size (twips): the host resizes the extender and the window
    // and calls UserControl_Resize again, as a container does.
    virtual void RequestExtent(std::int32_t width, std::int32_t height) = 0;
};

class Control : public Object {
  public:
    // Lifecycle, in the order the host calls them.
    virtual void UserControl_Initialize() {}
    virtual void UserControl_InitProperties() {}
    virtual void UserControl_ReadProperties(PropertyBag& PropBag) { (void)PropBag; }
    virtual void UserControl_Resize() {}
    virtual void UserControl_Paint() {}
    virtual void UserControl_WriteProperties(PropertyBag& PropBag) { (void)PropBag; }
    virtual void UserControl_Terminate() {}

    // Host side. Attaching calls SiteAttached so the control can create its window.
    void AttachSite(ControlSite* site) {
        site_ = site;
        if (site_) SiteAttached();
    }
    [[nodiscard]] ControlSite* Site() const { return site_; }
    // The size the host gave the control, in twips.
    void SetExtent(std::int32_t width, std::int32_t height) {
        extentWidth_ = width;
        extentHeight_ = height;
    }
    [[nodiscard]] std::int32_t ExtentWidth() const { return extentWidth_; }
    [[nodiscard]] std::int32_t ExtentHeight() const { return extentHeight_; }
    // The control's own window (zero for a control without one).
    [[nodiscard]] virtual platform::HWND SurfaceWindow() const { return {}; }
    // Whether the control takes the focus (Tab stops on it); a separator line, say, does not.
    [[nodiscard]] virtual bool CanGetFocus() const { return true; }
    // The access keys Alt reaches the control by (upper-case letters and digits, the "&" letter
    // of its caption), as a control declares its AccessKeys; none by default.
    [[nodiscard]] virtual std::u32string AccessKeys() const { return {}; }
    // True for a control that hands the focus on, as a label does: its access key focuses the
    // next control in tab order instead of the control itself.
    [[nodiscard]] virtual bool ForwardFocus() const { return false; }
    // Alt and one of the control's access keys were pressed; the host has given the control the
    // focus already. A button-like control clicks itself here.
    virtual void UserControl_AccessKeyPress(std::int16_t KeyAscii) { (void)KeyAscii; }
    // The host placed the extender: bounds in twips within the container, shown or hidden,
    // enabled or not. A control with a window moves it there.
    virtual void Place(const platform::RECT& bounds, bool visible, bool enabled) {
        (void)bounds;
        (void)visible;
        (void)enabled;
    }

    // Raises event `id` with the values of `args` passed by reference: what the handler writes
    // into an argument comes back into the caller's variable (converted by the host's rules).
    template <class... A>
    void RaiseEvent(std::int32_t id, A&... args) {
        std::array<Variant, sizeof...(A)> values{Variant(args)...};
        RaiseEventArgs(id, values);
        [[maybe_unused]] std::size_t i = 0;
        ((args = FromVariant<A>(values[i++])), ...);
    }
    void RaiseEventArgs(std::int32_t id, std::span<Variant> args);

    // Raises a declared event (KORVEX_EVENTS) by its number.
    template <class E, class... A>
    requires std::is_enum_v<E>
    void RaiseEvent(E id, A&... args) { RaiseEvent(static_cast<std::int32_t>(id), args...); }

    // Ambient properties of the site; defaults when the control is not sited. Public because
    // property declarations take their font defaults from it.
    [[nodiscard]] AmbientProperties Ambient() const;

  protected:
    // The site is known: its container window and bounds can be read.
    virtual void SiteAttached() {}
    // Tells the host that a persisted property changed, by its public name.
    void PropertyChanged(std::string_view name);
    // Loads the library's about box, shows it modally and unloads it.
    void OpenAboutBox();

  private:
    ControlSite* site_ = nullptr;
    std::int32_t extentWidth_ = 0;
    std::int32_t extentHeight_ = 0;
};

// Mouse pointers: every control's pointer enumeration has these values, 0 to 15 the platform's
// standard cursors and 99 the picture in MouseIcon.
inline constexpr std::int16_t kMousePointerCustom = 99;
// Error 380 for a value that names no pointer.
std::int16_t CheckMousePointer(const Variant& value);
// The cursor actually shown: custom without an icon falls back to the default.
std::int16_t EffectiveMousePointer(std::int16_t pointer, const std::shared_ptr<StdPicture>& icon);

}  // namespace korvex::host
