#include "com/convert.hpp"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <vector>

#include "base/error.hpp"
#include "com/module.hpp"
#include "host/font.hpp"

namespace korvex::com {

namespace {

using host::HostError;

[[noreturn]] void Mismatch() {
    throw HostError(host::kErrTypeMismatch);
}

// The host font's attributes from an OLE font: all of them, or the one a change notification
// names (reading only that one keeps the others as the host has them, not as the system
// realises them).
void CopyFont(IFont& from, host::StdFont& to, DISPID which = DISPID_UNKNOWN) {
    const auto wanted = [which](DISPID id) { return which == DISPID_UNKNOWN || which == id; };
    BOOL flag = FALSE;
    if (wanted(DISPID_FONT_NAME)) {
        BSTR name = nullptr;
        if (SUCCEEDED(from.get_Name(&name))) to.Name(Narrow(name));
        SysFreeString(name);
    }
    CY size{};
    if (wanted(DISPID_FONT_SIZE) && SUCCEEDED(from.get_Size(&size)))
        to.Size(static_cast<double>(size.int64) / 10000.0);
    SHORT number = 0;
    if (wanted(DISPID_FONT_WEIGHT) && SUCCEEDED(from.get_Weight(&number))) to.Weight(number);
    if (which == DISPID_FONT_BOLD && SUCCEEDED(from.get_Bold(&flag))) to.Bold(flag != FALSE);
    if (wanted(DISPID_FONT_ITALIC) && SUCCEEDED(from.get_Italic(&flag))) to.Italic(flag != FALSE);
    if (wanted(DISPID_FONT_UNDER) && SUCCEEDED(from.get_Underline(&flag)))
        to.Underline(flag != FALSE);
    if (wanted(DISPID_FONT_STRIKE) && SUCCEEDED(from.get_Strikethrough(&flag)))
        to.Strikethrough(flag != FALSE);
    if (wanted(DISPID_FONT_CHARSET) && SUCCEEDED(from.get_Charset(&number))) to.Charset(number);
}

// Keeps a host font in step with the OLE font handed out for it, so `ctl.Font.Bold = True`
// reaches the control as it would through the host's own font object. The OLE font holds the
// link; the link holds the host font weakly and the OLE font not at all.
class FontLink final : public IPropertyNotifySink {
  public:
    FontLink(IFont* source, std::weak_ptr<host::StdFont> target)
        : source_(source), target_(std::move(target)) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) override {
        if (!ppv) return E_POINTER;
        if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IPropertyNotifySink)) {
            *ppv = static_cast<IPropertyNotifySink*>(this);
            AddRef();
            return S_OK;
        }
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++refs_); }
    ULONG STDMETHODCALLTYPE Release() override {
        const long left = --refs_;
        if (left == 0) delete this;
        return static_cast<ULONG>(left);
    }
    HRESULT STDMETHODCALLTYPE OnChanged(DISPID id) override {
        if (std::shared_ptr<host::StdFont> target = target_.lock()) {
            try {
                CopyFont(*source_, *target, id);
            } catch (const std::exception&) {
                return S_OK;  // a value the host refuses leaves its font as it was
            }
        }
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE OnRequestEdit(DISPID) override { return S_OK; }

  private:
    long refs_ = 1;
    IFont* source_;
    std::weak_ptr<host::StdFont> target_;
};

