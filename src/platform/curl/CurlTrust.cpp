#include "platform/curl/CurlTrust.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string_view>

namespace glintar::platform {
namespace {

/// Empty where it is not set.
std::string environment(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr ? value : "";
}

/// What curl was built with, where nothing is set. `curl_version_info` would tell it too, but asks each of the dozen
/// libraries below curl for its version, which brings code of theirs into memory.
std::string environment(const char* name, CURLINFO builtIn) {
    std::string value = environment(name);
    if (value.empty()) {
        const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> handle(curl_easy_init(), &curl_easy_cleanup);
        char* text = nullptr;
        if (curl_easy_getinfo(handle.get(), builtIn, &text) == CURLE_OK && text != nullptr) {
            value = text;
        }
    }
    return value;
}

/// OpenSSL finds certificates in a folder by links such as "5ed36f99.0" alone.
bool isHashed(const std::string& directory) {
    std::error_code error;
    auto entry = std::filesystem::directory_iterator(directory, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        if (entry->path().extension() == ".0") {
            return true;
        }
    }
    return false;
}

/// SSL_CERT_DIR may name several folders, parted by colons.
bool anyHashed(std::string_view directories) {
    while (!directories.empty()) {
        const std::size_t end = std::min(directories.find(':'), directories.size());
        if (isHashed(std::string(directories.substr(0, end)))) {
            return true;
        }
        directories.remove_prefix(std::min(end + 1, directories.size()));
    }
    return false;
}

}  // namespace

const std::vector<CurlTrust::Store>& CurlTrust::stores() {
    if (!stores_.empty()) {
        return stores_;
    }
    const std::string file = environment("SSL_CERT_FILE", CURLINFO_CAINFO);
    const std::string directory = environment("SSL_CERT_DIR", CURLINFO_CAPATH);
    if (anyHashed(directory)) {
        stores_.push_back({.file = {}, .directory = directory});
    }
    const bool named = !environment("SSL_CERT_FILE").empty();
    stores_.insert(named ? stores_.begin() : stores_.end(), {.file = file, .directory = {}});
    return stores_;
}

void CurlTrust::apply(CURL* handle, std::size_t store) {
    const auto& [file, directory] = stores()[store];
    curl_easy_setopt(handle, CURLOPT_CAINFO, file.empty() ? nullptr : file.c_str());
    curl_easy_setopt(handle, CURLOPT_CAPATH, directory.empty() ? nullptr : directory.c_str());
}

}  // namespace glintar::platform
