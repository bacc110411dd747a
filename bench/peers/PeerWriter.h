#pragma once

#include "PeerFiles.h"
#include "WriteRounds.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace bench {

/// Sets values in memory. Which object holds a key is found out beforehand.
class PeerWriter {
public:
    explicit PeerWriter(const PeerFiles& files);

    void write(std::size_t times);

private:
    /// Sets so many keys and returns their value.
    const std::string& set(std::size_t times);
    const std::wstring& keyAt(std::size_t number) const { return workload.getHits()[number].key; }

    const Workload& workload;
    const std::shared_ptr<PeerChain> chain;
    std::vector<Peer*> holders; ///< One for each hit of the workload.
    WriteRounds<std::string> rounds;
};

} // namespace bench
