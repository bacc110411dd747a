#include "shell/ShellHistory.h"

#include <TemporaryProfile.h>
#include <gtest/gtest.h>

#include <string>

namespace lumora_config {

TEST(ShellHistory, KeepsTheLast1000Lines) {
    const testing_host::TemporaryProfile profile;
    const auto path = (profile.root() / "history").string();
    std::string content;
    for (int i = 0; i < 1000; ++i) {
        content += "get " + std::to_string(i) + '\n';
    }
    testing_host::writeFile(path, content);
    ShellHistory history(path);
    ASSERT_EQ(history.add("stores", [](const std::string&) { return false; }), 0);
    EXPECT_EQ(history.getLines().size(), 1000U);
    EXPECT_EQ(testing_host::readFile(path), content.substr(content.find('\n') + 1) + "stores\n");
}

} // namespace lumora_config
