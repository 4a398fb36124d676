#include "platform/qt/windows/QtWorkspace.h"

#include <QDesktopServices>
#include <QUrl>

namespace glintar::platform {

namespace {

QString encoded(const std::string& text) {
    return QString::fromLatin1(QUrl::toPercentEncoding(QString::fromStdString(text)));
}

}  // namespace

void QtWorkspace::open(const std::string& address) {
    QDesktopServices::openUrl(QUrl(QString::fromStdString(address)));
}

/// RFC 6068; line breaks of a body are CR LF.
void QtWorkspace::compose(const MailDraft& draft) {
    const auto body = encoded(draft.body).replace(QStringLiteral("%0A"), QStringLiteral("%0D%0A"));
    QDesktopServices::openUrl(QUrl(QStringLiteral("mailto:%1?subject=%2&body=%3")
                                       .arg(QString::fromStdString(draft.recipient), encoded(draft.subject), body)));
}

void QtWorkspace::relaunch(std::function<void()> then) {
    isRelaunchWanted_ = true;
    then();
}

}  // namespace glintar::platform
