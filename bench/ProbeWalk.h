#pragma once

#include "RowSuite.h"
#include "Workload.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <memory>
#include <vector>

namespace bench {

/// Looks up one probe after another, and starts again after the last.
template <typename Ask>
RowSuite::Run walkOver(const std::vector<Probe>& probes, Ask ask) {
    return [&probes, ask, position = std::make_shared<std::size_t>(0)](std::size_t times) {
        std::size_t at = *position;
        while (times-- > 0) {
            benchmark::DoNotOptimize(ask(probes[at].key));
            at = at + 1 == probes.size() ? 0 : at + 1;
        }
        *position = at;
    };
}

} // namespace bench
