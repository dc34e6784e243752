// korvex-layers-smoke: exercises the library's layers without a platform, so the Windows build can
// be checked before it has a window backend. Built twice, natively and with MinGW-w64; the
// gdi-oracle's smoke step runs both (the Windows one under Wine) and compares their reports line
// by line, so anything the two systems compute differently (number formatting, file names, PNG
// decoding) shows up as a differing line.
//
//   korvex-layers-smoke FORM.json OUTDIR
//
// Prints what it checked, one line each; exits 1 when a check fails on its own terms (a round
// trip that does not come back equal), 2 on a bad command line.

#include <cstdint>
#include <cstdio>
#include <exception>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/error.hpp"
#include "base/file.hpp"
#include "base/resources.hpp"
#include "foundation/images.hpp"
#include "host/control.hpp"
#include "host/json_codec.hpp"
#include "host/numeric.hpp"
#include "host/property_bag.hpp"
#include "host/type_info.hpp"
#include "host/variant.hpp"
#include "library/library.hpp"
#include "platform/png.hpp"

namespace {

using namespace korvex;

int failures = 0;

void Fail(const std::string& what) {
    std::printf("FAILED: %s\n", what.c_str());
    ++failures;
}

// FNV-1a, so a report line can stand for a whole table or picture.
class Digest {
  public:
    Digest& Add(std::string_view text) {
        for (unsigned char c : text) Byte(c);
        Byte(0);
        return *this;
    }
    Digest& Add(std::int64_t value) {
        for (int i = 0; i < 8; ++i) Byte(static_cast<unsigned char>(value >> (8 * i)));
        return *this;
    }
    [[nodiscard]] std::string Hex() const {
        char text[20];
        std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(hash_));
        return text;
    }

  private:
    void Byte(unsigned char c) {
        hash_ ^= c;
        hash_ *= 0x100000001B3ull;
    }
    std::uint64_t hash_ = 0xCBF29CE484222325ull;
};

// The member table of every registered class: what a type library and IDispatch will be made
// from, so it must come out the same on both systems.
void MemberTables(const host::HostContext& context) {
    const auto classes = context.Classes().Classes();
    std::size_t members = 0, persisted = 0, events = 0, enums = 0;
    for (const host::ClassInfo* info : classes) {
        Digest digest;
        std::size_t ownPersisted = 0;
        for (const host::MemberInfo& m : info->members) {
            digest.Add(m.name).Add(m.dispId).Add(static_cast<std::int64_t>(m.kind));
            digest.Add(host::TypeCodeName(m.type.code)).Add(m.type.enumName);
            digest.Add(static_cast<std::int64_t>(m.ReadOnly()));
            for (const host::ParamInfo& p : m.params) digest.Add(p.name).Add(p.optional);
            if (m.persisted) {
                ++ownPersisted;
                digest.Add(m.persisted->key).Add(host::KindName(m.persisted->kind));
                digest.Add(m.persisted->init).Add(m.persisted->read).Add(m.persisted->write);
            }
            if (m.kind == host::MemberInfo::Kind::Property && !m.get)
                Fail(info->progId + "." + m.name + " has no getter");
        }
        for (const host::EventInfo& e : info->events) {
            digest.Add(e.name).Add(e.id);
            for (const host::ParamInfo& p : e.params) digest.Add(p.name);
        }
        for (const host::EnumInfo& e : info->enums) {
            digest.Add(e.name);
            for (const auto& [name, value] : e.members) digest.Add(name).Add(value);
        }
        if (!info->create) Fail(info->progId + " cannot be created");
        std::printf("class %s: %zu members (%zu persisted), %zu events, %zu enums, table %s\n",
                    info->progId.c_str(), info->members.size(), ownPersisted, info->events.size(),
                    info->enums.size(), digest.Hex().c_str());
        members += info->members.size();
        persisted += ownPersisted;
        events += info->events.size();
        enums += info->enums.size();
    }
    std::printf("classes: %zu, members %zu, persisted %zu, events %zu, enums %zu\n", classes.size(),
                members, persisted, events, enums);
}

