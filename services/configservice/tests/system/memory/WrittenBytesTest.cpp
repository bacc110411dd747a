#include "PlantedSecret.h"
#include "SessionProcess.h"
#include "SystemCallTrace.h"

#include <TemporaryProfile.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

using memory_test::PlantedSecret;
using memory_test::SessionProcess;
using memory_test::SystemCallTrace;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Checks what a process passes to the system after it has received a secret and used it in its operations.
class WrittenBytesTest : public testing::Test {
protected:
    void SetUp() override {
        if (SystemCallTrace::makeRunner(file).empty()) {
            GTEST_SKIP() << "strace is not installed or not permitted";
        }
    }

    SystemCallTrace trace(const std::string& scenario) const {
        {
            const SessionProcess session(profile, scenario, SystemCallTrace::makeRunner(file));
            session.tell(std::string(secret.text().begin(), secret.text().end()));
            EXPECT_TRUE(session.waitUntilDone()) << testing_host::readFile(profile.root() / "stderr");
        }
        return SystemCallTrace(file);
    }

    /// Returns the operations, sorted by name, that passed any piece of the secret in any form.
    std::vector<std::string> findSecret(const SystemCallTrace& trace) const {
        std::vector<std::string> found;
        for (const auto& [operation, targets] : trace.getOperations()) {
            std::size_t count = 0;
            for (const auto& [target, bytes] : targets) {
                for (const auto& piece : secret.pieces()) {
                    count += memory_test::countNarrow(bytes, piece) + memory_test::countUtf16(bytes, piece) +
                             memory_test::countWide(bytes, piece);
                }
            }
            if (count > 0) {
                found.push_back(operation);
            }
        }
        return found;
    }

    static bool wrote(const SystemCallTrace& trace, const std::string& operation, const std::string& bytes) {
        const auto targets = trace.getOperations().find(operation);
        return targets != trace.getOperations().end() && std::ranges::any_of(targets->second, [&](const auto& target) {
                   return memory_test::countNarrow(target.second, bytes) > 0;
               });
    }

    const testing_host::TemporaryProfile profile;
    const std::string file = (profile.root() / "trace").string();
    const PlantedSecret secret;
};

TEST_F(WrittenBytesTest, TheTestFindsAWrittenSecretInEveryEncoding) {
    EXPECT_THAT(findSecret(trace("leak")), ElementsAre("narrow", "utf-16", "wide"));
}

TEST_F(WrittenBytesTest, NoOperationPassesASecretToTheSystemUnencrypted) {
    const auto seen = trace("operations");
    EXPECT_THAT(findSecret(seen), IsEmpty());
    EXPECT_THAT(seen.getUnseen(), IsEmpty());
    // All expected writes have happened.
    for (const auto* operation : {"persist", "backup", "cached copy", "provisioning"}) {
        EXPECT_TRUE(wrote(seen, operation, "LUMS")) << operation;
    }
    for (const auto* operation : {"set", "get", "load", "settings log"}) {
        EXPECT_TRUE(wrote(seen, operation, "VALUE_HIDDEN")) << operation;
    }
    for (const auto* operation : {"report", "settings log"}) {
        EXPECT_TRUE(wrote(seen, operation, "not a secret")) << operation;
    }
    EXPECT_TRUE(wrote(seen, "reset", "ConfigAdapter reset."));
    EXPECT_TRUE(wrote(seen, "end", "operation end"));
    EXPECT_GT(seen.countCalls("openat"), 0U);
}

} // namespace
