#include "library/library.hpp"

namespace korvex {

void RegisterLibrary(host::HostContext& context) {
    // Each control adds its own table here as it joins the library.
    (void)context;
}

}  // namespace korvex
