#pragma once

#include <ConfigRecordObserver.h>
#include <ConfigServiceExport.h>
#include <ConfigValue.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace ZelUnified {

/// Reads and observes the records of the configuration service without creating any, for services that inspect it. The
/// configuration service implements it beside ConfigService: obtain it by std::dynamic_pointer_cast. Services
/// dispatcher's thread; on another thread a call throws UpdateAccessError.
class LUMORA_CONFIG_API ConfigRecords {
public:
    virtual ~ConfigRecords() = default;

    /// Returns the record of the key, looked up under its new name first, or null if there is none. Unlike
    /// ConfigService::getConfig() it changes nothing.
    virtual std::shared_ptr<ConfigValue> findRecord(const std::wstring& key) = 0;
    /// Returns up to `count` records in key order, beginning after `key`; an empty key begins with the first record.
    /// Fewer than `count` records mean that there are no more.
    virtual std::vector<std::shared_ptr<ConfigValue>> getRecordsAfter(const std::wstring& key, std::size_t count) = 0;
    /// Calls the observer for each change of any record until it is removed. The service holds a weak reference.
    virtual void addRecordObserver(std::weak_ptr<ConfigRecordObserver> observer) = 0;
    virtual void removeRecordObserver(std::weak_ptr<ConfigRecordObserver> observer) = 0;
};

} // namespace ZelUnified
