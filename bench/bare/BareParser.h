#pragma once

#include "Workload.h"

#include <string>
#include <vector>

namespace bench {

/// The limit of a load: runs libxml2's parser without a tree over the clear documents of a workload and stores nothing.
class BareParser {
public:
    explicit BareParser(const Workload& workload);

    void parse() const;

private:
    std::vector<std::string> documents;
    std::size_t keysInDocument;
};

} // namespace bench
