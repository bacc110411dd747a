#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace bench {

/// Prints one Markdown table. A benchmark is named "row/subject"; a subject that begins with "bare" is the limit of its
/// row, and every other subject of the row gets a line with its own figure, the limit's, and the ratio of the two. Of
/// repeated runs the median counts, and the spread is half the distance between the quartiles.
///
/// Times are the processor's: on a machine that others share, what waits longest would look slowest. Benchmarks that
/// wait for a disk ask for the time of the clock (`UseRealTime`).
///
/// A run with a counter "bytes" tells bytes instead of time.
class MarkdownReporter final : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context& context) override;
    void ReportRuns(const std::vector<Run>& runs) override;
    void Finalize() override;

private:
    struct Figure {
        double median = 0;
        double spread = 0; ///< A part of the median.
        bool inBytes = false;
    };

    static Figure summarise(const std::vector<Run>& runs);
    static std::string describe(const Figure& figure);
    void printLine(const std::string& row, const std::string& subject, const Figure& figure);

    std::map<std::string, Figure> figures; ///< By the benchmark's name.
    std::map<std::string, Figure> limits;  ///< By the row.
};

} // namespace bench
