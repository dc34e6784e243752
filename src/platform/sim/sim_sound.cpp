#include "platform/sim/sim_sound.hpp"

#include "base/error.hpp"
#include "base/file.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>

namespace korvex::platform::sim {

namespace {

std::uint32_t Le32(std::span<const std::uint8_t> b, std::size_t at) {
    return static_cast<std::uint32_t>(b[at]) | static_cast<std::uint32_t>(b[at + 1]) << 8 |
           static_cast<std::uint32_t>(b[at + 2]) << 16 |
           static_cast<std::uint32_t>(b[at + 3]) << 24;
}

bool Tag(std::span<const std::uint8_t> b, std::size_t at, const char* tag) {
    return at + 4 <= b.size() && std::memcmp(b.data() + at, tag, 4) == 0;
}

std::uint16_t Le16(std::span<const std::uint8_t> b, std::size_t at) {
    return static_cast<std::uint16_t>(b[at] | b[at + 1] << 8);
}

std::size_t ChannelIndex(SoundRequest::Channel c) {
    return c == SoundRequest::Channel::PlaySound ? 0 : 1;
}

// One frame of a PCM image as a value in -1..1, its channels averaged.
double FrameValue(const WaveFormat& wave, std::size_t frame) {
    const std::size_t bytes = wave.bitsPerSample / 8u;
    const std::size_t at = frame * bytes * wave.channels;
    double sum = 0;
    for (std::size_t c = 0; c < wave.channels; ++c) {
        const std::size_t p = at + c * bytes;
        if (bytes == 1) {
            sum += (static_cast<int>(wave.data[p]) - 128) / 128.0;  // 8-bit PCM is unsigned
        } else {
            sum += static_cast<std::int16_t>(Le16(wave.data, p)) / 32768.0;
        }
    }
    return sum / wave.channels;
}

void Put16(std::vector<char>& out, std::uint16_t v) {
    out.push_back(static_cast<char>(v & 0xFF));
    out.push_back(static_cast<char>(v >> 8));
}

void Put32(std::vector<char>& out, std::uint32_t v) {
    for (int shift = 0; shift < 32; shift += 8)
        out.push_back(static_cast<char>((v >> shift) & 0xFF));
}

}  // namespace

std::optional<std::int64_t> WaveDurationMs(std::span<const std::uint8_t> image) {
    if (image.size() < 12 || !Tag(image, 0, "RIFF") || !Tag(image, 8, "WAVE")) return std::nullopt;
    std::uint32_t byteRate = 0;
    std::size_t at = 12;
    while (at + 8 <= image.size()) {
        const std::uint32_t size = Le32(image, at + 4);
        if (Tag(image, at, "fmt ") && at + 8 + 12 <= image.size())
            byteRate = Le32(image, at + 8 + 8);
        if (Tag(image, at, "data")) {
            if (byteRate == 0) return std::nullopt;
            return static_cast<std::int64_t>(size) * 1000 / byteRate;
        }
        at += 8 + size + (size & 1);
    }
    return std::nullopt;
}

std::optional<WaveFormat> ParseWave(std::span<const std::uint8_t> image) {
    if (image.size() < 12 || !Tag(image, 0, "RIFF") || !Tag(image, 8, "WAVE")) return std::nullopt;
    std::optional<WaveFormat> format;
    std::size_t at = 12;
    while (at + 8 <= image.size()) {
        const std::uint32_t size = Le32(image, at + 4);
        if (Tag(image, at, "fmt ") && size >= 16 && at + 8 + 16 <= image.size()) {
            if (Le16(image, at + 8) != 1) return std::nullopt;  // PCM only
            format =
                WaveFormat{Le16(image, at + 10), Le32(image, at + 12), Le16(image, at + 22), {}};
            if (format->channels == 0 || format->sampleRate == 0 ||
                (format->bitsPerSample != 8 && format->bitsPerSample != 16))
                return std::nullopt;
        }
        if (Tag(image, at, "data")) {
            if (!format) return std::nullopt;
            const std::size_t length = std::min<std::size_t>(size, image.size() - (at + 8));
            format->data = image.subspan(at + 8, length);
            return format;
        }
        at += 8 + static_cast<std::size_t>(size) + (size & 1);
    }
    return std::nullopt;
}

std::span<const std::uint8_t> SimSound::ImageOf(const SoundRequest& request) const {
    if (!request.image.empty() || !request.name) return request.image;
    const auto it = named_.find(*request.name);
    return it == named_.end() ? std::span<const std::uint8_t>()
                              : std::span<const std::uint8_t>(it->second);
}

const SoundRequest* SimSound::Playing(SoundRequest::Channel channel) const {
    const std::ptrdiff_t index = playing_[ChannelIndex(channel)];
    if (index < 0) return nullptr;
    const SoundRequest& r = requests_[static_cast<std::size_t>(index)];
    if (!(r.flags & SND_LOOP)) {
        const auto length = WaveDurationMs(ImageOf(r));
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
    SoundRequest request{SoundRequest::Channel::PlaySound,
                         name ? std::optional<std::string>(*name) : std::nullopt,
                         {},
                         flags};
    if (!name || name->empty() || (flags & SND_PURGE)) {
        request.time = clock_.Now();
        requests_.push_back(std::move(request));
        playing_[0] = -1;
        return true;
    }
    auto it = named_.find(*name);
    return Start(std::move(request),
                 it == named_.end() ? std::span<const std::uint8_t>() : it->second);
}

bool SimSound::sndPlaySoundA(std::span<const std::uint8_t> image, std::uint32_t flags) {
    SoundRequest request{SoundRequest::Channel::SndPlaySound, std::nullopt,
                         std::vector<std::uint8_t>(image.begin(), image.end()), flags | SND_MEMORY};
    return Start(std::move(request), image);
}

bool SimSound::sndPlaySoundA(std::optional<std::string_view> name, std::uint32_t flags) {
    SoundRequest request{SoundRequest::Channel::SndPlaySound,
                         name ? std::optional<std::string>(*name) : std::nullopt,
                         {},
                         flags};
    if (!name) {
        request.time = clock_.Now();
        requests_.push_back(std::move(request));
        playing_[1] = -1;
        return true;
    }
    auto it = named_.find(*name);
    return Start(std::move(request),
                 it == named_.end() ? std::span<const std::uint8_t>() : it->second);
}

// Each audible request plays from its start until the next request on its channel (any request
// there replaces or stops it), its own end (unless looping) or the end of the timeline.
std::vector<std::int16_t> SimSound::RenderTimeline(std::optional<std::int64_t> endTime) const {
    struct Segment {
        WaveFormat wave;
        std::int64_t start;  // virtual ms
        std::int64_t stop;   // virtual ms; -1 for a loop nothing ended
        bool loop;
    };
    std::vector<Segment> segments;
    std::int64_t lastEnd = clock_.Now();
    for (std::size_t i = 0; i < requests_.size(); ++i) {
        const SoundRequest& r = requests_[i];
        if (!r.audible) continue;
        const auto wave = ParseWave(ImageOf(r));
        if (!wave) continue;
        std::int64_t stop = -1;
        for (std::size_t j = i + 1; j < requests_.size(); ++j) {
            if (requests_[j].channel == r.channel) {
                stop = requests_[j].time;
                break;
            }
        }
        const bool loop = (r.flags & SND_LOOP) != 0;
        if (!loop) {
            const std::int64_t frames = static_cast<std::int64_t>(
                wave->data.size() / (wave->bitsPerSample / 8u * wave->channels));
            const std::int64_t natural =
                r.time + (frames * 1000 + wave->sampleRate - 1) / wave->sampleRate;
            stop = stop < 0 ? natural : std::min(stop, natural);
        }
        if (stop >= 0) lastEnd = std::max(lastEnd, stop);
        segments.push_back({*wave, r.time, stop, loop});
    }
    const std::int64_t end = std::max<std::int64_t>(endTime.value_or(lastEnd), 0);
    const auto toSample = [](std::int64_t ms) {
        return static_cast<std::size_t>(ms * kRenderRate / 1000);
    };
    std::vector<double> mix(toSample(end), 0.0);
    for (const Segment& segment : segments) {
        const std::size_t frames =
            segment.wave.data.size() / (segment.wave.bitsPerSample / 8u * segment.wave.channels);
        if (frames == 0) continue;
        const std::size_t first = toSample(segment.start);
        const std::size_t last =
            std::min(mix.size(), segment.stop < 0 ? mix.size() : toSample(segment.stop));
        const double step = static_cast<double>(segment.wave.sampleRate) / kRenderRate;
        for (std::size_t k = first; k < last; ++k) {
            // Linear interpolation between source frames; a loop wraps to its first frame.
            const double position = static_cast<double>(k - first) * step;
            auto index = static_cast<std::size_t>(position);
            if (!segment.loop && index >= frames) break;
            const double fraction = position - static_cast<double>(index);
            const std::size_t a = index % frames;
            const std::size_t b = segment.loop ? (a + 1) % frames : std::min(a + 1, frames - 1);
            mix[k] += FrameValue(segment.wave, a) * (1 - fraction) +
                      FrameValue(segment.wave, b) * fraction;
        }
    }
    std::vector<std::int16_t> out(mix.size());
    std::transform(mix.begin(), mix.end(), out.begin(), [](double v) {
        return static_cast<std::int16_t>(std::lround(std::clamp(v * 32767.0, -32768.0, 32767.0)));
    });
    return out;
}

bool SimSound::WriteWav(const std::filesystem::path& path,
                        std::optional<std::int64_t> endTime) const {
    const std::vector<std::int16_t> samples = RenderTimeline(endTime);
    const auto dataBytes = static_cast<std::uint32_t>(samples.size() * 2);
    std::vector<char> file;
    file.reserve(44 + dataBytes);
    file.insert(file.end(), {'R', 'I', 'F', 'F'});
    Put32(file, 36 + dataBytes);
    file.insert(file.end(), {'W', 'A', 'V', 'E', 'f', 'm', 't', ' '});
    Put32(file, 16);
    Put16(file, 1);  // PCM
    Put16(file, 1);  // mono
    Put32(file, kRenderRate);
    Put32(file, kRenderRate * 2);
    Put16(file, 2);
    Put16(file, 16);
    file.insert(file.end(), {'d', 'a', 't', 'a'});
    Put32(file, dataBytes);
    for (std::int16_t v : samples) Put16(file, static_cast<std::uint16_t>(v));
    try {
        WriteFileReplacing(path.string(), {file.data(), file.size()});
    } catch (const host::HostError&) {
        return false;
    }
    return true;
}

void SimSound::RegisterNamedSound(std::string name, std::vector<std::uint8_t> image) {
    named_[std::move(name)] = std::move(image);
}

std::intptr_t SimShell::ShellExecuteA(HWND owner, std::optional<std::string_view> verb,
                                      std::string_view file, std::string_view parameters,
                                      std::string_view directory, int showCommand) {
    requests_.push_back({owner, verb ? std::optional<std::string>(*verb) : std::nullopt,
                         std::string(file), std::string(parameters), std::string(directory),
                         showCommand, clock_.Now()});
    return 42;  // above 32: the shell took it
}

}  // namespace korvex::platform::sim
