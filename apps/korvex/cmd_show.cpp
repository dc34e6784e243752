// korvex show FORM.json [--scale N] [--for SECONDS]: the form in a real window for a person to
// try. The form runs on the simulated platform as for korvex run; this front end only feeds it
// the real mouse and keyboard, lets its virtual clock follow real time, shows the composed screen
// and prints the event log as it happens.
//
// SDL stays here, in the tool: the library and its platform layer know no window system, so the
// same controls run headless in tests and scripts.

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "commands.hpp"

#ifdef KORVEX_HAVE_SDL

#include <array>
#include <map>
#include <memory>
#include <set>
#include <vector>

#define SDL_MAIN_HANDLED
#include <SDL.h>

#include "base/utf8.hpp"
#include "driver/event_log.hpp"
#include "session.hpp"

#endif

namespace korvex::cli {

namespace {

constexpr std::string_view kUsage = "usage: korvex show FORM.json [--scale N] [--for SECONDS]\n";

struct ShowOptions {
    std::string formPath;
    int scale = 1;
    std::optional<double> seconds;
};

// Parses the arguments; prints what is wrong and returns nothing on a usage error.
std::optional<ShowOptions> ParseShowArgs(Args args) {
    ShowOptions options;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string_view arg = args[i];
        const bool hasValue = i + 1 < args.size();
        if (arg == "--scale" && hasValue) {
            const std::string_view value = args[++i];
            int scale = 0;
            const auto [end, error] =
                std::from_chars(value.data(), value.data() + value.size(), scale);
            if (error != std::errc{} || end != value.data() + value.size() || scale < 1 ||
                scale > 8) {
                std::fprintf(stderr,
                             "korvex show: --scale takes a whole number from 1 to 8, not '%.*s'\n",
                             static_cast<int>(value.size()), value.data());
                return std::nullopt;
            }
            options.scale = scale;
        } else if (arg == "--for" && hasValue) {
            const std::string_view value = args[++i];
            double seconds = 0;
            const auto [end, error] =
                std::from_chars(value.data(), value.data() + value.size(), seconds);
            if (error != std::errc{} || end != value.data() + value.size() || !(seconds > 0) ||
                seconds > 1e6) {
                std::fprintf(stderr,
                             "korvex show: --for takes a number of seconds above 0, not '%.*s'\n",
                             static_cast<int>(value.size()), value.data());
                return std::nullopt;
            }
            options.seconds = seconds;
        } else if (options.formPath.empty() && !arg.starts_with("--")) {
            options.formPath = arg;
        } else {
            std::fputs(kUsage.data(), stderr);
            return std::nullopt;
        }
    }
    if (options.formPath.empty()) {
        std::fputs(kUsage.data(), stderr);
        return std::nullopt;
    }
    return options;
}

#ifdef KORVEX_HAVE_SDL

// Virtual time one frame may let pass: after a stall (a suspended process, a debugger) the clock
// skips ahead instead of firing every timer it missed in one burst.
constexpr std::int64_t kMaxStepMs = 100;
// Longest sleep between frames when no timer is due, so --for and a slow clock stay responsive.
constexpr std::int64_t kMaxWaitMs = 100;

// Thrown through the nested loop of an open modal box when the window closes: the whole call
// chain unwinds at once instead of waiting for a box nobody can answer any more.
struct WindowClosed {};

// SDL's key symbols as the virtual keys the controls know. Keys without one still type their
// characters through text input.
int VirtualKey(SDL_Keycode key) {
    if (key >= SDLK_a && key <= SDLK_z) return 'A' + (key - SDLK_a);
    if (key >= SDLK_0 && key <= SDLK_9) return '0' + (key - SDLK_0);
    if (key >= SDLK_F1 && key <= SDLK_F12) return 0x70 + (key - SDLK_F1);
    if (key >= SDLK_KP_1 && key <= SDLK_KP_9) return 0x61 + (key - SDLK_KP_1);
    static const std::map<SDL_Keycode, int> keys = {
        {SDLK_BACKSPACE, 0x08}, {SDLK_TAB, 0x09},         {SDLK_RETURN, 0x0D},
        {SDLK_KP_ENTER, 0x0D},  {SDLK_LSHIFT, 0x10},      {SDLK_RSHIFT, 0x10},
        {SDLK_LCTRL, 0x11},     {SDLK_RCTRL, 0x11},       {SDLK_LALT, 0x12},
        {SDLK_RALT, 0x12},      {SDLK_PAUSE, 0x13},       {SDLK_CAPSLOCK, 0x14},
        {SDLK_ESCAPE, 0x1B},    {SDLK_SPACE, 0x20},       {SDLK_PAGEUP, 0x21},
        {SDLK_PAGEDOWN, 0x22},  {SDLK_END, 0x23},         {SDLK_HOME, 0x24},
        {SDLK_LEFT, 0x25},      {SDLK_UP, 0x26},          {SDLK_RIGHT, 0x27},
        {SDLK_DOWN, 0x28},      {SDLK_INSERT, 0x2D},      {SDLK_DELETE, 0x2E},
        {SDLK_KP_0, 0x60},      {SDLK_KP_MULTIPLY, 0x6A}, {SDLK_KP_PLUS, 0x6B},
        {SDLK_KP_MINUS, 0x6D},  {SDLK_KP_PERIOD, 0x6E},   {SDLK_KP_DIVIDE, 0x6F},
        {SDLK_PLUS, 0xBB},      {SDLK_EQUALS, 0xBB},      {SDLK_COMMA, 0xBC},
        {SDLK_MINUS, 0xBD},     {SDLK_PERIOD, 0xBE},
    };
    const auto it = keys.find(key);
    return it == keys.end() ? 0 : it->second;
}

int ShiftOf(Uint16 mod) {
    return ((mod & KMOD_SHIFT) ? platform::kShiftMask : 0) |
           ((mod & KMOD_CTRL) ? platform::kCtrlMask : 0) |
           ((mod & KMOD_ALT) ? platform::kAltMask : 0);
}

int ButtonOf(Uint8 button) {
    switch (button) {
        case SDL_BUTTON_LEFT:
            return platform::kButtonLeft;
        case SDL_BUTTON_RIGHT:
            return platform::kButtonRight;
        case SDL_BUTTON_MIDDLE:
            return platform::kButtonMiddle;
        default:
            return 0;
    }
}

// The characters a key gives although SDL's text input leaves them out (it sends printable text
// only): the host sees Enter, Tab, Escape, Backspace and Ctrl+letter as key presses too.
int ControlCharacter(SDL_Keycode key, Uint16 mod) {
    if (mod & KMOD_ALT) return 0;
    switch (key) {
        case SDLK_RETURN:
        case SDLK_KP_ENTER:
            return 13;
        case SDLK_TAB:
            return 9;
        case SDLK_ESCAPE:
            return 27;
        case SDLK_BACKSPACE:
            return 8;
        default:
            break;
    }
    if ((mod & KMOD_CTRL) && key >= SDLK_a && key <= SDLK_z) return 1 + (key - SDLK_a);
    return 0;
}

// The host's pointer shapes 0 to 15 as the desktop's own cursors; a custom picture shows the
// arrow, since only the shape number crosses the driver face.
SDL_SystemCursor CursorOf(int shape) {
    static constexpr std::array<SDL_SystemCursor, 16> shapes = {
        SDL_SYSTEM_CURSOR_ARROW,    SDL_SYSTEM_CURSOR_ARROW,     SDL_SYSTEM_CURSOR_CROSSHAIR,
        SDL_SYSTEM_CURSOR_IBEAM,    SDL_SYSTEM_CURSOR_ARROW,     SDL_SYSTEM_CURSOR_SIZEALL,
        SDL_SYSTEM_CURSOR_SIZENESW, SDL_SYSTEM_CURSOR_SIZENS,    SDL_SYSTEM_CURSOR_SIZENWSE,
        SDL_SYSTEM_CURSOR_SIZEWE,   SDL_SYSTEM_CURSOR_ARROW,     SDL_SYSTEM_CURSOR_WAIT,
        SDL_SYSTEM_CURSOR_NO,       SDL_SYSTEM_CURSOR_WAITARROW, SDL_SYSTEM_CURSOR_ARROW,
        SDL_SYSTEM_CURSOR_SIZEALL,
    };
    return shape >= 0 && shape < static_cast<int>(shapes.size())
               ? shapes[static_cast<std::size_t>(shape)]
               : SDL_SYSTEM_CURSOR_ARROW;
}

std::int32_t FloorDiv(std::int32_t value, std::int32_t by) {
    return value >= 0 ? value / by : -((-value + by - 1) / by);
}

struct SdlDeleter {
    void operator()(SDL_Window* p) const { SDL_DestroyWindow(p); }
    void operator()(SDL_Renderer* p) const { SDL_DestroyRenderer(p); }
    void operator()(SDL_Texture* p) const { SDL_DestroyTexture(p); }
    void operator()(SDL_Cursor* p) const { SDL_FreeCursor(p); }
};
template <class T>
using SdlPtr = std::unique_ptr<T, SdlDeleter>;

// SDL's video subsystem for the lifetime of the window.
struct SdlVideo {
    SdlVideo() {
        if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0) {
            const std::string why = SDL_GetError();
            SDL_Quit();
            throw std::runtime_error("cannot open a window: " + why);
        }
        // With no display SDL falls back to drivers that draw into memory: a window nobody sees.
        const char* name = SDL_GetCurrentVideoDriver();
        const std::string_view driver = name ? name : "";
        if (driver == "offscreen" || driver == "dummy" || driver == "evdev") {
            SDL_Quit();
            throw std::runtime_error(
                "cannot open a window: there is no display (DISPLAY or WAYLAND_DISPLAY is not "
                "set)");
        }
    }
    ~SdlVideo() {
        SDL_QuitSubSystem(SDL_INIT_VIDEO);
        SDL_Quit();
    }
    SdlVideo(const SdlVideo&) = delete;
    SdlVideo& operator=(const SdlVideo&) = delete;
};

