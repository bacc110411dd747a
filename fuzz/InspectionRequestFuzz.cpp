// Each line is refused with a message or gives a request; every reply is one line of valid JSON.
#include "InspectionRequest.h"
#include "Require.h"

#include <kyr/StringUtils.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

using fuzz::require;
using inspection::InspectionRequest;
using inspection::Json;
using inspection::RequestError;

namespace {

void requireOneLine(const Json& reply) {
    const auto line = inspection::toLine(reply);
    require(std::ranges::count(line, '\n') == 1 && line.back() == '\n');
    require(Json::parse(line).is_object());
}

void handle(std::string_view line) {
    InspectionRequest request;
    try {
        request.parse(line);
    } catch (const RequestError& error) {
        requireOneLine(inspection::makeFailure(request, error.getCode(), error.what()));
        return;
    }
    require(!request.verb.empty());
    requireOneLine(inspection::makeReply(request.id, {{"type", "done"}, {"command", request.verb}}));
    require(KyrCoreUtils::matchesWildcards(request.key, L"*"));
    if (request.key.find_first_of(L"*?") == std::wstring::npos) {
        require(KyrCoreUtils::matchesWildcards(request.key, request.key));
    }
    for (const auto& key : request.keys) {
        KyrCoreUtils::matchesWildcards(request.key, key);
    }
}

} // namespace

// libFuzzer prescribes the name.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) { // NOLINT(readability-identifier-naming)
    handle({reinterpret_cast<const char*>(data), size});
    return 0;
}
