// A control host we did not write: Wine's (or Windows') atl.dll creates each control from its
// ProgID in an "AtlAxWin" window, which in-place activates it. This program only asks for the
// windows, sets properties through the control's IDispatch and takes each control window's
// pixels with PrintWindow, since a headless display has no screen to read back.
//
//   atlhost shots CASES.txt OUTDIR   one line per control: NAME PROGID WIDTH HEIGHT [Prop=Value]...
//                                    writes OUTDIR/NAME.bmp (32 bits, top-down) and prints what
//                                    it did per control
//   atlhost bench COUNT PROGID       creates and in-place activates COUNT controls, prints the time
//                                    and that of a fixed loop, the machine's speed at the time
//
// Values: 123 (Long), 1.5 (Double), &H8000000F& (Long), "text" (String), True, False.
// Exit status: 0 done, 1 a control could not be created or a property not set, 2 usage,
// 77 when atl.dll cannot be loaded (the tests count that as skipped).

#include <windows.h>

#include <ocidl.h>
#include <ole2.h>
#include <oleauto.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

using AxWinInitFn = BOOL(WINAPI*)();
using AxGetControlFn = HRESULT(WINAPI*)(HWND, IUnknown**);

struct Atl {
    HMODULE module = nullptr;
    AxWinInitFn winInit = nullptr;
    AxGetControlFn getControl = nullptr;
};

template <typename Fn>
Fn Proc(HMODULE module, const char* name) {
    // GetProcAddress returns a generic function pointer; void(*)() converts to any other.
    return reinterpret_cast<Fn>(reinterpret_cast<void (*)()>(GetProcAddress(module, name)));
}

bool LoadAtl(Atl& atl) {
    atl.module = LoadLibraryW(L"atl.dll");
    if (!atl.module) return false;
    atl.winInit = Proc<AxWinInitFn>(atl.module, "AtlAxWinInit");
    atl.getControl = Proc<AxGetControlFn>(atl.module, "AtlAxGetControl");
    return atl.winInit && atl.getControl && atl.winInit();
}

std::wstring Widen(const std::string& text) {
    if (text.empty()) return {};
    const int n =
        MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
    std::wstring out(static_cast<std::size_t>(n), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), out.data(), n);
    return out;
}

std::string Narrow(const wchar_t* text) {
    if (!text) return {};
    const int n = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    std::string out(static_cast<std::size_t>(n > 0 ? n - 1 : 0), '\0');
    if (n > 1) WideCharToMultiByte(CP_UTF8, 0, text, -1, out.data(), n, nullptr, nullptr);
    return out;
}

// Parses one value of the case file into a VARIANT the way a script host would pass it.
bool ParseValue(const std::string& text, VARIANT& v) {
    VariantInit(&v);
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"') {
        v.vt = VT_BSTR;
        v.bstrVal = SysAllocString(Widen(text.substr(1, text.size() - 2)).c_str());
        return true;
    }
    if (text == "True" || text == "False") {
        v.vt = VT_BOOL;
        v.boolVal = text == "True" ? VARIANT_TRUE : VARIANT_FALSE;
        return true;
    }
    char* end = nullptr;
    if (text.rfind("&H", 0) == 0) {
        const unsigned long value = std::strtoul(text.c_str() + 2, &end, 16);
        if (end == text.c_str() + 2 || (*end != '\0' && std::string(end) != "&")) return false;
        v.vt = VT_I4;
        v.lVal = static_cast<LONG>(value);
        return true;
    }
    const long whole = std::strtol(text.c_str(), &end, 10);
    if (end != text.c_str() && *end == '\0') {
        v.vt = VT_I4;
        v.lVal = whole;
        return true;
    }
    const double real = std::strtod(text.c_str(), &end);
    if (end != text.c_str() && *end == '\0') {
        v.vt = VT_R8;
        v.dblVal = real;
        return true;
    }
    return false;
}

std::string Describe(const VARIANT& value) {
    VARIANT text;
    VariantInit(&text);
    if (value.vt == VT_BOOL) return value.boolVal ? "True" : "False";
    if (value.vt == VT_DISPATCH || value.vt == VT_UNKNOWN) return "<object>";
    if (FAILED(VariantChangeType(&text, const_cast<VARIANT*>(&value), 0, VT_BSTR))) return "<?>";
    std::string out = Narrow(text.bstrVal);
    VariantClear(&text);
    return value.vt == VT_BSTR ? "\"" + out + "\"" : out;
}

std::string HexResult(HRESULT hr) {
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, "0x%08lX", static_cast<unsigned long>(hr));
    return buffer;
}

