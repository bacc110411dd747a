#include "Peer.h"

#include <libconfig.h++>

namespace bench {

namespace {

class LibConfig final : public Peer {
public:
    explicit LibConfig(const std::string& file) { config.readFile(file.c_str()); }

    std::optional<std::string> read(const std::string& key) override {
        std::string value;
        return config.lookupValue(key, value) ? std::optional(std::move(value)) : std::nullopt;
    }

private:
    libconfig::Config config;
};

} // namespace

std::unique_ptr<Peer> makeLibConfig(const Layer& layer, const std::filesystem::path& folder) {
    libconfig::Config config;
    for (const auto& [key, value] : layer) {
        config.getRoot().add(key, libconfig::Setting::TypeString) = value;
    }
    const auto file = (folder / "settings.cfg").string();
    config.writeFile(file.c_str());
    return std::make_unique<LibConfig>(file);
}

} // namespace bench
