#pragma once

#include "BareCipher.h"

#include <ConfigMap.h>

#include <filesystem>
#include <string_view>

namespace bench {

/// The limit of persisting: the document's text put together with no more care than its characters need, enciphered,
/// and written to a file that replaces the last one durably.
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
