#pragma once

#include <zel/HostExport.h>

#include <cstdint>
#include <memory>
#include <span>

/// The platform's registry, or the implementation that replaces it. On Windows, include this header before the
/// platform's own, which define some of these names as macros.
namespace zel::registry {

/// An open key or one of the two roots. Zero is the null key.
enum class HKEY : std::uintptr_t {};

inline constexpr HKEY HKEY_CURRENT_USER{0x80000001};
inline constexpr HKEY HKEY_LOCAL_MACHINE{0x80000002};

/// The access mask for reading.
inline constexpr std::uint32_t KEY_READ = 131097;

/// Result codes with the platform's numbers. The platform may return other numbers; every value except Success is a
/// failure.
enum class RegistryResult : std::int32_t {
    Success = 0,
    NotFound = 2,
    AccessDenied = 5,
    InvalidHandle = 6,
    MoreData = 234,
    NoMoreItems = 259
};

/// Value types with the platform's numbers. Files may contain other numbers.
enum RegistryValueType : std::uint32_t {
    REG_NONE = 0,
    REG_SZ = 1,
    REG_EXPAND_SZ = 2,
    REG_BINARY = 3,
    REG_DWORD = 4,
    REG_MULTI_SZ = 7,
    REG_QWORD = 11
};

/// The registry operations that the product needs. Names of keys and values are case-insensitive; a path is separated
/// by backslashes. The data of text types is UTF-16, low byte first, on every platform, and may lack its terminator.
/// Any thread. Throws only if an allocation fails.
class LUMORA_HOST_API Registry {
public:
    virtual ~Registry() = default;

    /// Opens a key below an open one; a null or empty `subkey` opens `key` itself again. `opened` is set only on
    /// success; the caller closes it with RegCloseKey().
    virtual RegistryResult RegOpenKeyExW(HKEY key, const wchar_t* subkey, std::uint32_t options, std::uint32_t access,
                                         HKEY& opened) = 0;
    /// Sets `subkeys` to the number of direct subkeys.
    virtual RegistryResult RegQueryInfoKeyW(HKEY key, std::uint32_t& subkeys) = 0;
    /// Copies the name of the subkey at `index`, with a terminator; `nameLength` excludes the terminator. Returns
    /// MoreData if the name does not fit, NoMoreItems if `index` is past the end.
    virtual RegistryResult RegEnumKeyExW(HKEY key, std::uint32_t index, std::span<wchar_t> name,
                                         std::uint32_t& nameLength) = 0;
    /// Copies the name, type and data of the value at `index`; the default value has the empty name. Returns MoreData
    /// if the name with its terminator, or the data, does not fit.
    virtual RegistryResult RegEnumValueW(HKEY key, std::uint32_t index, std::span<wchar_t> name,
                                         std::uint32_t& nameLength, std::uint32_t& type, std::span<std::uint8_t> data,
                                         std::uint32_t& dataLength) = 0;
    /// Deletes a key that has no subkeys, and its values. Returns NotFound if the key does not exist, AccessDenied if
    /// it has subkeys or if it must not be deleted.
    virtual RegistryResult RegDeleteKeyW(HKEY key, const wchar_t* subkey) = 0;
    /// Copies the data of one value, text types as narrow text; a null `name` means the default value. `dataLength` is
    /// the number of bytes, including the terminator if the value has one.
    virtual RegistryResult RegQueryValueExA(HKEY key, const char* name, std::uint32_t& type, std::span<char> data,
                                            std::uint32_t& dataLength) = 0;
    /// Closes the key. Returns InvalidHandle for the null key and for a key that is not open. Closing a root succeeds
    /// and has no effect.
    virtual RegistryResult RegCloseKey(HKEY key) = 0;
};

/// Returns the registry of this process; the platform's is created on the first call. Hold the pointer as long as any
/// handle of it.
LUMORA_HOST_API std::shared_ptr<Registry> getRegistry();

/// Replaces the registry, for an embedding program or a test; null restores the platform's. Stores keep the values that
/// they read before.
LUMORA_HOST_API void overrideRegistry(std::shared_ptr<Registry> registry);

} // namespace zel::registry
