#pragma once

#include "Workload.h"

#include <string>
#include <vector>

namespace bench {

/// The limit of a load: libxml2's parser without a tree over the documents of a workload in the clear, which keeps
/// nothing of them.
class BareParser {
public:
    explicit BareParser(const Workload& workload);

    void parse() const;

private:
    std::vector<std::string> documents;
    std::size_t keysInDocument;
};

} // namespace bench
