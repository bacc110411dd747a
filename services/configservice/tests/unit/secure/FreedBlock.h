#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace secure_test {

/// Returns the last block of that size that new[] returned to this thread.
const void* lastBlockOfSize(std::size_t size);

/// Records the content of one block of new[] at the moment it is freed. Only one object at a time, on this thread.
class FreedBlock {
public:
    FreedBlock(const void* block, std::size_t size);
    ~FreedBlock();
    FreedBlock(const FreedBlock&) = delete;
    FreedBlock& operator=(const FreedBlock&) = delete;

    /// Returns nullopt while the block is allocated.
    std::optional<std::string> getContent() const;
};

} // namespace secure_test
