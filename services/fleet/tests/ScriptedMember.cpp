#include "ScriptedMember.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace fleet_test {

namespace {

/// Reads one request with its body. Returns its path; "" if the client has closed the connection.
std::string readRequest(int connection) {
    constexpr std::string_view lengthField = "Content-Length: ";
    std::string text;
    std::array<char, 4096> buffer{};
    for (ssize_t count = 0; (count = ::recv(connection, buffer.data(), buffer.size(), 0)) > 0;) {
        text.append(buffer.data(), static_cast<std::size_t>(count));
        const auto head = text.find("\r\n\r\n");
        const auto length = text.find(lengthField);
        if (head != std::string::npos && length < head &&
            text.size() >= head + 4 + std::stoul(text.substr(length + lengthField.size()))) {
            const auto begin = text.find(' ') + 1;
            return text.substr(begin, text.find(' ', begin) - begin);
        }
    }
    return {};
}

/// Stops early if the client closes the connection.
void sendAll(int connection, std::string_view text) {
    while (!text.empty()) {
        const auto sent = ::send(connection, text.data(), text.size(), MSG_NOSIGNAL);
        if (sent <= 0) {
            return;
        }
        text.remove_prefix(static_cast<std::size_t>(sent));
    }
}

} // namespace

ScriptedMember::ScriptedMember(Script answers)
    : script(std::move(answers)), listener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = ::htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (listener < 0 || ::bind(listener, reinterpret_cast<sockaddr*>(&address), length) != 0 ||
        ::listen(listener, SOMAXCONN) != 0 ||
        ::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        throw std::runtime_error("no socket for the member");
    }
    port = ::ntohs(address.sin_port);
    thread = std::thread([this] { serve(); });
}

ScriptedMember::~ScriptedMember() {
    ending = true;
    ::shutdown(listener, SHUT_RDWR);
    thread.join();
    ::close(listener);
}

void ScriptedMember::serve() {
    while (!ending) {
        const int connection = ::accept(listener, nullptr, nullptr);
        if (connection < 0) {
            return;
        }
        answer(connection);
        ::close(connection);
    }
}

void ScriptedMember::answer(int connection) const {
    const auto path = readRequest(connection);
    if (path.empty()) {
        return;
    }
    const auto made = script(path);
    // The end of the connection is that of the body.
    sendAll(connection,
            "HTTP/1.1 " + std::to_string(made.status) + " Scripted\r\nConnection: close\r\n\r\n" + made.body);
    std::array<char, 16> rest{};
    while (made.isHeld && ::recv(connection, rest.data(), rest.size(), 0) > 0) {
    }
}

} // namespace fleet_test
