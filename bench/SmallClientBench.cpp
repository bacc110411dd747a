// Measures what a client with a few hundred keys in each layer pays for its configuration.
#include "ProbeWalk.h"
#include "RowSuite.h"
#include "SmallClient.h"
#include "WriteRounds.h"

#include <ConfigValue.h>
#include <ConfigValueNotifiers.h>
#include <ManualClock.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr int callsInRound = 20;
constexpr const char* subject = "small client";

class Subjects {
public:
    explicit Subjects(const bench::SmallProfile& used) : profile(used) {
        for (const auto& entry : profile.getUserLayer()) {
            changedKeys.push_back(entry.first);
            client.service().getConfig(entry.first)->getConfigValueNotifiers()->getValueNotifier()->connect([this] {
                ++changes;
            });
        }
    }

    std::wstring readRecord(const std::wstring& key) { return client.service().getConfig(key)->getValue(); }
    std::wstring readChain(const std::wstring& key) {
        std::wstring value;
        client.featureSet().getConfig(key, value, false);
        return value;
    }

    void change(std::size_t times) {
        const std::size_t before = changes;
        const auto last = rounds.run(times, [this](std::size_t number, const std::wstring& value) {
            client.service().setConfig(changedKeys[number], value);
        });
        bench::require(readRecord(changedKeys[last.key]) == last.value && changes == before + times, "a change");
        client.dropBackgroundTasks();
    }

    double writeUserFile() {
        client.service().setConfig(changedKeys.front(), std::to_wstring(++writes));
        return bench::timedByClock([this] { client.writeFiles(); });
    }

    double deliver() {
        const std::wstring suffix = ++deliveries % 2 == 0 ? L"" : L"!";
        const auto document = profile.deliverDocument(suffix);
        const double seconds = bench::timed([&] { client.featureSet().addConfigStore(document); });
        bench::require(countValuesOf(*document) > 0, "a delivered document");
        client.dropBackgroundTasks();
        return seconds;
    }

private:
    /// Returns the number of keys whose record has the value of the document.
    std::size_t countValuesOf(ZelUnified::XmlConfigStore& document) {
        std::size_t count = 0;
        for (const auto& key : document.getKeys()) {
            std::wstring delivered;
            count += document.getValue(key, delivered) && readRecord(key) == delivered ? 1 : 0;
        }
        return count;
    }

    const bench::SmallProfile& profile;
    std::vector<std::wstring> changedKeys;
    bench::SmallClient client;
    bench::WriteRounds<std::wstring> rounds{bench::SmallProfile::keysInLayer};
    std::size_t changes = 0;
    std::size_t writes = 0;
    std::size_t deliveries = 0;
};

} // namespace

int main(int argc, char** argv) {
    const testing_host::ManualClock clock; // the delayed backup is not measured
    bench::RowSuite suite(argc, argv);
    const bench::SmallProfile profile;
    suite.addTimed("0 start", subject, callsInRound, [] {
        std::optional<bench::SmallClient> client; // destroyed after the time is taken
        return bench::timed([&] { client.emplace(); });
    });
    const auto subjects = std::make_shared<Subjects>(profile);
    const auto& hits = profile.getWorkload().getHits();
    suite.add("0 read of a record", subject,
              bench::walkOver(hits, [subjects](const std::wstring& key) { return subjects->readRecord(key); }));
    suite.add("0 lookup in the chain", subject,
              bench::walkOver(hits, [subjects](const std::wstring& key) { return subjects->readChain(key); }));
    suite.add("0 change of a setting", subject, [subjects](std::size_t times) { subjects->change(times); });
    suite.addTimed("0 write of the user's file", subject, callsInRound,
                   [subjects] { return subjects->writeUserFile(); });
    suite.addTimed("0 arrival of a document", subject, callsInRound, [subjects] { return subjects->deliver(); });
    return suite.main();
}
