#include "CurlLibrary.h"

#include <stdexcept>

namespace fleet {

namespace {

/// All versions with this binary interface have this name.
constexpr const char* curlFileName = "libcurl.so.4";

} // namespace

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
    static const auto loaded = CurlLibrary::load(curlFileName);
    return loaded;
}

} // namespace fleet
