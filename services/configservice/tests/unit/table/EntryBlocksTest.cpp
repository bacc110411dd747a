#include "table/EntryBlocks.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

namespace ZelUnified {
namespace {

TEST(EntryBlocks, GiveEachItsOwnAlignedMemory) {
    EntryBlocks blocks{};
    std::vector<std::pair<unsigned char*, std::size_t>> given;
    for (std::size_t i = 0; i < 2000; ++i) {
        const std::size_t bytes = i % 100 == 99 ? 50'000 : 1 + i * 7 % 300;
        auto* const memory = static_cast<unsigned char*>(blocks.allocate(bytes));
        ASSERT_EQ(reinterpret_cast<std::uintptr_t>(memory) % alignof(std::max_align_t), 0U) << i;
        std::memset(memory, static_cast<int>(i % 251), bytes);
        given.emplace_back(memory, bytes);
    }
    for (std::size_t i = 0; i < given.size(); ++i) {
        const auto [memory, bytes] = given[i];
        ASSERT_EQ(std::vector<unsigned char>(memory, memory + bytes),
                  std::vector<unsigned char>(bytes, static_cast<unsigned char>(i % 251)))
            << i;
    }
}

} // namespace
} // namespace ZelUnified
