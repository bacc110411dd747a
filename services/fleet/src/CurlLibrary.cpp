#include "CurlLibrary.h"

#include <stdexcept>

namespace fleet {

CurlLibrary CurlLibrary::load(const std::string& name) {
    try {
        const CurlLibrary loaded(name);
        if (loaded.curl_global_init(CURL_GLOBAL_DEFAULT) != CURLE_OK) {
            throw std::runtime_error("it cannot be initialised");
        }
        return loaded;
    } catch (const std::runtime_error& failure) {
        throw std::runtime_error(std::string("libcurl cannot be used: ") + failure.what());
    }
}

const CurlLibrary& curl() {
    static const auto loaded = CurlLibrary::load(LUMORA_CURL_LIBRARY);
    return loaded;
}

} // namespace fleet
