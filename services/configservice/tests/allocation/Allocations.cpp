#include "Allocations.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace configservice_test {

namespace {

struct Shortage {
    std::size_t remaining = 0; ///< 0 while none is to come.
    bool hasFailed = false;
};

// Keeping the content may itself allocate: so it goes where there is room.
constexpr std::size_t room = 256;

struct Watch {
    const void* block = nullptr;
    std::size_t length = 0;
    bool isFreed = false;
    wchar_t content[room] = {};
};

thread_local Shortage shortage;
thread_local Watch watch;

bool isShort() noexcept {
    if (shortage.remaining == 0 || --shortage.remaining != 0) {
        return false;
    }
    shortage.hasFailed = true;
    return true;
}

void* allocate(std::size_t size) {
    auto* const block = isShort() ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

void release(void* block) noexcept {
    if (block != nullptr && block == watch.block) {
        std::copy_n(static_cast<const wchar_t*>(block), watch.length, watch.content);
        watch.isFreed = true;
        watch.block = nullptr;
    }
    std::free(block);
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

FreedText::FreedText(const std::wstring& text) noexcept {
    watch = {};
    watch.block = text.data();
    watch.length = std::min(text.size(), room);
}

FreedText::~FreedText() {
    watch = {};
}

std::optional<std::wstring> FreedText::getContent() const {
    return watch.isFreed ? std::optional(std::wstring(watch.content, watch.length)) : std::nullopt;
}

} // namespace configservice_test

// The other forms of these operators call them.

void* operator new(std::size_t size) {
    return configservice_test::allocate(size);
}

void operator delete(void* block) noexcept {
    configservice_test::release(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept {
    configservice_test::release(block);
}
