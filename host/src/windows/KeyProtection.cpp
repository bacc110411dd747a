#include "zel/storage/KeyProtection.h"

#include <openssl/crypto.h>

// The others need the system's header.
// clang-format off
#include <windows.h>
#include <wincrypt.h>
#include <dpapi.h>
// clang-format on

#include <algorithm>
#include <memory>

namespace zel::storage {

namespace {

/// The calls take no pointer to constant bytes, although they only read the input.
DATA_BLOB blobOf(const void* bytes, std::size_t size) {
    return {static_cast<DWORD>(size), static_cast<BYTE*>(const_cast<void*>(bytes))};
}

/// Bytes that the system has allocated; zeroed before they are freed.
class SystemBytes {
public:
    SystemBytes() = default;
    ~SystemBytes() {
        if (blob.pbData != nullptr) {
            OPENSSL_cleanse(blob.pbData, blob.cbData);
            ::LocalFree(blob.pbData);
        }
    }
    SystemBytes(const SystemBytes&) = delete;
    SystemBytes& operator=(const SystemBytes&) = delete;

    DATA_BLOB blob{};
};

} // namespace

bool KeyProtection::isPresent() noexcept {
    return true;
}

bool KeyProtection::wrap(const MasterKey& key, std::string& wrapped) {
    DATA_BLOB plain = blobOf(key.data(), MasterKey::length);
    SystemBytes result;
    // The window that the system could show would block a host without a user.
    if (!::CryptProtectData(&plain, L"Lumora", nullptr, nullptr, nullptr, CRYPTPROTECT_UI_FORBIDDEN, &result.blob)) {
        return false;
    }
    wrapped.assign(reinterpret_cast<const char*>(result.blob.pbData), result.blob.cbData);
    return true;
}

KeyResult KeyProtection::unwrap(std::string_view wrapped, MasterKey& key) {
    DATA_BLOB input = blobOf(wrapped.data(), wrapped.size());
    SystemBytes result;
    if (!::CryptUnprotectData(&input, nullptr, nullptr, nullptr, nullptr, CRYPTPROTECT_UI_FORBIDDEN, &result.blob)) {
        const DWORD error = ::GetLastError();
        const bool isMalformed = error == ERROR_INVALID_DATA || error == ERROR_INVALID_PARAMETER;
        return isMalformed ? KeyResult::Malformed : KeyResult::Unavailable;
    }
    if (result.blob.cbData != MasterKey::length) {
        return KeyResult::Malformed;
    }
    std::copy_n(result.blob.pbData, MasterKey::length, key.data());
    return KeyResult::Found;
}

} // namespace zel::storage