// The error a host would show: the EXCEPINFO's number and text when the control gave one.
std::string Failure(HRESULT hr, EXCEPINFO& info) {
    std::string out = HexResult(hr);
    if (hr == DISP_E_EXCEPTION) {
        if (info.pfnDeferredFillIn) info.pfnDeferredFillIn(&info);
        const long number = info.scode ? HRESULT_CODE(info.scode) : info.wCode;
        out += " error " + std::to_string(number) + ": " + Narrow(info.bstrDescription);
        SysFreeString(info.bstrDescription);
        SysFreeString(info.bstrSource);
        SysFreeString(info.bstrHelpFile);
    }
    return out;
}

DISPID IdOf(IDispatch* object, const std::wstring& name) {
    DISPID id = DISPID_UNKNOWN;
    LPOLESTR names[] = {const_cast<LPOLESTR>(name.c_str())};
    if (FAILED(object->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id)))
        return DISPID_UNKNOWN;
    return id;
}

// Sets and reads back one property; returns the line to print, and whether it worked.
bool SetProperty(IDispatch* object, const std::string& name, const std::string& text,
                 std::string& line) {
    const DISPID id = IdOf(object, Widen(name));
    if (id == DISPID_UNKNOWN) {
        line = "no member " + name;
        return false;
    }
    VARIANT value;
    if (!ParseValue(text, value)) {
        line = "bad value for " + name + ": " + text;
        return false;
    }
    DISPID named = DISPID_PROPERTYPUT;
    DISPPARAMS put{&value, &named, 1, 1};
    EXCEPINFO info{};
    HRESULT hr = object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYPUT, &put,
                                nullptr, &info, nullptr);
    VariantClear(&value);
    if (FAILED(hr)) {
        line = name + " = " + text + ": " + Failure(hr, info);
        return false;
    }
    DISPPARAMS none{nullptr, nullptr, 0, 0};
    VARIANT result;
    VariantInit(&result);
    EXCEPINFO getInfo{};
    hr = object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none, &result,
                        &getInfo, nullptr);
    if (FAILED(hr)) {
        line = name + " read back: " + Failure(hr, getInfo);
        return false;
    }
    line = name + " = " + Describe(result);
    VariantClear(&result);
    return true;
}

void Pump() {
    MSG msg;
    while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&msg);
        DispatchMessageW(&msg);
    }
}

// The control window's pixels through WM_PRINT: the way to read a window without a screen.
// The canvas starts magenta so that whatever the control leaves unpainted stands out.
bool Capture(HWND window, const std::string& path, int& width, int& height) {
    RECT client{};
    GetClientRect(window, &client);
    width = client.right - client.left;
    height = client.bottom - client.top;
    if (width <= 0 || height <= 0) return false;
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    void* bits = nullptr;
    HDC screen = GetDC(nullptr);
    HDC memory = CreateCompatibleDC(screen);
    HBITMAP bitmap = CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    ReleaseDC(nullptr, screen);
    if (!bitmap || !bits) {
        DeleteDC(memory);
        return false;
    }
    HGDIOBJ old = SelectObject(memory, bitmap);
    auto* pixels = static_cast<std::uint32_t*>(bits);
    for (int i = 0; i < width * height; ++i) pixels[i] = 0x00FF00FF;
    const BOOL printed = PrintWindow(window, memory, 0);
    GdiFlush();

    BITMAPFILEHEADER file{};
    file.bfType = 0x4D42;
    file.bfOffBits = sizeof(BITMAPFILEHEADER) + sizeof(BITMAPINFOHEADER);
    const DWORD size = static_cast<DWORD>(width) * static_cast<DWORD>(height) * 4;
    file.bfSize = file.bfOffBits + size;
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(&file), sizeof file);
    out.write(reinterpret_cast<const char*>(&info.bmiHeader), sizeof info.bmiHeader);
    out.write(static_cast<const char*>(bits), size);
    SelectObject(memory, old);
    DeleteObject(bitmap);
    DeleteDC(memory);
    return printed && out.good();
}

LRESULT CALLBACK FrameProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return DefWindowProcW(window, message, wParam, lParam);
}

HWND CreateFrame(int width, int height) {
    WNDCLASSW frameClass{};
    frameClass.lpfnWndProc = FrameProc;
    frameClass.hInstance = GetModuleHandleW(nullptr);
    frameClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
    frameClass.lpszClassName = L"KorvexAtlHostFrame";
    RegisterClassW(&frameClass);
    HWND frame = CreateWindowExW(0, frameClass.lpszClassName, L"ATL host",
                                 WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, 0, 0, width, height,
                                 nullptr, nullptr, frameClass.hInstance, nullptr);
    ShowWindow(frame, SW_SHOW);
    return frame;
}

