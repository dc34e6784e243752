// The sound services on the virtual machine: what cSounds and the resource player ask of the
// platform, what the recording device then has playing on each channel over virtual time, the
// six built-in sounds byte for byte, and the device's rendering of a session into a WAVE file.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "base/error.hpp"
#include "base/resources.hpp"
#include "foundation/sounds.hpp"
#include "platform/sim/sim_platform.hpp"
#include "support/bench.hpp"
#include "support/bytes.hpp"
#include "support/error_of.hpp"

using namespace korvex;
using platform::sim::SoundRequest;
using Channel = SoundRequest::Channel;

namespace {

// A PCM wave made here: `frames` mono frames of a constant non-zero level.
std::vector<std::uint8_t> MakeWave(std::uint32_t rate, std::uint16_t bits, std::uint32_t frames) {
    const std::uint32_t block = bits / 8u;
    std::vector<std::uint8_t> w;
    test::PutTag(w, "RIFF");
    test::Put(w, {36 + frames * block}, 4);
    test::PutTag(w, "WAVEfmt ");
    test::Put(w, {16}, 4);
    test::Put(w, {1, 1}, 2);
    test::Put(w, {rate, rate * block}, 4);
    test::Put(w, {block, bits}, 2);
    test::PutTag(w, "data");
    test::Put(w, {frames * block}, 4);
    for (std::uint32_t i = 0; i < frames; ++i) test::Put(w, {bits == 8 ? 192u : 16384u}, block);
    return w;
}

// A platform whose shell fails every query, to see the directory helpers swallow it.
class FailingShell final : public platform::Shell {
  public:
    std::intptr_t ShellExecuteA(platform::HWND, std::optional<std::string_view>, std::string_view,
                                std::string_view, std::string_view, int) override {
        throw std::runtime_error("no shell");
    }
    std::string GetSystemDirectoryA() override {
        throw host::HostError(host::kErrDeviceUnavailable);
    }
    std::string GetTempPathA() override { throw host::HostError(host::kErrDeviceUnavailable); }
};

class SoundsTest : public ::testing::Test, public test::SimBench {
  protected:
    const std::vector<SoundRequest>& Requests() { return platform.sound().Requests(); }

    foundation::cSounds sounds{platform};
    foundation::ResourceSoundPlayer player{platform};
};

}  // namespace

// ---------------------------------------------------------------------------------------------
// cSounds

TEST_F(SoundsTest, SystemSoundPlaysTheNamedEventAsynchronouslyWithoutDefault) {
    platform.sound().RegisterNamedSound("SystemExclamation", MakeWave(11025, 8, 1103));  // 100 ms
    // The ends of the table, a name whose spelling is its own, and indices outside it (silent,
    // no error).
    sounds.SystemSound(13);
    EXPECT_NE(platform.sound().Playing(Channel::PlaySound), nullptr);
    Advance(100);
    EXPECT_EQ(platform.sound().Playing(Channel::PlaySound), nullptr) << "over after 100 ms";
    for (const std::int32_t index : {0, 12, 17, 18, -1, 1 << 30}) sounds.SystemSound(index);
    ASSERT_EQ(Requests().size(), 4u);
    const std::array<const char*, 4> names = {"SystemExclamation", "AppGPFault", "Ringout",
                                              "SystemStart"};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(Requests()[i].channel, Channel::PlaySound);
        EXPECT_EQ(Requests()[i].name, names[i]);
        EXPECT_EQ(Requests()[i].flags, 0x83u);
    }
    // An event the user gave no sound is silence, not the default beep.
    EXPECT_TRUE(Requests()[0].audible);
    EXPECT_FALSE(Requests()[3].audible);
}

