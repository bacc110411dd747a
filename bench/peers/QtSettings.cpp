#include "PeerLibrary.h"
#include "RowSuite.h"

#include <QSettings>

namespace bench {

namespace {

class QtSettings final : public Peer {
public:
    explicit QtSettings(const std::filesystem::path& folder)
        : settings(QString::fromStdString((folder / "settings.conf").string()), QSettings::IniFormat) {}

    std::optional<std::string> read(const std::string& key) override {
        const QVariant value = settings.value(QString::fromStdString(key));
        return value.isValid() ? std::optional(value.toString().toStdString()) : std::nullopt;
    }

    void set(const std::string& key, const std::string& value) override {
        settings.setValue(QString::fromStdString(key), QString::fromStdString(value));
    }

    void persist() override {
        settings.sync();
        require(settings.status() == QSettings::NoError, "synchronised QSettings");
    }

private:
    QSettings settings;
};

} // namespace

PeerLibrary qtSettings() {
    return {"QSettings",
            [](const PeerLayer& layer, const std::filesystem::path& folder) {
                QtSettings settings(folder);
                for (const auto& [key, value] : layer) {
                    settings.set(key, value);
                }
                settings.persist();
            },
            [](const std::filesystem::path& folder) { return std::make_unique<QtSettings>(folder); }};
}

} // namespace bench
