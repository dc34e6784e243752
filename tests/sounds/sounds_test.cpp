// The sound services on the virtual machine: what cSounds and the resource player ask of the
// platform, what the recording device then has playing on each channel over virtual time, the
// six built-in sounds byte for byte, and the device's rendering of a session into a WAVE file.

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "base/error.hpp"
#include "base/resources.hpp"
#include "foundation/sounds.hpp"
#include "platform/sim/sim_platform.hpp"
#include "support/shell_platform.hpp"

using namespace korvex;
using platform::sim::SoundRequest;
using Channel = SoundRequest::Channel;

namespace {

std::uint32_t Le32(const std::vector<std::uint8_t>& b, std::size_t at) {
    return b[at] | b[at + 1] << 8 | b[at + 2] << 16 | static_cast<std::uint32_t>(b[at + 3]) << 24;
}
std::uint16_t Le16(const std::vector<std::uint8_t>& b, std::size_t at) {
    return static_cast<std::uint16_t>(b[at] | b[at + 1] << 8);
}

// A PCM wave made here: `frames` frames of a constant non-zero level.
std::vector<std::uint8_t> MakeWave(std::uint32_t rate, std::uint16_t bits, std::uint32_t frames) {
    const std::uint32_t block = bits / 8u;
    std::vector<std::uint8_t> w;
    auto put32 = [&w](std::uint32_t v) { for (int s = 0; s < 32; s += 8) w.push_back(static_cast<std::uint8_t>(v >> s)); };
    auto put16 = [&w](std::uint16_t v) { w.push_back(static_cast<std::uint8_t>(v)); w.push_back(static_cast<std::uint8_t>(v >> 8)); };
    auto tag = [&w](const char* t) { for (int i = 0; i < 4; ++i) w.push_back(static_cast<std::uint8_t>(t[i])); };
    tag("RIFF");
    put32(36 + frames * block);
    tag("WAVE");
    tag("fmt ");
    put32(16);
    put16(1);
    put16(1);
    put32(rate);
    put32(rate * block);
    put16(static_cast<std::uint16_t>(block));
    put16(bits);
    tag("data");
    put32(frames * block);
    for (std::uint32_t i = 0; i < frames; ++i) {
        if (bits == 8) w.push_back(192);
        else put16(16384);
    }
    return w;
}

// A platform whose shell fails every query, to see the directory helpers swallow it.
class FailingShell final : public platform::Shell {
public:
    std::intptr_t ShellExecuteA(platform::HWND, std::optional<std::string_view>, std::string_view, std::string_view,
                                std::string_view, int) override {
        throw std::runtime_error("no shell");
    }
    std::string GetSystemDirectoryA() override { throw host::HostError(host::kErrDeviceUnavailable); }
    std::string GetTempPathA() override { throw host::HostError(host::kErrDeviceUnavailable); }
};

class SoundsTest : public ::testing::Test {
protected:
    const std::vector<SoundRequest>& Requests() { return platform.sound().Requests(); }
    void Advance(std::int64_t ms) { platform.driver().Advance(ms); }

    platform::sim::SimPlatform platform;
    foundation::cSounds sounds{platform};
    foundation::ResourceSoundPlayer player{platform};
};

}  // namespace

// ---------------------------------------------------------------------------------------------
// cSounds

TEST_F(SoundsTest, SystemSoundPlaysTheNamedEventAsynchronouslyWithoutDefault) {
    platform.sound().RegisterNamedSound("SystemExclamation", MakeWave(11025, 8, 1103));
    sounds.SystemSound(13);
    ASSERT_EQ(Requests().size(), 1u);
    EXPECT_EQ(Requests()[0].channel, Channel::PlaySound);
    EXPECT_EQ(Requests()[0].name, "SystemExclamation");
    EXPECT_EQ(Requests()[0].flags, 0x83u);
    EXPECT_NE(platform.sound().Playing(Channel::PlaySound), nullptr);
    Advance(100);
    EXPECT_EQ(platform.sound().Playing(Channel::PlaySound), nullptr) << "a 100 ms sound is over after 100 ms";

    // The ends of the table and a name whose spelling is its own.
    sounds.SystemSound(0);
    sounds.SystemSound(12);
    sounds.SystemSound(17);
    ASSERT_EQ(Requests().size(), 4u);
    EXPECT_EQ(Requests()[1].name, "AppGPFault");
    EXPECT_EQ(Requests()[2].name, "Ringout");
    EXPECT_EQ(Requests()[3].name, "SystemStart");
    // An event the user gave no sound is silence, not the default beep.
    EXPECT_FALSE(Requests()[3].audible);
}

