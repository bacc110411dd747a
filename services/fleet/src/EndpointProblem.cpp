#include "EndpointProblem.h"

#include <algorithm>
#include <string_view>

namespace fleet {

namespace {

bool isPlain(char character) {
    return character > ' ' && character < '\x7f' &&
           std::string_view("/?#@\\").find(character) == std::string_view::npos;
}

} // namespace

std::string findEndpointProblem(const ZelUnified::FleetAccess& access, const std::string& endpoint) {
    const std::string_view secure = "https://";
    const std::string_view plain = "http://";
    const bool isPlainHttp = endpoint.starts_with(plain);
    if (!isPlainHttp && !endpoint.starts_with(secure)) {
        return "it does not begin with https://";
    }
    if (isPlainHttp && !access.plainHttpAllowed) {
        return "it begins with http://, which is not allowed";
    }
    const auto host = std::string_view(endpoint).substr(isPlainHttp ? plain.size() : secure.size());
    if (host.empty() || !std::ranges::all_of(host, isPlain)) {
        return "it is not of the form https://HOST:PORT";
    }
    return {};
}

} // namespace fleet