IDispatch* MakeFont(const std::shared_ptr<host::StdFont>& font) {
    const std::wstring name = Widen(font->Name());
    FONTDESC desc{};
    desc.cbSizeofstruct = sizeof desc;
    desc.lpstrName = const_cast<LPOLESTR>(name.c_str());
    desc.cySize.int64 = static_cast<LONGLONG>(font->Size() * 10000.0 + 0.5);
    desc.sWeight = font->Weight();
    desc.sCharset = font->Charset();
    desc.fItalic = font->Italic();
    desc.fUnderline = font->Underline();
    desc.fStrikethrough = font->Strikethrough();
    IFont* ole = nullptr;
    if (FAILED(OleCreateFontIndirect(&desc, IID_IFont, reinterpret_cast<void**>(&ole))))
        throw HostError(host::kErrOutOfMemory);
    IConnectionPointContainer* container = nullptr;
    if (SUCCEEDED(ole->QueryInterface(IID_IConnectionPointContainer,
                                      reinterpret_cast<void**>(&container)))) {
        IConnectionPoint* point = nullptr;
        if (SUCCEEDED(container->FindConnectionPoint(IID_IPropertyNotifySink, &point))) {
            auto* link = new FontLink(ole, font);
            DWORD cookie = 0;
            point->Advise(link, &cookie);
            link->Release();
            point->Release();
        }
        container->Release();
    }
    IDispatch* disp = nullptr;
    const HRESULT hr = ole->QueryInterface(IID_IFontDisp, reinterpret_cast<void**>(&disp));
    ole->Release();
    if (FAILED(hr)) throw HostError(host::kErrOutOfMemory);
    return disp;
}

BITMAPINFO TopDown32(int width, int height) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    return info;
}

// A 32-bit DIB section holding the pixels as they are (alpha included).
HBITMAP PixelBitmap(int width, int height, const std::uint32_t* pixels) {
    const BITMAPINFO info = TopDown32(width, height);
    void* bits = nullptr;
    HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (!bitmap) throw HostError(host::kErrOutOfMemory);
    std::memcpy(bits, pixels,
                static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4);
    return bitmap;
}

// A bitmap's pixels, 32 bits top-down; false for a bitmap that is no longer there.
bool BitmapPixels(HBITMAP bitmap, int& width, int& height, std::vector<std::uint32_t>& pixels,
                  WORD& depth) {
    BITMAP header{};
    if (!bitmap || !GetObjectW(bitmap, sizeof header, &header)) return false;
    width = header.bmWidth;
    height = std::abs(header.bmHeight);
    depth = header.bmBitsPixel;
    BITMAPINFO info = TopDown32(width, height);
    pixels.assign(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 0);
    HDC dc = CreateCompatibleDC(nullptr);
    const int rows =
        GetDIBits(dc, bitmap, 0, static_cast<UINT>(height), pixels.data(), &info, DIB_RGB_COLORS);
    DeleteDC(dc);
    return rows == height;
}

// An OLE picture of the host's: icons as icons (the alpha of each pixel kept in the colour
// bitmap, the mask where it is 0), every other kind as a 32-bit bitmap.
IDispatch* MakePicture(const host::StdPicture& picture) {
    IDispatch* disp = nullptr;
    const int width = picture.PixelWidth();
    const int height = picture.PixelHeight();
    if (picture.Type() == host::PictureType::None || width <= 0 || height <= 0) {
        if (FAILED(OleCreatePictureIndirect(nullptr, IID_IPictureDisp, TRUE,
                                            reinterpret_cast<void**>(&disp))))
            throw HostError(host::kErrOutOfMemory);
        return disp;
    }
    HBITMAP color = PixelBitmap(width, height, picture.Pixels().data());
    PICTDESC desc{};
    desc.cbSizeofstruct = sizeof desc;
    if (picture.Type() == host::PictureType::Icon) {
        // The mask: one bit a pixel, rows padded to 16 bits, set where the pixel is transparent.
        const int stride = ((width + 15) / 16) * 2;
        std::vector<std::uint8_t> bits(
            static_cast<std::size_t>(stride) * static_cast<std::size_t>(height), 0);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                if ((picture.Pixels()[static_cast<std::size_t>(y * width + x)] >> 24) == 0)
                    bits[static_cast<std::size_t>(y * stride + x / 8)] |=
                        static_cast<std::uint8_t>(0x80 >> (x % 8));
        HBITMAP mask = CreateBitmap(width, height, 1, 1, bits.data());
        ICONINFO icon{TRUE, 0, 0, mask, color};
        desc.picType = PICTYPE_ICON;
        desc.icon.hicon = CreateIconIndirect(&icon);
        DeleteObject(mask);
        DeleteObject(color);
        if (!desc.icon.hicon) throw HostError(host::kErrOutOfMemory);
    } else {
        desc.picType = PICTYPE_BITMAP;
        desc.bmp.hbitmap = color;
    }
    if (FAILED(OleCreatePictureIndirect(&desc, IID_IPictureDisp, TRUE,
                                        reinterpret_cast<void**>(&disp)))) {
        if (desc.picType == PICTYPE_ICON)
            DestroyIcon(desc.icon.hicon);
        else
            DeleteObject(color);
        throw HostError(host::kErrOutOfMemory);
    }
    return disp;
}

