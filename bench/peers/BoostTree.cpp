#include "Peer.h"

#include <boost/property_tree/info_parser.hpp>
#include <boost/property_tree/ptree.hpp>

namespace bench {

namespace {

using boost::property_tree::ptree;

class BoostTree final : public Peer {
public:
    explicit BoostTree(const std::string& file) { boost::property_tree::read_info(file, tree); }

    std::optional<std::string> read(const std::string& key) override {
        const auto found = tree.find(key); // its map; get() would parse the key as a path
        return found == tree.not_found() ? std::nullopt : std::optional(found->second.data());
    }

private:
    ptree tree;
};

} // namespace

std::unique_ptr<Peer> makeBoostTree(const Layer& layer, const std::filesystem::path& folder) {
    ptree tree;
    for (const auto& [key, value] : layer) {
        tree.push_back({key, ptree(value)});
    }
    const auto file = (folder / "settings.info").string();
    boost::property_tree::write_info(file, tree);
    return std::make_unique<BoostTree>(file);
}

} // namespace bench
