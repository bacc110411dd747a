#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace secure_test {

/// Returns the block of that size that new[] gave this thread last.
const void* lastBlockOfSize(std::size_t size);

/// Waits for one block of new[] to be freed and keeps what it holds at that moment. One at a time; this thread.
class FreedBlock {
public:
    FreedBlock(const void* block, std::size_t size);
    ~FreedBlock();
    FreedBlock(const FreedBlock&) = delete;
    FreedBlock& operator=(const FreedBlock&) = delete;

    /// nullopt while the block lives.
    std::optional<std::string> getContent() const;
};

} // namespace secure_test
