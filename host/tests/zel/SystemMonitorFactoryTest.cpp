#include "RecordingPowerObserver.h"

#include <zel/SystemMonitorFactory.h>

#include <memory>

using ZelSystemMonitor::PowerEventObserver;
using ZelSystemMonitor::SystemMonitor;
using ZelSystemMonitor::SystemMonitorFactory;

namespace {

class OtherMonitor final : public SystemMonitor {
public:
    void addPowerEventObserver(std::weak_ptr<PowerEventObserver>) override {}
    void removePowerEventObserver(std::weak_ptr<PowerEventObserver>) override {}
};

} // namespace

TEST(SystemMonitorFactory, ReturnsTheSameMonitorEachTime) {
    const auto monitor = SystemMonitorFactory::getInstance();
    ASSERT_TRUE(monitor);
    EXPECT_EQ(SystemMonitorFactory::getInstance(), monitor);
}

TEST(SystemMonitorFactory, AnOverrideReplacesTheMonitorUntilItIsReset) {
    const auto machines = SystemMonitorFactory::getInstance();
    const auto other = std::make_shared<OtherMonitor>();
    SystemMonitorFactory::overrideInstance(other);
    EXPECT_EQ(SystemMonitorFactory::getInstance(), other);
    SystemMonitorFactory::overrideInstance(nullptr);
    EXPECT_EQ(SystemMonitorFactory::getInstance(), machines);
}
