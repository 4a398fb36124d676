#include "benchmarks/Benches.h"
#include "benchmarks/Measure.h"
#include "support/Program.h"

#include <fmt/format.h>

#include <charconv>

namespace glintar::bench {

void benchSize(const std::string& programs) {
    const auto kilobytesOf = [](const std::string& command) {
        const auto text = test::outputOf({"sh", "-c", command});
        double kilobytes = -1;  // an unknown package
        std::from_chars(text.data(), text.data() + text.size(), kilobytes);
        return kilobytes;
    };
    test::outputOf({"sh", "-c", fmt::format("cd '{}' && rm -rf packages && cpack", programs)});
    for (const auto* const peer : {"polybar", "py3status"}) {
        // The newest version only: a list may have several.
        const double floor = kilobytesOf(fmt::format("apt-cache show {} | sed -n 's/^Installed-Size: //p'", peer));
        for (const auto* const package : {"glintar", "glintar-desktop"}) {
            const double ours =
                kilobytesOf(fmt::format("dpkg-deb -f '{}'/packages/{}_*.deb Installed-Size", programs, package));
            printRow({fmt::format("installed size of {}", package), ours, floor, {}, "kB", peer});
        }
    }
}

}  // namespace glintar::bench
