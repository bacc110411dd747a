#include "PeerFiles.h"

namespace bench {

PeerFiles::PeerFiles(const PeerLibrary& peer, const Workload& written, const std::filesystem::path& place)
    : library(peer), workload(written), folder(place) {
    PeerChain::write(library, workload, folder);
}

std::shared_ptr<PeerChain> PeerFiles::open() const {
    return openIn(folder);
}

std::shared_ptr<PeerChain> PeerFiles::openChecked() const {
    auto chain = open();
    chain->check(workload);
    return chain;
}

std::shared_ptr<PeerChain> PeerFiles::openCopy() const {
    const auto copy = folder.parent_path() / (folder.filename().string() + "-copy");
    std::filesystem::copy(folder, copy, std::filesystem::copy_options::recursive);
    return openIn(copy);
}

std::shared_ptr<PeerChain> PeerFiles::openIn(const std::filesystem::path& place) const {
    return std::make_shared<PeerChain>(library, workload.getLayers().size(), place);
}

} // namespace bench
