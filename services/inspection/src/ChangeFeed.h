#pragma once

#include "ChangeQueue.h"
#include "ConfigInspector.h"
#include "InspectionLimits.h"
#include "ServicesTasks.h"
#include "Watcher.h"

#include <ConfigRecordObserver.h>

#include <atomic>
#include <functional>
#include <memory>
#include <set>

namespace inspection {

/// Observes the records while anybody watches, and distributes their changes. A client without watchers pays nothing:
/// the observer is registered with the first watcher and removed with the last one.
///
/// The socket's thread calls everything except OnRecordChanged(), which only queues the change, whatever the number of
/// watchers.
class ChangeFeed final : public ZelUnified::ConfigRecordObserver, public std::enable_shared_from_this<ChangeFeed> {
public:
    /// `postToSocket` runs a function later on the socket's thread.
    using PostToSocket = std::function<void(std::function<void()>)>;

    ChangeFeed(const std::shared_ptr<ZelUnified::UnifiedFactory>& factory,
               std::shared_ptr<const ConfigInspector> configInspector, const InspectionLimits& limits,
               PostToSocket poster);

    /// Adds the watcher, unless it is there already. Calls `ready`, on the services dispatcher's thread, once every
    /// later change reaches it.
    void add(Watcher& watcher, std::function<void()> ready);
    /// Must be called before the watcher is destroyed.
    void remove(Watcher& watcher);
    /// Continues to distribute after a watcher that needed time.
    void resume();

    void OnRecordChanged(const std::wstring& key, const ZelUnified::ConfigRecordState& before,
                         const ZelUnified::ConfigRecordState& after) override;

private:
    /// Distributes a slice of the changes later, so that the connections can write between two slices.
    void schedule();
    void distribute();
    void sendSlice();
    /// Returns false, and sends nothing, if one of the watchers needs time.
    bool send(const Change& change) const;
    /// Reports to each watcher how many events it missed, if any.
    void reportLost(const ChangeQueue::Batch& batch) const;

    const std::shared_ptr<const ConfigInspector> inspector;
    const ServicesTasks tasks;
    const PostToSocket postToSocket;
    ChangeQueue queue;
    ChangeQueue::Batch current; ///< The changes in distribution.
    std::size_t next = 0;       ///< The index of the first change in distribution that was not sent.
    bool isScheduled = false;
    bool isWaiting = false; ///< A watcher needs time.
    std::set<Watcher*> watchers;
};

} // namespace inspection
