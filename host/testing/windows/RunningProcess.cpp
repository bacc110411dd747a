#include "RunningProcess.h"

#include <kyr/StringUtils.h>

#include <windows.h>

#include <array>
#include <stdexcept>
#include <utility>

namespace testing_host {

namespace {

class Handle {
public:
    Handle() = default;
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

    std::string readNext() const {
        std::array<char, 4096> buffer{};
        DWORD length = 0;
        if (!::ReadFile(read.get(), buffer.data(), buffer.size(), &length, nullptr)) {
            length = 0;
        }
        return {buffer.data(), length};
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

struct RunningProcess::Handles {
    Pipe in{End::Write};
    Pipe out{End::Read};
    Pipe error{End::Read};
    Handle process;
    DWORD id = 0;
};

RunningProcess::RunningProcess(const std::string& program, const std::vector<std::string>& arguments)
    : handles(std::make_unique<Handles>()) {
    std::wstring line = quote(program);
    for (const auto& argument : arguments) {
        line += L' ' + quote(argument);
    }
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = handles->in.read.get();
    startup.hStdOutput = handles->out.write.get();
    startup.hStdError = handles->error.write.get();
    PROCESS_INFORMATION started{};
    if (!::CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &started)) {
        throw std::runtime_error("the program cannot be started: " + program);
    }
    *handles->process.address() = started.hProcess;
    handles->id = started.dwProcessId;
    ::CloseHandle(started.hThread);
    handles->in.read.close();
    handles->out.write.close();
    handles->error.write.close();
}

RunningProcess::~RunningProcess() {
    closeInput();
    handles->out.read.close();
    handles->error.read.close();
    waitForEnd();
}

int RunningProcess::getId() const {
    return static_cast<int>(handles->id);
}

void RunningProcess::write(const std::string& text) const {
    DWORD written = 0;
    ::WriteFile(handles->in.write.get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

void RunningProcess::closeInput() {
    handles->in.write.close();
}

std::string RunningProcess::readOutput() const {
    return handles->out.readNext();
}

std::string RunningProcess::readError() const {
    return handles->error.readNext();
}

void RunningProcess::kill() const {
    ::TerminateProcess(handles->process.get(), 1);
    waitForEnd();
}

int RunningProcess::waitForEnd() const {
    ::WaitForSingleObject(handles->process.get(), INFINITE);
    DWORD code = 0;
    ::GetExitCodeProcess(handles->process.get(), &code);
    return static_cast<int>(code);
}

} // namespace testing_host
