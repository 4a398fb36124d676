#pragma once

#include "settings/PartsView.h"
#include "settings/displaymodeSettingsViewModel.h"

#include <QCheckBox>
#include <QRadioButton>
#include <QSlider>
#include <QSpinBox>
#include <QVBoxLayout>
#include <QWidget>

#include <array>
#include <utility>
#include <vector>

namespace glintar::settings {

/// The "Display" tab.
class displaymodeSettingsView final : public QWidget {  // NOLINT(readability-identifier-naming): a given name
public:
    explicit displaymodeSettingsView(displaymodeSettingsViewModel& model, QWidget* parent = nullptr);
    displaymodeSettingsView(const displaymodeSettingsView&) = delete;
    displaymodeSettingsView& operator=(const displaymodeSettingsView&) = delete;
    ~displaymodeSettingsView() override { model_.onChange = nullptr; }

protected:
    void showEvent(QShowEvent* event) override;

private:
    using Flag = bool displaymodeSettingsViewModel::*;
    using Choice = int displaymodeSettingsViewModel::*;
    using Picker = std::array<QRadioButton*, 2>;

    QVBoxLayout* addGroup(QVBoxLayout& into, QWidget* group);
    QCheckBox* addToggle(QVBoxLayout& into, const QString& title, Flag flag);
    [[nodiscard]] QWidget* makePicker(Picker& picker, const std::array<const char*, 2>& options, Choice choice);
    void addDistance(QVBoxLayout& into);
    void setDistance(int distance);
    void showModel();

    displaymodeSettingsViewModel& model_;
    QCheckBox* login_ = nullptr;
    NoteLabel* loginError_ = nullptr;
    Picker mode_{};
    ToneLabel* modeText_ = nullptr;
    NoteLabel* panelNote_ = nullptr;
    QWidget* panel_ = nullptr;
    QSlider* slider_ = nullptr;
    QSpinBox* distance_ = nullptr;
    QCheckBox* sparkline_ = nullptr;
    QWidget* gas_ = nullptr;
    Picker gasSource_{};
    std::vector<std::pair<QCheckBox*, Flag>> toggles_;
};

}  // namespace glintar::settings
