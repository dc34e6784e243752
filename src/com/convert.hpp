#pragma once
// VARIANT and host::Variant. Numbers keep their kind (VT_I2 Integer, VT_I4 Long, VT_R4 Single,
// ...), texts are BSTR's UTF-16 and the host's UTF-8, booleans VARIANT_BOOL, colours the Long
// with the same bits, fonts stdole's IFontDisp and pictures IPictureDisp (icons as icons, other
// pictures as 32-bit bitmaps). A value the host has no kind for is its error 13.
//
// Fonts cross as copies: an OLE font read back carries the face and size the system realises
// (a face that is not installed reads as its substitute, a size as the nearest its pixel height
// gives). A font handed out stays linked to the host font it came from, so a change made
// through it (`ctl.Font.Bold = True`) reaches the control, one attribute at a time.

#include "com/win.hpp"
#include "host/type_info.hpp"
#include "host/variant.hpp"

namespace korvex::com {

// Reads through VT_BYREF. An omitted optional argument (VT_ERROR DISP_E_PARAMNOTFOUND) is
// Missing.
host::Variant ToHost(const VARIANT& value);
// `out` must be empty (VariantInit) or hold nothing that needs freeing.
void ToVariant(const host::Variant& value, VARIANT* out);
// Stores `value` where a by-reference argument points, in that argument's own type.
void WriteBack(const host::Variant& value, VARIANT* target);

// Values of a declared type as the type library gives them to a caller that reads it: a VARIANT
// argument as it is, an OLE_COLOR as its unsigned bits, an enumeration as a long, the rest as
// their own VARTYPE. ToDeclared fills `out` (empty) with the value converted by the host's rules;
// FromDeclared reads such storage, or whatever a caller left in it, back the same way.
VARTYPE DeclaredVarType(const host::TypeRef& type);
void ToDeclared(const host::Variant& value, const host::TypeRef& type, VARIANT* out);
host::Variant FromDeclared(const VARIANT& value, const host::TypeRef& type);

}  // namespace korvex::com
