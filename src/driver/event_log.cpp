#include "driver/event_log.hpp"

#include <ostream>

#include "host/variant.hpp"

namespace korvex::host {

void PrintEvent(std::ostream& out, const Site& site, const EventInfo& event,
                std::span<const Variant> args) {
    out << "event " << site.Name() << "." << event.name << "(";
    for (std::size_t i = 0; i < args.size(); ++i) out << (i ? ", " : "") << DisplayText(args[i]);
    out << ")\n";
}

void PrintChange(std::ostream& out, const Site& site, std::string_view property) {
    out << "changed " << site.Name() << "." << property << "\n";
}

void PrintError(std::ostream& out, const HostError& error) {
    out << "error " << error.Number() << ": " << error.Description() << "\n";
}

void EventLog::OnEvent(Site& site, const EventInfo& event, std::span<Variant> args) {
    PrintEvent(out_, site, event, args);
    out_.flush();
}

void EventLog::OnPropertyChanged(Site& site, std::string_view property) {
    PrintChange(out_, site, property);
    out_.flush();
}

void EventLog::Error(const HostError& error) {
    PrintError(out_, error);
    out_.flush();
}

}  // namespace korvex::host