// The window and its frame loop. It is the platform's input source too: a modal box the form
// opens runs a nested loop that pulls its frames from here, so the window stays live.
class LiveWindow final : public platform::InputSource {
  public:
    LiveWindow(Session& session, const std::string& title, int scale)
        : session_(session),
          driver_(session.platform.driver()),
          windows_(session.platform.windows()),
          log_(std::cout),
          scale_(scale) {
        session_.form.SetSink(&log_);
        // Nearest neighbour, so a scaled pixel stays a sharp square.
        SDL_SetHint(SDL_HINT_RENDER_SCALE_QUALITY, "0");
        // The window's pixels go straight to the X server: without this SDL would put an OpenGL
        // renderer behind the window surface and re-create the window for it, under another id.
        SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
        // A click that activates the window also reaches the form, as on the desktop the controls
        // come from (SDL drops a click that comes right after the window gained the focus).
        SDL_SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1");
        view_ = View();
        window_.reset(SDL_CreateWindow(title.c_str(), SDL_WINDOWPOS_CENTERED,
                                       SDL_WINDOWPOS_CENTERED, view_.Width() * scale_,
                                       view_.Height() * scale_, SDL_WINDOW_SHOWN));
        if (!window_)
            throw std::runtime_error(std::string("cannot open a window: ") + SDL_GetError());
        // The software renderer needs no OpenGL, so it runs under Xvfb and on any X server.
        renderer_.reset(SDL_CreateRenderer(window_.get(), -1, SDL_RENDERER_SOFTWARE));
        if (!renderer_)
            throw std::runtime_error(std::string("cannot draw into the window: ") + SDL_GetError());
        MakeTexture();
    }
    ~LiveWindow() override {
        driver_.SetInputSource(nullptr);
        session_.form.SetSink(nullptr);
    }
    LiveWindow(const LiveWindow&) = delete;
    LiveWindow& operator=(const LiveWindow&) = delete;

