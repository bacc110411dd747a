#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

namespace testing_host {

/// A real file system of a few kilobytes over a folder, for this process alone, until its life ends.
class SmallDisk {
public:
    SmallDisk(const std::filesystem::path& folder, std::size_t bytes);
    ~SmallDisk();
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    /// Why the machine does not allow it; empty when it stands.
    const std::string& getObstacle() const { return obstacle; }

    /// Leaves room for nothing.
    void fill();
    /// Takes back what fill() wrote.
    void empty();
    /// False when the system refuses.
    bool setReadOnly(bool readOnly);

private:
    std::filesystem::path place;
    std::string options;
    std::string obstacle;
};

} // namespace testing_host
