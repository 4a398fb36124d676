#pragma once

#include "platform/Graphics.h"
#include "settings/PartsView.h"
#include "settings/coinsSettingsViewModel.h"

#include <QLineEdit>
#include <QListWidget>
#include <QVBoxLayout>
#include <QWidget>

#include <string>
#include <vector>

namespace glintar::settings {

/// The "Coins" tab.
class coinsSettingsView final : public QWidget {  // NOLINT(readability-identifier-naming): a given name
public:
    coinsSettingsView(coinsSettingsViewModel& model, const platform::Graphics& graphics, QWidget* parent = nullptr);
    coinsSettingsView(const coinsSettingsView&) = delete;
    coinsSettingsView& operator=(const coinsSettingsView&) = delete;
    ~coinsSettingsView() override { model_.onChange = nullptr; }

protected:
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    [[nodiscard]] QWidget* makeList();
    [[nodiscard]] QWidget* makeAddRow();
    void showModel();
    void showRows();
    void showSuggestions();
    bool keyInName(int key);
    void take(const QListWidgetItem* suggestion);
    void takePicked();
    void moveFocus(int from, int step);
    void remove(std::size_t row);

    coinsSettingsViewModel& model_;
    const platform::Graphics& graphics_;
    NoteLabel* limit_;
    QVBoxLayout* rows_ = nullptr;
    std::vector<QWidget*> rowViews_;
    std::vector<std::string> shown_;  ///< what the rows say
    QWidget* addRow_ = nullptr;
    QLineEdit* name_ = nullptr;
    QListWidget* suggestions_ = nullptr;
    QLineEdit* price_ = nullptr;
    NoteLabel* error_;
};

}  // namespace glintar::settings