TEST_F(SoundsTest, SystemSoundOutsideTheTableIsSilentAndRaisesNothing) {
    EXPECT_NO_THROW(sounds.SystemSound(18));
    EXPECT_NO_THROW(sounds.SystemSound(-1));
    EXPECT_NO_THROW(sounds.SystemSound(1 << 30));
    EXPECT_TRUE(Requests().empty());
}

TEST_F(SoundsTest, SoundPlayFlagsAndALoopThatRunsUntilSoundStop) {
    platform.sound().RegisterNamedSound("C:\\Sounds\\ding.wav", MakeWave(11025, 8, 2205));  // 200 ms
    sounds.SoundPlay("C:\\Sounds\\ding.wav", false, false);
    sounds.SoundPlay("C:\\Sounds\\ding.wav", true, false);
    sounds.SoundPlay("C:\\Sounds\\ding.wav", false, true);
    sounds.SoundPlay("C:\\Sounds\\ding.wav", true, true);
    ASSERT_EQ(Requests().size(), 4u);
    EXPECT_EQ(Requests()[0].flags, 0x02u);
    EXPECT_EQ(Requests()[1].flags, 0x03u);
    EXPECT_EQ(Requests()[2].flags, 0x0Au);
    EXPECT_EQ(Requests()[3].flags, 0x0Bu);

    Advance(5000);
    const SoundRequest* playing = platform.sound().Playing(Channel::PlaySound);
    ASSERT_NE(playing, nullptr) << "a looping sound outlasts its length";
    EXPECT_EQ(playing, &Requests()[3]);

    // A sound of the other channel does not stop it, nor does EndPlaySound.
    player.PlaySound(105);
    player.EndPlaySound();
    EXPECT_NE(platform.sound().Playing(Channel::PlaySound), nullptr);

    sounds.SoundStop();
    const SoundRequest& stop = Requests().back();
    EXPECT_EQ(stop.channel, Channel::PlaySound);
    EXPECT_EQ(stop.name, "");
    EXPECT_EQ(stop.flags, 0x42u);
    EXPECT_EQ(platform.sound().Playing(Channel::PlaySound), nullptr);
}

TEST_F(SoundsTest, SoundStopLeavesAResourceSoundPlaying) {
    player.PlaySound(103);
    sounds.SoundStop();
    EXPECT_NE(platform.sound().Playing(Channel::SndPlaySound), nullptr);
}

TEST(SoundsDirectories, TheShellsAnswerOrEmptyTextWhenItFails) {
    platform::sim::SimPlatform platform;
    foundation::cSounds sounds(platform);
    EXPECT_EQ(sounds.strWindowDirectory().ToString(), "C:\\WINDOWS\\system32");
    const std::string temp = sounds.strTempPath().ToString();
    EXPECT_EQ(temp, "C:\\WINDOWS\\TEMP\\");
    EXPECT_EQ(temp.back(), '\\');

    test::ShellPlatform<FailingShell> failing;
    foundation::cSounds quiet(failing);
    EXPECT_EQ(quiet.strWindowDirectory().ToString(), "");
    EXPECT_EQ(quiet.strTempPath().ToString(), "");
}

// ---------------------------------------------------------------------------------------------
// The built-in sounds

