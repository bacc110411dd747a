#include "DurableFile.h"

#include "FileHandle.h"
#include "PathParts.h"
#include "kyr/HexDigits.h"

#include <kyr/FileUtils.h>
#include <kyr/Paths.h>

#include <openssl/rand.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <system_error>
#include <vector>

namespace zel::storage {

namespace {

constexpr std::string_view temporarySuffix = ".tmp";
constexpr std::chrono::minutes longAgo{10};
constexpr std::size_t randomDigits = 16;

int writeAll(FileLayer& layer, FileLayer::Handle handle, std::string_view bytes) {
    while (!bytes.empty()) {
        std::size_t count = 0;
        if (const int error = layer.write(handle, bytes, count); error != 0) {
            return error;
        }
        if (count == 0) {
            return ENOSPC;
        }
        bytes.remove_prefix(count);
    }
    return 0;
}

/// Writes, syncs and closes.
int fill(FileLayer& layer, FileLayer::Handle opened, std::string_view bytes) {
    FileHandle handle(layer, opened);
    if (const int error = writeAll(layer, handle.get(), bytes); error != 0) {
        return error;
    }
    if (const int error = layer.sync(handle.get()); error != 0) {
        return error;
    }
    return handle.close();
}

/// Returns true for a name that makeTemporaryName() returns for any path.
bool isTemporary(std::string_view candidate) {
    if (candidate.size() < randomDigits + temporarySuffix.size() + 3 || !candidate.ends_with(temporarySuffix)) {
        return false;
    }
    candidate.remove_suffix(temporarySuffix.size());
    const std::string_view digits = candidate.substr(candidate.size() - randomDigits);
    return candidate.front() == '.' && candidate[candidate.size() - randomDigits - 1] == '.' &&
           digits.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

bool isTemporaryOf(std::string_view candidate, const std::string& name) {
    const std::string start = "." + name + ".";
    return isTemporary(candidate) && candidate.starts_with(start) &&
           candidate.size() == start.size() + randomDigits + temporarySuffix.size();
}

/// Removes a temporary file unless a living writer can have it open: a writer finishes within seconds.
void removeIfLeftOver(FileLayer& layer, const std::string& temporary) {
    std::error_code failed;
    const auto written = std::filesystem::last_write_time(KyrCoreUtils::toPath(temporary), failed);
    if (!failed && std::filesystem::file_time_type::clock::now() - written > longAgo) {
        layer.unlink(temporary);
    }
}

/// Removes temporary files that killed writers of `path` left behind.
void removeLeftoversOf(FileLayer& layer, const std::string& path) {
    const PathParts parts = splitPath(path);
    const auto directory = KyrCoreUtils::toPath(parts.directory.empty() ? "." : parts.directory);
    std::error_code failed;
    for (std::filesystem::directory_iterator entry(directory, failed), end; !failed && entry != end;
         entry.increment(failed)) {
        const std::string name = KyrCoreUtils::toText(entry->path().filename());
        if (isTemporaryOf(name, parts.name)) {
            removeIfLeftOver(layer, parts.prefix + name);
        }
    }
}

} // namespace

int DurableFile::replace(FileLayer& layer, const std::string& path, std::string_view bytes) {
    return write(layer, path, bytes, Publish::ByRename);
}

int DurableFile::create(FileLayer& layer, const std::string& path, std::string_view bytes) {
    return write(layer, path, bytes, Publish::ByLink);
}

void DurableFile::removeLeftovers(FileLayer& layer, const std::string& directory) {
    std::vector<std::string> files;
    KyrCoreUtils::FileUtils::getFilesFromDirectory(directory, std::string(temporarySuffix), files);
    for (const auto& file : files) {
        if (isTemporary(KyrCoreUtils::FileUtils::getFileName(file))) {
            removeIfLeftOver(layer, file);
        }
    }
}

std::string DurableFile::makeTemporaryName(const std::string& path) {
    std::array<unsigned char, 8> random{};
    if (RAND_bytes(random.data(), static_cast<int>(random.size())) != 1) {
        return {};
    }
    const PathParts parts = splitPath(path);
    std::string name = parts.prefix + "." + parts.name + ".";
    for (const unsigned char byte : random) {
        KyrCoreUtils::appendHex(name, byte);
    }
    return name + std::string(temporarySuffix);
}

/// Writes the file in these steps:
/// 1. Create a new file with a random name in the same directory: a rename is atomic only there.
/// 2. Write all bytes, in as many calls as necessary.
/// 3. Sync the file, so that no name ever refers to bytes that are not on the disk.
/// 4. Close it: some file systems report a failed write only now.
/// 5. Publish: rename the file to the path, or link it to the path and remove the first name.
/// 6. Sync the directory, so that a power cut cannot restore the old file after success was reported.
/// 7. Remove the temporary files of writers of this path that were killed long ago.
/// A failure in steps 1 to 5 removes the new file and leaves the old one unchanged. A failure in step 6 is reported
/// while the new file is in place: after a power cut the path holds either file, complete.
int DurableFile::write(FileLayer& layer, const std::string& path, std::string_view bytes, Publish publish) {
    const PathParts parts = splitPath(path);
    if (parts.name.empty()) {
        return EINVAL;
    }
    const std::string temporary = makeTemporaryName(path);
    if (temporary.empty()) {
        return EIO;
    }
    FileLayer::Handle handle = -1;
    if (const int error = layer.createFile(temporary, handle); error != 0) {
        return error;
    }
    int error = fill(layer, handle, bytes);
    if (error == 0) {
        error = publish == Publish::ByRename ? layer.rename(temporary, path) : layer.link(temporary, path);
    }
    if (error != 0 || publish == Publish::ByLink) {
        layer.unlink(temporary);
    }
    if (error != 0) {
        return error;
    }
    error = layer.syncDirectory(parts.directory);
    removeLeftoversOf(layer, path);
    return error;
}

} // namespace zel::storage
