// An application that embeds the library: creates a host and converts by the host's rules.
#include <cstdio>

#include "library/library.hpp"
#include "host/control.hpp"
#include "host/variant.hpp"

int main() {
    korvex::host::HostContext context;
    korvex::RegisterLibrary(context);
    std::printf("Integer %d, Long %d\n", korvex::host::Variant(2.5).ToInteger(),
                korvex::host::Variant(3.5f).ToLong());
    return 0;
}
