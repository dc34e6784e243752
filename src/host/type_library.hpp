#pragma once
// The Windows type library, written as IDL from the same member tables the host dispatches
// through (and the member reference is written from), so widl turns the declarations into the
// .tlb a property browser reads: colour and font pickers, enumeration lists.
//
// Identifiers never change between builds: every GUID is a name-based UUID (version 5, SHA-1)
// in the namespace kTypeLibraryNamespace, from the name the library gives the thing:
//   "<Library>"              the library            "<Library>.<Class>"   a control's class
//                                                   (its ProgID)
//   "<Library>._<Class>"     its default interface  "<Library>.__<Class>" its event interface
//   "<Library>.<Enum>"       an enumeration
// Dispatch identifiers are the member table's: slot order from 1, the about box's -552.

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/type_info.hpp"

namespace korvex::host {

struct Guid {
    std::array<std::uint8_t, 16> bytes{};

    // The registry form without braces, "7C6AE222-9323-4D5E-8C2E-368E7104A492". Parse takes
    // only that form (its texts are constants of the library); anything else is all zeros.
    static Guid Parse(std::string_view text);
    [[nodiscard]] std::string Text() const;
    friend bool operator==(const Guid&, const Guid&) = default;
};

// The namespace of every identifier the type library holds.
inline constexpr std::string_view kTypeLibraryNamespace = "7C6AE222-9323-4D5E-8C2E-368E7104A492";

// RFC 4122 version 5: SHA-1 of the namespace's bytes and the name's UTF-8 bytes.
Guid NameBasedGuid(const Guid& space, std::string_view name);
// The same in kTypeLibraryNamespace.
Guid TypeLibraryGuid(std::string_view name);

// How a member table type reads in IDL: Integer short, Long long, Single float, Boolean
// VARIANT_BOOL, String BSTR, colours OLE_COLOR, fonts IFontDisp*, pictures IPictureDisp*, an
// enumeration its own name.
std::string IdlType(const TypeRef& type);

// An identifier widl's ASCII lexer accepts: German letters spelt out (ä ae, ö oe, ü ue, ß ss),
// any other character outside [A-Za-z0-9_] an underscore.
std::string IdlName(std::string_view name);

// The library `library` with every class of `classes` as a [control] coclass, its default and
// event dispinterfaces and its enumerations (each once, by name).
std::string TypeLibraryIdl(std::string_view library, const std::vector<const ClassInfo*>& classes);

}  // namespace korvex::host
