#include "host/control.hpp"

namespace korvex::host {

HostContext::HostContext(platform::Platform* platform)
    : platform_(platform), defaultFont_(std::make_shared<StdFont>("MS Sans Serif", 8.25)) {}

void HostContext::ShowAboutBox() {
    if (!aboutBox_)
        throw HostError(kErrInvalidCall, "The about box is not available in this host", "Host");
    // The about box is one form per thread: asked for again while it is shown modally, it is
    // the host's error 400, as showing any shown form modally is.
    if (aboutBoxOpen_) throw HostError(kErrFormAlreadyShown, "frmAbout");
    aboutBoxOpen_ = true;
    struct Closed {
        bool& open;
        ~Closed() { open = false; }
    } closed{aboutBoxOpen_};
    aboutBox_();
}

void Control::RaiseEventArgs(std::int32_t id, std::span<Variant> args) {
    if (!site_) return;
    const EventInfo* event = TypeInfo().Event(id);
    if (!event) {
        throw HostError(kErrInvalidCall,
                        TypeInfo().name + " has no event number " + std::to_string(id),
                        TypeInfo().name);
    }
    if (args.size() != event->params.size()) {
        throw HostError(kErrWrongArguments, TypeInfo().name + "." + event->name, TypeInfo().name);
    }
    site_->RaiseEvent(*event, args);
}

AmbientProperties Control::Ambient() const {
    if (site_) return site_->Ambient();
    AmbientProperties ambient;
    ambient.Font = std::make_shared<StdFont>("MS Sans Serif", 8.25);
    return ambient;
}

void Control::PropertyChanged(std::string_view name) {
    if (site_) site_->PropertyChanged(name);
}

void Control::OpenAboutBox() {
    if (!site_) throw HostError(kErrInvalidCall, "The control is not sited", TypeInfo().name);
    site_->Context().ShowAboutBox();
}

std::int16_t CheckMousePointer(const Variant& value) {
    const std::int16_t pointer = value.ToInteger();
    if ((pointer < 0 || pointer > 15) && pointer != kMousePointerCustom) {
        throw HostError(kErrInvalidPropertyValue, "MousePointer");
    }
    return pointer;
}

std::int16_t EffectiveMousePointer(std::int16_t pointer, const std::shared_ptr<StdPicture>& icon) {
    if (pointer == kMousePointerCustom && (!icon || icon->Type() == PictureType::None)) return 0;
    return pointer;
}

std::vector<std::pair<std::string, std::int32_t>> MousePointerMembers(std::string_view customName) {
    static constexpr std::pair<std::string_view, std::int32_t> kNames[] = {
        {"Voreinstellung", 0},
        {"Pfeil", 1},
        {"Kreuz", 2},
        {"Icursor", 3},
        {"Symbol", 4},
        {"Größenänderung", 5},
        {"Größenänderung_No_Sw", 6},
        {"Größenänderung_N_O", 7},
        {"Größenänderung_Nw_So", 8},
        {"Größenänderung_W_O", 9},
        {"Aufwärtspfeil", 10},
        {"Sanduhr", 11},
        {"Nicht_ablegen", 12},
        {"Pfeil_Sanduhr", 13},
        {"Pfeil_Fragezeichen", 14},
        {"Größenänderung_Alle", 15},
    };
    std::vector<std::pair<std::string, std::int32_t>> members;
    for (const auto& [name, value] : kNames) members.emplace_back(std::string(name), value);
    members.emplace_back(std::string(customName), kMousePointerCustom);
    return members;
}

}  // namespace korvex::host