// Any OLE picture as the host's pixels: bitmaps and icons read from their handles (an icon's
// transparency from its alpha, or from its mask when it has none), other kinds rendered.
std::shared_ptr<host::StdPicture> ReadPicture(IPicture& picture) {
    SHORT type = PICTYPE_NONE;
    picture.get_Type(&type);
    OLE_HANDLE handle = 0;
    picture.get_Handle(&handle);
    int width = 0;
    int height = 0;
    WORD depth = 0;
    std::vector<std::uint32_t> pixels;
    const auto made = [&](host::PictureType kind) {
        return std::make_shared<host::StdPicture>(kind, width, height, std::move(pixels));
    };
    if (type == PICTYPE_BITMAP &&
        BitmapPixels(reinterpret_cast<HBITMAP>(static_cast<UINT_PTR>(handle)), width, height,
                     pixels, depth)) {
        if (depth != 32)
            for (std::uint32_t& p : pixels) p |= 0xFF000000u;
        return made(host::PictureType::Bitmap);
    }
    if (type == PICTYPE_ICON) {
        ICONINFO icon{};
        if (GetIconInfo(reinterpret_cast<HICON>(static_cast<UINT_PTR>(handle)), &icon)) {
            std::vector<std::uint32_t> mask;
            int maskWidth = 0;
            int maskHeight = 0;
            WORD maskDepth = 0;
            const bool ok = BitmapPixels(icon.hbmColor, width, height, pixels, depth) &&
                            BitmapPixels(icon.hbmMask, maskWidth, maskHeight, mask, maskDepth);
            if (icon.hbmColor) DeleteObject(icon.hbmColor);
            if (icon.hbmMask) DeleteObject(icon.hbmMask);
            if (ok) {
                bool alpha = false;
                for (std::uint32_t p : pixels) alpha = alpha || (p >> 24) != 0;
                for (std::size_t i = 0; i < pixels.size(); ++i) {
                    if (!alpha) pixels[i] |= 0xFF000000u;
                    if (i < mask.size() && (mask[i] & 0xFFFFFFu) != 0) pixels[i] &= 0x00FFFFFFu;
                }
                return made(host::PictureType::Icon);
            }
        }
    }
    OLE_XSIZE_HIMETRIC hmWidth = 0;
    OLE_YSIZE_HIMETRIC hmHeight = 0;
    picture.get_Width(&hmWidth);
    picture.get_Height(&hmHeight);
    width = MulDiv(hmWidth, 96, 2540);
    height = MulDiv(hmHeight, 96, 2540);
    if (type <= PICTYPE_NONE || width <= 0 || height <= 0)
        return std::make_shared<host::StdPicture>();
    const BITMAPINFO info = TopDown32(width, height);
    void* bits = nullptr;
    HDC dc = CreateCompatibleDC(nullptr);
    HBITMAP bitmap = CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (!bitmap) {
        DeleteDC(dc);
        throw HostError(host::kErrOutOfMemory);
    }
    HGDIOBJ old = SelectObject(dc, bitmap);
    picture.Render(dc, 0, 0, width, height, 0, hmHeight, hmWidth, -hmHeight, nullptr);
    GdiFlush();
    pixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    std::memcpy(pixels.data(), bits, pixels.size() * sizeof(std::uint32_t));
    for (std::uint32_t& p : pixels) p |= 0xFF000000u;
    SelectObject(dc, old);
    DeleteObject(bitmap);
    DeleteDC(dc);
    return made(static_cast<host::PictureType>(type));
}

