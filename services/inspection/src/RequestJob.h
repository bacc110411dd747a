#pragma once

#include "InspectionRequest.h"
#include "ServicesTasks.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace inspection {

/// A request with the function that receives its answer. The tasks that carry it out share it; they run one after the
/// other.
struct RequestJob {
    /// Receives the reply, exactly once, on any thread. If the client ends first, it is destroyed without a call.
    using Answer = std::function<void(Json)>;

    RequestJob(InspectionRequest asked, Answer reply) : request(std::move(asked)), answer(std::move(reply)) {}

    void reply(Json result) const { answer(makeReply(request.id, std::move(result))); }
    void reportDone(const std::string& message) const {
        reply({{"type", "done"}, {"command", request.verb}, {"message", message}});
    }
    /// Runs a step. If it throws, answers with the failure and returns false.
    bool guard(const std::function<void()>& step) const;
    std::string nameTask() const { return "inspection: " + request.verb; }

    const InspectionRequest request;
    const Answer answer;
    Json collected; ///< The part of the answer that earlier slices have made.
};

using JobPointer = std::shared_ptr<RequestJob>;

/// Runs a step of the job later on the services dispatcher's thread.
void runStep(const ServicesTasks& tasks, const JobPointer& job, std::function<void()> step);

} // namespace inspection
