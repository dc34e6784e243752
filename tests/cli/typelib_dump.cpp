// Loads a type library with the system's OLE Automation (run under Wine) and prints what a
// property browser reads from it, one line per fact:
//   coclass NAME control|plain
//   implements NAME IFACE default|source|default,source
//   member IFACE NAME MEMID get|put|putref|method TYPE   (TYPE of the value or result)
//   param IFACE NAME INDEX byref|byval TYPE
//   enum NAME CONSTANT VALUE
// A type from another library is printed as LIBRARY.NAME (stdole.OLE_COLOR), so the check can
// tell that colours and fonts reach the standard types a browser gives its pickers for.

#include <windows.h>

#include <cstdio>
#include <string>

namespace {

std::string Narrow(const wchar_t* text) {
    std::string out;
    for (; text && *text; ++text) out += *text < 128 ? static_cast<char>(*text) : '?';
    return out;
}

std::string TypeText(ITypeInfo* owner, const TYPEDESC& type) {
    switch (type.vt) {
        case VT_PTR:
            return TypeText(owner, *type.lptdesc) + "*";
        case VT_USERDEFINED: {
            ITypeInfo* referenced = nullptr;
            if (FAILED(owner->GetRefTypeInfo(type.hreftype, &referenced))) return "?unresolved";
            BSTR name = nullptr;
            referenced->GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr);
            ITypeLib* library = nullptr;
            UINT index = 0;
            std::string text = Narrow(name);
            if (SUCCEEDED(referenced->GetContainingTypeLib(&library, &index))) {
                BSTR libraryName = nullptr;
                library->GetDocumentation(-1, &libraryName, nullptr, nullptr, nullptr);
                text = Narrow(libraryName) + "." + text;
                SysFreeString(libraryName);
                library->Release();
            }
            SysFreeString(name);
            referenced->Release();
            return text;
        }
        default:
            return "vt" + std::to_string(type.vt);
    }
}

void DumpFunctions(ITypeInfo* info, const TYPEATTR* attr, const std::string& iface) {
    for (UINT i = 0; i < attr->cFuncs; ++i) {
        FUNCDESC* func = nullptr;
        if (FAILED(info->GetFuncDesc(i, &func))) continue;
        BSTR names[32] = {};
        UINT count = 0;
        info->GetNames(func->memid, names, 32, &count);
        const std::string name = count ? Narrow(names[0]) : "?";
        const char* kind = func->invkind == INVOKE_PROPERTYGET      ? "get"
                           : func->invkind == INVOKE_PROPERTYPUT    ? "put"
                           : func->invkind == INVOKE_PROPERTYPUTREF ? "putref"
                                                                    : "method";
        std::string type = TypeText(info, func->elemdescFunc.tdesc);
        if ((func->invkind == INVOKE_PROPERTYPUT || func->invkind == INVOKE_PROPERTYPUTREF) &&
            func->cParams > 0)
            type = TypeText(info, func->lprgelemdescParam[func->cParams - 1].tdesc);
        std::printf("member %s %s %ld %s %s%s\n", iface.c_str(), name.c_str(),
                    static_cast<long>(func->memid), kind, type.c_str(),
                    (func->wFuncFlags & FUNCFLAG_FHIDDEN) ? " hidden" : "");
        if (func->invkind == INVOKE_FUNC) {
            for (SHORT p = 0; p < func->cParams; ++p) {
                const ELEMDESC& param = func->lprgelemdescParam[p];
                const bool out = param.paramdesc.wParamFlags & PARAMFLAG_FOUT;
                std::printf("param %s %s %d %s %s\n", iface.c_str(), name.c_str(), p,
                            out ? "byref" : "byval", TypeText(info, param.tdesc).c_str());
            }
        }
        for (UINT n = 0; n < count; ++n) SysFreeString(names[n]);
        info->ReleaseFuncDesc(func);
    }
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: typelib_dump FILE.tlb\n");
        return 2;
    }
    ITypeLib* library = nullptr;
    const HRESULT loaded = LoadTypeLibEx(argv[1], REGKIND_NONE, &library);
    if (FAILED(loaded)) {
        std::printf("load failed 0x%08lx\n", static_cast<unsigned long>(loaded));
        return 1;
    }
    for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
        ITypeInfo* info = nullptr;
        if (FAILED(library->GetTypeInfo(i, &info))) continue;
        TYPEATTR* attr = nullptr;
        info->GetTypeAttr(&attr);
        BSTR nameText = nullptr;
        info->GetDocumentation(MEMBERID_NIL, &nameText, nullptr, nullptr, nullptr);
        const std::string name = Narrow(nameText);
        SysFreeString(nameText);
        if (attr->typekind == TKIND_COCLASS) {
            std::printf("coclass %s %s\n", name.c_str(),
                        (attr->wTypeFlags & TYPEFLAG_FCONTROL) ? "control" : "plain");
            for (UINT k = 0; k < attr->cImplTypes; ++k) {
                HREFTYPE href = 0;
                INT flags = 0;
                ITypeInfo* implemented = nullptr;
                info->GetRefTypeOfImplType(k, &href);
                info->GetImplTypeFlags(k, &flags);
                if (FAILED(info->GetRefTypeInfo(href, &implemented))) continue;
                BSTR implName = nullptr;
                implemented->GetDocumentation(MEMBERID_NIL, &implName, nullptr, nullptr, nullptr);
                std::string how = (flags & IMPLTYPEFLAG_FDEFAULT) ? "default" : "";
                if (flags & IMPLTYPEFLAG_FSOURCE) how += how.empty() ? "source" : ",source";
                std::printf("implements %s %s %s\n", name.c_str(), Narrow(implName).c_str(),
                            how.empty() ? "plain" : how.c_str());
                SysFreeString(implName);
                implemented->Release();
            }
        } else if (attr->typekind == TKIND_DISPATCH) {
            DumpFunctions(info, attr, name);
        } else if (attr->typekind == TKIND_ENUM) {
            for (UINT v = 0; v < attr->cVars; ++v) {
                VARDESC* var = nullptr;
                if (FAILED(info->GetVarDesc(v, &var))) continue;
                BSTR constant = nullptr;
                UINT count = 0;
                info->GetNames(var->memid, &constant, 1, &count);
                VARIANT value;
                VariantInit(&value);
                VariantChangeType(&value, var->lpvarValue, 0, VT_I4);
                std::printf("enum %s %s %ld\n", name.c_str(), Narrow(constant).c_str(),
                            static_cast<long>(value.lVal));
                SysFreeString(constant);
                info->ReleaseVarDesc(var);
            }
        }
        info->ReleaseTypeAttr(attr);
        info->Release();
    }
    library->Release();
    return 0;
}
