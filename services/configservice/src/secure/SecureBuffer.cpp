#include "SecureBuffer.h"

#include "WipeBytes.h"

#include <utility>

namespace zel {

struct SecureBuffer::Content {
    std::unique_ptr<char[]> bytes;
    std::uint32_t length = 0;
};

SecureBuffer::SecureBuffer() : content(std::make_unique<Content>()) {}

SecureBuffer::~SecureBuffer() {
    set(nullptr, 0);
}

const char* SecureBuffer::getData() const {
    return content->bytes && content->length != 0 ? content->bytes.get() : "";
}

std::uint32_t SecureBuffer::getLength() const {
    return content->length;
}

void SecureBuffer::set(std::unique_ptr<char[]> bytes, std::uint32_t length) {
    if (content->bytes) {
        wipeBytes(content->bytes.get(), content->length);
    }
    content->bytes = std::move(bytes);
    content->length = content->bytes ? length : 0;
}

} // namespace zel
