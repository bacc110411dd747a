// Measures some of the rows with other settings libraries of this system, beside our own limits.
#include "CachedReads.h"
#include "PeerFiles.h"
#include "PeerPersister.h"
#include "PeerWriter.h"
#include "ProbeWalk.h"
#include "bare/BareChain.h"
#include "bare/BareDurableFile.h"
#include "bare/BareParser.h"
#include "bare/BareWriter.h"

#include <TemporaryProfile.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace {

using bench::PeerChain;
using bench::PeerFiles;
using bench::PeerLibrary;
using bench::PeerPersister;
using bench::PeerWriter;
using bench::RowSuite;
using bench::Workload;

constexpr const char* loadRow = "3 load of 8 documents of 5000 keys";
constexpr const char* writeRow = "4 write, all of 8 layers of 5000 keys";
constexpr const char* hotWriteRow = "4 write, 64 hot of 8 layers of 5000 keys";
constexpr const char* persistRow = "5 persist of 5000 keys";
constexpr int loadsInRound = 2;
constexpr int persistsInRound = 20;

template <class Chain>
void addReads(RowSuite& suite, const Workload& workload, const std::string& subject,
              const std::shared_ptr<Chain>& chain) {
    if (workload.getLayers().size() == 1) {
        bench::addCachedReads(suite, workload, subject, chain);
        return;
    }
    const auto ask = [chain](const std::wstring& key) { return chain->read(key); };
    suite.add("2 chain, all of 8 layers of 5000 keys", subject, bench::walkOver(workload.getHits(), ask));
    suite.add("2 chain, 64 hot of 8 layers of 5000 keys", subject, bench::walkOver(workload.getHotHits(), ask));
    suite.add("2 chain, none of 8 layers of 5000 keys", subject, bench::walkOver(workload.getMisses(), ask));
}

void addLoad(RowSuite& suite, const std::string& subject, const PeerFiles& files) {
    files.openChecked();
    suite.addTimed(loadRow, subject, loadsInRound, [files] {
        std::shared_ptr<PeerChain> chain; // destroyed after the time is taken
        return bench::timed([&] {
            chain = files.open();
            chain->read(files.getWorkload().getMisses().front().key); // the first answer guarantees that each file is
                                                                      // parsed
        });
    });
}

void addWrite(RowSuite& suite, const std::string& subject, const PeerFiles& files) {
    const auto add = [&](const char* row, std::size_t keys) {
        const auto writer = std::make_shared<PeerWriter>(files, keys);
        suite.add(row, subject, [writer](std::size_t times) { writer->write(times); });
    };
    add(writeRow, files.getWorkload().getHits().size());
    add(hotWriteRow, Workload::hotKeys);
}

void addPersist(RowSuite& suite, const std::string& subject, const PeerFiles& files) {
    const auto persister = std::make_shared<PeerPersister>(files);
    suite.addTimed(persistRow, subject, persistsInRound,
                   [persister] { return bench::timedByClock([&] { persister->persist(); }); });
}

void addLimits(RowSuite& suite, const Workload& one, const Workload& eight, const std::filesystem::path& folder) {
    addReads(suite, one, "bare maps", std::make_shared<bench::BareChain>(one));
    addReads(suite, eight, "bare maps", std::make_shared<bench::BareChain>(eight));
    const auto parser = std::make_shared<bench::BareParser>(eight);
    suite.addTimed(loadRow, "bare parser", loadsInRound, [parser] { return bench::timed([&] { parser->parse(); }); });
    const auto writer = std::make_shared<bench::BareWriter>(eight);
    const auto addBareWrite = [&](const char* row, std::size_t keys) {
        const auto rounds = std::make_shared<bench::WriteRounds<std::wstring>>(keys);
        suite.add(row, "bare map", [writer, rounds](std::size_t times) { writer->write(*rounds, times); });
    };
    addBareWrite(writeRow, eight.getHits().size());
    addBareWrite(hotWriteRow, Workload::hotKeys);
    const auto file = std::make_shared<bench::BareDurableFile>(folder);
    suite.addTimed(persistRow, "bare durable file", persistsInRound,
                   [file, &one] { return bench::timedByClock([&] { file->persist(one.getLayers().front()); }); });
}

} // namespace

int main(int argc, char** argv) {
    const testing_host::TemporaryProfile profile;
    const Workload one(1, 5000);
    const Workload eight(8, 5000);
    const std::vector<PeerLibrary> libraries{bench::qtSettings(),   bench::kdeConfig(),          bench::glibKeyFile(),
                                             bench::glibSettings(), bench::glibSettingsOnFile(), bench::boostTree(),
                                             bench::libConfig()};
    RowSuite suite(argc, argv);
    for (const auto& library : libraries) {
        const auto& name = library.name;
        const auto filesFor = [&](const char* row, const Workload& workload) {
            return PeerFiles(library, workload, profile.root() / name / row);
        };
        addReads(suite, one, name, filesFor("read", one).openChecked());
        addReads(suite, eight, name, filesFor("chain", eight).openChecked());
        addLoad(suite, name, filesFor("load", eight));
        if (library.setsInMemory) {
            addWrite(suite, name, filesFor("write", eight));
        }
        if (library.persists) {
            addPersist(suite, name, filesFor("persist", one));
        }
    }
    addLimits(suite, one, eight, profile.root());
    return suite.main();
}
