#pragma once
// The member reference: one class's table as Markdown, written from the same ClassInfo the host
// dispatches through, so the reference cannot drift from the code. `korvex members` prints it;
// docs/reference/ holds it for every registered class.

#include <string>
#include <vector>

#include "host/type_info.hpp"

namespace korvex::host {

// Members in slot order with their dispatch identifiers, types and arguments; each persisted
// property's key, bag kind and new/read/write defaults; events with their numbers and
// arguments; enumerations with their members.
std::string MemberReference(const ClassInfo& info);

// The index page: one line per class, linking to "<name>.md".
std::string MemberReferenceIndex(const std::vector<const ClassInfo*>& classes);

}  // namespace korvex::host