TEST(SoundResources, EachIsUncompressedMonoPcmOfItsExactSize) {
    struct Row {
        std::int32_t id;
        std::size_t fileBytes;
        std::uint32_t rate;
        std::uint16_t bits;
        std::uint32_t dataBytes;
        std::int64_t durationMs;
    };
    const Row rows[] = {{101, 890, 11025, 8, 705, 63},     {102, 17132, 22050, 16, 17088, 387},
                        {103, 8864, 11025, 8, 8772, 795},  {104, 4566, 11025, 8, 4473, 405},
                        {105, 1758, 11025, 8, 1714, 155},  {106, 1576, 11025, 8, 1532, 138}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.id);
        const std::vector<std::uint8_t> image = foundation::LoadResData(row.id, "WAVE");
        ASSERT_EQ(image.size(), row.fileBytes);
        EXPECT_EQ(std::memcmp(image.data(), "RIFF", 4), 0);
        EXPECT_EQ(Le32(image, 4), image.size() - 8) << "the RIFF size covers the whole file";
        EXPECT_EQ(std::memcmp(image.data() + 8, "WAVE", 4), 0);
        // Walk the chunks: exactly one fmt and one data chunk, nothing past the end.
        std::size_t at = 12;
        int fmtCount = 0, dataCount = 0;
        while (at < image.size()) {
            ASSERT_LE(at + 8, image.size());
            const std::uint32_t size = Le32(image, at + 4);
            if (std::memcmp(image.data() + at, "fmt ", 4) == 0) {
                ++fmtCount;
                EXPECT_EQ(Le16(image, at + 8), 1) << "PCM";
                EXPECT_EQ(Le16(image, at + 10), 1) << "mono";
                EXPECT_EQ(Le32(image, at + 12), row.rate);
                EXPECT_EQ(Le32(image, at + 16), row.rate * row.bits / 8) << "byte rate";
                EXPECT_EQ(Le16(image, at + 20), row.bits / 8) << "block align";
                EXPECT_EQ(Le16(image, at + 22), row.bits);
            }
            if (std::memcmp(image.data() + at, "data", 4) == 0) {
                ++dataCount;
                EXPECT_EQ(size, row.dataBytes);
            }
            at += 8 + size + (size & 1);
        }
        EXPECT_EQ(at, image.size());
        EXPECT_EQ(fmtCount, 1);
        EXPECT_EQ(dataCount, 1);
        EXPECT_EQ(platform::sim::WaveDurationMs(image), row.durationMs);
        // Not silence: the samples move away from the format's zero level.
        const auto wave = platform::sim::ParseWave(image);
        ASSERT_TRUE(wave);
        std::size_t loud = 0;
        for (std::size_t i = 0; i + 1 < wave->data.size(); i += wave->bitsPerSample / 8u) {
            const int v = wave->bitsPerSample == 8 ? wave->data[i] - 128
                                                   : static_cast<std::int16_t>(wave->data[i] | wave->data[i + 1] << 8) / 256;
            if (v > 16 || v < -16) ++loud;
        }
        EXPECT_GT(loud, wave->data.size() / (wave->bitsPerSample / 8u) / 20);
    }
}

TEST(SoundResources, OnlyTheSixWaveResourcesExist) {
    for (std::int32_t id : {0, 100, 107, 1000, -101}) {
        try {
            (void)foundation::LoadResData(id, "WAVE");
            ADD_FAILURE() << id << " loaded";
        } catch (const host::HostError& e) {
            EXPECT_EQ(e.Number(), 326);
        }
    }
    EXPECT_THROW((void)foundation::LoadResData(101, "ICON"), host::HostError);
    // The resources are the embedded files themselves.
    const auto file = resources::Find("sounds/104.wav");
    const auto loaded = foundation::LoadResData(104, "WAVE");
    EXPECT_TRUE(std::equal(file.begin(), file.end(), loaded.begin(), loaded.end()));
}

// ---------------------------------------------------------------------------------------------
// ResourceSoundPlayer

TEST_F(SoundsTest, PlaySoundHandsTheWholeImageToTheDeviceFromMemory) {
    player.PlaySound(102);
    ASSERT_EQ(Requests().size(), 1u);
    const SoundRequest& r = Requests()[0];
    EXPECT_EQ(r.channel, Channel::SndPlaySound);
    EXPECT_FALSE(r.name);
    EXPECT_EQ(r.flags, 7u);
    EXPECT_EQ(r.image, foundation::LoadResData(102, "WAVE"));
    const auto wave = platform::sim::ParseWave(r.image);
    ASSERT_TRUE(wave);
    EXPECT_EQ(wave->bitsPerSample, 16) << "102 is the 16-bit sound";

    // 17088 bytes at 44100 bytes a second: over after 387 ms.
    Advance(386);
    EXPECT_EQ(platform.sound().Playing(Channel::SndPlaySound), &r);
    Advance(1);
    EXPECT_EQ(platform.sound().Playing(Channel::SndPlaySound), nullptr);

    for (std::int16_t id : {101, 103, 104, 105, 106}) {
        player.PlaySound(id);
        EXPECT_EQ(platform::sim::ParseWave(Requests().back().image)->bitsPerSample, 8) << id;
    }
}

TEST_F(SoundsTest, AnUnknownResourceRaises326AndLeavesTheCurrentSoundPlaying) {
    player.PlaySound(103);
    try {
        player.PlaySound(100);
        FAIL() << "no error";
    } catch (const host::HostError& e) {
        EXPECT_EQ(e.Number(), 326);
    }
    EXPECT_EQ(Requests().size(), 1u);
    EXPECT_EQ(platform.sound().Playing(Channel::SndPlaySound), &Requests()[0]);
}

TEST_F(SoundsTest, ANewSoundReplacesTheOldOneAndEndPlaySoundStopsIt) {
    player.PlaySound(103);  // 795 ms
    Advance(100);
    player.PlaySound(101);  // 63 ms
    ASSERT_EQ(Requests().size(), 2u);
    EXPECT_EQ(platform.sound().Playing(Channel::SndPlaySound), &Requests()[1]);
    Advance(100);
    EXPECT_EQ(platform.sound().Playing(Channel::SndPlaySound), nullptr) << "103 does not come back";

    player.PlaySound(103);
    Advance(10);
    player.EndPlaySound();
    const SoundRequest& end = Requests().back();
    EXPECT_EQ(end.channel, Channel::SndPlaySound);
    EXPECT_FALSE(end.name);
    EXPECT_TRUE(end.image.empty());
    EXPECT_EQ(end.flags, 0u);
    EXPECT_EQ(platform.sound().Playing(Channel::SndPlaySound), nullptr);
}

