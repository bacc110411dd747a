#pragma once

#include "PeerFiles.h"

#include <memory>
#include <string>

namespace bench {

/// Changes one key of a file repeatedly.
class PeerPersister {
public:
    explicit PeerPersister(const PeerFiles& files);

    void persist() { persist(std::to_string(++changes)); }

private:
    void persist(const std::string& value);

    const std::shared_ptr<PeerChain> chain;
    const std::wstring key;
    Peer& holder;
    unsigned long changes = 0;
};

} // namespace bench
