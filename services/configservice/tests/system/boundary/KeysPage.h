#pragma once

#include <string>

namespace configservice_test {

/// Returns the text of docs/keys.md, generated from the catalogue.
std::string writeKeysPage();

} // namespace configservice_test
