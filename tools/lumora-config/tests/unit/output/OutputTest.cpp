#include "output/Output.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace lumora_config {

namespace {

constexpr auto hostile = "a\x1b[2J\n\xC2\x9B\x7f";

/// An output that records what is written to it.
struct Recorded {
    explicit Recorded(bool terminal) : form{terminal, 80, false} {}

    const OutputForm form;
    std::string text;
    Output output{form, [this](std::string_view bytes) {
                      text += bytes;
                      return 0;
                  }};
};

} // namespace

TEST(Output, ATerminalGetsAValueInOneLine) {
    Recorded recorded(true);
    recorded.output.writeValue(hostile, "  (store)");
    EXPECT_EQ(recorded.text, "a\\x1b[2J\\n\\u009b\\x7f  (store)\n");
}

TEST(Output, APipeGetsTheBytesOfAValue) {
    Recorded recorded(false);
    recorded.output.writeValue(hostile, "  (store)");
    EXPECT_EQ(recorded.text, std::string(hostile) + "  (store)\n");
}

TEST(Output, ATerminalGetsATextWithItsLineBreaks) {
    Recorded recorded(true);
    recorded.output.writeText("first\tline\x1b\nsecond\xC2\x9B\n");
    EXPECT_EQ(recorded.text, "first\tline\\x1b\nsecond\\u009b\n");
}

TEST(Output, APipeGetsATextUnchanged) {
    Recorded recorded(false);
    recorded.output.writeText(hostile);
    EXPECT_EQ(recorded.text, hostile);
}

TEST(Output, AMessageIsOneLineOnEveryOutput) {
    for (const bool terminal : {true, false}) {
        Recorded recorded(terminal);
        recorded.output.writeMessage(hostile);
        EXPECT_EQ(recorded.text, "a\\x1b[2J\\n\\u009b\\x7f\n");
    }
}

TEST(Output, WritesNothingMoreAfterAFailure) {
    int calls = 0;
    Output output({}, [&](std::string_view) {
        ++calls;
        return calls == 2 ? ENOSPC : 0;
    });
    output.writeText("first");
    EXPECT_EQ(output.getError(), 0);
    output.writeText("second");
    output.writeText("third");
    EXPECT_EQ(output.getError(), ENOSPC);
    EXPECT_EQ(calls, 2);
}

} // namespace lumora_config
