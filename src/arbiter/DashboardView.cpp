#include "arbiter/DashboardView.h"

#include "arbiter/DashboardColumnView.h"
#include "arbiter/DashboardPicturesView.h"
#include "arbiter/DashboardStyle.h"
#include "platform/Desktop.h"
#include "platform/DesktopEvents.h"
#include "platform/NotificationCenter.h"
#include "platform/Platform.h"
#include "platform/qt/views/ViewParts.h"
#include "platform/qt/windows/QtView.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QScrollArea>
#include <QToolButton>
#include <QVBoxLayout>

#include <vector>

namespace glintar::arbiter {

namespace {

constexpr int kFooter = 28;
constexpr int kPadding = 10;
constexpr int kDot = 6;
constexpr double kCorner = 12;
constexpr double kRimInPlaceOfShadow = 0.3;
constexpr int kCloseSymbol = 14;
constexpr int kCloseSide = 17;

/// Wants to be as large as what it scrolls, and is content with less.
class ColumnScroller final : public QScrollArea {
public:
    using QScrollArea::QScrollArea;
    QSize sizeHint() const override { return widget() ? widget()->sizeHint() : QSize(); }
    QSize minimumSizeHint() const override { return {}; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == widget() && event->type() == QEvent::LayoutRequest) {
            updateGeometry();
        }
        return QScrollArea::eventFilter(watched, event);
    }
};

class DashboardWidget final : public QWidget {
public:
    DashboardWidget(platform::Platform& platform, platform::Desktop& desktop, ArbiterDetailView& model)
        : desktop_(desktop),
          model_(model),
          pictures_(desktop.graphics),
          style_(dashboardStyle(desktop.events.appearance())) {
        auto* const all = new QVBoxLayout(this);
        all->setContentsMargins(1, 1, 1, 1);
        all->setSpacing(0);
        all->addWidget(makeScroller(), 1);
        all->addWidget(divider_ = platform::divider(this, Qt::Horizontal));
        all->addLayout(makeFooter());
        appearanceChanges_ = platform.notifications.observe(platform::kAppearanceChanged, [this] { restyle(); });
        platform::onScaleChange(*this, [this] { restyle(); });
        model_.onChange = [this] { showAll(); };
        restyle();
    }

    DashboardWidget(const DashboardWidget&) = delete;
    DashboardWidget& operator=(const DashboardWidget&) = delete;
    ~DashboardWidget() override { model_.onChange = nullptr; }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        const bool isTranslucent = platform::isInTranslucentWindow(*this);
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QPainterPath plate;
        const QRectF outline = isTranslucent ? QRectF(rect()).adjusted(1, 1, -1, -1) : QRectF(rect());
        isTranslucent ? plate.addRoundedRect(outline, kCorner, kCorner) : plate.addRect(outline);
        painter.fillPath(plate, platform::viewColor(style_.background));
        painter.setClipPath(plate);
        const int footer = divider_->geometry().bottom() + 1;
        painter.fillRect(QRect(0, footer, width(), height() - footer), platform::viewColor(style_.footer));
        painter.setClipping(false);
        painter.setPen(
            platform::viewColor(isTranslucent ? style_.line : style_.primary.withAlpha(kRimInPlaceOfShadow)));
        painter.setBrush(Qt::NoBrush);
        const QRectF rim = outline.adjusted(0.5, 0.5, -0.5, -0.5);
        isTranslucent ? painter.drawRoundedRect(rim, kCorner, kCorner) : painter.drawRect(rim);
        painter.setPen(Qt::NoPen);
        painter.setBrush(platform::viewColor(style_.statusDot));
        painter.drawEllipse(QRectF(1 + kPadding, footer + (kFooter - kDot) / 2.0, kDot, kDot));
    }

private:
    QWidget* makeScroller() {
        auto* const scroller = new ColumnScroller(this);
        scroller->setFrameShape(QFrame::NoFrame);
        scroller->setWidgetResizable(true);
        scroller->setFocusPolicy(Qt::StrongFocus);
        auto* const row = new QWidget;
        columns_ = new QHBoxLayout(row);
        columns_->setContentsMargins(0, kPadding, 0, kPadding);
        columns_->setSpacing(0);
        scroller->setWidget(row);
        scroller->viewport()->setAutoFillBackground(false);
        row->setAutoFillBackground(false);
        return scroller_ = scroller;
    }

