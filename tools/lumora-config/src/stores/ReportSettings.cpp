#include "ReportSettings.h"

#include "XmlSettings.h"
#include "output/Failure.h"

#include <ConfigCatalogue.h>
#include <ConfigMap.h>

#include <algorithm>

namespace lumora_config {

namespace ConfigKeys = ZelUnified::ConfigKeys;

std::string_view findReportedStores(std::string_view report, const std::string& name) {
    constexpr std::string_view empty = "<AllMemoryConfigs/>";
    if (report.find(empty) != std::string_view::npos) {
        return empty;
    }
    constexpr std::string_view end = "</AllMemoryConfigs>";
    const auto from = report.find("<AllMemoryConfigs>");
    const auto to = report.find(end, std::min(from, report.size()));
    if (to == std::string_view::npos) {
        throw Failure(ExitCode::Environment, name + ": neither a dump nor a report");
    }
    return report.substr(from, to + end.size() - from);
}

SettingsDump parseReport(std::string_view report, const std::string& name) {
    SettingsDump dump{"report", {}, name};
    ZelUnified::ConfigKeySet found;
    const auto settings = parseXmlSettings(findReportedStores(report, name), name);
    for (const bool byOldName : {false, true}) {
        for (const auto& setting : settings) {
            const auto names = ConfigKeys::getKeyNames(setting.key);
            if (names.isRequestedByOldName == byOldName && found.insert(names.newName).second) {
                dump.settings.push_back(
                    {std::wstring(ConfigKeys::spellKey(setting.key)), setting.value, setting.group, false, false});
            }
        }
    }
    return dump;
}

} // namespace lumora_config
