// glintar-bench PROGRAMS RESOURCES MINUTES [NAME]: prints the table; with a NAME ("documents", "keystrokes",
// "once", "round", "pills", "desktop", "panel", "windows", "size", "running", "shared") that part of it alone. `glintar
// line` runs for MINUTES, the desktop for one; for none where it is 0.

#include "benchmarks/Benches.h"
#include "benchmarks/Measure.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <string_view>

int main(int argc, char** argv) {
    using namespace glintar;
    if (argc < 4) {
        fmt::print(stderr, "usage: glintar-bench PROGRAMS RESOURCES MINUTES [NAME]\n");
        return 2;
    }
    const std::string_view minutesText = argv[3];
    int minutes = 0;
    std::from_chars(minutesText.data(), minutesText.data() + minutesText.size(), minutes);
    const std::string_view only = argc > 4 ? argv[4] : "";
    const auto wanted = [&](std::string_view name) { return only.empty() || only == name; };
    bench::printHeader();
    if (wanted("documents")) {
        bench::benchDocuments(argv[2]);
    }
    if (wanted("keystrokes")) {
        bench::benchKeystrokes(argv[2]);
    }
    if (wanted("once")) {
        bench::benchOnce(argv[1]);
    }
    if (wanted("round")) {
        bench::benchRound(argv[1]);
    }
    if (wanted("pills")) {
        bench::benchPills();
    }
    const int desktopMinutes = std::min(minutes, 1);
    if (wanted("desktop")) {
        bench::benchDesktop(argv[1], desktopMinutes);
    }
    if (wanted("panel")) {
        bench::benchPanel(argv[1], desktopMinutes);
    }
    if (wanted("windows")) {
        bench::benchWindows(argv[1]);
    }
    if (wanted("size")) {
        bench::benchSize(argv[1]);
    }
    if (minutes > 0 && wanted("running")) {
        bench::benchRunning(argv[1], minutes);
    }
    if (minutes > 0 && wanted("shared")) {
        bench::benchShared(argv[1]);
    }
    return 0;
}
