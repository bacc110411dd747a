#include "InspectionRequest.h"

#include <utility>

namespace inspection {

namespace {

constexpr std::size_t longestId = 256;

[[noreturn]] void refuseField(const char* name, const char* type) {
    throw RequestError(RequestError::Code::Usage,
                       std::string("the field \"") + name + "\" of the request must be " + type);
}

void readField(const Json& object, const char* name, std::string& field) {
    const auto found = object.find(name);
    if (found == object.end()) {
        return;
    }
    if (!found->is_string()) {
        refuseField(name, "a string");
    }
    field = found->get<std::string>();
}

void readField(const Json& object, const char* name, std::wstring& field) {
    std::string text;
    readField(object, name, text);
    field = KyrCoreUtils::toWideString(text);
}

void readField(const Json& object, const char* name, bool& field) {
    const auto found = object.find(name);
    if (found == object.end()) {
        return;
    }
    if (!found->is_boolean()) {
        refuseField(name, "true or false");
    }
    field = found->get<bool>();
}

void readField(const Json& object, const char* name, std::vector<std::wstring>& field) {
    const auto found = object.find(name);
    if (found == object.end()) {
        return;
    }
    if (!found->is_array()) {
        refuseField(name, "a list of strings");
    }
    for (const auto& element : *found) {
        if (!element.is_string()) {
            refuseField(name, "a list of strings");
        }
        field.push_back(KyrCoreUtils::toWideString(element.get<std::string>()));
    }
}

void readField(const Json& object, const char* name, std::vector<InspectionRequest::Value>& field) {
    const auto found = object.find(name);
    if (found == object.end()) {
        return;
    }
    const auto isText = [](const Json& element, const char* part) {
        const auto text = element.find(part);
        return text != element.end() && text->is_string();
    };
    if (!found->is_array()) {
        refuseField(name, "a list of keys with values");
    }
    for (const auto& element : *found) {
        if (!element.is_object() || !isText(element, "key") || !isText(element, "value")) {
            refuseField(name, "a list of keys with values");
        }
        field.push_back({KyrCoreUtils::toWideString(element["key"].get<std::string>()),
                         KyrCoreUtils::toWideString(element["value"].get<std::string>())});
    }
}

/// The id is repeated in the reply, so it must be short.
Json readId(const Json& object) {
    const auto found = object.find("id");
    if (found == object.end()) {
        return nullptr;
    }
    const bool isText = found->is_string() && found->get_ref<const std::string&>().size() <= longestId;
    if (!isText && !found->is_number_integer()) {
        refuseField("id", "an integer or a short string");
    }
    return *found;
}

/// Returns the fields that the verb requires. An empty text is a value; a missing field is an error.
std::vector<const char*> getRequiredFields(std::string_view verb) {
    if (verb == "get" || verb == "explain" || verb == "describe" || verb == "reset") {
        return {"key"};
    }
    if (verb == "set" || verb == "memory") {
        return {"key", "value"};
    }
    if (verb == "mdm") {
        return {"document"};
    }
    if (verb == "provision") {
        return {"url"};
    }
    if (verb == "remove-store") {
        return {"store"};
    }
    if (verb == "load") {
        return {"values"};
    }
    return {};
}

void requireFields(const Json& object, const InspectionRequest& request) {
    for (const auto* const name : getRequiredFields(request.verb)) {
        if (!object.contains(name)) {
            throw RequestError(RequestError::Code::Usage,
                               "the request '" + request.verb + "' needs the field \"" + name + "\"");
        }
    }
    if (request.verb == "get" && request.admin && !request.store.empty()) {
        throw RequestError(RequestError::Code::Usage,
                           "the fields \"admin\" and \"store\" of the request exclude each other");
    }
}

} // namespace

void InspectionRequest::parse(std::string_view line) {
    const auto object = Json::parse(line, nullptr, false);
    if (!object.is_object()) {
        throw RequestError(RequestError::Code::Usage, "the request is not a JSON object");
    }
    id = readId(object);
    readField(object, "verb", verb);
    if (verb.empty()) {
        throw RequestError(RequestError::Code::Usage, "the request has no verb");
    }
    readField(object, "key", key);
    readField(object, "value", value);
    readField(object, "prefix", prefix);
    readField(object, "pattern", pattern);
    readField(object, "url", url);
    readField(object, "store", store);
    readField(object, "document", document);
    readField(object, "keys", keys);
    readField(object, "admin", admin);
    readField(object, "force", force);
    readField(object, "sensitive", sensitive);
    readField(object, "showSecrets", showSecrets);
    readField(object, "source", source);
    readField(object, "values", values);
    readField(object, "more", more);
    readField(object, "dryRun", dryRun);
    requireFields(object, *this);
}

Json makeReply(const Json& id, Json answer) {
    Json reply{{"id", id}};
    for (auto& [name, field] : answer.items()) {
        reply[name] = std::move(field);
    }
    return reply;
}

Json makeFailure(const InspectionRequest& request, RequestError::Code code, const std::string& message) {
    return makeReply(
        request.id,
        {{"type", "failure"}, {"command", request.verb}, {"exitCode", static_cast<int>(code)}, {"message", message}});
}

} // namespace inspection
