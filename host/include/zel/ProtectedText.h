#pragma once

#include <zel/HostExport.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string_view>

namespace zel::storage {

/// A text that its owner keeps encrypted in memory. EncryptFileUtils accesses it through this interface.
class LUMORA_HOST_API ProtectedText {
public:
    virtual bool isEmpty() const = 0;
    /// Copies the bytes. A null pointer changes nothing.
    virtual void setContent(const char* bytes, std::size_t length) = 0;
    /// Calls `use` with the clear text, which is zeroed after the call. Does not call `use` if the text is empty.
    virtual void withClearText(const std::function<void(std::string_view)>& use) const = 0;
    /// Returns an independent copy with the same protection. The copy is empty if it cannot be protected.
    virtual std::shared_ptr<const ProtectedText> copy() const = 0;

protected:
    ~ProtectedText() = default;
};

} // namespace zel::storage
