#include "menubar/LineRenderer.h"

#include "menubar/CoinIcons.h"
#include "menubar/PillColors.h"
#include "menubar/PillPainter.h"
#include "platform/Desktop.h"
#include "platform/DesktopEvents.h"
#include "platform/Platform.h"
#include "platform/WorkQueue.h"
#include "presenter/LineText.h"
#include "presenter/SystemColors.h"

#include <utility>
#include <vector>

namespace glintar::menubar {

namespace {

constexpr platform::Font kMessageFont{.size = 12};

/// A picture that stands on the line of the text beside it.
platform::PictureRun pill(platform::ImagePtr picture, std::string description) {
    return {.image = std::move(picture), .offset = {0, -7.5}, .description = std::move(description)};
}

}  // namespace

/// One line on its way to the screen. Each picture is written by one piece of work, before it leaves the group; they
/// are read after the group has emptied.
struct LineRenderer::Render {
    std::shared_ptr<const presenter::StatusLine> line;
    Completion completion;
    Look look;
    std::vector<platform::ImagePtr> coins;
    platform::ImagePtr gas;

    [[nodiscard]] platform::AttributedText title() const;
};

LineRenderer::LineRenderer(platform::Platform& platform, platform::Desktop& desktop,
                           std::function<void()> onIconArrived)
    : platform_(platform), desktop_(desktop), onIconArrived_(std::move(onIconArrived)) {
    onThemeChanged();
}

LineRenderer::~LineRenderer() = default;

void LineRenderer::onThemeChanged() {
    const auto& graphics = desktop_.graphics;
    painter_ = std::make_shared<PillPainter>(graphics, CoinIcons::shared(platform_, graphics).shared_from_this(),
                                             look(), lifetime_.guard([this] { onIconArrived_(); }));
}

void LineRenderer::render(std::shared_ptr<const presenter::StatusLine> line, Completion completion) {
    const auto render = std::make_shared<Render>(std::move(line), std::move(completion), look());
    underWay_ = render;
    const presenter::StatusLine& parts = *render->line;
    render->coins.resize(parts.coins.size());
    platform::DispatchGroup group;
    for (std::size_t i = 0; i < parts.coins.size(); ++i) {
        const auto& part = parts.coins[i];
        renderPart(render, group, part, painter_->renderKey(parts, part), render->coins[i]);
    }
    if (parts.gas) {
        renderPart(render, group, *parts.gas, painter_->renderKey(*parts.gas), render->gas);
    }
    group.notify(platform_.runLoop, lifetime_.guard([this, render] { finish(render); }));
}

/// Takes the finished picture, or has it drawn. Part and picture belong to the render.
template <class Part>
void LineRenderer::renderPart(const std::shared_ptr<Render>& render, const platform::DispatchGroup& group,
                              const Part& part, const std::string& key, platform::ImagePtr& picture) {
    picture = painter_->finishedPill(key);
    if (picture) {
        return;
    }
    group.enter();
    platform_.workQueue.async([render, group, &part, &picture, key, weak = std::weak_ptr(painter_)]() mutable {
        if (const auto painter = weak.lock()) {
            picture = painter->drawPill(key, part);
        }
        group.leave();
    });
}

void LineRenderer::finish(const std::shared_ptr<Render>& render) {
    if (render == underWay_) {
        underWay_.reset();
        render->completion({.text = render->title(), .description = presenter::plainText(*render->line)});
    }
}

platform::AttributedText LineRenderer::Render::title() const {
    const platform::TextRun separator{"   ", kTitleFont,
                                      presenter::systemColor(presenter::SystemColor::TertiaryLabel, look.appearance)};
    platform::AttributedText title;
    if (line->emptyText) {
        title.emplace_back(
            platform::TextRun{*line->emptyText, kMessageFont,
                              presenter::systemColor(presenter::SystemColor::SecondaryLabel, look.appearance)});
    }
    for (std::size_t i = 0; i < coins.size(); ++i) {
        if (!title.empty()) {
            title.emplace_back(separator);
        }
        title.emplace_back(pill(coins[i], presenter::plainText(line->coins[i])));
    }
    if (line->gas) {
        title.emplace_back(separator);
        title.emplace_back(pill(gas, presenter::plainText(*line->gas)));
    }
    return title;
}

Look LineRenderer::look() const {
    return {.appearance = desktop_.events.appearance(), .scale = desktop_.statusBar.scale()};
}

}  // namespace glintar::menubar
