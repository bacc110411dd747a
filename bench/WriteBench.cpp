// Compares a write on the services dispatcher's thread, including the announcement and the update of its record, with
// setting a value in a hash map. The file is written later on another thread and not measured.
#include "RowSuite.h"
#include "Workload.h"
#include "WriteRounds.h"
#include "bare/BareWriter.h"
#include "services/impl/entry/InjectConfigService.h"

#include <ConfigFeatureSet.h>
#include <ConfigService.h>
#include <ConfigServiceIds.h>
#include <ConfigValue.h>
#include <RecordingFactory.h>
#include <TemporaryProfile.h>
#include <XmlConfigStore.h>

#include <memory>
#include <string>

namespace {

using namespace ZelUnified;

/// A service whose background tasks are dropped, and a table. Both contain the keys of eight layers.
class Subjects {
public:
    explicit Subjects(std::size_t keys) : workload(8, keys) {
        InjectConfigService(factory);
        service = factory->getServiceByType<ConfigService>();
        factory->StartFeatureSet(configServiceId, nullptr);
        const auto featureSet = factory->getFeatureSetByType<ConfigFeatureSet>();
        for (std::size_t i = 0; i < workload.getLayers().size(); ++i) {
            const auto store = std::make_shared<XmlConfigStore>(
                "Document" + std::to_string(i), 100 + static_cast<int>(i), true, false, std::string(), false);
            for (const auto& [key, value] : workload.getLayers()[i]) {
                store->storeValue(key, value);
            }
            featureSet->addConfigStore(store);
        }
        factory->backgroundDispatcher->clear();
    }
    ~Subjects() {
        service.reset();
        factory->Destroy();
    }
    Subjects(const Subjects&) = delete;
    Subjects& operator=(const Subjects&) = delete;

    void write(bench::WriteRounds<std::wstring>& rounds, std::size_t times) {
        const auto last = rounds.run(times, [this](std::size_t number, const std::wstring& written) {
            service->setConfig(keyAt(number), written);
        });
        bench::require(service->getConfig(keyAt(last.key))->getValue() == last.value, "a write");
        factory->backgroundDispatcher->clear();
    }

    void writeBare(bench::WriteRounds<std::wstring>& rounds, std::size_t times) { bare.write(rounds, times); }

    std::size_t countKeys() const { return workload.getHits().size(); }

private:
    const std::wstring& keyAt(std::size_t number) const { return workload.getHits()[number].key; }

    const bench::Workload workload;
    bench::BareWriter bare{workload};
    testing_host::TemporaryProfile profile;
    std::shared_ptr<testing_host::RecordingFactory> factory = std::make_shared<testing_host::RecordingFactory>();
    std::shared_ptr<ConfigService> service;
};

void addRow(bench::RowSuite& suite, const std::string& row, const std::shared_ptr<Subjects>& subjects,
            std::size_t keys) {
    using Rounds = bench::WriteRounds<std::wstring>;
    const auto rounds = std::make_shared<Rounds>(keys);
    suite.add(row, "service", [=](std::size_t times) { subjects->write(*rounds, times); });
    const auto bareRounds = std::make_shared<Rounds>(keys);
    suite.add(row, "bare map", [=](std::size_t times) { subjects->writeBare(*bareRounds, times); });
}

} // namespace

int main(int argc, char** argv) {
    bench::RowSuite suite(argc, argv);
    const auto sizes = suite.measuresGrowth() ? std::vector<std::size_t>{1000, 10000, 100000} : std::vector{5000UL};
    for (const auto size : sizes) {
        const auto subjects = std::make_shared<Subjects>(size);
        const auto of = " of 8 layers of " + std::to_string(size) + " keys";
        addRow(suite, "4 write, all" + of, subjects, subjects->countKeys());
        addRow(suite, "4 write, 64 hot" + of, subjects, bench::Workload::hotKeys);
    }
    return suite.main();
}
