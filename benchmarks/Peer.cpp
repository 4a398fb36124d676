// What the memory of `glintar line` is held against: a program that links the same libraries, makes one TLS request and
// one key look-up, says so on standard output, and waits.

#include <curl/curl.h>
#include <fmt/format.h>
#include <unicode/ucasemap.h>

#undef signals
#include <QCoreApplication>
#include <QSettings>
#include <libsecret/secret.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

std::size_t drop(char*, std::size_t size, std::size_t count, void*) {
    return size * count;
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    curl_global_init(CURL_GLOBAL_DEFAULT);
    CURL* request = curl_easy_init();
    curl_easy_setopt(request, CURLOPT_URL, argc > 1 ? argv[1] : "");
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

    UErrorCode status = U_ZERO_ERROR;
    ucasemap_close(ucasemap_open("", 0, &status));
    const QSettings settings("/nonexistent/glintar.conf", QSettings::NativeFormat);
    fmt::print("{}\n", outcome == CURLE_OK && !error && settings.allKeys().isEmpty() ? "ready" : "failed");
    std::fflush(stdout);
    return QCoreApplication::exec();
}
