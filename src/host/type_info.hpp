#pragma once
// The member table (the library's type library): per class its ProgID, its properties and
// methods in slot order with their dispatch identifiers and argument lists, its events numbered
// from 1, and its public enumerations. One table per class, written once with ClassBuilder; the
// form loader, the CLI, property pages and later COM dispatch all read it.

#include <cassert>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "host/declare.hpp"
#include "host/object.hpp"
#include "host/variant.hpp"

namespace korvex::host {

class Control;
class HostContext;

// The standard dispatch identifier of an about box.
inline constexpr std::int32_t kDispIdAboutBox = -552;

enum class TypeCode {
    Void,
    Variant,
    Boolean,
    Integer,
    Long,
    Single,
    Double,
    String,
    Color,
    Enum,
    Font,
    Picture,
    Object
};

struct TypeRef {
    TypeCode code = TypeCode::Variant;
    std::string enumName;  // for TypeCode::Enum
};

std::string_view TypeCodeName(TypeCode code);

struct ParamInfo {
    std::string name;
    TypeRef type;
    bool optional = false;
};

// Shorthands for argument lists: Arg("x", TypeCode::Single), Optional("Width").
inline ParamInfo Arg(std::string name, TypeCode code = TypeCode::Variant) {
    return {std::move(name), {code, {}}, false};
}
inline ParamInfo Optional(std::string name, TypeCode code = TypeCode::Variant) {
    return {std::move(name), {code, {}}, true};
}
// The arguments every control's mouse events carry (Button, Shift, x, y) and its key events
// (KeyCode, Shift).
inline std::vector<ParamInfo> MouseEventArgs() {
    return {Arg("Button", TypeCode::Integer), Arg("Shift", TypeCode::Integer),
            Arg("x", TypeCode::Single), Arg("y", TypeCode::Single)};
}
inline std::vector<ParamInfo> KeyEventArgs() {
    return {Arg("KeyCode", TypeCode::Integer), Arg("Shift", TypeCode::Integer)};
}

// What the reference and the type library say about a persisted property: its bag key, the
// kind it is stored as, and its three defaults as the host prints them.
struct PersistInfo {
    std::string key;
    VarKind kind = VarKind::Empty;
    std::string init, read, write;
};

struct MemberInfo {
    enum class Kind { Property, Method };
    std::string name;
    std::int32_t dispId = 0;
    Kind kind = Kind::Property;
    TypeRef type;  // property type or method result
    std::vector<ParamInfo> params;
    std::function<Variant(Object&)> get;                       // properties
    std::function<void(Object&, const Variant&)> put;          // let/set; empty when read-only
    std::function<Variant(Object&, std::span<Variant>)> call;  // methods
    std::optional<PersistInfo> persisted;                      // properties kept in the bag

    [[nodiscard]] bool ReadOnly() const { return kind == Kind::Property && !put; }
};

struct EventInfo {
    std::string name;
    std::int32_t id = 0;  // from 1, in interface order
    std::vector<ParamInfo> params;
};

struct EnumInfo {
    std::string name;
    std::vector<std::pair<std::string, std::int32_t>> members;
};

class ClassInfo {
  public:
    std::string name;
    std::string progId;  // empty for objects that are not creatable controls
    std::vector<MemberInfo> members;
    std::vector<EventInfo> events;
    std::vector<EnumInfo> enums;
    // Creates an instance for a host; controls take the host context so their constituent
    // objects can reach the platform from the start.
    std::function<std::shared_ptr<Control>(HostContext&)> create;

