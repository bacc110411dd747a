#include "CommandLine.h"

#include "output/Failure.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <iterator>

namespace lumora_config {

namespace {

constexpr auto footer =
    "Exit codes: 0 found or done, 1 not found or refused, 2 usage, 3 environment (no plug-in, profile "
    "in use, unreadable file, change not on the disk).\nSensitive values are shown as VALUE_HIDDEN.";

/// The options as text, before they are parsed.
struct RawOptions {
    std::string profile;
    std::vector<std::string> stores;
    std::vector<std::string> bootstraps;
};

void addDirectories(CLI::App& app, RawOptions& raw, CommandLine& line) {
    auto* profile = app.add_option("--profile", raw.profile, "Folder with config, data, state and resources in it");
    profile->type_name("DIR");
    const auto add = [&](const std::string& name, std::string& target, const std::string& help) {
        app.add_option(name, target, help)->type_name("DIR")->excludes(profile);
    };
    add("--config-dir", line.directories.config, "The configuration directory");
    add("--data-dir", line.directories.applicationData, "Application data: keys and registry files");
    add("--state-dir", line.directories.state, "Logs and the lock of the profile");
    add("--resources-dir", line.directories.resources, "Installed resources: the defaults file");
    app.add_option("--plugin-dir", line.pluginDirectory, "Folder of the plug-in, instead of the installed one")
        ->type_name("DIR");
}

void addOptions(CLI::App& app, RawOptions& raw, CommandLine& line) {
    app.set_version_flag("--version", std::string("lumora-config ") + LUMORA_VERSION);
    addDirectories(app, raw, line);
    app.add_option("--store", raw.stores, "Hand in a read-only store of this XML file")
        ->type_name("FILE.xml:NAME:PRIORITY[:cache]")
        ->allow_extra_args(false);
    app.add_option("--bootstrap", raw.bootstraps, "Hand in the installer's file of key:value lines")
        ->type_name("FILE:PRIORITY")
        ->allow_extra_args(false);
    app.add_flag("--json", line.json, "One JSON object a line");
    app.add_flag("-v,--verbose", line.verbose, "Log lines on standard error");
    app.add_flag("--show-secrets", line.showSecrets, "Show sensitive values");
    app.add_flag("--trust", line.trusted, "Use a named folder though others own it or everybody may write it");
    auto* offline = app.add_flag("--offline", line.offline, "Do not ask a running client");
    app.add_flag("--live", line.live, "Fail if no running client can be asked")->excludes(offline);
    app.fallthrough();
    app.footer(footer);
}

void applyProfile(const std::string& profile, KyrCoreUtils::HostDirectories& directories) {
    if (profile.empty()) {
        return;
    }
    const std::filesystem::path root(profile);
    directories = {(root / "config").string(), (root / "data").string(), (root / "state").string(),
                   (root / "resources").string()};
}

/// Returns the directories named by the user from which the program loads code or to which it writes settings. For a
/// profile, also returns its subdirectories.
std::vector<std::string> nameDirectories(const std::string& profile, const CommandLine& line) {
    const auto& folders = line.directories;
    std::vector<std::string> named{line.pluginDirectory, folders.config};
    if (!profile.empty()) {
        named.insert(named.end(), {profile, folders.applicationData, folders.state, folders.resources});
    }
    std::erase(named, "");
    return named;
}

/// The host compares its directories by path, so no path may depend on the working directory.
void makeAbsolute(std::string& directory) {
    if (!directory.empty()) {
        directory = std::filesystem::absolute(directory).lexically_normal().string();
    }
}

} // namespace

CommandLine CommandLine::parse(int argc, const char* const* argv) {
    CommandLine line;
    RawOptions raw;
    CLI::App app("Shows and changes the configuration of the Lumora client", "lumora-config");
    addOptions(app, raw, line);
    addCommands(app, line.command, CommandScope::CommandLine);
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        throw Failure(ExitCode::Done, app.help());
    } catch (const CLI::CallForVersion& version) {
        throw Failure(ExitCode::Done, version.what());
    } catch (const CLI::ParseError& error) {
        throw Failure(ExitCode::Usage, std::string(error.what()) + " (lumora-config --help shows how)");
    }
    applyProfile(raw.profile, line.directories);
    for (auto* directory : {&line.directories.config, &line.directories.applicationData, &line.directories.state,
                            &line.directories.resources, &line.pluginDirectory}) {
        makeAbsolute(*directory);
    }
    line.namedDirectories = nameDirectories(raw.profile, line);
    std::ranges::transform(raw.stores, std::back_inserter(line.stores), StoreSpec::parse);
    std::ranges::transform(raw.bootstraps, std::back_inserter(line.bootstraps), BootstrapSpec::parse);
    return line;
}

} // namespace lumora_config
