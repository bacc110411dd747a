#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace bench {

/// Prints one Markdown table: a benchmark named "case/subject" is a cell in the row of its case and the column of its
/// subject, in microseconds. Of repeated runs the median counts.
class MarkdownReporter final : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context& context) override;
    void ReportRuns(const std::vector<Run>& runs) override;
    void Finalize() override;

private:
    void record(const Run& run);

    std::vector<std::string> cases;
    std::vector<std::string> subjects;
    std::map<std::string, double> microseconds; ///< By the benchmark's name.
};

} // namespace bench
