#include "SessionTarget.h"

#include "LineSecrecy.h"
#include "commands/CatalogueCandidates.h"
#include "commands/CommandTable.h"
#include "stores/KnownKeys.h"

#include <kyr/StringUtils.h>

#include <memory>
#include <vector>

namespace lumora_config {

namespace {

std::vector<Candidate> listKeys(Session& session) {
    auto keys = listCatalogueKeys();
    session.getHost().onServices("lumora-config: complete", [&] {
        for (const auto& listed : session.getChain().list({})) {
            if (!findKeyFacts(listed.key)) {
                keys.push_back({KyrCoreUtils::toString(listed.key), ""});
            }
        }
    });
    return keys;
}

std::vector<Candidate> listStores(Session& session) {
    std::vector<Candidate> stores;
    session.getHost().onServices("lumora-config: complete", [&] {
        for (const auto& store : session.getChain().listStores()) {
            stores.push_back({store.name, ""});
        }
    });
    return stores;
}

} // namespace

void SessionTarget::run(const Command& command) {
    runCommand(session, command);
}

CompletionNames SessionTarget::getNames() {
    return {[this] { return listKeys(session); }, [this] { return listStores(session); }, listCatalogueValues};
}

ShellTarget::LineFilter SessionTarget::makeLineFilter() {
    return [secrecy = std::make_shared<const LineSecrecy>(session)](const std::string& line) {
        return secrecy->isSecret(line);
    };
}

} // namespace lumora_config