    // Case-insensitive lookups; nullptr when absent.
    [[nodiscard]] const MemberInfo* FindMember(std::string_view memberName) const;
    [[nodiscard]] const EventInfo* FindEvent(std::string_view eventName) const;
    [[nodiscard]] const EventInfo* Event(std::int32_t id) const;
    [[nodiscard]] const EnumInfo* FindEnum(std::string_view enumName) const;
};

namespace detail {
template <class V>
TypeCode TypeCodeOf() {
    using T = std::remove_cvref_t<V>;
    if constexpr (std::is_same_v<T, void>)
        return TypeCode::Void;
    else if constexpr (std::is_same_v<T, bool>)
        return TypeCode::Boolean;
    else if constexpr (std::is_same_v<T, std::int16_t>)
        return TypeCode::Integer;
    else if constexpr (std::is_same_v<T, std::int32_t>)
        return TypeCode::Long;
    else if constexpr (std::is_same_v<T, std::uint32_t>)
        return TypeCode::Color;
    else if constexpr (std::is_same_v<T, float>)
        return TypeCode::Single;
    else if constexpr (std::is_same_v<T, double>)
        return TypeCode::Double;
    else if constexpr (std::is_same_v<T, std::string>)
        return TypeCode::String;
    else if constexpr (std::is_enum_v<T>)
        return TypeCode::Enum;
    else if constexpr (std::is_same_v<T, std::shared_ptr<StdFont>>)
        return TypeCode::Font;
    else if constexpr (std::is_same_v<T, std::shared_ptr<StdPicture>>)
        return TypeCode::Picture;
    else if constexpr (std::is_same_v<T, std::shared_ptr<Object>>)
        return TypeCode::Object;
    else
        return TypeCode::Variant;
}
}  // namespace detail

// Builds one class's table. Properties take a getter `V(T&)` and a setter `void(T&, V)`; the
// property's type is the getter's result. Dispatch identifiers follow slot order from 1 unless
// given.
template <class T>
class ClassBuilder {
  public:
    explicit ClassBuilder(std::string name, std::string progId = {}) {
        info_.name = std::move(name);
        info_.progId = std::move(progId);
        if constexpr (std::is_base_of_v<Control, T> && std::is_constructible_v<T, HostContext&>) {
            info_.create = [](HostContext& context) {
                return std::static_pointer_cast<Control>(std::make_shared<T>(context));
            };
        } else if constexpr (std::is_base_of_v<Control, T> && std::is_default_constructible_v<T>) {
            info_.create = [](HostContext&) {
                return std::static_pointer_cast<Control>(std::make_shared<T>());
            };
        }
    }

    template <class Getter, class Setter>
    ClassBuilder& Property(std::string name, Getter getter, Setter setter,
                           std::string enumName = {}) {
        using V = std::remove_cvref_t<std::invoke_result_t<Getter, T&>>;
        MemberInfo& m =
            AddMember(std::move(name), MemberInfo::Kind::Property, TypeFor<V>(enumName));
        m.get = [getter](Object& o) { return Variant(getter(static_cast<T&>(o))); };
        m.put = [setter](Object& o, const Variant& v) {
            setter(static_cast<T&>(o), FromVariant<V>(v));
        };
        return *this;
    }

    // A declared property (host/declare.hpp): its type, accessors, key and defaults come from
    // the declaration; a declared enumeration names itself.
    template <class V>
    ClassBuilder& Property(const host::Property<T, V>& declared) {
        std::string enumName;
        if constexpr (DeclaredEnum<V>) enumName = EnumOf<V>().Name();
        MemberInfo& m =
            AddMember(std::string(declared.name), MemberInfo::Kind::Property, TypeFor<V>(enumName));
        const auto get = declared.get;
        const auto set = declared.set;
        m.get = [get](Object& o) { return Variant((static_cast<T&>(o).*get)()); };
        if (set)
            m.put = [set](Object& o, const Variant& v) {
                (static_cast<T&>(o).*set)(FromVariant<V>(v));
            };
        if (declared.persist) {
            m.persisted =
                PersistInfo{std::string(declared.Key()), declared.StoredKind(),
                            declared.Describe(declared.init), declared.Describe(declared.read),
                            declared.Describe(declared.write)};
        }
        return *this;
    }

    template <class Getter>
    ClassBuilder& ReadOnly(std::string name, Getter getter, std::string enumName = {}) {
        using V = std::remove_cvref_t<std::invoke_result_t<Getter, T&>>;
        MemberInfo& m =
            AddMember(std::move(name), MemberInfo::Kind::Property, TypeFor<V>(enumName));
        m.get = [getter](Object& o) { return Variant(getter(static_cast<T&>(o))); };
        return *this;
    }

