#pragma once

#include "PowerEventSource.h"

#include <unified/ServicesDispatcher.h>
#include <zel/SystemMonitor.h>

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace ZelSystemMonitor {

/// The list of observers, and on which thread they are told. The platform's source feeds it: it is opened for the first
/// observer and closed with the last dispatcher, or at the end of the process. Made with make_shared. Any thread.
class LUMORA_HOST_API SystemMonitorImpl final : public SystemMonitor,
                                                public std::enable_shared_from_this<SystemMonitorImpl> {
public:
    using Dispatcher = ZelUnified::Processing::ServicesDispatcher;
    using SourceOpener = std::function<std::unique_ptr<PowerEventSource>(PowerEventReceiver)>;

    /// The process's own, also while another one stands in its place.
    static std::shared_ptr<SystemMonitorImpl> getMachineMonitor();

    explicit SystemMonitorImpl(SourceOpener sourceOpener = openPowerEventSource);
    ~SystemMonitorImpl() override;
    SystemMonitorImpl(const SystemMonitorImpl&) = delete;
    SystemMonitorImpl& operator=(const SystemMonitorImpl&) = delete;

    void addPowerEventObserver(std::weak_ptr<PowerEventObserver> observer) override;
    void removePowerEventObserver(std::weak_ptr<PowerEventObserver> observer) override;

    /// From here on observers are told on that dispatcher's thread. Of several the last one counts. Held weakly.
    /// `beforePowerDown` is called on that thread before observers are told of a power-down; empty for nothing.
    void attach(const std::shared_ptr<Dispatcher>& dispatcher, std::function<void()> beforePowerDown = {});
    /// Never waits for an observer that is told on a dispatcher's thread.
    void detach(const std::shared_ptr<Dispatcher>& dispatcher);

    /// Posts the event to the dispatcher, else tells it on the calling thread. The hold ends when all are told.
    void receive(PowerEventTypeEnum::PowerEventType type, PowerEventHold hold);

private:
    struct Attachment {
        std::weak_ptr<Dispatcher> dispatcher;
        std::function<void()> beforePowerDown;
    };

    void openSource();
    std::shared_ptr<Dispatcher> getDispatcher(std::function<void()>& beforePowerDown) const;
    std::vector<std::shared_ptr<PowerEventObserver>> getLivingObservers() const;
    void notify(PowerEventTypeEnum::PowerEventType type, const std::function<void()>& beforePowerDown) const;

    const SourceOpener opener;
    mutable std::mutex mutex; ///< Guards all below; never held while an observer is told or a source ends.
    std::vector<std::weak_ptr<PowerEventObserver>> observers;
    std::vector<Attachment> attachments;
    std::unique_ptr<PowerEventSource> source;
};

} // namespace ZelSystemMonitor
