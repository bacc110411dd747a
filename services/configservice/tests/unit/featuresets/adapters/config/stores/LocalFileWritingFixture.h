#pragma once

#include "LocalFileTestSupport.h"

#include <zel/ZelLog.h>

#include <LogRecorder.h>
#include <TemporaryProfile.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace xml_test {

/// The user's store in an empty folder. The test fires its backup.
class LocalFileWritingFixture : public testing::Test {
protected:
    static constexpr const char* userName = "LocalFileConfigStore";
    static constexpr const char* mainName = "lumoraLocalConfig.dat";
    static constexpr const char* backupName = "lumoraLocalConfig_backup.dat";

    LocalFileWritingFixture() {
        store->setTimer(timer);
        log.clear();
    }

    void fireBackup() { timer->requests.back().callback->onTimerFired(); }

    std::vector<std::string> errors() const { return log.getTexts(ZelLogLevel::Error); }

    testing_host::TemporaryProfile profile;
    const std::string main = (profile.config() / mainName).string();
    const std::string backup = (profile.config() / backupName).string();
    testing_host::LogRecorder log{testing_host::LogRecorder::Debug::On};
    const std::shared_ptr<RecordingCacheTimer> timer = std::make_shared<RecordingCacheTimer>();
    std::shared_ptr<ZelUnified::LocalFileConfigStore> store =
        std::make_shared<ZelUnified::LocalFileConfigStore>(userName, 20, false);
    const std::string document = localDocument(" <userConfig name=\"Key\" value=\"v\"/>\n");
};

} // namespace xml_test
