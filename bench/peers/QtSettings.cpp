#include "Peer.h"

#include <QSettings>

namespace bench {

namespace {

class QtSettings final : public Peer {
public:
    explicit QtSettings(const QString& file) : settings(file, QSettings::IniFormat) {}

    std::optional<std::string> read(const std::string& key) override {
        const QVariant value = settings.value(QString::fromStdString(key));
        return value.isValid() ? std::optional(value.toString().toStdString()) : std::nullopt;
    }

private:
    QSettings settings;
};

} // namespace

std::unique_ptr<Peer> makeQtSettings(const Layer& layer, const std::filesystem::path& folder) {
    const auto file = QString::fromStdString((folder / "settings.conf").string());
    {
        QSettings settings(file, QSettings::IniFormat);
        for (const auto& [key, value] : layer) {
            settings.setValue(QString::fromStdString(key), QString::fromStdString(value));
        }
    }
    return std::make_unique<QtSettings>(file);
}

} // namespace bench
