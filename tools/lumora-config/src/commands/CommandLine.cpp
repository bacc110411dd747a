#include "CommandLine.h"

#include "UsageMessage.h"
#include "output/Failure.h"

#include <kyr/Paths.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <iterator>

namespace lumora_config {

using KyrCoreUtils::toPath;
using KyrCoreUtils::toText;

namespace {

constexpr auto footer =
    "Exit codes: 0 found or done, 1 not found or refused, 2 usage, 3 environment (no plug-in, profile "
    "in use, unreadable file, change not on the disk).\nSensitive values are shown as VALUE_HIDDEN.";

/// The options as text, before they are parsed.
struct RawOptions {
    std::string profile;
    std::vector<std::string> plugins;
    std::vector<std::string> stores;
    std::vector<std::string> bootstraps;
};

void addDirectories(CLI::App& app, RawOptions& raw, CommandLine& line) {
    auto* profile =
        app.add_option("--profile", raw.profile, "Use the folders config, data, state and resources in this one");
    profile->type_name("DIR");
    const auto add = [&](const std::string& name, std::string& target, const std::string& help) {
        app.add_option(name, target, help)->type_name("DIR")->excludes(profile);
    };
    add("--config-dir", line.directories.config, "The configuration directory; a reset empties it");
    add("--data-dir", line.directories.applicationData, "Application data: keys and registry files");
    add("--state-dir", line.directories.state, "Logs, and the number of the process that uses the profile");
    add("--resources-dir", line.directories.resources, "Installed resources: the defaults file");
    app.add_option("--plugin-dir", line.pluginDirectory, "Folder of the plug-in, instead of the installed one")
        ->type_name("DIR");
    app.add_option("--plugin", raw.plugins, "Also load the plug-in of this interface; may be repeated")
        ->type_name("NAME=LIBRARY")
        ->allow_extra_args(false);
}

void addOptions(CLI::App& app, RawOptions& raw, CommandLine& line) {
    app.set_version_flag("--version", std::string("lumora-config ") + LUMORA_VERSION);
    addDirectories(app, raw, line);
    app.add_option("--store", raw.stores, "Add a read-only store of this XML file; may be repeated")
        ->type_name("FILE.xml:NAME:PRIORITY[:cache]")
        ->allow_extra_args(false);
    app.add_option("--bootstrap", raw.bootstraps, "Add the installer's file of key:value lines; may be repeated")
        ->type_name("FILE:PRIORITY")
        ->allow_extra_args(false);
    app.add_flag("--json", line.json, "Print one JSON object per line");
    app.add_flag("-v,--verbose", line.verbose, "Print log lines on standard error");
    app.add_flag("--show-secrets", line.showSecrets, "Show sensitive values");
    app.add_flag("--trust", line.trusted,
                 "Use a named folder or library even if another user owns it or everybody may write it");
    auto* offline = app.add_flag("--offline", line.offline, "Do not ask a running client");
    app.add_flag("--live", line.live, "Fail if no running client can be asked")->excludes(offline);
    app.fallthrough();
    app.footer(footer);
}

/// The host compares its directories by path, so no path may depend on the working directory.
void makeAbsolute(std::string& directory) {
    if (!directory.empty()) {
        directory = toText(std::filesystem::absolute(toPath(directory)).lexically_normal());
    }
}

constexpr auto description = "Shows and changes the configuration of the Lumora client";
constexpr auto programName = "lumora-config";

} // namespace

CommandLine CommandLine::parse(int argc, const char* const* argv) {
    CommandLine line;
    RawOptions raw;
    CLI::App app(description, programName);
    addOptions(app, raw, line);
    addCommands(app, line.command, CommandScope::CommandLine);
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        throw Failure(ExitCode::Done, app.help());
    } catch (const CLI::CallForVersion& version) {
        throw Failure(ExitCode::Done, version.what());
    } catch (const CLI::ParseError& error) {
        throw Failure(ExitCode::Usage, describeUsage(app, error) + " (lumora-config help shows how)");
    }
    if (line.command.name == "help") {
        throw Failure(ExitCode::Done, getHelp(app, line.command.topic));
    }
    if (!raw.profile.empty()) {
        line.directories = directoriesOfProfile(raw.profile);
    }
    for (auto* directory : {&line.directories.config, &line.directories.applicationData, &line.directories.state,
                            &line.directories.resources, &line.pluginDirectory}) {
        makeAbsolute(*directory);
    }
    line.command.pluginDirectory = line.pluginDirectory;
    line.pathsToTrust = collectFoldersToTrust(raw.profile, line.directories);
    if (!line.pluginDirectory.empty()) {
        line.pathsToTrust.insert(line.pathsToTrust.begin(), line.pluginDirectory);
    }
    std::ranges::transform(raw.plugins, std::back_inserter(line.plugins), PluginSpec::parse);
    for (const auto& plugin : line.plugins) {
        const auto library = toPath(plugin.library);
        line.pathsToTrust.insert(line.pathsToTrust.end(), {toText(library.parent_path()), plugin.library});
    }
    std::ranges::transform(raw.stores, std::back_inserter(line.stores), StoreSpec::parse);
    std::ranges::transform(raw.bootstraps, std::back_inserter(line.bootstraps), BootstrapSpec::parse);
    return line;
}

void CommandLine::withGrammar(const std::function<void(const CLI::App& grammar)>& use) {
    CommandLine line;
    RawOptions raw;
    CLI::App app(description, programName);
    addOptions(app, raw, line);
    addCommands(app, line.command, CommandScope::CommandLine);
    use(app);
}

KyrCoreUtils::HostDirectories directoriesOfProfile(const std::string& profile) {
    auto absolute = profile;
    makeAbsolute(absolute);
    const auto root = toPath(absolute);
    return {toText(root / "config"), toText(root / "data"), toText(root / "state"), toText(root / "resources")};
}

std::vector<std::string> collectFoldersToTrust(const std::string& profile,
                                               const KyrCoreUtils::HostDirectories& folders) {
    std::vector<std::string> collected{profile, folders.config, folders.applicationData, folders.state,
                                       folders.resources};
    std::erase(collected, "");
    return collected;
}

} // namespace lumora_config
