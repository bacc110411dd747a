#pragma once

#include "CommandGrammar.h"
#include "bundle/BundleContent.h"
#include "output/Printer.h"

#include <functional>
#include <string>

namespace lumora_config {

/// Adds what the program reads itself, without the service: the log files of the state directory, the names of machine
/// and profile, and the sensitive keys of the catalogue.
void addLocalContent(BundleContent& content, const std::string& configDirectory);

/// Adds the names of a sensitive key and the values that the stores hold for it.
void addSecrets(BundleContent& content, const Explanation& key);

/// Carries out `bundle` with the content that `collect` returns, which is called after the options are checked. Throws
/// Failure: Usage if secrets are to be shown, NotFound if the file exists, Environment if it cannot be written.
void writeBundle(const Command& command, bool showSecrets, const std::function<BundleContent()>& collect,
                 Printer& printer);

} // namespace lumora_config
