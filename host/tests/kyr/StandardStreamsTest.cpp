#include <kyr/StandardStreams.h>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <string>
#include <thread>

namespace {

using KyrCoreUtils::StandardStreams;
using Stream = StandardStreams::Stream;

/// Exit codes of the child processes that are not errno values.
constexpr int asExpected = 200;
constexpr int otherwise = 201;

/// Ends the process without the exit handlers of the test framework, which write output.
[[noreturn]] void endWith(int code) {
    _exit(code);
}

void connectOutput(int descriptor) {
    if (dup2(descriptor, STDOUT_FILENO) < 0) {
        endWith(otherwise);
    }
}

std::array<int, 2> makePipe(int flags) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC | flags) != 0) {
        endWith(otherwise);
    }
    return ends;
}

[[noreturn]] void writeToAFullDevice() {
    StandardStreams::prepare();
    connectOutput(open("/dev/full", O_WRONLY | O_CLOEXEC));
    endWith(StandardStreams::write(Stream::Output, "text"));
}

[[noreturn]] void writeToAClosedPipe() {
    std::signal(SIGPIPE, SIG_DFL);
    StandardStreams::prepare();
    const auto ends = makePipe(0);
    connectOutput(ends[1]);
    close(ends[0]);
    endWith(StandardStreams::write(Stream::Output, "text"));
}

[[noreturn]] void writeToAClosedStream() {
    close(STDOUT_FILENO);
    StandardStreams::prepare();
    endWith(StandardStreams::write(Stream::Output, "text"));
}

[[noreturn]] void openAFileWithAllStreamsClosed() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        close(stream);
    }
    StandardStreams::prepare();
    const int file = open("/dev/null", O_WRONLY | O_CLOEXEC);
    char byte = '\0';
    const bool inputIsAtItsEnd = read(STDIN_FILENO, &byte, 1) == 0;
    const bool errorsAreIgnored = StandardStreams::write(Stream::Error, "text") == 0;
    endWith(file > STDERR_FILENO && inputIsAtItsEnd && errorsAreIgnored ? asExpected : otherwise);
}

/// Writes more than the pipe can buffer, into a non-blocking pipe.
[[noreturn]] void writeALongTextToASlowReader() {
    constexpr std::size_t length = 1'000'000;
    const auto ends = makePipe(O_NONBLOCK);
    connectOutput(ends[1]);
    close(ends[1]);
    std::size_t received = 0;
    std::thread reader([&] {
        fcntl(ends[0], F_SETFL, 0);
        std::array<char, 1000> buffer{};
        ssize_t count = 0;
        do {
            received += static_cast<std::size_t>(count);
            count = read(ends[0], buffer.data(), buffer.size());
        } while (count > 0);
    });
    const int error = StandardStreams::write(Stream::Output, std::string(length, 'x'));
    close(STDOUT_FILENO);
    reader.join();
    endWith(error == 0 && received == length ? asExpected : otherwise);
}

} // namespace

TEST(StandardStreamsDeathTest, WritingToAFullDeviceReturnsTheReason) {
    EXPECT_EXIT(writeToAFullDevice(), testing::ExitedWithCode(ENOSPC), "");
}

TEST(StandardStreamsDeathTest, WritingToAClosedPipeReturnsTheReasonAndRaisesNoSignal) {
    EXPECT_EXIT(writeToAClosedPipe(), testing::ExitedWithCode(EPIPE), "");
}

TEST(StandardStreamsDeathTest, WritingToAClosedStreamFails) {
    EXPECT_EXIT(writeToAClosedStream(), testing::ExitedWithCode(EBADF), "");
}

TEST(StandardStreamsDeathTest, AFileNeverGetsTheNumberOfAClosedStream) {
    EXPECT_EXIT(openAFileWithAllStreamsClosed(), testing::ExitedWithCode(asExpected), "");
}

TEST(StandardStreamsDeathTest, ALongTextWaitsForASlowReader) {
    EXPECT_EXIT(writeALongTextToASlowReader(), testing::ExitedWithCode(asExpected), "");
}
