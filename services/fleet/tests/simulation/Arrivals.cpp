#include "Arrivals.h"

#include <stdexcept>

namespace fleet_test {

namespace {

constexpr std::chrono::seconds patience(1200);

} // namespace

std::vector<Arrivals::Clock::duration> Arrivals::measure(const std::wstring& value,
                                                         const std::function<void()>& write) {
    {
        const std::lock_guard lock(mutex);
        expected = value;
        hasArrived.assign(hasArrived.size(), false);
        missing = times.size();
        start = Clock::now();
    }
    write();
    std::unique_lock lock(mutex);
    if (!complete.wait_for(lock, patience, [this] { return missing == 0; })) {
        throw std::runtime_error(std::to_string(missing) + " of " + std::to_string(times.size()) +
                                 " clients have not received a change");
    }
    return times;
}

void Arrivals::receive(std::size_t client, const std::wstring& value) {
    const auto now = Clock::now();
    const std::lock_guard lock(mutex);
    if (missing == 0 || value != expected || hasArrived[client]) {
        return;
    }
    times[client] = now - start;
    hasArrived[client] = true;
    if (--missing == 0) {
        complete.notify_all();
    }
}

} // namespace fleet_test
