#pragma once

#include <zel/KeyProvider.h>

#include <algorithm>

namespace fuzz {

/// Returns one fixed key, so that the protected files of a corpus stay readable.
class FixedKey final : public zel::storage::KeyProvider {
public:
    zel::storage::KeyResult find(zel::storage::FileCategoryType::FileCategory, zel::storage::MasterKey& key) override {
        fill(key);
        return zel::storage::KeyResult::Found;
    }
    zel::storage::KeyResult findOrMake(zel::storage::FileCategoryType::FileCategory category,
                                       zel::storage::MasterKey& key) override {
        return find(category, key);
    }

    static void fill(zel::storage::MasterKey& key) {
        std::fill_n(key.data(), zel::storage::MasterKey::length, static_cast<unsigned char>(7));
    }
};

} // namespace fuzz
