#include "forms/popup_menu.hpp"

#include <algorithm>
#include <cctype>
#include <optional>

#include "forms/graphics.hpp"
#include "platform/shell_font.hpp"

namespace korvex::forms {

namespace {

using platform::POINT;
using platform::RECT;

constexpr int VK_END = 0x23;
constexpr int VK_HOME = 0x24;
constexpr int VK_UP = 0x26;
constexpr int VK_DOWN = 0x28;

// Layout in pixels: a one-pixel frame, two pixels of menu colour inside it, then the items; a
// column for the check mark left of the text and as much room right of it.
constexpr int kFrame = 1;
constexpr int kPad = 2;
constexpr int kCheckColumn = 16;
constexpr int kRightMargin = 16;
constexpr int kSeparatorHeight = 8;

bool IsSeparator(const MenuItem& item) {
    return item.Caption == "-";
}

// The caption without its "&" marks ("&&" is a plain "&"), and the access letter they name.
std::pair<std::string, char> Strip(const std::string& caption) {
    std::string text;
    char access = 0;
    for (std::size_t i = 0; i < caption.size(); ++i) {
        if (caption[i] == '&' && i + 1 < caption.size()) {
            ++i;
            if (caption[i] != '&' && access == 0)
                access = static_cast<char>(std::tolower(static_cast<unsigned char>(caption[i])));
        }
        text += caption[i];
    }
    if (access == 0 && !text.empty())
        access = static_cast<char>(std::tolower(static_cast<unsigned char>(text[0])));
    return {text, access};
}

// The menu's window: layout, painting and input. Track owns it for the time the menu is open.
class MenuWindow final : public platform::WindowHandler {
  public:
    MenuWindow(platform::Platform& platform, const std::vector<MenuItem>& items)
        : platform_(platform),
          gdi_(platform.gdi()),
          items_(items),
          font_(gdi_, platform::CreateShellFont(gdi_, platform::FW_NORMAL)) {
        const platform::HDC dc = gdi_.CreateCompatibleDC({});
        const platform::HGDIOBJ old = gdi_.SelectObject(dc, font_.get());
        platform::TEXTMETRIC tm;
        gdi_.GetTextMetrics(dc, &tm);
        itemHeight_ = tm.tmHeight + 5;
        int textWidth = 0;
        int y = kFrame + kPad;
        for (std::size_t i = 0; i < items_.size(); ++i) {
            rows_.push_back({y, y});
            if (!items_[i].Visible) continue;
            if (IsSeparator(items_[i])) {
                y += kSeparatorHeight;
            } else {
                platform::SIZE size{};
                gdi_.GetTextExtentPoint32(dc, Strip(items_[i].Caption).first, &size);
                textWidth = std::max(textWidth, static_cast<int>(size.cx));
                y += itemHeight_;
            }
            rows_.back().second = y;
        }
        gdi_.SelectObject(dc, old);
        gdi_.DeleteDC(dc);
        size_ = {2 * (kFrame + kPad) + kCheckColumn + textWidth + kRightMargin, y + kPad + kFrame};
    }

    [[nodiscard]] platform::SIZE Size() const { return size_; }
    [[nodiscard]] bool Selectable(std::size_t i) const {
        return items_[i].Visible && !IsSeparator(items_[i]);
    }
    [[nodiscard]] bool AnySelectable() const {
        for (std::size_t i = 0; i < items_.size(); ++i)
            if (Selectable(i)) return true;
        return false;
    }

    platform::HWND window;
    bool open = true;
    int chosen = -1;

