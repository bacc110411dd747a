// Compares writes of many keys in a row, one by one and as one map, until the last one is on the disk, with writing one
// file durably; and counts the files that they write.
#include "HostedService.h"
#include "RowSuite.h"
#include "SyntheticKeys.h"
#include "bare/BareDurableFile.h"

#include <zel/EncryptFileUtils.h>

#include <FaultInjectingFileLayer.h>

#include <algorithm>
#include <memory>
#include <string>

namespace {

using ZelUnified::ConfigMap;

constexpr std::size_t keyCount = 1000;
constexpr int timesInRound = 5;

ConfigMap makeValues() {
    bench::SyntheticKeys generator(20240229);
    ConfigMap made;
    for (auto& key : generator.makeKeys(keyCount)) {
        made.emplace(std::move(key), generator.makeValue());
    }
    return made;
}

/// A service with the keys in the user's file. Each write gives every key another value.
class Subjects {
public:
    void writeOneByOne() {
        changeValues();
        for (const auto& [key, value] : values) {
            hosted.service().setConfig(key, value);
        }
        hosted.awaitFiles();
    }

    void writeMap() {
        changeValues();
        hosted.featureSet().setConfig(values);
        hosted.awaitFiles();
    }

    void writeBare() {
        changeValues();
        bare.persist(values);
    }

    void requireLastWrite() {
        for (const auto& [key, value] : values) {
            std::wstring stored;
            bench::require(hosted.featureSet().getConfig(key, stored, false) && stored == value, "a write");
        }
    }

private:
    void changeValues() {
        for (auto& [key, value] : values) {
            value.back() = value.back() == L'0' ? L'1' : L'0';
        }
    }

    ConfigMap values = makeValues();
    bench::HostedService hosted{{values, ConfigMap()}};
    bench::BareDurableFile bare{hosted.configFolder()};
};

using Write = void (Subjects::*)();

/// Returns the number of files that the write replaces.
double countFiles(Subjects& subjects, Write write) {
    using testing_host::FaultInjectingFileLayer;
    const auto files = std::make_shared<FaultInjectingFileLayer>();
    zel::storage::EncryptFileUtils::overrideFileLayer(files);
    (subjects.*write)();
    zel::storage::EncryptFileUtils::overrideFileLayer(nullptr);
    subjects.requireLastWrite();
    return static_cast<double>(std::ranges::count(files->getCalls(), FaultInjectingFileLayer::Operation::Rename));
}

} // namespace

int main(int argc, char** argv) {
    bench::RowSuite suite(argc, argv);
    const auto subjects = std::make_shared<Subjects>();
    const std::string row = "5b write of " + std::to_string(keyCount) + " keys until the last is on the disk";
    const auto add = [&](const std::string& subject, Write write) {
        suite.addTimed(row, subject, timesInRound,
                       [subjects, write] { return bench::timedByClock([&] { ((*subjects).*write)(); }); });
    };
    add("one by one", &Subjects::writeOneByOne);
    add("as one map", &Subjects::writeMap);
    add("bare durable file", &Subjects::writeBare);
    const std::string counted = "5b files written for " + std::to_string(keyCount) + " keys";
    suite.addFigure(counted, "one by one", countFiles(*subjects, &Subjects::writeOneByOne), "writes");
    suite.addFigure(counted, "as one map", countFiles(*subjects, &Subjects::writeMap), "writes");
    return suite.main();
}
