#include "results/frmenterper.h"

#include <QPalette>
#include <QPlainTextEdit>
#include <QToolTip>

namespace velmora {

namespace {
frmenterper* s_instance = nullptr;

// Text1 is 4815 x 1935 twips at the top left corner; the window leaves a
// band on its right and below it where the severity colour shows.
constexpr int kText1Width = 321;
constexpr int kText1Height = 129;
constexpr int kColourBand = 36;
} // namespace

frmenterper* frmenterper::instance() {
    if (!s_instance) s_instance = new frmenterper;
    return s_instance;
}

bool frmenterper::isLoaded() {
    return s_instance != nullptr;
}

frmenterper::frmenterper() {
    setObjectName("frmenterper");
    setAttribute(Qt::WA_DeleteOnClose);
    setAutoFillBackground(true);
    setFixedSize(kText1Width + kColourBand, kText1Height + kColourBand);

    text1_ = new QPlainTextEdit(this);
    text1_->setObjectName("Text1");
    text1_->setGeometry(0, 0, kText1Width, kText1Height);
    text1_->setReadOnly(true);
    text1_->setLineWrapMode(QPlainTextEdit::WidgetWidth);
    text1_->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    text1_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    QPalette pal = text1_->palette();
    const QColor tipBase = QToolTip::palette().color(QPalette::ToolTipBase);
    pal.setColor(QPalette::Base, tipBase);
    pal.setColor(QPalette::Text, QColor(0, 0, 255));
    for (QPalette::ColorGroup g : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        pal.setColor(g, QPalette::Base, tipBase);
        pal.setColor(g, QPalette::Text, QColor(0, 0, 255));
    }
    text1_->setPalette(pal);
}

frmenterper::~frmenterper() {
    if (s_instance == this) s_instance = nullptr;
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
