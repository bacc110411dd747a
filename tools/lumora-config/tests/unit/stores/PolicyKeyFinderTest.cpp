#include "stores/PolicyKeyFinder.h"

#include <TemporaryProfile.h>
#include <gmock/gmock.h>

namespace lumora_config {

namespace {

using testing::IsEmpty;

const std::string policyKey = "HKCU\\Software\\Policies\\Ventrix Systems, Inc.\\Unified Communications\\VentrixUC";

std::string section(const std::string& below = "") {
    return "[" + policyKey + below + "]\n";
}

class PolicyKeyFinderTest : public testing::Test {
protected:
    void write(const std::string& name, const std::string& lines) {
        testing_host::writeFile(profile.root() / name, "REGEDIT4\n" + lines);
        files.push_back((profile.root() / name).string());
    }

    /// Returns "FILE:LINE" without the folder, or "" if the key was not found.
    std::string placeOf(const std::wstring& key) const {
        const auto places = PolicyKeyFinder::find(files);
        const auto place = places.find(key);
        if (place == places.end()) {
            return {};
        }
        return std::filesystem::path(place->second.file).filename().string() + ':' + std::to_string(place->second.line);
    }

    const testing_host::TemporaryProfile profile;
    std::vector<std::string> files;
};

} // namespace

TEST_F(PolicyKeyFinderTest, ALaterFileOverwritesAnEarlierOne) {
    write("a.reg", section() + "\"A\"=\"1\"\n\"B\"=dword:1\n");
    write("b.reg", "\n" + section() + "\"b\"=\"2\"\n");
    EXPECT_EQ(placeOf(L"A"), "a.reg:3");
    EXPECT_EQ(placeOf(L"B"), "b.reg:4");
    EXPECT_EQ(placeOf(L"C"), "");
}

TEST_F(PolicyKeyFinderTest, ADeletionDoesNotRestoreAnEarlierValue) {
    write("a.reg", section() + "\"A\"=\"1\"\n\"B\"=\"1\"\n" + section("\\Sub") + "\"C\"=\"1\"\n");
    write("b.reg", section() + "\"A\"=-\n[-" + policyKey + "\\sub]\n[-" + policyKey + "\\none\\none]\n");
    EXPECT_EQ(placeOf(L"A"), "");
    EXPECT_EQ(placeOf(L"B"), "a.reg:4");
    EXPECT_EQ(placeOf(L"C"), "");
}

TEST_F(PolicyKeyFinderTest, AKeyOfTheRegistryComesBeforeItsSubkeysAndThoseInTheirOrder) {
    write("a.reg", section("\\Z") + "\"A\"=\"1\"\n\"B\"=\"1\"\n\"C\"=\"1\"\n" + section("\\m\\Deep") + "\"B\"=\"2\"\n" +
                       section() + "\"A\"=\"3\"\n" + section("\\N") + "\n");
    EXPECT_EQ(placeOf(L"A"), "a.reg:9");
    EXPECT_EQ(placeOf(L"B"), "a.reg:7");
    EXPECT_EQ(placeOf(L"C"), "a.reg:5");
}

TEST_F(PolicyKeyFinderTest, AKeyWithMoreSubkeysThanItsParentIsReadInPart) {
    write("a.reg", section("\\Only\\First") + "\"A\"=\"1\"\n" + section("\\Only\\Second") + "\"B\"=\"1\"\n");
    EXPECT_EQ(placeOf(L"A"), "a.reg:3");
    EXPECT_EQ(placeOf(L"B"), "");
}

TEST_F(PolicyKeyFinderTest, ValuesThatTheClientDoesNotReadAreLeftOut) {
    write("a.reg", section() + "\"A\"=\"1\"\n\"A\"=hex:01\n\"B\"=hex(2):41,00\n[HKCU\\Software\\Other]\n\"C\"=\"1\"\n");
    EXPECT_EQ(placeOf(L"A"), "");
    EXPECT_EQ(placeOf(L"B"), "a.reg:5");
    EXPECT_EQ(placeOf(L"C"), "");
}

TEST_F(PolicyKeyFinderTest, MissingFilesAreIgnored) {
    EXPECT_THAT(PolicyKeyFinder::find({}), IsEmpty());
    files.push_back((profile.root() / "missing.reg").string());
    write("a.reg", section() + "\"A\"=\"1\"\n");
    EXPECT_EQ(placeOf(L"A"), "a.reg:3");
}

} // namespace lumora_config
