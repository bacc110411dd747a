#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace lumora_config {

/// A page template. `{{name}}` is replaced by the field of that name, `{{.}}` by the item itself. Both are always
/// escaped; a field cannot insert markup. `{{#name}}...{{/name}}` is repeated for each item of a list, and shown once
/// for a field that is true, an object or a non-empty text. `{{^name}}...{{/name}}` is shown in all other cases. Fields
/// are looked up in the innermost item first. Any thread.
class HtmlTemplate {
public:
    /// The text must outlive the object.
    explicit HtmlTemplate(std::string_view templateText) : text(templateText) {}

    /// Returns the page. Throws std::logic_error if the template is malformed or contains a field that does not exist.
    std::string render(const nlohmann::json& fields) const;

private:
    using Scopes = std::vector<const nlohmann::json*>;

    void renderPart(std::string_view part, Scopes& scopes, std::string& page) const;
    void renderSection(std::string_view section, bool inverted, const nlohmann::json& field, Scopes& scopes,
                       std::string& page) const;

    const std::string_view text;
};

/// Escapes text for use between tags or in a quoted attribute.
std::string escapeHtml(std::string_view text);

} // namespace lumora_config
