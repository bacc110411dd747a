#include "zel/ProfileDirectoryLock.h"

#include "AccessRights.h"
#include "SystemError.h"
#include "SystemHandle.h"
#include "kyr/HexDigits.h"
#include "kyr/PathText.h"
#include "kyr/PlatformFiles.h"

#include <kyr/FileUtils.h>
#include <kyr/StringUtils.h>

#include <openssl/sha.h>

#include <array>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <string_view>

namespace zel::platform {

namespace {

constexpr DWORD sharedWithAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// Returns the same spelling of an existing directory in all processes: the system's own, without links and with the
/// case of the disk. Returns "" and sets the error of the thread if it is none.
std::wstring finalPath(const std::filesystem::path& directory) {
    const SystemHandle opened(::CreateFileW(directory.c_str(), 0, sharedWithAll, nullptr, OPEN_EXISTING,
                                            FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    BY_HANDLE_FILE_INFORMATION information{};
    if (!opened || !::GetFileInformationByHandle(opened.get(), &information)) {
        return {};
    }
    if ((information.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
        ::SetLastError(ERROR_DIRECTORY);
        return {};
    }
    std::wstring text(32768, L'\0');
    const DWORD length =
        ::GetFinalPathNameByHandleW(opened.get(), text.data(), static_cast<DWORD>(text.size()), VOLUME_NAME_DOS);
    if (length == 0 || length > text.size()) {
        return {};
    }
    text.resize(length);
    return KyrCoreUtils::toLowercase(text); // the names of the system differ only in more than their case
}

/// Uses a digest because a path may be longer than a name of the system.
std::string digestOf(const std::wstring& path) {
    const std::string text = KyrCoreUtils::toString(path);
    std::array<unsigned char, SHA256_DIGEST_LENGTH> digest{};
    SHA256(reinterpret_cast<const unsigned char*>(text.data()), text.size(), digest.data());
    std::string name;
    for (std::size_t i = 0; i < digest.size() / 2; ++i) {
        KyrCoreUtils::appendHex(name, digest[i]);
    }
    return name;
}

/// Records in the state folder which process holds a lock. The record is for users only; every failure is ignored.
class HolderFile {
public:
    HolderFile(const std::string& stateDirectory, const std::string& digest)
        : directory(stateDirectory),
          file(KyrCoreUtils::pathFromText(stateDirectory + "/profile-" + digest + ".lock")
                   .value_or(std::filesystem::path())) {}

    void write(std::string_view content) const {
        KyrCoreUtils::FileUtils::createDirectory(directory);
        KyrCoreUtils::platform::makePrivateFile(file);
        std::ofstream(file, std::ios::binary | std::ios::trunc) << content;
    }

    /// Returns the id of the holder; 0 if it is unknown or belongs to a process that has ended.
    long read() const {
        std::ifstream stream(file, std::ios::binary);
        std::string content;
        std::getline(stream, content);
        unsigned long number = 0;
        std::from_chars(content.data(), content.data() + content.size(), number);
        return number != 0 && isAlive(number) ? static_cast<long>(number) : 0;
    }

private:
    static bool isAlive(DWORD process) {
        const SystemHandle opened(::OpenProcess(SYNCHRONIZE, FALSE, process));
        return opened ? ::WaitForSingleObject(opened.get(), 0) == WAIT_TIMEOUT
                      : ::GetLastError() == ERROR_ACCESS_DENIED;
    }

    const std::string directory;
    const std::filesystem::path file;
};

std::wstring lockName(const std::string& digest) {
    return L"Global\\LumoraProfile-" + KyrCoreUtils::toWideString(digest);
}

/// Creates the named mutex that represents the lock. Its existence is the lock: it disappears with the handle, and so
/// with the process. Returns nothing and sets `error` to ERROR_ALREADY_EXISTS if another holder has it.
SystemHandle createLock(const std::string& digest, DWORD& error) {
    SystemHandle lock(
        ::CreateMutexW(AccessRights::forCreation(AccessRights::Kind::File), FALSE, lockName(digest).c_str()));
    error = ::GetLastError();
    return lock && error == ERROR_ALREADY_EXISTS ? SystemHandle() : std::move(lock);
}

/// The named mutex that represents the lock.
class LockedDirectory final : public ProfileDirectoryLock {
public:
    LockedDirectory(const std::string& configDirectory, const std::string& stateDirectory)
        : ProfileDirectoryLock(configDirectory),
          created(KyrCoreUtils::FileUtils::createDirectory(configDirectory)),
          settled(created == 0 ? finalPath(KyrCoreUtils::pathFromText(configDirectory).value_or("")) : std::wstring()),
          openError(settled.empty() ? lastErrno() : 0),
          digest(digestOf(settled)),
          holderFile(stateDirectory, digest) {
        if (created != 0 || openError != 0) {
            recordOpenFailure(created != 0 ? created : openError);
            return;
        }
        DWORD error = 0;
        lock = createLock(digest, error);
        if (lock) {
            recordSuccess();
            holderFile.write(std::to_string(::GetCurrentProcessId()) + "\n");
            return;
        }
        if (error != ERROR_ALREADY_EXISTS) {
            recordLockFailure(errnoOf(error));
            return;
        }
        recordUse(holderFile.read());
    }

    ~LockedDirectory() override {
        if (isHeld()) {
            holderFile.write(""); // the next process that fails to lock must not report this one
        }
    }

    LockedDirectory(const LockedDirectory&) = delete;
    LockedDirectory& operator=(const LockedDirectory&) = delete;

private:
    const int created;
    const std::wstring settled;
    const int openError;
    const std::string digest;
    const HolderFile holderFile;
    SystemHandle lock;
};

} // namespace

std::unique_ptr<ProfileDirectoryLock> ProfileDirectoryLock::acquire(const std::string& configDirectory,
                                                                    const std::string& stateDirectory) {
    return std::make_unique<LockedDirectory>(configDirectory, stateDirectory);
}

ProfileDirectoryLock::Problem ProfileDirectoryLock::findProblem(const std::string& configDirectory,
                                                                const std::string& stateDirectory) {
    const auto settled = finalPath(KyrCoreUtils::pathFromText(configDirectory).value_or(""));
    if (settled.empty()) {
        const int error = lastErrno();
        return error == ENOENT ? Problem() : makeOpenFailure(configDirectory, error);
    }
    const auto digest = digestOf(settled);
    const SystemHandle lock(::OpenMutexW(SYNCHRONIZE, FALSE, lockName(digest).c_str()));
    return lock ? makeUse(configDirectory, HolderFile(stateDirectory, digest).read()) : Problem();
}

} // namespace zel::platform
