// Measures the reads of the two fastest other libraries only, because a profiler makes the others take minutes.
#include "CachedReads.h"
#include "PeerFiles.h"

#include <TemporaryProfile.h>

int main(int argc, char** argv) {
    const testing_host::TemporaryProfile profile;
    const bench::Workload workload(1, 5000);
    bench::RowSuite suite(argc, argv);
    for (const auto& library : {bench::glibKeyFile(), bench::boostTree()}) {
        const bench::PeerFiles files(library, workload, profile.root() / library.name);
        bench::addCachedReads(suite, workload, library.name, files.openChecked());
    }
    return suite.main();
}
