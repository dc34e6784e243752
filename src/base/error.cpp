#include "base/error.hpp"

#include <array>
#include <utility>

namespace korvex::host {

std::string_view StandardErrorText(std::int32_t number) {
    static constexpr std::array<std::pair<std::int32_t, std::string_view>, 41> kTexts = {{
        {3, "Return without GoSub"},
        {5, "Invalid procedure call or argument"},
        {6, "Overflow"},
        {7, "Out of memory"},
        {9, "Subscript out of range"},
        {11, "Division by zero"},
        {13, "Type mismatch"},
        {52, "Bad file name or number"},
        {53, "File not found"},
        {55, "File already open"},
        {58, "File already exists"},
        {61, "Disk full"},
        {68, "Device unavailable"},
        {70, "Permission denied"},
        {71, "Disk not ready"},
        {75, "Path/File access error"},
        {76, "Path not found"},
        {91, "Object variable or With block variable not set"},
        {94, "Invalid use of Null"},
        {326, "Resource with identifier not found"},
        {380, "Invalid property value"},
        {381, "Invalid property array index"},
        {383, "Property is read-only"},
        {387, "Property can't be set in this mode"},
        {394, "Property is write-only"},
        {400, "Form already displayed; can't show modally"},
        {401, "Can't show non-modal form when modal form is displayed"},
        {424, "Object required"},
        {429, "ActiveX component can't create object"},
        {438, "Object doesn't support this property or method"},
        {440, "Automation error"},
        {449, "Argument not optional"},
        {450, "Wrong number of arguments or invalid property assignment"},
        {480, "Can't create AutoRedraw image"},
        {481, "Invalid picture"},
        {482, "Printer error"},
        {485, "Invalid picture type"},
        {330, "Illegal parameter. Can't write object because it does not support persistence"},
        {32000, "A modal form is waiting for input that will never come"},
        {32755, "Cancel was selected."},
        {32765, "Unable to open the dialog"},
    }};
    for (const auto& [n, text] : kTexts) {
        if (n == number) return text;
    }
    return "Application-defined or object-defined error";
}

HostError::HostError(std::int32_t number, std::string source)
    : HostError(number, std::string(StandardErrorText(number)), std::move(source)) {}

HostError::HostError(std::int32_t number, std::string description, std::string source)
    : std::runtime_error("error " + std::to_string(number) + ": " + description),
      number_(number),
      description_(std::move(description)),
      source_(std::move(source)) {}

}  // namespace korvex::host
