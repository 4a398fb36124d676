#include "benchmarks/PeerRequests.h"

#include <curl/curl.h>
#include <libsecret/secret.h>

#include <cstddef>
#include <cstdlib>

namespace glintar::bench {

namespace {

std::size_t drop(char*, std::size_t size, std::size_t count, void*) {
    return size * count;
}

}  // namespace

extern "C" bool makePeerRequests(const char* url) {
    curl_global_init(CURL_GLOBAL_DEFAULT);
    CURL* request = curl_easy_init();
    curl_easy_setopt(request, CURLOPT_URL, url);
    curl_easy_setopt(request, CURLOPT_WRITEFUNCTION, drop);
    curl_easy_setopt(request, CURLOPT_CAINFO, nullptr);
    curl_easy_setopt(request, CURLOPT_CAPATH, std::getenv("SSL_CERT_DIR"));
    const CURLcode outcome = curl_easy_perform(request);

    static const SecretSchema schema{"org.glintar.Glintar",
                                     SECRET_SCHEMA_DONT_MATCH_NAME,
                                     {{"service", SECRET_SCHEMA_ATTRIBUTE_STRING}, {nullptr, {}}},
                                     0,
                                     nullptr,
                                     nullptr,
                                     nullptr,
                                     nullptr,
                                     nullptr,
                                     nullptr,
                                     nullptr};
    GError* error = nullptr;
    gchar* secret = secret_password_lookup_sync(&schema, nullptr, &error, "service", "apiKey_coingecko", nullptr);
    secret_password_free(secret);
    return outcome == CURLE_OK && !error;
}

}  // namespace glintar::bench
