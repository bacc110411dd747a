#include "secure/CipherKey.h"

#include "TemporaryProfile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <new>
#include <set>
#include <string>

namespace {

using zel::CipherKey;

TEST(CipherKey, IsTheSameEachTimeAndNotTrivial) {
    const CipherKey a;
    const CipherKey b;
    EXPECT_TRUE(std::equal(a.data(), a.data() + CipherKey::length, b.data()));
    EXPECT_GT(std::set<unsigned char>(a.data(), a.data() + CipherKey::length).size(), 16U);
}

TEST(CipherKey, IsNotStoredInTheFileOfTheProgram) {
    const CipherKey key;
    const std::string program = testing_host::readFile(TEST_PROGRAM);
    ASSERT_FALSE(program.empty());
    // Searches for parts of the key too, because an optimiser may precompute it in chunks.
    for (const std::size_t at : {0U, 8U, 16U, 24U}) {
        EXPECT_EQ(program.find(std::string(reinterpret_cast<const char*>(key.data() + at), 8)), std::string::npos);
    }
}

TEST(CipherKey, IsZeroedWhenItIsDestroyed) {
    alignas(CipherKey) unsigned char place[sizeof(CipherKey)];
    const auto* const key = new (place) CipherKey;
    ASSERT_FALSE(std::all_of(key->data(), key->data() + CipherKey::length, [](unsigned char c) { return c == 0; }));
    key->~CipherKey();
    EXPECT_TRUE(std::all_of(std::begin(place), std::end(place), [](unsigned char c) { return c == 0; }));
}

} // namespace
