#include "Bundle.h"

#include "Archive.h"
#include "BundleMask.h"
#include "FindingsMask.h"
#include "MaskedReport.h"
#include "Versions.h"
#include "output/Failure.h"
#include "output/JsonPrinter.h"
#include "output/TextPrinter.h"

#include <kyr/FileUtils.h>
#include <kyr/ProcessUtils.h>
#include <kyr/StringUtils.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <iterator>
#include <set>
#include <string>
#include <utility>

namespace lumora_config {

namespace {

using KyrCoreUtils::FileUtils;
using KyrCoreUtils::ProcessUtils;

/// Returns what a printer prints into a file.
template <class MakePrinter>
std::string capture(const MakePrinter& makePrinter, const std::function<void(Printer&)>& print) {
    std::string text;
    Output output({}, [&text](std::string_view part) {
        text += part;
        return 0;
    });
    auto printer = makePrinter(output);
    print(printer);
    return text;
}

std::string printJson(const std::function<void(Printer&)>& print) {
    return capture([](Output& output) { return JsonPrinter(output, output, JsonPrinter::Failures::AsText); }, print);
}

std::string printText(const std::function<void(Printer&)>& print) {
    return capture([](Output& output) { return TextPrinter(output, output); }, print);
}

/// Collects the members of a bundle.
class Members {
public:
    void add(const std::string& name, const std::string& contents, std::string content) {
        summary.push_back({name, content.size(), contents});
        members.push_back({name, std::move(content)});
    }

    /// Lists a member that cannot be made with the reason instead.
    void tryToAdd(const std::string& name, const std::string& contents, const std::function<std::string()>& make) {
        try {
            add(name, contents, make());
        } catch (const Failure& failure) {
            summary.push_back({name, 0, std::string("left out: ") + failure.what()});
        }
    }

    Bundle finish(const ChainFindings& chain, const std::string& pluginDirectory) && {
        BundleSummary list{"", chain.madeAt, summary, {}};
        std::ranges::copy_if(chain.health.items, std::back_inserter(list.problems), &HealthItem::needsAttention);
        auto index = printText([&](Printer& printer) { printer.showBundle(list); });
        list.members.insert(list.members.begin(), {"index.txt", index.size(), "this list"});
        members.insert(members.begin(), {"index.txt", std::move(index)});
        return {makeArchive(members, std::chrono::system_clock::now(), pluginDirectory), std::move(list)};
    }

private:
    std::vector<ArchiveMember> members;
    std::vector<BundleMember> summary;
};

constexpr bool isPlain(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '_';
}

BundleMask makeMask(const BundleContent& content) {
    return BundleMask({content.secrets, content.sensitiveKeys, ProcessUtils::getUserName(), content.chain.host});
}

/// Makes the names of the log files in an archive. Any system can unpack them: they consist of ASCII letters, digits,
/// points, hyphens and underscores, and differ if case is ignored.
class LogNames {
public:
    explicit LogNames(const BundleMask& usedMask) : mask(usedMask) {}

    std::string add(const std::string& file) {
        auto name = mask.mask(file);
        std::ranges::replace_if(
            name, [](char c) { return !isPlain(c) && c != '.'; }, '_');
        const auto extension = std::min(name.rfind('.'), name.size());
        auto unique = name;
        for (int number = 2; !used.insert(KyrCoreUtils::toLowercase(unique)).second; ++number) {
            unique = name.substr(0, extension) + '-' + std::to_string(number) + name.substr(extension);
        }
        return unique;
    }

private:
    const BundleMask& mask;
    std::set<std::string> used;
};

} // namespace

Bundle makeBundle(BundleContent content) {
    const auto mask = makeMask(content);
    maskFindings(content.chain, mask);
    maskFindings(content.values, mask);
    const auto& chain = content.chain;
    Members members;
    members.add("page.html", "the page of report --html", renderChainPage(chain));
    members.tryToAdd("report.xml", "the stores of report", [&] { return maskReport(content.report, mask); });
    members.add("stores.json", "the answer to stores",
                printJson([&](Printer& printer) { printer.showStores(chain.stores); }));
    members.add("list.json", "the answer to list",
                printJson([&](Printer& printer) { printer.showList(content.values); }));
    members.add("explain.json", "the answer to explain for each key, one on each line",
                printJson([&](Printer& printer) {
                    std::ranges::for_each(chain.keys, [&](const auto& key) { printer.showExplanation(key); });
                }));
    members.add("health.json", "the answer to doctor",
                printJson([&](Printer& printer) { printer.showHealth(chain.health); }));
    members.add("versions.json", "the versions of program, libraries and system",
                describeVersions(content.client, content.pluginDirectory));
    LogNames names(mask);
    for (const auto& log : content.logs) {
        members.add("log/" + names.add(log.name), "a log file", mask.maskLog(log.text));
    }
    return std::move(members).finish(chain, content.pluginDirectory);
}

std::string nameBundle(const std::string& configDirectory, const std::string& madeAt) {
    const BundleMask mask({{}, {}, ProcessUtils::getUserName(), ProcessUtils::getHostName()});
    auto profile = mask.mask(FileUtils::getFileName(FileUtils::getParentDirectory(configDirectory)));
    std::erase_if(profile, [](char c) { return !isPlain(c); });
    auto time = madeAt;
    std::erase_if(time, [&](char c) { return c == '-' || c == ':'; });
    return "lumora-config-" + (profile.empty() ? "" : profile + '-') + time + ".zip";
}

} // namespace lumora_config
