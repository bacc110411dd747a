#pragma once

#include "BareCipher.h"

#include <ConfigMap.h>

#include <filesystem>
#include <string_view>

namespace bench {

/// The limit of persisting: builds the text of the document with the necessary escaping only, encrypts it, and replaces
/// the last file durably.
class BareDurableFile {
public:
    explicit BareDurableFile(const std::filesystem::path& place) : folder(place) {}

    void persist(const ZelUnified::ConfigMap& values);

private:
    void replace(std::string_view bytes) const;

    const std::filesystem::path folder;
    BareCipher cipher;
};

} // namespace bench
