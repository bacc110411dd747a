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
    reportDone(session, command, "the stores that are not local are read anew");
}

void powerDown(Session& session, const Command& command) {
    session.getHost().powerDown();
    reportDone(session, command, "the machine announced that it goes down");
}

void observe(Session& session, const Command& command) {
    auto& host = session.getHost();
    host.onServices("lumora-config: observe", [&] {
        const auto record = host.getService()->getConfig(wide(command.key));
        std::vector<std::shared_ptr<ZelUnified::ConfigValue>> companions;
        for (const auto& key : command.companions) {
            companions.push_back(host.getService()->getConfig(wide(key)));
        }
        auto& watcher = session.getWatchers()[ZelUnified::ConfigKeys::getKeyNames(wide(command.key)).newName];
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
        auto watcher = session.getWatchers().extract(ZelUnified::ConfigKeys::getKeyNames(wide(command.key)).newName);
        observed = !watcher.empty();
        if (observed) {
            watcher.mapped()->getRecord()->removeObserver(
                std::weak_ptr<ZelUnified::ConfigValueObserver>(watcher.mapped()));
        }
    });
    if (!observed) {
        throw Failure(ExitCode::NotFound, "the key '" + command.key + "' is not observed");
    }
    reportDone(session, command, "observing " + command.key + " no longer");
}

void addStore(Session& session, const Command& command) {
    const auto spec = StoreSpec::parse(command.store);
    if (!session.getHost().isStarted()) {
        throw Failure(ExitCode::NotFound, "stores are taken only while the feature set is started");
    }
    const auto store = session.addForeignStore(spec);
    if (spec.cached) {
        session.getDisk().requireCopy(*store);
    }
    reportDone(session, command, spec.name + " added with priority " + std::to_string(spec.priority));
}

void sensitive(Session& session, const Command& command) {
    session.getHost().onServices("lumora-config: sensitive",
                                 [&] { session.getHost().getService()->setKeySensitive(wide(command.key)); });
    reportDone(session, command, command.key + " is hidden from here on");
}

void wait(Session& session, const Command& command) {
    session.getHost().settle();
    session.confirmWrites();
    reportDone(session, command, "nothing is under way");
}

} // namespace

void addLifecycleCommands(CommandTable& table) {
    table["start"] = start;
    table["stop"] = stop;
    table["refresh"] = refresh;
    table["power-down"] = powerDown;
    table["observe"] = observe;
    table["unobserve"] = unobserve;
    table["add-store"] = addStore;
    table["sensitive"] = sensitive;
    table["wait"] = wait;
}

} // namespace lumora_config
