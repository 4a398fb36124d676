#include "menubar/GasPill.h"

#include "presenter/SystemColors.h"

namespace glintar::menubar {

namespace {

presenter::SystemColor colorOf(presenter::GasLevel level) {
    switch (level) {
        case presenter::GasLevel::Low:
            return presenter::SystemColor::Green;
        case presenter::GasLevel::Middle:
            return presenter::SystemColor::Orange;
        case presenter::GasLevel::High:
            break;
    }
    return presenter::SystemColor::Red;
}

}  // namespace

platform::ImagePtr renderGasPill(const platform::Graphics& graphics, const presenter::GasPart& gas, const Look& look) {
    static constexpr double kSymbolFontSize = 13;
    static constexpr double kGap = 4;
    static constexpr platform::Font kFont{.size = 11, .weight = platform::Font::Weight::Bold};
    const auto color = presenter::systemColor(colorOf(presenter::gasLevel(gas.fee)), look.appearance);
    const auto symbol =
        graphics.symbol(gas.network == market::GasNetwork::Bitcoin ? "bitcoinsign.circle.fill" : "fuelpump.fill",
                        kSymbolFontSize, color);
    const auto symbolSize = symbol ? symbol->size() : platform::Size{14, 14};
    const auto textSize = graphics.measure(gas.text, kFont);
    const double width = symbolSize.width + kGap + textSize.width + 2 * kPillPadding;
    return drawPill(graphics, look, width, [&](platform::Canvas& canvas) {
        if (symbol) {
            canvas.drawImage(*symbol,
                             {kPillPadding, centered(symbolSize.height) - 1, symbolSize.width, symbolSize.height}, 1);
        }
        canvas.drawText(gas.text, {kPillPadding + symbolSize.width + kGap, centered(textSize.height) - 2}, kFont,
                        color);
    });
}

}  // namespace glintar::menubar
