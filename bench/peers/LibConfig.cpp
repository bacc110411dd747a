#include "PeerLibrary.h"

#include <libconfig.h++>

namespace bench {

namespace {

std::string fileIn(const std::filesystem::path& folder) {
    return (folder / "settings.cfg").string();
}

class LibConfig final : public Peer {
public:
    explicit LibConfig(const std::filesystem::path& folder) : file(fileIn(folder)) { config.readFile(file.c_str()); }

    std::optional<std::string> read(const std::string& key) override {
        std::string value;
        return config.lookupValue(key, value) ? std::optional(std::move(value)) : std::nullopt;
    }

    void set(const std::string& key, const std::string& value) override { config.lookup(key) = value; }

    void persist() override { config.writeFile(file.c_str()); }

private:
    const std::string file;
    libconfig::Config config;
};

void write(const PeerLayer& layer, const std::filesystem::path& folder) {
    libconfig::Config config;
    for (const auto& [key, value] : layer) {
        config.getRoot().add(key, libconfig::Setting::TypeString) = value;
    }
    config.writeFile(fileIn(folder).c_str());
}

} // namespace

PeerLibrary libConfig() {
    return {"libconfig++", write,
            [](const std::filesystem::path& folder) { return std::make_unique<LibConfig>(folder); }};
}

} // namespace bench
