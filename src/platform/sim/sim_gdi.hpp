#pragma once
// SimGdi: the portable device. It reproduces GDI's pixel rules on 32-bit top-down bitmaps.
//
// Two tiers, as in a real display driver: these members map, normalise and clip every call into
// device rects and line pixel ranges and pick the pen or brush path; the span primitives of
// raster.hpp write pixels and trust their input.
//
// All state (objects, handles, system colours, fonts) belongs to one SimGdi, so two instances
// never see each other. The members are spread over several files:
//   sim_gdi.cpp     objects, handles, DC state, system colours, device caps
//   sim_lines.cpp   pens: LineTo, Polyline, figure outlines, wide strokes
//   sim_shapes.cpp  Rectangle, RoundRect, Ellipse, Polygon, rect fills, PatBlt, pixels
//   sim_regions.cpp region objects, clipping, FillRgn/FrameRgn/PaintRgn
//   sim_blit.cpp    BitBlt, StretchBlt, AlphaBlend
//   sim_edge.cpp    DrawEdge
//   sim_text.cpp    fonts and TextOut through the FontEngine

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <variant>
#include <vector>

#include "platform/gdi.hpp"
#include "platform/sim/raster.hpp"
#include "platform/sim/region.hpp"

namespace korvex::platform::sim {

class FontEngine;

class SimGdi final : public Gdi {
  public:
    // pixelsPerInch is what LOGPIXELSX and LOGPIXELSY report (96: 15 twips to a pixel).
    explicit SimGdi(SIZE screen = {1024, 768}, int pixelsPerInch = 96);
    ~SimGdi() override;
    SimGdi(const SimGdi&) = delete;
    SimGdi& operator=(const SimGdi&) = delete;

    HDC CreateCompatibleDC(HDC reference) override;
    bool DeleteDC(HDC dc) override;
    HBITMAP CreateDIBSection32(std::int32_t width, std::int32_t height) override;
    PixelView BitmapPixels(HBITMAP bitmap) override;

    HPEN CreatePen(int style, int width, COLORREF color) override;
    HBRUSH CreateSolidBrush(COLORREF color) override;
    HBRUSH CreateHatchBrush(int style, COLORREF color) override;
    HGDIOBJ GetStockObject(int index) override;
    HFONT CreateFontIndirect(const LOGFONT& font) override;
    HGDIOBJ SelectObject(HDC dc, HGDIOBJ object) override;
    HGDIOBJ GetCurrentObject(HDC dc, int objectType) override;
    bool DeleteObject(HGDIOBJ object) override;

    int SetROP2(HDC dc, int mode) override;
    int GetROP2(HDC dc) override;
    int SetBkMode(HDC dc, int mode) override;
    int GetBkMode(HDC dc) override;
    COLORREF SetBkColor(HDC dc, COLORREF color) override;
    COLORREF GetBkColor(HDC dc) override;
    COLORREF SetTextColor(HDC dc, COLORREF color) override;
    COLORREF GetTextColor(HDC dc) override;
    unsigned SetTextAlign(HDC dc, unsigned align) override;
    int SetStretchBltMode(HDC dc, int mode) override;
    bool MoveToEx(HDC dc, std::int32_t x, std::int32_t y, POINT* previous) override;
    bool GetCurrentPositionEx(HDC dc, POINT* position) override;
    bool SetBrushOrgEx(HDC dc, std::int32_t x, std::int32_t y, POINT* previous) override;

