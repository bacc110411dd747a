#pragma once

#include <zel/HostExport.h>

#include <optional>
#include <span>
#include <string_view>

namespace zel {

/// A document that is compiled into a library. Its content is raw bytes.
struct Resource {
    std::string_view type;
    std::string_view name;
    std::string_view content;
};

/// Finds the documents in the libraries of this process. The documents are the same on every platform. Any thread.
class LUMORA_HOST_API Resources {
public:
    /// Returns the content; nullopt if no library contains the document. Type and name are case-sensitive. The content
    /// is valid as long as its library is loaded.
    static std::optional<std::string_view> find(std::string_view type, std::string_view name);
};

/// Registers the documents of a library for the lifetime of this object, which is a static object of that library. The
/// library also owns the table. Any thread.
class LUMORA_HOST_API CarriedResources {
public:
    explicit CarriedResources(std::span<const Resource> carried);
    ~CarriedResources();
    CarriedResources(const CarriedResources&) = delete;
    CarriedResources& operator=(const CarriedResources&) = delete;

private:
    const std::span<const Resource> table;
};

} // namespace zel
