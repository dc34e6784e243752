#pragma once
// Declaring a control's members once.
//
//   KORVEX_ENUM(OrientationConstants, lHorizontal = 0, lVertical = 1, lAuto = 2)
//       declares the enumeration and the names the member table publishes for it;
//   KORVEX_EVENTS(Line3DEvents, Click, MouseDown)
//       numbers the control's events from 1 in interface order;
//   host::Property<Line3D, OLE_COLOR> {.name = "BorderColor", .get = ..., .set = ..., .read = ...}
//       states a property's name, accessors, bag key and its three defaults in one place.
//
// The member table (ClassBuilder), the bag handlers, the generated member reference and the
// Windows type library all read these declarations, so no second list of names, numbers, keys
// or defaults exists anywhere.

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "host/font.hpp"
#include "host/property_bag.hpp"
#include "host/variant.hpp"

namespace korvex::host {

// ---------------------------------------------------------------------------------------------
// Enumerations and event lists

// The names and values of one enumeration, parsed once from the text of its declaration.
class EnumDeclaration {
  public:
    using Members = std::vector<std::pair<std::string, std::int32_t>>;
    // `body` is the enumerator list as written: "a = 1, b, c = 0x10"; a member without a value
    // follows the one before it, as in C++.
    EnumDeclaration(std::string_view name, std::string_view body);
    EnumDeclaration(std::string_view name, Members members)
        : name_(name), members_(std::move(members)) {}

    [[nodiscard]] const std::string& Name() const { return name_; }
    [[nodiscard]] const Members& List() const { return members_; }
    // The member's name, or an empty text for a value that has none (enumerations may hold any
    // 32-bit value).
    [[nodiscard]] std::string_view NameOf(std::int32_t value) const;

