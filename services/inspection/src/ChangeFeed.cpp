#include "ChangeFeed.h"

#include <ConfigCatalogue.h>

#include <utility>

namespace inspection {

using KyrCoreUtils::toWideString;

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
    if (watchers.erase(&watcher) == 0 || !watchers.empty()) {
        return;
    }
    tasks.run("inspection: unwatch",
              [self = shared_from_this()] { self->inspector->getRecords().removeRecordObserver(self); });
}

void ChangeFeed::OnRecordChanged(const std::wstring& key, const ZelUnified::ConfigRecordState& before,
                                 const ZelUnified::ConfigRecordState& after) {
    Change change;
    change.time = std::chrono::system_clock::now();
    change.key = key;
    change.oldName = ZelUnified::ConfigKeys::getKeyNames(key).oldName;
    change.storeName = after.valueStoreName;
    const bool sensitive = inspector->isSensitive(key);
    const auto report = [&](const char* property, const std::wstring& was, const std::wstring& is, bool secret) {
        if (was == is) {
            return;
        }
        change.property = property;
        change.oldValue = was;
        change.newValue = is;
        change.secret = secret;
        push(change);
    };
    report("Value", before.value, after.value, sensitive);
    report("OriginalValue", before.originalValue, after.originalValue, sensitive);
    report("isOverridden", toWideString(before.isOverridden), toWideString(after.isOverridden), false);
    report("isDefined", toWideString(before.isDefined), toWideString(after.isDefined), false);
    report("ValueStoreName", before.valueStoreName, after.valueStoreName, false);
    report("OriginalValueStoreName", before.originalValueStoreName, after.originalValueStoreName, false);
}

void ChangeFeed::push(Change change) {
    if (queue.push(std::move(change))) {
        postToSocket([self = shared_from_this()] { self->distribute(); });
    }
}

void ChangeFeed::distribute() {
    const auto batch = queue.take();
    const auto addressed = watchers; // a connection that fails removes itself
    for (const auto& change : batch.changes) {
        std::shared_ptr<const std::string> masked;
        std::shared_ptr<const std::string> clear;
        for (auto* const watcher : addressed) {
            if (!watchers.contains(watcher) || !watcher->isInterestedIn(change)) {
                continue;
            }
            auto& line = watcher->wantsSecrets() ? clear : masked;
            if (!line) {
                line = std::make_shared<const std::string>(change.toLine(watcher->wantsSecrets()));
            }
            watcher->sendEvent(line);
        }
    }
    if (batch.lost != 0) {
        for (auto* const watcher : watchers) {
            watcher->addLost(batch.lost);
        }
    }
}

} // namespace inspection
