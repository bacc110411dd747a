#pragma once

#include "ByteSource.h"
#include "HostedService.h"
#include "ProfileCheck.h"
#include "ServiceModel.h"
#include "ServiceScript.h"
#include "ServiceStep.h"
#include "UsageCheck.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace simulated_year {

/// Plays days on the hosted service and on the model of the service. At night, while no host runs, the world changes
/// files; in the morning a host starts; during the day a random script runs, time passes, files are damaged and the
/// disk is full; in the evening the host ends. A seed and a number of days always give the same year.
class SimulatedYear {
public:
    SimulatedYear(std::uint32_t yearSeed, std::size_t days);

    /// Plays the next day. Returns "" if all was right, otherwise the story of the day and what was wrong.
    std::string playDay();
    /// Compares the usage of the process over all days. Returns "" if nothing grew.
    std::string findGrowth() const;

    /// Returns how often each kind of event happened.
    const std::map<std::string, std::size_t>& getEvents() const { return events; }
    const UsageCheck& getUsage() const { return usage; }
    const ProfileCheck& getProfileCheck() const { return profileCheck; }

private:
    using Files = config_model::ServiceModel::Files;
    using ByteSource = config_model::ByteSource;
    using ServiceStep = config_model::ServiceStep;

    void liveThroughTheNight(ByteSource& bytes);
    void changeDefaults(ByteSource& bytes);
    void changePolicy(ByteSource& bytes);
    void damageAFile(ByteSource& bytes);
    void removeAFile(ByteSource& bytes);

    void startInTheMorning(ByteSource& bytes);
    void restart();
    void playScript(ByteSource& bytes);
    void changeTheWorld(ByteSource& bytes);
    bool isPossible(const ServiceStep& step) const;
    void perform(const ServiceStep& step);
    void passTime(std::int64_t seconds);
    void fillDisk(ByteSource& bytes);
    void emptyDisk();

    void endInTheEvening(ByteSource& bytes);
    void loseUnwrittenFiles();
    void check(const std::string& title, const std::vector<std::string>& lines);
    void note(const std::string& kind, const std::string& detail = "");

    const std::uint32_t seed;
    std::size_t day = 0;
    HostedService host;
    config_model::ServiceModel model;
    config_model::ServiceScript onModel;
    config_model::ServiceScript onHost;
    ProfileCheck profileCheck;
    UsageCheck usage;
    std::map<std::string, std::size_t> events;

    // State of the day.
    std::vector<std::string> story;
    std::vector<std::string> problems;
    std::map<std::string, std::string> damaged; ///< The content of the files that were damaged.
    bool fillsUp = false;                       ///< The disk is one that can be full today.
    bool staysFull = false;                     ///< It is full until the next morning.
    std::optional<Files> filesBeforeFull;       ///< Set while the disk is full.
    bool mayRecordsDiffer = false;              ///< Something happened in this run that no record is told.
};

} // namespace simulated_year
