#include "settings/coinsSettingsView.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QTimer>

#include <algorithm>
#include <functional>

namespace glintar::settings {

namespace {

constexpr int kSuggestionsHeight = 100;

/// One coin: it can take the focus, and is called as it reads.
class RowView final : public QFrame {
public:
    RowView(const config::Coin& coin, const platform::Graphics& graphics, QWidget* parent) : QFrame(parent) {
        const auto words = asText(coinsSettingsViewModel::rowText(coin));
        const auto badge = coinsSettingsViewModel::badgeText(coin);
        setFocusPolicy(Qt::StrongFocus);
        setAccessibleName(words);
        auto* const layout = new QHBoxLayout(this);
        layout->setContentsMargins(8, 2, 4, 2);
        auto* const texts = new QVBoxLayout;
        texts->setSpacing(2);
        texts->addWidget(new WrappedText(words, this));
        if (badge) {
            texts->addWidget(new ToneLabel(asText(*badge), Tone::Badge, fontSized(10, QFont::Medium), this), 0,
                             Qt::AlignLeft);
        }
        layout->addLayout(texts, 1);
        auto* const button =
            new RoundButton(graphics, "xmark.circle.fill", Tone::Error, "Remove " + asText(coin.displayName), this);
        layout->addWidget(button);
        QObject::connect(button, &QAbstractButton::clicked, this, [this] { remove(); });
    }

    std::function<void()> onRemove;
    std::function<void(int step)> onStep;

protected:
    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace) {
            remove();
        } else if (event->key() == Qt::Key_Down || event->key() == Qt::Key_Up) {
            onStep(event->key() == Qt::Key_Down ? 1 : -1);
        } else {
            QFrame::keyPressEvent(event);
        }
    }

    void mousePressEvent(QMouseEvent* event) override { event->accept(); }  // it drags no window

    void contextMenuEvent(QContextMenuEvent* event) override {
        auto* const menu = new QMenu(this);
        menu->setAttribute(Qt::WA_DeleteOnClose);
        QObject::connect(menu->addAction("Delete"), &QAction::triggered, this, [this] { remove(); });
        menu->popup(event->globalPos());
    }

    void paintEvent(QPaintEvent* event) override {
        QFrame::paintEvent(event);
        if (hasFocus()) {
            QPainter painter(this);
            painter.setRenderHint(QPainter::Antialiasing);
            painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
            painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 4, 4);
        }
    }

private:
    /// Not before the event that asks for it is over: the row goes with it.
    void remove() {
        QTimer::singleShot(0, this, [this] { onRemove(); });
    }
};

}  // namespace

coinsSettingsView::coinsSettingsView(coinsSettingsViewModel& model, const platform::Graphics& graphics, QWidget* parent)
    : QWidget(parent),
      model_(model),
      graphics_(graphics),
      limit_(new NoteLabel(Tone::Error, this)),
      error_(new NoteLabel(Tone::Error, this)) {
    setMinimumSize(400, 370);
    auto* const all = new QVBoxLayout(this);
    all->addWidget(limit_);
    all->addWidget(makeList(), 1);
    all->addWidget(addRow_ = makeAddRow());
    all->addWidget(error_);
    model_.onChange = [this] { showModel(); };
}

QWidget* coinsSettingsView::makeList() {
    auto* const scroller = rowList("Coins", this);
    scroller->setSizeAdjustPolicy(QAbstractScrollArea::AdjustToContents);  // as wide as its rows
    scroller->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    rows_ = static_cast<QVBoxLayout*>(scroller->widget()->layout());
    return scroller;
}

QWidget* coinsSettingsView::makeAddRow() {
    auto* const row = new QWidget(this);
    auto* const line = new QHBoxLayout(row);
    auto* const fields = new QVBoxLayout;
    fields->setSpacing(10);
    name_ = new QLineEdit(row);
    suggestions_ = new QListWidget(row);
    price_ = new QLineEdit(row);
    for (auto* const field : {name_, price_}) {
        field->setPlaceholderText(field == name_ ? "Crypto coin name (eg. BTC)" : "Ref Price (Optional, eg. 98000)");
        field->setAccessibleName(field->placeholderText());
        field->setMinimumWidth(field->fontMetrics().horizontalAdvance(field->placeholderText()) + 20);
        field->installEventFilter(this);
    }
    suggestions_->setAccessibleName("Suggestions");
    suggestions_->setMinimumHeight(kSuggestionsHeight);
    suggestions_->setMaximumHeight(std::max(kSuggestionsHeight, suggestions_->fontMetrics().height() * 6));
    suggestions_->hide();
    auto* const named = new QVBoxLayout;
    named->setSpacing(0);
    named->addWidget(name_);
    named->addWidget(suggestions_);
    fields->addLayout(named);
    fields->addWidget(price_);
    line->addLayout(fields, 1);
    auto* const add = new RoundButton(graphics_, "plus.circle.fill", Tone::Go, "Add", row);
    line->addWidget(add);
    QObject::connect(name_, &QLineEdit::textChanged, this,
                     [this](const QString& typed) { model_.setName(typed.toStdString()); });
    QObject::connect(price_, &QLineEdit::textChanged, this,
                     [this](const QString& typed) { model_.setRefPrice(typed.toStdString()); });
    QObject::connect(add, &QAbstractButton::clicked, this, [this] { model_.addCoin(); });
    const auto takeIt = [this](const QListWidgetItem* item) { take(item); };
    QObject::connect(suggestions_, &QListWidget::itemClicked, this, takeIt);
    QObject::connect(suggestions_, &QListWidget::itemActivated, this, takeIt);
    QObject::connect(
        suggestions_, &QListWidget::itemSelectionChanged, this, [this] { takePicked(); }, Qt::QueuedConnection);
    suggestions_->installEventFilter(this);
    return row;
}