    // Runs until the window is closed, or for the given real time.
    void Run(std::optional<double> seconds) {
        real_ = SDL_GetTicks64();
        if (seconds) deadline_ = real_ + static_cast<std::uint64_t>(*seconds * 1000.0);
        driver_.SetInputSource(this);
        try {
            while (!closed_) Frame();
        } catch (const WindowClosed&) {
        }
    }

    // A frame for a modal loop; closing the window ends the loop through WindowClosed.
    bool Step() override {
        Frame();
        if (closed_) throw WindowClosed{};
        return true;
    }

  private:
    // Show what changed, wait for input or the next timer, feed the input, let time follow.
    void Frame() {
        Present();
        SDL_Event event;
        if (SDL_WaitEventTimeout(&event, static_cast<int>(WaitMs()))) {
            do {
                Handle(event);
            } while (!closed_ && SDL_PollEvent(&event));
        }
        FollowClock(SDL_GetTicks64());
        if (deadline_ && SDL_GetTicks64() >= deadline_) closed_ = true;
    }

    std::int64_t WaitMs() {
        std::int64_t wait = kMaxWaitMs;
        const std::int64_t due = driver_.NextDue();
        if (due >= 0)
            wait = std::clamp<std::int64_t>(due - session_.platform.clock().Now(), 0, wait);
        if (deadline_) {
            const std::uint64_t now = SDL_GetTicks64();
            wait = std::min<std::int64_t>(
                wait, now >= deadline_ ? 0 : static_cast<std::int64_t>(deadline_ - now));
        }
        return wait;
    }

