#include "com/dispatch.hpp"

#include <new>
#include <vector>

#include "base/error.hpp"
#include "com/convert.hpp"
#include "com/module.hpp"
#include "host/text.hpp"

namespace korvex::com {

using host::HostError;

HRESULT ErrorCode(std::int32_t number) {
    return MAKE_HRESULT(SEVERITY_ERROR, FACILITY_CONTROL, static_cast<unsigned>(number) & 0xFFFFu);
}

const host::MemberInfo* FindMember(const host::ClassInfo& info, DISPID id) {
    for (const host::MemberInfo& m : info.members)
        if (m.dispId == id) return &m;
    return nullptr;
}

HRESULT GetIdsOfNames(const host::ClassInfo& info, LPOLESTR* names, UINT count, DISPID* ids) {
    if (!names || !ids) return E_POINTER;
    if (count == 0) return S_OK;
    for (UINT i = 0; i < count; ++i)
        if (!names[i]) return E_POINTER;
    const host::MemberInfo* member = info.FindMember(Narrow(names[0], wcslen(names[0])));
    ids[0] = member ? member->dispId : DISPID_UNKNOWN;
    HRESULT hr = member ? S_OK : DISP_E_UNKNOWNNAME;
    // Named arguments: their position in the member's list.
    for (UINT i = 1; i < count; ++i) {
        ids[i] = DISPID_UNKNOWN;
        if (!member) continue;
        const std::string name = Narrow(names[i], wcslen(names[i]));
        for (std::size_t p = 0; p < member->params.size(); ++p)
            if (host::EqualsNoCase(member->params[p].name, name)) ids[i] = static_cast<DISPID>(p);
        if (ids[i] == DISPID_UNKNOWN) hr = DISP_E_UNKNOWNNAME;
    }
    return hr;
}

HRESULT ExceptionResult(EXCEPINFO* exception, std::string_view source) {
    std::int32_t number = host::kErrInvalidCall;
    std::string text;
    try {
        throw;
    } catch (const HostError& e) {
        number = e.Number();
        text = e.Description();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (const std::exception& e) {
        text = e.what();
    } catch (...) {
        return E_UNEXPECTED;
    }
    if (exception) {
        *exception = EXCEPINFO{};
        exception->scode = ErrorCode(number);
        const std::wstring wideSource = Widen(source);
        const std::wstring wideText = Widen(text);
        exception->bstrSource = SysAllocString(wideSource.c_str());
        exception->bstrDescription = SysAllocString(wideText.c_str());
    }
    return DISP_E_EXCEPTION;
}

namespace {

bool Has(WORD flags, WORD flag) {
    return (flags & flag) != 0;
}

}  // namespace

HRESULT InvokeMember(host::Object& object, const host::ClassInfo& info, DISPID id, WORD flags,
                     DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception, UINT* argError,
                     std::string_view source, EditGate* gate) {
    DISPPARAMS none{};
    if (!params) params = &none;
    const host::MemberInfo* member = FindMember(info, id);
    if (!member) return DISP_E_MEMBERNOTFOUND;
    const bool put = Has(flags, DISPATCH_PROPERTYPUT) || Has(flags, DISPATCH_PROPERTYPUTREF);
    if (result) VariantInit(result);
    try {
        if (put) {
            if (member->kind != host::MemberInfo::Kind::Property) return DISP_E_MEMBERNOTFOUND;
            if (params->cNamedArgs > 1 ||
                (params->cNamedArgs == 1 && params->rgdispidNamedArgs[0] != DISPID_PROPERTYPUT))
                return DISP_E_PARAMNOTOPTIONAL;
            if (params->cArgs != 1) return DISP_E_BADPARAMCOUNT;
            if (!member->put) throw HostError(host::kErrReadOnlyProperty, info.name);
            const host::Variant value = ToHost(params->rgvarg[0]);
            if (gate && !gate->MayEdit(*member)) throw HostError(host::kErrNotPermitted, info.name);
            member->put(object, value);
            return S_OK;
        }
        if (params->cNamedArgs != 0) return DISP_E_NONAMEDARGS;
        host::Variant out;
        if (member->kind == host::MemberInfo::Kind::Property) {
            if (params->cArgs != 0) throw HostError(host::kErrWrongArguments, info.name);
            out = member->get(object);
        } else {
            if (params->cArgs > member->params.size())
                throw HostError(host::kErrWrongArguments, info.name);
            // DISPPARAMS holds the arguments last to first.
            std::vector<host::Variant> args(member->params.size(), host::Variant::Missing());
            for (UINT i = 0; i < params->cArgs; ++i) {
                try {
                    args[i] = ToHost(params->rgvarg[params->cArgs - 1 - i]);
                } catch (const HostError&) {
                    if (argError) *argError = params->cArgs - 1 - i;
                    throw;
                }
            }
            for (std::size_t i = 0; i < args.size(); ++i)
                if (args[i].IsMissing() && !member->params[i].optional)
                    throw HostError(host::kErrArgumentNotOptional, info.name);
            out = member->call(object, args);
            for (UINT i = 0; i < params->cArgs; ++i)
                WriteBack(args[i], &params->rgvarg[params->cArgs - 1 - i]);
        }
        if (result) ToVariant(out, result);
        return S_OK;
    } catch (...) {
        if (result) VariantClear(result);
        return ExceptionResult(exception, source);
    }
}

}  // namespace korvex::com
