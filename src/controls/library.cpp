#include "controls/library.hpp"

namespace korvex::controls {

void RegisterLibrary(host::ClassRegistry& registry) {
    // Each control adds its own table here as it joins the library.
    (void)registry;
}

}  // namespace korvex::controls
