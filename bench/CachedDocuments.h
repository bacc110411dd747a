#pragma once

#include "Workload.h"

#include <unified/UnifiedFactory.h>

#include <CacheConfigStore.h>
#include <TemporaryProfile.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace bench {

/// The protected documents that an earlier run left in a profile: one cached copy for each of eight layers.
class CachedDocuments {
public:
    /// Writes the copies. Several objects may use the same profile, which must outlive them, if they differ in `keys`.
    CachedDocuments(const testing_host::TemporaryProfile& ownerProfile, std::size_t keys);

    using Stores = std::vector<std::unique_ptr<ZelUnified::CacheConfigStore>>;

    /// Reads all copies.
    Stores load() const;
    /// Makes the next service start on these copies.
    void select() const;

    const Workload& getWorkload() const { return workload; }

private:
    void check() const;
    std::string nameOf(std::size_t number) const;
    std::string pathOf(std::size_t number) const;

    const testing_host::TemporaryProfile& profile;
    const std::size_t keysInLayer;
    const Workload workload;
};

/// The whole service, constructed on the existing profile.
class StartedService {
public:
    StartedService();
    ~StartedService();
    StartedService(const StartedService&) = delete;
    StartedService& operator=(const StartedService&) = delete;

    std::wstring read(const std::wstring& key) const;

private:
    const std::shared_ptr<ZelUnified::UnifiedFactory> factory;
};

} // namespace bench