    // ---- keys (from the event loop's filter, so the menu sees them before any window)
    void OnMenuKey(const platform::KeyEvent& event) {
        if (event.kind == platform::KeyEvent::Kind::Press) {
            const char letter = static_cast<char>(std::tolower(event.keyCode & 0xFF));
            std::vector<std::size_t> matches;
            for (std::size_t i = 0; i < items_.size(); ++i)
                if (Selectable(i) && Strip(items_[i].Caption).second == letter)
                    matches.push_back(i);
            if (matches.size() == 1) return Choose(matches.front());
            if (matches.empty()) return;
            const auto next = std::find_if(matches.begin(), matches.end(),
                                           [this](std::size_t i) { return !hot_ || i > *hot_; });
            return Highlight(next != matches.end() ? *next : matches.front());
        }
        if (event.kind != platform::KeyEvent::Kind::Down) return;
        switch (event.keyCode) {
            case platform::VK_ESCAPE:
                open = false;
                break;
            case platform::VK_RETURN:
                if (hot_) Choose(*hot_);
                break;
            case VK_DOWN:
                Step(+1);
                break;
            case VK_UP:
                Step(-1);
                break;
            case VK_HOME:
                hot_.reset(), Step(+1);
                break;
            case VK_END:
                hot_.reset(), Step(-1);
                break;
            default:
                break;
        }
    }

  private:
    // ---- mouse: the menu holds the capture, so presses anywhere come here
    void OnMouse(const platform::MouseEvent& event) override {
        const std::optional<std::size_t> at = ItemAt(event.client);
        const bool inside = event.client.x >= 0 && event.client.y >= 0 &&
                            event.client.x < size_.cx && event.client.y < size_.cy;
        switch (event.kind) {
            case platform::MouseEvent::Kind::Move:
                if (at) Highlight(*at);
                break;
            case platform::MouseEvent::Kind::Down:
            case platform::MouseEvent::Kind::DoubleClick:
                if (!inside) open = false;
                break;
            case platform::MouseEvent::Kind::Up:
                if (at) Choose(*at);
                break;
        }
    }

    void OnCaptureLost() override { open = false; }

    void OnPaint(platform::HDC dc, const RECT& client) override {
        const auto colour = [this](int index) { return gdi_.GetSysColor(index); };
        GdiObject menu = MakeBrush(gdi_, colour(platform::COLOR_MENU));
        gdi_.FillRect(dc, client, static_cast<platform::HBRUSH>(menu.get()));
        RECT frame = client;
        gdi_.DrawEdge(dc, &frame, platform::BDR_RAISEDINNER, platform::BF_RECT);
        const platform::HGDIOBJ oldFont = gdi_.SelectObject(dc, font_.get());
        gdi_.SetBkMode(dc, platform::TRANSPARENT);
        for (std::size_t i = 0; i < items_.size(); ++i) {
            if (!items_[i].Visible) continue;
            const RECT row{kFrame + kPad, rows_[i].first, size_.cx - kFrame - kPad,
                           rows_[i].second};
            if (IsSeparator(items_[i])) {
                const int y = (row.top + row.bottom) / 2 - 1;
                GdiObject shadow = MakeBrush(gdi_, colour(platform::COLOR_BTNSHADOW));
                GdiObject light = MakeBrush(gdi_, colour(platform::COLOR_BTNHIGHLIGHT));
                gdi_.FillRect(dc, {row.left + 1, y, row.right - 1, y + 1},
                              static_cast<platform::HBRUSH>(shadow.get()));
                gdi_.FillRect(dc, {row.left + 1, y + 1, row.right - 1, y + 2},
                              static_cast<platform::HBRUSH>(light.get()));
                continue;
            }
            const bool hot = hot_ && *hot_ == i;
            const platform::COLORREF text =
                colour(hot ? platform::COLOR_HIGHLIGHTTEXT : platform::COLOR_MENUTEXT);
            if (hot) {
                GdiObject bar = MakeBrush(gdi_, colour(platform::COLOR_HIGHLIGHT));
                gdi_.FillRect(dc, row, static_cast<platform::HBRUSH>(bar.get()));
            }
            gdi_.SetTextColor(dc, text);
            const int textTop = row.top + (itemHeight_ - font_height()) / 2;
            gdi_.TextOut(dc, row.left + kCheckColumn, textTop, Strip(items_[i].Caption).first);
            if (items_[i].Checked) DrawCheck(dc, row, text);
        }
        gdi_.SelectObject(dc, oldFont);
    }

