#pragma once
// Variant: the values the host passes and persists, converted by the host's rules.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

#include "host/ole_types.hpp"

namespace korvex::host {

class Object;
class StdFont;
class StdPicture;

enum class VarKind {
    Empty,
    Boolean,
    Integer,  // 16-bit
    Long,     // 32-bit
    Single,
    Double,
    String,  // UTF-8
    Font,
    Picture,
    Object,   // any other late-bound object, or Nothing
    Missing,  // an optional argument the caller left out
};

std::string_view KindName(VarKind kind);

class Variant {
  public:
    Variant() = default;
    Variant(bool value) : value_(value) {}
    Variant(std::int16_t value) : value_(value) {}
    Variant(std::int32_t value) : value_(value) {}
    // Colours and other unsigned words are stored as the Long with the same bits.
    Variant(std::uint32_t value) : value_(static_cast<std::int32_t>(value)) {}
    Variant(float value) : value_(value) {}
    Variant(double value) : value_(value) {}
    Variant(std::string value) : value_(std::move(value)) {}
    Variant(std::string_view value) : value_(std::string(value)) {}
    Variant(const char* value) : value_(std::string(value)) {}
    Variant(std::shared_ptr<StdFont> font);
    Variant(std::shared_ptr<StdPicture> picture);
    Variant(std::shared_ptr<Object> object);
    // Enumerations travel as Long.
    template <class E>
    requires std::is_enum_v<E> Variant(E value) : value_(static_cast<std::int32_t>(value)) {}

    static Variant Missing();
    static Variant Nothing() { return Variant(std::shared_ptr<Object>()); }

    [[nodiscard]] VarKind Kind() const;
    [[nodiscard]] bool IsEmpty() const { return Kind() == VarKind::Empty; }
    [[nodiscard]] bool IsMissing() const { return Kind() == VarKind::Missing; }
    [[nodiscard]] bool IsNumeric() const;
    // Font, Picture or Object, including Nothing.
    [[nodiscard]] bool IsObject() const;

    // Conversions as the host makes them: numbers round half to even into Integer and Long and
    // raise error 6 out of range; a text converts only if it is a number (else error 13);
    // Boolean True is -1.
    [[nodiscard]] bool ToBool() const;
    [[nodiscard]] std::int16_t ToInteger() const;
    [[nodiscard]] std::int32_t ToLong() const;
    [[nodiscard]] float ToSingle() const;
    [[nodiscard]] double ToDouble() const;
    [[nodiscard]] std::string ToString() const;
    // Error 13 for a value of another kind; Nothing gives nullptr.
    [[nodiscard]] std::shared_ptr<StdFont> ToFont() const;
    [[nodiscard]] std::shared_ptr<StdPicture> ToPicture() const;
    [[nodiscard]] std::shared_ptr<Object> ToObject() const;

    // Converts to the kind of `like` (used for typed defaults); an Empty or Object `like` keeps
    // the value as it is.
    [[nodiscard]] Variant ConvertedLike(const Variant& like) const;

    // Exact equality: same kind and value; objects by identity.
    friend bool operator==(const Variant& a, const Variant& b);

  private:
    struct MissingTag {
        friend bool operator==(MissingTag, MissingTag) { return true; }
    };
    struct ObjectRef {
        std::shared_ptr<Object> object;
        VarKind kind = VarKind::Object;
        friend bool operator==(const ObjectRef& a, const ObjectRef& b) {
            return a.object == b.object && a.kind == b.kind;
        }
    };
    double NumberOrMismatch() const;

    std::variant<std::monostate, bool, std::int16_t, std::int32_t, float, double, std::string,
                 ObjectRef, MissingTag>
        value_;
};

// Host comparison for "is this the default": numbers compare by value across kinds (Integer 5
// equals Long 5, True equals -1), texts exactly, fonts by their attributes, other objects by
// identity. Values that cannot be compared are unequal.
bool ValueEquals(const Variant& a, const Variant& b);

// Same kind and same content: fonts by attributes, pictures by pixels, other objects by
// identity. What a save-and-restore must preserve.
bool SameValue(const Variant& a, const Variant& b);

// The host's text form of a value for logs: numbers as printed, strings in double quotes,
// True/False, Nothing, Empty, Missing.
std::string DisplayText(const Variant& value);

// Typed access used by member tables and event arguments.
template <class T>
T FromVariant(const Variant& v) {
    if constexpr (std::is_same_v<T, Variant>)
        return v;
    else if constexpr (std::is_same_v<T, bool>)
        return v.ToBool();
    else if constexpr (std::is_same_v<T, std::int16_t>)
        return v.ToInteger();
    else if constexpr (std::is_same_v<T, std::int32_t>)
        return v.ToLong();
    else if constexpr (std::is_same_v<T, std::uint32_t>)
        return static_cast<std::uint32_t>(v.ToLong());
    else if constexpr (std::is_same_v<T, float>)
        return v.ToSingle();
    else if constexpr (std::is_same_v<T, double>)
        return v.ToDouble();
    else if constexpr (std::is_same_v<T, std::string>)
        return v.ToString();
    else if constexpr (std::is_enum_v<T>)
        return static_cast<T>(v.ToLong());
    else if constexpr (std::is_same_v<T, std::shared_ptr<StdFont>>)
        return v.ToFont();
    else if constexpr (std::is_same_v<T, std::shared_ptr<StdPicture>>)
        return v.ToPicture();
    else if constexpr (std::is_same_v<T, std::shared_ptr<Object>>)
        return v.ToObject();
    else
        static_assert(sizeof(T) == 0, "no host conversion for this type");
}

}  // namespace korvex::host
