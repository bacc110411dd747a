#include "RegistryReading.h"
#include "TemporaryProfile.h"

#include <gmock/gmock.h>

#include <cstdlib>

namespace {

using namespace registry_reading;
using testing_host::writeFile;

constexpr const wchar_t* mailClients = L"SOFTWARE\\Clients\\Mail";

/// Redirects the desktop's folders to a temporary folder.
class RegistryMailClientTest : public testing::Test {
protected:
    RegistryMailClientTest() {
        set("XDG_CONFIG_HOME", "config-home");
        set("XDG_DATA_HOME", "data-home");
        set("XDG_CONFIG_DIRS", "config-dirs");
        set("XDG_DATA_DIRS", "data-dirs");
    }

    void set(const char* variable, const char* folder) { ::setenv(variable, (profile.root() / folder).c_str(), 1); }

    void write(const std::string& path, const std::string& content) { writeFile(profile.root() / path, content); }
    void writeProgram(const std::string& path, const std::string& name) {
        write(path, "[Desktop Entry]\nType=Application\nName[de]=Anders\nName=" + name +
                        "\nExec=x\n[Desktop Action New]\nName=Wrong\n");
    }

    static std::optional<std::wstring> clientOf(HKEY root) { return textOf(*getRegistry(), mailClients, L"", root); }

    testing_host::TemporaryProfile profile;
};

TEST_F(RegistryMailClientTest, WithoutAssociationsThereIsNoKey) {
    EXPECT_FALSE(hasKey(*getRegistry(), mailClients));
    EXPECT_FALSE(hasKey(*getRegistry(), mailClients, HKEY_LOCAL_MACHINE));
}

TEST_F(RegistryMailClientTest, TheUsersAssociationDefinesTheUsersClient) {
    write("config-home/mimeapps.list",
          "[Added Associations]\nx-scheme-handler/mailto=wrong.desktop;\n\n"
          "[Default Applications]\ntext/html=b.desktop\nx-scheme-handler/mailto=m.desktop\n");
    writeProgram("data-dirs/applications/m.desktop", "Letter Box");
    EXPECT_EQ(clientOf(HKEY_CURRENT_USER), L"Letter Box");
    EXPECT_EQ(clientOf(HKEY_LOCAL_MACHINE), std::nullopt);
}

TEST_F(RegistryMailClientTest, AProgramOfTheUserOverridesTheSystemsOfTheSameName) {
    write("data-home/applications/mimeapps.list", "[Default Applications]\nx-scheme-handler/mailto = m.desktop\n");
    writeProgram("data-dirs/applications/m.desktop", "Of the system");
    writeProgram("data-home/applications/m.desktop", "Mine");
    EXPECT_EQ(clientOf(HKEY_CURRENT_USER), L"Mine");
}

TEST_F(RegistryMailClientTest, TheSystemsAssociationDefinesTheMachinesClient) {
    write("config-dirs/mimeapps.list", "[Default Applications]\nx-scheme-handler/mailto=m.desktop\n");
    writeProgram("data-dirs/applications/m.desktop", "M\xC3\xA4iler");
    EXPECT_EQ(clientOf(HKEY_LOCAL_MACHINE), L"M\u00e4iler");
    EXPECT_EQ(clientOf(HKEY_CURRENT_USER), std::nullopt);
}

TEST_F(RegistryMailClientTest, TheFirstInstalledProgramOfTheAssociationIsUsed) {
    write("data-dirs/applications/mimeapps.list",
          "[Default Applications]\nx-scheme-handler/mailto=absent.desktop;../m.desktop;m.desktop;n.desktop;\n");
    writeProgram("data-dirs/applications/m.desktop", "Second");
    writeProgram("data-dirs/applications/n.desktop", "Third");
    writeProgram("data-dirs/m.desktop", "Outside");
    EXPECT_EQ(clientOf(HKEY_LOCAL_MACHINE), L"Second");
}

TEST_F(RegistryMailClientTest, RelativeFoldersAreIgnored) {
    write("config-home/mimeapps.list", "[Default Applications]\nx-scheme-handler/mailto=m.desktop\n");
    writeProgram("data-home/applications/m.desktop", "Mine");
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(profile.root());
    ::setenv("XDG_CONFIG_HOME", "config-home", 1);
    EXPECT_EQ(clientOf(HKEY_CURRENT_USER), std::nullopt);
    std::filesystem::current_path(before);
}

TEST_F(RegistryMailClientTest, APolicyOverridesTheDesktopsAssociation) {
    write("config-home/mimeapps.list", "[Default Applications]\nx-scheme-handler/mailto=m.desktop\n");
    writeProgram("data-home/applications/m.desktop", "Mine");
    writeFile(profile.data() / "registry/a.reg",
              "REGEDIT4\n[HKCU\\Software\\Clients\\Mail]\n@=\"Microsoft Outlook\"\n");
    EXPECT_EQ(clientOf(HKEY_CURRENT_USER), L"Microsoft Outlook");
}

} // namespace
