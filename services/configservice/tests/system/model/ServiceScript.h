#pragma once

#include "Service.h"
#include "ServiceStep.h"

#include <span>
#include <string>
#include <vector>

namespace config_model {

/// Makes the calls of steps on a service, and writes down everything that can be seen of them.
class ServiceScript {
public:
    /// Loads the service.
    explicit ServiceScript(Service& subject);
    ServiceScript(const ServiceScript&) = delete;
    ServiceScript& operator=(const ServiceScript&) = delete;

    /// The answer, what the watched records fired, and what they and the folder of copies hold then.
    std::vector<std::string> perform(const ServiceStep& step);
    /// Every key read in every way.
    std::vector<std::string> readEverything();

private:
    std::string call(const ServiceStep& step);
    std::string read(const std::wstring& key, bool skipLocal);
    static const std::vector<std::wstring>& watchedKeys();

    Service& service;
    std::vector<std::string> trace;
};

/// The steps on the model and on the product. Empty when both do the same; else the steps up to the first difference,
/// and the difference.
std::string compareServices(std::span<const ServiceStep> steps);

} // namespace config_model