// The host's conversions and errors, each case printed as its value or its error.
void Conversions() {
    const struct {
        const char* what;
        std::function<host::Variant()> run;
    } cases[] = {
        {"CInt(2.5)", [] { return host::Variant(host::Variant(2.5).ToInteger()); }},
        {"CInt(3.5)", [] { return host::Variant(host::Variant(3.5).ToInteger()); }},
        {"CInt(\"-7.5\")", [] { return host::Variant(host::Variant("-7.5").ToInteger()); }},
        {"CInt(40000)", [] { return host::Variant(host::Variant(40000).ToInteger()); }},
        {"CLng(\"abc\")", [] { return host::Variant(host::Variant("abc").ToLong()); }},
        {"CLng(True)", [] { return host::Variant(host::Variant(true).ToLong()); }},
        {"CLng(&H8000000F)", [] { return host::Variant(host::Variant("&H8000000F").ToLong()); }},
        {"CBool(\"0\")", [] { return host::Variant(host::Variant("0").ToBool()); }},
        {"CStr(1/3)", [] { return host::Variant(host::Variant(1.0 / 3.0).ToString()); }},
        {"CStr(CSng(1/3))", [] { return host::Variant(host::Variant(1.0F / 3.0F).ToString()); }},
        {"CStr(1E+100)", [] { return host::Variant(host::Variant(1e100).ToString()); }},
        {"CStr(-0.000012345)", [] { return host::Variant(host::Variant(-1.2345e-5).ToString()); }},
        {"CStr(123456789012345)",
         [] { return host::Variant(host::FormatDouble(123456789012345.0)); }},
        {"CDbl(\"1.5E3\")", [] { return host::Variant(host::Variant("1.5E3").ToDouble()); }},
        {"CSng(1E+39)", [] { return host::Variant(host::Variant(1e39).ToSingle()); }},
        {"Val(\" 12 34abc\")", [] { return host::Variant(host::Val(" 12 34abc")); }},
    };
    for (const auto& c : cases) {
        try {
            const host::Variant value = c.run();
            std::printf("%s = %s %s\n", c.what, std::string(host::KindName(value.Kind())).c_str(),
                        value.ToString().c_str());
        } catch (const host::HostError& e) {
            std::printf("%s: error %d: %s\n", c.what, static_cast<int>(e.Number()),
                        e.Description().c_str());
        }
    }
    for (std::int32_t number : {5, 6, 13, 53, 75, 380, 429}) {
        const host::HostError error(number);
        std::printf("error %d: %s\n", static_cast<int>(error.Number()),
                    error.Description().c_str());
    }
}

// Every property bag of a form file through the bag's JSON form and back.
void PropertyBags(const std::string& formPath) {
    const host::json::Json form = host::json::Json::parse(ReadFileText(formPath));
    std::size_t bags = 0, keys = 0;
    const std::function<void(const host::json::Json&)> walk = [&](const host::json::Json& list) {
        for (const host::json::Json& control : list) {
            const std::string name = control.at("Name").get<std::string>();
            const host::JsonPropertyBag bag = control.contains("Properties")
                                                  ? host::json::DecodeBag(control.at("Properties"))
                                                  : host::JsonPropertyBag{};
            const std::string text = bag.ToJson();
            const host::JsonPropertyBag again = host::JsonPropertyBag::FromJson(text);
            if (!(again == bag) || again.ToJson() != text) Fail("the bag of " + name);
            std::printf("bag %s: %zu keys, %s\n", name.c_str(), bag.Entries().size(),
                        Digest().Add(text).Hex().c_str());
            ++bags;
            keys += bag.Entries().size();
            if (control.contains("Controls")) walk(control.at("Controls"));
        }
    };
    walk(form.at("Controls"));
    // Every kind a bag keeps, non-ASCII text included.
    host::JsonPropertyBag kinds;
    kinds.WriteProperty("Integer", host::Variant(std::int16_t{-32768}));
    kinds.WriteProperty("Long", host::Variant(std::int32_t{-2147483647 - 1}));
    kinds.WriteProperty("Single", host::Variant(0.1F));
    kinds.WriteProperty("Double", host::Variant(-1e-300));
    kinds.WriteProperty("Boolean", host::Variant(true));
    kinds.WriteProperty("Color", host::Variant(std::uint32_t{0x8000000F}));
    kinds.WriteProperty("Text", host::Variant("Größe \xE2\x82\xAC \"quoted\"\n"));
    const std::string text = kinds.ToJson(0);
    if (!(host::JsonPropertyBag::FromJson(text) == kinds)) Fail("the bag of every kind");
    std::printf("bag of every kind: %s\n", text.c_str());
    std::printf("bags: %zu, keys %zu\n", bags, keys);
}