// ---------------------------------------------------------------------------------------------
// Rendering a session

namespace {

// Whether any sample in [fromMs, toMs) is away from silence.
bool Audible(const std::vector<std::int16_t>& s, std::int64_t fromMs, std::int64_t toMs) {
    const auto rate = platform::sim::SimSound::kRenderRate;
    for (auto i = static_cast<std::size_t>(fromMs * rate / 1000); i < static_cast<std::size_t>(toMs * rate / 1000) && i < s.size(); ++i)
        if (s[i] > 64 || s[i] < -64) return true;
    return false;
}

}  // namespace

TEST_F(SoundsTest, TheTimelineCutsReplacedSoundsAndRepeatsLoops) {
    platform.sound().RegisterNamedSound("loop.wav", MakeWave(11025, 8, 1103));  // 100 ms, constant level
    player.PlaySound(103);                                        // 0 ms, would last 795 ms
    Advance(200);
    player.EndPlaySound();                                        // cut at 200 ms
    sounds.SoundPlay("loop.wav", true, true);                     // 200 ms, repeats
    Advance(800);
    sounds.SoundStop();                                           // 1000 ms
    Advance(500);

    const std::vector<std::int16_t> s = platform.sound().RenderTimeline();
    ASSERT_EQ(s.size(), 1500u * 22050 / 1000) << "runs to the current virtual time";
    EXPECT_TRUE(Audible(s, 0, 190));
    // The loop's level alone: (192 - 128) / 128 of full scale, on every repetition.
    for (std::int64_t ms : {250, 350, 650, 950}) {
        const std::size_t i = static_cast<std::size_t>(ms * 22050 / 1000);
        EXPECT_NEAR(s[i], 16384, 2) << ms;
    }
    EXPECT_FALSE(Audible(s, 1001, 1500)) << "silent after SoundStop";

    // An explicit end cuts the loop there.
    EXPECT_EQ(platform.sound().RenderTimeline(600).size(), 600u * 22050 / 1000);
}

TEST_F(SoundsTest, BothChannelsAreMixedAndASoundEndsOnItsOwn) {
    platform.sound().RegisterNamedSound("a.wav", MakeWave(22050, 16, 2205));  // 100 ms at half scale
    sounds.SoundPlay("a.wav", true, false);
    player.PlaySound(105);  // 155 ms
    const std::vector<std::int16_t> s = platform.sound().RenderTimeline();
    EXPECT_EQ(s.size(), 156u * 22050 / 1000) << "to the end of the last sound";
    const auto only105 = [&] {
        platform::sim::SimPlatform other;
        foundation::ResourceSoundPlayer(other).PlaySound(105);
        return other.sound().RenderTimeline();
    }();
    for (std::size_t i = 0; i < 2205; i += 97)
        EXPECT_NEAR(s[i], std::clamp(only105[i] + 16384, -32768, 32767), 1) << i;
    for (std::size_t i = 2206; i < s.size(); i += 31) EXPECT_EQ(s[i], only105[i]) << i;
}

TEST_F(SoundsTest, WriteWavWritesTheTimelineAsMono16Bit22050) {
    player.PlaySound(101);
    const std::filesystem::path path = std::filesystem::path(KORVEX_BINARY_DIR) / "sounds_test_session.wav";
    ASSERT_TRUE(platform.sound().WriteWav(path));
    std::ifstream in(path, std::ios::binary);
    const std::vector<std::uint8_t> file((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    const std::vector<std::int16_t> samples = platform.sound().RenderTimeline();
    ASSERT_EQ(file.size(), 44 + samples.size() * 2);
    const auto wave = platform::sim::ParseWave(file);
    ASSERT_TRUE(wave);
    EXPECT_EQ(wave->channels, 1);
    EXPECT_EQ(wave->sampleRate, 22050u);
    EXPECT_EQ(wave->bitsPerSample, 16);
    EXPECT_EQ(wave->data.size(), samples.size() * 2);
    EXPECT_EQ(static_cast<std::int16_t>(Le16(file, 44 + 200)), samples[100]);
    EXPECT_FALSE(platform.sound().WriteWav(std::filesystem::path(KORVEX_BINARY_DIR) / "no" / "such" / "dir.wav"));
}
