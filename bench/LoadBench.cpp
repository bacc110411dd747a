// Measures reading eight protected documents, alone and as part of starting the whole service, beside parsing the same
// clear bytes without storing anything.
#include "BareParser.h"
#include "RowSuite.h"
#include "Workload.h"
#include "services/impl/entry/InjectConfigService.h"

#include <CacheConfigStore.h>
#include <ConfigService.h>
#include <ConfigServiceIds.h>
#include <ConfigValue.h>
#include <RecordingFactory.h>
#include <TemporaryProfile.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace {

using namespace ZelUnified;

constexpr int firstPriority = 100;

/// The whole service, constructed on the existing profile.
class Service {
public:
    Service() { InjectConfigService(factory); }
    ~Service() { factory->Destroy(); }
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;

    ConfigService& get() const { return *factory->getServiceByType<ConfigService>(); }

private:
    const std::shared_ptr<testing_host::RecordingFactory> factory = std::make_shared<testing_host::RecordingFactory>();
};

/// A profile in which the last run left a copy of every layer of the workload.
class Subjects {
public:
    Subjects() {
        std::string record;
        for (std::size_t i = 0; i < workload.getLayers().size(); ++i) {
            auto values = workload.getLayers()[i];
            const CacheConfigStore writer(nameOf(i), priorityOf(i), pathOf(i), values);
            record += nameOf(i) + ":" + std::to_string(priorityOf(i)) + ";";
        }
        testing_host::writeFile(profile.resources() / "lumora-config-defaults.xml",
                                "<Lumora><userConfig name=\"PrimaryConfigStores\" value=\"" + record + "\"/></Lumora>");
        check();
    }

    using Stores = std::vector<std::unique_ptr<CacheConfigStore>>;

    Stores load() const {
        Stores stores;
        for (std::size_t i = 0; i < workload.getLayers().size(); ++i) {
            stores.push_back(std::make_unique<CacheConfigStore>(nameOf(i), priorityOf(i), pathOf(i)));
        }
        return stores;
    }

    const bench::BareParser& bareParser() const { return parser; }

private:
    static constexpr std::size_t keys = 5000;

    void check() const {
        for (std::size_t i = 0; i < workload.getLayers().size(); ++i) {
            CacheConfigStore store(nameOf(i), priorityOf(i), pathOf(i));
            bench::require(store.getKeys().size() == keys, "a copy");
        }
        const Service service;
        for (const auto& [key, value] : workload.getHits()) {
            bench::require(service.get().getConfig(key)->getValue() == value, "a record");
        }
    }

    static std::string nameOf(std::size_t number) { return "Delivered" + std::to_string(number); }
    static int priorityOf(std::size_t number) { return firstPriority + static_cast<int>(number); }
    std::string pathOf(std::size_t number) const {
        return (profile.config() / "Cache" / ("cached" + nameOf(number) + ".dat")).string();
    }

    const bench::Workload workload{8, keys};
    testing_host::TemporaryProfile profile;
    const bench::BareParser parser{workload};
};

} // namespace

int main(int argc, char** argv) {
    bench::RowSuite suite(argc, argv);
    const auto subjects = std::make_shared<Subjects>();
    const auto parse = [subjects] { return bench::timed([&] { subjects->bareParser().parse(); }); };
    suite.addTimed("3 load of 8 documents of 5000 keys", "stores", 2, [subjects] {
        Subjects::Stores stores; // destroyed after the time is taken
        return bench::timed([&] { stores = subjects->load(); });
    });
    suite.addTimed("3 load of 8 documents of 5000 keys", "bare parser", 2, parse);
    suite.addTimed("3b start on 8 documents of 5000 keys", "service", 2, [subjects] {
        std::optional<Service> service; // destroyed after the time is taken
        return bench::timed([&] { service.emplace(); });
    });
    suite.addTimed("3b start on 8 documents of 5000 keys", "bare parser", 2, parse);
    return suite.main();
}
