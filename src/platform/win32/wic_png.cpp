// PNG through the Windows Imaging Component, for the Windows build where there is no libpng: the
// same contract as png.cpp (colours kept, alpha dropped, 0x00RRGGBB words top-down, failures as
// std::runtime_error). COM is entered for each call and left again, so callers need not have.

#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <string>

#include "base/file.hpp"
#include "base/os_file.hpp"
#include "platform/png.hpp"

// windows.h first: wincodec.h needs its types.
#include <windows.h>

#include <wincodec.h>

namespace korvex::wic {

namespace {

// Releases a COM interface on every path out.
template <typename T>
class Com {
  public:
    Com() = default;
    ~Com() {
        if (p_) p_->Release();
    }
    Com(const Com&) = delete;
    Com& operator=(const Com&) = delete;
    T* operator->() const { return p_; }
    T* get() const { return p_; }
    T** put() { return &p_; }

  private:
    T* p_ = nullptr;
};

// COM for the length of one call: an apartment the caller already entered is used as it is.
class ComScope {
  public:
    ComScope() : entered_(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}
    ~ComScope() {
        if (entered_) CoUninitialize();
    }
    ComScope(const ComScope&) = delete;
    ComScope& operator=(const ComScope&) = delete;

  private:
    bool entered_;
};

void Check(HRESULT hr, const std::string& what, const char* step) {
    if (FAILED(hr)) {
        char code[16];
        std::snprintf(code, sizeof code, "0x%08lX", static_cast<unsigned long>(hr));
        throw std::runtime_error("PNG " + what + ": " + step + " failed (" + code + ")");
    }
}

void Factory(Com<IWICImagingFactory>& factory, const std::string& what) {
    Check(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                           IID_IWICImagingFactory, reinterpret_cast<void**>(factory.put())),
          what, "the imaging component");
}

using platform::Image;

// Only PNG is taken, whatever else the imaging component could read.
Image Decode(IWICImagingFactory& factory, IStream* source, const std::string& what) {
    Com<IWICBitmapDecoder> decoder;
    Check(factory.CreateDecoder(GUID_ContainerFormatPng, nullptr, decoder.put()), what,
          "making the decoder");
    Check(decoder->Initialize(source, WICDecodeMetadataCacheOnDemand), what, "opening");
    Com<IWICBitmapFrameDecode> frame;
    Check(decoder->GetFrame(0, frame.put()), what, "reading the image");
    UINT width = 0, height = 0;
    Check(frame->GetSize(&width, &height), what, "reading the size");
    // A cap on the pixel count keeps a hostile header from asking for gigabytes.
    constexpr unsigned long long kMaxPixels = 1ull << 26;
    if (width == 0 || height == 0 || static_cast<unsigned long long>(width) * height > kMaxPixels) {
        throw std::runtime_error("PNG " + what + ": unsupported size " + std::to_string(width) +
                                 "x" + std::to_string(height));
    }
    // Straight (not premultiplied) BGRA keeps the stored colours of translucent pixels.
    Com<IWICFormatConverter> converter;
    Check(factory.CreateFormatConverter(converter.put()), what, "converting");
    Check(converter->Initialize(frame.get(), GUID_WICPixelFormat32bppBGRA, WICBitmapDitherTypeNone,
                                nullptr, 0.0, WICBitmapPaletteTypeCustom),
          what, "converting");
    Image out;
    out.width = static_cast<std::int32_t>(width);
    out.height = static_cast<std::int32_t>(height);
    out.pixels.resize(static_cast<std::size_t>(width) * height);
    Check(converter->CopyPixels(nullptr, width * 4, static_cast<UINT>(out.pixels.size() * 4),
                                reinterpret_cast<BYTE*>(out.pixels.data())),
          what, "reading the pixels");
    for (std::uint32_t& p : out.pixels) p &= 0x00FFFFFFu;  // BGRA in memory is 0xAARRGGBB
    return out;
}

}  // namespace