// The control an AtlAxWin window made, and the window it is in-place active in.
struct Hosted {
    IUnknown* control = nullptr;
    HWND window = nullptr;
    std::string error;
};

Hosted Host(const Atl& atl, HWND frame, const std::wstring& progId, int x, int y, int width,
            int height) {
    Hosted hosted;
    HWND axWindow =
        CreateWindowExW(0, L"AtlAxWin", progId.c_str(), WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, x,
                        y, width, height, frame, nullptr, GetModuleHandleW(nullptr), nullptr);
    if (!axWindow) {
        hosted.error = "no AtlAxWin window";
        return hosted;
    }
    HRESULT hr = atl.getControl(axWindow, &hosted.control);
    if (FAILED(hr) || !hosted.control) {
        hosted.error = "AtlAxGetControl " + HexResult(hr) + " (the ProgID created nothing)";
        return hosted;
    }
    IOleInPlaceObject* inPlace = nullptr;
    hr = hosted.control->QueryInterface(IID_IOleInPlaceObject, reinterpret_cast<void**>(&inPlace));
    if (FAILED(hr)) {
        hosted.error = "no IOleInPlaceObject " + HexResult(hr);
        return hosted;
    }
    hr = inPlace->GetWindow(&hosted.window);
    inPlace->Release();
    if (FAILED(hr) || !hosted.window) {
        hosted.error = "not in-place active: GetWindow " + HexResult(hr);
        hosted.window = nullptr;
    } else if (GetParent(hosted.window) != axWindow || !IsWindowVisible(hosted.window)) {
        hosted.error = "the control window is not a visible child of the host window";
    }
    return hosted;
}

std::vector<std::string> Words(const std::string& line) {
    std::vector<std::string> words;
    std::string word;
    bool quoted = false;
    for (char c : line) {
        if (c == '"') quoted = !quoted;
        if (!quoted && (c == ' ' || c == '\t')) {
            if (!word.empty()) words.push_back(word);
            word.clear();
        } else {
            word += c;
        }
    }
    if (!word.empty()) words.push_back(word);
    return words;
}

int Shots(const Atl& atl, const char* casesPath, const std::string& outDir) {
    std::ifstream cases(casesPath);
    if (!cases) {
        std::printf("cannot read %s\n", casesPath);
        return 2;
    }
    HWND frame = CreateFrame(800, 600);
    int failures = 0, made = 0, properties = 0, shots = 0;
    std::string line;
    while (std::getline(cases, line)) {
        if (line.empty() || line[0] == '#') continue;
        const std::vector<std::string> w = Words(line);
        if (w.size() < 4) {
            std::printf("malformed case: %s\n", line.c_str());
            return 2;
        }
        const std::string& name = w[0];
        const int width = std::atoi(w[2].c_str()), height = std::atoi(w[3].c_str());
        Hosted hosted = Host(atl, frame, Widen(w[1]), 10, 10, width, height);
        if (!hosted.error.empty()) {
            std::printf("%s: %s: %s\n", name.c_str(), w[1].c_str(), hosted.error.c_str());
            ++failures;
            if (hosted.control) hosted.control->Release();
            continue;
        }
        ++made;
        RECT first{};
        GetClientRect(hosted.window, &first);
        std::printf(
            "%s: %s created, in-place active in a %dx%d host window, its own window %ldx%ld\n",
            name.c_str(), w[1].c_str(), width, height, first.right, first.bottom);
        IDispatch* object = nullptr;
        if (FAILED(
                hosted.control->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&object)))) {
            std::printf("%s: no IDispatch\n", name.c_str());
            ++failures;
        }
        for (std::size_t i = 4; object && i < w.size(); ++i) {
            const std::size_t eq = w[i].find('=');
            std::string text;
            if (eq == std::string::npos) {
                text = "malformed property " + w[i];
                ++failures;
            } else if (SetProperty(object, w[i].substr(0, eq), w[i].substr(eq + 1), text)) {
                ++properties;
            } else {
                ++failures;
            }
            // The window's size after each property: a control that sizes itself shows when.
            RECT client{};
            GetClientRect(hosted.window, &client);
            std::printf("%s: %s (window %ldx%ld)\n", name.c_str(), text.c_str(), client.right,
                        client.bottom);
        }
        if (object) object->Release();
        Pump();
        int shotWidth = 0, shotHeight = 0;
        if (Capture(hosted.window, outDir + "\\" + name + ".bmp", shotWidth, shotHeight)) {
            ++shots;
            std::printf("%s: printed %dx%d\n", name.c_str(), shotWidth, shotHeight);
        } else {
            std::printf("%s: PrintWindow failed\n", name.c_str());
            ++failures;
        }
        hosted.control->Release();
        std::fflush(stdout);
    }
    DestroyWindow(frame);
    Pump();
    std::printf(
        "atlhost: %d controls created and in-place active, %d properties set and read back, %d "
        "windows printed, "
        "%d failures\n",
        made, properties, shots, failures);
    return failures ? 1 : 0;
}

