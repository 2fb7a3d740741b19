// A dark desktop palette, as a dark theme gives the program: light text on
// dark windows, boxes, buttons and tooltips.
#pragma once

#include <QColor>
#include <QPalette>

#include <algorithm>
#include <cmath>

namespace velmora::test {

inline QPalette darkPalette() {
    QPalette p;
    const QColor window(45, 45, 48), base(30, 30, 30), text(230, 230, 230);
    const QColor dimText(120, 120, 120);
    for (QPalette::ColorGroup g : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        const bool disabled = g == QPalette::Disabled;
        p.setColor(g, QPalette::Window, window);
        p.setColor(g, QPalette::WindowText, disabled ? dimText : text);
        p.setColor(g, QPalette::Base, base);
        p.setColor(g, QPalette::AlternateBase, window);
        p.setColor(g, QPalette::Text, disabled ? dimText : text);
        p.setColor(g, QPalette::Button, QColor(60, 60, 64));
        p.setColor(g, QPalette::ButtonText, disabled ? dimText : text);
        p.setColor(g, QPalette::ToolTipBase, QColor(20, 20, 20));
        p.setColor(g, QPalette::ToolTipText, text);
        p.setColor(g, QPalette::PlaceholderText, dimText);
        p.setColor(g, QPalette::Highlight, QColor(42, 130, 218));
        p.setColor(g, QPalette::HighlightedText, Qt::white);
        p.setColor(g, QPalette::Light, QColor(80, 80, 84));
        p.setColor(g, QPalette::Midlight, QColor(70, 70, 74));
        p.setColor(g, QPalette::Mid, QColor(40, 40, 42));
        p.setColor(g, QPalette::Dark, QColor(25, 25, 26));
        p.setColor(g, QPalette::Shadow, Qt::black);
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
