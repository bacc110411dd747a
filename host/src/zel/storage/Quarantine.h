#pragma once

#include <zel/FileLayer.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace zel::storage {

/// Keeps unusable files beside their original: "NAME.unreadable", then "NAME.unreadable.2" and so on. Each file gets a
/// higher number than all existing entries, files or directories, so the highest number is the newest file. The newest
/// five files of a name are kept. The layer must outlive it.
class LUMORA_HOST_API Quarantine {
public:
    static constexpr std::size_t keptFiles = 5;
    /// Larger than the number of entries in any directory; ends a search that another process disturbs.
    static constexpr unsigned long highestNumber = 1'000'000;

    explicit Quarantine(FileLayer& files) : layer(files) {}

    /// Links the file at `path` to a second name, so that its replacement is still one atomic step; on a file system
    /// without links, moves the file. Adds no third name if an interrupted write has already added the second. Returns
    /// 0 or an errno value. `keptAs` is empty if there is no file.
    int preserve(const std::string& path, std::string& keptAs) const;
    /// Moves the file at `path` and syncs its directory. Returns 0 or an errno value.
    int moveAside(const std::string& path, std::string& keptAs) const;
    /// Replaces the file at `path` with the kept file `replacement`; the replaced file is kept, too. Returns 0 or an
    /// errno value. If it cannot be replaced, it stays in its place.
    int putBack(const std::string& replacement, const std::string& path) const;

    struct KeptName {
        std::string original;
        unsigned long number;
    };
    /// Splits the path of a kept file into its parts. `original` is empty if `path` is not the path of a kept file.
    static KeptName parse(const std::string& path);

private:
    using Numbered = std::vector<std::pair<unsigned long, std::string>>;

    int linkOrMove(const std::string& path, std::string& keptAs) const;
    static Numbered list(const std::string& path);
    void removeOldest(const std::string& path) const;

    FileLayer& layer;
};

} // namespace zel::storage
