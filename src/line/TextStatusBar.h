#pragma once

#include "app/Arguments.h"
#include "presenter/StatusSurface.h"

#include <functional>
#include <optional>
#include <string>

namespace glintar::platform {
class LocalTime;
class TextOutput;
}  // namespace glintar::platform

namespace glintar::line {

/// The status bar of a machine without a display: one line of text a refresh. On a terminal, a text line is redrawn in
/// place with a countdown before it.
class TextStatusBar final : public presenter::StatusSurface {
public:
    struct Options {
        app::Format format = app::Format::Text;
        bool isLive = false;  ///< redrawn in place; wants a terminal
        std::string prefix;   ///< before every line of text
        std::optional<app::Fields> fields = {};
        std::optional<std::string> coin = {};
        std::function<int()> percentage = {};  ///< of the time to the next refresh that has passed
    };

    TextStatusBar(platform::TextOutput& output, const platform::LocalTime& local, Options options);

    /// Shows that there is nothing yet.
    void start();

    /// Runs after the line of a refresh has been written; `hasQuotes` says whether it holds a coin.
    std::function<void(bool hasQuotes)> onRefreshed;

    void showLine(const presenter::StatusLine& line, std::optional<std::string> tooltip) override;
    void show(presenter::DisplayMode) override {}
    void refreshCompleted() override;
    bool showsProgress() const override { return options_.isLive; }
    platform::Seconds showProgress(const presenter::RefreshProgress& countdown) override;
    bool canBeCovered() const override { return false; }
    void checkVisibility() override {}
    void updatePanel(presenter::PanelData) override {}
    void updateDashboardItem(std::string_view, bool) override {}

private:
    void redraw();
    [[nodiscard]] std::string printed() const;

    platform::TextOutput& output_;
    const platform::LocalTime& local_;
    Options options_;
    presenter::StatusLine line_;
    std::string text_;
    std::string tooltip_ = "Waiting for data...";
    std::string countdown_;
};

}  // namespace glintar::line
