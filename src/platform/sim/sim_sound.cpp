#include "platform/sim/sim_sound.hpp"

#include <cstring>

namespace korvex::platform::sim {

namespace {

std::uint32_t Le32(std::span<const std::uint8_t> b, std::size_t at) {
    return static_cast<std::uint32_t>(b[at]) | static_cast<std::uint32_t>(b[at + 1]) << 8 |
           static_cast<std::uint32_t>(b[at + 2]) << 16 | static_cast<std::uint32_t>(b[at + 3]) << 24;
}

bool Tag(std::span<const std::uint8_t> b, std::size_t at, const char* tag) {
    return at + 4 <= b.size() && std::memcmp(b.data() + at, tag, 4) == 0;
}

std::size_t ChannelIndex(SoundRequest::Channel c) { return c == SoundRequest::Channel::PlaySound ? 0 : 1; }

}  // namespace

std::optional<std::int64_t> WaveDurationMs(std::span<const std::uint8_t> image) {
    if (image.size() < 12 || !Tag(image, 0, "RIFF") || !Tag(image, 8, "WAVE")) return std::nullopt;
    std::uint32_t byteRate = 0;
    std::size_t at = 12;
    while (at + 8 <= image.size()) {
        const std::uint32_t size = Le32(image, at + 4);
        if (Tag(image, at, "fmt ") && at + 8 + 12 <= image.size()) byteRate = Le32(image, at + 8 + 8);
        if (Tag(image, at, "data")) {
            if (byteRate == 0) return std::nullopt;
            return static_cast<std::int64_t>(size) * 1000 / byteRate;
        }
        at += 8 + size + (size & 1);
    }
    return std::nullopt;
}

const SoundRequest* SimSound::Playing(SoundRequest::Channel channel) const {
    const std::ptrdiff_t index = playing_[ChannelIndex(channel)];
    if (index < 0) return nullptr;
    const SoundRequest& r = requests_[static_cast<std::size_t>(index)];
    if (!(r.flags & SND_LOOP)) {
        const auto length = WaveDurationMs(r.image.empty() && r.name ? std::span<const std::uint8_t>(named_.at(*r.name))
                                                                        : std::span<const std::uint8_t>(r.image));
        if (length && clock_.Now() >= r.time + *length) return nullptr;
    }
    return &r;
}

bool SimSound::Start(SoundRequest request, std::span<const std::uint8_t> image) {
    const std::size_t channel = ChannelIndex(request.channel);
    request.time = clock_.Now();
    request.audible = WaveDurationMs(image).has_value();
    // A new sound on a channel replaces the one playing there; an unplayable one still stops it.
    playing_[channel] = request.audible ? static_cast<std::ptrdiff_t>(requests_.size()) : -1;
    const bool audible = request.audible;
    requests_.push_back(std::move(request));
    return audible;
}

bool SimSound::PlaySoundA(std::optional<std::string_view> name, std::uint32_t flags) {
    SoundRequest request{SoundRequest::Channel::PlaySound, name ? std::optional<std::string>(*name) : std::nullopt, {}, flags};
    if (!name || name->empty() || (flags & SND_PURGE)) {
        request.time = clock_.Now();
        requests_.push_back(std::move(request));
        playing_[0] = -1;
        return true;
    }
    auto it = named_.find(*name);
    return Start(std::move(request), it == named_.end() ? std::span<const std::uint8_t>() : it->second);
}

bool SimSound::sndPlaySoundA(std::span<const std::uint8_t> image, std::uint32_t flags) {
    SoundRequest request{SoundRequest::Channel::SndPlaySound, std::nullopt,
                         std::vector<std::uint8_t>(image.begin(), image.end()), flags | SND_MEMORY};
    return Start(std::move(request), image);
}

bool SimSound::sndPlaySoundA(std::optional<std::string_view> name, std::uint32_t flags) {
    SoundRequest request{SoundRequest::Channel::SndPlaySound, name ? std::optional<std::string>(*name) : std::nullopt, {}, flags};
    if (!name) {
        request.time = clock_.Now();
        requests_.push_back(std::move(request));
        playing_[1] = -1;
        return true;
    }
    auto it = named_.find(*name);
    return Start(std::move(request), it == named_.end() ? std::span<const std::uint8_t>() : it->second);
}

void SimSound::RegisterNamedSound(std::string name, std::vector<std::uint8_t> image) {
    named_[std::move(name)] = std::move(image);
}

std::intptr_t SimShell::ShellExecuteA(HWND owner, std::optional<std::string_view> verb, std::string_view file,
                                      std::string_view parameters, std::string_view directory, int showCommand) {
    requests_.push_back({owner, verb ? std::optional<std::string>(*verb) : std::nullopt, std::string(file),
                         std::string(parameters), std::string(directory), showCommand, clock_.Now()});
    return 42;  // above 32: the shell took it
}

}  // namespace korvex::platform::sim
