#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace configservice_test {

/// Makes one allocation of this thread fail during its lifetime: the one with this number, counted from 1. Only one
/// object at a time.
class FailingAllocation {
public:
    explicit FailingAllocation(std::size_t number) noexcept;
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    bool hasFailed() const noexcept;
};

/// Records the content of the heap block of a text at the moment when this thread frees the block. Only one object at a
/// time.
class FreedText {
public:
    explicit FreedText(std::wstring_view text) noexcept;
    ~FreedText();
    FreedText(const FreedText&) = delete;
    FreedText& operator=(const FreedText&) = delete;

    /// Returns as many characters as the text had, or nullopt while the block is allocated.
    std::optional<std::wstring> getContent() const;
};

/// Counts the heap blocks that still contain a text when this thread frees them. Only one object at a time; the text
/// must outlive it.
class BlocksFreedWith {
public:
    explicit BlocksFreedWith(std::wstring_view text) noexcept;
    explicit BlocksFreedWith(std::string_view text) noexcept;
    ~BlocksFreedWith();
    BlocksFreedWith(const BlocksFreedWith&) = delete;
    BlocksFreedWith& operator=(const BlocksFreedWith&) = delete;

    std::size_t getCount() const noexcept;
};

} // namespace configservice_test
