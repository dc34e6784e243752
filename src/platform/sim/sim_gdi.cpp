// SimGdi: objects, handles, DC state, system colours and device capabilities.

#include "platform/sim/sim_gdi.hpp"

#include <algorithm>
#include <cstdlib>
#include <type_traits>

#include "platform/sim/font_engine.hpp"

namespace korvex::platform::sim {

namespace {

// Handles start above 31 so that FillRect's "system colour index + 1" brushes (1..31) never
// collide with a real object.
constexpr std::uint32_t kFirstHandle = 0x40;

// Run lengths of the cosmetic styled pens, always starting with a dash (GDI's cosmetic
// patterns; PS_DOT is three on, three off, not one-on-one-off).
DashPattern PatternFor(int style, int width) {
    static constexpr int kDash[] = {18, 6};
    static constexpr int kDot[] = {3, 3};
    static constexpr int kDashDot[] = {9, 6, 3, 6};
    static constexpr int kDashDotDot[] = {9, 3, 3, 3, 3, 3};
    std::span<const int> runs;
    if (width > 1) return {};  // CreatePen draws wide styled pens solid
    switch (style) {
        case PS_DASH:
            runs = kDash;
            break;
        case PS_DOT:
            runs = kDot;
            break;
        case PS_DASHDOT:
            runs = kDashDot;
            break;
        case PS_DASHDOTDOT:
            runs = kDashDotDot;
            break;
        default:
            return {};
    }
    DashPattern pattern;
    bool on = true;
    for (int run : runs) {
        for (int k = 0; k < run; ++k, ++pattern.period)
            if (on) pattern.onBits |= 1u << pattern.period;
        on = !on;
    }
    return pattern;
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Construction and handles

SimGdi::SimGdi(SIZE screen, int pixelsPerInch)
    : screen_(screen), pixelsPerInch_(pixelsPerInch), fonts_(std::make_unique<FontEngine>()) {
    sysColors_ = ClassicSysColors();
    stock_.fill(0);
    stock_[WHITE_BRUSH] = Allocate(BrushObj{false, RGB(255, 255, 255)}, true);
    stock_[LTGRAY_BRUSH] = Allocate(BrushObj{false, RGB(192, 192, 192)}, true);
    stock_[GRAY_BRUSH] = Allocate(BrushObj{false, RGB(128, 128, 128)}, true);
    stock_[DKGRAY_BRUSH] = Allocate(BrushObj{false, RGB(64, 64, 64)}, true);
    stock_[BLACK_BRUSH] = Allocate(BrushObj{false, RGB(0, 0, 0)}, true);
    stock_[NULL_BRUSH] = Allocate(BrushObj{true, 0}, true);
    stock_[WHITE_PEN] = Allocate(PenObj{PS_SOLID, 1, RGB(255, 255, 255)}, true);
    stock_[BLACK_PEN] = Allocate(PenObj{PS_SOLID, 1, RGB(0, 0, 0)}, true);
    stock_[NULL_PEN] = Allocate(PenObj{PS_NULL, 0, 0}, true);
    LOGFONT system;
    system.lfHeight = -16;
    system.lfWeight = FW_BOLD;
    system.lfFaceName = "System";
    stock_[SYSTEM_FONT] = Allocate(FontObj{system}, true);
    LOGFONT gui;
    gui.lfHeight = -11;
    gui.lfFaceName = "MS Sans Serif";
    stock_[DEFAULT_GUI_FONT] = Allocate(FontObj{gui}, true);
    BitmapObj one;
    one.width = one.height = 1;
    one.pixels.assign(1, 0);
    stockBitmap_ = Allocate(std::move(one), true);
}

SimGdi::~SimGdi() = default;

std::uint32_t SimGdi::Allocate(Object object, bool stock) {
    std::size_t index;
    if (!freeSlots_.empty()) {
        index = freeSlots_.back();
        freeSlots_.pop_back();
    } else {
        index = slots_.size();
        slots_.emplace_back();
    }
    if (const BitmapObj* bitmap = std::get_if<BitmapObj>(&object))
        livePixels_ += static_cast<std::int64_t>(bitmap->pixels.size());
    slots_[index] = Slot{std::move(object), stock, false, 0};
    return static_cast<std::uint32_t>(index) + kFirstHandle;
}

SimGdi::Slot* SimGdi::FindSlot(std::uint32_t handle) {
    if (handle < kFirstHandle) return nullptr;
    const std::size_t index = handle - kFirstHandle;
    if (index >= slots_.size() || std::holds_alternative<std::monostate>(slots_[index].object))
        return nullptr;
    return &slots_[index];
}

void SimGdi::Retain(std::uint32_t handle) {
    if (Slot* slot = FindSlot(handle); slot && !slot->stock) ++slot->selectCount;
}

void SimGdi::Release(std::uint32_t handle) {
    Slot* slot = FindSlot(handle);
    if (!slot || slot->stock) return;
    if (--slot->selectCount == 0 && slot->deletePending) Free(handle);
}

void SimGdi::Free(std::uint32_t handle) {
    if (const BitmapObj* bitmap = std::get_if<BitmapObj>(&slots_[handle - kFirstHandle].object))
        livePixels_ -= static_cast<std::int64_t>(bitmap->pixels.size());
    slots_[handle - kFirstHandle] = Slot{};
    freeSlots_.push_back(handle - kFirstHandle);
}

// ---------------------------------------------------------------------------------------------
// Device contexts and bitmaps

HDC SimGdi::CreateCompatibleDC(HDC) {
    DcObj dc;
    dc.bitmap = stockBitmap_;
    dc.pen = stock_[BLACK_PEN];
    dc.brush = stock_[WHITE_BRUSH];
    dc.font = stock_[SYSTEM_FONT];
    dc.penData = *Find<PenObj>(dc.pen);
    dc.brushData = *Find<BrushObj>(dc.brush);
    BitmapObj& bitmap = *Find<BitmapObj>(stockBitmap_);
    dc.surface = {bitmap.pixels.data(), bitmap.width, bitmap.height};
    RefreshVisible(dc);
    RefreshRops(dc);
    return HDC{Allocate(std::move(dc))};
}

bool SimGdi::DeleteDC(HDC hdc) {
    DcObj* dc = Dc(hdc);
    if (!dc) return false;
    if (BitmapObj* bitmap = Find<BitmapObj>(dc->bitmap); bitmap && dc->bitmap != stockBitmap_)
        bitmap->selectedIn = 0;
    const std::uint32_t held[] = {dc->bitmap, dc->pen, dc->brush, dc->font};
    Free(hdc.value);
    for (std::uint32_t handle : held) Release(handle);
    return true;
}

HBITMAP SimGdi::CreateDIBSection32(std::int32_t width, std::int32_t height) {
    // Refuse what no control needs rather than exhausting memory: 2^28 pixels is 1 GiB.
    if (width <= 0 || height <= 0 || std::int64_t{width} * height > (std::int64_t{1} << 28))
        return {};
    // Nor may all bitmaps together: a form of many large controls fails as memory running out
    // would, instead of taking all there is.
    if (livePixels_ + std::int64_t{width} * height > kMaxLivePixels) return {};
    BitmapObj bitmap;
    bitmap.width = width;
    bitmap.height = height;
    bitmap.pixels.assign(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 0u);
    return HBITMAP{Allocate(std::move(bitmap))};
}

PixelView SimGdi::BitmapPixels(HBITMAP handle) {
    BitmapObj* bitmap = Find<BitmapObj>(handle.value);
    if (!bitmap) return {};
    return {bitmap->pixels.data(), bitmap->width, bitmap->height};
}

// ---------------------------------------------------------------------------------------------
// Objects

HPEN SimGdi::CreatePen(int style, int width, COLORREF color) {
    // Styles GDI's CreatePen does not take as such (user styles, alternate) draw solid.
    if (style < PS_SOLID || style > PS_INSIDEFRAME) style = PS_SOLID;
    const auto w = static_cast<int>(std::min<std::int64_t>(std::llabs(width), kMaxPenWidth));
    return HPEN{Allocate(PenObj{style, w, color & 0x00FFFFFF})};
}

HBRUSH SimGdi::CreateSolidBrush(COLORREF color) {
    return HBRUSH{Allocate(BrushObj{false, color & 0x00FFFFFF})};
}

HBRUSH SimGdi::CreateHatchBrush(int style, COLORREF color) {
    if (style < HS_HORIZONTAL || style > HS_DIAGCROSS) return {};
    return HBRUSH{Allocate(BrushObj{false, color & 0x00FFFFFF, style})};
}

HGDIOBJ SimGdi::GetStockObject(int index) {
    if (index < 0 || index >= static_cast<int>(stock_.size())) return {};
    return HGDIOBJ{stock_[static_cast<std::size_t>(index)]};
}

HFONT SimGdi::CreateFontIndirect(const LOGFONT& font) {
    return HFONT{Allocate(FontObj{font})};
}

HGDIOBJ SimGdi::SelectObject(HDC hdc, HGDIOBJ object) {
    DcObj* dc = Dc(hdc);
    Slot* slot = FindSlot(object.value);
    if (!dc || !slot) return {};
    const std::uint32_t handle = object.value;
    if (std::holds_alternative<RegionObj>(slot->object))
        return HGDIOBJ{static_cast<std::uint32_t>(SelectClipRgn(hdc, HRGN{handle}))};

    auto swap = [&](std::uint32_t& member) {
        const std::uint32_t previous = member;
        member = handle;
        Retain(handle);
        Release(previous);
        return HGDIOBJ{previous};
    };
    if (const PenObj* pen = std::get_if<PenObj>(&slot->object)) {
        dc->penData = *pen;
        RefreshRops(*dc);
        return swap(dc->pen);
    }
    if (const BrushObj* brush = std::get_if<BrushObj>(&slot->object)) {
        dc->brushData = *brush;
        RefreshRops(*dc);
        return swap(dc->brush);
    }
    if (std::holds_alternative<FontObj>(slot->object)) return swap(dc->font);
    if (BitmapObj* bitmap = std::get_if<BitmapObj>(&slot->object)) {
        // A bitmap lives in one DC at a time, as in GDI.
        const bool stock = handle == stockBitmap_;
        if (!stock && bitmap->selectedIn != 0 && bitmap->selectedIn != hdc.value) return {};
        if (BitmapObj* old = Find<BitmapObj>(dc->bitmap); old && dc->bitmap != stockBitmap_)
            old->selectedIn = 0;
        if (!stock) bitmap->selectedIn = hdc.value;
        dc->surface = {bitmap->pixels.data(), bitmap->width, bitmap->height};
        RefreshVisible(*dc);
        return swap(dc->bitmap);
    }
    return {};
}

HGDIOBJ SimGdi::GetCurrentObject(HDC hdc, int objectType) {
    const DcObj* dc = Dc(hdc);
    if (!dc) return {};
    switch (objectType) {
        case OBJ_PEN:
            return HGDIOBJ{dc->pen};
        case OBJ_BRUSH:
            return HGDIOBJ{dc->brush};
        case OBJ_FONT:
            return HGDIOBJ{dc->font};
        case OBJ_BITMAP:
            return HGDIOBJ{dc->bitmap};
        default:
            return {};
    }
}

bool SimGdi::DeleteObject(HGDIOBJ object) {
    Slot* slot = FindSlot(object.value);
    if (!slot || std::holds_alternative<DcObj>(slot->object)) return false;
    if (slot->stock) return true;  // stock objects outlive every DeleteObject
    // Still selected somewhere: GDI defers the deletion until it is deselected.
    if (slot->selectCount > 0) {
        slot->deletePending = true;
        return true;
    }
    Free(object.value);
    return true;
}

// ---------------------------------------------------------------------------------------------
// DC state

void SimGdi::RefreshRops(DcObj& dc) {
    dc.penRop = Rop2Pair(dc.rop2, ToPixel(dc.penData.color));
    dc.gapRop = Rop2Pair(dc.rop2, ToPixel(dc.bkColor));
    dc.brushRop = PaintFor(dc, dc.brushData, dc.rop2);
    dc.dash = PatternFor(dc.penData.style, dc.penData.width);
}

void SimGdi::RefreshVisible(DcObj& dc) {
    const RECT bounds = dc.surface.Bounds();
    dc.visible = dc.clip ? dc.clip->Intersect(bounds) : Region::FromRect(bounds);
}

SimGdi::BrushObj SimGdi::ResolveBrush(const DcObj& dc, HBRUSH brush) {
    if (brush.value >= 1 && brush.value <= static_cast<std::uint32_t>(kSysColorCount))
        return BrushObj{false, sysColors_[brush.value - 1]};
    if (const BrushObj* b = Find<BrushObj>(brush.value)) return *b;
    return dc.brushData;
}

FillPaint SimGdi::PaintFor(const DcObj& dc, const BrushObj& brush, int rop2) {
    FillPaint paint(Rop2Pair(rop2, ToPixel(brush.color)));
    if (brush.hatch >= HS_HORIZONTAL && brush.hatch <= HS_DIAGCROSS) {
        paint.hatch = kHatchPatterns[brush.hatch];
        paint.bg = Rop2Pair(rop2, ToPixel(dc.bkColor));
        paint.drawBg = dc.bkMode == OPAQUE;
        paint.orgX = dc.brushOrg.x;
        paint.orgY = dc.brushOrg.y;
    }
    return paint;
}

int SimGdi::SetROP2(HDC hdc, int mode) {
    DcObj* dc = Dc(hdc);
    if (!dc || mode < R2_BLACK || mode > R2_WHITE) return 0;
    const int previous = dc->rop2;
    dc->rop2 = mode;
    RefreshRops(*dc);
    return previous;
}

int SimGdi::GetROP2(HDC hdc) {
    const DcObj* dc = Dc(hdc);
    return dc ? dc->rop2 : 0;
}

int SimGdi::SetBkMode(HDC hdc, int mode) {
    DcObj* dc = Dc(hdc);
    if (!dc || (mode != TRANSPARENT && mode != OPAQUE)) return 0;
    const int previous = dc->bkMode;
    dc->bkMode = mode;
    RefreshRops(*dc);
    return previous;
}

int SimGdi::GetBkMode(HDC hdc) {
    const DcObj* dc = Dc(hdc);
    return dc ? dc->bkMode : 0;
}

COLORREF SimGdi::SetBkColor(HDC hdc, COLORREF color) {
    DcObj* dc = Dc(hdc);
    if (!dc) return CLR_INVALID;
    const COLORREF previous = dc->bkColor;
    dc->bkColor = color & 0x00FFFFFF;
    RefreshRops(*dc);
    return previous;
}

COLORREF SimGdi::GetBkColor(HDC hdc) {
    const DcObj* dc = Dc(hdc);
    return dc ? dc->bkColor : CLR_INVALID;
}

COLORREF SimGdi::SetTextColor(HDC hdc, COLORREF color) {
    DcObj* dc = Dc(hdc);
    if (!dc) return CLR_INVALID;
    const COLORREF previous = dc->textColor;
    dc->textColor = color & 0x00FFFFFF;
    return previous;
}

COLORREF SimGdi::GetTextColor(HDC hdc) {
    const DcObj* dc = Dc(hdc);
    return dc ? dc->textColor : CLR_INVALID;
}

unsigned SimGdi::SetTextAlign(HDC hdc, unsigned align) {
    DcObj* dc = Dc(hdc);
    if (!dc) return 0xFFFFFFFFu;  // GDI_ERROR
    const unsigned previous = dc->textAlign;
    dc->textAlign = align;
    return previous;
}

int SimGdi::SetStretchBltMode(HDC hdc, int mode) {
    DcObj* dc = Dc(hdc);
    if (!dc || mode < BLACKONWHITE || mode > HALFTONE) return 0;
    const int previous = dc->stretchMode;
    dc->stretchMode = mode;
    return previous;
}

bool SimGdi::MoveToEx(HDC hdc, std::int32_t x, std::int32_t y, POINT* previous) {
    DcObj* dc = Dc(hdc);
    if (!dc) return false;
    if (previous) *previous = dc->cp;
    dc->cp = {x, y};
    return true;
}

bool SimGdi::GetCurrentPositionEx(HDC hdc, POINT* position) {
    const DcObj* dc = Dc(hdc);
    if (!dc) return false;
    if (position) *position = dc->cp;
    return true;
}

bool SimGdi::SetBrushOrgEx(HDC hdc, std::int32_t x, std::int32_t y, POINT* previous) {
    DcObj* dc = Dc(hdc);
    if (!dc) return false;
    if (previous) *previous = dc->brushOrg;
    dc->brushOrg = {x, y};
    RefreshRops(*dc);
    return true;
}

// ---------------------------------------------------------------------------------------------
// System colours and device capabilities

COLORREF SimGdi::GetSysColor(int index) {
    if (index < 0 || index >= kSysColorCount) return 0;
    return sysColors_[static_cast<std::size_t>(index)];
}

bool SimGdi::SetSysColors(std::span<const int> indices, std::span<const COLORREF> colors) {
    if (indices.size() != colors.size()) return false;
    for (std::size_t i = 0; i < indices.size(); ++i) {
        if (indices[i] < 0 || indices[i] >= kSysColorCount) continue;  // ignored, as in Win32
        sysColors_[static_cast<std::size_t>(indices[i])] = colors[i] & 0x00FFFFFF;
    }
    return true;
}

int SimGdi::GetDeviceCaps(HDC, int index) {
    switch (index) {
        case HORZRES:
            return screen_.cx;
        case VERTRES:
            return screen_.cy;
        case BITSPIXEL:
            return 32;
        case LOGPIXELSX:
        case LOGPIXELSY:
            return pixelsPerInch_;
        default:
            return 0;
    }
}

}  // namespace korvex::platform::sim
