#include "foundation/sounds.hpp"

#include <array>
#include <exception>

#include "base/error.hpp"
#include "base/resources.hpp"

namespace korvex::foundation {

namespace {

// The platform's event sound aliases, in the order SystemSound numbers them.
constexpr std::array<std::string_view, 18> kSystemSounds = {
    "AppGPFault",     "ProgramClose",      "EmptyRecycleBin", "MailBeep",
    "Maximize",       "MenuCommand",       "MenuPopup",       "Minimize",
    "Open",           "RestoreDown",       "RestoreUp",       "RingIn",
    "Ringout",        "SystemExclamation", "SystemExit",      "SystemHand",
    "SystemQuestion", "SystemStart"};

// The directory helpers hand the platform a 255-character buffer and keep what it wrote.
constexpr std::size_t kDirectoryBuffer = 255;

std::string Clip(std::string text) {
    if (text.size() > kDirectoryBuffer) text.resize(kDirectoryBuffer);
    return text;
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// cSounds: every member swallows what goes wrong; a missing sound is silence.

cSounds::cSounds(platform::Platform& platform) : platform_(platform) {}

std::string_view cSounds::SystemSoundName(std::int32_t SoundIndex) {
    if (SoundIndex < 0 || SoundIndex >= static_cast<std::int32_t>(kSystemSounds.size())) return {};
    return kSystemSounds[static_cast<std::size_t>(SoundIndex)];
}

void cSounds::SystemSound(std::int32_t SoundIndex) {
    const std::string_view name = SystemSoundName(SoundIndex);
    if (name.empty()) return;
    try {
        platform_.sound().PlaySoundA(name, kSystemSoundFlags);
    } catch (const std::exception&) {
    }
}

void cSounds::SoundStop() {
    try {
        platform_.sound().PlaySoundA(std::string_view(""), kSoundStopFlags);
    } catch (const std::exception&) {
    }
}

void cSounds::SoundPlay(const std::string& SoundName, bool PlayAsync, bool PlayLoop) {
    std::uint32_t flags = 0;
    if (PlayAsync) flags |= platform::SND_ASYNC;
    if (PlayLoop) flags |= platform::SND_LOOP;
    flags |= platform::SND_NODEFAULT;
    try {
        platform_.sound().PlaySoundA(std::string_view(SoundName), flags);
    } catch (const std::exception&) {
    }
}

host::Variant cSounds::strWindowDirectory() {
    try {
        return host::Variant(Clip(platform_.shell().GetSystemDirectoryA()));
    } catch (const std::exception&) {
        return host::Variant(std::string());
    }
}

host::Variant cSounds::strTempPath() {
    try {
        return host::Variant(Clip(platform_.shell().GetTempPathA()));
    } catch (const std::exception&) {
        return host::Variant(std::string());
    }
}

// ---------------------------------------------------------------------------------------------
// Resources

std::vector<std::uint8_t> LoadResData(std::int32_t id, std::string_view type) {
    // Only the sounds are kept as typed data resources; they live under sounds/<id>.wav.
    if (type == "WAVE" && id >= kFirstWaveResource && id <= kLastWaveResource) {
        const auto bytes = resources::Find("sounds/" + std::to_string(id) + ".wav");
        if (!bytes.empty()) return {bytes.begin(), bytes.end()};
    }
    throw host::HostError(host::kErrResourceNotFound, "LoadResData");
}

ResourceSoundPlayer::ResourceSoundPlayer(platform::Platform& platform) : platform_(platform) {}

void ResourceSoundPlayer::PlaySound(std::int16_t ResourceId) {
    std::vector<std::uint8_t> image = LoadResData(ResourceId, "WAVE");
    // Start the new image first: the call replaces the old sound, after which the old bytes
    // are no longer read and may go.
    platform_.sound().sndPlaySoundA(std::span<const std::uint8_t>(image), kResourceSoundFlags);
    image_ = std::move(image);
}

void ResourceSoundPlayer::EndPlaySound() {
    platform_.sound().sndPlaySoundA(std::optional<std::string_view>(), 0);
    image_.clear();
}

}  // namespace korvex::foundation
