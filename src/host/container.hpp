#pragma once
// The host container: sites controls with their extender properties and performs the
// designer's switch between design and run mode. Positions and sizes are twips. Form files
// (the form and its controls as JSON) are host/form_file.hpp.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/control.hpp"

namespace korvex::host {

class Container;

// The container's limits. A control's window is backed by a bitmap of its size, and a snapshot
// composes it once more, so its extent in pixels is bounded: 4096 x 4096 pixels is 64 MB. A
// position stays within 2^24 pixels, so a window's offset plus those of its containers, through
// every nesting level, cannot overflow 32 bits. Beyond either the extender raises error 380. A
// form file may nest controls 64 levels deep.
inline constexpr std::int32_t kMaxExtentPixels = 4096;
inline constexpr std::int32_t kMaxPositionPixels = 1 << 24;
inline constexpr int kMaxNesting = 64;

// Properties the container adds to every control it sites.
struct Extender {
    std::string Name;
    std::int32_t Left = 0;
    std::int32_t Top = 0;
    std::int32_t Width = 0;
    std::int32_t Height = 0;
    bool Visible = true;
    bool Enabled = true;
    std::int16_t TabIndex = 0;
    bool TabStop = true;
};

// One sited control.
class Site final : public ControlSite {
  public:
    Site(Container& container, const ClassInfo& info, Extender extender, Site* parent);

    [[nodiscard]] const std::string& Name() const { return extender_.Name; }
    [[nodiscard]] const Extender& GetExtender() const { return extender_; }
    [[nodiscard]] Control& GetControl() const { return *control_; }
    [[nodiscard]] const ClassInfo& Class() const { return *info_; }
    [[nodiscard]] Site* Parent() const { return parent_; }

    // ControlSite
    [[nodiscard]] AmbientProperties Ambient() const override;
    void PropertyChanged(std::string_view name) override;
    void RaiseEvent(const EventInfo& event, std::span<Variant> args) override;
    [[nodiscard]] HostContext& Context() const override;
    [[nodiscard]] platform::HWND ContainerWindow() const override;
    [[nodiscard]] platform::RECT Bounds() const override;
    void RequestExtent(std::int32_t width, std::int32_t height) override;

  private:
    friend class Container;
    Container& container_;
    const ClassInfo* info_;
    Extender extender_;
    Site* parent_;
    std::shared_ptr<Control> control_;
    // While the control loads, sizes it gives itself are not the extender's: the saved size is
    // applied after loading, as a container places its controls once they are read.
    bool loading_ = false;
};

// Receives what the sited controls raise and report, in the order it happens.
class EventSink {
  public:
    virtual ~EventSink() = default;
    virtual void OnEvent(Site& site, const EventInfo& event, std::span<Variant> args) = 0;
    virtual void OnPropertyChanged(Site& site, std::string_view property) = 0;
};

class Container : private platform::WindowHandler {
  public:
    explicit Container(HostContext& context);
    ~Container();
    Container(const Container&) = delete;
    Container& operator=(const Container&) = delete;

    [[nodiscard]] HostContext& Context() const { return context_; }
    void SetSink(EventSink* sink) { sink_ = sink; }
    [[nodiscard]] EventSink* Sink() const { return sink_; }

    // The form's own properties.
    std::string Name = "Form1";
    std::string Caption = "Form1";
    std::int32_t Width = 4800;   // twips
    std::int32_t Height = 3600;  // twips
    OLE_COLOR BackColor = 0x8000000F;
    OLE_COLOR ForeColor = 0x80000012;
    [[nodiscard]] std::shared_ptr<StdFont> Font() const { return font_; }
    void Font(std::shared_ptr<StdFont> font) { font_ = std::move(font); }

    // The form's window (zero without a platform): its client area holds the controls. It is
    // created hidden at (Left, Top) in screen pixels.
    [[nodiscard]] platform::HWND FormWindow() const { return formWindow_; }
    std::int32_t Left = 0;  // twips, screen
    std::int32_t Top = 0;
    // Applies Left, Top, Width and Height to the form's window and shows it; the focus goes to
    // the first control in TabIndex order that takes it, unless a control of the form has it.
    void Show();
    void Hide();
    [[nodiscard]] std::int32_t TwipsToPixelsX(std::int32_t twips) const;
    [[nodiscard]] std::int32_t TwipsToPixelsY(std::int32_t twips) const;
    // Error 380 naming the property when a position or size is beyond the limits above.
    void CheckPlacement(const Extender& extender) const;

    // Ambient UserMode: false in the designer, true at run time.
    [[nodiscard]] bool UserMode() const { return userMode_; }
    // The designer's switch: every control writes its bag, is terminated, and a new instance is
    // created and restored from that bag under the new mode.
    void SwitchMode(bool userMode);

    // A new control dropped on the form (InitProperties). Error 429 for an unknown ProgID, 5 for
    // a name already in use.
    Site& Add(std::string_view progId, Extender extender, Site* parent = nullptr);
    // A control restored from a bag (ReadProperties).
    Site& Restore(std::string_view progId, Extender extender, const JsonPropertyBag& bag,
                  Site* parent = nullptr);
    void Remove(std::string_view name);
    // Terminates and removes every control.
    void Clear();

    [[nodiscard]] Site* Find(std::string_view name) const;
    // Error 5 naming the control when there is none of that name.
    [[nodiscard]] Site& Get(std::string_view name) const;
    [[nodiscard]] std::vector<Site*> Sites() const;
    [[nodiscard]] std::vector<Site*> Children(const Site* parent) const;

    // Late-bound access through the extender first, then the control's own members.
    Variant GetProperty(Site& site, std::string_view name);
    void LetProperty(Site& site, std::string_view name, const Variant& value);
    Variant CallMethod(Site& site, std::string_view name, std::span<Variant> args);

    // The bag each control writes now, in form order.
    [[nodiscard]] JsonPropertyBag SaveBag(const Site& site) const;

  private:
    friend class Site;
    Site& Create(std::string_view progId, Extender extender, Site* parent,
                 const JsonPropertyBag* bag);
    // Creates the site's control and brings it up: Initialize, siting, InitProperties or
    // ReadProperties, Resize, its window placed by the extender.
    void Instantiate(Site& site, const JsonPropertyBag* bag);
    void PlaceWindow(Site& site);
    void TerminateAll();
    // Tab and Shift+Tab move the focus through the controls in TabIndex order, before the
    // focused control sees the key, as the platform's dialog manager does.
    bool FilterKey(const platform::KeyEvent& event, platform::HWND focus);
    bool AccessKey(const platform::KeyEvent& event, platform::HWND focus);
    Site* FocusedSite(platform::HWND focus) const;
    [[nodiscard]] std::vector<Site*> TabStops() const;
    void OnPaint(platform::HDC dc, const platform::RECT& client) override;

    HostContext& context_;
    EventSink* sink_ = nullptr;
    std::shared_ptr<StdFont> font_;
    bool userMode_ = false;
    platform::HWND formWindow_;
    std::uint32_t keyFilter_ = 0;
    int accessKeyDown_ = 0;  // the access key whose release is swallowed too
    std::vector<std::unique_ptr<Site>> sites_;
    // Every site by its name in ASCII lower case, so loading a form of n controls checks its
    // names in linear time.
    std::unordered_map<std::string, Site*> byName_;
};

}  // namespace korvex::host
