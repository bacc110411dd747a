#pragma once

#include <zel/EncryptFileUtils.h>
#include <zel/FipsUtils.h>

#include <ConfigMap.h>

#include <string>

namespace xml_test {

/// The machine runs in FIPS mode, or doesn't, while it lives.
class FipsMode {
public:
    explicit FipsMode(bool enabled) { zel::common::FipsUtils::overrideFipsMode(enabled); }
    ~FipsMode() { zel::common::FipsUtils::overrideFipsMode(std::nullopt); }
    FipsMode(const FipsMode&) = delete;
    FipsMode& operator=(const FipsMode&) = delete;
};

bool writeProtected(const std::string& path, const std::string& text,
                    zel::storage::FileCategoryType::FileCategory category = zel::storage::FileCategoryType::UserData);
/// The clear text; "" when the file can't be read.
std::string
readProtected(const std::string& path,
              zel::storage::FileCategoryType::FileCategory category = zel::storage::FileCategoryType::UserData);

/// Counts what libxml2 tries to load besides `expected`, and loads nothing.
class LoadCounter {
public:
    explicit LoadCounter(std::string expected = {});
    ~LoadCounter();
    LoadCounter(const LoadCounter&) = delete;
    LoadCounter& operator=(const LoadCounter&) = delete;

    int count() const;
};

/// An entity that would expand to a billion copies of its innermost text.
std::string billionLaughs(const std::string& body);

} // namespace xml_test
