#pragma once

#include "platform/Graphics.h"
#include "settings/PartsView.h"
#include "settings/settingsViewModel.h"

#include <QLineEdit>
#include <QRadioButton>
#include <QVBoxLayout>
#include <QWidget>

#include <string>
#include <vector>

namespace glintar::settings {

/// The "Data Source" tab.
class APISettingsView final : public QWidget {
public:
    APISettingsView(settingsViewModel& all, const platform::Graphics& graphics, QWidget* parent = nullptr);
    APISettingsView(const APISettingsView&) = delete;
    APISettingsView& operator=(const APISettingsView&) = delete;
    ~APISettingsView() override { model_.onChange = nullptr; }

protected:
    void showEvent(QShowEvent* event) override;

private:
    [[nodiscard]] QWidget* makeSources();
    void showModel();
    void rebuildSection();
    void addKeySection(const config::SourceConfig& source, QVBoxLayout& into);
    void addLink(const std::string& address, const QString& words, QWidget* symbol, const QFont& font,
                 QVBoxLayout& into);

    APISettingsViewModel& model_;
    AboutModel& about_;
    const platform::Graphics& graphics_;
    std::vector<QRadioButton*> rows_;
    bool isChosenPressed_ = false;  ///< the row that was pressed last was the chosen one
    NoteLabel* sourceNote_ = nullptr;
    QVBoxLayout* section_ = nullptr;
    QWidget* sectionView_ = nullptr;
    std::string sectionSource_;  ///< whose section it is
    QLineEdit* key_ = nullptr;
    NoteLabel* note_ = nullptr;
};

}  // namespace glintar::settings
