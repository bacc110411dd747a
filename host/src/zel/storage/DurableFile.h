#pragma once

#include <zel/FileLayer.h>

#include <string>
#include <string_view>

namespace zel::storage {

/// The one way in which this product writes a file that must survive. Afterwards the path holds the old or the new
/// content as a whole, whatever fails, and after a power cut too. It is no protection against a disk that lies about
/// having written, nor against bytes that change later.
class LUMORA_HOST_API DurableFile {
public:
    DurableFile() = delete;

    /// Replaces the file or makes it. 0, or an errno value; unless only the last step failed the old file is as it was.
    static int replace(FileLayer& layer, const std::string& path, std::string_view bytes);
    /// Makes the file; EEXIST and nothing changed when the name is taken. Of several that try at once one succeeds.
    static int create(FileLayer& layer, const std::string& path, std::string_view bytes);

    /// A name beside `path`, hidden, that nothing else uses; "" when no random bytes can be had.
    static std::string makeTemporaryName(const std::string& path);

private:
    enum class Publish { ByRename, ByLink };
    static int write(FileLayer& layer, const std::string& path, std::string_view bytes, Publish publish);
};

} // namespace zel::storage
