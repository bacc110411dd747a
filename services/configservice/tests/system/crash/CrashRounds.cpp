#include "CrashRounds.h"

#include <cstdlib>
#include <random>

namespace crash_test {

namespace {

constexpr unsigned long tests = 5;

unsigned long fromEnvironment(const char* name, unsigned long otherwise) {
    const char* text = std::getenv(name);
    return text != nullptr ? std::strtoul(text, nullptr, 10) : otherwise;
}

} // namespace

unsigned long countRounds() {
    return fromEnvironment("LUMORA_CRASH_ROUNDS", 500) / tests;
}

unsigned long chooseSeed() {
    return fromEnvironment("LUMORA_CRASH_SEED", std::random_device()());
}

} // namespace crash_test
