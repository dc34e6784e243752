#pragma once
// The host's numbered errors. Every failure a control, the host or the platform reports to a
// caller is a HostError carrying the host's error number, its text and the raising source. It
// sits below every other layer so that the platform can raise it too.

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace korvex::host {

// Error numbers the library raises.
enum ErrorNumber : std::int32_t {
    kErrInvalidCall = 5,
    kErrOverflow = 6,
    kErrOutOfMemory = 7,
    kErrSubscript = 9,
    kErrDivisionByZero = 11,
    kErrTypeMismatch = 13,
    kErrBadFileName = 52,
    kErrFileNotFound = 53,
    kErrDeviceUnavailable = 68,
    kErrPathFileAccess = 75,
    kErrPathNotFound = 76,
    kErrObjectNotSet = 91,
    kErrResourceNotFound = 326,
    kErrInvalidPropertyValue = 380,
    kErrReadOnlyProperty = 383,
    kErrNotPermitted = 387,
    kErrWriteOnlyProperty = 394,
    kErrFormAlreadyShown = 400,
    kErrObjectRequired = 424,
    kErrCannotCreateObject = 429,
    kErrNotSupported = 438,
    kErrArgumentNotOptional = 449,
    kErrWrongArguments = 450,
    kErrNoPersistentImage = 480,  // a surface's persistent bitmap cannot be made
    kErrInvalidPicture = 481,
    kErrModalDeadlock = 32000,  // the library's own: a headless modal loop with nothing left to run
    kErrCancel = 32755,
};

// The host's standard text for an error number; an unknown number gets "Application-defined or
// object-defined error", as the host says.
std::string_view StandardErrorText(std::int32_t number);

class HostError : public std::runtime_error {
  public:
    // Standard text for the number.
    explicit HostError(std::int32_t number, std::string source = {});
    HostError(std::int32_t number, std::string description, std::string source);

    [[nodiscard]] std::int32_t Number() const { return number_; }
    [[nodiscard]] const std::string& Description() const { return description_; }
    [[nodiscard]] const std::string& Source() const { return source_; }

  private:
    std::int32_t number_;
    std::string description_;
    std::string source_;
};

}  // namespace korvex::host
