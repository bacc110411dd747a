#include "FaultInjectingFileLayer.h"
#include "RegistryReading.h"
#include "TemporaryProfile.h"

#include <registry/RegistryFiles.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <cerrno>
#include <thread>

namespace {

using namespace registry_reading;
using testing_host::readFile;
using Operation = testing_host::FaultInjectingFileLayer::Operation;

const std::string header = "Windows Registry Editor Version 5.00\r\n\r\n";

class FileRegistryRecursiveDeletionTest : public testing::Test {
protected:
    void writeUser(const std::string& name, const std::string& lines) {
        testing_host::writeFile(user / name, header + lines);
    }
    std::string readUser(const std::string& name) const { return readFile(user / name); }

    RegistryResult remove(const std::wstring& path) { return registry->RegDeleteKeyW(HKEY_CURRENT_USER, path.c_str()); }

    /// Deletes as the service does: first the key itself, then its subkeys through an open key, then the key again.
    RegistryResult removeTree(const std::wstring& path) {
        if (remove(path) == RegistryResult::Success) {
            return RegistryResult::Success;
        }
        {
            const Key key(*registry, HKEY_CURRENT_USER, path);
            for (const auto& name : key.getSubkeys()) {
                if (const auto result = removeTree(path + L"\\" + name); result != RegistryResult::Success) {
                    return result;
                }
            }
        }
        return remove(path);
    }

    std::size_t countRewrites() const {
        const auto calls = layer.getCalls();
        return static_cast<std::size_t>(std::ranges::count(calls, Operation::Rename));
    }

    static std::string makeSections(const std::string& parent, int count) {
        std::string lines;
        for (int i = 0; i < count; ++i) {
            const auto number = std::to_string(i);
            lines += "[HKCU\\" + parent + "\\k" + number + "]\r\n\"a\"=\"" + number + "\"\r\n";
        }
        return lines;
    }

