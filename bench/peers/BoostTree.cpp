#include "PeerLibrary.h"
#include "RowSuite.h"

#include <boost/property_tree/info_parser.hpp>
#include <boost/property_tree/ptree.hpp>

namespace bench {

namespace {

using boost::property_tree::ptree;

std::string fileIn(const std::filesystem::path& folder) {
    return (folder / "settings.info").string();
}

class BoostTree final : public Peer {
public:
    explicit BoostTree(const std::filesystem::path& folder) : file(fileIn(folder)) {
        boost::property_tree::read_info(file, tree);
    }

    std::optional<std::string> read(const std::string& key) override {
        const auto found = tree.find(key); // the tree's map; get() would parse the key as a path
        return found == tree.not_found() ? std::nullopt : std::optional(found->second.data());
    }

    void set(const std::string& key, const std::string& value) override {
        const auto found = tree.find(key);
        require(found != tree.not_found(), "a key of Boost.PropertyTree");
        found->second.data() = value;
    }

    void persist() override { boost::property_tree::write_info(file, tree); }

private:
    const std::string file;
    ptree tree;
};

void write(const PeerLayer& layer, const std::filesystem::path& folder) {
    ptree tree;
    for (const auto& [key, value] : layer) {
        tree.push_back({key, ptree(value)});
    }
    boost::property_tree::write_info(fileIn(folder), tree);
}

} // namespace

PeerLibrary boostTree() {
    return {"Boost.PropertyTree", write,
            [](const std::filesystem::path& folder) { return std::make_unique<BoostTree>(folder); }};
}

} // namespace bench