void coinsSettingsView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    model_.loadCoins();
}

bool coinsSettingsView::eventFilter(QObject* watched, QEvent* event) {
    if (watched == name_ && event->type() == QEvent::FocusIn) {
        model_.filterCoins();
    }
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        const bool isReturn = key == Qt::Key_Return || key == Qt::Key_Enter;
        if (watched == suggestions_) {
            auto* const item = suggestions_->currentItem();
            const bool takes = item != nullptr && (isReturn || key == Qt::Key_Space);
            if (takes) {
                take(item);
            }
            return takes;
        }
        return (watched == name_ && keyInName(key)) || isReturn;
    }
    return QWidget::eventFilter(watched, event);
}

/// The arrows choose a suggestion while the focus stays in the field, and Return takes it.
bool coinsSettingsView::keyInName(int key) {
    if (suggestions_->isHidden()) {
        return false;
    }
    const int row = suggestions_->currentRow();
    if (key == Qt::Key_Down || key == Qt::Key_Up) {
        suggestions_->setCurrentRow(std::clamp(row + (key == Qt::Key_Down ? 1 : -1), 0, suggestions_->count() - 1));
        return true;
    }
    const bool takes = (key == Qt::Key_Return || key == Qt::Key_Enter) && row >= 0;
    if (takes) {
        take(suggestions_->currentItem());
    }
    return takes;
}

/// Keys and mouse select what they make current. A screen reader's action selects alone, or takes the current one back.
void coinsSettingsView::takePicked() {
    const auto* const current = suggestions_->currentItem();
    const auto selected = suggestions_->selectedItems();
    const auto* const picked = selected.isEmpty() ? current : selected.front();
    if (picked != nullptr && (selected.isEmpty() || picked != current)) {
        take(picked);
    }
}

/// Not before the event that asks for it is over: the suggestion goes with it.
void coinsSettingsView::take(const QListWidgetItem* suggestion) {
    QTimer::singleShot(0, this, [this, text = suggestion->text().toStdString()] {
        name_->setFocus();
        model_.selectSuggestion(text);
    });
}

void coinsSettingsView::showModel() {
    limit_->setText(model_.canAddCoin ? QString() : asText(model_.limitText()));
    showRows();
    addRow_->setVisible(model_.canAddCoin);
    for (auto [field, value] : {std::pair(name_, &model_.newCoinDisplayName), {price_, &model_.newCoinRefPrice}}) {
        if (field->text().toStdString() != *value) {
            const QSignalBlocker quiet(field);
            const auto behindCursor = field->text().size() - field->cursorPosition();
            field->setText(asText(*value));
            field->setCursorPosition(static_cast<int>(field->text().size() - behindCursor));
        }
        field->setAccessibleDescription(asText(model_.errorMessage.value_or("")));
    }
    showSuggestions();
    error_->setText(asText(model_.errorMessage.value_or("")));
}

void coinsSettingsView::showSuggestions() {
    QStringList wanted;
    for (const auto& suggestion : model_.filteredCoins) {
        wanted << asText(suggestion);
    }
    QStringList now;
    for (int i = 0; i < suggestions_->count(); ++i) {
        now << suggestions_->item(i)->text();
    }
    if (wanted != now) {
        suggestions_->clear();
        suggestions_->addItems(wanted);
    }
    suggestions_->setVisible(!wanted.isEmpty());
}

void coinsSettingsView::showRows() {
    std::vector<std::string> wanted;
    wanted.reserve(model_.coins.size());
    for (const auto& coin : model_.coins) {
        wanted.push_back(coin.id + coinsSettingsViewModel::rowText(coin) +
                         coinsSettingsViewModel::badgeText(coin).value_or(""));
    }
    if (wanted == shown_) {
        return;
    }
    const bool hadFocus = std::ranges::any_of(rowViews_, [](const QWidget* row) {
        return row->isAncestorOf(QApplication::focusWidget()) || row->hasFocus();
    });
    const auto gone = static_cast<std::size_t>(std::ranges::mismatch(wanted, shown_).in2 - shown_.begin());
    shown_ = std::move(wanted);
    for (auto* const row : rowViews_) {
        delete row;
    }
    rowViews_.clear();
    for (std::size_t i = 0; i < model_.coins.size(); ++i) {
        auto* const row = new RowView(model_.coins[i], graphics_, rows_->parentWidget());
        row->onRemove = [this, i] { remove(i); };
        row->onStep = [this, i](int step) { moveFocus(static_cast<int>(i), step); };
        rows_->insertWidget(static_cast<int>(i), row);
        rowViews_.push_back(row);
    }
    if (hadFocus && !rowViews_.empty()) {
        rowViews_[std::min(gone, rowViews_.size() - 1)]->setFocus();
    }
}

void coinsSettingsView::moveFocus(int from, int step) {
    const auto last = static_cast<int>(rowViews_.size()) - 1;
    focusOn(*rowViews_[static_cast<std::size_t>(std::clamp(from + step, 0, last))], Qt::TabFocusReason);
}

void coinsSettingsView::remove(std::size_t row) {
    model_.removeCoins({row});
}

}  // namespace glintar::settings
