#include "FleetTable.h"

#include "FleetSettings.h"
#include "LoggedText.h"

#include <kyr/StringUtils.h>
#include <kyr/XmlNames.h>
#include <zel/ZelLog.h>

#include <ConfigKeys.h>

#include <algorithm>
#include <utility>

namespace fleet {

using KyrCoreUtils::toString;
using KyrCoreUtils::toWideString;

namespace {

ZelLogger& tableLogger = ZelLogger_getLogger("Fleet-Table");

/// The set of reported keys must not grow for ever.
constexpr std::size_t maxReported = 1000;

/// An ill-formed part would become U+FFFD, and the text would not return unchanged.
bool isUtf8(const std::string& text) {
    return toString(toWideString(text)) == text;
}

/// Returns "" if a cluster may set the key, otherwise the reason.
std::string whyKeyProtected(const std::wstring& key) {
    namespace ConfigKeys = ZelUnified::ConfigKeys;
    if (FleetSettings::isOwnKey(key)) {
        return "the key configures the fleet service itself";
    }
    if (KyrCoreUtils::caseInsensitiveStringEquals(key, ConfigKeys::certificateValidationEnabled)) {
        return "no cluster may change whether certificates are validated";
    }
    // The client would add the value to its own record, and read cached copies that are none.
    return KyrCoreUtils::caseInsensitiveStringEquals(key, ConfigKeys::primaryConfigStores)
               ? "the client itself writes this record"
               : "";
}

/// Returns "" if the configuration can hold the key, otherwise the reason.
std::string whyKeyRefused(const std::string& key) {
    if (key.size() > FleetTable::maxKeyBytes) {
        return "the key is too long";
    }
    if (!isUtf8(key)) {
        return "the key is not UTF-8";
    }
    if (key.find('/') != std::string::npos) {
        return "the key contains '/'";
    }
    // One key that is not an XML name would make the whole cached copy unreadable. The part before a colon would be
    // lost.
    if (!KyrCoreUtils::isXmlName(toWideString(key)) || key.find(':') != std::string::npos) {
        return "the key is not an XML name";
    }
    return whyKeyProtected(toWideString(key));
}

std::string whyValueRefused(const std::string& value) {
    if (value.size() > FleetTable::maxValueBytes) {
        return "the value is too long";
    }
    if (!isUtf8(value)) {
        return "the value is not UTF-8";
    }
    return KyrCoreUtils::findUnrepresentable(toWideString(value)) ? "the value contains a control character" : "";
}

} // namespace

FleetTable::FleetTable(std::vector<FleetScope> clientScopes) : scopes(std::move(clientScopes)), layers(scopes.size()) {}

std::string FleetTable::findPairProblem(const std::string& key, const std::string& value) {
    const auto reason = whyKeyRefused(key);
    return reason.empty() ? whyValueRefused(value) : reason;
}

void FleetTable::clear() {
    layers.assign(scopes.size(), {});
    keyCount = 0;
    byteCount = 0;
    overfull = false;
}

void FleetTable::apply(const etcd::Pair& pair) {
    const auto scope = std::ranges::find_if(
        scopes, [&](const FleetScope& candidate) { return pair.key.starts_with(candidate.prefix); });
    if (scope == scopes.end()) {
        return;
    }
    auto& layer = layers[static_cast<std::size_t>(scope - scopes.begin())];
    const auto key = pair.key.substr(scope->prefix.size());
    erase(layer, key);
    if (pair.deleted || overfull) {
        return;
    }
    const auto reason = findPairProblem(key, pair.value);
    if (!reason.empty()) {
        reportSkipped(pair, reason);
        return;
    }
    // As the cached copy does, so that a restart changes nothing.
    const auto value = KyrCoreUtils::trim(pair.value);
    ++keyCount;
    byteCount += key.size() + value.size();
    layer.emplace(key, value);
    overfull = keyCount > maxKeys || byteCount > maxBytes;
}

void FleetTable::erase(Layer& layer, const std::string& key) {
    const auto found = layer.find(key);
    if (found == layer.end()) {
        return;
    }
    --keyCount;
    byteCount -= found->first.size() + found->second.size();
    layer.erase(found);
}

void FleetTable::reportSkipped(const etcd::Pair& pair, const std::string& reason) {
    if (reported.size() < maxReported && reported.insert(pair.key.substr(0, maxKeyBytes * 2)).second) {
        ZelLog(tableLogger, ZelLogLevel::Warning, ZEL_HERE,
               "The cluster's key [" + toLoggedText(pair.key) + "] is skipped: " + reason);
    }
}

ZelUnified::ConfigMap FleetTable::merge() const {
    ZelUnified::ConfigMap settings;
    for (const auto& layer : layers) {
        for (const auto& [key, value] : layer) {
            settings.insert_or_assign(toWideString(key), toWideString(value));
        }
    }
    return settings;
}

} // namespace fleet
