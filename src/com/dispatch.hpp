#pragma once
// IDispatch over a member table: one Invoke for every class. Names match without regard to case,
// dispatch identifiers are the table's, and the host's errors come back as DISP_E_EXCEPTION with
// an EXCEPINFO whose scode carries the error number in FACILITY_CONTROL, as a host's Err.Number
// reads it.

#include <string_view>

#include "com/win.hpp"
#include "host/type_info.hpp"

namespace korvex::com {

// Asked before a property is assigned; false refuses the assignment (error 387).
class EditGate {
  public:
    virtual ~EditGate() = default;
    virtual bool MayEdit(const host::MemberInfo& member) = 0;
};

HRESULT GetIdsOfNames(const host::ClassInfo& info, LPOLESTR* names, UINT count, DISPID* ids);

HRESULT InvokeMember(host::Object& object, const host::ClassInfo& info, DISPID id, WORD flags,
                     DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception, UINT* argError,
                     std::string_view source, EditGate* gate = nullptr);

const host::MemberInfo* FindMember(const host::ClassInfo& info, DISPID id);

// Fills `exception` from the exception being handled (inside a catch block) and returns the
// HRESULT to hand back.
HRESULT ExceptionResult(EXCEPINFO* exception, std::string_view source);

// MAKE_HRESULT(SEVERITY_ERROR, FACILITY_CONTROL, number)
HRESULT ErrorCode(std::int32_t number);

}  // namespace korvex::com
