#include "benchmarks/Benches.h"
#include "benchmarks/Measure.h"
#include "benchmarks/Profile.h"

#include <fmt/format.h>

namespace glintar::bench {

void benchOnce(const std::string& programs) {
    struct Goal {
        support::LoopbackServer::Transport transport;
        const char* name;
        double besideScript, besideCurl;
    };
    for (const auto& [transport, name, besideScript, besideCurl] :
         {Goal{support::LoopbackServer::Transport::Plain, "plain HTTP", 0.5, 2.5},
          Goal{support::LoopbackServer::Transport::Tls, "TLS", 0.35, 0.6}}) {
        const Profile profile(transport);
        const bool isTls = transport == support::LoopbackServer::Transport::Tls;
        const auto url = profile.url() + "?ids=bitcoin,ethereum";
        std::vector<std::string> curl{"curl", "-sf", url};
        if (isTls) {
            curl.insert(curl.end(), {"--cacert", profile.bundle()});
        }
        const auto script = fmt::format("curl -sf {} '{}' | jq -r '.[0].current_price'",
                                        isTls ? "--cacert " + profile.bundle() : "", url);
        const auto medians = compareCommands(
            40, {profile.command(programs + "/glintar", {"line", "--once"}, false), {"sh", "-c", script}, curl});
        printRow({fmt::format("line --once, {}", name), medians[0] * 1e3, medians[1] * 1e3, besideScript, "ms",
                  "curl | jq"});
        printRow({fmt::format("line --once, {}", name), medians[0] * 1e3, medians[2] * 1e3, besideCurl, "ms", "curl"});
        // "env" and its settings come first; callgrind follows the program alone.
        const auto words = profile.command(programs + "/glintar", {}, false);
        std::string setting;
        for (std::size_t i = 0; i + 1 < words.size(); ++i) {
            setting += words[i] + " ";
        }
        printRow({fmt::format("line --once, {}", name), instructionsOf(setting, {words.back(), "line", "--once"}) / 1e6,
                  instructionsOf("", curl) / 1e6, besideCurl, "Minstr", "curl"});
    }
}

}  // namespace glintar::bench
