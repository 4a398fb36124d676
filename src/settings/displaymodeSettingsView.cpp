#include "settings/displaymodeSettingsView.h"

#include <QApplication>
#include <QButtonGroup>
#include <QHBoxLayout>

#include <algorithm>

namespace glintar::settings {

namespace {

constexpr int kNearest = 10;
constexpr int kFarthest = 100;
constexpr int kStep = 5;

}  // namespace

displaymodeSettingsView::displaymodeSettingsView(displaymodeSettingsViewModel& model, QWidget* parent)
    : QWidget(parent), model_(model) {
    setMinimumSize(400, 370);
    auto* const all = new QVBoxLayout(this);
    auto* const first = addGroup(*all, new QFrame(this));
    login_ = new QCheckBox("Launch at Login", this);
    // Here and below `toggled`, not `clicked`: a screen reader toggles without a click.
    QObject::connect(login_, &QAbstractButton::toggled, this, [this](bool on) {
        if (model_.launchAtLogin != on) {
            model_.setLaunchAtLogin(on);
        }
    });
    first->addWidget(login_);
    first->addWidget(loginError_ = new NoteLabel(Tone::Error, this));
    first->addSpacing(5);
    first->addWidget(divider(this));
    first->addSpacing(5);
    first->addWidget(new ToneLabel("Show Prices In:", Tone::Primary, QApplication::font(), this));
    first->addWidget(makePicker(mode_, {"Status Bar", "Mouse Follow"}, &displaymodeSettingsViewModel::displayMode));
    first->addWidget(modeText_ = new ToneLabel({}, Tone::Secondary, fontSized(kCaption), this));
    first->addWidget(panelNote_ = new NoteLabel(Tone::Secondary, this));

    panel_ = new QWidget(this);
    auto* const panel = new QVBoxLayout(panel_);
    panel->setContentsMargins(0, 0, 0, 0);
    panel->addWidget(divider(panel_));
    auto* const look = addGroup(*panel, new QFrame(panel_));
    addToggle(*look, "Transparent Background", &displaymodeSettingsViewModel::floatTransparent);
    addDistance(*look);
    all->addWidget(panel_);

    all->addWidget(divider(this));
    auto* const details = addGroup(*all, new QFrame(this));
    addToggle(*details, "Show 24h Change (%)", &displaymodeSettingsViewModel::showChange24h);
    addToggle(*details, "Show 24h High/Low", &displaymodeSettingsViewModel::showHighLow24h);
    auto* const more = addGroup(*all, new QFrame(this));
    sparkline_ = addToggle(*more, "Show Sparkline", &displaymodeSettingsViewModel::showSparkline);
    addToggle(*more, "Show Gas Fee", &displaymodeSettingsViewModel::showGasFee);
    gas_ = makePicker(gasSource_, {"Ethereum (Gwei)", "Bitcoin (sat/vB)"}, &displaymodeSettingsViewModel::gasSource);
    gas_->setAccessibleName("Gas Source");
    gas_->layout()->setContentsMargins(20, 0, 0, 0);
    static_cast<QHBoxLayout*>(gas_->layout())
        ->insertWidget(0, new ToneLabel("Gas Source", Tone::Primary, QApplication::font(), gas_));
    more->addWidget(gas_);
    all->addStretch();
    model_.onChange = [this] { showModel(); };
    showModel();
}

QVBoxLayout* displaymodeSettingsView::addGroup(QVBoxLayout& into, QWidget* group) {
    static_cast<QFrame*>(group)->setFrameShape(QFrame::StyledPanel);
    into.addWidget(group);
    return new QVBoxLayout(group);
}

QCheckBox* displaymodeSettingsView::addToggle(QVBoxLayout& into, const QString& title, Flag flag) {
    auto* const toggle = new QCheckBox(title, this);
    QObject::connect(toggle, &QAbstractButton::toggled, this, [this, flag](bool on) {
        if (model_.*flag != on) {
            model_.*flag = on;
            model_.saveDisplaySettings();
        }
    });
    into.addWidget(toggle);
    toggles_.emplace_back(toggle, flag);
    return toggle;
}

QWidget* displaymodeSettingsView::makePicker(Picker& picker, const std::array<const char*, 2>& options, Choice choice) {
    auto* const view = new QWidget(this);
    auto* const line = new QHBoxLayout(view);
    line->setContentsMargins(0, 0, 0, 0);
    auto* const group = new QButtonGroup(view);
    for (int value = 0; value < 2; ++value) {
        auto* const option = new QRadioButton(options.at(static_cast<std::size_t>(value)), view);
        picker.at(static_cast<std::size_t>(value)) = option;
        group->addButton(option);
        line->addWidget(option);
        QObject::connect(option, &QAbstractButton::toggled, this, [this, choice, value](bool on) {
            if (on && (model_.*choice == 1) != (value == 1)) {  // what is stored may be neither
                model_.*choice = value;
                model_.saveDisplaySettings();
            }
        });
    }
    line->addStretch();
    return view;
}

void displaymodeSettingsView::addDistance(QVBoxLayout& into) {
    auto* const line = new QHBoxLayout;
    auto* const label = new ToneLabel("Distance:", Tone::Primary, QApplication::font(), this);
    slider_ = new QSlider(Qt::Horizontal, this);
    distance_ = new QSpinBox(this);
    distance_->setSuffix(" px");
    distance_->setKeyboardTracking(false);
    for (QWidget* const control : {static_cast<QWidget*>(slider_), static_cast<QWidget*>(distance_)}) {
        control->setAccessibleName("Distance:");
    }
    slider_->setRange(kNearest, kFarthest);
    slider_->setSingleStep(kStep);
    slider_->setPageStep(kStep);
    distance_->setSingleStep(kStep);
    line->addWidget(label);
    line->addWidget(slider_, 1);
    line->addWidget(distance_);
    into.addLayout(line);
    QObject::connect(slider_, &QSlider::valueChanged, this,
                     [this](int value) { setDistance((value + kStep / 2) / kStep * kStep); });
    QObject::connect(distance_, &QSpinBox::valueChanged, this,
                     [this](int value) { setDistance(std::clamp(value, kNearest, kFarthest)); });
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
    login_->setChecked(model_.launchAtLogin);
    login_->setAccessibleDescription(asText(model_.loginError));
    loginError_->setText(asText(model_.loginError));
    mode_.at(model_.displayMode == 1 ? 1 : 0)->setChecked(true);
    modeText_->setText(asText(model_.modeText()));
    panelNote_->setText(asText(model_.panelNote()));
    panel_->setVisible(model_.displayMode == 1);
    for (const auto& [toggle, flag] : toggles_) {
        toggle->setChecked(model_.*flag);
    }
    const auto offset = static_cast<int>(std::clamp(model_.floatOffset, 0.0, 9999.0));
    const QSignalBlocker quietSlider(slider_);
    const QSignalBlocker quietDistance(distance_);
    slider_->setValue(offset);
    distance_->setRange(std::min(offset, kNearest), std::max(offset, kFarthest));  // what is stored may lie outside
    distance_->setValue(offset);
    sparkline_->setVisible(model_.isSparklineSupported);
    gas_->setVisible(model_.showGasFee);
    gasSource_.at(model_.gasSource == 1 ? 1 : 0)->setChecked(true);
}

}  // namespace glintar::settings
