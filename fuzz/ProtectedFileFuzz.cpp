// The first byte selects the meaning of the others: a whole protected file, a content, the header of a good ciphertext,
// or a key file. Only content that was encrypted is ever returned.
#include "FixedKey.h"
#include "Require.h"

#include <zel/EncryptFileUtils.h>
#include <zel/storage/FileKeyProvider.h>
#include <zel/storage/ProtectedFileFormat.h>

#include <TemporaryProfile.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

using fuzz::require;
using zel::storage::FileLayer;
using zel::storage::KeyResult;
using zel::storage::MasterKey;
using zel::storage::ProtectedFileFormat;
using zel::storage::ReadResult;
using zel::storage::FileCategoryType::DeviceData;
using zel::storage::FileCategoryType::FileCategory;
using zel::storage::FileCategoryType::UserData;

namespace {

enum class Part { File, Content, Header, KeyFile };
constexpr std::uint8_t partCount = 4;

const MasterKey& key() {
    static const auto fixed = [] {
        auto made = std::make_unique<MasterKey>();
        fuzz::FixedKey::fill(*made);
        return made;
    }();
    return *fixed;
}

/// Returns the content, or nothing if the file is refused.
std::optional<std::string> open(std::string_view file, FileCategory category) {
    std::optional<std::string> content;
    const auto outcome =
        ProtectedFileFormat::open(file, category, key(), [&](std::string_view clear) { content = clear; });
    require((outcome.result == ReadResult::Ok) == content.has_value());
    const auto seen = ProtectedFileFormat::inspect(file, category);
    require(seen.result == ReadResult::Ok || seen.result == outcome.result);
    require(!content || !content->empty());
    return content;
}

void checkFile(std::string_view file) {
    require(!open(file, UserData) || !open(file, DeviceData));
}

void checkContent(std::string_view content) {
    auto file = ProtectedFileFormat::seal(content, UserData, key());
    require(file.has_value() == !content.empty());
    if (!file) {
        return;
    }
    require(open(*file, UserData) == content);
    require(!open(*file, DeviceData));
    const auto position = static_cast<unsigned char>(content.back()) % file->size();
    require(!open(std::string_view(*file).substr(0, position), UserData));
    file->at(position) = static_cast<char>(file->at(position) ^ (content.front() | 1));
    require(!open(*file, UserData));
}

void checkHeader(std::string_view header) {
    const auto sealed = ProtectedFileFormat::seal("<Lumora/>\n", UserData, key());
    require(sealed.has_value());
    std::string file = *sealed;
    const auto length = std::min(header.size(), std::size_t{ProtectedFileFormat::headerLength});
    std::copy_n(header.begin(), length, file.begin());
    require(open(file, UserData).has_value() == (file == *sealed));
    require(!open(file, DeviceData));
}

void checkKeyFile(std::string_view bytes) {
    static const testing_host::TemporaryProfile profile;
    testing_host::writeFile(profile.data() / "keys" / "cat2.key", bytes);
    zel::storage::FileKeyProvider provider(FileLayer::platform(), profile.data().string());
    MasterKey found;
    const KeyResult result = provider.find(UserData, found);
    require(result == KeyResult::Malformed ||
            (result == KeyResult::Found && bytes.starts_with("LUMK") &&
             bytes.ends_with(std::string_view(reinterpret_cast<const char*>(found.data()), MasterKey::length))));
}

} // namespace

// libFuzzer prescribes the name.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) { // NOLINT(readability-identifier-naming)
    if (size == 0) {
        return 0;
    }
    const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    switch (static_cast<Part>(data[0] % partCount)) {
    case Part::File:
        checkFile(bytes);
        break;
    case Part::Content:
        checkContent(bytes);
        break;
    case Part::Header:
        checkHeader(bytes);
        break;
    case Part::KeyFile:
        checkKeyFile(bytes);
        break;
    }
    return 0;
}
