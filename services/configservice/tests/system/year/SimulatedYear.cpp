#include "SimulatedYear.h"

#include "Comparison.h"
#include "FileDamages.h"
#include "Vocabulary.h"

#include <zel/EncryptFileUtils.h>

#include <algorithm>
#include <set>

namespace simulated_year {

using config_model::ByteSource;
using config_model::Pairs;
using config_model::ServiceModel;
using config_model::ServiceStep;
using Kind = config_model::ServiceStep::Kind;
using Effect = ServiceModel::Files::Damage;

namespace vocabulary = config_model::vocabulary;

namespace {

constexpr std::size_t bytesOfOneDay = 600;
constexpr std::size_t bytesOfOneScript = 60;
constexpr std::int64_t secondsOfOneDay = 24L * 60 * 60;
constexpr std::int64_t delayOfBackup = 30;
constexpr const char* defaultsFile = "lumora-config-defaults.xml";

/// Returns pairs with different keys in small letters, as the file of the defaults needs them.
Pairs readPairs(ByteSource& bytes, std::size_t most) {
    Pairs pairs;
    for (auto count = bytes.below(most + 1); count > 0; --count) {
        const auto key = config_model::toSmallLetters(bytes.pick(vocabulary::serviceKeys));
        const auto& value = bytes.pick(vocabulary::serviceValues);
        if (std::none_of(pairs.begin(), pairs.end(), [&](const auto& pair) { return pair.first == key; })) {
            pairs.emplace_back(key, value);
        }
    }
    return pairs;
}

std::string describe(const Pairs& pairs) {
    std::string text;
    for (const auto& [key, value] : pairs) {
        text += config_model::narrow(key) + "=" + config_model::narrow(value) + " ";
    }
    return text;
}

ServiceStep stepOf(Kind kind) {
    ServiceStep step;
    step.kind = kind;
    return step;
}

/// Returns a word for the list of events.
std::string kindOf(const ServiceStep& step) {
    switch (step.kind) {
    case Kind::Restart:
    case Kind::Start:
    case Kind::Stop:
    case Kind::Refresh:
    case Kind::PowerDown:
    case Kind::ResetAllData:
        return config_model::describe(step);
    case Kind::AddStore:
        return "document arrives";
    case Kind::RemoveStore:
        return "document disappears";
    case Kind::SetConfig:
    case Kind::SetConfigMap:
        return "user's setting";
    case Kind::SetPolicy:
        return "user's policy";
    case Kind::Provision:
        return "provisioning link";
    default:
        return "other call";
    }
}

/// Returns the names of the files that can be read.
std::vector<std::string> listReadable(const ServiceModel::Files& files) {
    std::vector<std::string> names;
    for (const auto* group : {&files.user, &files.copies}) {
        for (const auto& [name, pairs] : *group) {
            if (!files.damaged.contains(name)) {
                names.push_back(name);
            }
        }
    }
    return names;
}

bool has(const ServiceModel::Files& files, const std::string& name) {
    return files.user.contains(name) || files.copies.contains(name);
}

} // namespace

SimulatedYear::SimulatedYear(std::uint32_t yearSeed, std::size_t days)
    : seed(yearSeed),
      host(vocabulary::defaults),
      model(vocabulary::defaults),
      onModel(model),
      onHost(host),
      profileCheck(host.getProfile()),
      usage(days) {
    host.shutDown();
}

std::string SimulatedYear::playDay() {
    ++day;
    story.clear();
    problems.clear();
    const auto source = config_model::makeBytes(seed * 1'000'003U + static_cast<std::uint32_t>(day), bytesOfOneDay);
    ByteSource bytes(source);
    liveThroughTheNight(bytes);
    startInTheMorning(bytes);
    playScript(bytes);
    endInTheEvening(bytes);
    std::string text;
    for (const auto& line : problems) {
        text += line + "\n";
    }
    if (!text.empty()) {
        std::string told = "seed " + std::to_string(seed) + ", day " + std::to_string(day) + ":\n";
        for (const auto& line : story) {
            told += "  " + line + "\n";
        }
        text = told + text;
    }
    return text;
}

// The night.

void SimulatedYear::liveThroughTheNight(ByteSource& bytes) {
    host.setDiskThatFillsUp(false);
    if (bytes.oneIn(30)) {
        changeDefaults(bytes);
    }
    if (bytes.oneIn(10)) {
        changePolicy(bytes);
    }
    while (bytes.oneIn(4)) {
        damageAFile(bytes);
    }
    if (bytes.oneIn(30)) {
        removeAFile(bytes);
    }
}

/// Installs another version of the product, or damages the defaults of the present one.
void SimulatedYear::changeDefaults(ByteSource& bytes) {
    if (bytes.oneIn(4)) {
        note("damaged defaults");
        testing_host::writeFile(host.getProfile().resources() / defaultsFile, "<Lumora> <userConfig name=\"zed\"");
        model.setDefaults({}); // the product moves the file away
        return;
    }
    auto pairs = vocabulary::defaults;
    for (const auto& [key, value] : readPairs(bytes, 4)) {
        std::erase_if(pairs, [&](const auto& pair) { return pair.first == key; });
        pairs.emplace_back(key, value);
    }
    if (!bytes.oneIn(4)) { // in that mode nothing is written, until the next version
        std::erase_if(pairs, [](const auto& pair) { return pair.first == L"lumora_sdk_mode"; });
    }
    note("new defaults", describe(pairs));
    host.setDefaults(pairs);
    model.setDefaults(pairs);
}

void SimulatedYear::changePolicy(ByteSource& bytes) {
    const auto pairs = readPairs(bytes, 3);
    note("new policy", describe(pairs));
    host.setAdministratorPolicy(pairs);
    model.setAdministratorPolicy(pairs);
}

void SimulatedYear::damageAFile(ByteSource& bytes) {
    auto files = model.getFiles();
    const auto names = listReadable(files);
    const auto kind = pickDamage(bytes);
    if (names.empty()) {
        return;
    }
    const bool isUsersFile = bytes.oneIn(3) && names.front().starts_with("lumoraLocalConfig");
    const auto name = isUsersFile ? names.front() : bytes.pick(names);
    note("damaged file", name + ", " + describe(kind));
    damaged[name] = damageFile(host.getProfile().config() / pathInConfig(name), kind, bytes);
    files.damaged[name] = effectOf(kind);
    model.setFiles(files);
}

void SimulatedYear::removeAFile(ByteSource& bytes) {
    auto files = model.getFiles();
    const auto names = listReadable(files);
    if (names.empty()) {
        return;
    }
    const auto name = bytes.pick(names);
    note("removed file", name);
    std::filesystem::remove(host.getProfile().config() / pathInConfig(name));
    files.user.erase(name);
    files.copies.erase(name);
    model.setFiles(files);
}

// The day.

void SimulatedYear::startInTheMorning(ByteSource& bytes) {
    using Thread = ZelUnified::UnifiedFactoryOptions::ServicesThread;
    // With its own thread a day takes much longer on a machine with other work.
    host.setServicesThread(bytes.oneIn(4) ? Thread::Own : Thread::Pumped);
    fillsUp = bytes.oneIn(6);
    staysFull = bytes.oneIn(3);
    host.setDiskThatFillsUp(fillsUp);
    restart();
    if (!bytes.oneIn(12)) {
        perform(stepOf(Kind::Start));
    }
}

void SimulatedYear::restart() {
    std::set<std::string> moved;
    for (const auto& [name, effect] : model.getFiles().damaged) {
        if (effect == Effect::MovedAsideAtStart) {
            moved.insert(name);
        }
    }
    mayRecordsDiffer = false;
    perform(stepOf(Kind::Restart));
    check("at the start", ProfileCheck::findWrongMoves(host.getFilesBeforeStart(), host.getFilesAfterStart(), moved));
    const auto warnings = host.getLog().getTexts(ZelLogLevel::Warning);
    const auto reported = std::count_if(warnings.begin(), warnings.end(),
                                        [](const auto& text) { return text.starts_with("Moved aside "); });
    if (static_cast<std::size_t>(reported) != moved.size()) {
        check("at the start", {std::to_string(moved.size()) + " files to move aside, " + std::to_string(reported) +
                               " reported in the log"});
    }
    events["moved aside"] += moved.size();
}

void SimulatedYear::playScript(ByteSource& bytes) {
    std::vector<std::uint8_t> script;
    for (std::size_t i = 0; i < bytesOfOneScript; ++i) {
        script.push_back(static_cast<std::uint8_t>(bytes.below(256)));
    }
    for (auto step : config_model::readServiceSteps(script)) {
        changeTheWorld(bytes);
        if (step.kind == Kind::UpdateStore) { // only the plug-in itself can call it
            step.kind = Kind::AddStore;
        }
        // Resets are rare, because they remove the files that were moved aside.
        const bool isSkipped = step.kind == Kind::ResetAllData && !bytes.oneIn(10);
        if (isSkipped || !isPossible(step) || !problems.empty()) {
            continue;
        }
        if (step.kind != Kind::Restart) {
            perform(step);
            continue;
        }
        restart();
        perform(stepOf(Kind::Start));
    }
}

/// Between two steps of the script.
void SimulatedYear::changeTheWorld(ByteSource& bytes) {
    if (bytes.oneIn(8)) {
        passTime(bytes.oneIn(3) ? 1 : delayOfBackup);
    }
    if (bytes.oneIn(40) && !filesBeforeFull) {
        damageAFile(bytes);
    }
    if (fillsUp && !filesBeforeFull && bytes.oneIn(8)) {
        fillDisk(bytes);
    } else if (filesBeforeFull && !staysFull && bytes.oneIn(6)) {
        emptyDisk();
    }
}

/// While the disk is full, content that waits to be written is not listed with the files of the disk, so that the
/// steps that list or remove files do not do what the model does. A host that ends loses that content.
bool SimulatedYear::isPossible(const ServiceStep& step) const {
    static constexpr Kind impossible[] = {Kind::Restart,     Kind::Stop,        Kind::Refresh,
                                          Kind::PowerDown,   Kind::RemoveStore, Kind::RemoveAllCachedStores,
                                          Kind::ResetAllData};
    return !filesBeforeFull ||
           std::find(std::begin(impossible), std::end(impossible), step.kind) == std::end(impossible);
}

void SimulatedYear::perform(const ServiceStep& step) {
    note("step", config_model::describe(step));
    ++events[kindOf(step)];
    const auto difference = config_model::describeDifference(onModel.perform(step), onHost.perform(step));
    if (!difference.empty()) {
        problems.push_back(difference);
    }
    mayRecordsDiffer = mayRecordsDiffer || step.kind == Kind::ResetStore || step.kind == Kind::SetFipsMode;
    if (!mayRecordsDiffer) {
        check("after " + config_model::describe(step), host.findRecordsThatDiffer());
    }
    if (step.kind == Kind::ResetAllData) {
        damaged.clear(); // it removes them, wherever they are
    }
    const auto files = model.getFiles();
    std::erase_if(damaged, [&](const auto& entry) { return step.kind != Kind::Restart && !has(files, entry.first); });
}

void SimulatedYear::passTime(std::int64_t seconds) {
    note("time", std::to_string(seconds) + " seconds pass");
    host.passTime(seconds);
    if (seconds >= delayOfBackup) {
        model.passTime();
    }
}

void SimulatedYear::fillDisk(ByteSource& bytes) {
    const std::size_t freeBytes = staysFull ? 0 : bytes.below(256) * 8;
    note("full disk", std::to_string(freeBytes) + " bytes are free");
    filesBeforeFull = model.getFiles();
    host.fillDisk(freeBytes);
}

void SimulatedYear::emptyDisk() {
    note("space again");
    filesBeforeFull.reset();
    host.emptyDisk();
}

// The evening.

void SimulatedYear::endInTheEvening(ByteSource& bytes) {
    if (filesBeforeFull && !staysFull) {
        emptyDisk();
    }
    passTime(secondsOfOneDay);
    const auto difference = config_model::describeDifference(onModel.readEverything(), onHost.readEverything());
    if (!difference.empty()) {
        problems.push_back("(everything read)\n" + difference);
    }
    if (!filesBeforeFull && bytes.oneIn(4)) {
        perform(stepOf(bytes.oneIn(3) ? Kind::PowerDown : Kind::Stop));
    }
    host.shutDown();
    loseUnwrittenFiles();
    check("in the evening", profileCheck.findDeviations(model.getFiles(), damaged));
    if (!zel::storage::EncryptFileUtils::retryPendingWrites()) {
        problems.emplace_back("in the evening: content waits to be written");
    }
    if (host.countPendingTimers() != 0) {
        problems.emplace_back("in the evening: timers are pending");
    }
    host.getLog().clear();
    check("in the evening", usage.measure());
}

void SimulatedYear::loseUnwrittenFiles() {
    if (!filesBeforeFull) {
        return;
    }
    model.setFiles(*filesBeforeFull);
    filesBeforeFull.reset();
    note("lost writes");
}

std::string SimulatedYear::findGrowth() const {
    std::string text;
    for (const auto& line : usage.findGrowth()) {
        text += line + "\n";
    }
    return text;
}

void SimulatedYear::check(const std::string& title, const std::vector<std::string>& lines) {
    for (const auto& line : lines) {
        problems.push_back(title + ": " + line);
    }
}

void SimulatedYear::note(const std::string& kind, const std::string& detail) {
    if (kind != "step") {
        ++events[kind];
    }
    story.push_back(kind + (detail.empty() ? "" : ": " + detail));
}

} // namespace simulated_year
