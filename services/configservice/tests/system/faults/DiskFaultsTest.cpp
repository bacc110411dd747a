#include "FaultySession.h"

#include <kyr/FileUtils.h>

#include <cerrno>
#include <functional>

namespace ZelUnified {

using testing::AnyOf;
using testing::HasSubstr;
using zel::storage::FileCategoryType::DeviceData;

namespace {

using Step = std::function<void(FaultySession&)>;

/// The kind of failure: one call, or that call and all later ones of the operation.
enum class Fault { Once, FromThenOn };

/// Returns the errors to inject. A dead disk returns one error for all calls.
std::vector<int> errorsOf(Fault fault) {
    return fault == Fault::Once ? std::vector{EIO, ENOSPC, EACCES} : std::vector{EIO};
}

void nothing(FaultySession&) {}

void begin(FaultySession& session) {
    session.loadAndStart();
}

} // namespace

/// Runs every operation that uses the disk and fails each of its calls in turn.
class DiskFaults : public testing::TestWithParam<Fault> {
protected:
    static std::size_t countCalls(const Step& prepare, const Step& operate) {
        FaultySession session;
        session.leaveFiles();
        prepare(session);
        const auto before = session.layer->getCalls().size();
        operate(session);
        return session.layer->getCalls().size() - before;
    }

    static void disturb(FaultySession& session, std::size_t call, int error) {
        if (GetParam() == Fault::Once) {
            session.layer->failAt(call, error);
        } else {
            session.layer->dieAt(call);
        }
    }

    static void atEveryCall(const Step& prepare, const Step& operate, const Step& check) {
        const std::size_t calls = countCalls(prepare, operate);
        ASSERT_GT(calls, 0U);
        std::cout << calls << " calls, " << calls * errorsOf(GetParam()).size() << " faults\n";
        for (std::size_t call = 1; call <= calls && !HasFailure(); ++call) {
            for (const int error : errorsOf(GetParam())) {
                SCOPED_TRACE("call " + std::to_string(call) + " of " + std::to_string(calls) + ", error " +
                             std::to_string(error));
                FaultySession session;
                session.leaveFiles();
                prepare(session);
                session.forgetLog();
                disturb(session, call, error);
                operate(session);
                session.layer->heal();
                check(session);
            }
        }
    }

    /// Expects the complete old content or the complete new one.
    static void expectOldOrNew(const std::string& content) {
        EXPECT_THAT(content, AnyOf(HasSubstr("old"), HasSubstr("new")));
    }

    static void expectWrittenOrLogged(FaultySession& session, const std::filesystem::path& path,
                                      const std::string& content) {
        expectOldOrNew(content);
        if (content.find("new") == std::string::npos) {
            const auto name = path.filename().string();
            // "Failed to write protected file PATH: CAUSE"
            EXPECT_TRUE(session.isLogged(KyrCoreUtils::FileUtils::FileSeparator() + name + ": ") ||
                        session.isLogged("Failed to read lumoraLocalConfig/backup file, so don't write to " + name +
                                         " to keep file good."))
                << name;
        }
    }

