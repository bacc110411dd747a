#include "Peer.h"

#include <glib.h>

namespace bench {

namespace {

constexpr const char* group = "Settings";

using KeyFile = std::unique_ptr<GKeyFile, decltype(&g_key_file_free)>;

class GlibKeyFile final : public Peer {
public:
    explicit GlibKeyFile(const std::string& file) {
        g_key_file_load_from_file(keys.get(), file.c_str(), G_KEY_FILE_NONE, nullptr);
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

private:
    KeyFile keys{g_key_file_new(), &g_key_file_free};
};

} // namespace

std::unique_ptr<Peer> makeGlibKeyFile(const Layer& layer, const std::filesystem::path& folder) {
    const KeyFile keys(g_key_file_new(), &g_key_file_free);
    for (const auto& [key, value] : layer) {
        g_key_file_set_string(keys.get(), group, key.c_str(), value.c_str());
    }
    const auto file = (folder / "settings.ini").string();
    g_key_file_save_to_file(keys.get(), file.c_str(), nullptr);
    return std::make_unique<GlibKeyFile>(file);
}

} // namespace bench
