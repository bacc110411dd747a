#pragma once

#include <cstddef>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>

namespace lumora_config {

/// What an output is, as far as it matters for the text written to it.
struct OutputForm {
    bool terminal = false;    ///< Somebody reads it, through a device that obeys control characters.
    std::size_t columns = 80; ///< Lines are not padded beyond this width.
    bool coloured = false;
};

/// One of the program's two outputs, and the one place that decides how text is written there: escaped to a terminal,
/// as it is elsewhere. A call's text is never mixed with that of another call. After a failure nothing more is written.
/// Any thread.
class Output {
public:
    /// Writes all of the text. Returns 0 or an errno value.
    using Writer = std::function<int(std::string_view)>;

    Output(const OutputForm& outputForm, Writer bytesWriter);

    /// Writes a value, `remark` and a line feed. A terminal gets one line, others the bytes of the value.
    void writeValue(std::string_view value, std::string_view remark = {});
    /// Writes a text of several lines. A terminal gets control characters escaped, apart from line feeds and
    /// tabulators.
    void writeText(std::string_view text);
    /// Writes a message as one line, escaped everywhere: no message can look like two.
    void writeMessage(std::string_view message);
    /// Writes text whose parts are escaped already, such as a table with colours.
    void writeEscaped(std::string_view text);

    const OutputForm& getForm() const { return form; }
    /// Returns the failure of an earlier write as an errno value, or 0.
    int getError() const;

private:
    const OutputForm form;
    const Writer writer;
    mutable std::mutex mutex;
    int error = 0; ///< Guarded by `mutex`.
};

} // namespace lumora_config
