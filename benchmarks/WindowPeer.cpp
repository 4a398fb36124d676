// What `glintar-desktop` is held against: a program that links the same libraries and shows a text in a window.
//
//   glintar-bench-window [INTERVAL [URL MODULE]]
//
// With an INTERVAL other than 0 it has a timer of so many milliseconds that does nothing. With a URL it makes one TLS
// request and one key look-up by the MODULE, and says so on standard output.

#include "benchmarks/PeerRequests.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QTimer>
#include <QWidget>
#include <dlfcn.h>
#include <fmt/format.h>

#include <cstdio>

namespace {

bool makeRequests(const char* url, const char* module) {
    void* const loaded = ::dlopen(module, RTLD_NOW | RTLD_LOCAL);
    auto* const make =
        loaded ? reinterpret_cast<decltype(&glintar::bench::makePeerRequests)>(::dlsym(loaded, "makePeerRequests"))
               : nullptr;
    return make && make(url);
}

}  // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    QWidget window;
    window.setWindowFlags(Qt::FramelessWindowHint);
    QHBoxLayout layout(&window);
    layout.setContentsMargins(0, 0, 0, 0);
    QLabel text("Loading...");
    layout.addWidget(&text);
    window.setGeometry(0, 0, 300, 24);
    window.show();
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    if (const int interval = words.value(1).toInt(); interval > 0) {
        timer.start(interval);
    }
    if (words.size() > 3) {
        const bool isAnswered = makeRequests(qPrintable(words[2]), qPrintable(words[3]));
        fmt::print("{}\n", isAnswered ? "ready" : "failed");
        std::fflush(stdout);
    }
    return QApplication::exec();
}
