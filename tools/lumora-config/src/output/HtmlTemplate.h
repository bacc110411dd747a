#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace lumora_config {

/// A page with places to fill. `{{name}}` is replaced by the field of that name, `{{.}}` by the item itself, both
/// escaped always: there is no way to put markup in. `{{#name}}...{{/name}}` is repeated for each item of a list, and
/// shown once for a field that is true, an object or a text that isn't empty; `{{^name}}...{{/name}}` is shown when the
/// other is not. A field is looked for in the innermost item first. Any thread.
class HtmlTemplate {
public:
    /// The text must outlive the object.
    explicit HtmlTemplate(std::string_view templateText) : text(templateText) {}

    /// Throws std::logic_error when the template is malformed or asks for a field that does not exist.
    std::string render(const nlohmann::json& fields) const;

private:
    using Scopes = std::vector<const nlohmann::json*>;

    void renderPart(std::string_view part, Scopes& scopes, std::string& page) const;
    void renderSection(std::string_view section, bool inverted, const nlohmann::json& field, Scopes& scopes,
                       std::string& page) const;

    const std::string_view text;
};

/// Text that stands in a page, between tags or in a quoted attribute, as what it is.
std::string escapeHtml(std::string_view text);

} // namespace lumora_config
