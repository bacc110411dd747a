#pragma once

#include <chrono>
#include <cstddef>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

namespace bench {

/// Ends the program if `holds` is false: a row with wrong answers must not be timed.
void require(bool holds, const char* what);

/// Returns the processor time of the work in seconds.
template <typename Work>
double timed(Work work) {
    const auto begin = std::clock();
    work();
    return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

/// Returns the wall-clock time in seconds, for work that waits for a disk.
template <typename Work>
double timedByClock(Work work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

/// The rows of one program. Each row is measured repeatedly together with its limit, in a random order per round, so
/// that a slow phase of the machine affects both.
///
/// With "--growth" the program measures its rows at several sizes. With "--instructions" it runs each of its own
/// subjects under a profiler that counts (`scripts/bench instructions`), with "--lines" the limits too (`scripts/bench
/// lines`).
class RowSuite {
public:
    /// Does the work `times` times.
    using Run = std::function<void(std::size_t times)>;
    /// Does the work once and returns the measured seconds.
    using TimedRun = std::function<double()>;

    RowSuite(int argc, char** argv);

    bool measuresGrowth() const { return growth; }
    /// Returns true under a profiler, which makes the program fifty times slower.
    bool isProfiled() const { return counts; }

    void add(const std::string& row, const std::string& subject, Run run);
    /// Adds a timed subject; a round makes `calls` calls.
    void addTimed(const std::string& row, const std::string& subject, int calls, TimedRun run);

    /// Adds a figure in this unit instead of a time.
    void addFigure(const std::string& row, const std::string& subject, double figure, const std::string& unit);
    /// Adds a figure in bytes.
    void addBytes(const std::string& row, const std::string& subject, double bytes) {
        addFigure(row, subject, bytes, "bytes");
    }

    /// Measures all rows. Returns the exit code of the program.
    int main();

private:
    struct Counted {
        std::string name;
        Run run;
    };

    void runProfiled() const;

    std::string interleaving = "--benchmark_enable_random_interleaving=true";
    std::vector<char*> arguments;
    bool growth = false;
    bool counts = false;
    bool countsLimits = false;
    std::vector<Counted> counted;
};

} // namespace bench
