#pragma once

#include "RegistryFolder.h"
#include "RegistryTree.h"

#include <kyr/AnnotatedMutex.h>
#include <registry/RegistryFiles.h>
#include <registry/RegistryHive.h>
#include <registry/RegistryTextFile.h>
#include <zel/FileLayer.h>

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace zel::registry {

/// The registry on a platform that has none: a hive filled from the files of both layers. Acquires its own lock before
/// the hive's.
class FileRegistry final : public Registry {
public:
    /// `files` must outlive the registry; null means the layer of the process at the time of the write.
    FileRegistry(RegistryFolders registryFolders, DefaultMailClient mailClient, zel::storage::FileLayer* files);

    RegistryResult RegOpenKeyExW(HKEY key, const wchar_t* subkey, std::uint32_t options, std::uint32_t access,
                                 HKEY& opened) override;
    RegistryResult RegQueryInfoKeyW(HKEY key, std::uint32_t& subkeys) override;
    RegistryResult RegEnumKeyExW(HKEY key, std::uint32_t index, std::span<wchar_t> name,
                                 std::uint32_t& nameLength) override;
    RegistryResult RegEnumValueW(HKEY key, std::uint32_t index, std::span<wchar_t> name, std::uint32_t& nameLength,
                                 std::uint32_t& type, std::span<std::uint8_t> data, std::uint32_t& dataLength) override;
    RegistryResult RegDeleteKeyW(HKEY key, const wchar_t* subkey) override;
    RegistryResult RegQueryValueExA(HKEY key, const char* name, std::uint32_t& type, std::span<char> data,
                                    std::uint32_t& dataLength) override;
    RegistryResult RegCloseKey(HKEY key) override;

private:
    /// All inputs of the hive. Equal sources produce equal trees.
    struct Sources {
        std::vector<RegistryFile> currentUser;
        std::vector<RegistryFile> localMachine;
        std::vector<RegistryFile> user;
        std::wstring userMailClient;
        std::wstring machineMailClient;

        bool operator==(const Sources&) const = default;
    };

    Sources findSources() const;
    void refresh() LUMORA_REQUIRES(mutex);
    void load(const Sources& sources) LUMORA_REQUIRES(mutex);
    /// The result of removing sections from the user's files.
    enum class Dropped { Nothing, Something, Failed };
    using SectionFilter = std::function<bool(const RegistryTextSection&)>;

    Dropped dropFromUserFiles(const SectionFilter& isDropped) LUMORA_REQUIRES(mutex);
    Dropped dropFromFile(RegistryFile& file, const SectionFilter& isDropped);

    /// A key whose deletion failed because it has subkeys, and the thread that is expected to delete those next.
    struct RecursiveDeletion {
        std::wstring path;
        std::thread::id thread;
    };

    void expectDeletionsBelow(const std::wstring& path) LUMORA_REQUIRES(mutex);
    bool isPartOfRecursiveDeletion(const std::wstring& path) const LUMORA_REQUIRES(mutex);
    /// Rewrites the files without the keys in `postponed`. Returns false on failure and then reads the tree from the
    /// files again, so that it contains the keys that were not deleted.
    bool writePostponed() LUMORA_REQUIRES(mutex);

    const RegistryFolders folders;
    const DefaultMailClient defaultMailClient;
    zel::storage::FileLayer* const fileLayer;
    KyrCoreUtils::AnnotatedMutex<> mutex;
    /// The sources of the hive's current tree; empty before the first load.
    std::optional<Sources> loaded LUMORA_GUARDED_BY(mutex);
    /// The administrator's layer alone: its keys cannot be deleted.
    std::unique_ptr<RegistryTree> administrator LUMORA_GUARDED_BY(mutex);
    RegistryHive hive;
    /// Empty while no key is open.
    std::optional<RecursiveDeletion> recursiveDeletion LUMORA_GUARDED_BY(mutex);
    /// Keys that exist in the user's files but no longer in the hive. Empty while no key is open.
    std::set<std::wstring, RegistryNameOrder> postponed LUMORA_GUARDED_BY(mutex);
};

} // namespace zel::registry
