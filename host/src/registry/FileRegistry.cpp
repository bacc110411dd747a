#include "FileRegistry.h"

#include <kyr/LockGuard.h>
#include <zel/ZelLog.h>

#include <algorithm>
#include <utility>

namespace zel::registry {

namespace {

ZelLogger& fileRegistryLogger = ZelLogger_getLogger("Host-Registry");

constexpr std::wstring_view mailClients = L"SOFTWARE\\Clients\\Mail";

// A file that is no policy file at all must not fill the log.
constexpr std::size_t loggedRefusals = 50;

void warn(const std::string& text) {
    ZelLog(fileRegistryLogger, ZelLogLevel::Warning, ZEL_HERE, "Registry file " + text);
}

void logRefusals(const std::string& path, const std::vector<RegistryTextRefusal>& refusals) {
    const auto logged = std::min(refusals.size(), loggedRefusals);
    for (std::size_t i = 0; i < logged; ++i) {
        warn(path + ":" + std::to_string(refusals[i].line) + ": refused: " + refusals[i].reason);
    }
    if (logged < refusals.size()) {
        warn(path + ": " + std::to_string(refusals.size() - logged) + " further lines are refused");
    }
}

/// Returns the accepted sections. Logs each rejected line.
std::vector<RegistryTextSection> readSections(const std::string& path, HKEY root) {
    const auto bytes = readRegistryFile(path);
    if (!bytes) {
        warn(path + ": the file can't be read");
        return {};
    }
    auto text = parseRegistryText(*bytes, root);
    logRefusals(path, text.refusals);
    return std::move(text.sections);
}

} // namespace

FileRegistry::FileRegistry(RegistryFolders registryFolders, DefaultMailClient mailClient,
                           zel::storage::FileLayer* files)
    : folders(std::move(registryFolders)), defaultMailClient(std::move(mailClient)), fileLayer(files) {}

FileRegistry::Sources FileRegistry::findSources() const {
    Sources sources;
    sources.currentUser = listAdministratorFiles(folders.administrator, HKEY_CURRENT_USER);
    sources.localMachine = listAdministratorFiles(folders.administrator, HKEY_LOCAL_MACHINE);
    const auto user = folders.user.empty() ? getUserRegistryFolder() : folders.user;
    if (folders.readsUserFiles && !user.empty()) {
        sources.user = listRegistryFiles(user);
    }
    if (defaultMailClient) {
        sources.userMailClient = defaultMailClient(HKEY_CURRENT_USER);
        sources.machineMailClient = defaultMailClient(HKEY_LOCAL_MACHINE);
    }
    return sources;
}

/// Reads the files again if one has changed, unless a key is open: its owner must see one state of the tree.
void FileRegistry::refresh() {
    if (hive.getOpenKeyCount() > 0) {
        return;
    }
    const auto sources = findSources();
    if (loaded != sources) {
        load(sources);
    }
}

void FileRegistry::load(const Sources& sources) {
    auto administratorTree = std::make_unique<RegistryTree>();
    auto whole = std::make_unique<RegistryTree>();
    const auto apply = [&](const std::vector<RegistryFile>& files, HKEY root, bool fromAdministrator) {
        for (const auto& file : files) {
            const auto sections = readSections(file.path, root);
            whole->apply(sections);
            if (fromAdministrator) {
                administratorTree->apply(sections);
            }
        }
    };
    apply(sources.currentUser, HKEY_CURRENT_USER, true);
    apply(sources.localMachine, HKEY_LOCAL_MACHINE, true);
    apply(sources.user, HKEY_CURRENT_USER, false);
    const auto complete = [&](HKEY root, const std::wstring& client) {
        if (!client.empty() && !whole->find(root, mailClients)) {
            whole->make(root, mailClients)->setValue(makeTextValue({}, client));
            administratorTree->make(root, mailClients);
        }
    };
    complete(HKEY_CURRENT_USER, sources.userMailClient);
    complete(HKEY_LOCAL_MACHINE, sources.machineMailClient);
    administrator = std::move(administratorTree);
    hive.replaceTree(std::move(whole));
    loaded = sources;
}

RegistryResult FileRegistry::RegOpenKeyExW(HKEY key, const wchar_t* subkey, std::uint32_t options, std::uint32_t access,
                                           HKEY& opened) {
    const KyrCoreUtils::LockGuard lock(mutex);
    refresh();
    return hive.RegOpenKeyExW(key, subkey, options, access, opened);
}

RegistryResult FileRegistry::RegDeleteKeyW(HKEY key, const wchar_t* subkey) {
    const KyrCoreUtils::LockGuard lock(mutex);
    refresh();
    const auto place = hive.getPlace(key, subkey == nullptr ? std::wstring_view() : subkey);
    if (!place) {
        return RegistryResult::InvalidHandle;
    }
    if (!hive.hasKey(place->root, place->path)) {
        return RegistryResult::NotFound;
    }
    if (place->path.empty() || place->root != HKEY_CURRENT_USER) {
        return RegistryResult::AccessDenied;
    }
    if (administrator->find(place->root, place->path)) {
        const auto isAtOrBelow = [&](const auto& section) { return isKeyAtOrBelow(section.path, place->path); };
        if (writePostponed() && dropFromUserFiles(isAtOrBelow) != Dropped::Nothing) {
            load(findSources());
        }
        return RegistryResult::AccessDenied;
    }
    if (hive.hasSubkeys(place->root, place->path)) {
        expectDeletionsBelow(place->path);
        return RegistryResult::AccessDenied;
    }
    postponed.insert(place->path);
    if (!isPartOfRecursiveDeletion(place->path) && !writePostponed()) {
        return RegistryResult::AccessDenied;
    }
    return hive.RegDeleteKeyW(key, subkey);
}

/// A recursive deletion first tries to delete the key itself, then opens it and deletes its subkeys.
void FileRegistry::expectDeletionsBelow(const std::wstring& path) {
    if (postponed.empty() && !isPartOfRecursiveDeletion(path)) {
        recursiveDeletion = {path, std::this_thread::get_id()};
    }
}

/// Requires an open key: otherwise no later call would write the files.
bool FileRegistry::isPartOfRecursiveDeletion(const std::wstring& path) const {
    return recursiveDeletion && recursiveDeletion->thread == std::this_thread::get_id() && hive.getOpenKeyCount() > 0 &&
           isKeyAtOrBelow(path, recursiveDeletion->path) && !isSameKey(path, recursiveDeletion->path);
}

bool FileRegistry::writePostponed() {
    recursiveDeletion.reset();
    const auto keys = std::exchange(postponed, {});
    if (keys.empty()) {
        return true;
    }
    if (dropFromUserFiles([&](const auto& section) { return keys.contains(section.path); }) != Dropped::Failed) {
        return true;
    }
    load(findSources());
    return false;
}

FileRegistry::Dropped FileRegistry::dropFromUserFiles(const SectionFilter& isDropped) {
    auto outcome = Dropped::Nothing;
    for (auto& file : loaded->user) {
        const auto dropped = dropFromFile(file, isDropped);
        if (dropped == Dropped::Failed) {
            return dropped;
        }
        if (dropped == Dropped::Something) {
            outcome = dropped;
        }
    }
    return outcome;
}

FileRegistry::Dropped FileRegistry::dropFromFile(RegistryFile& file, const SectionFilter& isDropped) {
    const auto bytes = readRegistryFile(file.path);
    if (!bytes) {
        return Dropped::Failed;
    }
    auto sections = parseRegistryText(*bytes, HKEY_CURRENT_USER).sections;
    std::erase_if(sections, std::not_fn(isDropped));
    if (sections.empty()) {
        return Dropped::Nothing;
    }
    auto& layer = fileLayer != nullptr ? *fileLayer : zel::storage::FileLayer::platform();
    if (replaceRegistryFile(layer, file.path, cutRegistryText(*bytes, sections)) != 0) {
        return Dropped::Failed;
    }
    // A change by this class must not cause a reload; the hive already has the new state.
    file = inspectRegistryFile(file.path).value_or(file);
    return Dropped::Something;
}

RegistryResult FileRegistry::RegQueryInfoKeyW(HKEY key, std::uint32_t& subkeys) {
    return hive.RegQueryInfoKeyW(key, subkeys);
}

RegistryResult FileRegistry::RegEnumKeyExW(HKEY key, std::uint32_t index, std::span<wchar_t> name,
                                           std::uint32_t& nameLength) {
    return hive.RegEnumKeyExW(key, index, name, nameLength);
}

RegistryResult FileRegistry::RegEnumValueW(HKEY key, std::uint32_t index, std::span<wchar_t> name,
                                           std::uint32_t& nameLength, std::uint32_t& type, std::span<std::uint8_t> data,
                                           std::uint32_t& dataLength) {
    return hive.RegEnumValueW(key, index, name, nameLength, type, data, dataLength);
}

RegistryResult FileRegistry::RegQueryValueExA(HKEY key, const char* name, std::uint32_t& type, std::span<char> data,
                                              std::uint32_t& dataLength) {
    return hive.RegQueryValueExA(key, name, type, data, dataLength);
}

RegistryResult FileRegistry::RegCloseKey(HKEY key) {
    const KyrCoreUtils::LockGuard lock(mutex);
    const auto result = hive.RegCloseKey(key);
    if (hive.getOpenKeyCount() > 0) {
        return result;
    }
    return writePostponed() ? result : RegistryResult::AccessDenied;
}

} // namespace zel::registry