// A file named in UTF-8 written, replaced and read back.
void Files(const std::string& outDir) {
    const std::string path = outDir +
                             "/Gr\xC3\xB6\xC3\x9F"
                             "e \xE2\x82\xAC.txt";
    WriteFileReplacing(path, "first");
    WriteFileReplacing(path, "second, longer than the first");
    const std::string back = ReadFileText(path);
    if (back != "second, longer than the first") Fail("replacing " + path + ": read " + back);
    try {
        (void)ReadFileText(outDir + "/missing \xC3\xBC.txt");
        Fail("a missing file was read");
    } catch (const host::HostError& e) {
        std::printf("missing file: error %d\n", static_cast<int>(e.Number()));
    }
    std::printf("file replaced and read back: %zu bytes\n", back.size());
}

// The embedded pictures: PNG cursors through the system's PNG codec, icon groups through the
// library's own loader, and a PNG written and read back.
void Pictures() {
    for (const char* name : {"cursors/hand_ie.png", "cursors/hand_nc.png"}) {
        const platform::Image image = platform::DecodePng(resources::Find(name));
        Digest digest;
        for (std::uint32_t p : image.pixels) digest.Add(p);
        std::printf("png %s: %dx%d, pixels %s\n", name, static_cast<int>(image.width),
                    static_cast<int>(image.height), digest.Hex().c_str());
    }
    std::size_t icons = 0;
    Digest iconDigest;
    for (const resources::Entry& entry : resources::All()) {
        if (!entry.path.starts_with("icons/")) continue;
        for (std::int32_t size : {foundation::kDefaultIconSize, 16}) {
            const auto picture = foundation::LoadIconImage(entry.bytes, size);
            if (!picture) {
                Fail(std::string(entry.path) + " does not load");
                continue;
            }
            iconDigest.Add(picture->PixelWidth()).Add(picture->PixelHeight());
            for (std::uint32_t p : picture->Pixels()) iconDigest.Add(p);
        }
        ++icons;
    }
    std::printf("icon groups: %zu, pixels %s\n", icons, iconDigest.Hex().c_str());

    std::vector<std::uint32_t> ramp(7 * 5);
    for (std::size_t i = 0; i < ramp.size(); ++i)
        ramp[i] = static_cast<std::uint32_t>(i * 0x070503u) & 0x00FFFFFFu;
    const platform::Image back = platform::DecodePng(platform::EncodePng({ramp.data(), 7, 5}));
    if (back.width != 7 || back.height != 5 || back.pixels != ramp) Fail("a PNG written and read");
    std::printf("png written and read back: %dx%d\n", static_cast<int>(back.width),
                static_cast<int>(back.height));
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: korvex-layers-smoke FORM.json OUTDIR\n");
        return 2;
    }
    try {
        host::HostContext context;
        RegisterLibrary(context);
        RegisterPrivateControls(context);
        MemberTables(context);
        Conversions();
        PropertyBags(argv[1]);
        Files(argv[2]);
        Pictures();
    } catch (const std::exception& e) {
        Fail(std::string("stopped: ") + e.what());
    }
    std::printf("%d checks failed\n", failures);
    return failures == 0 ? 0 : 1;
}
