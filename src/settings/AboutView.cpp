#include "settings/AboutView.h"

#include "settings/PartsView.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

namespace glintar::settings {

namespace {

constexpr QSize kWordMark(280, 280);
constexpr QSize kIcon(80, 80);

void addImage(QVBoxLayout& into, const platform::Graphics& graphics, QWidget* parent) {
    const auto wordMark = graphics.image("Glintar");
    const auto image = wordMark ? wordMark : graphics.image("AppIcon");
    if (image) {
        into.addWidget(new SymbolView(graphics, image, wordMark ? kWordMark : kIcon, parent), 0, Qt::AlignHCenter);
    }
}

void addCentered(QVBoxLayout& into, const QString& words, Tone tone, const QFont& font, QWidget* parent) {
    auto* const label = new ToneLabel(words, tone, font, parent);
    label->setAlignment(Qt::AlignCenter);
    into.addWidget(label);
}

/// What it leads to, and the link to it; nothing without an address.
void addLink(QVBoxLayout& into, const QString& title, const std::string& address, const QFont& titleFont,
             const QFont& font, AboutModel& model, QWidget* parent) {
    if (address.empty()) {
        return;
    }
    auto* const row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(new ToneLabel(title, Tone::Primary, titleFont, parent));
    auto* const link = new LinkButton(asText(address), Tone::Link, font, parent);
    QObject::connect(link, &QAbstractButton::clicked, parent, [&model, address] { model.open(address); });
    row->addWidget(link);
    row->addStretch();
    into.addLayout(row);
}

}  // namespace

AboutView::AboutView(AboutModel& model, const platform::Graphics& graphics, QWidget* parent) : QWidget(parent) {
    auto* const all = new QVBoxLayout(this);
    all->addStretch();
    addImage(*all, graphics, this);
    addCentered(*all, "A lightweight crypto price monitoring tool.", Tone::Primary, fontSized(12, QFont::Bold), this);
    addCentered(*all, asText(model.versionText()), Tone::Secondary, fontSized(kCaption), this);
    addCentered(*all, "No investment advice. For study purposes only.", Tone::Secondary, fontSized(kCaption), this);
    auto* const inset = new QHBoxLayout;
    inset->setContentsMargins(20, 0, 20, 0);
    inset->addWidget(divider(this));
    all->addLayout(inset);
    addLink(*all, "Official Website:", model.contacts().website, fontSized(13), fontSized(13), model, this);
    auto* const row = new QHBoxLayout;
    row->setContentsMargins(0, 2, 0, 0);
    row->addStretch();
    row->addWidget(new SymbolView(graphics, "arrow.clockwise.circle", 10, Tone::Primary, this));
    auto* const reset = new LinkButton("Clean Cache & Restart", Tone::Primary, fontSized(10), this);
    reset->setToolTip("Click this if data is not updating correctly.");
    QObject::connect(reset, &QAbstractButton::clicked, this, [&model] { model.cleanCacheAndRestart(); });
    row->addWidget(reset);
    row->addStretch();
    all->addLayout(row);
    all->addStretch();
}

ContactSettingsView::ContactSettingsView(AboutModel& model, const platform::Graphics& graphics, QWidget* parent)
    : QWidget(parent) {
    auto* const all = new QVBoxLayout(this);
    all->addStretch();
    addImage(*all, graphics, this);
    addCentered(*all, "Have questions or feedback?", Tone::Primary, fontSized(13, QFont::Bold), this);
    if (!model.contacts().support.empty()) {
        auto* const row = new QHBoxLayout;
        row->addStretch();
        row->addWidget(new SymbolView(graphics, "envelope.fill", 13, Tone::Primary, this));
        auto* const mail = new QPushButton("Send Email", this);
        QObject::connect(mail, &QAbstractButton::clicked, this, [&model] { model.sendEmail(); });
        row->addWidget(mail);
        row->addStretch();
        all->addLayout(row);
    }
    const QFont title = fontSized(14, QFont::Medium);
    addLink(*all, "Offical Web:", model.contacts().website, title, fontSized(12), model, this);
    addLink(*all, "FAQ:", model.contacts().faqPage, title, fontSized(12), model, this);
    all->addStretch();
}

}  // namespace glintar::settings
