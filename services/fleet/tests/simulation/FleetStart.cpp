// Starts a client on a profile, and prints the milliseconds from the start of main() to its first answer, how many of
// them loading the fleet's plug-in took, those from the start of main() until the services thread has run what the
// start has posted, and the answer: fleet_start PROFILE without|with [VALUE]. "with" loads and starts that plug-in
// before the answer. With a value, the program then waits until the record has it.
#include <kyr/FileUtils.h>
#include <kyr/FunctionTask.h>
#include <kyr/StringUtils.h>
#include <unified/TypeName.h>
#include <unified/UnifiedFactoryImpl.h>

#include <ConfigFeatureSet.h>
#include <ConfigService.h>
#include <ConfigServiceIds.h>
#include <ConfigValueNotifiers.h>
#include <FleetService.h>
#include <Signal.h>

#include <chrono>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace ZelUnified;
using Clock = std::chrono::steady_clock;

std::shared_ptr<UnifiedFactoryImpl> makeFactory() {
    UnifiedFactoryOptions options;
    options.openedForWriting = true;
    options.pluginFolder = PLUGIN_FOLDER;
    options.plugins = {{readableTypeName<ConfigService>(), SERVICE_LIBRARY},
                       {readableTypeName<ConfigFeatureSet>(), SERVICE_LIBRARY},
                       {readableTypeName<FleetService>(), FLEET_LIBRARY}};
    return std::make_shared<UnifiedFactoryImpl>(std::move(options));
}

void onServices(UnifiedFactory& factory, const std::function<void()>& work) {
    factory.getServicesDispatcher()->enqueueBlock(std::make_shared<KyrCoreUtils::FunctionTask>(work, "start"), false);
}

double millisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

/// What a started client has answered.
struct Answer {
    double loadTime = 0; ///< Milliseconds for loading the fleet's plug-in.
    std::wstring value;
};

/// Loads and starts the fleet's plug-in. Returns the milliseconds that loading it took.
double loadFleet(UnifiedFactory& factory) {
    const auto began = Clock::now();
    factory.getFeatureSetByType<FleetService>();
    const auto loadTime = millisecondsSince(began);
    factory.StartFeatureSet(FleetService::fleetServiceId, nullptr);
    return loadTime;
}

Answer start(UnifiedFactoryImpl& factory, const std::string& mode) {
    factory.Init();
    Answer answer;
    onServices(factory, [&] {
        factory.getServiceByType<ConfigService>();
        factory.StartFeatureSet(configServiceId, nullptr);
        if (mode == "with") {
            answer.loadTime = loadFleet(factory);
        }
        answer.value = factory.getServiceByType<ConfigService>()->getConfig(L"Theme")->getValue();
    });
    return answer;
}

void waitForValue(UnifiedFactory& factory, const std::wstring& value) {
    const auto reached = std::make_shared<testing_host::Signal>();
    onServices(factory, [&] {
        const auto record = factory.getServiceByType<ConfigService>()->getConfig(L"Theme");
        const auto check = [weak = std::weak_ptr(record), value, reached] {
            if (const auto live = weak.lock(); live && live->getValue() == value) {
                reached->set();
            }
        };
        record->getConfigValueNotifiers()->getValueNotifier()->connect(check);
        check();
    });
    if (!reached->wait()) {
        throw std::runtime_error("the value does not arrive");
    }
}

void run(const std::vector<std::string>& arguments) {
    const auto began = Clock::now();
    const std::filesystem::path profile(arguments.at(0));
    KyrCoreUtils::FileUtils::overrideDirectories({(profile / "config").string(), (profile / "data").string(),
                                                  (profile / "state").string(), (profile / "resources").string()});
    const auto factory = makeFactory();
    const auto& mode = arguments.at(1);
    const auto answer = start(*factory, mode);
    const auto answerTime = millisecondsSince(began);
    onServices(*factory, [] {}); // behind the tasks that the start has posted
    std::printf("%.3f %.3f %.3f %s\n", answerTime, answer.loadTime, millisecondsSince(began),
                KyrCoreUtils::toString(answer.value).c_str());
    if (mode != "without" && !factory->IsFeatureSetStarted(FleetService::fleetServiceId)) {
        throw std::runtime_error("the fleet's plug-in does not start");
    }
    if (arguments.size() > 2) {
        waitForValue(*factory, KyrCoreUtils::toWideString(arguments[2]));
    }
    factory->Destroy();
}

} // namespace

int main(int argc, char** argv) {
    try {
        run({argv + 1, argv + argc});
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "fleet_start: %s\n", error.what());
        return 1;
    }
}
