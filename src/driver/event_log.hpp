#pragma once
// The event log the korvex tool prints: one line for each event a control raises and each
// property change it reports, in the order they happen, and the host's errors.
//
//   event NAME.EVENT(ARG, ...)    changed NAME.PROPERTY    error N: TEXT

#include <iosfwd>
#include <span>
#include <string_view>

#include "base/error.hpp"
#include "host/container.hpp"

namespace korvex::host {

void PrintEvent(std::ostream& out, const Site& site, const EventInfo& event,
                std::span<const Variant> args);
void PrintChange(std::ostream& out, const Site& site, std::string_view property);
void PrintError(std::ostream& out, const HostError& error);

// A form's event sink that prints the log, flushing each line so that a reader of a pipe or a
// file sees it at once (korvex show runs until its window closes).
class EventLog final : public EventSink {
  public:
    explicit EventLog(std::ostream& out) : out_(out) {}
    void OnEvent(Site& site, const EventInfo& event, std::span<Variant> args) override;
    void OnPropertyChanged(Site& site, std::string_view property) override;
    void Error(const HostError& error);

  private:
    std::ostream& out_;
};

}  // namespace korvex::host