    // fn: Variant(T&, std::span<Variant>) or void(T&, std::span<Variant>).
    template <class Fn>
    ClassBuilder& Method(std::string name, std::vector<ParamInfo> params, Fn fn,
                         TypeCode result = TypeCode::Void) {
        MemberInfo& m = AddMember(std::move(name), MemberInfo::Kind::Method, {result, {}});
        m.params = std::move(params);
        m.call = [fn](Object& o, std::span<Variant> args) -> Variant {
            if constexpr (std::is_void_v<std::invoke_result_t<Fn, T&, std::span<Variant>>>) {
                fn(static_cast<T&>(o), args);
                return {};
            } else {
                return Variant(fn(static_cast<T&>(o), args));
            }
        };
        return *this;
    }

    // Overrides the dispatch identifier of the member added last.
    ClassBuilder& DispId(std::int32_t id) {
        info_.members.back().dispId = id;
        --nextDispId_;
        return *this;
    }

    ClassBuilder& Event(std::string name, std::vector<ParamInfo> params = {}) {
        const auto id = static_cast<std::int32_t>(info_.events.size()) + 1;
        info_.events.push_back({std::move(name), id, std::move(params)});
        return *this;
    }

    // The control's events, numbered by their declaration (KORVEX_EVENTS); `params` gives the
    // arguments of those that have any.
    template <DeclaredEnum E>
    ClassBuilder& Events(std::vector<std::pair<E, std::vector<ParamInfo>>> params = {}) {
        for (const auto& [eventName, id] : EnumOf<E>().List()) {
            std::vector<ParamInfo> args;
            for (auto& [event, list] : params)
                if (static_cast<std::int32_t>(event) == id) args = list;
            Event(eventName, std::move(args));
            assert(info_.events.back().id == id && "events are numbered from 1 without gaps");
        }
        return *this;
    }

    template <DeclaredEnum E>
    ClassBuilder& Enum() {
        return Enum(EnumOf<E>().Name(), EnumOf<E>().List());
    }

    ClassBuilder& Enum(std::string name,
                       std::vector<std::pair<std::string, std::int32_t>> members) {
        info_.enums.push_back({std::move(name), std::move(members)});
        return *this;
    }

    ClassInfo Build() { return std::move(info_); }

  private:
    template <class V>
    static TypeRef TypeFor(std::string enumName) {
        return {detail::TypeCodeOf<V>(), std::move(enumName)};
    }

    MemberInfo& AddMember(std::string name, MemberInfo::Kind kind, TypeRef type) {
        MemberInfo m;
        m.name = std::move(name);
        m.kind = kind;
        m.type = std::move(type);
        m.dispId = nextDispId_++;
        info_.members.push_back(std::move(m));
        return info_.members.back();
    }

    ClassInfo info_;
    std::int32_t nextDispId_ = 1;
};

// Property accessors for ClassBuilder::Property, for the usual pair of overloads Name() and
// Name(New_Name).
#define KORVEX_PROPERTY(Name) \
#Name, [](auto& o) { return o.Name(); }, [](auto& o, auto value) { o.Name(std::move(value)); }
#define KORVEX_READONLY(Name) #Name, [](auto& o) { return o.Name(); }

// Creatable classes by ProgID. Held by the host context; nothing global.
class ClassRegistry {
  public:
    // The table must outlive the registry (tables are function-local constants of each class).
    void Register(const ClassInfo& info);
    // nullptr when unknown.
    [[nodiscard]] const ClassInfo* Find(std::string_view progId) const;
    // Error 429 for an unknown ProgID.
    [[nodiscard]] std::shared_ptr<Control> Create(std::string_view progId,
                                                  HostContext& context) const;
    [[nodiscard]] std::vector<const ClassInfo*> Classes() const;

  private:
    std::vector<const ClassInfo*> classes_;
};

}  // namespace korvex::host
