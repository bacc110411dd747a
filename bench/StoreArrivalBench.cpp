// Adds stores of another service one after the other, and compares that with only those calls of the stores that the
// order of the chain and the values of the arriving keys require.
#include "ForeignStore.h"
#include "HostedService.h"
#include "RowSuite.h"
#include "SyntheticKeys.h"

#include <ConfigMap.h>
#include <ConfigService.h>
#include <ConfigValue.h>
#include <benchmark/benchmark.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace ZelUnified;

constexpr std::size_t keysInStore = 10;
constexpr int firstPriority = 100;

/// The stores, none of which has a key of another one.
class Subjects {
public:
    explicit Subjects(std::size_t count) {
        bench::SyntheticKeys generator(20240229);
        const auto keys = generator.makeKeys(count * keysInStore);
        for (std::size_t i = 0; i < count; ++i) {
            ConfigMap values;
            for (std::size_t k = 0; k < keysInStore; ++k) {
                values.emplace(keys[i * keysInStore + k], generator.makeValue());
            }
            stores.push_back(std::make_shared<bench::ForeignStore>("Store" + std::to_string(i),
                                                                   firstPriority + static_cast<int>(i), values));
        }
    }

    /// Returns the processor time until every store is in the chain and its keys are announced.
    double addAll() const {
        bench::HostedService hosted({});
        const double seconds = bench::timed([&] {
            for (const auto& store : stores) {
                hosted.featureSet().addConfigStore(store);
            }
        });
        for (const auto& store : stores) {
            const auto key = store->getKeys().front();
            std::wstring value;
            store->getValue(key, value);
            bench::require(hosted.service().getConfig(key)->getValue() == value, "the record of an arrived key");
        }
        return seconds;
    }

    double callAll() const {
        return bench::timed([this] {
            for (std::size_t arriving = 0; arriving < stores.size(); ++arriving) {
                callAtArrival(arriving);
            }
        });
    }

private:
    /// Makes the calls for one arrival: the names and priorities of the chain, its values of the two policies, and its
    /// values of the new keys, once for the value in force and once for the administrator's.
    void callAtArrival(std::size_t arriving) const {
        for (std::size_t i = 0; i <= arriving; ++i) {
            benchmark::DoNotOptimize(stores[i]->getName());
            benchmark::DoNotOptimize(stores[i]->getPriority());
        }
        readFromAll(L"Customize_Voicemail_Server", arriving);
        readFromAll(L"Customize_Phone_Server", arriving);
        for (const auto& key : stores[arriving]->getKeys()) {
            readFromAll(key, arriving);
            readFromAll(key, arriving);
            for (std::size_t i = 0; i <= arriving; ++i) {
                benchmark::DoNotOptimize(stores[i]->isReadOnly());
            }
        }
    }

    void readFromAll(const std::wstring& key, std::size_t arriving) const {
        std::wstring value;
        for (std::size_t i = 0; i <= arriving; ++i) {
            benchmark::DoNotOptimize(stores[i]->getValue(key, value));
        }
    }

    std::vector<std::shared_ptr<ConfigStore>> stores;
};

} // namespace

int main(int argc, char** argv) {
    bench::RowSuite suite(argc, argv);
    const auto sizes = suite.isProfiled() ? std::vector<std::size_t>{250} : std::vector<std::size_t>{250, 500, 1000};
    for (const auto size : sizes) {
        const auto subjects = std::make_shared<Subjects>(size);
        const auto row = "11 arrival of " + std::to_string(size) + " stores of 10 keys";
        suite.addTimed(row, "service", 1, [subjects] { return subjects->addAll(); });
        suite.addTimed(row, "bare calls of the stores", 1, [subjects] { return subjects->callAll(); });
    }
    return suite.main();
}
