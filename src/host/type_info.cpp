#include "host/type_info.hpp"

#include <algorithm>

#include "base/error.hpp"
#include "host/text.hpp"

namespace korvex::host {

std::string_view TypeCodeName(TypeCode code) {
    switch (code) {
        case TypeCode::Void:
            return "Void";
        case TypeCode::Variant:
            return "Variant";
        case TypeCode::Boolean:
            return "Boolean";
        case TypeCode::Integer:
            return "Integer";
        case TypeCode::Long:
            return "Long";
        case TypeCode::Single:
            return "Single";
        case TypeCode::Double:
            return "Double";
        case TypeCode::String:
            return "String";
        case TypeCode::Color:
            return "OLE_COLOR";
        case TypeCode::Enum:
            return "Enum";
        case TypeCode::Font:
            return "StdFont";
        case TypeCode::Picture:
            return "StdPicture";
        case TypeCode::Object:
            return "Object";
    }
    return "?";
}

const MemberInfo* ClassInfo::FindMember(std::string_view memberName) const {
    auto it = std::find_if(members.begin(), members.end(),
                           [&](const MemberInfo& m) { return EqualsNoCase(m.name, memberName); });
    return it == members.end() ? nullptr : &*it;
}

const EventInfo* ClassInfo::FindEvent(std::string_view eventName) const {
    auto it = std::find_if(events.begin(), events.end(),
                           [&](const EventInfo& e) { return EqualsNoCase(e.name, eventName); });
    return it == events.end() ? nullptr : &*it;
}

const EventInfo* ClassInfo::Event(std::int32_t id) const {
    if (id < 1 || id > static_cast<std::int32_t>(events.size())) return nullptr;
    return &events[static_cast<std::size_t>(id - 1)];
}

const EnumInfo* ClassInfo::FindEnum(std::string_view enumName) const {
    auto it = std::find_if(enums.begin(), enums.end(),
                           [&](const EnumInfo& e) { return EqualsNoCase(e.name, enumName); });
    return it == enums.end() ? nullptr : &*it;
}

void ClassRegistry::Register(const ClassInfo& info) {
    for (const ClassInfo*& existing : classes_) {
        if (EqualsNoCase(existing->progId, info.progId)) {
            existing = &info;
            return;
        }
    }
    classes_.push_back(&info);
}

const ClassInfo* ClassRegistry::Find(std::string_view progId) const {
    for (const ClassInfo* info : classes_) {
        if (EqualsNoCase(info->progId, progId)) return info;
    }
    return nullptr;
}

std::shared_ptr<Control> ClassRegistry::Create(std::string_view progId,
                                               HostContext& context) const {
    const ClassInfo* info = Find(progId);
    if (!info || !info->create) {
        throw HostError(kErrCannotCreateObject,
                        std::string(StandardErrorText(kErrCannotCreateObject)) + " (" +
                            std::string(progId) + ")",
                        {});
    }
    return info->create(context);
}

std::vector<const ClassInfo*> ClassRegistry::Classes() const {
    return classes_;
}

Variant Invoke(Object& object, std::string_view name, InvokeKind kind, std::span<Variant> args) {
    const ClassInfo& info = object.TypeInfo();
    const MemberInfo* member = info.FindMember(name);
    if (!member) throw HostError(kErrNotSupported, info.name);

    if (member->kind == MemberInfo::Kind::Property) {
        if (kind == InvokeKind::Let || kind == InvokeKind::Set) {
            if (!member->put) throw HostError(kErrReadOnlyProperty, info.name);
            if (args.size() != 1) throw HostError(kErrWrongArguments, info.name);
            member->put(object, args[0]);
            return {};
        }
        if (!args.empty()) throw HostError(kErrWrongArguments, info.name);
        return member->get(object);
    }

    if (kind == InvokeKind::Let || kind == InvokeKind::Set)
        throw HostError(kErrWrongArguments, info.name);
    if (args.size() > member->params.size()) throw HostError(kErrWrongArguments, info.name);
    std::vector<Variant> full(args.begin(), args.end());
    for (std::size_t i = 0; i < member->params.size(); ++i) {
        if (i < full.size() && !full[i].IsMissing()) continue;
        if (!member->params[i].optional) throw HostError(kErrArgumentNotOptional, info.name);
        if (i >= full.size()) full.push_back(Variant::Missing());
    }
    Variant result = member->call(object, full);
    // By-reference arguments: what the method wrote goes back to the caller.
    std::copy_n(full.begin(), args.size(), args.begin());
    return result;
}

}  // namespace korvex::host
