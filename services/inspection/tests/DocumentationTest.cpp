#include "TestHost.h"

#include <gtest/gtest.h>

#include <fstream>

namespace inspection_test {
namespace {

/// Returns `actual` with "..." where the example prints it.
Json withPlaceholders(const Json& example, Json actual) {
    for (const auto& [field, value] : example.items()) {
        if (value == "..." && actual.contains(field)) {
            actual[field] = value;
        }
    }
    return actual;
}

TEST(InspectionDocumentation, TheExamplesGetThePrintedReplies) {
    TestHost host({}, {{L"Theme", L"system"}});
    Peer peer(host);
    std::ifstream page(DOCUMENTATION);
    std::size_t replies = 0;
    for (std::string line; std::getline(page, line);) {
        if (line.starts_with("-> ")) {
            peer.sendText(line.substr(3));
        } else if (line.starts_with("<- ")) {
            const auto example = Json::parse(line.substr(3));
            EXPECT_EQ(withPlaceholders(example, peer.receive()), example);
            ++replies;
        }
    }
    EXPECT_GE(replies, 14U);
}

} // namespace
} // namespace inspection_test
