#include "CommandTable.h"

#include <ConfigCatalogue.h>

namespace lumora_config {

namespace {

void start(Session& session, const Command& command) {
    session.getHost().start();
    reportDone(session, command, "the feature set is started");
}

void stop(Session& session, const Command& command) {
    session.getHost().stop();
    reportDone(session, command, "the feature set is stopped");
}

void refresh(Session& session, const Command& command) {
    session.getHost().refresh();
    reportDone(session, command, "the stores that are not local have read their sources again");
}

void powerDown(Session& session, const Command& command) {
    session.getHost().powerDown();
    reportDone(session, command, "a shutdown of the machine is announced");
}

void observe(Session& session, const Command& command) {
    auto& host = session.getHost();
    host.onServices("lumora-config: observe", [&] {
        const auto record = host.getService()->getConfig(toWide(command.key));
        std::vector<std::shared_ptr<ZelUnified::ConfigValue>> companions;
        for (const auto& key : command.companions) {
            companions.push_back(host.getService()->getConfig(toWide(key)));
        }
        auto& watcher = session.getWatchers()[ZelUnified::ConfigKeys::getKeyNames(toWide(command.key)).newName];
        if (watcher) {
            watcher->getRecord()->removeObserver(std::weak_ptr<ZelUnified::ConfigValueObserver>(watcher));
        }
        watcher = std::make_shared<KeyWatcher>(record, std::move(companions), session.getPrinter(), session.getMask(),
                                               [&host] { return host.nameThread(); });
        record->addObserver(std::weak_ptr<ZelUnified::ConfigValueObserver>(watcher));
    });
    reportDone(session, command, "observing " + command.key);
}

void unobserve(Session& session, const Command& command) {
    bool observed = false;
    session.getHost().onServices("lumora-config: unobserve", [&] {
        auto watcher = session.getWatchers().extract(ZelUnified::ConfigKeys::getKeyNames(toWide(command.key)).newName);
        observed = !watcher.empty();
        if (observed) {
            watcher.mapped()->getRecord()->removeObserver(
                std::weak_ptr<ZelUnified::ConfigValueObserver>(watcher.mapped()));
        }
    });
    if (!observed) {
        throw Failure(ExitCode::NotFound, "the key '" + command.key + "' is not observed");
    }
    reportDone(session, command, command.key + " is no longer observed");
}

void addStore(Session& session, const Command& command) {
    const auto spec = StoreSpec::parse(command.store);
    if (!session.getHost().isStarted()) {
        throw Failure(ExitCode::NotFound, "a store can be added only while the feature set is started");
    }
    const auto store = session.addForeignStore(spec);
    if (spec.cached) {
        session.getDiskCheck().requireCopy(*store);
    }
    reportDone(session, command, spec.name + " added with priority " + std::to_string(spec.priority));
}

void sensitive(Session& session, const Command& command) {
    session.getHost().onServices("lumora-config: sensitive",
                                 [&] { session.getHost().getService()->setKeySensitive(toWide(command.key)); });
    reportDone(session, command, "the value of " + command.key + " is hidden from now on");
}

void wait(Session& session, const Command& command) {
    session.getHost().settle();
    session.confirmWrites();
    reportDone(session, command, "no change is pending");
}

} // namespace

CommandTable getLifecycleCommands() {
    return {{"start", start},          {"stop", stop},           {"refresh", refresh},
            {"power-down", powerDown}, {"observe", observe},     {"unobserve", unobserve},
            {"add-store", addStore},   {"sensitive", sensitive}, {"wait", wait}};
}

} // namespace lumora_config