    QLayout* makeFooter() {
        auto* const footer = new QHBoxLayout;
        footer->setContentsMargins(kPadding + kDot + kPadding / 2, 0, kPadding - 4, 0);
        status_ = platform::plainLabel(this, platform::viewFont(10, QFont::Medium));
        status_->setFixedHeight(kFooter);
        close_ = new QToolButton(this);
        close_->setAutoRaise(true);
        close_->setIconSize({kCloseSide, kCloseSide});
        close_->setToolTip(QStringLiteral("Close Window"));
        close_->setAccessibleName(QStringLiteral("Close Window"));
        close_->setStyleSheet(
            QStringLiteral("QToolButton { border: none; padding: 2px; border-radius: 6px }"
                           "QToolButton:hover, QToolButton:focus { background: rgba(127,127,127,70) }"));
        // The button must have finished with its click before it goes with the window.
        connect(close_, &QToolButton::clicked, this, [this] { model_.onClose(); }, Qt::QueuedConnection);
        footer->addWidget(status_);
        footer->addStretch();
        footer->addWidget(close_);
        return footer;
    }

    void restyle() {
        style_ = dashboardStyle(desktop_.events.appearance());
        platform::setDividerColor(*divider_, style_.line);
        platform::setInk(*status_, style_.secondary);
        scroller_->setStyleSheet(platform::thinScrollBars(style_.primary.withAlpha(0.3)));
        close_->setIcon(
            platform::viewPicture(desktop_.graphics.symbol("xmark.circle.fill", kCloseSymbol, style_.secondary),
                                  {kCloseSide, kCloseSide}, *this));
        for (QWidget* const line : dividers_) {
            platform::setDividerColor(*line, style_.line);
        }
        pictures_.restyle(style_, *this);
        update();
        showAll();
    }

    void showAll() {
        status_->setText(platform::viewText(model_.statusText));
        const auto& columns = model_.columns();
        while (shown_.size() < columns.size()) {
            addColumn();
        }
        for (std::size_t i = 0; i < columns.size(); ++i) {
            shown_[i]->show(columns[i], style_);
        }
    }

    /// The dashboard's coins are those of its opening, so columns only come.
    void addColumn() {
        if (!shown_.empty()) {
            columns_->addWidget(dividers_.emplace_back(platform::divider(scroller_->widget(), Qt::Vertical)));
            platform::setDividerColor(*dividers_.back(), style_.line);
        }
        columns_->addWidget(shown_.emplace_back(new DashboardColumnView(pictures_, scroller_->widget())));
    }

    platform::Desktop& desktop_;
    ArbiterDetailView& model_;
    DashboardPictures pictures_;
    DashboardStyle style_;
    QScrollArea* scroller_ = nullptr;
    QHBoxLayout* columns_ = nullptr;
    QWidget* divider_ = nullptr;
    QLabel* status_ = nullptr;
    QToolButton* close_ = nullptr;
    std::vector<DashboardColumnView*> shown_;
    std::vector<QWidget*> dividers_;
    std::unique_ptr<platform::NotificationCenter::Observation> appearanceChanges_;
};

}  // namespace

std::unique_ptr<platform::View> makeDashboardView(platform::Platform& platform, platform::Desktop& desktop,
                                                  ArbiterDetailView& model) {
    return std::make_unique<platform::QtView>(std::make_unique<DashboardWidget>(platform, desktop, model));
}

}  // namespace glintar::arbiter
