#pragma once

#include "BareTable.h"
#include "Workload.h"
#include "WriteRounds.h"

#include <cstddef>
#include <string>

namespace bench {

/// The limit of a write: sets the value in a hash map with the keys of all layers. The workload must outlive it.
class BareWriter {
public:
    explicit BareWriter(const Workload& written) : workload(written) {
        for (const auto& layer : workload.getLayers()) {
            for (const auto& [key, value] : layer) {
                table.emplace(folder(key).folded, value);
            }
        }
    }

    void write(WriteRounds<std::wstring>& rounds, std::size_t times) {
        rounds.run(times, [this](std::size_t number, const std::wstring& value) {
            table.find(folder(workload.getHits()[number].key))->second = value;
        });
    }

private:
    const Workload& workload;
    BareTable table;
    Folder folder;
};

} // namespace bench