  private:
    std::string name_;
    Members members_;
};

// Found by argument-dependent lookup: every KORVEX_ENUM and KORVEX_EVENTS defines one beside its
// enumeration.
template <class E>
concept DeclaredEnum = std::is_enum_v<E> && requires(E e) {
    { DescribeEnum(e) } -> std::same_as<const EnumDeclaration&>;
};

template <DeclaredEnum E>
const EnumDeclaration& EnumOf() {
    return DescribeEnum(E{});
}

#define KORVEX_ENUM(Name, ...)                                                         \
    enum class Name : std::int32_t { __VA_ARGS__ };                                    \
    inline const ::korvex::host::EnumDeclaration& DescribeEnum(Name) {                 \
        static const ::korvex::host::EnumDeclaration declaration(#Name, #__VA_ARGS__); \
        return declaration;                                                            \
    }

// The seventeen members of a control's pointer enumeration ("Voreinstellung" = 0, "Pfeil" = 1,
// ...); only the custom member carries the control's letter ("bMouseIcon" = 99).
EnumDeclaration::Members MousePointerMembers(std::string_view customName);

// A control's pointer enumeration: the shared members under the control's own names.
#define KORVEX_POINTER_ENUM(Name, customName)                          \
    enum class Name : std::int32_t {};                                 \
    inline const ::korvex::host::EnumDeclaration& DescribeEnum(Name) { \
        static const ::korvex::host::EnumDeclaration declaration(      \
            #Name, ::korvex::host::MousePointerMembers(customName));   \
        return declaration;                                            \
    }

// Events are numbered from 1 in the order of the event interface.
#define KORVEX_EVENTS(Name, First, ...) KORVEX_ENUM(Name, First = 1, __VA_ARGS__)

// ---------------------------------------------------------------------------------------------
// Properties

// How a key is kept in the bag: the kind of Variant written and read. Colours and enumerations
// default to Long; a 16-bit enumeration says Integer; a size kept as a Double says Double.
enum class BagKind { Auto, Boolean, Integer, Long, Single, String, Font, Picture, Double };

// A default: a fixed value, or one computed from the control when it is needed (the ambient
// font, the colour the surface has now).
template <class C, class V>
struct Default {
    using Compute = V (*)(const C&);
    Default() = default;
    template <class U>
    requires std::is_convertible_v<U, V> || std::is_convertible_v<U, Compute> Default(
        U given, std::string_view text = {})
        : note(text), set(true) {
        if constexpr (std::is_convertible_v<U, Compute>)
            compute = given;
        else
            value = static_cast<V>(given);
    }

    [[nodiscard]] V Of(const C& control) const { return compute ? compute(control) : value; }

    V value{};
    Compute compute = nullptr;
    std::string_view note;  // how a computed default is found, for the reference
    bool set = false;
};

// One property of control class C with value type V. Read and write defaults differ for a few
// keys (a value equal to the write default is not stored and comes back as the read default);
// `init` is what a new control starts with. Left out, `write` and `init` equal `read`; a font's
// defaults are the ambient font and a picture's Nothing unless given.
template <class C, class V>
struct Property {
    using Getter = V (C::*)() const;
    using Setter = void (C::*)(V);

    std::string_view name;
    Getter get = nullptr;
    Setter set = nullptr;
    // Empty: the name. A property with persist false has no key.
    std::string_view key = {};
    Default<C, V> read = {};
    Default<C, V> write = {};
    Default<C, V> init = {};
    BagKind bag = BagKind::Auto;
    bool persist = true;
    // Where a restored value goes when not through the setter (straight into a constituent
    // object, say, without reporting a change).
    void (*restore)(C&, V) = nullptr;

    [[nodiscard]] std::string_view Key() const { return key.empty() ? name : key; }

    // The stored value, converted from the bag's kind (the read default when the key is absent).
    [[nodiscard]] V Read(const C& control, const PropertyBag& PropBag) const {
        return FromVariant<V>(ReadStored(control, PropBag));
    }
    // Reads the key and passes it to `restore`, or else to the property's own setter.
    void Load(C& control, const PropertyBag& PropBag) const {
        if (restore)
            restore(control, Read(control, PropBag));
        else
            (control.*set)(Read(control, PropBag));
    }
    void Save(const C& control, PropertyBag& PropBag) const {
        SaveValue(control, PropBag, (control.*get)());
    }
    // Writes `value` under this property's key, for a key whose value is not the getter's.
    void SaveValue(const C& control, PropertyBag& PropBag, const V& value) const {
        SaveStored(control, PropBag, Stored(value));
    }
    // The same pair for a value the declared type cannot carry exactly (a font size kept as a
    // Double behind a Single property): the bag's Variant as read, and one written as given.
    [[nodiscard]] Variant ReadStored(const C& control, const PropertyBag& PropBag) const {
        return PropBag.ReadProperty(Key(), Stored(ReadDefault(control)));
    }
    void SaveStored(const C& control, PropertyBag& PropBag, const Variant& value) const {
        PropBag.WriteProperty(Key(), value, Stored(WriteDefault(control)));
    }

    [[nodiscard]] V ReadDefault(const C& control) const {
        if (read.set) return read.Of(control);
        return Implicit(control);
    }
    [[nodiscard]] V WriteDefault(const C& control) const {
        return write.set ? write.Of(control) : ReadDefault(control);
    }
    [[nodiscard]] V Initial(const C& control) const {
        return init.set ? init.Of(control) : ReadDefault(control);
    }

    // The value in the bag's kind.
    [[nodiscard]] Variant Stored(const V& value) const {
        switch (bag) {
            case BagKind::Integer:
                // Checked: an enumeration value beyond 16 bits is the host's overflow, as any
                // Integer.
                if constexpr (std::is_enum_v<V>)
                    return Variant(static_cast<std::int32_t>(value))
                        .ConvertedLike(Variant(std::int16_t{}));
                else if constexpr (std::is_same_v<V, bool>)
                    return Variant(static_cast<std::int16_t>(value ? -1 : 0));
                else
                    return Variant(value).ConvertedLike(Variant(std::int16_t{}));
            case BagKind::Double:
                if constexpr (std::is_arithmetic_v<V>)
                    return Variant(static_cast<double>(value));
                else
                    return Variant(value).ConvertedLike(Variant(0.0));
            case BagKind::Long:
                if constexpr (std::is_enum_v<V> || std::is_integral_v<V>)
                    return Variant(static_cast<std::int32_t>(value));
                else
                    return Variant(value).ConvertedLike(Variant(std::int32_t{}));
            default:
                return Variant(value);
        }
    }

    // The defaults as the reference prints them: values as the host prints them, computed
    // ones by their note.
    [[nodiscard]] std::string Describe(const Default<C, V>& given) const {
        const Default<C, V>& d = given.set ? given : (read.set ? read : given);
        if (d.set && d.compute) return std::string(d.note.empty() ? "computed" : d.note);
        if (d.set) return DisplayText(Stored(d.value));
        if constexpr (std::is_same_v<V, std::shared_ptr<StdFont>>)
            return "ambient font";
        else
            return DisplayText(Stored(V{}));
    }
    [[nodiscard]] VarKind StoredKind() const {
        if constexpr (std::is_same_v<V, std::shared_ptr<StdFont>>)
            return VarKind::Font;
        else if constexpr (std::is_same_v<V, std::shared_ptr<StdPicture>>)
            return VarKind::Picture;
        else
            return Stored(V{}).Kind();
    }

  private:
    [[nodiscard]] static V Implicit(const C& control) {
        if constexpr (std::is_same_v<V, std::shared_ptr<StdFont>>)
            return control.Ambient().Font;
        else {
            (void)control;
            return V{};
        }
    }
};

// A control's keys in bag order, as `std::tie(Props::A, Props::B, ...)`: SaveAll writes each
// with its write default; LoadAll reads each and restores it as its declaration says (`restore`,
// else the setter). Handlers with special paths call the declarations one by one instead.
template <class C, class... P>
void SaveAll(const C& control, PropertyBag& PropBag, const std::tuple<const P&...>& keys) {
    std::apply([&](const auto&... key) { (key.Save(control, PropBag), ...); }, keys);
}
template <class C, class... P>
void LoadAll(C& control, const PropertyBag& PropBag, const std::tuple<const P&...>& keys) {
    std::apply([&](const auto&... key) { (key.Load(control, PropBag), ...); }, keys);
}

}  // namespace korvex::host
