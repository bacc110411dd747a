#include <kyr/SharedLibrary.h>

#include <stdexcept>
#include <string>

using KyrCoreUtils::SharedLibrary;
using testing::HasSubstr;
using testing::Property;
using testing::Throws;

namespace {

const std::string plugin = HOST_TEST_PLUGIN_FOLDER "/good_plugin.so";

} // namespace

TEST(SharedLibrary, FindsAnExportedSymbol) {
    EXPECT_NE(SharedLibrary(plugin).find("InjectConfigService"), nullptr);
}

TEST(SharedLibrary, ReportsTheNameOfAMissingSymbol) {
    const SharedLibrary library(plugin);
    EXPECT_THAT([&] { library.find("NoSuchEntry"); },
                Throws<std::runtime_error>(Property(&std::runtime_error::what, HasSubstr("NoSuchEntry"))));
}

TEST(SharedLibrary, ReportsTheNameOfAMissingFile) {
    EXPECT_THAT([] { SharedLibrary("/nowhere/absent.so"); },
                Throws<std::runtime_error>(Property(&std::runtime_error::what, HasSubstr("absent.so"))));
}