    testing_host::TemporaryProfile profile;
    const std::filesystem::path user = profile.data() / "registry";
    testing_host::FaultInjectingFileLayer layer;
    const std::shared_ptr<Registry> registry = makeFileRegistry({(profile.root() / "etc").string(), {}}, {}, &layer);
};

TEST_F(FileRegistryRecursiveDeletionTest, TheNumberOfRewritesDoesNotGrowWithTheNumberOfSubkeys) {
    writeUser("a.reg", "[HKCU\\Few]\r\n" + makeSections("Few", 2));
    writeUser("b.reg", "[HKCU\\Many]\r\n" + makeSections("Many", 300) + makeSections("Many\\k7\\Deep", 300));
    ASSERT_EQ(removeTree(L"Few"), RegistryResult::Success);
    const auto few = countRewrites();
    EXPECT_LE(few, 2U);
    ASSERT_EQ(removeTree(L"Many"), RegistryResult::Success);
    EXPECT_EQ(countRewrites() - few, few);
}

TEST_F(FileRegistryRecursiveDeletionTest, TheWholeTreeIsOnDiskWhenTheOutermostDeletionReturns) {
    writeUser("a.reg", makeSections("K", 3) + "[HKCU\\Other]\r\n" + makeSections("k\\K1\\Deep", 3));
    writeUser("b.reg", "[HKCU\\K]\r\n\"b\"=\"1\"\r\n[HKCU\\KK]\r\n");
    ASSERT_EQ(removeTree(L"K"), RegistryResult::Success);
    EXPECT_EQ(readUser("a.reg"), header + "[HKCU\\Other]\r\n");
    EXPECT_EQ(readUser("b.reg"), header + "[HKCU\\KK]\r\n");
    EXPECT_EQ(layer.countUnsyncedNames(), 0U);
}

TEST_F(FileRegistryRecursiveDeletionTest, TheOutermostDeletionWritesWhileAnotherKeyIsOpen) {
    writeUser("a.reg", makeSections("K", 3) + "[HKCU\\Other]\r\n");
    const Key other(*registry, HKEY_CURRENT_USER, L"Other");
    ASSERT_EQ(removeTree(L"K"), RegistryResult::Success);
    EXPECT_EQ(readUser("a.reg"), header + "[HKCU\\Other]\r\n");
    EXPECT_EQ(countRewrites(), 1U);
}

TEST_F(FileRegistryRecursiveDeletionTest, ClosingTheLastKeyWritesTheDeletionsBelowIt) {
    writeUser("a.reg", makeSections("K", 3));
    ASSERT_EQ(remove(L"K"), RegistryResult::AccessDenied);
    {
        const Key key(*registry, HKEY_CURRENT_USER, L"K");
        ASSERT_EQ(remove(L"K\\k0"), RegistryResult::Success);
        ASSERT_EQ(remove(L"K\\k2"), RegistryResult::Success);
        EXPECT_EQ(key.getSubkeys(), std::vector<std::wstring>{L"k1"});
    }
    EXPECT_EQ(readUser("a.reg"), header + "[HKCU\\K\\k1]\r\n\"a\"=\"1\"\r\n");
}

TEST_F(FileRegistryRecursiveDeletionTest, AFailedRewriteOnClosingIsReportedAndRestoresTheKeys) {
    const auto lines = makeSections("K", 3);
    writeUser("a.reg", lines);
    ASSERT_EQ(remove(L"K"), RegistryResult::AccessDenied);
    HKEY key{};
    ASSERT_EQ(registry->RegOpenKeyExW(HKEY_CURRENT_USER, L"K", 0, KEY_READ, key), RegistryResult::Success);
    ASSERT_EQ(remove(L"K\\k0"), RegistryResult::Success);
    layer.failAt(Operation::Sync, 1, EIO);
    EXPECT_EQ(registry->RegCloseKey(key), RegistryResult::AccessDenied);
    EXPECT_EQ(registry->RegCloseKey(key), RegistryResult::InvalidHandle);
    EXPECT_EQ(readUser("a.reg"), header + lines);
    EXPECT_TRUE(hasKey(*registry, L"K\\k0"));
    EXPECT_EQ(removeTree(L"K"), RegistryResult::Success);
    EXPECT_EQ(readUser("a.reg"), header);
}

TEST_F(FileRegistryRecursiveDeletionTest, AFailedRewriteMakesTheOutermostDeletionFail) {
    const auto lines = makeSections("K", 3) + "[HKCU\\Other]\r\n";
    writeUser("a.reg", lines);
    {
        const Key other(*registry, HKEY_CURRENT_USER, L"Other");
        layer.failAt(Operation::Rename, 1, ENOSPC);
        EXPECT_EQ(removeTree(L"K"), RegistryResult::AccessDenied);
    }
    EXPECT_EQ(readUser("a.reg"), header + lines);
    EXPECT_TRUE(hasKey(*registry, L"K\\k0"));
    layer.failAt(Operation::Rename, 1, ENOSPC);
    EXPECT_EQ(removeTree(L"K"), RegistryResult::AccessDenied);
    EXPECT_EQ(readUser("a.reg"), header + lines);
    EXPECT_EQ(removeTree(L"K"), RegistryResult::Success);
    EXPECT_EQ(readUser("a.reg"), header + "[HKCU\\Other]\r\n");
}

TEST_F(FileRegistryRecursiveDeletionTest, ADeletionElsewhereIsWrittenImmediatelyWithThePendingOnes) {
    writeUser("a.reg", makeSections("K", 3) + makeSections("KK", 1));
    ASSERT_EQ(remove(L"K"), RegistryResult::AccessDenied);
    const Key key(*registry, HKEY_CURRENT_USER, L"K");
    ASSERT_EQ(remove(L"K\\k0"), RegistryResult::Success);
    ASSERT_EQ(remove(L"KK\\k0"), RegistryResult::Success);
    EXPECT_EQ(readUser("a.reg"), header + "[HKCU\\K\\k1]\r\n\"a\"=\"1\"\r\n[HKCU\\K\\k2]\r\n\"a\"=\"2\"\r\n");
}

TEST_F(FileRegistryRecursiveDeletionTest, DeletionsByAnotherThreadAreWrittenImmediately) {
    writeUser("a.reg", makeSections("K", 2));
    ASSERT_EQ(remove(L"K"), RegistryResult::AccessDenied);
    const Key key(*registry, HKEY_CURRENT_USER, L"K");
    std::thread([this] { EXPECT_EQ(remove(L"K\\k0"), RegistryResult::Success); }).join();
    EXPECT_EQ(readUser("a.reg"), header + "[HKCU\\K\\k1]\r\n\"a\"=\"1\"\r\n");
}

TEST_F(FileRegistryRecursiveDeletionTest, PendingDeletionsAreWrittenBeforeARefusedDeletionReloadsTheTree) {
    testing_host::writeFile(profile.root() / "etc/HKEY_CURRENT_USER/policy.reg", header + "[HKCU\\P]\r\n");
    writeUser("a.reg", makeSections("K", 2) + "[HKCU\\P]\r\n\"p\"=\"user\"\r\n");
    ASSERT_EQ(remove(L"K"), RegistryResult::AccessDenied);
    const Key key(*registry, HKEY_CURRENT_USER, L"K");
    ASSERT_EQ(remove(L"K\\k0"), RegistryResult::Success);
    EXPECT_EQ(remove(L"P"), RegistryResult::AccessDenied);
    EXPECT_FALSE(hasKey(*registry, L"K\\k0"));
    EXPECT_EQ(readUser("a.reg"), header + "[HKCU\\K\\k1]\r\n\"a\"=\"1\"\r\n");
}

} // namespace
