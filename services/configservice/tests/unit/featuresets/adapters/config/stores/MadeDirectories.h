#pragma once

#include <string>
#include <vector>

namespace xml_test {

/// Records the paths of the directories that this thread asks the system to create during its lifetime. Only one object
/// at a time.
class MadeDirectories {
public:
    MadeDirectories();
    ~MadeDirectories();
    MadeDirectories(const MadeDirectories&) = delete;
    MadeDirectories& operator=(const MadeDirectories&) = delete;

    const std::vector<std::string>& getPaths() const { return paths; }

private:
    std::vector<std::string> paths;
};

} // namespace xml_test
