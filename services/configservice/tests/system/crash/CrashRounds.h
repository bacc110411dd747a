#pragma once

namespace crash_test {

/// The kills of each test of this program. LUMORA_CRASH_ROUNDS is the number of all of them together.
unsigned long countRounds();
/// LUMORA_CRASH_SEED, which repeats a run as far as the scheduler does, or a new one.
unsigned long chooseSeed();

} // namespace crash_test
