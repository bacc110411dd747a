#include "Peer.h"

#define G_SETTINGS_ENABLE_BACKEND
#include <gio/gio.h>
#include <gio/gsettingsbackend.h>

#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace bench {

namespace {

/// The keys are declared in a compiled schema, whose defaults stand for a layer; the user's values lie in memory. A key
/// that is not declared ends the program, so whether there is one is asked first.
class GlibSettings final : public Peer {
public:
    explicit GlibSettings(const std::string& folder) {
        GSettingsSchemaSource* source =
            g_settings_schema_source_new_from_directory(folder.c_str(), nullptr, FALSE, nullptr);
        schema = g_settings_schema_source_lookup(source, "bench.settings", FALSE);
        g_settings_schema_source_unref(source);
        GSettingsBackend* memory = g_memory_settings_backend_new();
        settings = g_settings_new_full(schema, memory, nullptr);
        g_object_unref(memory);
    }
    ~GlibSettings() override {
        g_object_unref(settings);
        g_settings_schema_unref(schema);
    }

    std::optional<std::string> read(const std::string& key) override {
        if (!g_settings_schema_has_key(schema, key.c_str())) {
            return std::nullopt;
        }
        gchar* value = g_settings_get_string(settings, key.c_str());
        std::string text = value;
        g_free(value);
        return text;
    }

private:
    GSettingsSchema* schema = nullptr;
    GSettings* settings = nullptr;
};

} // namespace

std::unique_ptr<Peer> makeGlibSettings(const Layer& layer, const std::filesystem::path& folder) {
    std::ofstream xml(folder / "bench.gschema.xml");
    xml << "<schemalist><schema id=\"bench.settings\" path=\"/bench/\">\n";
    for (const auto& [key, value] : layer) {
        xml << "<key name=\"" << key << "\" type=\"s\"><default>'" << value << "'</default></key>\n";
    }
    xml << "</schema></schemalist>\n";
    xml.close();
    if (std::system(("glib-compile-schemas '" + folder.string() + "'").c_str()) != 0) {
        throw std::runtime_error("the schema could not be compiled");
    }
    return std::make_unique<GlibSettings>(folder.string());
}

} // namespace bench
