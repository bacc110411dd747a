#include "DirectoryServiceImpl.h"

#include "DeliveredStore.h"

#include <kyr/FunctionTask.h>
#include <kyr/StringUtils.h>
#include <unified/PropertyNotifier.h>
#include <zel/ZelLog.h>

namespace example {

using KyrCoreUtils::toString;
using KyrCoreUtils::toWideString;

namespace {

ZelLogger& logger = ZelLogger_getLogger("ExampleDirectoryService");

constexpr auto presenceKey = L"Presence_Server_Address";
constexpr auto directoryKey = L"Directory_Server_Address";
constexpr auto directoryTypeKey = L"Directory_Server_Type";

} // namespace

DirectoryServiceImpl::DirectoryServiceImpl(const std::shared_ptr<ZelUnified::UnifiedFactory>& factory)
    : dispatcher(factory->getServicesDispatcher()),
      configService(factory->getServiceByType<ZelUnified::ConfigService>()),
      configFeatureSet(factory->getFeatureSetByType<ZelUnified::ConfigFeatureSet>()) {
    onServices("example: follow", [this] { follow(); });
}

DirectoryServiceImpl::~DirectoryServiceImpl() {
    // The notifier may outlive this object, and its callback refers to it.
    if (const auto connection = directoryConnection.lock()) {
        connection->disconnect();
    }
}

void DirectoryServiceImpl::deliver(const std::string& presenceServer, const std::string& directoryServer) {
    const auto store =
        std::make_shared<DeliveredStore>(ZelUnified::ConfigMap{{presenceKey, toWideString(presenceServer)},
                                                               {directoryKey, toWideString(directoryServer)},
                                                               {directoryTypeKey, L"LDAP"}});
    onServices("example: deliver", [&] { configFeatureSet->addConfigStore(store); });
}

bool DirectoryServiceImpl::withdraw() {
    bool removed = false;
    onServices("example: withdraw", [&] { removed = configFeatureSet->removeConfigStore(DeliveredStore::storeName); });
    return removed;
}

std::vector<std::string> DirectoryServiceImpl::getHeard() {
    const std::lock_guard lock(heardMutex);
    return heard;
}

void DirectoryServiceImpl::follow() {
    presenceRecord = configService->getConfig(presenceKey);
    presenceObserver = std::make_shared<ServerObserver>([this] { hear(presenceRecord); });
    presenceRecord->addObserver(std::weak_ptr<ZelUnified::ConfigValueObserver>(presenceObserver));

    directoryRecord = configService->getConfig(directoryKey);
    const auto notifier = directoryRecord->getConfigValueNotifiers()->getValueNotifier();
    directoryConnection = notifier->connect([this] { hear(directoryRecord); });
}

void DirectoryServiceImpl::onServices(const std::string& name, const std::function<void()>& work) const {
    dispatcher->enqueueBlock(std::make_shared<KyrCoreUtils::FunctionTask>(work, name), false);
}

void DirectoryServiceImpl::hear(const std::shared_ptr<ZelUnified::ConfigValue>& record) {
    // A value may be sensitive, so the log gets the key alone.
    ZelLog(logger, ZelLogLevel::Info, ZEL_HERE, toString(record->getKey()) + " has changed");
    auto line = toString(record->getKey()) + "=" + toString(record->getValue());
    const std::lock_guard lock(heardMutex);
    heard.push_back(std::move(line));
}

} // namespace example
