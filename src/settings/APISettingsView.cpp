#include "settings/APISettingsView.h"

#include <QApplication>
#include <QButtonGroup>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QPainter>

namespace glintar::settings {

namespace {

constexpr int kOfficialHeight = 90;
constexpr QSize kSourceImage(20, 20);

/// A source as a row: its name, and a mark at the end of the one that is chosen.
class SourceRow final : public QRadioButton {
public:
    SourceRow(const QString& name, const platform::Graphics& graphics, QWidget* parent)
        : QRadioButton(parent), graphics_(graphics) {
        setText(QString(name).replace('&', "&&"));
        setAccessibleName(name);
    }

    [[nodiscard]] QSize sizeHint() const override {
        return QFontMetrics(boldFont()).size(Qt::TextSingleLine, accessibleName()) + QSize(60, 8);
    }
    [[nodiscard]] bool hitButton(const QPoint& at) const override { return rect().contains(at); }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setFont(isChecked() ? boldFont() : font());
        painter.setPen(toneColor(palette(), isChecked() ? Tone::Primary : Tone::Secondary));
        const QRect inside = rect().adjusted(8, 0, -8, 0);
        painter.drawText(inside, Qt::AlignVCenter | Qt::AlignLeft, accessibleName());
        if (isChecked()) {
            const int side = inside.height();
            paintSymbol(painter, graphics_, "checkmark.circle.fill", fontInfo().pixelSize(),
                        toneColor(palette(), Tone::Link), {inside.right() - side, inside.top(), side, side});
        }
        if (hasFocus()) {
            painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
            painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 4, 4);
        }
    }

private:
    [[nodiscard]] QFont boldFont() const {
        QFont bold = font();
        bold.setBold(true);
        return bold;
    }
    const platform::Graphics& graphics_;
};

}  // namespace

APISettingsView::APISettingsView(settingsViewModel& all, const platform::Graphics& graphics, QWidget* parent)
    : QWidget(parent), model_(all.sources()), about_(all.about), graphics_(graphics) {
    setMinimumSize(400, 370);
    auto* const layout = new QVBoxLayout(this);
    if (!model_.config) {
        layout->addWidget(new ToneLabel("Loading configuration...", Tone::Primary, QApplication::font(), this));
        layout->addStretch();
        return;
    }
    auto* const header = new QHBoxLayout;
    header->addWidget(new SymbolView(graphics_, "server.rack", 13, Tone::Primary, this));
    header->addWidget(new ToneLabel("Data Source", Tone::Primary, fontSized(13, QFont::DemiBold), this), 1);
    layout->addLayout(header);
    layout->addWidget(makeSources(), 1);
    layout->addWidget(sourceNote_ = new NoteLabel(Tone::Error, this));
    layout->addWidget(divider(this));
    section_ = layout;
    model_.onChange = [this] { showModel(); };
    showModel();
}

QWidget* APISettingsView::makeSources() {
    auto* const scroller = rowList("Data Source", this);
    auto* const list = scroller->widget();
    auto* const rows = static_cast<QVBoxLayout*>(list->layout());
    auto* const group = new QButtonGroup(list);
    for (const auto& source : model_.config->sources) {
        auto* const row = new SourceRow(asText(source.name), graphics_, list);
        group->addButton(row);
        rows->insertWidget(rows->count() - 1, row);
        rows_.push_back(row);
        // A screen reader toggles without a click; a click on the chosen one stores it again and toggles nothing.
        const auto chooseIf = [this, &source, scroller, row](bool isMeant) {
            if (isMeant) {
                model_.selectSource(source);
                scroller->ensureWidgetVisible(row);
            }
        };
        QObject::connect(row, &QAbstractButton::toggled, this, chooseIf);
        QObject::connect(row, &QAbstractButton::pressed, this, [this, row] { isChosenPressed_ = row->isChecked(); });
        QObject::connect(row, &QAbstractButton::clicked, this, [this, chooseIf] { chooseIf(isChosenPressed_); });
    }
    return scroller;
}

void APISettingsView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    model_.validateSelectedSource();
}