    /// Expects that everything can be changed and is present at the next start.
    static void expectAllWellAgain(FaultySession& session) {
        session.adapter->setConfig(L"k", L"newest");
        session.download(L"newest");
        EXPECT_TRUE(session.provision(L"newest"));
        session.persistAndBackUp();
        session.restart();
        EXPECT_EQ(session.valueOf(L"k"), L"newest");
        EXPECT_EQ(session.valueOf(L"d"), L"newest");
        EXPECT_EQ(session.valueOf(L"ServicesDomain"), L"newest");
        EXPECT_THAT(FaultySession::clearTextOf(session.file(mainFile)), HasSubstr("newest"));
        EXPECT_THAT(FaultySession::clearTextOf(session.file(backupFile)), HasSubstr("newest"));
    }
};

TEST_P(DiskFaults, AFaultDuringALoadLosesNoDataForTheNextStart) {
    const auto load = [](FaultySession& session) {
        session.loadAndStart();
        if (session.valueOf(L"k") == L"(none)") {
            EXPECT_EQ(GetParam(), Fault::FromThenOn) << "the backup was there";
            EXPECT_TRUE(session.isLogged("Failed to read config file " + session.file(backupFile).string()));
        }
        for (const auto& [key, store] :
             {std::pair(L"d", downloadedStore), std::pair(L"ServicesDomain", provisioningStore)}) {
            // The user's file records which copies exist.
            if (session.valueOf(key) == L"(none)" && session.inChain(store)) {
                const auto name = session.cacheFile(store).filename().string();
                EXPECT_TRUE(session.isLogged("Failed to read XML document: " + name + " or " + name));
            }
        }
    };
    atEveryCall(nothing, load, [](FaultySession& session) {
        session.restart();
        EXPECT_EQ(session.valueOf(L"k"), L"old");
        EXPECT_EQ(session.valueOf(L"d"), L"old");
        EXPECT_EQ(session.valueOf(L"ServicesDomain"), L"old");
        expectAllWellAgain(session);
    });
}

TEST_P(DiskFaults, AFaultDuringPersistKeepsAReadableFile) {
    const auto write = [](FaultySession& session) {
        session.adapter->setConfig(L"k", L"new");
        session.persist();
    };
    atEveryCall(begin, write, [](FaultySession& session) {
        EXPECT_EQ(session.valueOf(L"k"), L"new");
        expectWrittenOrLogged(session, mainFile, FaultySession::clearTextOf(session.file(mainFile)));
        EXPECT_THAT(FaultySession::clearTextOf(session.file(backupFile)), HasSubstr("old"));
        expectAllWellAgain(session);
    });
}

TEST_P(DiskFaults, AFaultDuringABackupKeepsAReadableFile) {
    const auto write = [](FaultySession& session) {
        session.loadAndStart();
        session.adapter->setConfig(L"k", L"new");
        session.persist();
    };
    atEveryCall(
        write, [](FaultySession& session) { session.persistAndBackUp(); },
        [](FaultySession& session) {
            EXPECT_THAT(FaultySession::clearTextOf(session.file(mainFile)), HasSubstr("new"));
            expectWrittenOrLogged(session, backupFile, FaultySession::clearTextOf(session.file(backupFile)));
            expectAllWellAgain(session);
        });
}

TEST_P(DiskFaults, AFaultWhileACopyIsWrittenKeepsAReadableFile) {
    atEveryCall(
        begin, [](FaultySession& session) { session.download(L"new"); },
        [](FaultySession& session) {
            EXPECT_EQ(session.valueOf(L"d"), L"new");
            const auto path = session.cacheFile(downloadedStore);
            expectWrittenOrLogged(session, path, FaultySession::clearTextOf(path));
            EXPECT_TRUE(session.isLogged("data written to file: " + path.string()));
            expectAllWellAgain(session);
        });
}

TEST_P(DiskFaults, AFaultDuringProvisioningKeepsAReadableFile) {
    atEveryCall(
        begin, [](FaultySession& session) { EXPECT_TRUE(session.provision(L"new")); },
        [](FaultySession& session) {
            EXPECT_EQ(session.valueOf(L"ServicesDomain"), L"new");
            const auto path = session.cacheFile(provisioningStore);
            expectWrittenOrLogged(session, path, FaultySession::clearTextOf(path, DeviceData));
            EXPECT_TRUE(session.isLogged("data written to file: " + path.string()));
            expectAllWellAgain(session);
        });
}

TEST_P(DiskFaults, AFaultDuringAResetKeepsTheProvisioningCopyAndAWorkingChain) {
    const auto reset = [](FaultySession& session) { session.adapter->InvokeResetData(ResetDataOptionEnum::ResetAll); };
    atEveryCall(begin, reset, [](FaultySession& session) {
        EXPECT_TRUE(session.isLogged("ConfigAdapter reset."));
        EXPECT_EQ(session.valueOf(L"k"), L"(none)");
        EXPECT_THAT(FaultySession::clearTextOf(session.cacheFile(provisioningStore), DeviceData), HasSubstr("old"));
        for (const auto* name :
             {"LocalFileConfigStore", "RegistryConfigStore", provisioningStore, "InMemoryConfigStore"}) {
            EXPECT_TRUE(session.inChain(name)) << name;
        }
        expectAllWellAgain(session);
    });
}

TEST_P(DiskFaults, TheReportOmitsAndLogsFilesThatCannotBeRead) {
    atEveryCall(
        begin,
        [](FaultySession& session) {
            const auto report = session.report();
            for (const std::string name : quotedFiles) {
                // The report omits the first byte because the document has no declaration.
                const bool quoted = report.find(KyrCoreUtils::toWideString(name + "/>")) != std::wstring::npos;
                EXPECT_NE(quoted, session.isLogged("Failed to read config file " + session.file(name).string()))
                    << name;
            }
            EXPECT_THAT(KyrCoreUtils::toString(report), HasSubstr("<d>old</d>"));
        },
        [](FaultySession& session) {
            const auto report = KyrCoreUtils::toString(session.report());
            for (const std::string name : quotedFiles) {
                EXPECT_THAT(report, HasSubstr(name + "/>"));
            }
            expectAllWellAgain(session);
        });
}

INSTANTIATE_TEST_SUITE_P(Disk, DiskFaults, testing::Values(Fault::Once, Fault::FromThenOn), [](const auto& tested) {
    return tested.param == Fault::Once ? "FailsOnce" : "FailsFromThenOn";
});

} // namespace ZelUnified
