#include "LiveSettings.h"

#include "commands/DumpCommands.h"
#include "output/Failure.h"
#include "output/SettingsText.h"
#include "stores/ReportSettings.h"

#include <kyr/StringUtils.h>

#include <nlohmann/json.hpp>
#include <utility>

namespace lumora_config {

using Json = InspectionClient::Json;
using KyrCoreUtils::toString;

namespace {

/// Half of what the client accepts, since the rest of a request takes some bytes, too.
constexpr std::size_t mostBytesOfRequest = std::size_t{512} * 1024;

} // namespace

SettingsDump LiveSettings::read(const std::string& source, bool showSecrets) {
    if (source == "report") {
        return parseReport(client.ask({{"verb", "report"}}).at("text").get<std::string>(), "");
    }
    Json request{{"verb", "dump"}, {"showSecrets", showSecrets}};
    const bool isChain = source.empty() || source == "user" || source == "effective" || source == "administrator";
    request[isChain ? "source" : "store"] = source.empty() ? "user" : source;
    const auto reply = client.ask(std::move(request));
    return parseJsonDump(reply.dump(-1, ' ', false, Json::error_handler_t::replace), "");
}

void LiveSettings::dump(const Command& command, bool showSecrets, Printer& printer) {
    finishDump(command, read(nameDumpSource(command), showSecrets), showSecrets, printer);
}

void LiveSettings::load(const Command& command, const CommandInput& input, Printer& printer) {
    const auto content = readDump(input, command.file);
    LoadSummary summary;
    summary.file = content.name;
    summary.dryRun = command.dryRun;
    Json request{{"verb", "load"}, {"more", true}, {"values", Json::array()}};
    std::size_t bytes = 0;
    for (const auto& [key, value] : collectValues(content, command.forced, summary)) {
        Json entry{{"key", toString(key)}, {"value", toString(value)}};
        const auto length = entry.dump(-1, ' ', false, Json::error_handler_t::replace).size();
        if (bytes != 0 && bytes + length > mostBytesOfRequest) {
            client.ask(request);
            request["values"] = Json::array();
            bytes = 0;
        }
        bytes += length;
        request["values"].push_back(std::move(entry));
    }
    request["more"] = false;
    request["dryRun"] = command.dryRun;
    request["force"] = command.forced;
    const auto reply = client.ask(std::move(request));
    summary.added = reply.at("added");
    summary.changed = reply.at("changed");
    summary.unchanged = reply.at("unchanged");
    printer.showLoad(summary);
}

} // namespace lumora_config
