#include "PeerPersister.h"

#include "RowSuite.h"

#include <kyr/StringUtils.h>

namespace bench {

PeerPersister::PeerPersister(const PeerFiles& files)
    : chain(files.open()), key(files.getWorkload().getHits().front().key), holder(chain->holderOf(key)) {
    const std::string changed = "changed";
    persist(changed);
    const auto copy = files.openCopy();
    for (const auto& probe : files.getWorkload().getHits()) {
        const auto expected = probe.key == key ? changed : KyrCoreUtils::toString(probe.value);
        require(copy->read(probe.key) == expected, "a peer's file");
    }
}

void PeerPersister::persist(const std::string& value) {
    holder.set(chain->fold(key), value);
    holder.persist();
}

} // namespace bench
