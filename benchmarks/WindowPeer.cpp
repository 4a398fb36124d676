// What `glintar-desktop` is held against: a program that links the same libraries and shows a text in a window.
//
//   glintar-bench-window [INTERVAL [URL MODULE]]
//   glintar-bench-window open TITLE X Y WIDTH HEIGHT
//
// With "open" it stands in the bottom left corner; a click opens a window called "Bare" at that place, with as many
// widgets of the same kinds as Glintar's window of that title, and the Escape key closes it.
//
// With an INTERVAL other than 0 it has a timer of so many milliseconds that does nothing. With a URL it makes one TLS
// request and one key look-up by the MODULE, and says so on standard output.

#include "benchmarks/PeerRequests.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScrollArea>
#include <QShortcut>
#include <QTabWidget>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>
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

template <class... Widgets>
QWidget* column(Widgets*... widgets) {
    auto* const page = new QWidget;
    auto* const layout = new QVBoxLayout(page);
    (layout->addWidget(widgets), ...);
    return page;
}

QLabel* label() {
    return new QLabel("64012.55 or some words");
}

QWidget* dashboardLike() {
    auto* const row = new QWidget;
    auto* const columns = new QHBoxLayout(row);
    for (int coin = 0; coin < 5; ++coin) {
        columns->addWidget(column(label(), label()));
    }
    auto* const scroller = new QScrollArea;
    scroller->setWidgetResizable(true);
    scroller->setWidget(row);
    return column(scroller, label(), new QToolButton);
}

QWidget* settingsLike() {
    const auto coin = [] { return column(label(), new QToolButton); };
    auto* const rows = new QScrollArea;
    rows->setWidget(column(coin(), coin(), coin(), coin(), coin()));
    auto* const suggestions = new QListWidget;
    suggestions->hide();
    auto* const tabs = new QTabWidget;
    tabs->addTab(column(rows, label(), new QLineEdit, suggestions, new QLineEdit, label(), new QToolButton), "Coins");
    for (const char* const title : {"Data Source", "Display", "Contact", "About"}) {
        tabs->addTab(column(), title);  // made when it is shown
    }
    return column(tabs, new QPushButton("Close"));
}

/// In the corner, until it is clicked.
class Opener final : public QLabel {
public:
    Opener() : QLabel("bench") {
        setWindowFlags(Qt::FramelessWindowHint);
        setWindowTitle("Glintar bench");
        setGeometry(0, 780, 60, 20);
    }

protected:
    void mouseReleaseEvent(QMouseEvent* /*event*/) override {
        const QStringList words = QCoreApplication::arguments();
        auto* const window = words[2] == "Settings" ? settingsLike() : dashboardLike();
        window->setAttribute(Qt::WA_DeleteOnClose);
        window->setWindowTitle("Bare");
        window->setGeometry(words[3].toInt(), words[4].toInt(), words[5].toInt(), words[6].toInt());
        new QShortcut(Qt::Key_Escape, window, window, &QWidget::close);
        window->show();
        window->activateWindow();
    }
};

}  // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    if (words.value(1) == "open") {
        QApplication::setQuitOnLastWindowClosed(false);
        Opener opener;
        opener.show();
        return QApplication::exec();
    }
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
