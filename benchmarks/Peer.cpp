// What the memory of `glintar line` is held against: a program that links the same libraries, makes one TLS request and
// one key look-up, says so on standard output, and waits.

#include "benchmarks/PeerRequests.h"

#include <QCoreApplication>
#include <QSettings>
#include <fmt/format.h>
#include <unicode/ucasemap.h>

#include <cstdio>

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const bool isAnswered = glintar::bench::makePeerRequests(argc > 1 ? argv[1] : "");
    UErrorCode status = U_ZERO_ERROR;
    ucasemap_close(ucasemap_open("", 0, &status));
    const QSettings settings("/nonexistent/glintar.conf", QSettings::NativeFormat);
    fmt::print("{}\n", isAnswered && settings.allKeys().isEmpty() ? "ready" : "failed");
    std::fflush(stdout);
    return QCoreApplication::exec();
}