host::Variant ObjectToHost(IUnknown* unknown) {
    if (!unknown) return host::Variant::Nothing();
    IFont* font = nullptr;
    if (SUCCEEDED(unknown->QueryInterface(IID_IFont, reinterpret_cast<void**>(&font)))) {
        auto copy = std::make_shared<host::StdFont>();
        try {
            CopyFont(*font, *copy);
        } catch (...) {
            font->Release();
            throw;
        }
        font->Release();
        return host::Variant(copy);
    }
    IPicture* picture = nullptr;
    if (SUCCEEDED(unknown->QueryInterface(IID_IPicture, reinterpret_cast<void**>(&picture)))) {
        std::shared_ptr<host::StdPicture> copy;
        try {
            copy = ReadPicture(*picture);
        } catch (...) {
            picture->Release();
            throw;
        }
        picture->Release();
        return host::Variant(copy);
    }
    Mismatch();
}

template <class T>
T Read(const VARIANT& v, T direct, T* reference) {
    return (V_VT(&v) & VT_BYREF) ? *reference : direct;
}

}  // namespace

host::Variant ToHost(const VARIANT& value) {
    if (V_VT(&value) == (VT_BYREF | VT_VARIANT)) {
        if (!V_VARIANTREF(&value)) Mismatch();
        return ToHost(*V_VARIANTREF(&value));
    }
    const VARTYPE type = V_VT(&value) & ~VT_BYREF;
    if ((V_VT(&value) & VT_BYREF) && !V_BYREF(&value)) Mismatch();
    switch (type) {
        case VT_EMPTY:
            return {};
        case VT_NULL:
            throw HostError(94, "Invalid use of Null", {});
        case VT_BOOL:
            return Read(value, V_BOOL(&value), V_BOOLREF(&value)) != VARIANT_FALSE;
        case VT_I1:
            return static_cast<std::int16_t>(Read(value, V_I1(&value), V_I1REF(&value)));
        case VT_UI1:
            return static_cast<std::int16_t>(Read(value, V_UI1(&value), V_UI1REF(&value)));
        case VT_I2:
            return static_cast<std::int16_t>(Read(value, V_I2(&value), V_I2REF(&value)));
        case VT_UI2:
            return static_cast<std::int32_t>(Read(value, V_UI2(&value), V_UI2REF(&value)));
        case VT_I4:
            return static_cast<std::int32_t>(Read(value, V_I4(&value), V_I4REF(&value)));
        case VT_INT:
            return static_cast<std::int32_t>(Read(value, V_INT(&value), V_INTREF(&value)));
        case VT_UI4:
        case VT_UINT: {
            const std::uint32_t u = type == VT_UI4 ? Read(value, V_UI4(&value), V_UI4REF(&value))
                                                   : Read(value, V_UINT(&value), V_UINTREF(&value));
            if (u <= static_cast<std::uint32_t>(std::numeric_limits<std::int32_t>::max()))
                return static_cast<std::int32_t>(u);
            return static_cast<double>(u);
        }
        case VT_I8:
            return static_cast<double>(Read(value, V_I8(&value), V_I8REF(&value)));
        case VT_UI8:
            return static_cast<double>(Read(value, V_UI8(&value), V_UI8REF(&value)));
        case VT_R4:
            return Read(value, V_R4(&value), V_R4REF(&value));
        case VT_R8:
            return Read(value, V_R8(&value), V_R8REF(&value));
        case VT_DATE:
            return Read(value, V_DATE(&value), V_DATEREF(&value));
        case VT_CY:
            return static_cast<double>(Read(value, V_CY(&value), V_CYREF(&value)).int64) / 10000.0;
        case VT_DECIMAL: {
            DECIMAL d = (V_VT(&value) & VT_BYREF) ? *V_DECIMALREF(&value) : V_DECIMAL(&value);
            double out = 0;
            if (FAILED(VarR8FromDec(&d, &out))) throw HostError(host::kErrOverflow);
            return out;
        }
        case VT_BSTR:
            return Narrow(Read(value, V_BSTR(&value), V_BSTRREF(&value)));
        case VT_ERROR: {
            const SCODE code = Read(value, V_ERROR(&value), V_ERRORREF(&value));
            if (code == DISP_E_PARAMNOTFOUND) return host::Variant::Missing();
            return static_cast<std::int32_t>(code);
        }
        case VT_DISPATCH:
            return ObjectToHost(Read(value, V_DISPATCH(&value), V_DISPATCHREF(&value)));
        case VT_UNKNOWN:
            return ObjectToHost(Read(value, V_UNKNOWN(&value), V_UNKNOWNREF(&value)));
        default:
            Mismatch();
    }
}

