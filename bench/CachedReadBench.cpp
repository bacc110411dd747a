// Compares a read of a record, the most frequent operation of a client, with one lookup in a hash map.
#include "HostedService.h"
#include "ProbeWalk.h"
#include "bare/BareTable.h"

#include <ConfigValue.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace {

using Probes = std::vector<bench::Probe>;

/// The service and the table with the same contents.
class Subjects {
public:
    explicit Subjects(std::size_t keys) : workload(1, keys), hosted(workload.getLayers()) {
        bench::Folder fold;
        for (const auto& [key, value] : workload.getLayers().front()) {
            table.emplace(fold(key).folded, value);
        }
        for (const auto& probe : workload.getHits()) {
            bench::require(read(probe.key) == probe.value && readBare(probe.key) == probe.value, "a cached read");
        }
    }

    const bench::Workload& getWorkload() const { return workload; }

    std::wstring read(const std::wstring& key) { return hosted.service().getConfig(key)->getValue(); }
    std::wstring readBare(const std::wstring& key) { return table.find(folder(key))->second; }

private:
    const bench::Workload workload;
    bench::HostedService hosted;
    bench::BareTable table;
    bench::Folder folder;
};

void addRow(bench::RowSuite& suite, const std::string& name, const std::shared_ptr<Subjects>& subjects,
            const Probes& probes) {
    suite.add(name, "service",
              bench::walkOver(probes, [subjects](const std::wstring& key) { return subjects->read(key); }));
    suite.add(name, "bare map",
              bench::walkOver(probes, [subjects](const std::wstring& key) { return subjects->readBare(key); }));
}

} // namespace

int main(int argc, char** argv) {
    bench::RowSuite suite(argc, argv);
    const auto sizes =
        suite.measuresGrowth() ? std::vector<std::size_t>{1000, 10000, 100000} : std::vector<std::size_t>{500, 5000};
    for (const auto size : sizes) {
        const auto subjects = std::make_shared<Subjects>(size);
        const auto of = " of " + std::to_string(size) + " keys";
        addRow(suite, "1 cached read, all" + of, subjects, subjects->getWorkload().getHits());
        addRow(suite, "1 cached read, 64 hot" + of, subjects, subjects->getWorkload().getHotHits());
    }
    return suite.main();
}
