#pragma once

#include <curl/curl.h>

#include <memory>

namespace glintar::platform {

struct CurlDeleter {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
    void operator()(CURLU* address) const { curl_url_cleanup(address); }
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};

using CurlEasy = std::unique_ptr<CURL, CurlDeleter>;
using CurlUrl = std::unique_ptr<CURLU, CurlDeleter>;
using CurlHeaders = std::unique_ptr<curl_slist, CurlDeleter>;

}  // namespace glintar::platform
