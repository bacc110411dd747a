// For any sequence of calls encoded by the bytes, the manager of the chain and the model return and announce the same.
#include <ChainScript.h>
#include <ChainStep.h>
#include <TemporaryProfile.h>
#include <UnsyncedFiles.h>

#include <cstdint>
#include <cstdlib>
#include <iostream>

// libFuzzer prescribes the name.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) { // NOLINT(readability-identifier-naming)
    static const testing_host::TemporaryProfile profile;
    static const config_model::UnsyncedFiles files;
    const auto difference = config_model::compareChains(config_model::readChainSteps({data, size}));
    if (!difference.empty()) {
        std::cerr << difference;
        std::abort();
    }
    return 0;
}
