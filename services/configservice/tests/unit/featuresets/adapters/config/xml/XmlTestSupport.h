#pragma once

#include <zel/EncryptFileUtils.h>
#include <zel/FipsUtils.h>

#include <ConfigMap.h>

#include <cstddef>
#include <string>
#include <vector>

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

/// While it lives libxml2 gets no block of more than that many bytes.
class XmlMemoryLimit {
public:
    explicit XmlMemoryLimit(std::size_t bytes);
    ~XmlMemoryLimit();
    XmlMemoryLimit(const XmlMemoryLimit&) = delete;
    XmlMemoryLimit& operator=(const XmlMemoryLimit&) = delete;
};

/// Texts that no reader takes: too deep, too long, cut short, in a wrong encoding, with a zero, with an entity that is
/// not declared.
std::vector<std::string> hostileTexts();

/// "<a><b><k>1</k></b></a>", compressed.
std::string gzipped();

/// A document of 100 MB, compressed into 100 KB.
void writeInflatingFile(const std::string& path);

/// An entity that would expand to a billion copies of its innermost text.
std::string billionLaughs(const std::string& body);

} // namespace xml_test
