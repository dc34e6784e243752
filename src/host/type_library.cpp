#include "host/type_library.hpp"

#include <algorithm>
#include <cstdio>
#include <set>
#include <sstream>

#include "base/sha1.hpp"
#include "base/utf8.hpp"

namespace korvex::host {

namespace {

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// The interface members of one property or method, as widl reads them.
void WriteMember(std::ostringstream& out, const MemberInfo& m) {
    const std::string name = IdlName(m.name);
    const std::string hidden = m.dispId == kDispIdAboutBox ? ", hidden" : "";
    const std::string id = "[id(" + std::to_string(m.dispId) + ")" + hidden;
    if (m.kind == MemberInfo::Kind::Property) {
        out << "        " << id << ", propget] " << IdlType(m.type) << " " << name << "();\n";
        if (!m.ReadOnly()) {
            // Objects are assigned with Set, values with Let.
            const bool object = m.type.code == TypeCode::Font || m.type.code == TypeCode::Picture ||
                                m.type.code == TypeCode::Object;
            out << "        " << id << (object ? ", propputref" : ", propput") << "] void " << name
                << "([in] " << IdlType(m.type) << " New_" << name << ");\n";
        }
        return;
    }
    out << "        " << id << "] " << IdlType(m.type) << " " << name << "(";
    for (std::size_t i = 0; i < m.params.size(); ++i) {
        const ParamInfo& p = m.params[i];
        if (i) out << ", ";
        // An optional argument arrives as a Variant that may be missing.
        if (p.optional)
            out << "[in, optional] VARIANT " << IdlName(p.name);
        else
            out << "[in] " << IdlType(p.type) << " " << IdlName(p.name);
    }
    out << ");\n";
}

// Events pass every argument by reference: a handler's change goes back to the raiser.
void WriteEvent(std::ostringstream& out, const EventInfo& e) {
    out << "        [id(" << e.id << ")] void " << IdlName(e.name) << "(";
    for (std::size_t i = 0; i < e.params.size(); ++i) {
        if (i) out << ", ";
        out << "[in, out] " << IdlType(e.params[i].type) << "* " << IdlName(e.params[i].name);
    }
    out << ");\n";
}

}  // namespace

Guid Guid::Parse(std::string_view text) {
    Guid guid;
    if (text.size() != 36) return guid;
    std::size_t byte = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (i == 8 || i == 13 || i == 18 || i == 23) {
            if (text[i] != '-') return {};
            continue;
        }
        const int hi = HexDigit(text[i]), lo = i + 1 < text.size() ? HexDigit(text[i + 1]) : -1;
        if (hi < 0 || lo < 0) return {};
        guid.bytes[byte++] = static_cast<std::uint8_t>(hi * 16 + lo);
        ++i;
    }
    return guid;
}

std::string Guid::Text() const {
    std::string text;
    char hex[3];
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
        std::snprintf(hex, sizeof hex, "%02X", bytes[i]);
        text += hex;
    }
    return text;
}

Guid NameBasedGuid(const Guid& space, std::string_view name) {
    std::vector<std::uint8_t> message(space.bytes.begin(), space.bytes.end());
    message.insert(message.end(), name.begin(), name.end());
    Sha1 sha;
    sha.Update(message.data(), message.size());
    const auto digest = sha.Digest();
    Guid guid;
    std::copy_n(digest.begin(), 16, guid.bytes.begin());
    guid.bytes[6] = static_cast<std::uint8_t>((guid.bytes[6] & 0x0F) | 0x50);  // version 5
    guid.bytes[8] = static_cast<std::uint8_t>((guid.bytes[8] & 0x3F) | 0x80);  // RFC 4122
    return guid;
}

Guid TypeLibraryGuid(std::string_view name) {
    static const Guid space = Guid::Parse(kTypeLibraryNamespace);
    return NameBasedGuid(space, name);
}

std::string IdlType(const TypeRef& type) {
    switch (type.code) {
        case TypeCode::Void:
            return "void";
        case TypeCode::Variant:
            return "VARIANT";
        case TypeCode::Boolean:
            return "VARIANT_BOOL";
        case TypeCode::Integer:
            return "short";
        case TypeCode::Long:
            return "long";
        case TypeCode::Single:
            return "float";
        case TypeCode::Double:
            return "double";
        case TypeCode::String:
            return "BSTR";
        case TypeCode::Color:
            return "OLE_COLOR";
        case TypeCode::Enum:
            return IdlName(type.enumName);
        case TypeCode::Font:
            return "IFontDisp*";
        case TypeCode::Picture:
            return "IPictureDisp*";
        case TypeCode::Object:
            return "IDispatch*";
    }
    return "VARIANT";
}

