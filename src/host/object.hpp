#pragma once
// Late binding. Every object the host can drive by name (controls, fonts, pictures) publishes one
// member table, its ClassInfo; Invoke finds the member there and calls it.

#include <span>
#include <string_view>

#include "host/variant.hpp"

namespace korvex::host {

class ClassInfo;

class Object : public std::enable_shared_from_this<Object> {
  public:
    virtual ~Object() = default;
    [[nodiscard]] virtual const ClassInfo& TypeInfo() const = 0;
};

enum class InvokeKind { Get, Let, Set, Call };

// Gets, lets, sets or calls the member `name` (case-insensitive, as the host matches names).
// Error 438 for an unknown member, 383 for assigning a read-only property, 450 for a wrong
// argument count, 449 for a required argument left out. Optional arguments the caller omits
// arrive as Missing. Arguments are passed by reference: a method may change them.
Variant Invoke(Object& object, std::string_view name, InvokeKind kind,
               std::span<Variant> args = {});

}  // namespace korvex::host