void APISettingsView::showModel() {
    const auto* const selected = model_.selectedSource();
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        const QSignalBlocker quiet(rows_[i]);
        rows_[i]->setChecked(&model_.config->sources[i] == selected);
    }
    if (sectionView_ == nullptr || sectionSource_ != model_.selectedSourceID) {
        rebuildSection();
    }
    sourceNote_->setText(asText(model_.sourceNote()));
    if (key_ != nullptr) {
        if (key_->text().toStdString() != model_.inputApiKey) {
            const QSignalBlocker quiet(key_);
            key_->setText(asText(model_.inputApiKey));
        }
        key_->setAccessibleDescription(asText(model_.keyNote()));
        note_->setText(asText(model_.keyNote()));
    }
}

void APISettingsView::rebuildSection() {
    delete sectionView_;
    key_ = nullptr;
    note_ = nullptr;
    sectionSource_ = model_.selectedSourceID;
    sectionView_ = new QWidget(this);
    auto* const into = new QVBoxLayout(sectionView_);
    into->setContentsMargins(0, 0, 0, 0);
    section_->addWidget(sectionView_);
    const auto* const source = model_.selectedSource();
    if (source == nullptr) {
        return;
    }
    if (source->api_key_available.value_or(false)) {
        addKeySection(*source, *into);
    } else {
        into->addWidget(new ToneLabel("Configuration", Tone::Primary, fontSized(13, QFont::DemiBold), sectionView_));
        auto* const words = new ToneLabel(
            QStringLiteral("ℹ️ <b>%1</b> does not require an API Key.").arg(asText(source->name).toHtmlEscaped()),
            Tone::Secondary, fontSized(kCaption), sectionView_);
        words->setTextFormat(Qt::RichText);
        into->addWidget(words);
    }
}

void APISettingsView::addKeySection(const config::SourceConfig& source, QVBoxLayout& into) {
    const auto name = asText(source.name);
    auto* const header = new QHBoxLayout;
    header->setSpacing(0);
    header->addWidget(new SymbolView(graphics_, "key.fill", 13, Tone::Key, sectionView_));
    header->addSpacing(4);
    header->addWidget(new ToneLabel(name, Tone::Key, fontSized(14, QFont::Bold), sectionView_));
    header->addWidget(new ToneLabel(" API Key (Optional)", Tone::Primary, QApplication::font(), sectionView_), 1);
    into.addLayout(header);
    key_ = new QLineEdit(sectionView_);
    key_->setEchoMode(QLineEdit::Password);
    key_->setInputMethodHints(Qt::ImhHiddenText | Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase);
    key_->setAccessibleName(name + " API Key (Optional)");
    QObject::connect(key_, &QLineEdit::textChanged, this,
                     [this](const QString& typed) { model_.setApiKey(typed.toStdString()); });
    into.addWidget(key_);
    into.addWidget(note_ = new NoteLabel(Tone::Error, sectionView_));
    into.addWidget(new ToneLabel("An API key for a higher data refresh rate.", Tone::Secondary, fontSized(kCaption),
                                 sectionView_));
    if (const auto address = APISettingsViewModel::linkTo(source.API_intro)) {
        addLink(*address, "Read " + name + " API Docs",
                new SymbolView(graphics_, "text.page", kCaption, Tone::Link, sectionView_), fontSized(kCaption), into);
    }
    auto* const block = new QWidget(sectionView_);
    block->setMinimumHeight(kOfficialHeight);
    auto* const official = new QVBoxLayout(block);
    if (const auto address = APISettingsViewModel::linkTo(source.offical_URL)) {
        const auto image = graphics_.image(source.id);
        auto* const symbol = image ? new SymbolView(graphics_, image, kSourceImage, block)
                                   : new SymbolView(graphics_, "globe", 16, Tone::Secondary, block);
        addLink(*address, "Powered by " + name, symbol, fontSized(14, QFont::Bold), *official);
    }
    official->addStretch();
    into.addWidget(block);
}

void APISettingsView::addLink(const std::string& address, const QString& words, QWidget* symbol, const QFont& font,
                              QVBoxLayout& into) {
    auto* const row = new QHBoxLayout;
    row->addWidget(symbol);
    auto* const link = new LinkButton(words, Tone::Link, font, sectionView_);
    QObject::connect(link, &QAbstractButton::clicked, this, [this, address] { about_.open(address); });
    row->addWidget(link);
    row->addStretch();
    into.addLayout(row);
}

}  // namespace glintar::settings
