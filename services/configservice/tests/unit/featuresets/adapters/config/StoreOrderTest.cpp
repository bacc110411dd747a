#include "ConfigAdapterFixture.h"

#include <BootstrapConfigStore.h>
#include <XmlConfigStore.h>

#include <array>
#include <functional>

namespace ZelUnified {

/// A chain with every kind of store, in lookup order.
class StoreOrder : public ConfigAdapterFixture, public testing::WithParamInterface<bool> {
protected:
    enum Kind : std::size_t { User, Policy, Document, Copy, Link, Device, Installer, Memory, Defaults, kindCount };
    static constexpr std::array<const wchar_t*, kindCount> names{L"LocalFileConfigStore",
                                                                 L"RegistryConfigStore",
                                                                 L"Document",
                                                                 L"Delivered",
                                                                 L"UrlProvisioningConfigStore",
                                                                 L"MdmConfigStore",
                                                                 L"BootstrapConfigStore",
                                                                 L"InMemoryConfigStore",
                                                                 L"lumora-config-defaults.xml"};

    /// Returns a key that exactly the stores from the first to the last of these contain.
    std::wstring makeKey(std::size_t first, std::size_t last) {
        // A provisioning link accepts only these keys.
        static constexpr std::array<const wchar_t*, 19> pool{L"ServicesDomain",
                                                             L"VoiceServicesDomain",
                                                             L"ServiceDiscoveryExcludedServices",
                                                             L"TelemetryEnabled",
                                                             L"sso_enabled",
                                                             L"ServicesDomainSsoEmailPrompt",
                                                             L"EdgeSsoPrecedence",
                                                             L"alphap2penabled",
                                                             L"InvalidCertificateBehavior",
                                                             L"PRTCertificateName",
                                                             L"EnablePRTEncryption",
                                                             L"IP_MODE",
                                                             L"SystemProxyUsage",
                                                             L"DiagnosticsToolEnabled",
                                                             L"ContactsDiagnosticsToolEnabled",
                                                             L"EdgeOnlyMode",
                                                             L"ConfigRefetchInterval",
                                                             L"STARTUP_AUTHENTICATION_REQUIRED",
                                                             L"EnableUserIdURLEscape"};
        const std::wstring key = pool.at(usedKeys++);
        for (auto kind = first; kind <= last; ++kind) {
            contents[kind].emplace(key, names[kind]);
        }
        return key;
    }

    std::string documentOf(Kind kind) const {
        std::wstring text = L"<a><b>";
        for (const auto& [key, value] : contents[kind]) {
            text += L"<" + key + L">" + value + L"</" + key + L">";
        }
        return KyrCoreUtils::toString(text + L"</b></a>");
    }

    /// Builds the chain. The stores that are added after the start arrive in their order or in the opposite one.
    void buildChain() {
        givenDefaults(contents[Defaults]);
        for (const auto& [key, value] : contents[Policy]) {
            givenPolicy(key, value);
        }
        loadAndStart();
        adapter->addConfigStore(makeCachingStore("Delivered", 239, contents[Copy]));
        unload();
        loadAndStart();
        std::vector<std::function<void()>> arrivals{
            [&] { adapter->setConfig(contents[User]); },        [&] { addDocument(); },       [&] { followLink(); },
            [&] { adapter->setMdmConfig(documentOf(Device)); }, [&] { addInstallersFile(); }, [&] { fillMemory(); }};
        if (GetParam()) {
            std::reverse(arrivals.begin(), arrivals.end());
        }
        for (const auto& arrive : arrivals) {
            arrive();
        }
    }

    /// Expects that the chain and the record return the value of store `first`, and as the administrator's value that
    /// of the first read-only store from there on.
    void expectAnswer(const std::wstring& key, std::size_t first, std::size_t last) {
        std::wstring value;
        std::wstring storeName;
        bool valueFromLegacyKey = false;
        EXPECT_TRUE(adapter->getConfig(key, value, storeName, valueFromLegacyKey, false));
        EXPECT_EQ(value, names[first]);
        EXPECT_EQ(storeName, names[first]);
        const auto isWritable = [](std::size_t kind) { return kind == User || kind == Memory; };
        auto administrators = first;
        while (administrators <= last && isWritable(administrators)) {
            ++administrators;
        }
        const auto record = service->getConfig(key);
        EXPECT_EQ(record->getValue(), names[first]);
        EXPECT_EQ(record->getValueStoreName(), names[first]);
        EXPECT_EQ(record->getOriginalValue(), administrators > last ? L"" : names[administrators]);
        EXPECT_EQ(record->getisOverridden(), isWritable(first));
    }

private:
    void addDocument() {
        const auto path = profile.root() / "document.xml";
        testing_host::writeFile(path, documentOf(Document));
        adapter->addConfigStore(std::make_shared<XmlConfigStore>("Document", 100, false, false, path.string(), true));
    }
    void followLink() {
        std::wstring url = L"lumora://provision?";
        for (const auto& [key, value] : contents[Link]) {
            url.append(key).append(L"=").append(value).append(L"&");
        }
        EXPECT_TRUE(adapter->setUrlProvisioningData(url));
    }
    void addInstallersFile() {
        std::wstring lines;
        for (const auto& [key, value] : contents[Installer]) {
            lines.append(key).append(L":").append(value).append(L"\n");
        }
        const auto path = profile.root() / "bootstrap";
        testing_host::writeFile(path, KyrCoreUtils::toString(lines));
        adapter->addConfigStore(std::make_shared<BootstrapConfigStore>("BootstrapConfigStore", path.string(), 550));
    }
    void fillMemory() {
        for (const auto& [key, value] : contents[Memory]) {
            adapter->setInMemoryConfig(key, value);
        }
    }

    std::array<ConfigMap, kindCount> contents;
    std::size_t usedKeys = 0;
};

TEST_P(StoreOrder, AKeyHeldByAStoreAndAllBehindItComesFromThatStore) {
    std::array<std::wstring, kindCount> keys;
    for (std::size_t first = 0; first < kindCount; ++first) {
        keys[first] = makeKey(first, Defaults);
    }
    buildChain();
    for (std::size_t first = 0; first < kindCount; ++first) {
        SCOPED_TRACE(KyrCoreUtils::toString(names[first]));
        expectAnswer(keys[first], first, Defaults);
    }
}

TEST_P(StoreOrder, AKeyHeldByTwoNeighboursComesFromTheFirst) {
    std::array<std::wstring, kindCount - 1> keys;
    for (std::size_t first = 0; first < keys.size(); ++first) {
        keys[first] = makeKey(first, first + 1);
    }
    buildChain();
    for (std::size_t first = 0; first < keys.size(); ++first) {
        SCOPED_TRACE(KyrCoreUtils::toString(names[first]));
        expectAnswer(keys[first], first, first + 1);
    }
}

std::string arrivalLabel(const testing::TestParamInfo<bool>& opposite) {
    return opposite.param ? "InTheOppositeOrder" : "InOrder";
}

INSTANTIATE_TEST_SUITE_P(Arrival, StoreOrder, testing::Bool(), arrivalLabel);

} // namespace ZelUnified
