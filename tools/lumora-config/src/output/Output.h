#pragma once

#include <kyr/AnnotatedMutex.h>

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace lumora_config {

/// The properties of an output that affect the text written to it.
struct OutputForm {
    bool terminal = false;    ///< A terminal, which interprets control characters.
    std::size_t columns = 80; ///< Lines are not padded beyond this width.
    bool coloured = false;
};

/// Returns the form of standard output: coloured if it is a terminal with colours and NO_COLOR is not set.
OutputForm describeStandardOutput();
/// Returns the form of standard error, which is never coloured.
OutputForm describeStandardError();

/// One of the two outputs of the program. It decides how text is written: escaped to a terminal, unchanged elsewhere.
/// Each call writes atomically. After a failure, writes nothing more. Any thread.
class Output {
public:
    /// Writes all of the text. Returns 0 or an errno value.
    using Writer = std::function<int(std::string_view)>;

    Output(const OutputForm& outputForm, Writer bytesWriter);

    /// Writes a value, `remark` and a line feed. A terminal gets one escaped line, other outputs the unchanged bytes of
    /// the value.
    void writeValue(std::string_view value, std::string_view remark = {});
    /// Writes a text of several lines. For a terminal, escapes control characters except line feeds and tabs.
    void writeText(std::string_view text);
    /// Writes a message as one line, escaped for every output, so that a message cannot imitate two.
    void writeMessage(std::string_view message);
    /// Writes text whose parts are already escaped, such as a table with colours.
    void writeEscaped(std::string_view text);

    const OutputForm& getForm() const { return form; }
    /// Returns the errno value of the first failed write, or 0.
    int getError() const;

private:
    const OutputForm form;
    const Writer writer;
    mutable KyrCoreUtils::AnnotatedMutex<> mutex;
    int error LUMORA_GUARDED_BY(mutex) = 0;
};

} // namespace lumora_config