    // The virtual clock moves by the real time that passed, in steps of at most kMaxStepMs.
    void FollowClock(std::uint64_t realMs) {
        if (realMs <= real_) return;
        const auto step =
            std::min<std::int64_t>(static_cast<std::int64_t>(realMs - real_), kMaxStepMs);
        real_ = realMs;
        const std::int64_t due = driver_.NextDue();
        const bool fires = due >= 0 && due <= session_.platform.clock().Now() + step;
        if (fires)
            Deliver([&] { driver_.Advance(step); });
        else
            driver_.Advance(step);
    }

    // Feeds one piece of input (or time), runs the work it posted and reports a host error the
    // way korvex run does; the form goes on running.
    template <class Input>
    void Deliver(Input&& input) {
        stale_ = true;
        try {
            input();
            session_.platform.loop().DoEvents();
        } catch (const host::HostError& e) {
            log_.Error(e);
        }
    }

    platform::POINT ToScreen(std::int32_t x, std::int32_t y) const {
        return {view_.left + FloorDiv(x, scale_), view_.top + FloorDiv(y, scale_)};
    }

    void MoveTo(platform::POINT screen) {
        if (pointer_ && *pointer_ == screen) return;
        pointer_ = screen;
        Deliver([&] { driver_.MouseMove(screen); });
    }

    void Handle(const SDL_Event& event) {
        // Input is stamped with the virtual clock, so let it catch up to when the input came.
        FollowClock(event.common.timestamp);
        switch (event.type) {
            case SDL_QUIT:
                closed_ = true;
                break;
            case SDL_WINDOWEVENT:
                HandleWindow(event.window);
                break;
            case SDL_MOUSEMOTION:
                MoveTo(ToScreen(event.motion.x, event.motion.y));
                break;
            case SDL_MOUSEBUTTONDOWN:
            case SDL_MOUSEBUTTONUP: {
                const int button = ButtonOf(event.button.button);
                if (!button) break;
                MoveTo(ToScreen(event.button.x, event.button.y));
                const int shift = ShiftOf(SDL_GetModState());
                if (event.type == SDL_MOUSEBUTTONDOWN) {
                    buttons_ |= button;
                    Deliver([&] { driver_.MouseDown(button, shift); });
                } else if (buttons_ & button) {
                    buttons_ &= ~button;
                    Deliver([&] { driver_.MouseUp(button, shift); });
                }
                break;
            }
            case SDL_KEYDOWN:
            case SDL_KEYUP:
                HandleKey(event.key);
                break;
            case SDL_TEXTINPUT:
                HandleText(event.text);
                break;
            default:
                break;  // the driver face has no wheel: no control reads one
        }
    }

