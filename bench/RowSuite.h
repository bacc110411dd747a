#pragma once

#include <chrono>
#include <cstddef>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

namespace bench {

/// Ends the program: a row that answers wrongly is not worth timing.
void require(bool holds, const char* what);

/// The seconds of processor time that the work takes.
template <typename Work>
double timed(Work work) {
    const auto begin = std::clock();
    work();
    return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

/// The seconds by the clock, for work that waits for a disk.
template <typename Work>
double timedByClock(Work work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

/// The rows of one program. Each is measured over and over, together with its limit, in an order that is drawn anew
/// each round, so that a slow spell of the machine meets both.
///
/// With "--growth" the program measures its rows at several sizes; with "--instructions" it runs each of its own
/// subjects so that a profiler can count (`scripts/bench instructions`).
class RowSuite {
public:
    /// Does the work that many times.
    using Run = std::function<void(std::size_t times)>;
    /// Does the work once and tells the seconds that count.
    using TimedRun = std::function<double()>;

    RowSuite(int argc, char** argv);

    bool measuresGrowth() const { return growth; }

    void add(const std::string& row, const std::string& subject, Run run);
    /// `calls` of it make a round.
    void addTimed(const std::string& row, const std::string& subject, int calls, TimedRun run);

    /// A figure that is not a time.
    void addBytes(const std::string& row, const std::string& subject, double bytes);

    /// The program's exit code.
    int main();

private:
    struct Counted {
        std::string name;
        Run run;
    };

    void countInstructions() const;

    std::string interleaving = "--benchmark_enable_random_interleaving=true";
    std::vector<char*> arguments;
    bool growth = false;
    bool counts = false;
    std::vector<Counted> counted;
};

} // namespace bench
