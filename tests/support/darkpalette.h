// A dark desktop palette, as a dark theme gives the program, and the
// contrast ratio of two colours.
#pragma once

#include <QColor>
#include <QPalette>

#include <algorithm>
#include <cmath>

namespace velmora::test {

inline QPalette darkPalette() {
    QPalette p;
    const QColor text(230, 230, 230), dimText(120, 120, 120);
    const std::pair<QPalette::ColorRole, QColor> colours[] = {
        {QPalette::Window, QColor(45, 45, 48)},        {QPalette::Base, QColor(30, 30, 30)},
        {QPalette::AlternateBase, QColor(45, 45, 48)}, {QPalette::Button, QColor(60, 60, 64)},
        {QPalette::ToolTipBase, QColor(20, 20, 20)},   {QPalette::ToolTipText, text},
        {QPalette::PlaceholderText, dimText},          {QPalette::Highlight, QColor(42, 130, 218)},
        {QPalette::HighlightedText, Qt::white},        {QPalette::Light, QColor(80, 80, 84)},
        {QPalette::Midlight, QColor(70, 70, 74)},      {QPalette::Mid, QColor(40, 40, 42)},
        {QPalette::Dark, QColor(25, 25, 26)},          {QPalette::Shadow, Qt::black}};
    for (QPalette::ColorGroup g : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        for (const auto& [role, colour] : colours)
            p.setColor(g, role, colour);
        for (QPalette::ColorRole role :
             {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
            p.setColor(g, role, g == QPalette::Disabled ? dimText : text);
    }
    return p;
}

// The contrast ratio of two colours (1 alike to 21 black on white).
inline double contrastRatio(const QColor& a, const QColor& b) {
    auto luminance = [](const QColor& c) {
        auto linear = [](double v) {
            return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(c.redF()) + 0.7152 * linear(c.greenF()) + 0.0722 * linear(c.blueF());
    };
    const double la = luminance(a), lb = luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

} // namespace velmora::test
