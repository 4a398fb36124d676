#include "platform/curl/CurlTrust.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string_view>

namespace glintar::platform {
namespace {

std::string environment(const char* name, const char* otherwise) {
    const char* value = std::getenv(name);
    if (value == nullptr || *value == '\0') {
        value = otherwise;
    }
    return value != nullptr ? value : "";
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
    const curl_version_info_data& built = *curl_version_info(CURLVERSION_NOW);
    const std::string file = environment("SSL_CERT_FILE", built.cainfo);
    const std::string directory = environment("SSL_CERT_DIR", built.capath);
    if (anyHashed(directory)) {
        stores_.push_back({.file = {}, .directory = directory});
    }
    const bool named = !environment("SSL_CERT_FILE", nullptr).empty();
    stores_.insert(named ? stores_.begin() : stores_.end(), {.file = file, .directory = {}});
    return stores_;
}

void CurlTrust::apply(CURL* handle, std::size_t store) {
    const auto& [file, directory] = stores()[store];
    curl_easy_setopt(handle, CURLOPT_CAINFO, file.empty() ? nullptr : file.c_str());
    curl_easy_setopt(handle, CURLOPT_CAPATH, directory.empty() ? nullptr : directory.c_str());
}

}  // namespace glintar::platform
