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

/// The bytes of a protected file: AES-256-GCM under a key that each file derives for itself.
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
///   44+n     16  tag over all before it
///
/// File key: HKDF-SHA256 of the master key, the salt and "lumora-file" + version + category. The path is not bound, so
/// that a main file and its backup can be copied onto each other. Stateless; any bytes may be handed in.
class LUMORA_HOST_API ProtectedFileFormat {
public:
    static constexpr std::size_t headerLength = 44;
    static constexpr std::size_t tagLength = 16;
    static constexpr std::size_t maximumFileLength = std::size_t{64} * 1024 * 1024;

    ProtectedFileFormat() = delete;

    /// nullopt for no text, for one that is too long, and when the cipher or the random bytes fail.
    static std::optional<std::string> seal(std::string_view clear, FileCategoryType::FileCategory category,
                                           const MasterKey& key);

    /// Returns true if the bytes begin like a file of any version.
    static bool hasMagic(std::string_view file);
    /// Looks at what can be told without a key. Ok promises nothing about the rest.
    static ReadOutcome inspect(std::string_view file, FileCategoryType::FileCategory category);

    /// Shows the clear text, after all of the file was found in order, and wipes it. Not called unless the outcome is
    /// Ok.
    static ReadOutcome open(std::string_view file, FileCategoryType::FileCategory category, const MasterKey& key,
                            const std::function<void(std::string_view)>& use);
};

} // namespace zel::storage
