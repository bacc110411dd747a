#pragma once

#include <zel/HostExport.h>

#include <optional>
#include <span>
#include <string_view>

namespace zel {

/// A document that is compiled into a library. Its content is bytes, to be taken as they stand.
struct Resource {
    std::string_view type;
    std::string_view name;
    std::string_view content;
};

/// The documents that the libraries of this process carry, the same on every platform. Any thread.
class LUMORA_HOST_API Resources {
public:
    /// Type and name are compared letter by letter. The content stays as long as the library that carries it; empty
    /// when no library does.
    static std::optional<std::string_view> find(std::string_view type, std::string_view name);
};

/// Makes what a library carries known for as long as it lives: a static object of that library, which also owns the
/// table. Any thread.
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