    void HandleWindow(const SDL_WindowEvent& event) {
        switch (event.event) {
            case SDL_WINDOWEVENT_CLOSE:
                closed_ = true;
                break;
            case SDL_WINDOWEVENT_EXPOSED:
            case SDL_WINDOWEVENT_SIZE_CHANGED:
                exposed_ = true;
                break;
            case SDL_WINDOWEVENT_LEAVE:
                // The pointer went elsewhere on the desktop: off every window of the form, so
                // hover looks end. While a button is held the window keeps the pointer.
                if (!buttons_) MoveTo({view_.left - 1, view_.top - 1});
                break;
            case SDL_WINDOWEVENT_FOCUS_LOST:
                ReleaseKeys();
                break;
            default:
                break;
        }
    }

    void HandleKey(const SDL_KeyboardEvent& event) {
        const SDL_Keycode key = event.keysym.sym;
        const Uint16 mod = event.keysym.mod;
        const int shift = ShiftOf(mod);
        if (event.type == SDL_KEYUP) {
            const int vk = VirtualKey(key);
            if (vk && keysDown_.erase(vk)) Deliver([&] { driver_.KeyUp(vk, shift); });
            return;
        }
        if (const int vk = VirtualKey(key)) {
            keysDown_.insert(vk);
            Deliver([&] { driver_.KeyDown(vk, shift); });
        }
        if (const int character = ControlCharacter(key, mod))
            Deliver([&] { driver_.KeyPress(character); });
    }

    // Typed text as key presses, one per character. The host takes characters of its code page:
    // Latin-1 passes, others arrive as '?' as the host's conversion makes them. Left Alt held
    // makes menu keys, not text; right Alt (AltGr) still types.
    void HandleText(const SDL_TextInputEvent& event) {
        if (SDL_GetModState() & KMOD_LALT) return;
        const std::string_view text(event.text);
        for (std::size_t pos = 0; pos < text.size();) {
            const char32_t c = NextCodePoint(text, pos);
            const int character =
                c < 0x80 || (c >= 0xA0 && c <= 0xFF) ? static_cast<int>(c) : static_cast<int>('?');
            Deliver([&] { driver_.KeyPress(character); });
        }
    }

    // Keys held when the window lost the keyboard would otherwise stay down in the form.
    void ReleaseKeys() {
        const auto held = keysDown_;
        keysDown_.clear();
        for (const int vk : held) Deliver([&] { driver_.KeyUp(vk, 0); });
    }

    // The part of the screen shown: the form and the boxes it opens (captioned top-level windows,
    // such as the about box, which the platform centres on the screen). Pop-ups without a caption
    // bar (tooltips) are clipped to that, so the window does not jump while one shows.
    platform::RECT View() {
        platform::RECT view;
        windows_.GetWindowRect(session_.form.FormWindow(), &view);
        for (const platform::HWND window : windows_.ZOrder({})) {
            platform::TITLEBARINFO bar;
            platform::RECT r;
            if (!windows_.IsWindowVisible(window) || !windows_.GetTitleBarInfo(window, &bar) ||
                !windows_.GetWindowRect(window, &r))
                continue;
            view = {std::min(view.left, r.left), std::min(view.top, r.top),
                    std::max(view.right, r.right), std::max(view.bottom, r.bottom)};
        }
        const platform::SIZE screen = windows_.ScreenSize();
        view = {std::max(view.left, 0), std::max(view.top, 0), std::min(view.right, screen.cx),
                std::min(view.bottom, screen.cy)};
        if (view.IsEmpty()) return view_.IsEmpty() ? platform::RECT{0, 0, 1, 1} : view_;
        return view;
    }

    void MakeTexture() {
        texture_.reset(SDL_CreateTexture(renderer_.get(), SDL_PIXELFORMAT_RGB888,
                                         SDL_TEXTUREACCESS_STREAMING, view_.Width(),
                                         view_.Height()));
        if (!texture_)
            throw std::runtime_error(std::string("cannot draw into the window: ") + SDL_GetError());
        shown_.clear();
        stale_ = true;
    }

