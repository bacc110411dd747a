#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

namespace testing_host {

/// A real file system of a few kilobytes, mounted on a folder for this process only, until the object is destroyed.
class SmallDisk {
public:
    SmallDisk(const std::filesystem::path& folder, std::size_t bytes);
    ~SmallDisk();
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    /// Returns the reason why the mount is not possible; empty if it succeeded.
    const std::string& getObstacle() const { return obstacle; }

    /// Fills the free space.
    void fill();
    /// Removes the data that fill() wrote.
    void empty();
    /// Remounts the file system. Returns false on failure.
    bool setReadOnly(bool readOnly);

private:
    std::filesystem::path place;
    std::string options;
    std::string obstacle;
};

} // namespace testing_host
