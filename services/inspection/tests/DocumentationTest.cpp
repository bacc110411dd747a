#include "InspectionLimits.h"
#include "TestHost.h"

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <iterator>
#include <string>

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

TEST(InspectionDocumentation, TheLimitsAreThoseOfTheService) {
    const inspection::InspectionLimits limits;
    const auto mebibytes = [](std::size_t bytes) { return std::to_string(bytes / (1024 * 1024)) + " MiB"; };
    const auto seconds = [](std::chrono::milliseconds time) {
        return std::to_string(time.count() / 1000) + " seconds";
    };
    std::ifstream file(DOCUMENTATION);
    const std::string page((std::istreambuf_iterator<char>(file)), {});
    for (const auto& text :
         {"| a request of more than " + mebibytes(limits.requestBytes) + " |",
          "| " + mebibytes(limits.stagedBytes) + " of values for one `load` |",
          "| " + std::to_string(limits.connections) + " connections |",
          "| " + seconds(limits.requestTime) + " from the first byte of a request;",
          "| " + std::to_string(limits.idleTime / std::chrono::minutes(1)) + " minutes without a request, unless",
          "| " + seconds(limits.replyTime) + " for reading a reply |",
          std::to_string(limits.queuedEvents / 1000) + ",000 events (" + mebibytes(limits.queuedBytes) + ") for a",
          "waits up to " + seconds(limits.catchUpTime) + " until"}) {
        EXPECT_NE(page.find(text), std::string::npos) << text;
    }
    EXPECT_EQ(limits.queuedChanges, 16384U);
    EXPECT_NE(page.find("(16,384\nqueued and 16,384 in distribution)"), std::string::npos);
}

} // namespace
} // namespace inspection_test
