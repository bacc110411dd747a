#pragma once

#include <string>
#include <vector>

namespace xml_test {

/// The paths that this thread asks the system to make directories of, as they are handed to it, while it lives. One at
/// a time.
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
