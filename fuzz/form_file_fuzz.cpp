// Form files come from disk: any text must load or give a HostError. What loads must save, and
// the saved text must load again to the same controls. The first save may normalise (a font
// size is saved rounded to whole points, and read back as saved); from then on saving and
// loading give the same text and the same bags. The loaded form must switch to run mode (or
// report why) and render.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/error.hpp"
#include "host/container.hpp"
#include "host/form_file.hpp"
#include "host/property_bag.hpp"
#include "session.hpp"

namespace {

using namespace korvex;

using cli::Session;

struct Saved {
    std::string name;
    std::string progId;
    host::JsonPropertyBag bag;
};

std::vector<Saved> Bags(const host::Container& form) {
    std::vector<Saved> out;
    for (const host::Site* site : form.Sites())
        out.push_back({site->Name(), site->Class().progId, form.SaveBag(*site)});
    return out;
}

// Loads a saved text into a fresh session, which must take it.
std::vector<Saved> Reload(const std::string& text, std::string& savedAgain) {
    Session session;
    host::LoadFormJson(session.form, text);
    savedAgain = host::SaveFormJson(session.form);
    return Bags(session.form);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    std::string saved;
    std::vector<Saved> bags;
    {
        // One session at a time, so the memory of a form at the size limits is counted once.
        Session first;
        try {
            host::LoadFormJson(first.form, text);
        } catch (const host::HostError&) {
            return 0;
        }
        saved = host::SaveFormJson(first.form);
        bags = Bags(first.form);

        // A control that fails to start reports it; the form stays whole and can be shown.
        try {
            first.form.SwitchMode(true);
        } catch (const host::HostError&) {
        }
        try {
            first.form.Show();
            (void)first.platform.driver().ComposeWindow(first.form.FormWindow());
        } catch (const host::HostError&) {
        }
    }
    std::string savedTwice, savedThrice;
    const std::vector<Saved> again = Reload(saved, savedTwice);
    const std::vector<Saved> third = Reload(savedTwice, savedThrice);

    if (again.size() != bags.size() || third.size() != bags.size()) __builtin_trap();
    for (std::size_t i = 0; i < bags.size(); ++i) {
        if (again[i].name != bags[i].name || again[i].progId != bags[i].progId ||
            third[i].name != bags[i].name)
            __builtin_trap();
        if (!(third[i].bag == again[i].bag)) __builtin_trap();
    }
    if (savedThrice != savedTwice) __builtin_trap();
    return 0;
}
