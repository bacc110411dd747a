#include "MarkdownReporter.h"

#include <algorithm>
#include <iomanip>

namespace bench {

namespace {

void addOnce(std::vector<std::string>& names, const std::string& name) {
    if (std::find(names.begin(), names.end(), name) == names.end()) {
        names.push_back(name);
    }
}

} // namespace

bool MarkdownReporter::ReportContext(const Context& /*context*/) {
    return true;
}

void MarkdownReporter::ReportRuns(const std::vector<Run>& runs) {
    const bool repeated = std::any_of(runs.begin(), runs.end(), [](const Run& run) { return run.repetitions > 1; });
    for (const auto& run : runs) {
        if (run.error_occurred) {
            GetErrorStream() << run.benchmark_name() << ": " << run.error_message << '\n';
        } else if (!repeated || run.aggregate_name == "median") {
            record(run);
        }
    }
}

void MarkdownReporter::record(const Run& run) {
    const std::string& name = run.run_name.function_name;
    const auto slash = name.find('/');
    addOnce(cases, name.substr(0, slash));
    addOnce(subjects, name.substr(slash + 1));
    microseconds[name] = run.GetAdjustedRealTime() / benchmark::GetTimeUnitMultiplier(run.time_unit) * 1e6;
}

void MarkdownReporter::Finalize() {
    auto& out = GetOutputStream();
    out << "| microseconds |";
    for (const auto& subject : subjects) {
        out << ' ' << subject << " |";
    }
    out << "\n| --- |";
    for (std::size_t i = 0; i < subjects.size(); ++i) {
        out << " ---: |";
    }
    out << '\n' << std::fixed << std::setprecision(3);
    for (const auto& row : cases) {
        out << "| " << row << " |";
        for (const auto& subject : subjects) {
            const auto cell = microseconds.find(row + '/' + subject);
            out << ' ';
            if (cell != microseconds.end()) {
                out << cell->second;
            }
            out << " |";
        }
        out << '\n';
    }
}

} // namespace bench