    bool LineTo(HDC dc, std::int32_t x, std::int32_t y) override;
    bool Polyline(HDC dc, std::span<const POINT> points) override;
    bool Polygon(HDC dc, std::span<const POINT> points) override;
    bool Rectangle(HDC dc, std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b) override;
    bool RoundRect(HDC dc, std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b,
                   std::int32_t w, std::int32_t h) override;
    bool Ellipse(HDC dc, std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b) override;
    int FillRect(HDC dc, const RECT& rect, HBRUSH brush) override;
    int FrameRect(HDC dc, const RECT& rect, HBRUSH brush) override;
    bool InvertRect(HDC dc, const RECT& rect) override;
    bool PatBlt(HDC dc, std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h,
                DWORD rop) override;
    COLORREF SetPixel(HDC dc, std::int32_t x, std::int32_t y, COLORREF color) override;
    COLORREF GetPixel(HDC dc, std::int32_t x, std::int32_t y) override;
    bool BitBlt(HDC dst, std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h, HDC src,
                std::int32_t sx, std::int32_t sy, DWORD rop) override;
    bool StretchBlt(HDC dst, std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h,
                    HDC src, std::int32_t sx, std::int32_t sy, std::int32_t sw, std::int32_t sh,
                    DWORD rop) override;
    bool DrawEdge(HDC dc, RECT* rect, unsigned edge, unsigned flags) override;
    bool AlphaBlend(HDC dst, std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h,
                    HDC src, std::int32_t sx, std::int32_t sy, std::int32_t sw, std::int32_t sh,
                    BLENDFUNCTION blend) override;

    HRGN CreateRectRgn(std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b) override;
    HRGN CreateRoundRectRgn(std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b,
                            std::int32_t w, std::int32_t h) override;
    HRGN CreateEllipticRgn(std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b) override;
    HRGN CreatePolygonRgn(std::span<const POINT> points, int fillMode) override;
    int CombineRgn(HRGN dest, HRGN src1, HRGN src2, int mode) override;
    int OffsetRgn(HRGN region, std::int32_t dx, std::int32_t dy) override;
    bool PtInRegion(HRGN region, std::int32_t x, std::int32_t y) override;
    int GetRgnBox(HRGN region, RECT* box) override;
    bool FillRgn(HDC dc, HRGN region, HBRUSH brush) override;
    bool FrameRgn(HDC dc, HRGN region, HBRUSH brush, std::int32_t w, std::int32_t h) override;
    bool PaintRgn(HDC dc, HRGN region) override;
    int SelectClipRgn(HDC dc, HRGN region) override;

    bool TextOut(HDC dc, std::int32_t x, std::int32_t y, std::string_view text) override;
    bool GetTextExtentPoint32(HDC dc, std::string_view text, SIZE* size) override;
    bool GetTextMetrics(HDC dc, TEXTMETRIC* metrics) override;
    std::string GetTextFace(HDC dc) override;

    COLORREF GetSysColor(int index) override;
    bool SetSysColors(std::span<const int> indices, std::span<const COLORREF> colors) override;
    int GetDeviceCaps(HDC dc, int index) override;
    // The software device's handles are its own.
    [[nodiscard]] std::uintptr_t NativeHandle(HDC dc) override { return dc.value; }

  private:
    struct PenObj {
        int style = PS_SOLID;
        int width = 1;  // device pixels; 0 and 1 are both the cosmetic one-pixel pen
        COLORREF color = 0;
        [[nodiscard]] bool IsNull() const { return style == PS_NULL; }
        [[nodiscard]] bool IsWide() const { return width > 1 && style != PS_NULL; }
    };
    struct BrushObj {
        bool null = false;
        COLORREF color = 0;
        int hatch = -1;  // HS_x, or -1 for a solid brush
    };
    struct FontObj {
        LOGFONT font;
    };
    struct BitmapObj {
        std::int32_t width = 0;
        std::int32_t height = 0;
        std::vector<std::uint32_t> pixels;
        std::uint32_t selectedIn = 0;  // the DC holding it, 0 when free
    };
    struct RegionObj {
        Region region;
    };
    struct DcObj {
        std::uint32_t bitmap = 0, pen = 0, brush = 0, font = 0;
        Surface surface;
        std::optional<Region> clip;  // device coordinates, as selected
        Region visible;              // clip intersected with the bitmap: what drawing may touch
        int rop2 = R2_COPYPEN;
        int bkMode = OPAQUE;
        COLORREF bkColor = RGB(255, 255, 255);
        COLORREF textColor = RGB(0, 0, 0);
        unsigned textAlign = 0;
        int stretchMode = BLACKONWHITE;
        POINT cp{};
        POINT brushOrg{};
        // Cached from the selected pen and brush; the ROP2 pairs are recomputed whenever the
        // pen, brush, ROP2 or background colour changes, never per pixel.
        PenObj penData;
        BrushObj brushData;
        DashPattern dash;
        RopPair penRop, gapRop;
        FillPaint brushRop;
    };
    using Object =
        std::variant<std::monostate, PenObj, BrushObj, FontObj, BitmapObj, RegionObj, DcObj>;
    struct Slot {
        Object object;
        bool stock = false;
        bool deletePending = false;  // deleted while selected: freed when deselected
        int selectCount = 0;
    };

