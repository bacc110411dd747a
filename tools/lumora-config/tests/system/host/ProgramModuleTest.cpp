#include "ShellTerminal.h"

#include <gmock/gmock.h>

namespace program_test {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;

namespace {

constexpr auto archiveModule = "liblumora_archive-" LUMORA_VERSION ".so";
constexpr auto editorModule = "liblumora_editline-" LUMORA_VERSION ".so";

/// Links a library of the build under a name in another folder.
void link(const std::string& library, const fs::path& path) {
    fs::create_directories(path.parent_path());
    fs::create_symlink(fs::path(LUMORA_PLUGINS) / library, path);
}

/// A copy of the program in its own folder, beside links to some libraries of the build.
class Installation {
public:
    explicit Installation(const Arguments& libraries) {
        fs::create_directories(program.parent_path());
        fs::copy_file(LUMORA_CONFIG_PROGRAM, program);
        for (const auto& entry : fs::directory_iterator(LUMORA_PLUGINS)) {
            if (const auto name = entry.path().filename().string(); name.starts_with("liblumora_host.so")) {
                link(name, folder() / name);
            }
        }
        for (const auto& library : libraries) {
            link(library, folder() / library);
        }
    }

    fs::path folder() const { return profile.root() / "installation" / "lib"; }
    /// Returns the command line of the copy on its profile.
    Arguments command(const Arguments& arguments) const {
        Arguments all{program.string(), "--profile", profile.root().string()};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return all;
    }
    Outcome run(const Arguments& arguments) const {
        const auto all = command(arguments);
        return runProcess(all.front(), {all.begin() + 1, all.end()});
    }

    const Profile profile;

private:
    const fs::path program = profile.root() / "installation" / "bin" / "lumora-config";
};

} // namespace

TEST(ProgramModule, TheShellWarnsAndReadsPlainLinesWithoutTheModuleOfItsEditor) {
    const Installation installation({"libconfigservice.so"});
    ShellTerminal shell(installation.command({"shell"}));
    EXPECT_THAT(shell.await("lumora> "),
                AllOf(HasSubstr(std::string("no module ") + editorModule), HasSubstr("lines cannot be edited")));
    shell.type("get Theme\n");
    shell.await("\nsystem");
    shell.await("lumora> ");
    shell.type("quit\n");
    EXPECT_EQ(shell.waitForEnd(), 0);
}

TEST(ProgramModule, TheShellWarnsIfTheModuleOfItsEditorIsNoLibrary) {
    const Installation installation({"libconfigservice.so"});
    fs::copy_file(installation.profile.defaultsFile(), installation.folder() / editorModule);
    ShellTerminal shell(installation.command({"shell"}));
    EXPECT_THAT(shell.await("lumora> "), HasSubstr("lines cannot be edited"));
}

TEST(ProgramModule, IsLoadedBesideTheProgramAlthoughThePlugInIsElsewhere) {
    const Installation installation({archiveModule});
    const auto plugins = installation.profile.root() / "plugins";
    link("libconfigservice.so", plugins / "libconfigservice.so");
    const auto file = (installation.profile.root() / "x.zip").string();
    const auto outcome = installation.run({"--plugin-dir", plugins.string(), "bundle", "-o", file});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
    EXPECT_TRUE(fs::exists(file));
}

TEST(ProgramModule, IsLoadedFromThePlugInFolderOfTheCommandLine) {
    const Installation installation({"libconfigservice.so"});
    const auto plugins = installation.profile.root() / "plugins";
    link("libconfigservice.so", plugins / "libconfigservice.so");
    link(archiveModule, plugins / archiveModule);
    link(editorModule, plugins / editorModule);
    const auto file = (installation.profile.root() / "x.zip").string();
    const auto outcome = installation.run({"--plugin-dir", plugins.string(), "bundle", "-o", file});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
    ShellTerminal shell(installation.command({"--plugin-dir", plugins.string(), "shell"}));
    shell.await("lumora> ");
    shell.type("get thEm\t\r");
    shell.await("\nsystem");
    shell.type("bundle -o " + file + "2\r");
    shell.await("index.txt");
}

TEST(ProgramModule, AModuleOfAnotherVersionIsNotLoaded) {
    const Installation installation({"libconfigservice.so"});
    link(archiveModule, installation.folder() / "liblumora_archive-9.0.0.so");
    const auto outcome = installation.run({"bundle", "-o", (installation.profile.root() / "x.zip").string()});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_THAT(outcome.error, HasSubstr(std::string("no module ") + archiveModule + ": it is not in " +
                                         installation.folder().string()));
}

} // namespace program_test
