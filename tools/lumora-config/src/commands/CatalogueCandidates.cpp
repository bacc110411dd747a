#include "CatalogueCandidates.h"

#include "stores/KnownKeys.h"

#include <kyr/StringUtils.h>

namespace lumora_config {

std::vector<Candidate> listCatalogueKeys() {
    std::vector<Candidate> keys;
    for (const auto& facts : findKeys("")) {
        keys.push_back({KyrCoreUtils::toString(facts.key), facts.meaning});
        if (facts.oldName) {
            keys.push_back({KyrCoreUtils::toString(*facts.oldName), facts.meaning});
        }
    }
    return keys;
}

std::vector<Candidate> listCatalogueValues(const std::string& key) {
    std::vector<Candidate> values;
    if (const auto facts = findKeyFacts(KyrCoreUtils::toWideString(key))) {
        for (const auto& value : facts->values) {
            values.push_back({value, ""});
        }
    }
    return values;
}

} // namespace lumora_config
