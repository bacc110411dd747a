#pragma once

#include "BareTable.h"
#include "Workload.h"

#include <string>
#include <vector>

namespace bench {

/// The limit of a lookup through layers: one hash map per layer, and one hash map of all layers.
class BareChain {
public:
    explicit BareChain(const Workload& workload) {
        for (const auto& layer : workload.getLayers()) {
            auto& table = tables.emplace_back();
            for (const auto& [key, value] : layer) {
                table.emplace(folder(key).folded, value);
            }
        }
    }

    std::wstring read(const std::wstring& key) {
        const auto probe = folder(key);
        for (const auto& table : tables) {
            if (const auto found = table.find(probe); found != table.end()) {
                return found->second;
            }
        }
        return {};
    }

private:
    std::vector<BareTable> tables;
    Folder folder;
};

} // namespace bench
