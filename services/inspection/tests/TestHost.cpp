#include "TestHost.h"

#include <kyr/FunctionTask.h>
#include <unified/TypeName.h>

#include <ConfigServiceIds.h>
#include <DefaultsFile.h>

#include <chrono>
#include <stdexcept>

namespace inspection_test {

namespace {

constexpr std::chrono::seconds patience(20);

} // namespace

TestHost::TestHost(const inspection::InspectionLimits& limits, const ZelUnified::ConfigMap& defaults,
                   const std::pair<std::string, std::string>& policy) {
    if (!policy.first.empty()) {
        writePolicy(policy.first, policy.second);
    }
    testing_host::writeDefaults(profile.resources(), defaults);
    ZelUnified::UnifiedFactoryOptions options;
    options.openedForWriting = true;
    options.pluginFolder = PLUGIN_FOLDER;
    options.plugins = {{ZelUnified::readableTypeName<ZelUnified::ConfigService>(), SERVICE_LIBRARY},
                       {ZelUnified::readableTypeName<ZelUnified::ConfigFeatureSet>(), SERVICE_LIBRARY}};
    factory = std::make_shared<ZelUnified::UnifiedFactoryImpl>(std::move(options));
    factory->Init();
    onServices([this] {
        configService = factory->getServiceByType<ZelUnified::ConfigService>();
        configFeatureSet = factory->getFeatureSetByType<ZelUnified::ConfigFeatureSet>();
    });
    factory->StartFeatureSet(ZelUnified::configServiceId, nullptr);
    const auto inspector = std::make_shared<const inspection::ConfigInspector>(factory);
    inspectionServer = std::make_unique<inspection::InspectionServer>(factory, inspector, socketPath(), limits);
}

TestHost::~TestHost() {
    inspectionServer.reset();
    factory->Destroy();
}

void TestHost::setPolicy(const std::string& key, const std::string& value) {
    writePolicy(key, value);
    onServices([this] { configFeatureSet->refreshConfigFeatureSet(); });
}

void TestHost::writePolicy(const std::string& key, const std::string& value) const {
    testing_host::writeFile(profile.data() / "registry" / "policy.reg",
                            "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\Software\\Policies"
                            "\\Ventrix Systems, Inc.\\Unified Communications\\VentrixUC]\r\n\"" +
                                key + "\"=\"" + value + "\"\r\n");
}

void TestHost::onServices(const std::function<void()>& work) const {
    factory->getServicesDispatcher()->enqueueBlock(std::make_shared<KyrCoreUtils::FunctionTask>(work, "test"), false);
}

void TestHost::set(const std::wstring& key, const std::wstring& value) const {
    onServices([&] { configFeatureSet->setConfig(key, value); });
}

std::size_t TestHost::countRecords() const {
    std::size_t count = 0;
    onServices([&] { count = configService->getAllConfig()->size(); });
    return count;
}

bool Peer::sendText(const std::string& line) {
    return connection.sendLine(line, patience);
}

Json Peer::receive() {
    std::string line;
    if (connection.receiveLine(line, patience) != KyrCoreUtils::LocalConnection::Received::Line) {
        throw std::runtime_error("the server does not answer");
    }
    return Json::parse(line);
}

Json Peer::ask(const Json& request) {
    sendText(request.dump());
    return receive();
}

bool Peer::isCutOff() {
    // Reads nothing until the server has given up: then the rest of the reply is missing.
    return connection.awaitEnd(patience) && isDropped();
}

bool Peer::isDropped() {
    std::string line;
    return connection.receiveLine(line, patience) == KyrCoreUtils::LocalConnection::Received::End;
}

} // namespace inspection_test
