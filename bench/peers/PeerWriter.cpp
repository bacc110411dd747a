#include "PeerWriter.h"

#include "RowSuite.h"

namespace bench {

PeerWriter::PeerWriter(const PeerFiles& files, std::size_t keys)
    : workload(files.getWorkload()), chain(files.open()), rounds(keys) {
    for (std::size_t i = 0; i < keys; ++i) {
        holders.push_back(&chain->holderOf(keyAt(i)));
    }
    const auto last = set(holders.size());
    for (std::size_t i = 0; i < keys; ++i) {
        require(chain->read(keyAt(i)) == last.value, "a peer's value");
    }
}

void PeerWriter::write(std::size_t times) {
    const auto last = set(times);
    require(chain->read(keyAt(last.key)) == last.value, "a peer's write");
}

WriteRounds<std::string>::Write PeerWriter::set(std::size_t times) {
    return rounds.run(times, [this](std::size_t number, const std::string& value) {
        holders[number]->set(chain->fold(keyAt(number)), value);
    });
}

} // namespace bench
