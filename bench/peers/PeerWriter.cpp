#include "PeerWriter.h"

#include "RowSuite.h"

namespace bench {

PeerWriter::PeerWriter(const PeerFiles& files)
    : workload(files.getWorkload()), chain(files.open()), rounds(workload.getHits().size()) {
    for (const auto& probe : workload.getHits()) {
        holders.push_back(&chain->holderOf(probe.key));
    }
    const auto& value = set(holders.size());
    for (const auto& probe : workload.getHits()) {
        require(chain->read(probe.key) == value, "a peer's value");
    }
}

void PeerWriter::write(std::size_t times) {
    const auto& value = set(times);
    require(chain->read(keyAt((times - 1) % holders.size())) == value, "a peer's write");
}

const std::string& PeerWriter::set(std::size_t times) {
    return rounds.run(times, [this](std::size_t number, const std::string& value) {
        holders[number]->set(chain->fold(keyAt(number)), value);
    });
}

} // namespace bench
