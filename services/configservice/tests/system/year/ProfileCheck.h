#pragma once

#include "HostedService.h"
#include "ServiceModel.h"

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace simulated_year {

/// Compares the files of a profile with those that the model expects. All functions return a line for each deviation.
class ProfileCheck {
public:
    explicit ProfileCheck(const testing_host::TemporaryProfile& subject) : profile(subject) {}

    /// Call it while no host runs. `damaged` has the content of each file that was damaged and that the model still
    /// has: it must be in its place, or kept beside it.
    std::vector<std::string> findDeviations(const config_model::ServiceModel::Files& files,
                                            const std::map<std::string, std::string>& damaged);
    /// Compares the configuration directory before and after a start that must move exactly these files aside.
    static std::vector<std::string> findWrongMoves(FolderContent before, const FolderContent& after,
                                                   const std::set<std::string>& moved);

    std::size_t getLargestFile() const { return largestFile; }
    std::size_t getMostFiles() const { return mostFiles; }
    /// Returns the highest number in the name of a file that was moved aside. Above 5, older ones were removed.
    unsigned long getHighestNumber() const { return highestNumber; }

private:
    std::vector<std::string> findForeignFiles(const FolderContent& present,
                                              const config_model::ServiceModel::Files& files);
    std::vector<std::string> findWrongContent(const config_model::ServiceModel::Files& files) const;

    const testing_host::TemporaryProfile& profile;
    std::size_t largestFile = 0;
    std::size_t mostFiles = 0;
    unsigned long highestNumber = 0;
};

/// Returns the path of a protected file of the client in the configuration directory.
std::string pathInConfig(const std::string& name);

} // namespace simulated_year
