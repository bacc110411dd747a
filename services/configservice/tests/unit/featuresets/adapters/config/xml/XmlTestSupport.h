#pragma once

#include <zel/EncryptFileUtils.h>
#include <zel/FipsUtils.h>

#include <ConfigMap.h>

#include <cstddef>
#include <string>
#include <vector>

namespace xml_test {

/// Sets the FIPS mode of the machine during its lifetime.
class FipsMode {
public:
    explicit FipsMode(bool enabled) { zel::common::FipsUtils::overrideFipsMode(enabled); }
    ~FipsMode() { zel::common::FipsUtils::overrideFipsMode(std::nullopt); }
    FipsMode(const FipsMode&) = delete;
    FipsMode& operator=(const FipsMode&) = delete;
};

bool writeProtected(const std::string& path, const std::string& text,
                    zel::storage::FileCategoryType::FileCategory category = zel::storage::FileCategoryType::UserData);
/// Returns the clear text, or "" if the file is unreadable.
std::string
readProtected(const std::string& path,
              zel::storage::FileCategoryType::FileCategory category = zel::storage::FileCategoryType::UserData);

/// Counts the files that libxml2 tries to load besides `expected`, and loads none.
class LoadCounter {
public:
    explicit LoadCounter(std::string expected = {});
    ~LoadCounter();
    LoadCounter(const LoadCounter&) = delete;
    LoadCounter& operator=(const LoadCounter&) = delete;

    int count() const;
};

/// Makes every libxml2 allocation above this number of bytes fail during its lifetime.
class XmlMemoryLimit {
public:
    explicit XmlMemoryLimit(std::size_t bytes);
    ~XmlMemoryLimit();
    XmlMemoryLimit(const XmlMemoryLimit&) = delete;
    XmlMemoryLimit& operator=(const XmlMemoryLimit&) = delete;
};

/// Returns texts that every reader refuses: too deep, too long, truncated, in a wrong encoding, with a zero byte, with
/// an undeclared entity.
std::vector<std::string> hostileTexts();

/// Returns "<a><b><k>1</k></b></a>", compressed.
std::string gzipped();

/// Writes a document of 100 MB, compressed to 100 KB.
void writeInflatingFile(const std::string& path);

/// Returns a document with an entity that would expand to a billion copies of its innermost text.
std::string billionLaughs(const std::string& body);

} // namespace xml_test
