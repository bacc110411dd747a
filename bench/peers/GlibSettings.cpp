#include "PeerLibrary.h"
#include "RowSuite.h"

#define G_SETTINGS_ENABLE_BACKEND
#include <gio/gio.h>
#include <gio/gsettingsbackend.h>

#include <cstdlib>
#include <fstream>

namespace bench {

namespace {

template <auto release>
struct Releaser {
    template <typename T>
    void operator()(T* object) const {
        release(object);
    }
};

template <typename T>
using Object = std::unique_ptr<T, Releaser<&g_object_unref>>;
using Backend = Object<GSettingsBackend>;
using MainContext = std::unique_ptr<GMainContext, Releaser<&g_main_context_unref>>;
using Schema = std::unique_ptr<GSettingsSchema, Releaser<&g_settings_schema_unref>>;
using SchemaSource = std::unique_ptr<GSettingsSchemaSource, Releaser<&g_settings_schema_source_unref>>;

Schema openSchema(const std::filesystem::path& folder) {
    const SchemaSource source(g_settings_schema_source_new_from_directory(folder.c_str(), nullptr, FALSE, nullptr));
    require(source != nullptr, "a compiled schema");
    return Schema(g_settings_schema_source_lookup(source.get(), "bench.settings", FALSE));
}

Backend openMemory(const std::filesystem::path& /*folder*/) {
    return Backend(g_memory_settings_backend_new());
}

Backend openKeyFile(const std::filesystem::path& folder) {
    return Backend(g_keyfile_settings_backend_new((folder / "settings.ini").c_str(), "/", nullptr));
}

using OpenBackend = Backend (*)(const std::filesystem::path& folder);

Object<GSettings> openSettings(const std::filesystem::path& folder, GSettingsSchema* schema, OpenBackend openBackend,
                               GMainContext* context) {
    g_main_context_push_thread_default(context);
    Object<GSettings> settings(g_settings_new_full(schema, openBackend(folder).get(), nullptr));
    g_main_context_pop_thread_default(context);
    return settings;
}

/// The library aborts on a key that the schema does not declare, so the key is checked first.
class GlibSettings final : public Peer {
public:
    GlibSettings(const std::filesystem::path& folder, OpenBackend openBackend)
        : schema(openSchema(folder)), settings(openSettings(folder, schema.get(), openBackend, context.get())) {
        g_signal_connect(settings.get(), "changed", G_CALLBACK(&GlibSettings::onChanged), &announced);
    }

    std::optional<std::string> read(const std::string& key) override {
        if (!g_settings_schema_has_key(schema.get(), key.c_str())) {
            return std::nullopt;
        }
        gchar* value = g_settings_get_string(settings.get(), key.c_str());
        std::string text = value;
        g_free(value);
        return text;
    }

    void set(const std::string& key, const std::string& value) override {
        announced = false;
        require(g_settings_set_string(settings.get(), key.c_str(), value.c_str()), "a value of GSettings");
        while (g_main_context_iteration(context.get(), FALSE)) { // the library reports changes from the main loop
        }
        require(announced, "an announcement of GSettings");
    }

    void persist() override { g_settings_sync(); }

    /// Sets all values at once, since each change would write the whole file.
    void setAll(const PeerLayer& layer) {
        g_settings_delay(settings.get());
        for (const auto& [key, value] : layer) {
            require(g_settings_set_string(settings.get(), key.c_str(), value.c_str()), "a value of GSettings");
        }
        g_settings_apply(settings.get());
    }

private:
    static void onChanged(GSettings* /*settings*/, const gchar* /*key*/, gboolean* announced) { *announced = TRUE; }

    gboolean announced = FALSE;
    const MainContext context{g_main_context_new()}; // a separate context: other objects wait for events on theirs
    const Schema schema;
    const Object<GSettings> settings;
};

/// Declares the keys in a schema, with the values or nothing as their defaults.
void declare(const PeerLayer& layer, bool withValues, const std::filesystem::path& folder) {
    std::ofstream xml(folder / "bench.gschema.xml");
    xml << "<schemalist><schema id=\"bench.settings\" path=\"/bench/\">\n";
    for (const auto& [key, value] : layer) {
        xml << "<key name=\"" << key << "\" type=\"s\"><default>'" << (withValues ? value : "")
            << "'</default></key>\n";
    }
    xml << "</schema></schemalist>\n";
    xml.close();
    require(std::system(("glib-compile-schemas '" + folder.string() + "'").c_str()) == 0, "the compiler of schemas");
}

} // namespace

PeerLibrary glibSettings() {
    return {
        .name = "GSettings",
        .write = [](const PeerLayer& layer, const std::filesystem::path& folder) { declare(layer, true, folder); },
        .open = [](const std::filesystem::path& folder) { return std::make_unique<GlibSettings>(folder, &openMemory); },
        .setsInMemory = true,
        .persists = false};
}

PeerLibrary glibSettingsOnFile() {
    return {
        .name = "GSettings, key file",
        .write =
            [](const PeerLayer& layer, const std::filesystem::path& folder) {
                declare(layer, false, folder);
                GlibSettings(folder, &openKeyFile).setAll(layer);
            },
        .open =
            [](const std::filesystem::path& folder) { return std::make_unique<GlibSettings>(folder, &openKeyFile); },
        .setsInMemory = false,
        .persists = true};
}

} // namespace bench
