#pragma once

#include <cstddef>
#include <optional>
#include <string>

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

/// Waits for the heap block of a text to be freed by this thread and keeps what it holds at that moment. One at a time.
class FreedText {
public:
    explicit FreedText(const std::wstring& text) noexcept;
    ~FreedText();
    FreedText(const FreedText&) = delete;
    FreedText& operator=(const FreedText&) = delete;

    /// As long as the text was; nullopt while the block lives.
    std::optional<std::wstring> getContent() const;
};

} // namespace configservice_test
