#pragma once

#include "PowerEventSource.h"

#include <kyr/AnnotatedMutex.h>
#include <unified/ServicesDispatcher.h>
#include <zel/SystemMonitor.h>

#include <functional>
#include <memory>
#include <vector>

namespace ZelSystemMonitor {

/// Holds the list of observers and selects the thread on which they are called. The platform's source delivers the
/// events: it is opened for the first observer and closed with the last dispatcher, or at the end of the process.
/// Create it with make_shared. Any thread.
class LUMORA_HOST_API SystemMonitorImpl final : public SystemMonitor,
                                                public std::enable_shared_from_this<SystemMonitorImpl> {
public:
    using Dispatcher = ZelUnified::Processing::ServicesDispatcher;
    using SourceOpener = std::function<std::unique_ptr<PowerEventSource>(PowerEventReceiver)>;

    /// Returns the machine's monitor, even while the process uses a replacement.
    static std::shared_ptr<SystemMonitorImpl> getMachineMonitor();

    explicit SystemMonitorImpl(SourceOpener sourceOpener = openPowerEventSource);
    ~SystemMonitorImpl() override;
    SystemMonitorImpl(const SystemMonitorImpl&) = delete;
    SystemMonitorImpl& operator=(const SystemMonitorImpl&) = delete;

    void addPowerEventObserver(std::weak_ptr<PowerEventObserver> observer) override;
    void removePowerEventObserver(std::weak_ptr<PowerEventObserver> observer) override;

    /// Observers are called on that dispatcher's thread from here on; with several dispatchers, on that of the last
    /// one. The dispatcher is held weakly. `beforePowerDown` is called on that thread before the observers of a
    /// power-down; empty for none.
    void attach(const std::shared_ptr<Dispatcher>& dispatcher, std::function<void()> beforePowerDown = {});
    /// Removes the dispatcher. Never waits for an observer that is running on a dispatcher's thread.
    void detach(const std::shared_ptr<Dispatcher>& dispatcher);

    /// Posts the event to the dispatcher; without one, calls the observers on the calling thread. Releases the hold
    /// after all observers have returned.
    void receive(PowerEventTypeEnum::PowerEventType type, PowerEventHold hold);

private:
    struct Attachment {
        std::weak_ptr<Dispatcher> dispatcher;
        std::function<void()> beforePowerDown;
    };

    void openSource() LUMORA_REQUIRES(mutex);
    std::shared_ptr<Dispatcher> getDispatcher(std::function<void()>& beforePowerDown) const;
    std::vector<std::shared_ptr<PowerEventObserver>> getLivingObservers() const;
    void notify(PowerEventTypeEnum::PowerEventType type, const std::function<void()>& beforePowerDown) const;

    const SourceOpener opener;
    mutable KyrCoreUtils::AnnotatedMutex<> mutex; ///< Never held while an observer runs or a source is destroyed.
    std::vector<std::weak_ptr<PowerEventObserver>> observers LUMORA_GUARDED_BY(mutex);
    std::vector<Attachment> attachments LUMORA_GUARDED_BY(mutex);
    std::unique_ptr<PowerEventSource> source LUMORA_GUARDED_BY(mutex);
};

} // namespace ZelSystemMonitor
