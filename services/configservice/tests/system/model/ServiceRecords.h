#pragma once

#include "Chain.h"
#include "Service.h"

#include <functional>
#include <string>
#include <vector>

namespace config_model {

/// The model of the records, updated by the chain's announcements.
class ServiceRecords {
public:
    void change(const Change& change, bool fips);
    void fire(const std::wstring& key);
    RecordView get(const std::wstring& key, bool fips);
    void watch(const std::wstring& key) { watchedKeys.push_back(key); }

    struct Record : RecordView {
        /// Changed properties that have not fired yet.
        std::vector<std::string> pending;
    };
    const std::vector<Record>& getRecords() const { return records; }

    std::function<void(const std::wstring& key, const std::string& property)> fired;

private:
    Record& find(const std::wstring& key);
    Record* findExactly(const std::wstring& key);
    static std::wstring valueOf(const Record& record, bool fips);
    static void note(Record& record, const std::string& property);

    std::vector<Record> records;
    std::vector<std::wstring> watchedKeys;
};

} // namespace config_model
