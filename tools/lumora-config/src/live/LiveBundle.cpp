#include "LiveBundle.h"

#include "LiveReplies.h"
#include "LiveSettings.h"
#include "commands/BundleCommand.h"
#include "disk/Doctor.h"

#include <kyr/FileUtils.h>
#include <kyr/StringUtils.h>

#include <algorithm>

namespace lumora_config {

using KyrCoreUtils::toString;

namespace {

/// Adds what sensitive keys hold in each store.
void addSecrets(InspectionClient& client, BundleContent& content) {
    LiveSettings settings(client);
    for (const auto& store : content.chain.stores) {
        for (const auto& setting : settings.read(store.name, true).settings) {
            if (setting.sensitive) {
                content.sensitiveKeys.push_back(toString(setting.key));
                content.secrets.push_back(toString(setting.value));
            }
        }
    }
}

/// Adds what the client knows and the files do not show, such as a write that has failed.
void addHealth(InspectionClient& client, HealthReport& health) {
    const auto reply = client.ask({{"verb", "health"}});
    for (const auto& item : reply.at("items")) {
        if (item.at("attention").get<bool>()) {
            health.items.push_back({item.at("area"), item.at("path"), item.at("state"), true});
        }
    }
}

} // namespace

BundleContent collectBundle(InspectionClient& client) {
    BundleContent content;
    content.client = client.ask({{"verb", "hello"}}).at("version");
    content.chain.stores = toStores(client.ask({{"verb", "stores"}}));
    content.values = toList(client.ask({{"verb", "list"}}));
    for (const auto& listed : content.values) {
        content.chain.keys.push_back(toExplanation(client.ask({{"verb", "explain"}, {"key", toString(listed.key)}})));
    }
    content.report = client.ask({{"verb", "report"}}).at("text");
    addSecrets(client, content);
    for (auto& key : content.chain.keys) {
        key.sensitive = std::ranges::any_of(content.sensitiveKeys, [name = toString(key.newName)](const auto& sensitive) {
            return KyrCoreUtils::caseInsensitiveStringEquals(name, sensitive);
        });
    }
    content.chain.health = Doctor(Doctor::Lock::NotHeld, Doctor::Owners::Masked).examine();
    addHealth(client, content.chain.health);
    addLocalContent(content, KyrCoreUtils::FileUtils::getConfigDirectory());
    return content;
}

} // namespace lumora_config
