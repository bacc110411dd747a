// Measures reading eight protected documents, alone and as part of starting the whole service, beside parsing the same
// clear bytes without storing anything.
#include "CachedDocuments.h"
#include "RowSuite.h"
#include "bare/BareParser.h"

#include <TemporaryProfile.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

namespace {

void addRows(bench::RowSuite& suite, const testing_host::TemporaryProfile& profile, std::size_t keys, int calls) {
    const auto documents = std::make_shared<bench::CachedDocuments>(profile, keys);
    const auto parser = std::make_shared<bench::BareParser>(documents->getWorkload());
    const auto parse = [parser] { return bench::timed([&] { parser->parse(); }); };
    const auto size = " 8 documents of " + std::to_string(keys) + " keys";
    suite.addTimed("3 load of" + size, "stores", calls, [documents] {
        bench::CachedDocuments::Stores stores; // destroyed after the time is taken
        return bench::timed([&] { stores = documents->load(); });
    });
    suite.addTimed("3 load of" + size, "bare parser", calls, parse);
    suite.addTimed("3b start on" + size, "service", calls, [documents] {
        documents->select();
        std::optional<bench::StartedService> service; // destroyed after the time is taken
        return bench::timed([&] { service.emplace(); });
    });
    suite.addTimed("3b start on" + size, "bare parser", calls, parse);
}

} // namespace

int main(int argc, char** argv) {
    bench::RowSuite suite(argc, argv);
    const testing_host::TemporaryProfile profile;
    addRows(suite, profile, 500, 20);
    addRows(suite, profile, 5000, 2);
    return suite.main();
}
