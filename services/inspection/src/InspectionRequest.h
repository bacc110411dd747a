#pragma once

#include "Json.h"
#include "RequestError.h"

#include <string>
#include <string_view>
#include <vector>

namespace inspection {

/// One request. Fields that the verb does not use are ignored.
struct InspectionRequest {
    /// One value to set.
    struct Value {
        std::wstring key;
        std::wstring value;
    };

    Json id; ///< Null if the request has none.
    std::string verb;
    std::wstring key;
    std::wstring value;
    std::wstring prefix;
    std::wstring pattern;
    std::wstring url;
    std::string store;
    std::string document;
    std::vector<std::wstring> keys; ///< Keys and patterns to watch; for mdm: the sensitive keys.
    bool admin = false;
    bool force = false;
    bool sensitive = false;
    bool showSecrets = false;
    std::string source;        ///< For dump: the values to read.
    std::vector<Value> values; ///< For load.
    bool more = false;         ///< For load: more values follow in another request.
    bool dryRun = false;

    /// Parses a line. Sets `id` and `verb` first, so that the reply to an invalid request can contain them. Throws
    /// RequestError (Usage) if the line is not a JSON object, a field has the wrong type, or a field is missing that
    /// the verb needs.
    void parse(std::string_view line);
};

/// Returns the reply: the id of the request, then the fields of `answer`. Moves them, because a list may be long.
Json makeReply(const Json& id, Json answer);
/// Returns the reply to a request that failed.
Json makeFailure(const InspectionRequest& request, RequestError::Code code, const std::string& message);

} // namespace inspection
