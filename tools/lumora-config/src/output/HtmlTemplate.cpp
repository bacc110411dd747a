#include "HtmlTemplate.h"

#include <algorithm>
#include <stdexcept>

namespace lumora_config {

namespace {

using nlohmann::json;

constexpr std::string_view opening = "{{";
constexpr std::string_view closing = "}}";

[[noreturn]] void refuse(const std::string& problem, std::string_view tag) {
    throw std::logic_error("template: " + problem + " '" + std::string(tag) + "'");
}

const json& find(const std::vector<const json*>& scopes, std::string_view name) {
    if (name == ".") {
        return *scopes.back();
    }
    const auto scope = std::find_if(scopes.rbegin(), scopes.rend(),
                                    [&](const json* fields) { return fields->is_object() && fields->contains(name); });
    if (scope != scopes.rend()) {
        return (*scope)->at(std::string(name));
    }
    refuse("there is no field", name);
}

bool isShown(const json& field) {
    if (field.is_boolean()) {
        return field.get<bool>();
    }
    return field.is_number() || (field.is_string() ? !field.get_ref<const std::string&>().empty() : !field.empty());
}

std::string toText(const json& field) {
    return field.is_string() ? field.get<std::string>() : field.dump();
}

/// Returns the position of the section's end tag. A section may contain others of the same name.
std::size_t findEnd(std::string_view part, std::string_view name) {
    const auto end = "{{/" + std::string(name) + "}}";
    const auto nested = "{{#" + std::string(name) + "}}";
    const auto nestedInverted = "{{^" + std::string(name) + "}}";
    std::size_t depth = 1;
    for (auto at = part.find(opening); at != std::string_view::npos; at = part.find(opening, at + opening.size())) {
        const auto rest = part.substr(at);
        if (rest.starts_with(nested) || rest.starts_with(nestedInverted)) {
            ++depth;
        } else if (rest.starts_with(end) && --depth == 0) {
            return at;
        }
    }
    refuse("no end of", name);
}

} // namespace

std::string HtmlTemplate::render(const json& fields) const {
    std::string page;
    Scopes scopes{&fields};
    renderPart(text, scopes, page);
    return page;
}

void HtmlTemplate::renderPart(std::string_view part, Scopes& scopes, std::string& page) const {
    while (!part.empty()) {
        const auto begin = part.find(opening);
        page += part.substr(0, begin);
        if (begin == std::string_view::npos) {
            return;
        }
        part.remove_prefix(begin + opening.size());
        const auto end = part.find(closing);
        auto name = part.substr(0, end);
        if (end == std::string_view::npos || name.empty() || name.front() == '/') {
            refuse("stray tag", name.substr(0, 40));
        }
        part.remove_prefix(end + closing.size());
        const char kind = name.front();
        if (kind != '#' && kind != '^') {
            page += escapeHtml(toText(find(scopes, name)));
            continue;
        }
        name.remove_prefix(1);
        const auto length = findEnd(part, name);
        renderSection(part.substr(0, length), kind == '^', find(scopes, name), scopes, page);
        part.remove_prefix(part.find(closing, length) + closing.size());
    }
}

void HtmlTemplate::renderSection(std::string_view section, bool inverted, const json& field, Scopes& scopes,
                                 std::string& page) const {
    if (inverted || !isShown(field)) {
        if (inverted && !isShown(field)) {
            renderPart(section, scopes, page);
        }
        return;
    }
    if (!field.is_array()) {
        scopes.push_back(&field);
        renderPart(section, scopes, page);
        scopes.pop_back();
        return;
    }
    for (const auto& item : field) {
        scopes.push_back(&item);
        renderPart(section, scopes, page);
        scopes.pop_back();
    }
}

std::string escapeHtml(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    for (const char c : text) {
        switch (c) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        case '\'':
            escaped += "&#39;";
            break;
        default:
            escaped += c;
        }
    }
    return escaped;
}

} // namespace lumora_config
