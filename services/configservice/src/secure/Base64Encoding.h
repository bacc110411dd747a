#pragma once

#include "Encoding.h"

namespace zel {

/// Base64 with the standard alphabet, padded with "=".
class Base64Encoding final : public Encoding {
public:
    static const Base64Encoding& instance();

    std::string_view getAlphabet() const override;
    const DecodingTable& getDecodingTable() const override;
    std::string_view getEncodingPadding() const override;
    std::string_view getDecodingPadding() const override;
    bool isForUrls() const override;
};

} // namespace zel
