#include "results/frmenterper.h"

#include "windowkit/formsupport.h"
#include "platform/platform.h"

#include <QPalette>
#include <QPlainTextEdit>
#include <QToolTip>

namespace velmora {

namespace {

// Text1 is 4815 x 1935 twips at the top left corner; the window leaves a
// band of 540 twips on its right and below it where the severity colour shows.
constexpr int kText1Width = 4815;
constexpr int kText1Height = 1935;
constexpr int kColourBand = 540;
} // namespace

frmenterper::frmenterper() {
    setObjectName("frmenterper");
    setAutoFillBackground(true);
    const int width = twipsToPixelsX(kText1Width), height = twipsToPixelsY(kText1Height);
    setFixedSize(width + twipsToPixelsX(kColourBand), height + twipsToPixelsY(kColourBand));

    text1_ = new QPlainTextEdit(this);
    text1_->setObjectName("Text1");
    text1_->setGeometry(0, 0, width, height);
    text1_->setReadOnly(true);
    text1_->setLineWrapMode(QPlainTextEdit::WidgetWidth);
    text1_->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    text1_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // Blue text on the tooltip colour, active or not; on a dark desktop's
    // tooltip colour the blue would not read, so a light one stands in.
    QColor base = QToolTip::palette().color(QPalette::ToolTipBase);
    if (textColourOn(base) != QColor(Qt::black)) base = QColor(255, 255, 225);
    QPalette pal = text1_->palette();
    pal.setColor(QPalette::Base, base);
    pal.setColor(QPalette::Text, QColor(0, 0, 255));
    text1_->setPalette(pal);
}

void frmenterper::setBackColour(const QColor& colour) {
    QPalette pal = palette();
    pal.setColor(QPalette::Window, colour);
    setPalette(pal);
}

QColor frmenterper::backColour() const {
    return palette().color(QPalette::Window);
}

void frmenterper::setTextBold() {
    QFont f = text1_->font();
    f.setBold(true);
    text1_->setFont(f);
}

} // namespace velmora
