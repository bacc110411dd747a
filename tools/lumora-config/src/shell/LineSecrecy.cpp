#include "LineSecrecy.h"

#include "ShellWords.h"
#include "output/Failure.h"

#include <kyr/StringUtils.h>

#include <algorithm>

namespace lumora_config {

using KyrCoreUtils::toString;
using KyrCoreUtils::toWideString;

LineSecrecy::LineSecrecy(Session& commandSession) : session(commandSession) {
    commandSession.getHost().onServices("lumora-config: secrets", [&] {
        const auto& chain = commandSession.getChain();
        for (const auto& listed : chain.list({})) {
            if (!session.getMask().hides(listed.key)) {
                continue;
            }
            secrets.push_back(toString(listed.value));
            for (const auto& opinion : chain.explain(listed.key).opinions) {
                for (const auto& holding : opinion.holdings) {
                    secrets.push_back(toString(holding.value));
                }
            }
        }
    });
    std::erase(secrets, std::string());
}

bool LineSecrecy::isSecret(const std::string& line) const {
    std::vector<std::string> words;
    try {
        words = splitWords(line);
    } catch (const Failure&) {
        return true;
    }
    words.push_back(line);
    const bool containsSecret = std::ranges::any_of(words, [&](const std::string& word) {
        return std::ranges::any_of(secrets, [&](const auto& secret) { return word.find(secret) != std::string::npos; });
    });
    words.pop_back();
    return containsSecret || maySetSensitiveKey(words);
}

/// Ignores the command, since a mistyped one is refused but its value is still a secret.
bool LineSecrecy::maySetSensitiveKey(const std::vector<std::string>& words) const {
    if (std::ranges::find(words, "provision") != words.end()) {
        return true; // The URL contains values in another form.
    }
    for (std::size_t i = 0; i < words.size(); ++i) {
        const auto end = words[i].find('=');
        const bool isFollowed = end != std::string::npos || i + 1 < words.size();
        if (isFollowed && session.getMask().hides(toWideString(words[i].substr(0, end)))) {
            return true;
        }
    }
    return false;
}

} // namespace lumora_config
