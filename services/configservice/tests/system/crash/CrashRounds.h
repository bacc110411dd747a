#pragma once

namespace crash_test {

/// Returns the number of kills per test of this program. LUMORA_CRASH_ROUNDS sets the total of all tests.
unsigned long countRounds();
/// Returns LUMORA_CRASH_SEED, which repeats a run as far as the scheduler allows, or a random seed.
unsigned long chooseSeed();

} // namespace crash_test
