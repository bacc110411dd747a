#include "Allocations.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <new>
#include <string_view>

namespace configservice_test {

namespace {

struct Shortage {
    std::size_t remaining = 0; ///< 0 if no failure is pending.
    bool hasFailed = false;
};

// A fixed buffer: storing the content must not allocate.
constexpr std::size_t room = 256;

struct Watch {
    const wchar_t* text = nullptr;
    std::size_t length = 0;
    bool isFreed = false;
    wchar_t content[room] = {};
};

struct Search {
    std::string_view bytes;
    std::size_t count = 0;
};

/// Precedes each block.
struct alignas(std::max_align_t) Head {
    std::size_t size;
};

thread_local Shortage shortage;
thread_local Watch watch;
thread_local Search search;

bool isShort() noexcept {
    if (shortage.remaining == 0 || --shortage.remaining != 0) {
        return false;
    }
    shortage.hasFailed = true;
    return true;
}

void* allocate(std::size_t size) {
    auto* const head = isShort() ? nullptr : static_cast<Head*>(std::malloc(sizeof(Head) + size));
    if (head == nullptr) {
        throw std::bad_alloc();
    }
    head->size = size;
    return head + 1;
}

bool isIn(const void* place, const void* block, std::size_t size) noexcept {
    const auto* const begin = static_cast<const std::byte*>(block);
    return !std::less<>()(place, begin) && std::less<>()(place, begin + size);
}

bool holds(const void* block, std::size_t size, std::string_view bytes) noexcept {
    return std::string_view(static_cast<const char*>(block), size).find(bytes) != std::string_view::npos;
}

void release(void* block) noexcept {
    if (block == nullptr) {
        return;
    }
    auto* const head = static_cast<Head*>(block) - 1;
    if (watch.text != nullptr && isIn(watch.text, block, head->size)) {
        std::copy_n(watch.text, watch.length, watch.content);
        watch.isFreed = true;
        watch.text = nullptr;
    }
    if (!search.bytes.empty() && holds(block, head->size, search.bytes)) {
        ++search.count;
    }
    std::free(head);
}

} // namespace

FailingAllocation::FailingAllocation(std::size_t number) noexcept {
    shortage = {number, false};
}

FailingAllocation::~FailingAllocation() {
    shortage = {};
}

bool FailingAllocation::hasFailed() const noexcept {
    return shortage.hasFailed;
}

FreedText::FreedText(std::wstring_view text) noexcept {
    watch = {};
    watch.text = text.data();
    watch.length = std::min(text.size(), room);
}

FreedText::~FreedText() {
    watch = {};
}

std::optional<std::wstring> FreedText::getContent() const {
    return watch.isFreed ? std::optional(std::wstring(watch.content, watch.length)) : std::nullopt;
}

BlocksFreedWith::BlocksFreedWith(std::wstring_view text) noexcept
    : BlocksFreedWith(std::string_view(reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t))) {}

BlocksFreedWith::BlocksFreedWith(std::string_view text) noexcept {
    search = {text, 0};
}

BlocksFreedWith::~BlocksFreedWith() {
    search = {};
}

std::size_t BlocksFreedWith::getCount() const noexcept {
    return search.count;
}

} // namespace configservice_test

// The other forms of these operators call them by default, but a sanitizer replaces those too. No test needs more than
// the default alignment.

void* operator new(std::size_t size) {
    return configservice_test::allocate(size);
}

void* operator new[](std::size_t size) {
    return configservice_test::allocate(size);
}

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    try {
        return configservice_test::allocate(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void* operator new(std::size_t size, std::align_val_t /*alignment*/) {
    return configservice_test::allocate(size);
}

void operator delete(void* block) noexcept {
    configservice_test::release(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept {
    configservice_test::release(block);
}

void operator delete[](void* block) noexcept {
    configservice_test::release(block);
}

void operator delete[](void* block, std::size_t /*size*/) noexcept {
    configservice_test::release(block);
}

void operator delete(void* block, std::align_val_t /*alignment*/) noexcept {
    configservice_test::release(block);
}

void operator delete(void* block, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept {
    configservice_test::release(block);
}
