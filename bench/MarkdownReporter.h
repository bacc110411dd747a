#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace bench {

/// Prints one Markdown table. A benchmark is named "row/subject". A subject that begins with "bare" is the limit of its
/// row; every other subject of the row gets a line with its own figure, the limit's figure, and the ratio. For repeated
/// runs it prints the median; the spread is half the distance between the quartiles.
///
/// Times are processor times, since waiting would distort them on a shared machine. Benchmarks that wait for a disk use
/// the wall clock (`UseRealTime`).
///
/// A run with a counter reports its figure, with its name as the unit, instead of time.
class MarkdownReporter final : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context& context) override;
    void ReportRuns(const std::vector<Run>& runs) override;
    void Finalize() override;

private:
    struct Figure {
        double median = 0;
        double spread = 0; ///< As a fraction of the median.
        std::string unit;  ///< Of a figure that is not a time.
    };

    static Figure summarise(const std::vector<Run>& runs);
    static std::string describe(const Figure& figure);
    void printLine(const std::string& row, const std::string& subject, const Figure& figure);

    std::map<std::string, Figure> figures; ///< Keyed by the name of the benchmark.
    std::map<std::string, Figure> limits;  ///< Keyed by the row.
};

} // namespace bench
