#include "Peer.h"

#include <KConfig>
#include <KConfigGroup>

namespace bench {

namespace {

constexpr const char* group = "Settings";

class KdeConfig final : public Peer {
public:
    explicit KdeConfig(const QString& file) : config(file, KConfig::SimpleConfig), settings(&config, group) {}

    std::optional<std::string> read(const std::string& key) override {
        const QString value = settings.readEntry(key.c_str(), QString());
        return value.isNull() ? std::nullopt : std::optional(value.toStdString());
    }

private:
    KConfig config;
    KConfigGroup settings;
};

} // namespace

std::unique_ptr<Peer> makeKdeConfig(const Layer& layer, const std::filesystem::path& folder) {
    const auto file = QString::fromStdString((folder / "settingsrc").string());
    KConfig config(file, KConfig::SimpleConfig);
    KConfigGroup settings(&config, group);
    for (const auto& [key, value] : layer) {
        settings.writeEntry(key.c_str(), QString::fromStdString(value));
    }
    config.sync();
    return std::make_unique<KdeConfig>(file);
}

} // namespace bench
