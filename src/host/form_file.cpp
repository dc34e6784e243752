// Form files: JSON text of a container's form and controls.

#include "host/form_file.hpp"

#include <filesystem>
#include <fstream>
#include <limits>
#include <sstream>
#include <unordered_map>
#include <vector>

#include "base/file.hpp"
#include "host/json_codec.hpp"

namespace korvex::host {

namespace {

using json::Json;

[[noreturn]] void BadForm(const std::string& what) {
    throw HostError(kErrInvalidPropertyValue, "Invalid form file: " + what, "Container");
}

template <class T>
T FormField(const Json& object, const char* key, T fallback, const std::string& where) {
    auto it = object.find(key);
    if (it == object.end()) return fallback;
    try {
        return it->get<T>();
    } catch (const nlohmann::json::exception&) {
        BadForm(where + ": \"" + key + "\" has the wrong type");
    }
}

// A whole number of the form file by the host's rules, not the JSON library's silent wrap: a
// value beyond the field's type is error 6, named with its key and value.
template <class T>
T NumberField(const Json& object, const char* key, T fallback, const std::string& where) {
    auto it = object.find(key);
    if (it == object.end()) return fallback;
    if (!it->is_number()) BadForm(where + ": \"" + key + "\" has the wrong type");
    try {
        const Variant value = json::Decode(*it);
        if constexpr (sizeof(T) == 2)
            return value.ToInteger();
        else
            return value.ToLong();
    } catch (const HostError& e) {
        throw HostError(
            e.Number(),
            where + ": " + e.Description() + " (key \"" + key + "\", value " + it->dump() + ")",
            "Container");
    }
}

// The deepest a form file's JSON goes: a control at the deepest level is at depth 2 *
// kMaxNesting, its bag and a font or picture in it add three more. An object has at most
// kMaxKeys keys (a bag has a few dozen), so a key's lookup costs a bounded time and loading
// stays linear in the text.
constexpr int kMaxJsonDepth = 2 * kMaxNesting + 4;
constexpr std::size_t kMaxKeys = 1024;

// Parses the text and refuses, while parsing, a nesting or an object that is too large. The
// error names the innermost control seen so far, since the controls are not built yet.
Json ParseForm(std::string_view text) {
    std::string control;            // the last control name read
    bool nameKey = false;           // the key just read was a control's "Name"
    std::vector<std::size_t> keys;  // keys of each open object, by depth
    const auto where = [&] {
        return control.empty() ? std::string("the form") : "control " + control;
    };
    const auto callback = [&](int depth, nlohmann::json::parse_event_t event, Json& parsed) {
        using Event = nlohmann::json::parse_event_t;
        if (event == Event::object_start || event == Event::array_start) {
            if (depth > kMaxJsonDepth) {
                BadForm(where() + ": controls are nested deeper than " +
                        std::to_string(kMaxNesting) + " levels");
            }
            if (event == Event::object_start) {
                keys.resize(static_cast<std::size_t>(depth) + 1);
                keys.back() = 0;
            }
        } else if (event == Event::key) {
            auto& count = keys[static_cast<std::size_t>(depth) - 1];
            if (++count > kMaxKeys)
                BadForm(where() + ": an object has more than " + std::to_string(kMaxKeys) +
                        " keys");
            // A control's keys are at odd depths from 3 on; the form's own at depth 2.
            nameKey = depth >= 3 && depth % 2 == 1 && parsed == "Name";
        } else if (event == Event::value) {
            if (nameKey && parsed.is_string()) control = parsed.get<std::string>();
            nameKey = false;
        }
        return true;
    };
    try {
        return Json::parse(text, callback);
    } catch (const nlohmann::json::parse_error& e) {
        BadForm(e.what());
    }
}

}  // namespace

std::string SaveFormJson(const Container& container) {
    Json form = {{"Name", container.Name},
                 {"Caption", container.Caption},
                 {"Width", container.Width},
                 {"Height", container.Height},
                 {"BackColor", json::Encode(Variant(container.BackColor))},
                 {"ForeColor", json::Encode(Variant(container.ForeColor))},
                 {"Font", json::Encode(Variant(container.Font()))}};

    // Each control's children in form order, gathered in one pass rather than one per control.
    std::unordered_map<const Site*, std::vector<const Site*>> childrenOf;
    for (const Site* site : container.Sites()) childrenOf[site->Parent()].push_back(site);
    auto save = [&](auto&& self, const Site* parent) -> Json {
        Json list = Json::array();
        const auto it = childrenOf.find(parent);
        if (it == childrenOf.end()) return list;
        for (const Site* site : it->second) {
            const Extender& e = site->GetExtender();
            Json entry = {{"ProgID", site->Class().progId},
                          {"Name", e.Name},
                          {"Left", e.Left},
                          {"Top", e.Top},
                          {"Width", e.Width},
                          {"Height", e.Height},
                          {"Visible", e.Visible},
                          {"Enabled", e.Enabled},
                          {"TabIndex", e.TabIndex},
                          {"TabStop", e.TabStop},
                          {"Properties", json::EncodeBag(container.SaveBag(*site))}};
            Json children = self(self, site);
            if (!children.empty()) entry["Controls"] = std::move(children);
            list.push_back(std::move(entry));
        }
        return list;
    };
    Json out = {{"Form", form}, {"Controls", save(save, nullptr)}};
    try {
        return out.dump(2) + "\n";
    } catch (const nlohmann::json::type_error& e) {
        throw HostError(
            kErrInvalidPropertyValue,
            std::string("Invalid property value (a text that is not UTF-8 cannot be saved: ") +
                e.what() + ")",
            "Container");
    }
}

void LoadFormJson(Container& container, std::string_view text) {
    const Json parsed = ParseForm(text);
    if (!parsed.is_object()) BadForm("the top level must be a JSON object");

    // Loading must not leave half a form behind: on any failure the previous form comes back.
    const std::string previous = SaveFormJson(container);
    const auto restorePrevious = [&] {
        container.Clear();
        LoadFormJson(container, previous);
    };

    try {
        container.Clear();
        if (auto it = parsed.find("Form"); it != parsed.end()) {
            const Json& form = *it;
            if (!form.is_object()) BadForm("\"Form\" must be an object");
            container.Name = FormField<std::string>(form, "Name", container.Name, "Form");
            container.Caption = FormField<std::string>(form, "Caption", container.Caption, "Form");
            Extender size;
            size.Width = NumberField<std::int32_t>(form, "Width", container.Width, "Form");
            size.Height = NumberField<std::int32_t>(form, "Height", container.Height, "Form");
            try {
                container.CheckPlacement(size);
            } catch (const HostError& e) {
                throw HostError(e.Number(), "Form: " + e.Description(), "Container");
            }
            container.Width = size.Width;
            container.Height = size.Height;
            if (form.contains("BackColor"))
                container.BackColor =
                    static_cast<OLE_COLOR>(json::Decode(form["BackColor"]).ToLong());
            if (form.contains("ForeColor"))
                container.ForeColor =
                    static_cast<OLE_COLOR>(json::Decode(form["ForeColor"]).ToLong());
            if (form.contains("Font")) container.Font(json::Decode(form["Font"]).ToFont());
        }

        auto load = [&](auto&& self, const Json& list, Site* parent, int level) -> void {
            if (!list.is_array()) BadForm("\"Controls\" must be an array");
            std::int16_t tabIndex = 0;
            for (const Json& entry : list) {
                if (!entry.is_object()) BadForm("each control must be an object");
                const std::string name = FormField<std::string>(entry, "Name", "", "control");
                const std::string where =
                    "control " + (name.empty() ? std::string("without a name") : name);
                const std::string progId = FormField<std::string>(entry, "ProgID", "", where);
                if (progId.empty()) BadForm(where + ": \"ProgID\" is missing");
                if (level > kMaxNesting) {
                    BadForm(where + " (" + progId + "): controls are nested deeper than " +
                            std::to_string(kMaxNesting) + " levels");
                }
                const std::string named = where + " (" + progId + ")";
                Extender e;
                e.Name = name;
                e.Left = NumberField<std::int32_t>(entry, "Left", 0, named);
                e.Top = NumberField<std::int32_t>(entry, "Top", 0, named);
                e.Width = NumberField<std::int32_t>(entry, "Width", 0, named);
                e.Height = NumberField<std::int32_t>(entry, "Height", 0, named);
                e.Visible = FormField<bool>(entry, "Visible", true, where);
                e.Enabled = FormField<bool>(entry, "Enabled", true, where);
                e.TabIndex = NumberField<std::int16_t>(entry, "TabIndex", tabIndex, named);
                e.TabStop = FormField<bool>(entry, "TabStop", true, where);
                if (tabIndex < std::numeric_limits<std::int16_t>::max()) ++tabIndex;
                Site* restored = nullptr;
                try {
                    if (e.Width < 0 || e.Height < 0) {
                        const bool width = e.Width < 0;
                        throw HostError(kErrInvalidPropertyValue,
                                        std::string(StandardErrorText(kErrInvalidPropertyValue)) +
                                            " (key \"" + (width ? "Width" : "Height") +
                                            "\", value " +
                                            std::to_string(width ? e.Width : e.Height) + ")",
                                        "Container");
                    }
                    JsonPropertyBag bag;
                    if (auto props = entry.find("Properties"); props != entry.end())
                        bag = json::DecodeBag(*props);
                    restored = &container.Restore(progId, std::move(e), bag, parent);
                } catch (const HostError& error) {
                    throw HostError(error.Number(),
                                    where + " (" + progId + "): " + error.Description(),
                                    error.Source());
                }
                Site& site = *restored;
                if (auto children = entry.find("Controls"); children != entry.end())
                    self(self, *children, &site, level + 1);
            }
        };
        if (auto it = parsed.find("Controls"); it != parsed.end()) load(load, *it, nullptr, 1);
    } catch (...) {
        restorePrevious();
        throw;
    }
}

void SaveFormFile(const Container& form, const std::string& path) {
    // The whole text first: a value that cannot be saved must not cost the old file.
    WriteFileReplacing(path, SaveFormJson(form));
}

void LoadFormFile(Container& form, const std::string& path) {
    const std::string text = ReadFileText(path);
    try {
        LoadFormJson(form, text);
    } catch (const HostError& e) {
        throw HostError(e.Number(), path + ": " + e.Description(), e.Source());
    }
}

}  // namespace korvex::host
