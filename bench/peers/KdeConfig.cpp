#include "PeerLibrary.h"
#include "RowSuite.h"

#include <KConfig>
#include <KConfigGroup>

namespace bench {

namespace {

class KdeConfig final : public Peer {
public:
    explicit KdeConfig(const std::filesystem::path& folder)
        : config(QString::fromStdString((folder / "settingsrc").string()), KConfig::SimpleConfig),
          settings(&config, "Settings") {}

    std::optional<std::string> read(const std::string& key) override {
        const QString value = settings.readEntry(key.c_str(), QString());
        return value.isNull() ? std::nullopt : std::optional(value.toStdString());
    }

    void set(const std::string& key, const std::string& value) override {
        settings.writeEntry(key.c_str(), QString::fromStdString(value));
    }

    void persist() override { require(config.sync(), "a synchronised KConfig"); }

private:
    KConfig config;
    KConfigGroup settings;
};

} // namespace

PeerLibrary kdeConfig() {
    return {"KConfig",
            [](const PeerLayer& layer, const std::filesystem::path& folder) {
                KdeConfig config(folder);
                for (const auto& [key, value] : layer) {
                    config.set(key, value);
                }
                config.persist();
            },
            [](const std::filesystem::path& folder) { return std::make_unique<KdeConfig>(folder); }};
}

} // namespace bench
