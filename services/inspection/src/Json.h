#pragma once

#include <kyr/StringUtils.h>

#include <nlohmann/json.hpp>
#include <string>

namespace inspection {

/// Keeps the order of the fields, as the program's --json does.
using Json = nlohmann::ordered_json;

/// Returns the object as one line. The name of a store may contain any bytes, so bytes that are not UTF-8 are replaced.
inline std::string toLine(const Json& object) {
    return object.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n';
}

} // namespace inspection
