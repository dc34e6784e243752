#include "host/variant.hpp"

#include <cmath>

#include "base/error.hpp"
#include "host/font.hpp"
#include "host/numeric.hpp"
#include "host/text.hpp"

namespace korvex::host {

namespace {

[[noreturn]] void Mismatch() {
    throw HostError(kErrTypeMismatch);
}

}  // namespace

std::string_view KindName(VarKind kind) {
    switch (kind) {
        case VarKind::Empty:
            return "Empty";
        case VarKind::Boolean:
            return "Boolean";
        case VarKind::Integer:
            return "Integer";
        case VarKind::Long:
            return "Long";
        case VarKind::Single:
            return "Single";
        case VarKind::Double:
            return "Double";
        case VarKind::String:
            return "String";
        case VarKind::Font:
            return "Font";
        case VarKind::Picture:
            return "Picture";
        case VarKind::Object:
            return "Object";
        case VarKind::Missing:
            return "Missing";
    }
    return "?";
}

Variant::Variant(std::shared_ptr<StdFont> font)
    : Variant(std::shared_ptr<Object>(std::move(font))) {}

Variant::Variant(std::shared_ptr<StdPicture> picture)
    : Variant(std::shared_ptr<Object>(std::move(picture))) {}

Variant::Variant(std::shared_ptr<Object> object) {
    // Fonts and pictures keep their own kind however they were passed; a null one is Nothing.
    VarKind kind = VarKind::Object;
    if (dynamic_cast<StdFont*>(object.get()))
        kind = VarKind::Font;
    else if (dynamic_cast<StdPicture*>(object.get()))
        kind = VarKind::Picture;
    value_ = ObjectRef{std::move(object), kind};
}

Variant Variant::Missing() {
    Variant v;
    v.value_ = MissingTag{};
    return v;
}

VarKind Variant::Kind() const {
    switch (value_.index()) {
        case 0:
            return VarKind::Empty;
        case 1:
            return VarKind::Boolean;
        case 2:
            return VarKind::Integer;
        case 3:
            return VarKind::Long;
        case 4:
            return VarKind::Single;
        case 5:
            return VarKind::Double;
        case 6:
            return VarKind::String;
        case 7:
            return std::get<ObjectRef>(value_).kind;
        default:
            return VarKind::Missing;
    }
}

bool Variant::IsNumeric() const {
    switch (Kind()) {
        case VarKind::Boolean:
        case VarKind::Integer:
        case VarKind::Long:
        case VarKind::Single:
        case VarKind::Double:
            return true;
        default:
            return false;
    }
}

bool Variant::IsObject() const {
    return std::holds_alternative<ObjectRef>(value_);
}

double Variant::NumberOrMismatch() const {
    switch (value_.index()) {
        case 0:
            return 0;
        case 1:
            return std::get<bool>(value_) ? -1 : 0;
        case 2:
            return std::get<std::int16_t>(value_);
        case 3:
            return std::get<std::int32_t>(value_);
        case 4:
            return static_cast<double>(std::get<float>(value_));
        case 5:
            return std::get<double>(value_);
        case 6: {
            const std::string& s = std::get<std::string>(value_);
            if (EqualsNoCase(s, "True")) return -1;
            if (EqualsNoCase(s, "False")) return 0;
            if (auto n = ParseNumber(s)) return *n;
            Mismatch();
        }
        default:
            Mismatch();
    }
}

bool Variant::ToBool() const {
    if (auto b = std::get_if<bool>(&value_)) return *b;
    return NumberOrMismatch() != 0;
}

std::int16_t Variant::ToInteger() const {
    if (auto i = std::get_if<std::int16_t>(&value_)) return *i;
    return host::ToInteger(NumberOrMismatch());
}

std::int32_t Variant::ToLong() const {
    if (auto l = std::get_if<std::int32_t>(&value_)) return *l;
    return host::ToLong(NumberOrMismatch());
}

float Variant::ToSingle() const {
    if (auto f = std::get_if<float>(&value_)) return *f;
    return host::ToSingle(NumberOrMismatch());
}

double Variant::ToDouble() const {
    return NumberOrMismatch();
}

std::string Variant::ToString() const {
    switch (value_.index()) {
        case 0:
            return {};
        case 1:
            return std::get<bool>(value_) ? "True" : "False";
        case 2:
            return std::to_string(std::get<std::int16_t>(value_));
        case 3:
            return std::to_string(std::get<std::int32_t>(value_));
        case 4:
            return FormatSingle(std::get<float>(value_));
        case 5:
            return FormatDouble(std::get<double>(value_));
        case 6:
            return std::get<std::string>(value_);
        case 7: {
            // The default member of a font is its name, of a picture its handle.
            const ObjectRef& ref = std::get<ObjectRef>(value_);
            if (auto font = dynamic_cast<StdFont*>(ref.object.get())) return font->Name();
            if (auto picture = dynamic_cast<StdPicture*>(ref.object.get()))
                return std::to_string(picture->Handle());
            Mismatch();
        }
        default:
            Mismatch();
    }
}

std::shared_ptr<StdFont> Variant::ToFont() const {
    auto ref = std::get_if<ObjectRef>(&value_);
    if (!ref) Mismatch();
    if (!ref->object) return nullptr;
    auto font = std::dynamic_pointer_cast<StdFont>(ref->object);
    if (!font) Mismatch();
    return font;
}

std::shared_ptr<StdPicture> Variant::ToPicture() const {
    auto ref = std::get_if<ObjectRef>(&value_);
    if (!ref) Mismatch();
    if (!ref->object) return nullptr;
    auto picture = std::dynamic_pointer_cast<StdPicture>(ref->object);
    if (!picture) Mismatch();
    return picture;
}

std::shared_ptr<Object> Variant::ToObject() const {
    auto ref = std::get_if<ObjectRef>(&value_);
    if (!ref) throw HostError(kErrObjectRequired);
    return ref->object;
}

Variant Variant::ConvertedLike(const Variant& like) const {
    if (Kind() == like.Kind()) return *this;
    switch (like.Kind()) {
        case VarKind::Boolean:
            return ToBool();
        case VarKind::Integer:
            return ToInteger();
        case VarKind::Long:
            return ToLong();
        case VarKind::Single:
            return ToSingle();
        case VarKind::Double:
            return ToDouble();
        case VarKind::String:
            return ToString();
        case VarKind::Font:
            return ToFont();
        case VarKind::Picture:
            return ToPicture();
        default:
            return *this;
    }
}

bool operator==(const Variant& a, const Variant& b) {
    return a.value_ == b.value_;
}

bool ValueEquals(const Variant& a, const Variant& b) {
    const VarKind ka = a.Kind();
    const VarKind kb = b.Kind();
    if (a.IsObject() || b.IsObject()) {
        if (!a.IsObject() || !b.IsObject()) return false;
        if (ka == VarKind::Font && kb == VarKind::Font)
            return a.ToFont()->SameAttributes(*b.ToFont());
        return a.ToObject() == b.ToObject();
    }
    if (ka == VarKind::Missing || kb == VarKind::Missing) return ka == kb;
    if (ka == VarKind::String && kb == VarKind::String) return a.ToString() == b.ToString();
    // Empty is "" beside a text and 0 beside a number; a text beside a number compares as the
    // number it holds, and one that holds none is simply different.
    if (ka == VarKind::Empty || kb == VarKind::Empty) {
        if (ka == VarKind::String || kb == VarKind::String) return a.ToString() == b.ToString();
    }
    try {
        return a.ToDouble() == b.ToDouble();
    } catch (const HostError&) {
        return false;
    }
}

bool SameValue(const Variant& a, const Variant& b) {
    if (a.Kind() != b.Kind()) return false;
    if (a.Kind() == VarKind::Font) return a.ToFont()->SameAttributes(*b.ToFont());
    if (a.Kind() == VarKind::Picture) return a.ToPicture()->SameContent(*b.ToPicture());
    return a == b;
}

std::string DisplayText(const Variant& value) {
    switch (value.Kind()) {
        case VarKind::Empty:
            return "Empty";
        case VarKind::Missing:
            return "Missing";
        case VarKind::String: {
            std::string out = "\"";
            for (char c : value.ToString()) {
                out += c;
                if (c == '"') out += '"';  // the host doubles quotes inside a text
            }
            return out + "\"";
        }
        case VarKind::Font:
            return "Font(" + DisplayText(value.ToFont()->Name()) + ")";
        case VarKind::Picture: {
            auto p = value.ToPicture();
            return "Picture(" + std::to_string(static_cast<int>(p->Type())) + ", " +
                   std::to_string(p->PixelWidth()) + "x" + std::to_string(p->PixelHeight()) + ")";
        }
        case VarKind::Object:
            return value.ToObject() ? "Object" : "Nothing";
        default:
            return value.ToString();
    }
}

}  // namespace korvex::host
