#include "unified/SystemServiceImpl.h"

#include <unified/SystemServiceObserver.h>
#include <unified/UpdateAccessError.h>

#include <LogRecorder.h>
#include <RecordingFactory.h>

#include <memory>
#include <string>
#include <vector>

using namespace ZelUnified;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing_host::LogRecorder;
using testing_host::RecordingFactory;

namespace {

class Listener final : public ServiceEventListener {
public:
    void onServiceEvent(const ReportedServiceEvent& event) override { events.push_back(event); }
    std::vector<ReportedServiceEvent> events;
};

class SystemServiceImplTest : public testing::Test {
protected:
    std::shared_ptr<RecordingFactory> factory = std::make_shared<RecordingFactory>();
    std::shared_ptr<Listener> listener = std::make_shared<Listener>();
    std::shared_ptr<ResetDataCallbackRegistryImpl> callbacks = std::make_shared<ResetDataCallbackRegistryImpl>();
    SystemServiceImpl service{factory, callbacks, listener};
};

} // namespace

TEST_F(SystemServiceImplTest, PassesAnEventToTheListenerAndLogsIt) {
    const LogRecorder log;
    service.addServiceEvent(1300, 1, ServiceEventSeverityEnum::Error);
    ASSERT_THAT(listener->events, SizeIs(1));
    EXPECT_EQ(listener->events[0].code, 1300);
    EXPECT_EQ(listener->events[0].eventId, 1);
    EXPECT_EQ(listener->events[0].severity, ServiceEventSeverityEnum::Error);
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error), testing::ElementsAre(AllOf(HasSubstr("1300"), HasSubstr("1"))));
}

TEST_F(SystemServiceImplTest, TheSeverityDeterminesTheLogLevel) {
    const LogRecorder log;
    service.addServiceEvent(1, 1, ServiceEventSeverityEnum::Info);
    service.addServiceEvent(1, 1, ServiceEventSeverityEnum::Warning);
    service.addServiceEvent(1, 1, ServiceEventSeverityEnum::Critical);
    EXPECT_THAT(log.getTexts(ZelLogLevel::Info), SizeIs(1));
    EXPECT_THAT(log.getTexts(ZelLogLevel::Warning), SizeIs(1));
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error), SizeIs(1));
}

TEST_F(SystemServiceImplTest, ADestroyedListenerIsNotCalled) {
    listener.reset();
    EXPECT_NO_THROW(service.addServiceEvent(1, 1, ServiceEventSeverityEnum::Info));
}

TEST_F(SystemServiceImplTest, AnEventFromTheWrongThreadIsRefused) {
    factory->servicesDispatcher->disown();
    EXPECT_THROW(service.addServiceEvent(1, 1, ServiceEventSeverityEnum::Info), UpdateAccessError);
    EXPECT_THAT(listener->events, IsEmpty());
}

TEST_F(SystemServiceImplTest, TheResetCallbacksAreAvailableOnAnyThread) {
    factory->servicesDispatcher->disown();
    EXPECT_EQ(service.getResetDataCallbackRegistry(), callbacks);
    EXPECT_FALSE(service.getBulkUpdateInProgress());
    EXPECT_EQ(service.getInterfaceName(), "SystemService");
    EXPECT_THAT(service.toString(), HasSubstr("SystemServiceImpl {"));
}
