#pragma once

#include "ServerObserver.h"

#include <unified/UnifiedFactory.h>

#include <ConfigFeatureSet.h>
#include <ConfigService.h>
#include <DirectoryService.h>

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace example {

/// Holds the records that it observes. A record holds its observer weakly and needs no cleanup; only the connection to
/// a notifier must be disconnected at the end.
class DirectoryServiceImpl final : public DirectoryService {
public:
    explicit DirectoryServiceImpl(const std::shared_ptr<ZelUnified::UnifiedFactory>& factory);
    ~DirectoryServiceImpl() override;
    DirectoryServiceImpl(const DirectoryServiceImpl&) = delete;
    DirectoryServiceImpl& operator=(const DirectoryServiceImpl&) = delete;

    void deliver(const std::string& presenceServer, const std::string& directoryServer) override;
    bool withdraw() override;
    std::vector<std::string> getHeard() override;

private:
    void follow();
    void onServices(const std::string& name, const std::function<void()>& work) const;
    void hear(const std::shared_ptr<ZelUnified::ConfigValue>& record);

    const std::shared_ptr<ZelUnified::Processing::ServicesDispatcher> dispatcher;
    const std::shared_ptr<ZelUnified::ConfigService> configService;
    const std::shared_ptr<ZelUnified::ConfigFeatureSet> configFeatureSet;
    std::shared_ptr<ZelUnified::ConfigValue> presenceRecord;
    std::shared_ptr<ZelUnified::ConfigValue> directoryRecord;
    std::shared_ptr<ServerObserver> presenceObserver;
    std::weak_ptr<ZelUnified::PropertyNotifierConnection> directoryConnection;
    std::mutex heardMutex;
    std::vector<std::string> heard; ///< Guarded by `heardMutex`.
};

} // namespace example