TEST_F(SoundsTest, SoundPlayFlagsAndALoopThatRunsUntilSoundStop) {
    platform.sound().RegisterNamedSound("C:\\Sounds\\ding.wav", MakeWave(11025, 8, 2205));
    // (async, loop): flags 0x02 (no default) plus 0x01 async and 0x08 loop.
    const std::pair<bool, bool> calls[] = {
        {false, false}, {true, false}, {false, true}, {true, true}};
    for (const auto& [async, loop] : calls) sounds.SoundPlay("C:\\Sounds\\ding.wav", async, loop);
    ASSERT_EQ(Requests().size(), 4u);
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_EQ(Requests()[i].flags, (std::array{0x02u, 0x03u, 0x0Au, 0x0Bu}[i]));

    Advance(5000);  // the sound lasts 200 ms
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
    const Row rows[] = {{101, 890, 11025, 8, 705, 63},    {102, 17132, 22050, 16, 17088, 387},
                        {103, 8864, 11025, 8, 8772, 795}, {104, 4566, 11025, 8, 4473, 405},
                        {105, 1758, 11025, 8, 1714, 155}, {106, 1576, 11025, 8, 1532, 138}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.id);
        const std::vector<std::uint8_t> image = foundation::LoadResData(row.id, "WAVE");
        ASSERT_EQ(image.size(), row.fileBytes);
        EXPECT_EQ(test::Le(image, 4), image.size() - 8) << "the RIFF size covers the whole file";
        const auto wave = platform::sim::ParseWave(image);
        ASSERT_TRUE(wave);
        EXPECT_EQ(wave->channels, 1);
        EXPECT_EQ(wave->sampleRate, row.rate);
        EXPECT_EQ(wave->bitsPerSample, row.bits);
        EXPECT_EQ(wave->data.size(), row.dataBytes);
        EXPECT_EQ(platform::sim::WaveDurationMs(image), row.durationMs);
        // Not silence: the samples move away from the format's zero level.
        const std::size_t step = wave->bitsPerSample / 8u;
        std::size_t loud = 0;
        for (std::size_t i = 0; i + 1 < wave->data.size(); i += step) {
            const int v = step == 1 ? wave->data[i] - 128
                                    : static_cast<std::int16_t>(test::Le(wave->data, i, 2)) / 256;
            loud += v > 16 || v < -16;
        }
        EXPECT_GT(loud, wave->data.size() / step / 20);
    }
}

TEST(SoundResources, OnlyTheSixWaveResourcesExist) {
    for (std::int32_t id : {0, 100, 107, 1000, -101})
        EXPECT_EQ(test::ErrorOf([&] { (void)foundation::LoadResData(id, "WAVE"); }), 326) << id;
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
    EXPECT_EQ(test::ErrorOf([&] { player.PlaySound(100); }), 326);
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
    for (auto i = static_cast<std::size_t>(fromMs * rate / 1000);
         i < static_cast<std::size_t>(toMs * rate / 1000) && i < s.size(); ++i)
        if (s[i] > 64 || s[i] < -64) return true;
    return false;
}

}  // namespace

TEST_F(SoundsTest, TheTimelineCutsReplacedSoundsAndRepeatsLoops) {
    platform.sound().RegisterNamedSound("loop.wav",
                                        MakeWave(11025, 8, 1103));  // 100 ms, constant level
    player.PlaySound(103);                                          // 0 ms, would last 795 ms
    Advance(200);
    player.EndPlaySound();                     // cut at 200 ms
    sounds.SoundPlay("loop.wav", true, true);  // 200 ms, repeats
    Advance(800);
    sounds.SoundStop();  // 1000 ms
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
    platform.sound().RegisterNamedSound("a.wav",
                                        MakeWave(22050, 16, 2205));  // 100 ms at half scale
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
    const std::filesystem::path path =
        std::filesystem::path(KORVEX_BINARY_DIR) / "sounds_test_session.wav";
    ASSERT_TRUE(platform.sound().WriteWav(path));
    std::ifstream in(path, std::ios::binary);
    const std::vector<std::uint8_t> file((std::istreambuf_iterator<char>(in)),
                                         std::istreambuf_iterator<char>());
    const std::vector<std::int16_t> samples = platform.sound().RenderTimeline();
    ASSERT_EQ(file.size(), 44 + samples.size() * 2);
    const auto wave = platform::sim::ParseWave(file);
    ASSERT_TRUE(wave);
    EXPECT_EQ(wave->channels, 1);
    EXPECT_EQ(wave->sampleRate, 22050u);
    EXPECT_EQ(wave->bitsPerSample, 16);
    EXPECT_EQ(wave->data.size(), samples.size() * 2);
    EXPECT_EQ(static_cast<std::int16_t>(test::Le(file, 44 + 200, 2)), samples[100]);
    EXPECT_FALSE(platform.sound().WriteWav(std::filesystem::path(KORVEX_BINARY_DIR) / "no" /
                                           "such" / "dir.wav"));
}
