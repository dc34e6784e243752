#include "forms/form.hpp"

#include <cmath>

#include "base/error.hpp"

namespace korvex::forms {

using namespace platform;

FormClient::FormClient(platform::Platform& platform, HWND frame, const RECT& position)
    : DrawingSurface(platform, frame, true, position) {
    platform.windows().ShowWindow(hWnd(), true);
}

// ---------------------------------------------------------------------------------------------
// Construction and geometry

Form::Form(platform::Platform& platform, std::string name)
    : platform_(platform), name_(std::move(name)) {
    Windows& windows = platform_.windows();
    const std::int32_t w = 4800 / TwipsPerPixelX(platform_), h = 3600 / TwipsPerPixelY(platform_);
    position_ = RECT{0, 0, w, h};
    hwnd_ = windows.CreateWindow(HWND{}, position_, kStyle, this, caption_);
    client_ = std::make_unique<FormClient>(platform_, hwnd_, RECT{0, 0, 1, 1});
    PlaceClient();
}

Form::~Form() {
    client_.reset();
    platform_.windows().DestroyWindow(hwnd_);
}

void Form::PlaceClient() {
    RECT client;
    platform_.windows().GetClientRect(hwnd_, &client);
    client_->Place(client);
}

float Form::Left() const {
    return static_cast<float>(static_cast<double>(position_.left) * TwipsPerPixelX(platform_));
}
float Form::Top() const {
    return static_cast<float>(static_cast<double>(position_.top) * TwipsPerPixelY(platform_));
}
float Form::Width() const {
    return static_cast<float>(static_cast<double>(position_.Width()) * TwipsPerPixelX(platform_));
}
float Form::Height() const {
    return static_cast<float>(static_cast<double>(position_.Height()) * TwipsPerPixelY(platform_));
}

void Form::Move(float Left, float Top, float Width, float Height) {
    if (Width < 0 || Height < 0)
        throw host::HostError(host::kErrInvalidPropertyValue, Width < 0 ? "Width" : "Height");
    Windows& windows = platform_.windows();
    // Clamped rather than wrapped at the 32-bit limits.
    const auto px = [](float twips, int perPixel) {
        return ToDevice(std::trunc(twips / static_cast<float>(perPixel) + 0.5f));
    };
    const std::int32_t l = px(Left, TwipsPerPixelX(platform_)),
                       t = px(Top, TwipsPerPixelY(platform_));
    position_ = RECT{l, t, ToDevice(static_cast<double>(l) + px(Width, TwipsPerPixelX(platform_))),
                     ToDevice(static_cast<double>(t) + px(Height, TwipsPerPixelY(platform_)))};
    windows.MoveWindow(hwnd_, position_);
    PlaceClient();
    placed_ = true;
    windows.InvalidateWindow(hwnd_);
}

void Form::ClientSize(float width, float height) {
    RECT frame;
    platform_.windows().AdjustWindowRect(&frame, kStyle);
    const float extraX = static_cast<float>(frame.Width() * TwipsPerPixelX(platform_));
    const float extraY = static_cast<float>(frame.Height() * TwipsPerPixelY(platform_));
    const bool wasPlaced = placed_;
    Move(Left(), Top(), width + extraX, height + extraY);
    placed_ = wasPlaced;  // a size alone still lets the first show centre the form
}

void Form::Caption(std::string value) {
    caption_ = std::move(value);
    platform_.windows().SetWindowText(hwnd_, caption_);
    platform_.windows().InvalidateWindow(hwnd_);
}

TITLEBARINFO Form::TitleBar() const {
    TITLEBARINFO info;
    RECT window;
    Windows& windows = platform_.windows();
    if (!windows.GetTitleBarInfo(hwnd_, &info) || !windows.GetWindowRect(hwnd_, &window)) return {};
    const auto toWindow = [&window](RECT r) {
        return RECT{r.left - window.left, r.top - window.top, r.right - window.left,
                    r.bottom - window.top};
    };
    info.rcTitleBar = toWindow(info.rcTitleBar);
    info.rcClose = toWindow(info.rcClose);
    return info;
}

RECT Form::CaptionRect() const {
    return TitleBar().rcTitleBar;
}
RECT Form::CloseBoxRect() const {
    return TitleBar().rcClose;
}
bool Form::CloseBoxPressed() const {
    return TitleBar().closePressed;
}

// ---------------------------------------------------------------------------------------------
// Show, hide, unload

void Form::Show(bool modal) {
    if (modal && visible_) throw host::HostError(host::kErrFormAlreadyShown, name_);
    Windows& windows = platform_.windows();
    loaded_ = true;
    if (!placed_) {
        // Centred on the screen when it first appears.
        const SIZE screen = windows.ScreenSize();
        const std::int32_t w = position_.Width(), h = position_.Height();
        const std::int32_t l = (screen.cx - w) / 2, t = (screen.cy - h) / 2;
        position_ = RECT{l, t, l + w, t + h};
        windows.MoveWindow(hwnd_, position_);
        placed_ = true;
    }
    visible_ = true;
    windows.ShowWindow(hwnd_, true);
    windows.BringWindowToTop(hwnd_);
    windows.SetFocus(client_->hWnd());
    if (!modal) return;

    // Everything else waits while the modal form is open, as the host's modal show has it.
    struct Disabled {
        Windows& windows;
        std::vector<HWND> list;
        ~Disabled() {
            for (HWND window : list)
                if (windows.IsWindow(window)) windows.EnableWindow(window, true);
        }
    } disabled{windows, {}};
    for (HWND window : windows.ZOrder(HWND{})) {
        if (window == hwnd_ || !windows.IsWindowEnabled(window)) continue;
        windows.EnableWindow(window, false);
        disabled.list.push_back(window);
    }
    modal_ = true;
    struct ModalEnd {
        bool& flag;
        ~ModalEnd() { flag = false; }
    } end{modal_};
    platform_.loop().RunModal([this] { return visible_; }, name_);
}

void Form::Hide() {
    if (!visible_) return;
    visible_ = false;
    platform_.windows().ShowWindow(hwnd_, false);
}

void Form::Unload() {
    if (!loaded_) return;
    Hide();
    loaded_ = false;
    if (OnUnload) {
        const auto handler = OnUnload;
        handler();
    }
}

// ---------------------------------------------------------------------------------------------
// Screen-wide pointer

void Form::AllWindows(HWND window, std::vector<HWND>& out) const {
    out.push_back(window);
    for (HWND child : platform_.windows().ZOrder(window)) AllWindows(child, out);
}

void Form::ScreenMousePointer(std::int16_t value) {
    screenPointer_ = CheckedMousePointer(value);
    ApplyScreenPointer();
}

void Form::ApplyScreenPointer() {
    // 0 hands every window back to the default pointer, which is what the form's own surfaces
    // show; an object with a pointer of its own sets it again when the mouse next moves onto it.
    std::vector<HWND> all;
    AllWindows(hwnd_, all);
    for (HWND window : all) platform_.windows().SetWindowCursor(window, screenPointer_);
}

}  // namespace korvex::forms
