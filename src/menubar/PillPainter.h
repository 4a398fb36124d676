#pragma once

#include "menubar/ImageCache.h"
#include "menubar/Pill.h"
#include "presenter/StatusLine.h"

#include <functional>
#include <memory>
#include <string>

namespace glintar::menubar {

class CoinIcons;

/// Draws the pills of the price line for one look, and keeps those that are finished: they are used again as long as
/// their render key stays the same. Any thread.
class PillPainter : public std::enable_shared_from_this<PillPainter> {
public:
    /// `onIconArrived` runs on the main thread when a pill that was drawn without its icon can be drawn with it.
    PillPainter(const platform::Graphics& graphics, std::shared_ptr<CoinIcons> icons, const Look& look,
                std::function<void()> onIconArrived);

    /// What a coin's pill is kept under: look, source, price, reference price, which parts are shown, and whether the
    /// price is old. The values of change, range and sparkline are left out, so they move only together with the price.
    [[nodiscard]] std::string renderKey(const presenter::StatusLine& line, const presenter::CoinPart& coin) const;
    [[nodiscard]] std::string renderKey(const presenter::GasPart& gas) const;

    /// Null when it has not been drawn.
    [[nodiscard]] platform::ImagePtr finishedPill(const std::string& key) { return renderedItemCache_.find(key); }

    /// Reads icons from the disk, so not on the main thread. A coin without an icon is drawn with a badge, and that
    /// pill is not kept; the icon is downloaded meanwhile.
    [[nodiscard]] platform::ImagePtr drawPill(const std::string& key, const presenter::CoinPart& coin);
    [[nodiscard]] platform::ImagePtr drawPill(const std::string& key, const presenter::GasPart& gas);

private:
    void download(const std::string& key, const presenter::CoinPart& coin);

    const platform::Graphics& graphics_;
    std::shared_ptr<CoinIcons> icons_;
    Look look_;
    std::function<void()> onIconArrived_;
    ImageCache renderedItemCache_;
};

}  // namespace glintar::menubar
