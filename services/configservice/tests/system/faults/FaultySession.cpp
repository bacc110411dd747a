#include "FaultySession.h"

#include "secure/SecureString.h"

namespace ZelUnified {

using zel::storage::EncryptFileUtils;

FaultySession::FaultySession() {
    EncryptFileUtils::overrideFileLayer(layer);
}

FaultySession::~FaultySession() {
    // Unload while the clock of the timers still exists.
    unload();
    EncryptFileUtils::overrideFileLayer(nullptr);
}

void FaultySession::leaveFiles() {
    for (const auto* name : quotedFiles) {
        const zel::SecureString content("<" + std::string(name) + "/>");
        ASSERT_TRUE(
            EncryptFileUtils::writeDataToFile(file(name).string(), content, zel::storage::FileCategoryType::UserData));
    }
    loadAndStart();
    adapter->setConfig(L"k", L"old");
    download(L"old");
    ASSERT_TRUE(provision(L"old"));
    persistAndBackUp();
    unload();
}

void FaultySession::useRealDisk() {
    disk = nullptr;
    EncryptFileUtils::overrideFileLayer(disk);
}

void FaultySession::unload() {
    ConfigAdapterFixture::unload();
    EncryptFileUtils::overrideFileLayer(disk);
}

void FaultySession::restart() {
    unload();
    loadAndStart();
}

void FaultySession::persistAndBackUp() {
    persist();
    clock.advance(30);
    persist();
}

void FaultySession::download(const std::wstring& value) {
    adapter->addConfigStore(makeCachingStore(downloadedStore, 40, {{L"d", value}}));
}

bool FaultySession::provision(const std::wstring& value) {
    adapter->resetAllowUriProvisioningData();
    return adapter->setUrlProvisioningData(L"lumora://provision?ServicesDomain=" + value);
}

std::wstring FaultySession::report() const {
    std::wstring text;
    adapter->getAllConfigForPRT(text);
    return text;
}

std::string FaultySession::clearTextOf(const std::filesystem::path& path,
                                       zel::storage::FileCategoryType::FileCategory category) {
    zel::SecureString content;
    std::string text;
    if (EncryptFileUtils::readFromDisk(path.string(), content, category) == zel::storage::ReadResult::Ok) {
        content.withClearText([&](std::string_view clear) { text = clear; });
    }
    return text;
}

void changeAll(FaultySession& session, const std::wstring& value) {
    session.adapter->setConfig(L"k", value);
    session.download(value);
    EXPECT_TRUE(session.provision(value));
    session.persistAndBackUp();
    EXPECT_EQ(session.valueOf(L"k"), value);
    EXPECT_EQ(session.valueOf(L"d"), value);
    EXPECT_EQ(session.valueOf(L"ServicesDomain"), value);
}

void expectAtTheNextStart(FaultySession& session, const std::wstring& value) {
    session.restart();
    EXPECT_EQ(session.valueOf(L"k"), value);
    EXPECT_EQ(session.valueOf(L"d"), value);
    EXPECT_EQ(session.valueOf(L"ServicesDomain"), value);
}

} // namespace ZelUnified
