#pragma once
// Form files: a container's form and its sited controls as JSON text, positions in twips and
// each control's property bag.
//
//   {
//     "Form": {"Name": "Form1", "Caption": "Form1", "Width": 4800, "Height": 3600, ...},
//     "Controls": [
//       {"ProgID": "Korvex_Tools.Line3D", "Name": "Line3D1", "Left": 120, "Top": 120,
//        "Width": 1500, "Height": 30, "Visible": true, "Enabled": true, "TabIndex": 0, "TabStop":
//        true, "Properties": {<property bag>}, "Controls": [<contained controls>]}
//     ]
//   }
// "Visible", "Enabled", "TabIndex", "TabStop", "Properties" and "Controls" may be left out.

#include <string>
#include <string_view>

#include "host/container.hpp"

namespace korvex::host {

// The form as text: its own properties, then every control with the bag it writes now.
[[nodiscard]] std::string SaveFormJson(const Container& form);
// Replaces every control of the form by those of the text. A malformed text raises HostError
// (380) and leaves the form as it was.
void LoadFormJson(Container& form, std::string_view text);

// The same through a file; errors 75 (cannot write) and 53 (no such file).
void SaveFormFile(const Container& form, const std::string& path);
void LoadFormFile(Container& form, const std::string& path);

}  // namespace korvex::host
