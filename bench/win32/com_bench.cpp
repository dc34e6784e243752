// Late-bound property reads through korvex_tools.dll's IDispatch::Invoke per second, against a
// direct C++ call of the same getter and the member table's getter, in the same run. Prints the
// rates and their ratios; asserts nothing (the figures depend on the machine).
//
// Usage: korvex-com-bench DLL [SECONDS-PER-LOOP]

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

#include "controls/display/label3d.hpp"

// After every header of the library: these bring in <windows.h>.
#include "com/classes.hpp"
#include "com/control_object.hpp"

namespace {

using namespace korvex;
using Clock = std::chrono::steady_clock;

// Calls per second of `body`, run in rounds until `seconds` have passed.
double Rate(const std::function<void(int)>& body, double seconds) {
    long long calls = 0;
    const auto start = Clock::now();
    std::chrono::duration<double> elapsed{};
    int round = 1000;
    while (elapsed.count() < seconds) {
        body(round);
        calls += round;
        elapsed = Clock::now() - start;
        if (round < (1 << 20)) round *= 2;
    }
    return static_cast<double>(calls) / elapsed.count();
}

volatile std::uint64_t gSink = 0;

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: korvex-com-bench DLL [SECONDS]\n");
        return 2;
    }
    const double seconds = argc > 2 ? std::atof(argv[2]) : 1.0;
    if (FAILED(OleInitialize(nullptr))) return 1;
    HMODULE dll = LoadLibraryA(argv[1]);
    if (!dll) {
        std::printf("%s does not load\n", argv[1]);
        return 1;
    }
    using GetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
    const auto getClassObject = reinterpret_cast<GetClassObject>(
        reinterpret_cast<void*>(GetProcAddress(dll, "DllGetClassObject")));
    const com::ClassEntry* entry = nullptr;
    for (const com::ClassEntry& e : com::PublicClasses())
        if (e.info->name == "Label3D") entry = &e;
    IClassFactory* factory = nullptr;
    IDispatch* object = nullptr;
    if (!entry || !getClassObject ||
        FAILED(
            getClassObject(entry->clsid, IID_IClassFactory, reinterpret_cast<void**>(&factory))) ||
        FAILED(
            factory->CreateInstance(nullptr, IID_IDispatch, reinterpret_cast<void**>(&object)))) {
        std::printf("Label3D cannot be created\n");
        return 1;
    }
    factory->Release();

    // The same class in this program, for the direct calls.
    IDispatch* local = nullptr;
    com::ControlObject::Create(*entry, IID_IDispatch, reinterpret_cast<void**>(&local));
    const std::shared_ptr<host::Control> control =
        static_cast<com::ControlObject*>(local)->HostControl();
    auto& label = static_cast<controls::Label3D&>(*control);

    for (const char* property : {"TextColor", "FontSize", "Caption"}) {
        std::wstring name(property, property + std::char_traits<char>::length(property));
        LPOLESTR names[] = {name.data()};
        DISPID id = 0;
        object->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
        DISPPARAMS none{};
        const double invoke = Rate(
            [&](int n) {
                for (int i = 0; i < n; ++i) {
                    VARIANT result;
                    VariantInit(&result);
                    object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none,
                                   &result, nullptr, nullptr);
                    gSink = gSink + V_VT(&result);
                    VariantClear(&result);
                }
            },
            seconds);
        const std::string which = property;
        const auto direct =
            which == "TextColor" ? Rate(
                                       [&](int n) {
                                           for (int i = 0; i < n; ++i)
                                               gSink = gSink + label.TextColor();
                                       },
                                       seconds)
            : which == "FontSize"
                ? Rate(
                      [&](int n) {
                          for (int i = 0; i < n; ++i)
                              gSink = gSink + static_cast<std::uint64_t>(label.FontSize());
                      },
                      seconds)
                : Rate(
                      [&](int n) {
                          for (int i = 0; i < n; ++i) gSink = gSink + label.Caption().size();
                      },
                      seconds);
        const host::MemberInfo* member = entry->info->FindMember(property);
        const double table = Rate(
            [&](int n) {
                for (int i = 0; i < n; ++i)
                    gSink = gSink + static_cast<std::uint64_t>(member->get(label).Kind());
            },
            seconds);
        std::printf(
            "%-9s IDispatch::Invoke %8.3f M/s   member table %8.3f M/s   direct %9.3f M/s   "
            "direct/Invoke %6.1f\n",
            property, invoke / 1e6, table / 1e6, direct / 1e6, direct / invoke);
    }
    local->Release();
    object->Release();
    OleUninitialize();
    return 0;
}
