#pragma once
// The library's about box, frmAbout: its name, version, a few words about it and a link to its
// information page, in a modal form with the platform's caption bar and close box. Every
// control's ShowAboutBox ends up in ShowAboutBox below, which the library installs in the host.

#include <cstdint>
#include <string>

#include "forms/form.hpp"
#include "forms/frame.hpp"
#include "forms/label.hpp"
#include "host/control.hpp"
#include "platform/window.hpp"

namespace korvex::dialog {

class frmAbout {
  public:
    // The library's information page, the caption of the link label.
    static constexpr const char* kInfoAddress = "http://www.korvex-tools.de/info";
    // The link's colours: the classic palette's dark blue at rest, its light blue under the
    // pointer.
    static constexpr host::OLE_COLOR kLinkColor = 0x00800000;
    static constexpr host::OLE_COLOR kLinkHoverColor = 0x00FF0000;

    // Loaded and hidden, laid out; Me.Show(true) shows it modally.
    explicit frmAbout(platform::Platform& platform);

    // Opens an address in the user's browser, owned by `owner`: "http://" goes in front of
    // anything whose first seven characters are not exactly that, the screen-wide pointer is
    // the hourglass meanwhile, and a failure is only remembered in LastDllError.
    void OpenLink(platform::HWND owner, std::string address);
    // The shell's answer to the last OpenLink when it failed (32 or below), else 0.
    [[nodiscard]] std::int32_t LastDllError() const { return lastDllError_; }

    // The form and its objects, front to back in the order they are declared.
    forms::Form Me;
    forms::Frame Frame1;
    forms::Label lblProductName;
    forms::Label Label2;
    forms::Label lbl1;
    forms::Label Label1;
    forms::Label lblButton;

  private:
    std::int32_t lastDllError_ = 0;
};

// Loads the about box, shows it modally without an owner form and unloads it once the user
// has closed it. Error 5 in a host without a screen.
void ShowAboutBox(host::HostContext& context);

}  // namespace korvex::dialog
