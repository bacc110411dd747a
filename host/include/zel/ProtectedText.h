#pragma once

#include <zel/HostExport.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string_view>

namespace zel::storage {

/// A text that its owner keeps enciphered in memory, as the encrypted-file facility sees it.
class LUMORA_HOST_API ProtectedText {
public:
    virtual bool isEmpty() const = 0;
    /// Takes a copy of the bytes. A null pointer changes nothing.
    virtual void setContent(const char* bytes, std::size_t length) = 0;
    /// Shows the clear bytes for the length of the call; they are wiped afterwards. Not called when there are none.
    virtual void withClearText(const std::function<void(std::string_view)>& use) const = 0;
    /// Returns a copy that later changes of this text don't reach, protected in the same way. The copy is empty if it
    /// can't be protected.
    virtual std::shared_ptr<const ProtectedText> copy() const = 0;

protected:
    ~ProtectedText() = default;
};

} // namespace zel::storage