std::string IdlName(std::string_view name) {
    std::string out;
    for (std::size_t pos = 0; pos < name.size();) {
        const char32_t c = NextCodePoint(name, pos);
        if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
            c == '_') {
            out += static_cast<char>(c);
            continue;
        }
        switch (c) {
            case U'ä':
                out += "ae";
                break;
            case U'ö':
                out += "oe";
                break;
            case U'ü':
                out += "ue";
                break;
            case U'Ä':
                out += "Ae";
                break;
            case U'Ö':
                out += "Oe";
                break;
            case U'Ü':
                out += "Ue";
                break;
            case U'ß':
                out += "ss";
                break;
            default:
                out += '_';
        }
    }
    return out;
}

std::string TypeLibraryIdl(std::string_view library, const std::vector<const ClassInfo*>& classes) {
    const std::string lib(library);
    std::ostringstream out;
    out << "// The type library " << lib << ", written from the member tables.\n"
        << "// Generated by `korvex members --idl docs/"
        << "korvex_tools.idl`; do not edit.\n"
        << "//\n"
        << "// GUIDs are name-based (UUID version 5) in the namespace {" << kTypeLibraryNamespace
        << "}:\n"
        << "// the library from \"" << lib << "\", a class from its ProgID \"" << lib
        << ".<Class>\", its interfaces from\n"
        << "// \"" << lib << "._<Class>\" and \"" << lib << ".__<Class>\", an enumeration from \""
        << lib << ".<Enum>\".\n"
        << "// Dispatch identifiers are the member tables': slot order from 1, the about box "
           "-552.\n"
        << "// Names outside widl's ASCII identifiers are spelt out (Größenänderung: "
           "Groessenaenderung).\n\n";

    // The Automation types, declared just far enough for widl: the library imports stdole2.tlb,
    // and every reference to these resolves there.
    out << "typedef [uuid(66504301-BE0F-101A-8BBB-00AA00300CAB), public] unsigned long "
           "OLE_COLOR;\n"
        << "typedef unsigned short OLECHAR;\n"
        << "typedef OLECHAR* BSTR;\n"
        << "typedef short VARIANT_BOOL;\n"
        << "typedef struct tagVARIANT VARIANT;\n"
        << "[object, uuid(00000000-0000-0000-C000-000000000046), local]\n"
        << "interface IUnknown {}\n"
        << "[object, uuid(00020400-0000-0000-C000-000000000046), local]\n"
        << "interface IDispatch : IUnknown {}\n"
        << "[object, uuid(BEF6E003-A874-101A-8BBA-00AA00300CAB), local]\n"
        << "interface IFontDisp : IDispatch {}\n"
        << "[object, uuid(7BF80981-BF32-101A-8BBB-00AA00300CAB), local]\n"
        << "interface IPictureDisp : IDispatch {}\n\n";

    out << "[uuid(" << TypeLibraryGuid(lib).Text() << "), version(1.0)]\n"
        << "library " << lib << "\n{\n"
        << "    importlib(\"stdole2.tlb\");\n";

    // Enumerations first, each once: two classes may share one.
    std::set<std::string> written;
    for (const ClassInfo* info : classes) {
        for (const EnumInfo& e : info->enums) {
            const std::string name = IdlName(e.name);
            if (!written.insert(name).second) continue;
            out << "\n    typedef [uuid(" << TypeLibraryGuid(lib + "." + e.name).Text()
                << ")] enum " << name << " {\n";
            for (std::size_t i = 0; i < e.members.size(); ++i) {
                out << "        " << IdlName(e.members[i].first) << " = " << e.members[i].second
                    << (i + 1 < e.members.size() ? ",\n" : "\n");
            }
            out << "    } " << name << ";\n";
        }
    }

    // Interfaces before the classes: a class name (Button) is also an event argument's name.
    for (const ClassInfo* info : classes) {
        out << "\n    [uuid(" << TypeLibraryGuid(lib + "._" + info->name).Text() << "), hidden]\n"
            << "    dispinterface _" << info->name << " {\n"
            << "    properties:\n"
            << "    methods:\n";
        for (const MemberInfo& m : info->members) WriteMember(out, m);
        out << "    };\n";
        out << "\n    [uuid(" << TypeLibraryGuid(lib + ".__" + info->name).Text() << "), hidden]\n"
            << "    dispinterface __" << info->name << " {\n"
            << "    properties:\n"
            << "    methods:\n";
        for (const EventInfo& e : info->events) WriteEvent(out, e);
        out << "    };\n";
    }
    for (const ClassInfo* info : classes) {
        const std::string progId = info->progId.empty() ? lib + "." + info->name : info->progId;
        out << "\n    [uuid(" << TypeLibraryGuid(progId).Text() << "), control]\n"
            << "    coclass " << info->name << " {\n"
            << "        [default] dispinterface _" << info->name << ";\n"
            << "        [default, source] dispinterface __" << info->name << ";\n"
            << "    };\n";
    }
    out << "};\n";
    return out.str();
}

}  // namespace korvex::host