// A fixed piece of arithmetic, timed as the benchmark is: whether the machine itself is slower
// than at another run (other work on it) shows here, apart from the controls.
double MachineMs(double frequency) {
    double best = 0;
    for (int round = 0; round < 3; ++round) {
        LARGE_INTEGER start, end;
        QueryPerformanceCounter(&start);
        volatile std::uint32_t x = 1;
        for (std::uint32_t i = 0; i < 100'000'000u; ++i) x = x * 1664525u + 1013904223u;
        QueryPerformanceCounter(&end);
        const double ms = 1000.0 * static_cast<double>(end.QuadPart - start.QuadPart) / frequency;
        best = round == 0 ? ms : std::min(best, ms);
    }
    return best;
}

// Rounds of COUNT controls, each round in a frame of its own that is destroyed after it (which
// closes its controls); the machine may be busy with other work, so the best round is the figure.
int Bench(const Atl& atl, int count, const std::wstring& progId) {
    constexpr int kRounds = 5;
    {
        // One warm-up control, so that loading the DLL and its type library is not counted.
        HWND frame = CreateFrame(200, 100);
        Hosted warm = Host(atl, frame, progId, 0, 0, 100, 30);
        if (warm.control) warm.control->Release();
        DestroyWindow(frame);
        Pump();
        if (!warm.error.empty()) {
            std::printf("bench: %s\n", warm.error.c_str());
            return 1;
        }
    }
    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    double best = 0;
    int active = 0;
    std::string rounds;
    for (int round = 0; round < kRounds; ++round) {
        HWND frame = CreateFrame(1200, 900);
        LARGE_INTEGER start, end;
        QueryPerformanceCounter(&start);
        active = 0;
        std::vector<IUnknown*> controls;
        for (int i = 0; i < count; ++i) {
            Hosted hosted =
                Host(atl, frame, progId, 10 + (i % 10) * 110, 40 + (i / 10 % 25) * 34, 100, 30);
            if (hosted.error.empty()) ++active;
            if (hosted.control) controls.push_back(hosted.control);
        }
        Pump();
        QueryPerformanceCounter(&end);
        const double ms = 1000.0 * static_cast<double>(end.QuadPart - start.QuadPart) /
                          static_cast<double>(frequency.QuadPart);
        best = round == 0 ? ms : std::min(best, ms);
        char figure[32];
        std::snprintf(figure, sizeof figure, "%s%.0f", round ? ", " : "", ms);
        rounds += figure;
        for (IUnknown* control : controls) control->Release();
        DestroyWindow(frame);
        Pump();
        if (active != count) break;
    }
    std::printf(
        "bench: %d of %d %s created and in-place activated in the ATL host in %.1f ms (%.2f ms "
        "each), "
        "the best of %d rounds (%s ms)\n",
        active, count, Narrow(progId.c_str()).c_str(), best, best / count, kRounds, rounds.c_str());
    std::printf("bench: the machine: 100 million steps of a fixed loop in %.0f ms (best of 3)\n",
                MachineMs(static_cast<double>(frequency.QuadPart)));
    return active == count ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    const std::string mode = argc > 1 ? argv[1] : "";
    if (!((mode == "shots" && argc == 4) || (mode == "bench" && argc == 4))) {
        std::fputs("usage: atlhost shots CASES.txt OUTDIR | atlhost bench COUNT PROGID\n", stderr);
        return 2;
    }
    Atl atl;
    if (!LoadAtl(atl)) {
        std::printf("SKIPPED: atl.dll or its AtlAxWinInit is not available\n");
        return 77;
    }
    const int status = mode == "shots" ? Shots(atl, argv[2], argv[3])
                                       : Bench(atl, std::atoi(argv[2]), Widen(argv[3]));
    std::fflush(stdout);
    OleUninitialize();
    return status;
}