void ToVariant(const host::Variant& value, VARIANT* out) {
    VariantInit(out);
    switch (value.Kind()) {
        case host::VarKind::Empty:
            return;
        case host::VarKind::Boolean:
            V_VT(out) = VT_BOOL;
            V_BOOL(out) = value.ToBool() ? VARIANT_TRUE : VARIANT_FALSE;
            return;
        case host::VarKind::Integer:
            V_VT(out) = VT_I2;
            V_I2(out) = value.ToInteger();
            return;
        case host::VarKind::Long:
            V_VT(out) = VT_I4;
            V_I4(out) = value.ToLong();
            return;
        case host::VarKind::Single:
            V_VT(out) = VT_R4;
            V_R4(out) = value.ToSingle();
            return;
        case host::VarKind::Double:
            V_VT(out) = VT_R8;
            V_R8(out) = value.ToDouble();
            return;
        case host::VarKind::String: {
            const std::wstring text = Widen(value.ToString());
            BSTR b = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
            if (!b) throw HostError(host::kErrOutOfMemory);
            V_VT(out) = VT_BSTR;
            V_BSTR(out) = b;
            return;
        }
        case host::VarKind::Font: {
            const auto font = value.ToFont();
            V_DISPATCH(out) = font ? MakeFont(font) : nullptr;
            V_VT(out) = VT_DISPATCH;
            return;
        }
        case host::VarKind::Picture: {
            const auto picture = value.ToPicture();
            V_DISPATCH(out) = picture ? MakePicture(*picture) : nullptr;
            V_VT(out) = VT_DISPATCH;
            return;
        }
        case host::VarKind::Object:
            if (value.ToObject()) Mismatch();
            V_VT(out) = VT_DISPATCH;
            V_DISPATCH(out) = nullptr;
            return;
        case host::VarKind::Missing:
            V_VT(out) = VT_ERROR;
            V_ERROR(out) = DISP_E_PARAMNOTFOUND;
            return;
    }
}

void WriteBack(const host::Variant& value, VARIANT* target) {
    if (!(V_VT(target) & VT_BYREF) || !V_BYREF(target)) return;
    if (V_VT(target) == (VT_BYREF | VT_VARIANT)) {
        VARIANT fresh;
        ToVariant(value, &fresh);
        VariantClear(V_VARIANTREF(target));
        *V_VARIANTREF(target) = fresh;
        return;
    }
    const VARTYPE type = V_VT(target) & ~VT_BYREF;
    VARIANT fresh;
    ToVariant(value, &fresh);
    VARIANT converted;
    VariantInit(&converted);
    const HRESULT hr = VariantChangeType(&converted, &fresh, 0, type);
    VariantClear(&fresh);
    if (FAILED(hr))
        throw HostError(hr == DISP_E_OVERFLOW ? host::kErrOverflow : host::kErrTypeMismatch);
    switch (type) {
        case VT_BSTR:
            SysFreeString(*V_BSTRREF(target));
            *V_BSTRREF(target) = V_BSTR(&converted);
            return;
        case VT_DISPATCH:
        case VT_UNKNOWN:
            if (*V_UNKNOWNREF(target)) (*V_UNKNOWNREF(target))->Release();
            *V_UNKNOWNREF(target) = V_UNKNOWN(&converted);
            return;
        case VT_DECIMAL:
            *V_DECIMALREF(target) = V_DECIMAL(&converted);
            return;
        case VT_I1:
        case VT_UI1:
            std::memcpy(V_BYREF(target), &V_UI1(&converted), 1);
            return;
        case VT_I2:
        case VT_UI2:
        case VT_BOOL:
            std::memcpy(V_BYREF(target), &V_UI2(&converted), 2);
            return;
        case VT_I4:
        case VT_UI4:
        case VT_INT:
        case VT_UINT:
        case VT_R4:
        case VT_ERROR:
            std::memcpy(V_BYREF(target), &V_UI4(&converted), 4);
            return;
        case VT_I8:
        case VT_UI8:
        case VT_R8:
        case VT_CY:
        case VT_DATE:
            std::memcpy(V_BYREF(target), &V_UI8(&converted), 8);
            return;
        default:
            VariantClear(&converted);
            Mismatch();
    }
}

