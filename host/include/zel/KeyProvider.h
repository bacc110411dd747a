#pragma once

#include <zel/EncryptFileUtils.h>
#include <zel/HostExport.h>

#include <array>
#include <cstddef>

namespace zel::storage {

/// The secret that protects the files of one category. Zeroed before it is freed.
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
    Absent,      ///< Never created, or removed: files written with it are unreadable.
    Malformed,   ///< The key's place contains something that is not a key.
    Unavailable, ///< The key may exist but cannot be read now; a retry may succeed.
    Locked       ///< Another process holds the lock of the keys and did not release it in time; a retry may succeed.
};

/// Stores the master keys: in files by default; a desktop keyring or the platform's data protection can replace them.
/// Any thread, and several processes concurrently. May throw; the caller converts that to a failure.
class LUMORA_HOST_API KeyProvider {
public:
    virtual ~KeyProvider() = default;

    /// Reads the key. `key` is valid only if the call returns Found.
    virtual KeyResult find(FileCategoryType::FileCategory category, MasterKey& key) = 0;
    /// Reads the key; creates it if it is absent or malformed. Concurrent callers get the same key, and it is durable
    /// before the call returns. Returns Found, Unavailable or Locked.
    virtual KeyResult findOrMake(FileCategoryType::FileCategory category, MasterKey& key) = 0;
};

} // namespace zel::storage
