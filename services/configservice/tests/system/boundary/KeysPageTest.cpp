#include "KeysPage.h"

#include <TemporaryProfile.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace configservice_test {

TEST(KeysPage, EqualsTheCatalogue) {
    const auto path = std::filesystem::path(DOCS_FOLDER) / "keys.md";
    if (std::getenv("LUMORA_WRITE_DOCS") != nullptr) {
        std::ofstream(path) << writeKeysPage();
    }
    EXPECT_TRUE(testing_host::readFile(path) == writeKeysPage())
        << path << " differs from the catalogue; run this test with LUMORA_WRITE_DOCS=1 to write the page";
}

} // namespace configservice_test
