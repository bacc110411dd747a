#include "RequestJob.h"

#include <exception>
#include <utility>

namespace inspection {

bool RequestJob::guard(const std::function<void()>& step) const {
    try {
        step();
        return true;
    } catch (const RequestError& error) {
        answer(makeFailure(request, error.getCode(), error.what()));
    } catch (const std::exception& error) {
        answer(makeFailure(request, RequestError::Code::Environment, error.what()));
    }
    return false;
}

void runStep(const ServicesTasks& tasks, const JobPointer& job, std::function<void()> step) {
    tasks.run(job->nameTask(), [job, work = std::move(step)] { job->guard(work); });
}

} // namespace inspection
