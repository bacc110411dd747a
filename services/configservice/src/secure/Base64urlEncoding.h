#pragma once

#include "Encoding.h"

namespace zel {

/// Base64 with the alphabet that needs no escaping in URLs, padded with an escaped "=".
class Base64urlEncoding final : public Encoding {
public:
    static const Base64urlEncoding& instance();

    std::string_view getAlphabet() const override;
    const DecodingTable& getDecodingTable() const override;
    std::string_view getEncodingPadding() const override;
    std::string_view getDecodingPadding() const override;
    bool isForUrls() const override;
};

} // namespace zel
