#pragma once
// PopupMenu: a context menu shown at a screen point, the way the platform's TrackPopupMenu runs
// one: a topmost window in the classic menu look (menu colours, a one-pixel raised frame, the
// highlight bar, check marks) and a nested loop until an item is chosen or the menu is dismissed.
// It is built on the control face of the platform only, so every backend shows the same menu.
//
// Input while it is open (the menu holds the capture and sees every key first):
//
//   | input                          | effect                                                  |
//   |--------------------------------|---------------------------------------------------------|
//   | pointer over an item           | highlights it (separators and the frame highlight none) |
//   | button released over an item   | chooses it                                              |
//   | button pressed outside         | closes, nothing chosen                                  |
//   | Down / Up                      | next / previous item, wrapping, separators skipped      |
//   | Home / End                     | first / last item                                       |
//   | Enter                          | chooses the highlighted item (nothing highlighted: no-op) |
//   | Escape                         | closes, nothing chosen                                  |
//   | access letter                  | the item's "&" letter, else its first letter: the only  |
//   |                                | item with it is chosen; several: the next is highlighted |
//
// The window's text is "PopupMenu" and then the captions of the items one can choose, one a line,
// without their "&" marks: a driver finds an item there and reaches it with the keys above.

#include <cstdint>
#include <string>
#include <vector>

#include "platform/gdi.hpp"
#include "platform/window.hpp"

namespace korvex::forms {

struct MenuItem {
    std::string Caption;  // "-" is a separator
    bool Visible = true;
    bool Checked = false;
};

class PopupMenu {
  public:
    explicit PopupMenu(platform::Platform& platform) : platform_(platform) {}

    std::vector<MenuItem> Items;

    // Shows the menu with its top-left corner at `screen` (moved to stay on the screen) and runs
    // until it closes. Returns the index into Items of the chosen item, or -1. Without a shown
    // item it returns -1 at once.
    int Track(platform::POINT screen);

    // Whether Track is running (the open menu's window, else a zero handle).
    [[nodiscard]] platform::HWND Window() const { return window_; }

  private:
    platform::Platform& platform_;
    platform::HWND window_;
};

}  // namespace korvex::forms
