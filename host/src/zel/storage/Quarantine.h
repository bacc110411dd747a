#pragma once

#include <zel/FileLayer.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace zel::storage {

/// Keeps files that can't be used beside their original: "NAME.unreadable", then "NAME.unreadable.2" and so on. Each
/// file gets a higher number than all that are there, files or directories, so the highest one is the newest. The
/// newest five files of a name are kept. The layer outlives it.
class LUMORA_HOST_API Quarantine {
public:
    static constexpr std::size_t keptFiles = 5;
    /// More than any directory holds; ends a search that another process disturbs.
    static constexpr unsigned long highestNumber = 1'000'000;

    explicit Quarantine(FileLayer& files) : layer(files) {}

    /// Gives the file at `path` a second name, so that its replacement is still a single step; where the file system
    /// has no links, moves it. A file that an interrupted write kept already is not kept again. Returns 0 or an errno
    /// value. `keptAs` is empty if there is no file.
    int keep(const std::string& path, std::string& keptAs) const;
    /// Moves the file at `path` and syncs its directory. Returns 0 or an errno value.
    int moveAside(const std::string& path, std::string& keptAs) const;
    /// Replaces the file at `path`, which is kept, by the kept file `replacement`. Returns 0 or an errno value. If it
    /// can't be replaced, it stays in its place.
    int putBack(const std::string& replacement, const std::string& path) const;

    struct KeptName {
        std::string original;
        unsigned long number;
    };
    /// Takes the path of a kept file apart. `original` is empty if `path` isn't one.
    static KeptName parse(const std::string& path);

private:
    using Numbered = std::vector<std::pair<unsigned long, std::string>>;

    int giveSecondName(const std::string& path, std::string& keptAs) const;
    static Numbered list(const std::string& path);
    void removeOldest(const std::string& path) const;

    FileLayer& layer;
};

} // namespace zel::storage
