#pragma once

#include "settings/PartsView.h"
#include "settings/displaymodeSettingsViewModel.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QSlider>
#include <QSpinBox>
#include <QVBoxLayout>
#include <QWidget>

#include <cstdint>
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
    using Choice = std::int64_t displaymodeSettingsViewModel::*;

    // Each adds what its name says below what is there.
    void addPlace(QVBoxLayout& into);
    void addPanel(QVBoxLayout& into);
    void addDistance(QVBoxLayout& into);
    void addDetails(QVBoxLayout& into);
    void addExtras(QVBoxLayout& into);
    QCheckBox* addToggle(QVBoxLayout& into, const QString& title, Flag flag);
    QButtonGroup* addPicker(QHBoxLayout& into, const QStringList& options, Choice choice);

    void setDistance(int distance);
    void showModel();

    displaymodeSettingsViewModel& model_;
    NoteLabel* saveError_ = nullptr;
    QCheckBox* login_ = nullptr;
    NoteLabel* loginError_ = nullptr;
    QButtonGroup* mode_ = nullptr;
    ToneLabel* modeText_ = nullptr;
    NoteLabel* panelNote_ = nullptr;
    QWidget* panel_ = nullptr;
    QSlider* slider_ = nullptr;
    QSpinBox* distance_ = nullptr;
    QCheckBox* sparkline_ = nullptr;
    QWidget* gas_ = nullptr;
    QButtonGroup* gasSource_ = nullptr;
    std::vector<std::pair<QCheckBox*, Flag>> toggles_;
};

}  // namespace glintar::settings
