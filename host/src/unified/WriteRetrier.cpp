#include "WriteRetrier.h"

#include "zel/storage/PendingWrites.h"

#include <kyr/LockGuard.h>
#include <zel/EncryptFileUtils.h>

#include <algorithm>
#include <thread>
#include <utility>

namespace ZelUnified {

namespace {

using zel::storage::EncryptFileUtils;
using zel::storage::PendingWrites;

constexpr std::int64_t firstDelay = 1;
constexpr std::int64_t longestDelay = 60;

} // namespace

WriteRetrier::WriteRetrier(std::weak_ptr<Processing::TaskDispatcher> dispatcher) : background(std::move(dispatcher)) {}

WriteRetrier::~WriteRetrier() = default;

void WriteRetrier::start() {
    PendingWrites::instance().setListener([weak = weak_from_this()] {
        if (const auto self = weak.lock()) {
            self->onKept();
        }
    });
}

void WriteRetrier::retryNow() {
    EncryptFileUtils::retryPendingWrites();
}

void WriteRetrier::finish(std::chrono::milliseconds limit) {
    constexpr std::chrono::milliseconds pause(50);
    {
        const KyrCoreUtils::LockGuard lock(mutex);
        stopped = true;
    }
    timer.stop();
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (!EncryptFileUtils::retryPendingWrites() && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(pause);
    }
    PendingWrites::instance().giveUp("");
}

void WriteRetrier::onKept() {
    const KyrCoreUtils::LockGuard lock(mutex);
    if (!stopped && !armed) {
        delay = firstDelay;
        armed = true;
        timer.start(weak_from_this(), delay);
    }
}

/// Called on the timer's thread, which must not write to a disk.
void WriteRetrier::onTimer() {
    if (const auto dispatcher = background.lock()) {
        dispatcher->enqueue([self = shared_from_this()] { self->retryAndRearm(); },
                            "EncryptFileUtils::retryPendingWrites");
    }
}

void WriteRetrier::retryAndRearm() {
    const bool done = EncryptFileUtils::retryPendingWrites();
    const KyrCoreUtils::LockGuard lock(mutex);
    armed = !done && !stopped;
    if (armed) {
        delay = std::min(delay * 2, longestDelay);
        timer.start(weak_from_this(), delay);
    }
}

} // namespace ZelUnified
