#include "benchmarks/Profile.h"

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <span>
#include <thread>

namespace glintar::bench {

namespace {

constexpr std::string_view kPath = "/markets";
constexpr std::string_view kIconPath = "/icon.png";
constexpr std::string_view kDebianAuthorities = "/etc/ssl/certs";

struct BenchCoin {
    std::string_view name, apiId, change;
    double price;
};
constexpr std::array<BenchCoin, 5> kCoins{{{"BTC", "bitcoin", "1.2", 64012.55},
                                           {"ETH", "ethereum", "1.2", 64012.55},
                                           {"SOL", "solana", "-3.41", 151.2},
                                           {"XRP", "ripple", "0.07", 0.5123},
                                           {"DOGE", "dogecoin", "-0.4", 0.1234}}};

std::string answer(std::size_t coins, const std::string& icon) {
    std::string body;
    for (const auto& coin : std::span(kCoins).first(coins)) {
        std::string points;
        for (int i = 0; i < 168; ++i) {
            points += fmt::format("{}{}", i ? "," : "", 64000 + i / 7.0);
        }
        body += fmt::format(R"({}{{"id":"{}",{}"current_price":{},"price_change_percentage_24h":{},)"
                            R"("high_24h":64500,"low_24h":63000,"sparkline_in_7d":{{"price":[{}]}}}})",
                            body.empty() ? "" : ",", coin.apiId,
                            icon.empty() ? "" : fmt::format(R"("image":"{}",)", icon), coin.price, coin.change, points);
    }
    return "[" + body + "]";
}

/// As large as services hand them out.
std::string iconFile() {
    QImage icon(250, 250, QImage::Format_ARGB32_Premultiplied);
    icon.fill(Qt::transparent);
    {
        QPainter painter(&icon);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setBrush(Qt::darkYellow);
        painter.drawEllipse(icon.rect());
    }
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    icon.save(&buffer, "PNG");
    return bytes.toStdString();
}

void write(const std::filesystem::path& path, std::string_view text) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << text;
}

}  // namespace

Profile::Profile(support::LoopbackServer::Transport transport, Choices choices)
    : choices_(choices), server_(transport), isTls_(transport == support::LoopbackServer::Transport::Tls) {
    std::string icon;
    if (choices.hasIcons) {
        icon = server_.url(kIconPath);
        server_.on(std::string(kIconPath), {.headers = {{"Content-Type", "image/png"}}, .body = iconFile()});
    }
    server_.on(std::string(kPath),
               {.headers = {{"Content-Type", "application/json"}}, .body = answer(choices.coins, icon)});
    writeSources();
    writePreferences(0);
    if (!choices.isShared) {
        write(folder_.path() / "glintar", "in place of the folder that copies share");
    }
    if (isTls_) {
        writeAuthorities();
    }
}

std::string Profile::url() const {
    return server_.url(kPath);
}

void Profile::setReferencePrice(double price) {
    writePreferences(price);
}

std::size_t Profile::refreshes() const {
    const auto isRefresh = [](const support::LoopbackRequest& request) { return request.target.contains("?ids="); };
    return static_cast<std::size_t>(std::ranges::count_if(server_.requests(), isRefresh));
}

void Profile::waitForRefreshes(std::size_t count) const {
    for (int i = 0; refreshes() < count; ++i) {
        if (i > 1000) {
            fmt::print(stderr, "bench: the program does not refresh\n");
            std::exit(1);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

void Profile::writeSources() {
    write(folder_.path() / "DATA/glintar/remote_api_endpoints.json",
          fmt::format(
              R"({{"sources":[{{"id":"coingecko","name":"Bench","supports_batch":true,"url_template":"{}?ids={{ID}}",)"
              R"("response_type":"array","id_mapping_path":"id","price_path":"current_price","image_path":"image",)"
              R"("change_path":"price_change_percentage_24h","high_path":"high_24h","low_path":"low_24h",)"
              R"("sparkline_path":"sparkline_in_7d.price","header":"x-key"}}]}})",
              url()));
}

void Profile::writePreferences(double referencePrice) {
    std::string coins;
    for (std::size_t i = 0; i < choices_.coins; ++i) {
        coins += fmt::format(R"({}{{\"id\":\"6F9619FF-8B86-4011-B42D-00C04FC964F{}\",\"displayName\":\"{}\",)"
                             R"(\"apiId\":\"{}\",\"referencePrice\":{}}})",
                             i ? "," : "", i, kCoins.at(i).name, kCoins.at(i).apiId, referencePrice);
    }
    write(folder_.path() / "CONFIG/glintar/glintar.conf",
          fmt::format("[General]\nshowChange24h=true\nshowSparkline=true\ndisplayMode={}\n"
                      "savedCoins=\"@ByteArray([{}])\"\n",
                      choices_.displayMode, coins));
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

std::vector<std::string> Profile::command(const std::string& program, std::vector<std::string> arguments, bool keepBus,
                                          const std::string& desktop) const {
    const auto place = folder_.path().string();
    // No proxy and no authorities of the user's own: the program alone is measured.
    std::vector<std::string> words{"env", "-u", "SSL_CERT_FILE", "-u", "http_proxy", "-u", "https_proxy"};
    if (!keepBus) {
        words.insert(words.end(), {"-u", "DBUS_SESSION_BUS_ADDRESS"});
    }
    words.push_back("XDG_RUNTIME_DIR=" + place);
    for (const auto* folder : {"CONFIG", "DATA", "CACHE"}) {
        words.push_back(fmt::format("XDG_{}_HOME={}/{}", folder, place, folder));
    }
    if (isTls_) {
        words.push_back("SSL_CERT_DIR=" + hashedFolder());
    }
    if (!desktop.empty()) {
        words.push_back("XDG_CURRENT_DESKTOP=" + desktop);
    }
    words.push_back(program);
    words.insert(words.end(), arguments.begin(), arguments.end());
    return words;
}

}  // namespace glintar::bench