    // Composes the screen when input or a timer may have changed it, and shows it when it did.
    void Present() {
        if (const platform::RECT view = View(); view != view_) {
            view_ = view;
            Resize();
            MakeTexture();
        }
        if (stale_) {
            stale_ = false;
            const std::vector<std::uint32_t> screen = driver_.ComposeScreen();
            const std::int32_t stride = windows_.ScreenSize().cx;
            std::vector<std::uint32_t> frame;
            frame.reserve(static_cast<std::size_t>(view_.Width()) *
                          static_cast<std::size_t>(view_.Height()));
            for (std::int32_t y = view_.top; y < view_.bottom; ++y) {
                const auto row = screen.begin() + static_cast<std::ptrdiff_t>(y) * stride;
                frame.insert(frame.end(), row + view_.left, row + view_.right);
            }
            if (frame != shown_) {
                shown_ = std::move(frame);
                SDL_UpdateTexture(texture_.get(), nullptr, shown_.data(),
                                  view_.Width() * static_cast<int>(sizeof(std::uint32_t)));
                exposed_ = true;
            }
        }
        if (exposed_) {
            exposed_ = false;
            SDL_RenderClear(renderer_.get());
            SDL_RenderCopy(renderer_.get(), texture_.get(), nullptr, nullptr);
            SDL_RenderPresent(renderer_.get());
        }
        ShowCursor();
    }

    // A window that grew for a box keeps as much of itself on its display as fits.
    void Resize() {
        const int width = view_.Width() * scale_, height = view_.Height() * scale_;
        SDL_SetWindowSize(window_.get(), width, height);
        SDL_Rect bounds;
        const int display = SDL_GetWindowDisplayIndex(window_.get());
        if (display < 0 || SDL_GetDisplayUsableBounds(display, &bounds) != 0) return;
        int x = 0, y = 0;
        SDL_GetWindowPosition(window_.get(), &x, &y);
        x = std::max(bounds.x, std::min(x, bounds.x + bounds.w - width));
        y = std::max(bounds.y, std::min(y, bounds.y + bounds.h - height));
        SDL_SetWindowPosition(window_.get(), x, y);
    }

    void ShowCursor() {
        const SDL_SystemCursor id = CursorOf(windows_.CurrentCursor());
        if (cursor_ && id == cursorId_) return;
        cursor_.reset(SDL_CreateSystemCursor(id));
        cursorId_ = id;
        if (cursor_) SDL_SetCursor(cursor_.get());
    }

    Session& session_;
    platform::Driver& driver_;
    platform::Windows& windows_;
    host::EventLog log_;
    int scale_;
    SdlPtr<SDL_Window> window_;
    SdlPtr<SDL_Renderer> renderer_;
    SdlPtr<SDL_Texture> texture_;
    SdlPtr<SDL_Cursor> cursor_;
    SDL_SystemCursor cursorId_ = SDL_SYSTEM_CURSOR_ARROW;
    platform::RECT view_;
    std::vector<std::uint32_t> shown_;
    bool stale_ = true;    // input or a timer since the last composition
    bool exposed_ = true;  // the window needs its pixels again
    bool closed_ = false;
    std::uint64_t real_ = 0;      // SDL ticks the virtual clock has followed up to
    std::uint64_t deadline_ = 0;  // --for, in SDL ticks; 0 for none
    std::optional<platform::POINT> pointer_;
    int buttons_ = 0;
    std::set<int> keysDown_;  // virtual keys sent down and not up yet
};

#endif

}  // namespace

int ShowForm(Args args) {
    const std::optional<ShowOptions> options = ParseShowArgs(args);
    if (!options) return 2;
#ifdef KORVEX_HAVE_SDL
    Session session;
    session.OpenFile(options->formPath);
    const SdlVideo video;
    LiveWindow window(session,
                      "korvex - " + std::filesystem::path(options->formPath).filename().string(),
                      options->scale);
    window.Run(options->seconds);
    std::cout.flush();
    return 0;
#else
    std::fprintf(stderr,
                 "korvex show: this korvex was built without SDL2 (install libsdl2-dev, then "
                 "configure and build again)\n");
    return 1;
#endif
}

}  // namespace korvex::cli
