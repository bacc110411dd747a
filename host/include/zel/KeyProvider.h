#pragma once

#include <zel/EncryptFileUtils.h>
#include <zel/HostExport.h>

#include <array>
#include <cstddef>

namespace zel::storage {

/// The secret that the files of one category are protected with. Zeroed before it is freed.
class LUMORA_HOST_API MasterKey {
public:
    static constexpr std::size_t length = 32;

    MasterKey() = default;
    ~MasterKey();
    MasterKey(const MasterKey&) = delete;
    MasterKey& operator=(const MasterKey&) = delete;

    unsigned char* data() { return bytes.data(); }
    const unsigned char* data() const { return bytes.data(); }

private:
    std::array<unsigned char, length> bytes{};
};

enum class KeyResult {
    Found,
    Absent,      ///< Never made, or removed: files written with it can't be read any more.
    Malformed,   ///< Something stands in its place that is no key.
    Unavailable, ///< It may be there but can't be had now; asking again later may help.
    Locked       ///< Another process locks the keys and did not release them in time; asking again later may help.
};

/// Where master keys live: files by default, a desktop keyring or the platform's data protection in their place. Any
/// thread, and several processes at once. May throw; the facility turns that into a failure.
class LUMORA_HOST_API KeyProvider {
public:
    virtual ~KeyProvider() = default;

    /// `key` holds the key on Found and is of no meaning otherwise.
    virtual KeyResult find(FileCategoryType::FileCategory category, MasterKey& key) = 0;
    /// Makes the key when it is absent or malformed. All who ask, at once too, get the same one, and it is durable
    /// before the call returns. Returns Found, Unavailable or Locked.
    virtual KeyResult findOrMake(FileCategoryType::FileCategory category, MasterKey& key) = 0;
};

} // namespace zel::storage
