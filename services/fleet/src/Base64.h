#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace fleet {

/// Returns the bytes in base64 with padding, as JSON of etcd contains keys and values.
std::string encodeBase64(std::string_view bytes);
/// Returns the bytes; nothing if the text is not base64 with padding.
std::optional<std::string> decodeBase64(std::string_view text);

} // namespace fleet