    // The classic check mark: a 7 x 7 tick, three pixels thick, centred in the check column.
    void DrawCheck(platform::HDC dc, const RECT& row, platform::COLORREF color) {
        const int x = row.left + (kCheckColumn - 7) / 2;
        const int y = row.top + (itemHeight_ - 7) / 2;
        // Column heights of the tick from its left end: down for three columns, then up.
        constexpr int tops[7] = {2, 3, 4, 3, 2, 1, 0};
        for (int c = 0; c < 7; ++c)
            for (int r = 0; r < 3; ++r) gdi_.SetPixel(dc, x + c, y + tops[c] + r, color);
    }

    [[nodiscard]] int font_height() const { return itemHeight_ - 5; }

    [[nodiscard]] std::optional<std::size_t> ItemAt(POINT p) const {
        if (p.x < kFrame + kPad || p.x >= size_.cx - kFrame - kPad) return {};
        for (std::size_t i = 0; i < items_.size(); ++i)
            if (Selectable(i) && p.y >= rows_[i].first && p.y < rows_[i].second) return i;
        return {};
    }

    void Highlight(std::size_t i) {
        if (hot_ == i) return;
        hot_ = i;
        platform_.windows().InvalidateWindow(window);
    }

    void Step(int direction) {
        const auto n = static_cast<int>(items_.size());
        int i = hot_ ? static_cast<int>(*hot_) : (direction > 0 ? -1 : n);
        for (int tries = 0; tries < n; ++tries) {
            i = ((i + direction) % n + n) % n;
            if (Selectable(static_cast<std::size_t>(i)))
                return Highlight(static_cast<std::size_t>(i));
        }
    }

    void Choose(std::size_t i) {
        chosen = static_cast<int>(i);
        open = false;
    }

    platform::Platform& platform_;
    platform::Gdi& gdi_;
    const std::vector<MenuItem>& items_;
    GdiObject font_;
    int itemHeight_ = 0;
    std::vector<std::pair<int, int>> rows_;  // top and bottom of each item (hidden: empty)
    platform::SIZE size_{};
    std::optional<std::size_t> hot_;
};

}  // namespace

int PopupMenu::Track(POINT screen) {
    MenuWindow menu(platform_, Items);
    if (!menu.AnySelectable()) return -1;
    platform::Windows& windows = platform_.windows();
    const platform::SIZE size = menu.Size();
    // Kept on the screen: flipped to the left or above the point where it would run off.
    const platform::SIZE screenSize = windows.ScreenSize();
    std::int32_t x = screen.x, y = screen.y;
    if (x + size.cx > screenSize.cx) x = std::max(0, x - size.cx);
    if (y + size.cy > screenSize.cy) y = std::max(0, y - size.cy);

    std::string captions = "PopupMenu\n";
    for (const MenuItem& item : Items)
        if (item.Visible && !IsSeparator(item)) captions += Strip(item.Caption).first + "\n";

    menu.window = windows.CreateWindow({}, {x, y, x + size.cx, y + size.cy}, {.topmost = true},
                                       &menu, captions);
    // Whatever ends the loop (a choice, a dismissal, an error of the loop) takes the menu away.
    struct Cleanup {
        PopupMenu& self;
        MenuWindow& menu;
        platform::Platform& platform;
        std::uint32_t filter;
        ~Cleanup() {
            platform.loop().RemoveKeyFilter(filter);
            if (platform.windows().GetCapture() == menu.window) platform.windows().ReleaseCapture();
            platform.windows().DestroyWindow(menu.window);
            self.window_ = {};
        }
    } cleanup{
        *this, menu, platform_,
        platform_.loop().AddKeyFilter([&menu](const platform::KeyEvent& event, platform::HWND) {
            menu.OnMenuKey(event);
            return true;
        })};
    window_ = menu.window;
    windows.ShowWindow(menu.window, true);
    windows.SetCapture(menu.window);
    platform_.loop().RunModal([&menu] { return menu.open; }, "PopupMenu");
    return menu.chosen;
}

}  // namespace korvex::forms
