#include "LoginManagerMock.h"

#include "TemporaryProfile.h"

#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <system_error>

namespace testing_host {

namespace {

using Clock = std::chrono::steady_clock;
using OwnedMessage = std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)>;

constexpr std::chrono::seconds patience(60);
constexpr const char* service = "org.freedesktop.login1";
constexpr const char* object = "/org/freedesktop/login1";
constexpr const char* interface = "org.freedesktop.login1.Manager";

/// The distribution's interpreter: another one does not find the distribution's packages.
constexpr const char* python = "/usr/bin/python3";

constexpr const char* configuration =
    R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <listen>unix:path=@FOLDER@/bus</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*"/>
    <allow receive_sender="*"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

void require(int result, const char* what) {
    if (result < 0) {
        throw std::system_error(-result, std::generic_category(), what);
    }
}

OwnedMessage owned(sd_bus_message* message) {
    return {message, &sd_bus_message_unref};
}

std::filesystem::path makeFolder() {
    auto name = (std::filesystem::temp_directory_path() / "lumora-bus-XXXXXX").string();
    require(mkdtemp(name.data()) == nullptr ? -errno : 0, "mkdtemp");
    return name;
}

std::string configurationFor(const std::filesystem::path& folder) {
    std::string text = configuration;
    const std::string mark = "@FOLDER@";
    return text.replace(text.find(mark), mark.size(), folder.string());
}

sd_bus* connect() {
    sd_bus* bus = nullptr;
    require(sd_bus_open_system(&bus), "connecting to the private bus");
    return bus;
}

int noteChange(sd_bus_message*, void* changed, sd_bus_error*) {
    *static_cast<bool*>(changed) = true;
    return 0;
}

} // namespace

ChildProcess::ChildProcess(std::vector<std::string> arguments, int inherited) {
    std::vector<char*> argv;
    for (auto& argument : arguments) {
        argv.push_back(argument.data());
    }
    argv.push_back(nullptr);
    process = fork();
    require(process < 0 ? -errno : 0, "fork");
    if (process == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (inherited >= 0) {
            fcntl(inherited, F_SETFD, 0);
        }
        execvp(argv[0], argv.data());
        _exit(127);
    }
}

ChildProcess::~ChildProcess() {
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
}

PrivateSystemBus::PrivateSystemBus() : folder(makeFolder()) {
    writeFile(folder / "bus.conf", configurationFor(folder));
    std::array<int, 2> ends{};
    require(pipe2(ends.data(), O_CLOEXEC) < 0 ? -errno : 0, "pipe");
    daemon = std::make_unique<ChildProcess>(
        std::vector<std::string>{"dbus-daemon", "--config-file=" + (folder / "bus.conf").string(), "--nofork",
                                 "--nopidfile", "--print-address=" + std::to_string(ends[1])},
        ends[1]);
    close(ends[1]);
    // The child writes its address when it accepts connections.
    char first = 0;
    const auto length = read(ends[0], &first, 1);
    close(ends[0]);
    if (length != 1) {
        throw std::runtime_error("dbus-daemon does not start");
    }
    setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + (folder / "bus").string()).c_str(), 1);
}

PrivateSystemBus::~PrivateSystemBus() {
    unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
    end();
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

LoginManagerMock::LoginManagerMock() : bus(connect(), &sd_bus_flush_close_unref) {
    require(sd_bus_match_signal(bus.get(), nullptr, "org.freedesktop.DBus", nullptr, "org.freedesktop.DBus",
                                "NameOwnerChanged", &noteChange, &ownerChanged),
            "listening for the login manager");
    process = std::make_unique<ChildProcess>(
        std::vector<std::string>{python, "-m", "dbusmock", "--system", "--template", "logind"});
    const auto deadline = Clock::now() + patience;
    while (!isThere()) {
        ownerChanged = false;
        while (!ownerChanged) {
            if (Clock::now() > deadline) {
                throw std::runtime_error("python3-dbusmock does not start");
            }
            if (sd_bus_process(bus.get(), nullptr) == 0) {
                sd_bus_wait(bus.get(), std::chrono::microseconds(patience).count());
            }
        }
    }
}

LoginManagerMock::~LoginManagerMock() = default;

bool LoginManagerMock::isThere() {
    sd_bus_message* reply = nullptr;
    int has = 0;
    require(sd_bus_call_method(bus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                               "NameHasOwner", nullptr, &reply, "s", service),
            "asking for the login manager");
    const auto answer = owned(reply);
    require(sd_bus_message_read(answer.get(), "b", &has), "reading whether it is there");
    return has != 0;
}

void LoginManagerMock::announce(const char* signal, bool begins) {
    require(sd_bus_call_method(bus.get(), service, object, "org.freedesktop.DBus.Mock", "EmitSignal", nullptr, nullptr,
                               "sssav", interface, signal, "b", 1, "b", static_cast<int>(begins)),
            "announcing");
}

void LoginManagerMock::forge(const char* signal, bool begins) {
    for (const auto& name : getConnectionNames()) {
        sd_bus_message* made = nullptr;
        require(sd_bus_message_new_signal(bus.get(), &made, object, interface, signal), "making a signal");
        const auto message = owned(made);
        require(sd_bus_message_append(message.get(), "b", static_cast<int>(begins)), "filling a signal");
        require(sd_bus_message_set_destination(message.get(), name.c_str()), "addressing a signal");
        require(sd_bus_send(bus.get(), message.get(), nullptr), "sending a signal");
    }
    isThere(); // the bus answers in order, so this answer follows all earlier messages
}

std::vector<std::string> LoginManagerMock::getConnectionNames() {
    sd_bus_message* reply = nullptr;
    require(sd_bus_call_method(bus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                               "ListNames", nullptr, &reply, ""),
            "listing the connections");
    const auto answer = owned(reply);
    require(sd_bus_message_enter_container(answer.get(), 'a', "s"), "reading the connections");
    std::vector<std::string> names;
    const char* name = nullptr;
    while (sd_bus_message_read(answer.get(), "s", &name) > 0) {
        if (name[0] == ':') {
            names.emplace_back(name);
        }
    }
    return names;
}

std::vector<std::string> LoginManagerMock::getInhibitors() {
    sd_bus_message* reply = nullptr;
    require(sd_bus_call_method(bus.get(), service, object, interface, "ListInhibitors", nullptr, &reply, ""),
            "listing the inhibitors");
    const auto answer = owned(reply);
    require(sd_bus_message_enter_container(answer.get(), 'a', "(ssssuu)"), "reading the inhibitors");
    std::vector<std::string> inhibitors;
    const char* what = nullptr;
    const char* who = nullptr;
    const char* why = nullptr;
    const char* mode = nullptr;
    unsigned int user = 0;
    unsigned int holder = 0;
    while (sd_bus_message_read(answer.get(), "(ssssuu)", &what, &who, &why, &mode, &user, &holder) > 0) {
        inhibitors.push_back(std::string(what) + ' ' + mode);
    }
    return inhibitors;
}

bool LoginManagerMock::waitForInhibitors(std::size_t count) {
    // Inhibitors are not announced, so they are polled, with a wait for each answer.
    const auto deadline = Clock::now() + patience;
    while (getInhibitors().size() != count) {
        if (Clock::now() > deadline) {
            return false;
        }
    }
    return true;
}

} // namespace testing_host
