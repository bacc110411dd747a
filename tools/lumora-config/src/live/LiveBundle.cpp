#include "LiveBundle.h"

#include "LiveReplies.h"
#include "commands/BundleCommand.h"

#include <kyr/FileUtils.h>

#include <nlohmann/json.hpp>
#include <utility>

namespace lumora_config {

BundleContent collectBundle(InspectionClient& client, ChainFindings chain) {
    BundleContent content;
    content.chain = std::move(chain);
    content.client = client.ask({{"verb", "hello"}}).at("version");
    content.values = toList(client.ask({{"verb", "list"}}));
    content.report = client.ask({{"verb", "report"}}).at("text");
    for (const auto& key : toChain(client.ask({{"verb", "explanations"}, {"showSecrets", true}})).keys) {
        if (key.sensitive) {
            addSecrets(content, key);
        }
    }
    addLocalContent(content, KyrCoreUtils::FileUtils::getConfigDirectory());
    return content;
}

} // namespace lumora_config
