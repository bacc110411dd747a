#include "PeerLibrary.h"
#include "RowSuite.h"

#include <glib.h>

namespace bench {

namespace {

constexpr const char* group = "Settings";

using KeyFile = std::unique_ptr<GKeyFile, decltype(&g_key_file_free)>;

std::string fileIn(const std::filesystem::path& folder) {
    return (folder / "settings.ini").string();
}

class GlibKeyFile final : public Peer {
public:
    explicit GlibKeyFile(const std::filesystem::path& folder) : file(fileIn(folder)) {
        require(g_key_file_load_from_file(keys.get(), file.c_str(), G_KEY_FILE_NONE, nullptr), "a key file");
    }

    std::optional<std::string> read(const std::string& key) override {
        gchar* value = g_key_file_get_string(keys.get(), group, key.c_str(), nullptr);
        if (value == nullptr) {
            return std::nullopt;
        }
        std::string text = value;
        g_free(value);
        return text;
    }

    void set(const std::string& key, const std::string& value) override {
        g_key_file_set_string(keys.get(), group, key.c_str(), value.c_str());
    }

    void persist() override { require(g_key_file_save_to_file(keys.get(), file.c_str(), nullptr), "a saved key file"); }

private:
    const std::string file;
    KeyFile keys{g_key_file_new(), &g_key_file_free};
};

void write(const PeerLayer& layer, const std::filesystem::path& folder) {
    const KeyFile keys(g_key_file_new(), &g_key_file_free);
    for (const auto& [key, value] : layer) {
        g_key_file_set_string(keys.get(), group, key.c_str(), value.c_str());
    }
    require(g_key_file_save_to_file(keys.get(), fileIn(folder).c_str(), nullptr), "a saved key file");
}

} // namespace

PeerLibrary glibKeyFile() {
    return {"GKeyFile", write,
            [](const std::filesystem::path& folder) { return std::make_unique<GlibKeyFile>(folder); }};
}

} // namespace bench
