// The type library's IDL: name-based identifiers, the mapping of host types to Automation
// types, and how one class's table reads as dispinterfaces and a control class.

#include "host/type_library.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "probe_control.hpp"

namespace korvex::host {
namespace {

// RFC 4122's DNS namespace, for a value any UUID library computes the same.
constexpr std::string_view kDnsNamespace = "6BA7B810-9DAD-11D1-80B4-00C04FD430C8";

TEST(TypeLibraryGuid, NameBasedGuidsFollowVersionFive) {
    // Published version-5 identifiers: the SHA-1, the byte order and the version and variant
    // bits all have to be right to meet them.
    EXPECT_EQ(NameBasedGuid(Guid::Parse(kDnsNamespace), "python.org").Text(),
              "886313E1-3B8A-5372-9B90-0C9AEE199E5D");
    // The library's own identifier, pinned: a change here orphans every registered copy.
    EXPECT_EQ(TypeLibraryGuid("Korvex_Tools").Text(), "877C902C-FB3A-5D33-858F-043CFD70A2E6");
    EXPECT_EQ(TypeLibraryGuid("Korvex_Tools.Button").Text(),
              "1BF32AFC-C128-51E4-9433-2C56E1B7348E");
}

TEST(TypeLibraryGuid, StableAndDistinct) {
    const std::vector<std::string> names = {"Korvex_Tools",         "Korvex_Tools.Button",
                                            "Korvex_Tools._Button", "Korvex_Tools.__Button",
                                            "Korvex_Tools.button",  "Korvex_Tools.EnumStyle"};
    for (std::size_t i = 0; i < names.size(); ++i) {
        EXPECT_EQ(TypeLibraryGuid(names[i]), TypeLibraryGuid(names[i])) << names[i];
        EXPECT_EQ(Guid::Parse(TypeLibraryGuid(names[i]).Text()), TypeLibraryGuid(names[i]));
        for (std::size_t j = i + 1; j < names.size(); ++j)
            EXPECT_NE(TypeLibraryGuid(names[i]), TypeLibraryGuid(names[j]))
                << names[i] << " and " << names[j];
    }
}

TEST(TypeLibraryGuid, ParseTakesOnlyTheRegistryForm) {
    const Guid zero{};
    for (std::string_view bad :
         {"", "{877C902C-FB3A-5D33-858F-043CFD70A2E6}", "877C902C-FB3A-5D33-858F-043CFD70A2E",
          "877C902CXFB3A-5D33-858F-043CFD70A2E6", "877C902C-FB3A-5D33-858F-043CFD70A2EG"})
        EXPECT_EQ(Guid::Parse(bad), zero) << bad;
    EXPECT_EQ(Guid::Parse("877c902c-fb3a-5d33-858f-043cfd70a2e6").Text(),
              "877C902C-FB3A-5D33-858F-043CFD70A2E6");
}

TEST(TypeLibraryIdl, HostTypesReadAsAutomationTypes) {
    const struct {
        TypeRef type;
        const char* idl;
    } cases[] = {
        {{TypeCode::Void, {}}, "void"},
        {{TypeCode::Variant, {}}, "VARIANT"},
        {{TypeCode::Boolean, {}}, "VARIANT_BOOL"},
        {{TypeCode::Integer, {}}, "short"},
        {{TypeCode::Long, {}}, "long"},
        {{TypeCode::Single, {}}, "float"},
        {{TypeCode::Double, {}}, "double"},
        {{TypeCode::String, {}}, "BSTR"},
        {{TypeCode::Color, {}}, "OLE_COLOR"},
        {{TypeCode::Enum, "EnumStyle"}, "EnumStyle"},
        {{TypeCode::Enum, "Größe"}, "Groesse"},
        {{TypeCode::Font, {}}, "IFontDisp*"},
        {{TypeCode::Picture, {}}, "IPictureDisp*"},
        {{TypeCode::Object, {}}, "IDispatch*"},
    };
    for (const auto& c : cases) EXPECT_EQ(IdlType(c.type), c.idl) << TypeCodeName(c.type.code);
}

TEST(TypeLibraryIdl, NamesBecomeAsciiIdentifiers) {
    const struct {
        const char* name;
        const char* idl;
    } cases[] = {
        {"optButton", "optButton"},
        {"Größenänderung_No_Sw", "Groessenaenderung_No_Sw"},
        {"Aufwärtspfeil", "Aufwaertspfeil"},
        {"ÄÖÜäöüß", "AeOeUeaeoeuess"},
        {"café au lait", "caf__au_lait"},  // one underscore per character, not per byte
        {"a\xE2\x82\xAC"
         "b",
         "a_b"},  // a three-byte character
    };
    for (const auto& c : cases) EXPECT_EQ(IdlName(c.name), c.idl) << c.name;
}

// The lines one class's table gives, from the probe control (an about box at -552, a font, a
// read-only property, an optional argument, events with arguments, a pointer enumeration).
class ProbeIdl : public ::testing::Test {
  protected:
    static bool Has(const std::string& text, const std::string& line) {
        return text.find(line) != std::string::npos;
    }
    std::string idl = TypeLibraryIdl("Korvex_Tools", {&test::Probe::Class()});
};

TEST_F(ProbeIdl, MembersKeepTheirDispatchIdentifiersAndAccess) {
    for (const char* line : {
             "[id(-552), hidden] void ShowAboutBox();",
             "[id(1), propget] BSTR Caption();",
             "[id(1), propput] void Caption([in] BSTR New_Caption);",
             "[id(4), propget] IFontDisp* Font();",
             // Objects are assigned by reference (Set), not by value.
             "[id(4), propputref] void Font([in] IFontDisp* New_Font);",
             "[id(5), propget] pMode Mode();",
             "[id(7), propget] long Clicks();",
             "[id(8)] short Bump([in] short By, [in, optional] VARIANT Times);",
         })
        EXPECT_TRUE(Has(idl, line)) << line << "\n" << idl;
    EXPECT_FALSE(Has(idl, "Clicks([in]")) << "a read-only property has no put";
    EXPECT_FALSE(Has(idl, "propput] void Font")) << "a font is not assigned by value";
}

TEST_F(ProbeIdl, EventsPassTheirArgumentsByReference) {
    for (const char* line : {
             "dispinterface __Probe {",
             "[id(1)] void Click();",
             "[id(2)] void KeyPress([in, out] short* KeyAscii);",
             "[id(3)] void MouseDown([in, out] short* Button, [in, out] short* Shift, "
             "[in, out] float* x, [in, out] float* y);",
         })
        EXPECT_TRUE(Has(idl, line)) << line << "\n" << idl;
}

TEST_F(ProbeIdl, ClassAndInterfacesCarryNameBasedIdentifiers) {
    const std::string lines[] = {
        "[uuid(" + TypeLibraryGuid("Korvex_Tools").Text() +
            "), version(1.0)]\nlibrary Korvex_Tools",
        "[uuid(" + TypeLibraryGuid("Korvex_Tools._Probe").Text() +
            "), hidden]\n    dispinterface _Probe {",
        "[uuid(" + TypeLibraryGuid("Korvex_Tools.__Probe").Text() +
            "), hidden]\n    dispinterface __Probe {",
        "[uuid(" + TypeLibraryGuid("Korvex_Tools.Probe").Text() +
            "), control]\n    coclass Probe {\n"
            "        [default] dispinterface _Probe;\n"
            "        [default, source] dispinterface __Probe;",
        "importlib(\"stdole2.tlb\");",
        "enum pMousePointerConst {",
        "        Groessenaenderung_Alle = 15,\n        pMouseIcon = 99\n    } pMousePointerConst;",
    };
    for (const std::string& line : lines) EXPECT_TRUE(Has(idl, line)) << line << "\n" << idl;
}

TEST(TypeLibraryIdl, AnEnumerationTwoClassesShareIsDeclaredOnce) {
    const ClassInfo other = ClassBuilder<test::Probe>("Other", "Korvex_Tools.Other")
                                .Enum("pMode", {{"pOff", 0}})
                                .Build();
    const std::string idl = TypeLibraryIdl("Korvex_Tools", {&test::Probe::Class(), &other});
    const std::string declaration = "enum pMode {";
    const auto first = idl.find(declaration);
    ASSERT_NE(first, std::string::npos);
    EXPECT_EQ(idl.find(declaration, first + 1), std::string::npos);
    EXPECT_NE(idl.find("coclass Other {"), std::string::npos);
}

}  // namespace
}  // namespace korvex::host
