#pragma once

#include "Service.h"
#include "ServiceStep.h"

#include <span>
#include <string>
#include <vector>

namespace config_model {

/// Calls the steps on a service and records all observable effects.
class ServiceScript {
public:
    /// Loads the service.
    explicit ServiceScript(Service& subject);
    ServiceScript(const ServiceScript&) = delete;
    ServiceScript& operator=(const ServiceScript&) = delete;

    /// Performs the step. Returns the result, the properties that the observed records fired, and the contents of the
    /// records and of the folder of copies.
    std::vector<std::string> perform(const ServiceStep& step);
    /// Returns the value of every key, read in every way.
    std::vector<std::string> readEverything();

private:
    std::string call(const ServiceStep& step);
    std::string read(const std::wstring& key, bool skipLocal);
    static const std::vector<std::wstring>& watchedKeys();

    Service& service;
    std::vector<std::string> trace;
};

/// Performs the steps on the model and on the product. Returns "" if both behave alike, otherwise the steps up to the
/// first difference, and the difference.
std::string compareServices(std::span<const ServiceStep> steps);

} // namespace config_model
