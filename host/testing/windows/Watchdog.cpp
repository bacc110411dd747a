#include "Watchdog.h"

#include <cstdio>
#include <cstdlib>

namespace testing_host {

// Without stacks: this platform cannot show those of other threads.
Watchdog::Watchdog(std::chrono::seconds limit)
    : thread([this, limit] {
          if (!done.waitFor(limit)) {
              std::fputs("The test hangs.\n", stderr);
              std::abort();
          }
      }) {}

Watchdog::~Watchdog() {
    done.set();
    thread.join();
}

} // namespace testing_host
