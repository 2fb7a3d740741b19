#include "windowkit/formsupport.h"

#include "platform/platform.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>
#include <QLocale>
#include <QPalette>
#include <QVariant>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace velmora {

namespace {

constexpr char kBackColorProperty[] = "velmoraBackColor";

QPalette::ColorRole roleOf(const QWidget* w) {
    if (qobject_cast<const QLineEdit*>(w)) return QPalette::Base;
    if (qobject_cast<const QAbstractButton*>(w)) return QPalette::Button;
    return QPalette::Window;
}

// The role of the text painted on the back colour of `role`.
QPalette::ColorRole textRoleOf(QPalette::ColorRole role) {
    switch (role) {
    case QPalette::Base:
        return QPalette::Text;
    case QPalette::Button:
        return QPalette::ButtonText;
    default:
        return QPalette::WindowText;
    }
}

} // namespace

namespace {
QChar& separatorOverride() {
    static QChar separator;
    return separator;
}

// The point and the locale's separator trade places.
QString swapSeparators(QString text, QChar separator) {
    if (separator == QLatin1Char('.')) return text;
    for (QChar& c : text) {
        if (c == separator)
            c = QLatin1Char('.');
        else if (c == QLatin1Char('.'))
            c = separator;
    }
    return text;
}
} // namespace

QChar decimalSeparator() {
    const QChar forced = separatorOverride();
    if (!forced.isNull()) return forced;
    const QString point = QLocale().decimalPoint();
    return point.size() == 1 ? point.front() : QLatin1Char('.');
}

void setDecimalSeparator(QChar separator) {
    separatorOverride() = separator;
}

std::string numberFromBox(const QString& text) {
    return swapSeparators(text, decimalSeparator()).toStdString();
}

QString numberToBox(const std::string& text) {
    return swapSeparators(QString::fromStdString(text), decimalSeparator());
}

namespace {
std::vector<QWidget*>& windowList() {
    static std::vector<QWidget*> windows;
    return windows;
}
} // namespace

const std::vector<QWidget*>& loadedWindows() {
    return windowList();
}

bool isLoadedWindow(const QWidget* w) {
    const auto& list = windowList();
    return std::find(list.begin(), list.end(), w) != list.end();
}

void windowLoaded(QWidget* w) {
    windowList().push_back(w);
}

void windowUnloaded(QWidget* w) {
    auto& list = windowList();
    list.erase(std::remove(list.begin(), list.end(), w), list.end());
}

QColor vbColor(quint32 bgr) {
    if (bgr & 0x80000000u) {
        const QPalette pal = QApplication::palette();
        switch (bgr & 0xFFu) {
        case 0x05:
            return pal.color(QPalette::Base);
        case 0x0F:
            return pal.color(QPalette::Button);
        default:
            return pal.color(QPalette::Window);
        }
    }
    return QColor(static_cast<int>(bgr & 0xFFu), static_cast<int>((bgr >> 8) & 0xFFu),
                  static_cast<int>((bgr >> 16) & 0xFFu));
}

namespace {
// The relative luminance of a colour (0 black to 1 white).
double luminance(const QColor& c) {
    auto linear = [](double v) {
        return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(c.redF()) + 0.7152 * linear(c.greenF()) + 0.0722 * linear(c.blueF());
}
} // namespace

QColor textColourOn(const QColor& back) {
    // black or white, whichever contrasts more with the back colour
    const double l = luminance(back);
    return (l + 0.05) / 0.05 >= 1.05 / (l + 0.05) ? QColor(Qt::black) : QColor(Qt::white);
}

QColor disabledTextColourOn(const QColor& back) {
    // half way between the enabled text colour and the back colour
    const QColor text = textColourOn(back);
    return QColor((text.red() + back.red()) / 2, (text.green() + back.green()) / 2,
                  (text.blue() + back.blue()) / 2);
}

void setBackColor(QWidget* w, quint32 bgr) {
    const QPalette::ColorRole role = roleOf(w);
    QPalette pal = w->palette();
    const QPalette::ColorRole textRole = textRoleOf(role);
    if (bgr & 0x80000000u) {
        // back to the system colours of the role and of its text
        const QPalette system = QApplication::palette(w);
        for (QPalette::ColorRole r : {role, textRole})
            for (QPalette::ColorGroup g :
                 {QPalette::Active, QPalette::Inactive, QPalette::Disabled})
                pal.setBrush(g, r, system.brush(g, r));
    } else {
        // a fixed back colour fixes its text colour too, whatever the
        // desktop's palette is
        const QColor back = vbColor(bgr);
        pal.setColor(role, back);
        pal.setColor(textRole, textColourOn(back));
        pal.setColor(QPalette::Disabled, textRole, disabledTextColourOn(back));
    }
    w->setPalette(pal);
    if (role == QPalette::Window) w->setAutoFillBackground(!(bgr & 0x80000000u));
    w->setProperty(kBackColorProperty, QVariant::fromValue<quint32>(bgr));
}

quint32 backColor(const QWidget* w) {
    const QVariant v = w->property(kBackColorProperty);
    if (v.isValid()) return v.value<quint32>();
    return roleOf(w) == QPalette::Base ? vb::WindowBackground : vb::ButtonFace;
}

QColor paintedBackColor(const QWidget* w) {
    return w->palette().color(roleOf(w));
}

bool enabledFlag(const QWidget* w) {
    return !w->testAttribute(Qt::WA_ForceDisabled);
}

void setEnabledAll(std::initializer_list<QWidget*> controls, bool enabled) {
    for (QWidget* w : controls)
        w->setEnabled(enabled);
}

void setTwipsGeometry(QWidget* w, int left, int top, int width, int height) {
    if (w->isWindow()) {
        w->resize(twipsToPixelsX(width), twipsToPixelsY(height));
        w->move(twipsToPixelsX(left), twipsToPixelsY(top));
    } else {
        w->setGeometry(twipsToPixelsX(left), twipsToPixelsY(top), twipsToPixelsX(width),
                       twipsToPixelsY(height));
    }
}

void moveTwips(QWidget* w, int left, int top) {
    w->move(twipsToPixelsX(left), twipsToPixelsY(top));
}

QRect twipsGeometry(const QWidget* w) {
    const QPoint pos = w->isWindow() ? w->pos() : w->geometry().topLeft();
    return {pixelsToTwipsX(pos.x()), pixelsToTwipsY(pos.y()), pixelsToTwipsX(w->width()),
            pixelsToTwipsY(w->height())};
}

} // namespace velmora