std::vector<std::uint8_t> Encode(const platform::PixelView& pixels) {
    const std::string what = "encode";
    ComScope com;
    Com<IWICImagingFactory> factory;
    Factory(factory, what);
    const auto width = static_cast<UINT>(pixels.width);
    const auto height = static_cast<UINT>(pixels.height);
    // 0x00RRGGBB words are 32bppBGR in memory; the encoder writes them as 8-bit RGB.
    Com<IWICBitmap> bitmap;
    Check(factory->CreateBitmapFromMemory(width, height, GUID_WICPixelFormat32bppBGR, width * 4,
                                          width * height * 4, reinterpret_cast<BYTE*>(pixels.bits),
                                          bitmap.put()),
          what, "taking the pixels");
    Com<IStream> stream;
    Check(CreateStreamOnHGlobal(nullptr, TRUE, stream.put()), what, "making a stream");
    Com<IWICBitmapEncoder> encoder;
    Check(factory->CreateEncoder(GUID_ContainerFormatPng, nullptr, encoder.put()), what,
          "making the encoder");
    Check(encoder->Initialize(stream.get(), WICBitmapEncoderNoCache), what, "starting");
    Com<IWICBitmapFrameEncode> frame;
    Check(encoder->CreateNewFrame(frame.put(), nullptr), what, "making a frame");
    Check(frame->Initialize(nullptr), what, "starting the frame");
    Check(frame->SetSize(width, height), what, "setting the size");
    WICPixelFormatGUID format = GUID_WICPixelFormat24bppBGR;
    Check(frame->SetPixelFormat(&format), what, "setting the format");
    Check(frame->WriteSource(bitmap.get(), nullptr), what, "writing the pixels");
    Check(frame->Commit(), what, "finishing the frame");
    Check(encoder->Commit(), what, "finishing");

    HGLOBAL memory = nullptr;
    Check(GetHGlobalFromStream(stream.get(), &memory), what, "reading the stream");
    STATSTG stat{};
    Check(stream->Stat(&stat, STATFLAG_NONAME), what, "reading the stream");
    std::vector<std::uint8_t> out(static_cast<std::size_t>(stat.cbSize.QuadPart));
    if (!out.empty()) {
        const void* bytes = GlobalLock(memory);
        if (bytes == nullptr) throw std::runtime_error("PNG encode: reading the stream failed");
        std::memcpy(out.data(), bytes, out.size());
        GlobalUnlock(memory);
    }
    return out;
}

Image Read(const std::string& path) {
    const std::string what = "read " + path;
    ComScope com;
    Com<IWICImagingFactory> factory;
    Factory(factory, what);
    Com<IWICStream> stream;
    Check(factory->CreateStream(stream.put()), what, "making a stream");
    Check(stream->InitializeFromFilename(os::Utf8Path(path).c_str(), GENERIC_READ), what,
          "opening");
    return Decode(*factory.get(), stream.get(), what);
}

Image Decode(std::span<const std::uint8_t> bytes) {
    const std::string what = "decode";
    if (bytes.size() > 0xFFFFFFFFu) throw std::runtime_error("PNG decode: too much data");
    ComScope com;
    Com<IWICImagingFactory> factory;
    Factory(factory, what);
    Com<IWICStream> stream;
    Check(factory->CreateStream(stream.put()), what, "making a stream");
    Check(stream->InitializeFromMemory(const_cast<BYTE*>(bytes.data()),
                                       static_cast<::DWORD>(bytes.size())),
          what, "reading the data");
    return Decode(*factory.get(), stream.get(), what);
}

}  // namespace korvex::wic

namespace korvex::platform {

void WritePng(const std::string& path, const PixelView& pixels) {
    const std::vector<std::uint8_t> bytes = EncodePng(pixels);
    WriteFileReplacing(path, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

std::vector<std::uint8_t> EncodePng(const PixelView& pixels) {
    if (pixels.width <= 0 || pixels.height <= 0 || pixels.bits == nullptr) {
        throw std::runtime_error("PNG encode: empty bitmap (" + std::to_string(pixels.width) + "x" +
                                 std::to_string(pixels.height) + ")");
    }
    return wic::Encode(pixels);
}

Image ReadPng(const std::string& path) {
    return wic::Read(path);
}

Image DecodePng(std::span<const std::uint8_t> bytes) {
    if (bytes.empty()) throw std::runtime_error("PNG decode: no data");
    return wic::Decode(bytes);
}

}  // namespace korvex::platform
