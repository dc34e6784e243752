#include "host/container.hpp"

#include <algorithm>
#include <exception>
#include <limits>
#include <string>

#include "host/numeric.hpp"
#include "host/text.hpp"

namespace korvex::host {

namespace {

std::string NameKey(std::string_view name) {
    std::string key(name);
    for (char& c : key) c = AsciiLower(c);
    return key;
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Site

Site::Site(Container& container, const ClassInfo& info, Extender extender, Site* parent)
    : container_(container), info_(&info), extender_(std::move(extender)), parent_(parent) {}

AmbientProperties Site::Ambient() const {
    AmbientProperties ambient;
    ambient.Font = container_.Font();
    ambient.UserMode = container_.UserMode();
    ambient.DisplayName = extender_.Name;
    ambient.BackColor = container_.BackColor;
    ambient.ForeColor = container_.ForeColor;
    return ambient;
}

void Site::PropertyChanged(std::string_view name) {
    if (container_.sink_) container_.sink_->OnPropertyChanged(*this, name);
}

void Site::RaiseEvent(const EventInfo& event, std::span<Variant> args) {
    if (container_.sink_) container_.sink_->OnEvent(*this, event, args);
}

HostContext& Site::Context() const {
    return container_.Context();
}

platform::HWND Site::ContainerWindow() const {
    if (parent_ && parent_->control_) {
        if (platform::HWND window = parent_->control_->SurfaceWindow()) return window;
    }
    return container_.FormWindow();
}

platform::RECT Site::Bounds() const {
    // In the wide type: the extender's twips are checked in pixels, and a twips sum may still
    // pass 32 bits where its pixels do not.
    const auto sum = [](std::int32_t a, std::int32_t b) {
        return static_cast<std::int32_t>(
            std::clamp<std::int64_t>(std::int64_t{a} + b, std::numeric_limits<std::int32_t>::min(),
                                     std::numeric_limits<std::int32_t>::max()));
    };
    return {extender_.Left, extender_.Top, sum(extender_.Left, extender_.Width),
            sum(extender_.Top, extender_.Height)};
}

void Site::RequestExtent(std::int32_t width, std::int32_t height) {
    if (loading_) return;
    if (width == extender_.Width && height == extender_.Height) return;
    Extender wanted = extender_;
    wanted.Width = width;
    wanted.Height = height;
    container_.CheckPlacement(wanted);
    extender_.Width = width;
    extender_.Height = height;
    control_->SetExtent(width, height);
    container_.PlaceWindow(*this);
    control_->UserControl_Resize();
}

// ---------------------------------------------------------------------------------------------
// Container

Container::Container(HostContext& context)
    : context_(context), font_(context.DefaultFont()->Clone()) {
    if (platform::Platform* p = context_.Platform()) {
        formWindow_ = p->windows().CreateWindow(
            {}, {0, 0, TwipsToPixelsX(Width), TwipsToPixelsY(Height)}, {}, this, Caption);
        keyFilter_ =
            p->loop().AddKeyFilter([this](const platform::KeyEvent& event, platform::HWND focus) {
                return FilterKey(event, focus);
            });
    }
}

Container::~Container() {
    TerminateAll();
    if (platform::Platform* p = context_.Platform()) {
        p->loop().RemoveKeyFilter(keyFilter_);
        p->windows().DestroyWindow(formWindow_);
    }
}

Site* Container::FocusedSite(platform::HWND focus) const {
    platform::Windows& windows = context_.Platform()->windows();
    for (platform::HWND w = focus; w; w = windows.GetParent(w)) {
        for (const auto& site : sites_) {
            if (site->control_ && site->control_->SurfaceWindow() == w) return site.get();
        }
        if (w == formWindow_) return nullptr;
    }
    return nullptr;
}

bool Container::FilterKey(const platform::KeyEvent& event, platform::HWND focus) {
    platform::Windows& windows = context_.Platform()->windows();
    // The release of an access key goes with its press, wherever the focus has gone since.
    if (event.kind == platform::KeyEvent::Kind::Up && event.keyCode == accessKeyDown_) {
        accessKeyDown_ = 0;
        return true;
    }
    // Only keys meant for this form: its own window or a window inside it has the focus.
    bool ours = false;
    for (platform::HWND w = focus; w && !ours; w = windows.GetParent(w)) ours = (w == formWindow_);
    if (!ours) return false;
    if (AccessKey(event, focus)) return true;

    const bool tab = (event.kind == platform::KeyEvent::Kind::Press)
                         ? event.keyCode == '\t'
                         : event.keyCode == platform::VK_TAB;
    if (!tab) return false;
    if (event.kind != platform::KeyEvent::Kind::Down) return true;

    const std::vector<Site*> stops = TabStops();
    if (stops.empty()) return true;
    const bool backwards = (event.shift & platform::kShiftMask) != 0;
    auto current = std::find(stops.begin(), stops.end(), FocusedSite(focus));
    std::size_t next = 0;
    if (current == stops.end()) {
        next = backwards ? stops.size() - 1 : 0;
    } else {
        const auto index = static_cast<std::size_t>(current - stops.begin());
        next = backwards ? (index + stops.size() - 1) % stops.size() : (index + 1) % stops.size();
    }
    windows.SetFocus(stops[next]->control_->SurfaceWindow());
    return true;
}

// Alt and a letter or digit: the control whose access key it is, the first one in tab order
// after the focused control when several share it, as a dialog manager looks for mnemonics.
// A button-like control takes the focus and hears AccessKeyPress; a label (ForwardFocus) hands
// the focus to the next tab stop after it. The key's release is swallowed with it, so the
// control that has the focus then sees neither.
bool Container::AccessKey(const platform::KeyEvent& event, platform::HWND focus) {
    using Kind = platform::KeyEvent::Kind;
    platform::Windows& windows = context_.Platform()->windows();
    const bool alt =
        (event.shift & platform::kAltMask) != 0 ||
        (static_cast<std::uint16_t>(windows.GetAsyncKeyState(platform::VK_MENU)) & 0x8000u) != 0;
    const int key = event.keyCode;
    const bool letter = (key >= 'A' && key <= 'Z') || (key >= '0' && key <= '9');
    if (event.kind != Kind::Down || !alt || !letter) return false;

    std::vector<Site*> order;
    for (const auto& site : sites_) {
        const platform::HWND w =
            site->control_ ? site->control_->SurfaceWindow() : platform::HWND{};
        if (w && windows.IsWindowVisible(w) && windows.IsWindowEnabled(w))
            order.push_back(site.get());
    }
    std::stable_sort(order.begin(), order.end(), [](const Site* a, const Site* b) {
        return a->extender_.TabIndex < b->extender_.TabIndex;
    });
    const auto current = std::find(order.begin(), order.end(), FocusedSite(focus));
    const std::size_t start =
        current == order.end() ? 0 : static_cast<std::size_t>(current - order.begin()) + 1;
    Site* target = nullptr;
    std::size_t at = 0;
    for (std::size_t i = 0; i < order.size() && !target; ++i) {
        at = (start + i) % order.size();
        if (order[at]->control_->AccessKeys().find(static_cast<char32_t>(key)) !=
            std::u32string::npos)
            target = order[at];
    }
    if (!target) return false;
    accessKeyDown_ = key;

    if (target->control_->ForwardFocus()) {
        const std::vector<Site*> stops = TabStops();
        for (std::size_t i = 1; i < order.size(); ++i) {
            Site* next = order[(at + i) % order.size()];
            if (std::find(stops.begin(), stops.end(), next) != stops.end()) {
                windows.SetFocus(next->control_->SurfaceWindow());
                break;
            }
        }
        return true;
    }
    // The control may go while its handlers run; keep it until the key press is delivered.
    const std::shared_ptr<Control> control = target->control_;
    if (control->CanGetFocus()) windows.SetFocus(control->SurfaceWindow());
    control->UserControl_AccessKeyPress(static_cast<std::int16_t>(key));
    return true;
}

// The controls Tab stops at, in TabIndex order (ties in the order they were sited): shown,
// enabled, TabStop set, and of a kind that takes the focus at all.
std::vector<Site*> Container::TabStops() const {
    platform::Windows& windows = context_.Platform()->windows();
    std::vector<Site*> stops;
    for (const auto& site : sites_) {
        const platform::HWND w =
            site->control_ ? site->control_->SurfaceWindow() : platform::HWND{};
        if (w && site->extender_.TabStop && site->control_->CanGetFocus() &&
            windows.IsWindowVisible(w) && windows.IsWindowEnabled(w)) {
            stops.push_back(site.get());
        }
    }
    std::stable_sort(stops.begin(), stops.end(), [](const Site* a, const Site* b) {
        return a->extender_.TabIndex < b->extender_.TabIndex;
    });
    return stops;
}

std::int32_t Container::TwipsToPixelsX(std::int32_t twips) const {
    platform::Platform* p = context_.Platform();
    const int perPixel = p ? platform::TwipsPerPixelX(*p)
                           : platform::kTwipsPerInch / platform::kDefaultPixelsPerInch;
    return static_cast<std::int32_t>(RoundHalfEven(static_cast<double>(twips) / perPixel));
}

std::int32_t Container::TwipsToPixelsY(std::int32_t twips) const {
    platform::Platform* p = context_.Platform();
    const int perPixel = p ? platform::TwipsPerPixelY(*p)
                           : platform::kTwipsPerInch / platform::kDefaultPixelsPerInch;
    return static_cast<std::int32_t>(RoundHalfEven(static_cast<double>(twips) / perPixel));
}

void Container::CheckPlacement(const Extender& e) const {
    const auto check = [](std::int32_t pixels, std::int32_t low, std::int32_t high,
                          const char* name, std::int32_t twips) {
        if (pixels < low || pixels > high) {
            throw HostError(kErrInvalidPropertyValue,
                            std::string(StandardErrorText(kErrInvalidPropertyValue)) + " (key \"" +
                                name + "\", value " + std::to_string(twips) + ": beyond " +
                                std::to_string(high) + " pixels)",
                            name);
        }
    };
    check(TwipsToPixelsX(e.Left), -kMaxPositionPixels, kMaxPositionPixels, "Left", e.Left);
    check(TwipsToPixelsY(e.Top), -kMaxPositionPixels, kMaxPositionPixels, "Top", e.Top);
    check(TwipsToPixelsX(e.Width), 0, kMaxExtentPixels, "Width", e.Width);
    check(TwipsToPixelsY(e.Height), 0, kMaxExtentPixels, "Height", e.Height);
}

void Container::Show() {
    platform::Platform* p = context_.Platform();
    if (!p) return;
    platform::Windows& windows = p->windows();
    const std::int32_t x = TwipsToPixelsX(Left);
    const std::int32_t y = TwipsToPixelsY(Top);
    windows.SetWindowText(formWindow_, Caption);
    windows.MoveWindow(formWindow_, {x, y, x + TwipsToPixelsX(Width), y + TwipsToPixelsY(Height)});
    windows.ShowWindow(formWindow_, true);
    // A form that appears puts the focus on its first tab stop, unless one of its controls has
    // it already; the control's own focus events follow from the platform's focus change. A
    // form without a stop takes the focus itself, so its keys (Tab, access keys) still reach it.
    bool focused = false;
    for (platform::HWND w = windows.GetFocus(); w && !focused; w = windows.GetParent(w))
        focused = (w == formWindow_);
    if (focused) return;
    const std::vector<Site*> stops = TabStops();
    windows.SetFocus(stops.empty() ? formWindow_ : stops.front()->control_->SurfaceWindow());
}

void Container::Hide() {
    if (platform::Platform* p = context_.Platform()) p->windows().ShowWindow(formWindow_, false);
}

void Container::OnPaint(platform::HDC dc, const platform::RECT& client) {
    platform::Gdi& gdi = context_.Platform()->gdi();
    const platform::HBRUSH brush = gdi.CreateSolidBrush(OleColorToRGB(gdi, BackColor));
    gdi.FillRect(dc, client, brush);
    gdi.DeleteObject(brush);
}

void Container::PlaceWindow(Site& site) {
    if (site.control_)
        site.control_->Place(site.Bounds(), site.extender_.Visible, site.extender_.Enabled);
}

void Container::Clear() {
    TerminateAll();
    sites_.clear();
    byName_.clear();
}

void Container::TerminateAll() {
    for (auto& site : sites_) {
        if (site->control_) {
            site->control_->UserControl_Terminate();
            site->control_->AttachSite(nullptr);
            site->control_.reset();
        }
    }
}

Site& Container::Create(std::string_view progId, Extender extender, Site* parent,
                        const JsonPropertyBag* bag) {
    const ClassInfo* info = context_.Classes().Find(progId);
    if (!info || !info->create) {
        throw HostError(kErrCannotCreateObject,
                        std::string(StandardErrorText(kErrCannotCreateObject)) + " (" +
                            std::string(progId) + ")",
                        "Container");
    }
    if (extender.Name.empty())
        throw HostError(kErrInvalidCall, "A control needs a name", "Container");
    if (Find(extender.Name)) {
        throw HostError(kErrInvalidCall, "A control named " + extender.Name + " already exists",
                        "Container");
    }

    CheckPlacement(extender);
    auto owned = std::make_unique<Site>(*this, *info, std::move(extender), parent);
    Site& site = *owned;
    sites_.push_back(std::move(owned));
    byName_.emplace(NameKey(site.Name()), &site);
    try {
        Instantiate(site, bag);
    } catch (...) {
        if (site.control_) site.control_->AttachSite(nullptr);
        byName_.erase(NameKey(site.Name()));
        sites_.pop_back();
        throw;
    }
    return site;
}

void Container::Instantiate(Site& site, const JsonPropertyBag* bag) {
    struct Loading {
        Site& site;
        explicit Loading(Site& s) : site(s) { site.loading_ = true; }
        ~Loading() { site.loading_ = false; }
    };
    {
        const HostContext::CreatingIn in(context_, site.ContainerWindow());
        site.control_ = site.info_->create(context_);
    }
    {
        const Loading loading(site);
        site.control_->UserControl_Initialize();
        site.control_->SetExtent(site.extender_.Width, site.extender_.Height);
        site.control_->AttachSite(&site);
        PlaceWindow(site);
        if (bag) {
            JsonPropertyBag copy = *bag;
            site.control_->UserControl_ReadProperties(copy);
        } else {
            site.control_->UserControl_InitProperties();
        }
    }
    PlaceWindow(site);
    site.control_->UserControl_Resize();
}

Site& Container::Add(std::string_view progId, Extender extender, Site* parent) {
    return Create(progId, std::move(extender), parent, nullptr);
}

Site& Container::Restore(std::string_view progId, Extender extender, const JsonPropertyBag& bag,
                         Site* parent) {
    return Create(progId, std::move(extender), parent, &bag);
}

void Container::Remove(std::string_view name) {
    Site& site = Get(name);
    for (Site* child : Children(&site)) Remove(child->Name());
    site.control_->UserControl_Terminate();
    site.control_->AttachSite(nullptr);
    byName_.erase(NameKey(site.Name()));
    std::erase_if(sites_, [&](const std::unique_ptr<Site>& s) { return s.get() == &site; });
}

Site* Container::Find(std::string_view name) const {
    const auto it = byName_.find(NameKey(name));
    return it == byName_.end() ? nullptr : it->second;
}

Site& Container::Get(std::string_view name) const {
    Site* site = Find(name);
    if (!site)
        throw HostError(kErrInvalidCall, "There is no control named " + std::string(name),
                        "Container");
    return *site;
}

std::vector<Site*> Container::Sites() const {
    std::vector<Site*> out;
    for (const auto& site : sites_) out.push_back(site.get());
    return out;
}

std::vector<Site*> Container::Children(const Site* parent) const {
    std::vector<Site*> out;
    for (const auto& site : sites_) {
        if (site->parent_ == parent) out.push_back(site.get());
    }
    return out;
}

void Container::SwitchMode(bool userMode) {
    std::vector<JsonPropertyBag> bags;
    bags.reserve(sites_.size());
    for (const auto& site : sites_) bags.push_back(SaveBag(*site));
    TerminateAll();
    userMode_ = userMode;
    // Every control is re-created even when one of them fails, so the form stays whole; the
    // first failure is reported once all are back.
    std::exception_ptr failure;
    for (std::size_t i = 0; i < sites_.size(); ++i) {
        try {
            Instantiate(*sites_[i], &bags[i]);
        } catch (...) {
            if (!failure) failure = std::current_exception();
        }
    }
    if (failure) std::rethrow_exception(failure);
}

JsonPropertyBag Container::SaveBag(const Site& site) const {
    JsonPropertyBag bag;
    site.GetControl().UserControl_WriteProperties(bag);
    return bag;
}

Variant Container::GetProperty(Site& site, std::string_view name) {
    const Extender& e = site.extender_;
    if (EqualsNoCase(name, "Name")) return e.Name;
    if (EqualsNoCase(name, "Left")) return e.Left;
    if (EqualsNoCase(name, "Top")) return e.Top;
    if (EqualsNoCase(name, "Width")) return e.Width;
    if (EqualsNoCase(name, "Height")) return e.Height;
    if (EqualsNoCase(name, "Visible")) return e.Visible;
    if (EqualsNoCase(name, "Enabled")) return e.Enabled;
    if (EqualsNoCase(name, "TabIndex")) return e.TabIndex;
    if (EqualsNoCase(name, "TabStop")) return e.TabStop;
    if (EqualsNoCase(name, "Container")) return site.parent_ ? site.parent_->Name() : this->Name;
    return Invoke(site.GetControl(), name, InvokeKind::Get);
}

void Container::LetProperty(Site& site, std::string_view name, const Variant& value) {
    Extender& e = site.extender_;
    // The new value is checked on a copy, so a refused one leaves the control where it was.
    const auto checked = [&](std::int32_t Extender::*field) {
        Extender wanted = e;
        wanted.*field = value.ToLong();
        CheckPlacement(wanted);
        return wanted.*field;
    };
    auto resize = [&](std::int32_t Extender::*field) {
        const std::int32_t v = value.ToLong();
        if (v < 0) throw HostError(kErrInvalidPropertyValue, std::string(name));
        if (checked(field) == e.*field) return;
        const std::int32_t before = e.*field;
        e.*field = v;
        site.GetControl().SetExtent(e.Width, e.Height);
        try {
            PlaceWindow(site);
        } catch (const HostError&) {
            // The control could not take the size (no bitmap for it): it keeps the old one.
            e.*field = before;
            site.GetControl().SetExtent(e.Width, e.Height);
            throw;
        }
        site.GetControl().UserControl_Resize();
    };
    if (EqualsNoCase(name, "Name") || EqualsNoCase(name, "Container"))
        throw HostError(kErrReadOnlyProperty, std::string(name));
    if (EqualsNoCase(name, "Left"))
        e.Left = checked(&Extender::Left), PlaceWindow(site);
    else if (EqualsNoCase(name, "Top"))
        e.Top = checked(&Extender::Top), PlaceWindow(site);
    else if (EqualsNoCase(name, "Width"))
        resize(&Extender::Width);
    else if (EqualsNoCase(name, "Height"))
        resize(&Extender::Height);
    else if (EqualsNoCase(name, "Visible"))
        e.Visible = value.ToBool(), PlaceWindow(site);
    else if (EqualsNoCase(name, "Enabled"))
        e.Enabled = value.ToBool(), PlaceWindow(site);
    else if (EqualsNoCase(name, "TabIndex"))
        e.TabIndex = value.ToInteger();
    else if (EqualsNoCase(name, "TabStop"))
        e.TabStop = value.ToBool();
    else {
        Variant argument = value;
        Invoke(site.GetControl(), name, value.IsObject() ? InvokeKind::Set : InvokeKind::Let,
               {&argument, 1});
    }
}

Variant Container::CallMethod(Site& site, std::string_view name, std::span<Variant> args) {
    return Invoke(site.GetControl(), name, InvokeKind::Call, args);
}

}  // namespace korvex::host
