// For any sequence of calls encoded by the bytes, the whole service and the model return and show the same.
#include <ServiceScript.h>
#include <ServiceStep.h>

#include <cstdint>
#include <cstdlib>
#include <iostream>

// libFuzzer prescribes the name.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) { // NOLINT(readability-identifier-naming)
    const auto difference = config_model::compareServices(config_model::readServiceSteps({data, size}));
    if (!difference.empty()) {
        std::cerr << difference;
        std::abort();
    }
    return 0;
}
