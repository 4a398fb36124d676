#include "benchmarks/Profile.h"

#include "support/TestAuthority.h"

#include <fmt/format.h>

#include <filesystem>
#include <fstream>

namespace glintar::bench {

namespace {

constexpr std::string_view kPath = "/markets";
constexpr std::string_view kDebianAuthorities = "/etc/ssl/certs";

std::string answer() {
    std::string points;
    for (int i = 0; i < 168; ++i) {
        points += fmt::format("{}{}", i ? "," : "", 64000 + i / 7.0);
    }
    std::string body;
    for (const auto* id : {"bitcoin", "ethereum"}) {
        body += fmt::format(R"({}{{"id":"{}","current_price":64012.55,"price_change_percentage_24h":1.2,)"
                            R"("high_24h":64500,"low_24h":63000,"sparkline_in_7d":{{"price":[{}]}}}})",
                            body.empty() ? "" : ",", id, points);
    }
    return "[" + body + "]";
}

void write(const std::filesystem::path& path, std::string_view text) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << text;
}

}  // namespace

Profile::Profile(support::LoopbackServer::Transport transport)
    : server_(transport), isTls_(transport == support::LoopbackServer::Transport::Tls) {
    server_.on(std::string(kPath), {.headers = {{"Content-Type", "application/json"}}, .body = answer()});
    writeProfile();
    if (isTls_) {
        writeAuthorities();
    }
}

std::string Profile::url() const {
    return server_.url(kPath);
}

void Profile::writeProfile() {
    write(folder_.path() / "DATA/glintar/remote_api_endpoints.json",
          fmt::format(
              R"({{"sources":[{{"id":"coingecko","name":"Bench","supports_batch":true,"url_template":"{}?ids={{ID}}",)"
              R"("response_type":"array","id_mapping_path":"id","price_path":"current_price",)"
              R"("change_path":"price_change_percentage_24h","high_path":"high_24h","low_path":"low_24h",)"
              R"("sparkline_path":"sparkline_in_7d.price","header":"x-key"}}]}})",
              url()));
    write(folder_.path() / "CONFIG/glintar/glintar.conf",
          "[General]\nshowChange24h=true\nshowSparkline=true\n"
          R"(savedCoins="@ByteArray([{\"id\":\"6F9619FF-8B86-4011-B42D-00C04FC964FF\",\"displayName\":\"BTC\",)"
          R"(\"apiId\":\"bitcoin\"},{\"id\":\"6F9619FF-8B86-4011-B42D-00C04FC964FE\",\"displayName\":\"ETH\",)"
          R"x(\"apiId\":\"ethereum\"}])")x"
          "\n");
}

void Profile::writeAuthorities() {
    const auto& authority = server_.authority();
    std::filesystem::create_directories(hashedFolder());
    std::ofstream all(bundle(), std::ios::binary);
    all << std::ifstream(std::string(kDebianAuthorities) + "/ca-certificates.crt", std::ios::binary).rdbuf()
        << std::ifstream(authority.file(), std::ios::binary).rdbuf();
    for (const auto& folder : {std::filesystem::path(kDebianAuthorities), authority.directory()}) {
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            std::error_code taken;
            if (entry.path().extension() == ".0") {
                std::filesystem::create_symlink(entry.path(), hashedFolder() / entry.path().filename(), taken);
            }
        }
    }
}

std::vector<std::string> Profile::command(const std::string& program, std::vector<std::string> arguments,
                                          bool keepBus) const {
    const auto place = folder_.path().string();
    // No proxy and no authorities of the user's own: the program alone is measured.
    std::vector<std::string> words{"env", "-u", "SSL_CERT_FILE", "-u", "http_proxy", "-u", "https_proxy"};
    if (!keepBus) {
        words.insert(words.end(), {"-u", "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR=" + place});
    }
    for (const auto* folder : {"CONFIG", "DATA", "CACHE"}) {
        words.push_back(fmt::format("XDG_{}_HOME={}/{}", folder, place, folder));
    }
    if (isTls_) {
        words.push_back("SSL_CERT_DIR=" + hashedFolder());
    }
    words.push_back(program);
    words.insert(words.end(), arguments.begin(), arguments.end());
    return words;
}

}  // namespace glintar::bench
