// Form files: JSON text of a container's form and controls.

#include "host/form_file.hpp"

#include <filesystem>
#include <fstream>
#include <sstream>

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

}  // namespace

std::string SaveFormJson(const Container& container) {
    Json form = {{"Name", container.Name},
                 {"Caption", container.Caption},
                 {"Width", container.Width},
                 {"Height", container.Height},
                 {"BackColor", json::Encode(Variant(container.BackColor))},
                 {"ForeColor", json::Encode(Variant(container.ForeColor))},
                 {"Font", json::Encode(Variant(container.Font()))}};

    auto save = [&](auto&& self, const Site* parent) -> Json {
        Json list = Json::array();
        for (const Site* site : container.Children(parent)) {
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
    Json parsed;
    try {
        parsed = Json::parse(text);
    } catch (const nlohmann::json::parse_error& e) {
        BadForm(e.what());
    }
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
            container.Width = FormField<std::int32_t>(form, "Width", container.Width, "Form");
            container.Height = FormField<std::int32_t>(form, "Height", container.Height, "Form");
            if (form.contains("BackColor"))
                container.BackColor =
                    static_cast<OLE_COLOR>(json::Decode(form["BackColor"]).ToLong());
            if (form.contains("ForeColor"))
                container.ForeColor =
                    static_cast<OLE_COLOR>(json::Decode(form["ForeColor"]).ToLong());
            if (form.contains("Font")) container.Font(json::Decode(form["Font"]).ToFont());
        }

        auto load = [&](auto&& self, const Json& list, Site* parent) -> void {
            if (!list.is_array()) BadForm("\"Controls\" must be an array");
            std::int16_t tabIndex = 0;
            for (const Json& entry : list) {
                if (!entry.is_object()) BadForm("each control must be an object");
                const std::string name = FormField<std::string>(entry, "Name", "", "control");
                const std::string where =
                    "control " + (name.empty() ? std::string("without a name") : name);
                const std::string progId = FormField<std::string>(entry, "ProgID", "", where);
                if (progId.empty()) BadForm(where + ": \"ProgID\" is missing");
                Extender e;
                e.Name = name;
                e.Left = FormField<std::int32_t>(entry, "Left", 0, where);
                e.Top = FormField<std::int32_t>(entry, "Top", 0, where);
                e.Width = FormField<std::int32_t>(entry, "Width", 0, where);
                e.Height = FormField<std::int32_t>(entry, "Height", 0, where);
                e.Visible = FormField<bool>(entry, "Visible", true, where);
                e.Enabled = FormField<bool>(entry, "Enabled", true, where);
                e.TabIndex = FormField<std::int16_t>(entry, "TabIndex", tabIndex, where);
                e.TabStop = FormField<bool>(entry, "TabStop", true, where);
                ++tabIndex;
                Site* restored = nullptr;
                try {
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
                    self(self, *children, &site);
            }
        };
        if (auto it = parsed.find("Controls"); it != parsed.end()) load(load, *it, nullptr);
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
