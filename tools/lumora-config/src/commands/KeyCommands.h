#pragma once

#include "CommandGrammar.h"
#include "Session.h"

#include <string>
#include <vector>

namespace lumora_config {

/// Prints the catalogue's keys that match `command`. Needs no host. Throws Failure (NotFound) if there are none.
void showKnownKeys(const Command& command, Printer& printer);
/// Prints those of the keys that match `command`. Throws Failure (NotFound) if there are none.
void showMatchingKeys(std::vector<KeyFacts> keys, const Command& command, Printer& printer);

/// Prints "did you mean ..." if no store and no catalogue contains the key and a known key is close to it.
void suggestKeys(Session& session, const std::string& key);
/// Prints it for a key that neither a store nor the catalogue contains; `inUse` are the keys in the stores.
void suggestKeys(Printer& printer, const std::string& key, const std::vector<std::string>& inUse);

/// Throws Failure (NotFound) if the kind of the key excludes the value. Never quotes the value, which may be a secret.
void requirePermitted(const std::string& key, const std::string& value);

} // namespace lumora_config
