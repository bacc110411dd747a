#pragma once

#include "ProbeWalk.h"

#include <memory>
#include <string>

namespace bench {

/// Adds the rows of a read from one layer of 5,000 keys.
template <class Chain>
void addCachedReads(RowSuite& suite, const Workload& workload, const std::string& subject,
                    const std::shared_ptr<Chain>& chain) {
    const auto ask = [chain](const std::wstring& key) { return chain->read(key); };
    suite.add("1 cached read, all of 5000 keys", subject, walkOver(workload.getHits(), ask));
    suite.add("1 cached read, 64 hot of 5000 keys", subject, walkOver(workload.getHotHits(), ask));
}

} // namespace bench
