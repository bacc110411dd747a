#include "ProcessRun.h"

#include <kyr/StringUtils.h>

#include <windows.h>

#include <array>
#include <stdexcept>
#include <thread>
#include <utility>

namespace testing_host {

namespace {

class Handle {
public:
    Handle() = default;
    explicit Handle(HANDLE opened) : handle(opened) {}
    ~Handle() { close(); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    HANDLE get() const { return handle; }
    HANDLE* address() { return &handle; }
    void close() {
        if (HANDLE closing = std::exchange(handle, nullptr)) {
            ::CloseHandle(closing);
        }
    }

private:
    HANDLE handle = nullptr;
};

enum class End { Read, Write };

struct Pipe {
    /// The other end is for the program and is inherited.
    explicit Pipe(End ownEnd) {
        SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
        if (!::CreatePipe(read.address(), write.address(), &inherited, 0)) {
            throw std::runtime_error("no pipe");
        }
        ::SetHandleInformation((ownEnd == End::Read ? read : write).get(), HANDLE_FLAG_INHERIT, 0);
    }

    std::string drain() const {
        std::string text;
        std::array<char, 4096> buffer{};
        DWORD length = 0;
        while (::ReadFile(read.get(), buffer.data(), buffer.size(), &length, nullptr) && length > 0) {
            text.append(buffer.data(), length);
        }
        return text;
    }

    Handle read;
    Handle write;
};

/// Quotes a word so that the program gets it unchanged.
std::wstring quote(const std::string& word) {
    std::wstring quoted = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t unit : KyrCoreUtils::toWideString(word)) {
        if (unit == L'\\') {
            ++backslashes;
            continue;
        }
        // Backslashes count twice only before a quotation mark.
        quoted.append(unit == L'"' ? 2 * backslashes + 1 : backslashes, L'\\');
        quoted += unit;
        backslashes = 0;
    }
    return quoted.append(2 * backslashes, L'\\') + L'"';
}

} // namespace

ProcessRun ProcessRun::start(const std::string& program, const std::vector<std::string>& arguments,
                             const std::string& input) {
    Pipe in(End::Write);
    Pipe out(End::Read);
    Pipe error(End::Read);
    std::wstring line = quote(program);
    for (const auto& argument : arguments) {
        line += L' ' + quote(argument);
    }
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = in.read.get();
    startup.hStdOutput = out.write.get();
    startup.hStdError = error.write.get();
    PROCESS_INFORMATION started{};
    if (!::CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &started)) {
        throw std::runtime_error("the program cannot be started: " + program);
    }
    const Handle process(started.hProcess);
    const Handle thread(started.hThread);
    in.read.close();
    out.write.close();
    error.write.close();
    ProcessRun run;
    std::thread errorReader([&] { run.error = error.drain(); });
    std::thread writer([&] {
        DWORD written = 0;
        ::WriteFile(in.write.get(), input.data(), static_cast<DWORD>(input.size()), &written, nullptr);
        in.write.close();
    });
    run.out = out.drain();
    writer.join();
    errorReader.join();
    ::WaitForSingleObject(process.get(), INFINITE);
    DWORD code = 0;
    ::GetExitCodeProcess(process.get(), &code);
    run.exitCode = static_cast<int>(code);
    return run;
}

} // namespace testing_host
