#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <thread>

namespace fleet_test {

/// A member on a loopback address that answers as a test says, one connection per request.
class ScriptedMember {
public:
    struct Answer {
        int status = 200;
        std::string body;
        bool isHeld = false; ///< The answer does not end until the client closes the connection.
    };
    /// Returns the answer to a request of this path. Called on the member's thread.
    using Script = std::function<Answer(const std::string& path)>;

    explicit ScriptedMember(Script answers);
    ~ScriptedMember();
    ScriptedMember(const ScriptedMember&) = delete;
    ScriptedMember& operator=(const ScriptedMember&) = delete;

    std::string getEndpoint() const { return "http://127.0.0.1:" + std::to_string(port); }

private:
    void serve();
    void answer(int connection) const;

    const Script script;
    int listener = -1;
    int port = 0;
    std::atomic<bool> ending = false;
    std::thread thread; ///< The last member, because it uses the others.
};

} // namespace fleet_test