namespace {

host::Variant Same(const host::Variant& value) {
    return value;
}

// One row per declared type: its VARTYPE and the host's conversion into it.
struct Declared {
    host::TypeCode code;
    VARTYPE type;
    host::Variant (*convert)(const host::Variant&);
};

constexpr Declared kDeclared[] = {
    {host::TypeCode::Variant, VT_VARIANT, Same},
    {host::TypeCode::Boolean, VT_BOOL,
     [](const host::Variant& v) { return host::Variant(v.ToBool()); }},
    {host::TypeCode::Integer, VT_I2,
     [](const host::Variant& v) { return host::Variant(v.ToInteger()); }},
    {host::TypeCode::Long, VT_I4, [](const host::Variant& v) { return host::Variant(v.ToLong()); }},
    {host::TypeCode::Single, VT_R4,
     [](const host::Variant& v) { return host::Variant(v.ToSingle()); }},
    {host::TypeCode::Double, VT_R8,
     [](const host::Variant& v) { return host::Variant(v.ToDouble()); }},
    {host::TypeCode::String, VT_BSTR,
     [](const host::Variant& v) { return host::Variant(v.ToString()); }},
    {host::TypeCode::Color, VT_UI4,
     [](const host::Variant& v) { return host::Variant(v.ToLong()); }},
    {host::TypeCode::Enum, VT_I4, [](const host::Variant& v) { return host::Variant(v.ToLong()); }},
    {host::TypeCode::Font, VT_DISPATCH,
     [](const host::Variant& v) { return host::Variant(v.ToFont()); }},
    {host::TypeCode::Picture, VT_DISPATCH,
     [](const host::Variant& v) { return host::Variant(v.ToPicture()); }},
    {host::TypeCode::Object, VT_DISPATCH,
     [](const host::Variant& v) { return host::Variant(v.ToObject()); }},
};

const Declared& Row(const host::TypeRef& type) {
    for (const Declared& row : kDeclared)
        if (row.code == type.code) return row;
    return kDeclared[0];
}

}  // namespace

VARTYPE DeclaredVarType(const host::TypeRef& type) {
    return Row(type).type;
}

void ToDeclared(const host::Variant& value, const host::TypeRef& type, VARIANT* out) {
    const Declared& row = Row(type);
    const host::Variant converted = row.convert(value);
    VariantInit(out);
    if (row.type == VT_UI4) {
        // A colour is the Long with the same bits; a system colour's high bit is no overflow.
        V_VT(out) = VT_UI4;
        V_UI4(out) = static_cast<ULONG>(converted.ToLong());
        return;
    }
    ToVariant(converted, out);
    if (row.type == VT_VARIANT || V_VT(out) == row.type) return;
    VARIANT fresh;
    VariantInit(&fresh);
    const HRESULT hr = VariantChangeType(&fresh, out, 0, row.type);
    VariantClear(out);
    if (FAILED(hr))
        throw HostError(hr == DISP_E_OVERFLOW ? host::kErrOverflow : host::kErrTypeMismatch);
    *out = fresh;
}

host::Variant FromDeclared(const VARIANT& value, const host::TypeRef& type) {
    const Declared& row = Row(type);
    if (row.type == VT_UI4 && V_VT(&value) == VT_UI4)
        return host::Variant(static_cast<std::uint32_t>(V_UI4(&value)));
    return row.convert(ToHost(value));
}

}  // namespace korvex::com
