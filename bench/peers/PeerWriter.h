#pragma once

#include "PeerFiles.h"
#include "WriteRounds.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace bench {

/// Sets values in memory. The object that contains each key is determined beforehand.
class PeerWriter {
public:
    /// Prepares the first `keys` keys of the workload.
    PeerWriter(const PeerFiles& files, std::size_t keys);

    void write(std::size_t times);

private:
    WriteRounds<std::string>::Write set(std::size_t times);
    const std::wstring& keyAt(std::size_t number) const { return workload.getHits()[number].key; }

    const Workload& workload;
    const std::shared_ptr<PeerChain> chain;
    std::vector<Peer*> holders; ///< One entry for each key that is set.
    WriteRounds<std::string> rounds;
};

} // namespace bench
