#pragma once

#include <kyr/SharedLibrary.h>

#include <curl/curl.h>

#include <string>

namespace fleet {

/// The functions of libcurl, under their names. The library is loaded on first use and not with the plug-in: it brings
/// about 30 other libraries along, and a client must start as fast as without the plug-in.
struct CurlLibrary {
    /// Loads and initialises the library of this file name. Throws std::runtime_error, with one line of text, if it is
    /// not installed, lacks a function or cannot be initialised.
    static CurlLibrary load(const std::string& name);

    const KyrCoreUtils::SharedLibrary library;

    LUMORA_LIBRARY_CALL(curl_easy_cleanup);
    LUMORA_LIBRARY_CALL(curl_easy_getinfo);
    LUMORA_LIBRARY_CALL(curl_easy_init);
    LUMORA_LIBRARY_CALL(curl_easy_setopt);
    LUMORA_LIBRARY_CALL(curl_easy_strerror);
    LUMORA_LIBRARY_CALL(curl_global_init);
    LUMORA_LIBRARY_CALL(curl_multi_add_handle);
    LUMORA_LIBRARY_CALL(curl_multi_cleanup);
    LUMORA_LIBRARY_CALL(curl_multi_info_read);
    LUMORA_LIBRARY_CALL(curl_multi_init);
    LUMORA_LIBRARY_CALL(curl_multi_perform);
    LUMORA_LIBRARY_CALL(curl_multi_poll);
    LUMORA_LIBRARY_CALL(curl_multi_remove_handle);
    LUMORA_LIBRARY_CALL(curl_multi_strerror);
    LUMORA_LIBRARY_CALL(curl_multi_wakeup);
    LUMORA_LIBRARY_CALL(curl_slist_append);
    LUMORA_LIBRARY_CALL(curl_slist_free_all);

private:
    explicit CurlLibrary(const std::string& name) : library(name) {}
};

/// Returns the loaded library. Throws std::runtime_error if it cannot be used; the next call tries again. Any thread.
const CurlLibrary& curl();

} // namespace fleet
