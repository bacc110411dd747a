#include "InMemoryFileLayer.h"

#include "PathParts.h"

#include <kyr/LockGuard.h>
#include <kyr/Paths.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

namespace zel::storage {

namespace fs = std::filesystem;

using KyrCoreUtils::toPath;

namespace {

struct OfProcess {
    KyrCoreUtils::AnnotatedMutex<> mutex;
    std::shared_ptr<InMemoryFileLayer> layer LUMORA_GUARDED_BY(mutex);
};

OfProcess& layerOfProcess() {
    static OfProcess current;
    return current;
}

/// Runs `operation` and converts an exception, which can only be a failed allocation, to an errno value.
template <typename Operation>
int asErrorCode(Operation operation) noexcept {
    try {
        return operation();
    } catch (...) {
        return ENOMEM;
    }
}

} // namespace

std::shared_ptr<InMemoryFileLayer> InMemoryFileLayer::getActive() {
    auto& current = layerOfProcess();
    const KyrCoreUtils::LockGuard lock(current.mutex);
    return current.layer;
}

void InMemoryFileLayer::setActive(std::shared_ptr<InMemoryFileLayer> layer) {
    auto& current = layerOfProcess();
    const KyrCoreUtils::LockGuard lock(current.mutex);
    current.layer.swap(layer);
}

bool InMemoryFileLayer::exists(const std::string& path) const {
    const std::string spelled = spellPath(path);
    const KyrCoreUtils::LockGuard lock(mutex);
    const auto node = find(spelled);
    std::error_code ignored;
    return node && (node->onDisk.empty() || fs::exists(toPath(node->onDisk), ignored));
}

bool InMemoryFileLayer::isChanged(const std::string& path) const {
    const std::string spelled = spellPath(path);
    const KyrCoreUtils::LockGuard lock(mutex);
    return changes.contains(spelled);
}

int InMemoryFileLayer::createFile(const std::string& path, Handle& handle) {
    return asErrorCode([&]() {
        const std::string spelled = spellPath(path);
        const KyrCoreUtils::LockGuard lock(mutex);
        if (find(spelled)) {
            return EEXIST;
        }
        if (!hasParent(spelled)) {
            return ENOENT;
        }
        auto content = std::make_shared<WipedText>();
        changes[spelled] = Node{FileKind::Regular, content, {}};
        handle = add({std::nullopt, content});
        return 0;
    });
}

int InMemoryFileLayer::openForReading(const std::string& path, Handle& handle, FileKind& kind, std::uint64_t& size) {
    return asErrorCode([&]() {
        const std::string spelled = spellPath(path);
        const KyrCoreUtils::LockGuard lock(mutex);
        const auto change = changes.find(spelled);
        if (change == changes.end()) {
            return openOnDisk(path, handle, kind, size);
        }
        if (!change->second) {
            return ENOENT;
        }
        const Node& node = *change->second;
        if (!node.onDisk.empty()) {
            return openOnDisk(node.onDisk, handle, kind, size);
        }
        kind = node.kind;
        size = node.content ? node.content->text.size() : 0;
        handle = add({std::nullopt, node.content});
        return 0;
    });
}

int InMemoryFileLayer::read(Handle handle, char* buffer, std::size_t room, std::size_t& count) {
    const KyrCoreUtils::LockGuard lock(mutex);
    count = 0;
    const auto found = openFiles.find(handle);
    if (found == openFiles.end()) {
        return EBADF;
    }
    OpenFile& file = found->second;
    if (file.onDisk) {
        return disk.read(*file.onDisk, buffer, room, count);
    }
    if (!file.content) {
        return EISDIR;
    }
    count = file.content->text.copy(buffer, room, std::min(file.position, file.content->text.size()));
    file.position += count;
    return 0;
}

int InMemoryFileLayer::write(Handle handle, std::string_view bytes, std::size_t& count) {
    return asErrorCode([&]() {
        const KyrCoreUtils::LockGuard lock(mutex);
        count = 0;
        const auto found = openFiles.find(handle);
        if (found == openFiles.end() || !found->second.content) {
            return EBADF;
        }
        std::string& text = found->second.content->text;
        WipedText grown; // growing the text in place would free the old bytes without wiping them
        grown.text.reserve(text.size() + bytes.size());
        grown.text.append(text).append(bytes);
        grown.text.swap(text);
        count = bytes.size();
        return 0;
    });
}

int InMemoryFileLayer::sync(Handle /*handle*/) {
    return 0;
}

int InMemoryFileLayer::close(Handle handle) {
    const KyrCoreUtils::LockGuard lock(mutex);
    const auto closed = openFiles.extract(handle);
    if (closed.empty()) {
        return EBADF;
    }
    return closed.mapped().onDisk ? disk.close(*closed.mapped().onDisk) : 0;
}

int InMemoryFileLayer::rename(const std::string& from, const std::string& to) {
    return asErrorCode([&]() {
        const std::string source = spellPath(from);
        const std::string target = spellPath(to);
        const KyrCoreUtils::LockGuard lock(mutex);
        Node moved;
        if (const int error = findForMove(source, moved); error != 0) {
            return error;
        }
        if (!hasParent(target)) {
            return ENOENT;
        }
        const auto replaced = find(target);
        if (replaced && replaced->kind == FileKind::Directory) {
            return EISDIR;
        }
        if (replaced == moved) {
            return 0;
        }
        changes[source] = std::nullopt;
        changes[target] = std::move(moved);
        return 0;
    });
}

int InMemoryFileLayer::link(const std::string& existing, const std::string& name) {
    return asErrorCode([&]() {
        const std::string source = spellPath(existing);
        const std::string target = spellPath(name);
        const KyrCoreUtils::LockGuard lock(mutex);
        Node linked;
        if (const int error = findForMove(source, linked); error != 0) {
            return error;
        }
        if (find(target)) {
            return EEXIST;
        }
        if (!hasParent(target)) {
            return ENOENT;
        }
        changes[target] = std::move(linked);
        return 0;
    });
}

int InMemoryFileLayer::unlink(const std::string& path) {
    return asErrorCode([&]() {
        const std::string spelled = spellPath(path);
        const KyrCoreUtils::LockGuard lock(mutex);
        Node removed;
        const int error = findForMove(spelled, removed);
        if (error == 0) {
            changes[spelled] = std::nullopt;
        }
        return error;
    });
}

int InMemoryFileLayer::createDirectory(const std::string& path) {
    return asErrorCode([&]() {
        const std::string spelled = spellPath(path);
        const KyrCoreUtils::LockGuard lock(mutex);
        if (const auto node = find(spelled)) {
            std::error_code ignored;
            const bool isDirectory = node->kind == FileKind::Directory ||
                                     (!node->onDisk.empty() && fs::is_directory(toPath(node->onDisk), ignored));
            return isDirectory ? 0 : EEXIST;
        }
        if (!hasParent(spelled)) {
            return ENOENT;
        }
        changes[spelled] = Node{FileKind::Directory, nullptr, {}};
        return 0;
    });
}

int InMemoryFileLayer::syncDirectory(const std::string& /*path*/) {
    return 0;
}

int InMemoryFileLayer::lockDirectory(const std::string& path, std::chrono::milliseconds /*timeout*/, Handle& handle) {
    return asErrorCode([&]() {
        const std::string spelled = spellPath(path);
        const KyrCoreUtils::LockGuard lock(mutex);
        if (!find(spelled)) {
            return ENOENT;
        }
        handle = add({});
        return 0;
    });
}

/// Returns the file or directory at the path, without following a link; nullopt if there is none.
std::optional<InMemoryFileLayer::Node> InMemoryFileLayer::find(const std::string& spelled) const {
    if (const auto change = changes.find(spelled); change != changes.end()) {
        return change->second;
    }
    std::error_code ignored;
    const auto status = fs::symlink_status(toPath(spelled), ignored);
    if (!fs::exists(status)) {
        return std::nullopt;
    }
    const bool isDirectory = fs::is_directory(status);
    return isDirectory ? Node{FileKind::Directory, nullptr, spelled} : Node{FileKind::Regular, nullptr, spelled};
}

/// Sets `node` to the file at the path. Returns ENOENT if there is none, EISDIR if it is a directory.
int InMemoryFileLayer::findForMove(const std::string& spelled, Node& node) const {
    auto found = find(spelled);
    if (!found) {
        return ENOENT;
    }
    if (found->kind == FileKind::Directory) {
        return EISDIR;
    }
    node = std::move(*found);
    return 0;
}

bool InMemoryFileLayer::hasParent(const std::string& spelled) const {
    const auto parent = find(KyrCoreUtils::toText(toPath(spelled).parent_path()));
    return parent && parent->kind == FileKind::Directory;
}

int InMemoryFileLayer::openOnDisk(const std::string& path, Handle& handle, FileKind& kind, std::uint64_t& size) {
    Handle opened = -1;
    const int error = disk.openForReading(path, opened, kind, size);
    if (error == 0) {
        handle = add({opened, nullptr});
    }
    return error;
}

FileLayer::Handle InMemoryFileLayer::add(OpenFile file) {
    openFiles.emplace(++lastHandle, std::move(file));
    return lastHandle;
}

} // namespace zel::storage
