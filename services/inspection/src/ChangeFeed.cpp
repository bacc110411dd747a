#include "ChangeFeed.h"

#include <ConfigCatalogue.h>

#include <map>
#include <utility>
#include <vector>

namespace inspection {

using ZelUnified::ConfigKeys::getKeyNames;

namespace {

constexpr std::size_t changesOfSlice = 64;

} // namespace

ChangeFeed::ChangeFeed(const std::shared_ptr<ZelUnified::UnifiedFactory>& factory,
                       std::shared_ptr<const ConfigInspector> configInspector, const InspectionLimits& limits,
                       PostToSocket poster)
    : inspector(std::move(configInspector)),
      tasks(factory),
      postToSocket(std::move(poster)),
      queue(limits.queuedChanges) {}

void ChangeFeed::add(Watcher& watcher, std::function<void()> ready) {
    const bool isFirst = watchers.empty();
    watchers.insert(&watcher);
    // The tasks run in order, so the observer is registered when `ready` of a later watcher is called, too.
    tasks.run("inspection: watch", [self = shared_from_this(), isFirst, call = std::move(ready)] {
        if (isFirst) {
            self->inspector->getRecords().addRecordObserver(self);
        }
        call();
    });
}

void ChangeFeed::remove(Watcher& watcher) {
    if (watchers.erase(&watcher) == 0) {
        return;
    }
    resume();
    if (!watchers.empty()) {
        return;
    }
    tasks.run("inspection: unwatch",
              [self = shared_from_this()] { self->inspector->getRecords().removeRecordObserver(self); });
}

void ChangeFeed::OnRecordChanged(const std::wstring& key, const ZelUnified::ConfigRecordState& before,
                                 const ZelUnified::ConfigRecordState& after) {
    // The mark may be removed later, so it is read now. Everything else that the events need is done by the socket's
    // thread.
    if (queue.push({std::chrono::system_clock::now(), key, before, after, inspector->isSensitive(key)})) {
        postToSocket([self = shared_from_this()] { self->schedule(); });
    }
}

void ChangeFeed::resume() {
    if (std::exchange(isWaiting, false)) {
        schedule();
    }
}

void ChangeFeed::schedule() {
    if (isScheduled || isWaiting) {
        return;
    }
    isScheduled = true;
    postToSocket([self = shared_from_this()] {
        self->isScheduled = false;
        self->distribute();
    });
}

void ChangeFeed::distribute() {
    try {
        sendSlice();
    } catch (...) {
        ++next; // nothing else wakes the feed while changes are queued
        schedule();
        throw;
    }
}

void ChangeFeed::sendSlice() {
    for (std::size_t sent = 0; sent < changesOfSlice; ++sent) {
        if (next >= current.changes.size()) {
            reportLost(std::exchange(current, queue.extract()));
            next = 0;
        }
        if (current.changes.empty()) {
            return;
        }
        if (!send(current.changes[next])) {
            isWaiting = true;
            return;
        }
        ++next;
    }
    schedule();
}

bool ChangeFeed::send(const Change& change) const {
    const auto names = getKeyNames(change.key).getAll();
    const auto count = change.countEvents();
    std::shared_ptr<const std::string> masked;
    std::shared_ptr<const std::string> clear;
    std::vector<std::pair<Watcher*, std::shared_ptr<const std::string>>> messages;
    for (auto* const watcher : watchers) {
        if (!watcher->isInterestedIn(names)) {
            continue;
        }
        auto& lines = watcher->wantsSecrets() ? clear : masked;
        if (!lines) {
            lines = std::make_shared<const std::string>(change.toLines(watcher->wantsSecrets()));
        }
        if (watcher->needsTime(lines->size(), count)) {
            return false;
        }
        messages.emplace_back(watcher, lines);
    }
    for (const auto& [watcher, lines] : messages) {
        watcher->sendEvents(lines, count);
    }
    return true;
}

void ChangeFeed::reportLost(const ChangeQueue::Batch& batch) const {
    std::map<Watcher*, std::size_t> missed;
    for (const auto& [key, count] : batch.lost) {
        const auto names = getKeyNames(key).getAll();
        for (auto* const watcher : watchers) {
            if (watcher->isInterestedIn(names)) {
                missed[watcher] += count;
            }
        }
    }
    for (const auto& [watcher, count] : missed) {
        watcher->addLost(count);
    }
}

} // namespace inspection
