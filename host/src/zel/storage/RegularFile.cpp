#include "DurableFile.h"
#include "kyr/PathText.h"

#include <zel/RegularFile.h>

#include <cerrno>
#include <filesystem>
#include <new>
#include <system_error>

namespace zel::storage {

namespace fs = std::filesystem;

namespace {

constexpr int longestChain = 40;

int errorOf(const std::error_code& error) {
    return error.default_error_condition().value();
}

/// Replaces `path`, at which no file exists, with the target of its dangling links.
int followDanglingLinks(fs::path& path) {
    for (int links = 0; links < longestChain; ++links) {
        std::error_code error;
        const auto next = fs::read_symlink(path, error);
        if (error) {
            return 0; // not a link: this is the name to create
        }
        path = path.parent_path() / next;
    }
    return ELOOP;
}

/// Replaces `path` with the file that its links refer to. Returns EEXIST if that is not a regular file.
int followLinks(fs::path& path) {
    std::error_code error;
    const auto status = fs::status(path, error);
    if (status.type() == fs::file_type::not_found) {
        return followDanglingLinks(path);
    }
    if (error) {
        return errorOf(error);
    }
    if (!fs::is_regular_file(status)) {
        return EEXIST;
    }
    path = fs::canonical(path, error);
    return errorOf(error);
}

int replaceFile(const std::string& path, std::string_view content) {
    auto target = KyrCoreUtils::pathFromText(path);
    if (!target) {
        return EINVAL;
    }
    if (const int error = followLinks(*target); error != 0) {
        return error;
    }
    return DurableFile::replace(FileLayer::disk(), KyrCoreUtils::textFromPath(*target), content);
}

} // namespace

int RegularFile::replace(const std::string& path, std::string_view content) noexcept {
    try {
        return replaceFile(path, content);
    } catch (const std::bad_alloc&) {
        return ENOMEM;
    } catch (...) {
        return EIO;
    }
}

} // namespace zel::storage
