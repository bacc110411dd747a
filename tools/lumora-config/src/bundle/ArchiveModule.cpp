#include "ArchiveModule.h"

#include <archive.h>
#include <archive_entry.h>

#include <cerrno>
#include <memory>
#include <new>
#include <stdexcept>

namespace lumora_config {

namespace {

constexpr int privateMode = 0600;

struct ArchiveDeleter {
    void operator()(archive* writer) const { archive_write_free(writer); }
    void operator()(archive_entry* entry) const { archive_entry_free(entry); }
};
template <class T>
using ArchivePointer = std::unique_ptr<T, ArchiveDeleter>;

/// Called by the library, which is written in C.
la_ssize_t append(archive* writer, void* target, const void* bytes, std::size_t length) noexcept {
    try {
        static_cast<std::string*>(target)->append(static_cast<const char*>(bytes), length);
        return static_cast<la_ssize_t>(length);
    } catch (const std::bad_alloc&) {
        archive_set_error(writer, ENOMEM, "out of memory");
        return -1;
    }
}

void require(archive& writer, la_ssize_t code) {
    if (code < ARCHIVE_OK) {
        const char* const reason = archive_error_string(&writer);
        throw std::runtime_error(reason == nullptr ? "unknown error" : reason);
    }
}

void add(archive& writer, const ArchiveMember& member, std::time_t time) {
    const ArchivePointer<archive_entry> entry(archive_entry_new());
    if (!entry) {
        throw std::bad_alloc();
    }
    archive_entry_set_pathname(entry.get(), member.name.c_str());
    archive_entry_set_size(entry.get(), static_cast<la_int64_t>(member.content.size()));
    archive_entry_set_filetype(entry.get(), AE_IFREG);
    archive_entry_set_perm(entry.get(), privateMode);
    archive_entry_set_mtime(entry.get(), time, 0);
    require(writer, archive_write_header(&writer, entry.get()));
    require(writer, archive_write_data(&writer, member.content.data(), member.content.size()));
}

} // namespace

} // namespace lumora_config

using namespace lumora_config;

void MakeArchive(const std::vector<ArchiveMember>& members, std::chrono::system_clock::time_point time,
                 std::string& bytes) {
    const ArchivePointer<archive> writer(archive_write_new());
    if (!writer) {
        throw std::bad_alloc();
    }
    require(*writer, archive_write_set_format_zip(writer.get()));
    require(*writer, archive_write_set_bytes_in_last_block(writer.get(), 1)); // no padding
    require(*writer, archive_write_open(writer.get(), &bytes, nullptr, &append, nullptr));
    for (const auto& member : members) {
        add(*writer, member, std::chrono::system_clock::to_time_t(time));
    }
    require(*writer, archive_write_close(writer.get()));
}

void GetArchiveLibrary(std::string& name) {
    name = archive_version_string();
}
