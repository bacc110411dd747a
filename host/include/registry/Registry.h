#pragma once

#include <zel/HostExport.h>

#include <cstdint>
#include <memory>
#include <span>

/// The platform's registry, or what stands in its place. On Windows include this before the platform's own headers,
/// which define some of these names as macros.
namespace zel::registry {

/// An open key or one of the two roots. Zero is no key.
enum class HKEY : std::uintptr_t {};

inline constexpr HKEY HKEY_CURRENT_USER{0x80000001};
inline constexpr HKEY HKEY_LOCAL_MACHINE{0x80000002};

/// The access that reading asks for.
inline constexpr std::uint32_t KEY_READ = 131097;

/// The platform's numbers. The platform may answer others; every one but Success is a failure.
enum class RegistryResult : std::int32_t {
    Success = 0,
    NotFound = 2,
    AccessDenied = 5,
    InvalidHandle = 6,
    MoreData = 234,
    NoMoreItems = 259
};

/// Kinds of values, by the platform's numbers. Files may name others.
enum RegistryValueType : std::uint32_t {
    REG_NONE = 0,
    REG_SZ = 1,
    REG_EXPAND_SZ = 2,
    REG_BINARY = 3,
    REG_DWORD = 4,
    REG_MULTI_SZ = 7,
    REG_QWORD = 11
};

/// The operations of the registry that the product needs. Names of keys and values match ignoring case; a path is
/// separated by backslashes. The data of text kinds is UTF-16, low byte first, on every platform, and may lack its
/// terminator. Any thread. Nothing throws but a failed allocation.
class LUMORA_HOST_API Registry {
public:
    virtual ~Registry() = default;

    /// Opens a key below an open one; a null or empty `subkey` opens `key` itself once more. `opened` is written on
    /// success only and is closed by RegCloseKey().
    virtual RegistryResult RegOpenKeyExW(HKEY key, const wchar_t* subkey, std::uint32_t options, std::uint32_t access,
                                         HKEY& opened) = 0;
    /// The number of keys directly below.
    virtual RegistryResult RegQueryInfoKeyW(HKEY key, std::uint32_t& subkeys) = 0;
    /// The name of the subkey of that index, terminated; `nameLength` is without the terminator. MoreData when it does
    /// not fit, NoMoreItems behind the last one.
    virtual RegistryResult RegEnumKeyExW(HKEY key, std::uint32_t index, std::span<wchar_t> name,
                                         std::uint32_t& nameLength) = 0;
    /// Name, kind and data of the value of that index; the default value has the empty name. MoreData when the name
    /// with its terminator, or the data, does not fit.
    virtual RegistryResult RegEnumValueW(HKEY key, std::uint32_t index, std::span<wchar_t> name,
                                         std::uint32_t& nameLength, std::uint32_t& type, std::span<std::uint8_t> data,
                                         std::uint32_t& dataLength) = 0;
    /// Deletes a key that has no subkeys, with its values. NotFound when it is absent, AccessDenied when it has subkeys
    /// or may not go.
    virtual RegistryResult RegDeleteKeyW(HKEY key, const wchar_t* subkey) = 0;
    /// The data of one value, text kinds as narrow text; a null name is the default value. `dataLength` is the number
    /// of bytes, the terminator included if the value has one.
    virtual RegistryResult RegQueryValueExA(HKEY key, const char* name, std::uint32_t& type, std::span<char> data,
                                            std::uint32_t& dataLength) = 0;
    /// InvalidHandle for the null key and for one that is not open. Closing a root succeeds and does nothing.
    virtual RegistryResult RegCloseKey(HKEY key) = 0;
};

/// The registry of this process, made for the platform at the first question. Hold it for as long as its handles.
LUMORA_HOST_API std::shared_ptr<Registry> getRegistry();

/// Replaces it, for an embedding program or a test; null goes back to the platform's. Stores that were read before keep
/// what they read.
LUMORA_HOST_API void overrideRegistry(std::shared_ptr<Registry> registry);

} // namespace zel::registry
