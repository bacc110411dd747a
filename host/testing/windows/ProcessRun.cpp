#include "ProcessRun.h"

#include "RunningProcess.h"

#include <thread>

namespace testing_host {

ProcessRun ProcessRun::start(const std::string& program, const std::vector<std::string>& arguments,
                             const std::string& input) {
    RunningProcess process(program, arguments);
    ProcessRun run;
    std::thread errorReader([&] {
        for (auto text = process.readError(); !text.empty(); text = process.readError()) {
            run.error += text;
        }
    });
    std::thread writer([&] {
        process.write(input);
        process.closeInput();
    });
    for (auto text = process.readOutput(); !text.empty(); text = process.readOutput()) {
        run.out += text;
    }
    writer.join();
    errorReader.join();
    run.exitCode = process.waitForEnd();
    return run;
}

} // namespace testing_host
