#pragma once

#include "menubar/Pill.h"
#include "platform/DispatchGroup.h"
#include "platform/Lifetime.h"
#include "platform/StatusBar.h"
#include "presenter/StatusLine.h"

#include <functional>
#include <memory>
#include <string>

namespace glintar::platform {
struct Desktop;
struct Platform;
}  // namespace glintar::platform

namespace glintar::menubar {

class PillPainter;

inline constexpr platform::Font kTitleFont{.size = 14};

/// A price line as an item of the bar takes it.
struct LineTitle {
    platform::AttributedText text;  ///< empty when the line is
    std::string description;        ///< for those who cannot see it
};

/// Turns a price line into a row of pictures. A pill that is finished is used again. The others are drawn on the work
/// queue, several at a time. Main thread only.
class LineRenderer {
public:
    /// `onIconArrived` runs when a pill that was drawn without its icon can be drawn with it.
    LineRenderer(platform::Platform& platform, platform::Desktop& desktop, std::function<void()> onIconArrived);
    ~LineRenderer();

    /// The completion runs once on a later turn of the loop. It never runs when another line or `cancel` comes before,
    /// or when the renderer goes.
    using Completion = std::function<void(LineTitle title)>;
    void render(std::shared_ptr<const presenter::StatusLine> line, Completion completion);
    void cancel() { underWay_.reset(); }

    /// The desktop looks different, or the screen has another ratio: no finished pill is used again.
    void onThemeChanged();

    /// What pictures are drawn for now.
    [[nodiscard]] Look look() const;

private:
    struct Render;

    template <class Part>
    void renderPart(const std::shared_ptr<Render>& render, const platform::DispatchGroup& group, const Part& part,
                    const std::string& key, platform::ImagePtr& picture);
    void finish(const std::shared_ptr<Render>& render);

    platform::Platform& platform_;
    platform::Desktop& desktop_;
    std::function<void()> onIconArrived_;
    std::shared_ptr<PillPainter> painter_;    ///< what is under way holds it weakly; each look has its own
    std::shared_ptr<const Render> underWay_;  ///< the newest; what is drawn for an older one is dropped
    platform::Lifetime lifetime_;             // last member
};

}  // namespace glintar::menubar
