#include "ArchiveReader.h"

#include <archive.h>
#include <archive_entry.h>

#include <memory>
#include <stdexcept>

namespace program_test {

namespace {

struct ReaderDeleter {
    void operator()(archive* reader) const { archive_read_free(reader); }
};

void require(archive& reader, int code) {
    if (code < ARCHIVE_OK) {
        throw std::runtime_error(archive_error_string(&reader));
    }
}

} // namespace

std::map<std::string, std::string> readArchive(const std::string& path) {
    constexpr std::size_t blockSize = 65536;
    const std::unique_ptr<archive, ReaderDeleter> reader(archive_read_new());
    require(*reader, archive_read_support_format_zip(reader.get()));
    require(*reader, archive_read_open_filename(reader.get(), path.c_str(), blockSize));
    std::map<std::string, std::string> members;
    archive_entry* entry = nullptr;
    for (;;) {
        const int code = archive_read_next_header(reader.get(), &entry);
        if (code == ARCHIVE_EOF) {
            return members;
        }
        require(*reader, code);
        std::string content(static_cast<std::size_t>(archive_entry_size(entry)), '\0');
        if (archive_read_data(reader.get(), content.data(), content.size()) !=
            static_cast<la_ssize_t>(content.size())) {
            throw std::runtime_error("a member is shorter than its header says");
        }
        members[archive_entry_pathname(entry)] = content;
    }
}

} // namespace program_test
