// Whatever calls the bytes stand for, the whole service and the model of its rules answer and show the same.
#include <ServiceScript.h>
#include <ServiceStep.h>

#include <cstdint>
#include <cstdlib>
#include <iostream>

// The name is libFuzzer's.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) { // NOLINT(readability-identifier-naming)
    const auto difference = config_model::compareServices(config_model::readServiceSteps({data, size}));
    if (!difference.empty()) {
        std::cerr << difference;
        std::abort();
    }
    return 0;
}
