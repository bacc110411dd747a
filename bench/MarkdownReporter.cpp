#include "MarkdownReporter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iomanip>
#include <sstream>
#include <string_view>
#include <utility>

namespace bench {

namespace {

std::pair<std::string, std::string> toRowAndSubject(const std::string& name) {
    const auto slash = name.find('/');
    return {name.substr(0, slash), slash == std::string::npos ? "" : name.substr(slash + 1)};
}

bool isLimit(const std::string& subject) {
    return subject.starts_with("bare");
}

/// Interpolates between the two neighbouring values, as most statistics programs do.
double quantile(const std::vector<double>& sorted, double part) {
    const double place = part * static_cast<double>(sorted.size() - 1);
    const auto below = static_cast<std::size_t>(place);
    const auto above = std::min(below + 1, sorted.size() - 1);
    return sorted[below] + (place - std::floor(place)) * (sorted[above] - sorted[below]);
}

/// Formats with at least three significant digits.
std::string toDigits(double number) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(number < 10 ? 2 : number < 100 ? 1 : 0) << number;
    return text.str();
}

} // namespace

bool MarkdownReporter::ReportContext(const Context& /*context*/) {
    return true;
}

void MarkdownReporter::ReportRuns(const std::vector<Run>& runs) {
    if (runs.empty()) {
        return;
    }
    for (const auto& run : runs) {
        if (run.error_occurred) {
            GetErrorStream() << run.benchmark_name() << ": " << run.error_message << '\n';
            return;
        }
    }
    if (runs.front().run_type == Run::RT_Aggregate) {
        return; // this table is computed from the individual runs
    }
    const std::string& name = runs.front().run_name.function_name;
    const auto [row, subject] = toRowAndSubject(name);
    const Figure figure = summarise(runs);
    if (isLimit(subject)) {
        limits[row] = figure;
    } else {
        figures[name] = figure;
    }
}

MarkdownReporter::Figure MarkdownReporter::summarise(const std::vector<Run>& runs) {
    Figure figure;
    std::vector<double> sorted;
    for (const auto& run : runs) {
        if (run.run_type != Run::RT_Iteration) {
            continue;
        }
        const auto counter = run.counters.begin();
        const bool isCounted = counter != run.counters.end();
        figure.unit = isCounted ? counter->first : "";
        const double time = run.run_name.time_type.empty() ? run.GetAdjustedCPUTime() : run.GetAdjustedRealTime();
        sorted.push_back(isCounted ? counter->second.value
                                   : time / benchmark::GetTimeUnitMultiplier(run.time_unit) * 1e9);
    }
    std::sort(sorted.begin(), sorted.end());
    figure.median = quantile(sorted, 0.5);
    figure.spread = figure.median > 0 ? (quantile(sorted, 0.75) - quantile(sorted, 0.25)) / 2 / figure.median : 0;
    return figure;
}

std::string MarkdownReporter::describe(const Figure& figure) {
    if (!figure.unit.empty()) {
        return toDigits(figure.median) + ' ' + figure.unit + " | ";
    }
    constexpr std::array<std::pair<double, const char*>, 4> units{{{1, "ns"}, {1e3, "µs"}, {1e6, "ms"}, {1e9, "s"}}};
    const auto* unit = &units.front();
    for (const auto& larger : units) {
        if (figure.median >= larger.first) {
            unit = &larger;
        }
    }
    std::ostringstream text;
    text << toDigits(figure.median / unit->first) << ' ' << unit->second << " | " << std::fixed << std::setprecision(1)
         << figure.spread * 100 << " %";
    return text.str();
}

void MarkdownReporter::printLine(const std::string& row, const std::string& subject, const Figure& figure) {
    auto& out = GetOutputStream();
    out << "| " << row << " | " << subject << " | " << describe(figure) << " | ";
    const auto limit = limits.find(row);
    if (limit == limits.end()) {
        out << "| | |\n";
        return;
    }
    out << describe(limit->second) << " | " << toDigits(figure.median / limit->second.median) << " |\n";
}

void MarkdownReporter::Finalize() {
    GetOutputStream() << "| row | subject | median | spread | limit | spread | ratio |\n"
                         "| --- | --- | ---: | ---: | ---: | ---: | ---: |\n";
    // Rounds do not end in the order of the rows.
    for (const auto& [name, figure] : figures) {
        const auto [row, subject] = toRowAndSubject(name);
        printLine(row, subject, figure);
    }
}

} // namespace bench
