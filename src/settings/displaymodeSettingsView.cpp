#include "settings/displaymodeSettingsView.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QRadioButton>

#include <algorithm>

namespace glintar::settings {

namespace {

constexpr int kNearest = 10;
constexpr int kFarthest = 100;
constexpr int kStep = 5;

/// A framed group; what is added to its layout becomes its child, and is read out in that order.
QVBoxLayout& addGroup(QVBoxLayout& into) {
    auto* const frame = new QFrame;
    frame->setFrameShape(QFrame::StyledPanel);
    into.addWidget(frame);
    return *new QVBoxLayout(frame);
}

/// The row of a choice, called as it is.
QHBoxLayout* addNamedRow(QVBoxLayout& into, const QString& name) {
    auto* const view = new QWidget;
    view->setAccessibleName(name);
    into.addWidget(view);
    auto* const row = new QHBoxLayout(view);
    row->setContentsMargins(0, 0, 0, 0);
    return row;
}

ToneLabel* plainLabel(const QString& words) {
    return new ToneLabel(words, Tone::Primary, QApplication::font());
}

/// Without telling whoever listens to the user.
void setQuietly(QCheckBox& toggle, bool on) {
    const QSignalBlocker quiet(toggle);
    toggle.setChecked(on);
}

void setQuietly(QButtonGroup& picker, int option) {
    const QSignalBlocker quiet(picker);
    picker.button(option)->setChecked(true);
}

}  // namespace

displaymodeSettingsView::displaymodeSettingsView(displaymodeSettingsViewModel& model, QWidget* parent)
    : QWidget(parent), model_(model) {
    setMinimumSize(400, 370);
    auto* const all = new QVBoxLayout(this);
    all->addWidget(saveError_ = new NoteLabel(Tone::Error));
    addPlace(addGroup(*all));
    addPanel(*all);
    all->addWidget(divider(this));
    addDetails(addGroup(*all));
    addExtras(addGroup(*all));
    all->addStretch();
    model_.onChange = [this] { showModel(); };
    showModel();
}

void displaymodeSettingsView::addPlace(QVBoxLayout& into) {
    login_ = new QCheckBox("Launch at Login");
    QObject::connect(login_, &QAbstractButton::toggled, this, [this](bool on) { model_.setLaunchAtLogin(on); });
    into.addWidget(login_);
    into.addWidget(loginError_ = new NoteLabel(Tone::Error));
    into.addSpacing(5);
    into.addWidget(divider(this));
    into.addSpacing(5);
    const QString title = "Show Prices In:";
    into.addWidget(plainLabel(title));
    mode_ = addPicker(*addNamedRow(into, title), {"Status Bar", "Mouse Follow"},
                      &displaymodeSettingsViewModel::displayMode);
    into.addWidget(modeText_ = new ToneLabel({}, Tone::Secondary, fontSized(kCaption)));
    into.addWidget(panelNote_ = new NoteLabel(Tone::Secondary));
}

void displaymodeSettingsView::addPanel(QVBoxLayout& into) {
    panel_ = new QWidget;
    into.addWidget(panel_);
    auto* const rows = new QVBoxLayout(panel_);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->addWidget(divider(panel_));
    auto& group = addGroup(*rows);
    addToggle(group, "Transparent Background", &displaymodeSettingsViewModel::floatTransparent);
    addDistance(group);
}

void displaymodeSettingsView::addDistance(QVBoxLayout& into) {
    const QString title = "Distance:";
    slider_ = new QSlider(Qt::Horizontal);
    slider_->setAccessibleName(title);
    slider_->setRange(kNearest, kFarthest);
    slider_->setSingleStep(kStep);
    slider_->setPageStep(kStep);
    distance_ = new QSpinBox;
    distance_->setAccessibleName(title);
    distance_->setSuffix(" px");
    distance_->setSingleStep(kStep);
    distance_->setKeyboardTracking(false);
    auto* const row = new QHBoxLayout;
    into.addLayout(row);
    row->addWidget(plainLabel(title));
    row->addWidget(slider_, 1);
    row->addWidget(distance_);
    QObject::connect(slider_, &QSlider::valueChanged, this,
                     [this](int value) { setDistance((value + kStep / 2) / kStep * kStep); });
    QObject::connect(distance_, &QSpinBox::valueChanged, this,
                     [this](int value) { setDistance(std::clamp(value, kNearest, kFarthest)); });
}

void displaymodeSettingsView::addDetails(QVBoxLayout& into) {
    addToggle(into, "Show 24h Change (%)", &displaymodeSettingsViewModel::showChange24h);
    addToggle(into, "Show 24h High/Low", &displaymodeSettingsViewModel::showHighLow24h);
}

void displaymodeSettingsView::addExtras(QVBoxLayout& into) {
    sparkline_ = addToggle(into, "Show Sparkline", &displaymodeSettingsViewModel::showSparkline);
    addToggle(into, "Show Gas Fee", &displaymodeSettingsViewModel::showGasFee);
    const QString title = "Gas Source";
    auto* const row = addNamedRow(into, title);
    row->setContentsMargins(20, 0, 0, 0);
    row->addWidget(plainLabel(title));
    gasSource_ = addPicker(*row, {"Ethereum (Gwei)", "Bitcoin (sat/vB)"}, &displaymodeSettingsViewModel::gasSource);
    gas_ = row->parentWidget();
}

QCheckBox* displaymodeSettingsView::addToggle(QVBoxLayout& into, const QString& title, Flag flag) {
    auto* const toggle = new QCheckBox(title);
    into.addWidget(toggle);
    toggles_.emplace_back(toggle, flag);
    QObject::connect(toggle, &QAbstractButton::toggled, this, [this, flag](bool on) {
        model_.*flag = on;
        model_.saveDisplaySettings();
    });
    return toggle;
}

/// The options are numbered from 0.
QButtonGroup* displaymodeSettingsView::addPicker(QHBoxLayout& into, const QStringList& options, Choice choice) {
    auto* const picker = new QButtonGroup(this);
    for (int value = 0; value < options.size(); ++value) {
        auto* const option = new QRadioButton(options[value]);
        into.addWidget(option);
        picker->addButton(option, value);
    }
    into.addStretch();
    QObject::connect(picker, &QButtonGroup::idToggled, this, [this, choice](int value, bool on) {
        if (on) {
            model_.*choice = value;
            model_.saveDisplaySettings();
        }
    });
    return picker;
}

void displaymodeSettingsView::setDistance(int distance) {
    if (model_.floatOffset != distance) {
        model_.floatOffset = distance;
        model_.saveDisplaySettings();
    } else {
        showModel();
    }
}

void displaymodeSettingsView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    model_.reload();
}

void displaymodeSettingsView::showModel() {
    saveError_->setText(asText(model_.saveError));
    setQuietly(*login_, model_.launchAtLogin);
    login_->setAccessibleDescription(asText(model_.loginError));
    loginError_->setText(asText(model_.loginError));
    setQuietly(*mode_, model_.displayMode == 1 ? 1 : 0);
    modeText_->setText(asText(model_.modeText()));
    panelNote_->setText(asText(model_.panelNote()));
    panel_->setVisible(model_.displayMode == 1);
    for (const auto& [toggle, flag] : toggles_) {
        setQuietly(*toggle, model_.*flag);
    }
    const auto offset = static_cast<int>(std::clamp(model_.floatOffset, 0.0, 9999.0));
    const QSignalBlocker quietSlider(slider_);
    const QSignalBlocker quietDistance(distance_);
    slider_->setValue(offset);
    distance_->setRange(std::min(offset, kNearest), std::max(offset, kFarthest));  // what is stored may lie outside
    distance_->setValue(offset);
    sparkline_->setVisible(model_.isSparklineSupported);
    gas_->setVisible(model_.showGasFee);
    setQuietly(*gasSource_, model_.gasSource == 1 ? 1 : 0);
}

}  // namespace glintar::settings
