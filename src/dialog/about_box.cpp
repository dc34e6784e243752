#include "dialog/about_box.hpp"

#include <exception>
#include <memory>

#include "base/error.hpp"
#include "platform/sound.hpp"

namespace korvex::dialog {

namespace {

// The version the about box names; two blanks after the word, as it always had.
constexpr const char* kVersionText = "Version  0.06.09";

constexpr const char* kInformation =
    "Korvex-Tools ist eine Bibliothek visueller Steuerelemente für Ihre Formulare: "
    "Schaltflächen, Rahmen, Hyperlinks, 3D-Beschriftungen, Fortschrittsanzeigen, Lineale, "
    "Drehfelder, Verzeichnisbäume und Dialoge.";

std::shared_ptr<host::StdFont> MakeFont(const char* name, double size, bool bold = false) {
    return std::make_shared<host::StdFont>(name, size, bold);
}

}  // namespace

// Layout in twips: a client area of 5400 x 3300 with the frame 120 in from the sides and the
// labels 240 in from the frame's edge.
frmAbout::frmAbout(platform::Platform& platform)
    : Me(platform, "frmAbout"),
      Frame1(Me.Client()),
      lblProductName(Frame1),
      Label2(Frame1),
      lbl1(Frame1),
      Label1(Frame1),
      lblButton(Frame1) {
    Me.Caption("Programminformation");
    Me.ClientSize(5400, 3300);
    Frame1.Move(120, 60, 5160, 3120);

    const auto place = [](forms::Label& label, float top, float height) {
        label.BackStyle(0);
        label.Move(240, top, 4680, height);
    };
    lblProductName.Font(MakeFont("Arial", 16, true));
    lblProductName.ForeColor(kLinkColor);
    lblProductName.Caption("Korvex-Tools");
    place(lblProductName, 300, 450);

    Label2.Font(MakeFont("Arial", 9));
    Label2.Caption(kVersionText);
    place(Label2, 780, 255);

    lbl1.Font(MakeFont("Arial", 9));
    lbl1.Caption(kInformation);
    place(lbl1, 1140, 1080);

    Label1.Caption("Weitere Informationen finden Sie im Internet:");
    place(Label1, 2340, 255);

    auto linkFont = MakeFont("Tahoma", 8);
    linkFont->Underline(true);
    lblButton.Font(linkFont);
    lblButton.ForeColor(kLinkColor);
    lblButton.Caption(kInfoAddress);
    place(lblButton, 2610, 255);
    // Only the address itself is the link, not the empty rest of its line.
    lblButton.AutoSize(true);

    lblButton.events.Click = [this] { OpenLink(Me.hWnd(), lblButton.Caption()); };
    lblButton.events.MouseMove = [this](std::int16_t, std::int16_t, float, float) {
        lblButton.ForeColor(kLinkHoverColor);
    };
    // Leaving the link towards the text is what puts it back to rest.
    lbl1.events.MouseMove = [this](std::int16_t, std::int16_t, float, float) {
        lblButton.ForeColor(kLinkColor);
    };
}

void frmAbout::OpenLink(platform::HWND owner, std::string address) {
    Me.ScreenMousePointer(11);  // hourglass
    if (address.compare(0, 7, "http://") != 0) address.insert(0, "http://");
    std::intptr_t result = 0;
    try {
        result = Me.Platform().shell().ShellExecuteA(owner, std::string_view("Open"), address, "",
                                                     "", platform::SW_SHOWMAXIMIZED);
    } catch (const std::exception&) {
        // No browser, a bad address: the user sees nothing happen, and the pointer comes back.
    }
    lastDllError_ = result > 32 ? 0 : static_cast<std::int32_t>(result);
    Me.ScreenMousePointer(0);
}

void ShowAboutBox(host::HostContext& context) {
    platform::Platform* platform = context.Platform();
    if (!platform)
        throw host::HostError(host::kErrInvalidCall, "The about box needs a screen", "frmAbout");
    frmAbout form(*platform);
    form.Me.Show(true);
    form.Me.Unload();
}

}  // namespace korvex::dialog
