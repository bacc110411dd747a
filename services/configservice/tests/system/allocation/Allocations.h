#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace configservice_test {

/// While it lives, one allocation of this thread fails: the one with this number, counted from 1. One at a time.
class FailingAllocation {
public:
    explicit FailingAllocation(std::size_t number) noexcept;
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    bool hasFailed() const noexcept;
};

/// Waits for the heap block that a text lies in to be freed by this thread and keeps what the text is at that moment.
/// One at a time.
class FreedText {
public:
    explicit FreedText(std::wstring_view text) noexcept;
    ~FreedText();
    FreedText(const FreedText&) = delete;
    FreedText& operator=(const FreedText&) = delete;

    /// As long as the text was; nullopt while the block lives.
    std::optional<std::wstring> getContent() const;
};

/// Counts the heap blocks that this thread frees while a text still stands in them. One at a time; the text must
/// outlive it.
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