    // sim_gdi.cpp: handles and state.
    std::uint32_t Allocate(Object object, bool stock = false);
    Slot* FindSlot(std::uint32_t handle);
    template <class T>
    T* Find(std::uint32_t handle) {
        Slot* slot = FindSlot(handle);
        return slot ? std::get_if<T>(&slot->object) : nullptr;
    }
    DcObj* Dc(HDC dc) { return Find<DcObj>(dc.value); }
    void Retain(std::uint32_t handle);
    void Release(std::uint32_t handle);
    void Free(std::uint32_t handle);
    void RefreshRops(DcObj& dc);
    void RefreshVisible(DcObj& dc);
    // A brush handle as FillRect reads it: 1..31 name system colour brushes (COLOR_x + 1), zero or
    // an unusable handle falls back to the brush selected in the DC.
    BrushObj ResolveBrush(const DcObj& dc, HBRUSH brush);
    // How `brush` fills through `rop2` in this DC: a hatch takes the DC's background colour and
    // mode and its brush origin.
    static FillPaint PaintFor(const DcObj& dc, const BrushObj& brush, int rop2);

    // sim_lines.cpp: pen strokes.
    // Strokes a polyline (closed adds the segment back to the first point) with the selected pen.
    // The dash phase starts at zero and runs on through every segment.
    void StrokeFigure(DcObj& dc, std::span<const POINT> points, bool closed);
    // Returns the segment's pixel count, by which the dash phase advances.
    std::int64_t StrokeSegment(DcObj& dc, POINT a, POINT b, std::int64_t phase);
    // The pixels a wide pen covers along the figure, cut to the bitmap rect dib.
    Region WideStrokeRegion(const PenObj& pen, std::span<const POINT> points, bool closed,
                            const RECT& dib);
    // The union over several figures, all closed or all open.
    Region WideStrokeRegion(const PenObj& pen, std::span<const std::span<const POINT>> figures,
                            bool closed, const RECT& dib);
    // RoundRect and Ellipse after their checks: the outline and interior of the rows that reach
    // the clip only.
    void PaintRoundFigure(DcObj& dc, std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b,
                          std::int32_t ew, std::int32_t eh);
    // A closed figure with its interior: a one-pixel pen draws over the painted interior; a
    // wide pen's outline is worked out first and the interior minus it painted before it.
    void PaintFigure(DcObj& dc, std::span<const POINT> outline, const Region* interior);

    // sim_shapes.cpp / sim_regions.cpp: fills.
    void FillClipped(DcObj& dc, const RECT& rect, const FillPaint& paint);
    void PaintRegion(DcObj& dc, const Region& region, const FillPaint& paint);
    // 64-bit, so callers pass differences and sums of 32-bit edges without wrapping them.
    bool PatBltBrush(DcObj& dc, std::int64_t x, std::int64_t y, std::int64_t w, std::int64_t h,
                     DWORD rop, const BrushObj& brush);
    bool DrawDiagonalEdge(HDC hdc, RECT* rect, unsigned edge, unsigned flags);

    // sim_text.cpp
    const LOGFONT& SelectedFont(const DcObj& dc);

    std::vector<Slot> slots_;
    // Pixels of all bitmaps alive: at most 2^27 (512 MiB), so no input takes more memory.
    static constexpr std::int64_t kMaxLivePixels = std::int64_t{1} << 27;
    std::int64_t livePixels_ = 0;
    std::vector<std::uint32_t> freeSlots_;
    std::array<COLORREF, kSysColorCount> sysColors_{};
    SIZE screen_{};
    int pixelsPerInch_ = 96;
    std::array<std::uint32_t, 18> stock_{};
    std::uint32_t stockBitmap_ = 0;
    std::unique_ptr<FontEngine> fonts_;
};

}  // namespace korvex::platform::sim
