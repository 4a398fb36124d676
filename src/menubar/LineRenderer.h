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

/// Turns a price line into a row of pictures. Those that are finished are used again, the others are drawn on the work
/// queue, all at the same time. Main thread only.
class LineRenderer {
public:
    /// `onIconArrived` runs when a pill that was drawn without its icon can be drawn with it.
    LineRenderer(platform::Platform& platform, platform::Desktop& desktop, std::function<void()> onIconArrived);
    ~LineRenderer();

    /// The completion runs soon, never at once; not at all if another line or `cancel` comes before that, or the
    /// renderer goes.
    using Completion = std::function<void(LineTitle title)>;
    void render(std::shared_ptr<const presenter::StatusLine> line, Completion completion);
    void cancel() { underWay_.reset(); }

    /// The desktop looks different: no picture from before is used again.
    void onThemeChanged();

    /// What pictures are drawn for now.
    [[nodiscard]] Look look() const;

private:
    struct Render;

    template <class Part>
    void renderPart(const std::shared_ptr<Render>& render, platform::DispatchGroup group, const Part& part,
                    const std::string& key, platform::ImagePtr& picture);
    void finish(const std::shared_ptr<Render>& render);

    platform::Platform& platform_;
    platform::Desktop& desktop_;
    std::function<void()> onIconArrived_;
    std::shared_ptr<PillPainter> painter_;    ///< held weakly by what is under way; another one for every look
    std::shared_ptr<const Render> underWay_;  ///< what is under way for another one comes to nothing
    platform::Lifetime lifetime_;             // last member
};

}  // namespace glintar::menubar
