#pragma once

#include "FileReader.h"
#include "KeyDerivation.h"

#include <zel/KeyProvider.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace zel::storage {

/// Encrypts and decrypts the bytes of a protected file with AES-256-GCM and a key derived per file.
///
///     at  bytes
///      0      4  "LUMS"
///      4      1  version, 1
///      5      1  category
///      6      2  reserved, 0
///      8      8  id of the master key
///     16     16  salt of the file key
///     32     12  nonce
///     44      n  ciphertext
///   44+n     16  tag over all preceding bytes
///
/// File key: HKDF-SHA256 of the master key, the salt and "lumora-file" + version + category. The path is not part of
/// it, so a main file and its backup can be copied over each other. Stateless; accepts any bytes.
class LUMORA_HOST_API ProtectedFileFormat {
public:
    static constexpr std::size_t headerLength = 44;
    static constexpr std::size_t tagLength = 16;
    static constexpr std::size_t maximumFileLength = std::size_t{64} * 1024 * 1024;

    ProtectedFileFormat() = delete;

    /// Returns the encrypted file; nullopt if the text is empty or too long, or if the cipher or the random number
    /// generator fails.
    static std::optional<std::string> seal(std::string_view clear, FileCategoryType::FileCategory category,
                                           const MasterKey& key);

    /// Returns true if the bytes begin like a file of any version.
    static bool hasMagic(std::string_view file);
    /// Checks the parts that can be checked without a key. Ok does not imply that the rest is valid.
    static ReadOutcome inspect(std::string_view file, FileCategoryType::FileCategory category);

    /// Verifies the whole file, then calls `use` with the clear text and zeroes it. Does not call `use` unless the
    /// outcome is Ok.
    static ReadOutcome open(std::string_view file, FileCategoryType::FileCategory category, const MasterKey& key,
                            const std::function<void(std::string_view)>& use);
};

} // namespace zel::storage
