// SimWindows: window tree, z-order, focus, capture, input routing and screen composition.
//
// Sections: construction · windows · geometry and z-order · state · focus and capture ·
// pointer and keys · hit-testing and routing · composition

#include "platform/sim/sim_windows.hpp"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <set>
#include <utility>

namespace korvex::platform::sim {

namespace {

RECT Normalized(const RECT& r) {
    return {r.left, r.top, std::max(r.left, r.right), std::max(r.top, r.bottom)};
}

// A handle is in a list once. The search starts at the bottom, where the oldest windows are, as
// a form destroys its controls in the order it created them.
void Erase(std::deque<std::uint32_t>& list, std::uint32_t value) {
    const auto it = std::find(list.rbegin(), list.rend(), value);
    if (it != list.rend()) list.erase(std::next(it).base());
}

bool Inside(const RECT& r, POINT p) {
    return p.x >= r.left && p.x < r.right && p.y >= r.top && p.y < r.bottom;
}

std::size_t IndexOf(const std::deque<std::uint32_t>& list, std::uint32_t value) {
    return static_cast<std::size_t>(std::find(list.begin(), list.end(), value) - list.begin());
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Construction

SimWindows::SimWindows(Gdi& gdi, SIZE screen, Clock* clock)
    : gdi_(gdi),
      screen_(screen),
      clock_(clock),
      tip_(gdi, clock,
           {.textOf =
                [this](std::uint32_t window) -> const std::string* {
                    const Window* w = Find(window);
                    return w ? &w->toolTip : nullptr;
                },
            .pointer = [this] { return cursor_; },
            .screen = [this] { return screen_; },
            .changed = {}}) {
    Window desktop;
    desktop.visible = true;
    desktop.rect = {0, 0, screen.cx, screen.cy};
    desktop.title = "Desktop";
    windows_.emplace(kDesktop, std::move(desktop));
}

SimWindows::~SimWindows() {
    for (auto& [handle, window] : windows_)
        if (window.region) gdi_.DeleteObject(window.region);
}

SimWindows::Window* SimWindows::Find(std::uint32_t handle) {
    auto it = windows_.find(handle);
    return it == windows_.end() ? nullptr : &it->second;
}

// ---------------------------------------------------------------------------------------------
// Windows

HWND SimWindows::CreateWindow(HWND parent, const RECT& position, WindowStyle style,
                              WindowHandler* handler, std::string_view title) {
    std::uint32_t parentHandle = Normalize(parent);
    if (parentHandle && !Find(parentHandle)) return {};
    // CreateWindowEx refuses a child window without a parent.
    if (style.child && !parentHandle) return {};

    Window window;
    window.child = style.child;
    window.caption = style.caption && !style.child;
    window.parent = style.child ? parentHandle : kDesktop;
    if (!style.child && parentHandle) {
        // An owner is always a top-level window: a child named as owner stands for its
        // top-level ancestor, as in Win32.
        std::uint32_t owner = parentHandle;
        while (Find(owner)->child) owner = Find(owner)->parent;
        window.owner = owner;
    }
    // Topmost is a property of top-level windows; the owned windows of a topmost window are
    // topmost too, so that they can stay above it.
    window.topmost =
        !style.child && (style.topmost || (window.owner && Find(window.owner)->topmost));
    window.rect = Normalized(position);
    window.handler = handler;
    window.title = std::string(title);

    const std::uint32_t handle = nextHandle_;
    nextHandle_ += 4;
    windows_.emplace(handle, std::move(window));
    // At the front, where Restack finds it at once and usually leaves it.
    Find(Find(handle)->parent)->children.push_front(handle);
    Restack(handle, HWND_TOP);
    return HWND{handle};
}

// Destroys the window, its children and the windows it owns. Focus and capture held anywhere in
// that set vanish without a notification: the handlers may already be half torn down.
bool SimWindows::DestroyWindow(HWND window) {
    if (window.value == kDesktop || !Find(window)) return false;
    std::vector<std::uint32_t> doomed{window.value};
    for (std::size_t i = 0; i < doomed.size(); ++i) {
        const Window& w = *Find(doomed[i]);
        doomed.insert(doomed.end(), w.children.begin(), w.children.end());
        // Owned windows are always top-level: the desktop's children are searched, not every
        // window, so destroying a form's controls one by one stays linear.
        for (std::uint32_t handle : Find(kDesktop)->children)
            if (Find(handle)->owner == doomed[i]) doomed.push_back(handle);
    }
    for (std::uint32_t handle : doomed) {
        tip_.Drop(handle);
        if (handle == focus_) DropFocus(false);
        if (handle == capture_) DropCapture(false);
        clicks_.Forget(handle);
    }
    // A doomed window's sibling list goes with its parent when that is doomed too.
    const std::set<std::uint32_t> doomedSet(doomed.begin(), doomed.end());
    for (std::uint32_t handle : doomed) {
        Window& w = *Find(handle);
        if (Window* parent = Find(w.parent); parent && !doomedSet.contains(w.parent))
            Erase(parent->children, handle);
        if (w.region) gdi_.DeleteObject(w.region);
    }
    for (std::uint32_t handle : doomed) windows_.erase(handle);
    return true;
}

bool SimWindows::IsWindow(HWND window) {
    return Find(window) != nullptr;
}

// As Win32's GetParent: the parent of a child window, the owner of an owned top-level window.
HWND SimWindows::GetParent(HWND window) {
    const Window* w = Find(window);
    if (!w || window.value == kDesktop) return {};
    return HWND{w->child ? w->parent : w->owner};
}

HWND SimWindows::SetParent(HWND window, HWND newParent) {
    Window* w = Find(window);
    const std::uint32_t parentHandle = newParent ? newParent.value : kDesktop;
    if (!w || window.value == kDesktop || !Find(parentHandle) ||
        IsSelfOrDescendant(window.value, parentHandle)) {
        return {};
    }
    const HWND previous = GetParent(window);
    auto& siblings = Find(w->parent)->children;
    std::erase(siblings, window.value);
    w->parent = parentHandle;
    w->child = parentHandle != kDesktop;
    w->owner = 0;
    if (w->child) w->topmost = false;
    Find(parentHandle)->children.push_front(window.value);
    Restack(window.value, HWND_TOP);
    return previous;
}

bool SimWindows::SetWindowText(HWND window, std::string_view text) {
    Window* w = Find(window);
    if (!w) return false;
    w->title = std::string(text);
    return true;
}

std::string SimWindows::GetWindowText(HWND window) {
    const Window* w = Find(window);
    return w ? w->title : std::string();
}

// ---------------------------------------------------------------------------------------------
// Geometry and z-order

// A child sits in its parent's client area, which starts inside the frame of a captioned parent.
POINT SimWindows::Origin(std::uint32_t window) {
    POINT origin;
    for (const Window* w = Find(window); w; w = w->child ? Find(w->parent) : nullptr) {
        origin.x += w->rect.left;
        origin.y += w->rect.top;
        if (const Window* parent = w->child ? Find(w->parent) : nullptr) {
            const RECT client = ClientArea(*parent);
            origin.x += client.left;
            origin.y += client.top;
        }
    }
    return origin;
}

POINT SimWindows::ClientOrigin(std::uint32_t window) {
    POINT origin = Origin(window);
    if (const Window* w = Find(window)) {
        const RECT client = ClientArea(*w);
        origin.x += client.left;
        origin.y += client.top;
    }
    return origin;
}

bool SimWindows::GetWindowRect(HWND window, RECT* screen) {
    const Window* w = Find(window);
    if (!w || !screen) return false;
    const POINT o = Origin(window.value);
    *screen = {o.x, o.y, o.x + w->rect.Width(), o.y + w->rect.Height()};
    return true;
}

bool SimWindows::GetClientRect(HWND window, RECT* client) {
    const Window* w = Find(window);
    if (!w || !client) return false;
    const RECT area = ClientArea(*w);
    *client = {0, 0, area.Width(), area.Height()};
    return true;
}

bool SimWindows::MoveWindow(HWND window, const RECT& position) {
    Window* w = Find(window);
    if (!w || window.value == kDesktop) return false;
    w->rect = Normalized(position);
    return true;
}

bool SimWindows::SetWindowPos(HWND window, HWND insertAfter, std::int32_t x, std::int32_t y,
                              std::int32_t cx, std::int32_t cy, unsigned flags) {
    Window* w = Find(window);
    if (!w || window.value == kDesktop) return false;
    if (!(flags & SWP_NOMOVE)) w->rect = {x, y, x + w->rect.Width(), y + w->rect.Height()};
    if (!(flags & SWP_NOSIZE))
        w->rect = {w->rect.left, w->rect.top, w->rect.left + std::max(cx, 0),
                   w->rect.top + std::max(cy, 0)};
    // An insertAfter that is no sibling fails the call, the rest still applies.
    const bool ok = (flags & SWP_NOZORDER) || Restack(window.value, insertAfter);
    if (flags & SWP_SHOWWINDOW) ShowWindow(window, true);
    if (flags & SWP_HIDEWINDOW) ShowWindow(window, false);
    return ok;
}

POINT SimWindows::ClientToScreen(HWND window, POINT client) {
    if (!Find(window)) return client;
    const POINT o = ClientOrigin(window.value);
    return {client.x + o.x, client.y + o.y};
}

POINT SimWindows::ScreenToClient(HWND window, POINT screen) {
    if (!Find(window)) return screen;
    const POINT o = ClientOrigin(window.value);
    return {screen.x - o.x, screen.y - o.y};
}

bool SimWindows::SetWindowRgn(HWND window, HRGN region) {
    Window* w = Find(window);
    if (!w || window.value == kDesktop) return false;
    if (w->region && w->region != region) gdi_.DeleteObject(w->region);
    w->region = region;
    return true;
}

std::vector<HWND> SimWindows::ZOrder(HWND parent) {
    const Window* p = Find(parent.value ? parent.value : kDesktop);
    std::vector<HWND> order;
    if (!p) return order;
    for (std::uint32_t handle : p->children) order.push_back(HWND{handle});
    return order;
}

bool SimWindows::BringWindowToTop(HWND window) {
    return SetWindowPos(window, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
}

// Sibling lists keep topmost windows (top-level only) in a band above the others:
//   HWND_TOP        top of the window's own band
//   HWND_BOTTOM     bottom of the list; a topmost window stops being topmost
//   HWND_TOPMOST    top of the list, topmost from now on (a child just goes to the top)
//   HWND_NOTOPMOST  a topmost window goes to the top of the other band; others stay put
//   a sibling       just below it; a topmost window placed below a normal one stops being
//                   topmost, a normal one never rises into the topmost band
// Afterwards the windows a top-level window owns are lifted back above it.
bool SimWindows::Restack(std::uint32_t window, HWND insertAfter) {
    Window& w = *Find(window);
    std::deque<std::uint32_t>& list = Find(w.parent)->children;
    const std::size_t old = IndexOf(list, window);
    list.erase(list.begin() + static_cast<std::ptrdiff_t>(old));
    auto firstNormal = [&] {
        std::size_t i = 0;
        while (i < list.size() && Find(list[i])->topmost) ++i;
        return i;
    };

    bool ok = true;
    std::size_t index = old;
    if (insertAfter == HWND_TOP) {
        index = w.topmost ? 0 : firstNormal();
    } else if (insertAfter == HWND_BOTTOM) {
        w.topmost = false;
        index = list.size();
    } else if (insertAfter == HWND_TOPMOST) {
        w.topmost = !w.child;
        index = w.topmost ? 0 : firstNormal();
    } else if (insertAfter == HWND_NOTOPMOST) {
        if (w.topmost) {
            w.topmost = false;
            index = firstNormal();
        }
    } else {
        const std::size_t sibling = IndexOf(list, insertAfter.value);
        if (sibling == list.size()) {
            ok = false;  // not a sibling: the order stays as it was
        } else {
            if (w.topmost && !Find(insertAfter.value)->topmost) w.topmost = false;
            index = sibling + 1;
            if (!w.topmost) index = std::max(index, firstNormal());
        }
    }
    list.insert(list.begin() + static_cast<std::ptrdiff_t>(index), window);
    if (!w.child) LiftOwned(window);
    return ok;
}

// Owned windows stay above their owner; those that ended up below it move to just above it,
// keeping their order among themselves.
void SimWindows::LiftOwned(std::uint32_t owner) {
    std::deque<std::uint32_t>& list = Find(kDesktop)->children;
    std::vector<std::uint32_t> owned;
    for (std::uint32_t handle : list)
        if (Find(handle)->owner == owner) owned.push_back(handle);
    for (std::uint32_t handle : owned) {
        if (IndexOf(list, handle) < IndexOf(list, owner)) continue;
        Erase(list, handle);
        list.insert(list.begin() + static_cast<std::ptrdiff_t>(IndexOf(list, owner)), handle);
        Find(handle)->topmost = Find(handle)->topmost || Find(owner)->topmost;
    }
    // Their own owned windows follow them up.
    for (std::uint32_t handle : owned) LiftOwned(handle);
}

// ---------------------------------------------------------------------------------------------
// State

bool SimWindows::IsSelfOrDescendant(std::uint32_t ancestor, std::uint32_t window) {
    for (std::uint32_t h = window;;) {
        if (h == ancestor) return true;
        const Window* w = Find(h);
        if (!w || !w->child) return false;
        h = w->parent;
    }
}

bool SimWindows::ChainVisible(std::uint32_t window) {
    for (const Window* w = Find(window); w; w = w->child ? Find(w->parent) : nullptr)
        if (!w->visible) return false;
    return true;
}

bool SimWindows::ChainEnabled(std::uint32_t window) {
    for (const Window* w = Find(window); w; w = w->child ? Find(w->parent) : nullptr)
        if (!w->enabled) return false;
    return true;
}

// Returns whether the window was visible before, as Win32's ShowWindow does. Hiding takes focus
// and capture from the window and its children; they are alive, so they hear about it.
bool SimWindows::ShowWindow(HWND window, bool visible) {
    Window* w = Find(window);
    if (!w || window.value == kDesktop) return false;
    const bool was = w->visible;
    w->visible = visible;
    if (!visible) {
        w->closePressed = false;
        if (tip_.Tool() && IsSelfOrDescendant(window.value, tip_.Tool())) tip_.Drop(tip_.Tool());
        if (focus_ && IsSelfOrDescendant(window.value, focus_)) DropFocus(true);
        if (capture_ && IsSelfOrDescendant(window.value, capture_)) DropCapture(true);
    }
    return was;
}

bool SimWindows::IsWindowVisible(HWND window) {
    return Find(window) && ChainVisible(window.value);
}

// Returns whether the window was disabled before, as Win32's EnableWindow does. A disabled
// window cannot keep the focus, nor can it or its children keep the capture.
bool SimWindows::EnableWindow(HWND window, bool enabled) {
    Window* w = Find(window);
    if (!w || window.value == kDesktop) return false;
    const bool wasDisabled = !w->enabled;
    w->enabled = enabled;
    if (!enabled) {
        if (tip_.Tool() && IsSelfOrDescendant(window.value, tip_.Tool())) tip_.Drop(tip_.Tool());
        if (focus_ == window.value) DropFocus(true);
        if (capture_ && IsSelfOrDescendant(window.value, capture_)) DropCapture(true);
    }
    return wasDisabled;
}

// Win32's IsWindowEnabled reads the window's own flag, not its parents'.
bool SimWindows::IsWindowEnabled(HWND window) {
    const Window* w = Find(window);
    return w && w->enabled;
}

// Composition asks every window for its pixels each time, so there is nothing stale to track.
void SimWindows::InvalidateWindow(HWND) {}

// ---------------------------------------------------------------------------------------------
// Focus and capture

// As Win32: focus moves first, then the old window hears OnFocus(false) and the new one
// OnFocus(true), unless the old window's handler moved the focus somewhere else meanwhile.
HWND SimWindows::SetFocus(HWND window) {
    if (window.value == 0) {
        const HWND old{focus_};
        DropFocus(true);
        return old;
    }
    if (window.value == kDesktop || !Find(window) || !ChainVisible(window.value) ||
        !ChainEnabled(window.value))
        return {};
    if (focus_ == window.value) return window;
    const HWND old{focus_};
    focus_ = window.value;
    if (Window* w = Find(old); w && w->handler) w->handler->OnFocus(false);
    if (focus_ != window.value) return old;
    if (Window* w = Find(window); w && w->handler) w->handler->OnFocus(true);
    return old;
}

void SimWindows::DropFocus(bool notify) {
    const std::uint32_t old = focus_;
    focus_ = 0;
    if (notify)
        if (Window* w = Find(old); w && w->handler) w->handler->OnFocus(false);
}

// A window taking the capture from another tells that one; SetCapture(0) releases it.
HWND SimWindows::SetCapture(HWND window) {
    const HWND old{capture_};
    if (window.value == 0) {
        ReleaseCapture();
        return old;
    }
    if (window.value == kDesktop || !Find(window)) return {};
    capture_ = window.value;
    implicitCapture_ = false;  // an explicit request outlives the button release
    if (old && old != window) CaptureLost(old.value);
    return old;
}

bool SimWindows::ReleaseCapture() {
    capture_ = 0;
    implicitCapture_ = false;
    return true;
}

void SimWindows::DropCapture(bool notify) {
    const std::uint32_t old = capture_;
    capture_ = 0;
    implicitCapture_ = false;
    if (notify) CaptureLost(old);
}

// ---------------------------------------------------------------------------------------------
// Pointer and keys

bool SimWindows::GetCursorPos(POINT* screen) {
    if (!screen) return false;
    *screen = cursor_;
    return true;
}

// The pointer never leaves the screen, as on the real one.
bool SimWindows::SetCursorPos(std::int32_t x, std::int32_t y) {
    cursor_ = {std::clamp(x, 0, std::max(screen_.cx - 1, 0)),
               std::clamp(y, 0, std::max(screen_.cy - 1, 0))};
    return true;
}

std::int16_t SimWindows::GetAsyncKeyState(int virtualKey) {
    // Bit 15.
    return held_.Down(virtualKey) ? std::numeric_limits<std::int16_t>::min() : std::int16_t{0};
}

int SimWindows::ShiftState() const {
    return held_.ShiftState();
}

void SimWindows::SetWindowCursor(HWND window, int shape,
                                 std::shared_ptr<const std::vector<std::uint32_t>> customPixels,
                                 SIZE customSize) {
    Window* w = Find(window);
    if (!w) return;
    w->cursor = shape;
    w->cursorPixels = std::move(customPixels);
    w->cursorSize = customSize;
}

// The capture window's cursor, else the one of the window under the pointer; a window left at
// the default shows its parent's, and the arrow is what remains at the top.
int SimWindows::CurrentCursor() {
    const std::uint32_t start = capture_ ? capture_ : HitTest(cursor_);
    for (const Window* w = Find(start); w; w = w->child ? Find(w->parent) : nullptr)
        if (w->cursor != kCursorDefault) return w->cursor;
    return kCursorArrow;
}

// ---------------------------------------------------------------------------------------------
// Hit-testing and routing

bool SimWindows::Contains(std::uint32_t window, POINT screen) {
    const Window* w = Find(window);
    const POINT o = Origin(window);
    const std::int32_t x = screen.x - o.x, y = screen.y - o.y;
    if (x < 0 || y < 0 || x >= w->rect.Width() || y >= w->rect.Height()) return false;
    return !w->region || gdi_.PtInRegion(w->region, x, y);
}

// Walks down the z-order, topmost first, into the visible window containing the point. A child
// is only reached through its parent, so parents clip their children for free. A disabled
// window ends the walk: it takes the hit, and routing then drops the input.
std::uint32_t SimWindows::HitTest(POINT screen) {
    std::uint32_t found = 0;
    const Window* level = Find(kDesktop);
    for (;;) {
        std::uint32_t next = 0;
        for (std::uint32_t handle : level->children)
            if (Find(handle)->visible && Contains(handle, screen)) {
                next = handle;
                break;
            }
        if (!next) return found;
        found = next;
        level = Find(next);
        if (!level->enabled) return found;
        // Children live in the client area; the frame of a captioned window covers them.
        const RECT client = ClientArea(*level);
        const POINT o = Origin(next);
        if (!Inside(client, {screen.x - o.x, screen.y - o.y})) return found;
    }
}

// A disabled child stands for nothing, so its parent is reported; a disabled top-level window
// still covers the desktop and is reported itself.
HWND SimWindows::WindowFromPoint(POINT screen) {
    const std::uint32_t hit = HitTest(screen);
    const Window* w = Find(hit);
    if (!w) return HWND{kDesktop};
    return HWND{!w->enabled && w->child ? w->parent : hit};
}

std::uint32_t SimWindows::MouseTarget() {
    if (capture_) return capture_;
    const std::uint32_t hit = HitTest(cursor_);
    return hit && ChainEnabled(hit) ? hit : 0;
}

// Input on the frame of a captioned window (or while its close box is held) is the window
// manager's own; the handler sees the client area only.
void SimWindows::Deliver(std::uint32_t window, MouseEvent event) {
    Window* w = Find(window);
    if (!w) return;
    const POINT o = Origin(window);
    const POINT inWindow{event.screen.x - o.x, event.screen.y - o.y};
    const RECT client = ClientArea(*w);
    if (w->caption && (w->closePressed || !Inside(client, inWindow))) {
        NonClientMouse(*w, event, inWindow);
        return;
    }
    if (!w->handler) return;
    event.client = {inWindow.x - client.left, inWindow.y - client.top};
    w->handler->OnMouse(event);
}

// The tooltip follows the move once the window has seen it, so a window that sets the text of
// the object under the pointer has set it by then.
void SimWindows::RouteMouseMove(POINT screen, std::int64_t time) {
    SetCursorPos(screen.x, screen.y);
    const std::uint32_t target = MouseTarget();
    if (target) {
        Deliver(target, MoveEvent(held_.Buttons(), ShiftState(), cursor_, time));
    }
    tip_.Track(Find(target) ? target : 0);
}

// Step table for the buttons (one press and release; the capture is the implicit one):
//   press    target = capture window, else the window hit; the target takes the capture; the
//            event is DoubleClick when the previous press (same button, same window) is less
//            than the double-click time ago and within the double-click rectangle, else Down;
//            a double click does not start another one (platform/pointer_rules.hpp)
//   release  Up goes to the capture window, else the window hit; once no button is held the
//            implicit capture ends (without OnCaptureLost: the release reached the window)
// Input for a disabled window is dropped; the button state still changes.
void SimWindows::RouteMouseButton(bool down, int button, int shift, std::int64_t time) {
    if (down) tip_.Press();
    held_.Button(down, button);
    const std::uint32_t target = MouseTarget();
    if (!target) {
        if (down) clicks_.Reset();
        return;
    }
    const MouseEvent event = clicks_.ButtonEvent(down, target, button, shift, cursor_, time);
    if (down) {
        if (!capture_) {
            capture_ = target;
            implicitCapture_ = true;
        }
        Deliver(target, event);
    } else {
        Deliver(target, event);
        if (implicitCapture_ && capture_ == target && held_.Buttons() == 0) ReleaseCapture();
    }
}

void SimWindows::TrackKey(KeyEvent::Kind kind, int keyCode) {
    held_.Key(kind, keyCode);
}

void SimWindows::RouteKey(KeyEvent::Kind kind, int keyCode, int shift, std::int64_t time) {
    TrackKey(kind, keyCode);
    const Window* w = Find(focus_);
    if (!w || !w->handler) return;
    KeyEvent event;
    event.kind = kind;
    event.keyCode = keyCode;
    event.shift = shift;
    event.time = time;
    w->handler->OnKey(event);
}

// ---------------------------------------------------------------------------------------------
// Composition

std::vector<std::uint32_t> SimWindows::ComposeScreen() {
    return Render(screen_, kDesktop, {});
}

std::vector<std::uint32_t> SimWindows::ComposeWindow(HWND window) {
    const Window* w = Find(window);
    if (!w) return {};
    if (window.value == kDesktop) return ComposeScreen();
    return Render({w->rect.Width(), w->rect.Height()}, window.value, {});
}

// The desktop colour first; then the desktop's visible windows bottom to top, or the one window
// asked for (shown or not: a snapshot of a form before it is shown is still useful).
std::vector<std::uint32_t> SimWindows::Render(SIZE size, std::uint32_t window, POINT origin) {
    std::vector<std::uint32_t> pixels;
    const HDC dc = gdi_.CreateCompatibleDC({});
    const HBITMAP bitmap = gdi_.CreateDIBSection32(size.cx, size.cy);
    if (dc && bitmap) {
        ScopedSelect select(gdi_, dc, bitmap);
        const HBRUSH desktop = gdi_.CreateSolidBrush(gdi_.GetSysColor(COLOR_BACKGROUND));
        gdi_.FillRect(dc, {0, 0, size.cx, size.cy}, desktop);
        gdi_.DeleteObject(desktop);
        if (window == kDesktop) {
            const std::deque<std::uint32_t> order = Find(kDesktop)->children;
            for (auto it = order.rbegin(); it != order.rend(); ++it)
                if (const Window* w = Find(*it); w && w->visible)
                    ComposeInto(dc, *it, Origin(*it), {});
            tip_.Paint(dc);
        } else {
            ComposeInto(dc, window, origin, {});
        }
        const PixelView view = gdi_.BitmapPixels(bitmap);
        if (view.bits)
            pixels.assign(view.bits,
                          view.bits + static_cast<std::ptrdiff_t>(view.width) * view.height);
        // Raster operations that invert write the unused top byte too; a screen has none.
        for (std::uint32_t& pixel : pixels) pixel &= 0x00FFFFFFu;
    }
    if (dc) gdi_.DeleteDC(dc);
    if (bitmap) gdi_.DeleteObject(bitmap);
    return pixels;
}

// The window paints into a bitmap of its own size (erased first with the window colour, as the
// standard class brush would), which is copied through the clip: the parent's clip, the window
// rectangle and its region. The children then compose inside that same clip, bottom to top.
void SimWindows::ComposeInto(HDC target, std::uint32_t window, POINT origin, HRGN clip) {
    const Window* w = Find(window);
    if (!w) return;
    const std::int32_t width = w->rect.Width(), height = w->rect.Height();
    if (width <= 0 || height <= 0) return;

    const HRGN own = gdi_.CreateRectRgn(origin.x, origin.y, origin.x + width, origin.y + height);
    if (clip) gdi_.CombineRgn(own, own, clip, RGN_AND);
    if (w->region) {
        const HRGN shaped = gdi_.CreateRectRgn(0, 0, 0, 0);
        gdi_.CombineRgn(shaped, w->region, {}, RGN_COPY);
        gdi_.OffsetRgn(shaped, origin.x, origin.y);
        gdi_.CombineRgn(own, own, shaped, RGN_AND);
        gdi_.DeleteObject(shaped);
    }
    RECT box;
    if (gdi_.GetRgnBox(own, &box) == NULLREGION) {
        gdi_.DeleteObject(own);
        return;
    }

    WindowHandler* handler = w->handler;
    const RECT client = ClientArea(*w);
    const HDC dc = gdi_.CreateCompatibleDC(target);
    const HBITMAP bitmap = gdi_.CreateDIBSection32(width, height);
    if (dc && bitmap) {
        ScopedSelect select(gdi_, dc, bitmap);
        if (w->caption) PaintFrame(dc, *w);
        PaintClient(dc, handler, client);
        gdi_.SelectClipRgn(target, own);
        gdi_.BitBlt(target, origin.x, origin.y, width, height, dc, 0, 0, SRCCOPY);
        gdi_.SelectClipRgn(target, {});
    }
    if (dc) gdi_.DeleteDC(dc);
    if (bitmap) gdi_.DeleteObject(bitmap);

    // The children compose inside the client area. OnPaint may have changed the tree; look the
    // window up again.
    if (const Window* again = Find(window)) {
        const POINT inner{origin.x + client.left, origin.y + client.top};
        if (again->caption) {
            const HRGN area = gdi_.CreateRectRgn(inner.x, inner.y, inner.x + client.Width(),
                                                 inner.y + client.Height());
            gdi_.CombineRgn(own, own, area, RGN_AND);
            gdi_.DeleteObject(area);
        }
        const std::deque<std::uint32_t> children = again->children;
        for (auto it = children.rbegin(); it != children.rend(); ++it)
            if (const Window* c = Find(*it); c && c->visible)
                ComposeInto(target, *it, {inner.x + c->rect.left, inner.y + c->rect.top}, own);
    }
    gdi_.DeleteObject(own);
}

// The client area, erased first with the window colour as the standard class brush would, then
// painted by the handler. A window without a frame paints straight into its own bitmap.
void SimWindows::PaintClient(HDC dc, WindowHandler* handler, const RECT& client) {
    if (client.IsEmpty()) return;
    const bool framed = client.left != 0 || client.top != 0;
    const HDC target = framed ? gdi_.CreateCompatibleDC(dc) : dc;
    const HBITMAP bitmap =
        framed ? gdi_.CreateDIBSection32(client.Width(), client.Height()) : HBITMAP{};
    if (!target || (framed && !bitmap)) {
        if (framed && target) gdi_.DeleteDC(target);
        if (bitmap) gdi_.DeleteObject(bitmap);
        return;
    }
    {
        const HGDIOBJ previous = framed ? gdi_.SelectObject(target, bitmap) : HGDIOBJ{};
        const RECT area{0, 0, client.Width(), client.Height()};
        const HBRUSH erase = gdi_.CreateSolidBrush(gdi_.GetSysColor(COLOR_WINDOW));
        gdi_.FillRect(target, area, erase);
        gdi_.DeleteObject(erase);
        if (handler) handler->OnPaint(target, area);
        if (framed) {
            gdi_.BitBlt(dc, client.left, client.top, client.Width(), client.Height(), target, 0, 0,
                        SRCCOPY);
            gdi_.SelectObject(target, previous);
        }
    }
    if (framed) {
        gdi_.DeleteDC(target);
        gdi_.DeleteObject(bitmap);
    }
}

// ---------------------------------------------------------------------------------------------
// Tooltips: ToolTipState keeps the tip; the text lives with its window.

void SimWindows::SetToolTip(HWND window, std::string_view text) {
    Window* w = Find(window);
    if (!w || window.value == kDesktop || w->toolTip == text) return;
    w->toolTip = std::string(text);
    tip_.TextChanged(window.value, text);
}

std::string SimWindows::GetToolTip(HWND window) {
    const Window* w = Find(window);
    return w ? w->toolTip : std::string();
}

}  // namespace korvex::platform::sim
