#include "options/choicedialog.h"

#include "platform/platform.h"
#include "windowkit/formsupport.h"
#include "windowkit/mainform.h"

#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>

namespace velmora {

namespace {
// twips
constexpr int kMargin = 120, kOptionTop = 690, kOptionStep = 420, kButtonWidth = 1215,
              kButtonHeight = 375, kButtonGap = 225;
} // namespace

ChoiceDialog::ChoiceDialog(const Design& design) : QDialog(mainWindowParent()) {
    setObjectName(QLatin1String(design.name));
    setWindowTitle(design.caption);
    QFont arial(QStringLiteral("Arial"));
    arial.setPointSize(8);
    setFont(arial);

    const int optionCount = static_cast<int>(design.options.size());
    const int frameHeight = kOptionTop + kOptionStep * optionCount + 105;
    frame = new QGroupBox(design.frameCaption, this);
    frame->setObjectName(QLatin1String(design.name));
    setTwipsGeometry(frame, kMargin, kMargin, design.frameWidthTwips, frameHeight);
    prompt = new QLabel(design.prompt, frame);
    prompt->setObjectName(QLatin1String(design.promptName));
    setTwipsGeometry(prompt, kMargin, 300, design.frameWidthTwips - 2 * kMargin, 285);
    int top = kOptionTop;
    for (const Option& o : design.options) {
        auto* b = new QRadioButton(o.caption, frame);
        b->setObjectName(QLatin1String(o.name));
        setTwipsGeometry(b, 360, top, design.frameWidthTwips - 480, 315);
        options.append(b);
        top += kOptionStep;
    }
    options.at(design.selected)->setChecked(true);

    const int width = design.frameWidthTwips + 2 * kMargin;
    const int buttonTop = kMargin + frameHeight + 165;
    const int buttonLeft = (width - 2 * kButtonWidth - kButtonGap) / 2;
    auto button = [this, buttonTop](const char* name, const QString& caption, int left) {
        auto* b = new QPushButton(caption, this);
        b->setObjectName(QLatin1String(name));
        b->setAutoDefault(false);
        setTwipsGeometry(b, left, buttonTop, kButtonWidth, kButtonHeight);
        return b;
    };
    cmdOK = button("cmdOK", design.okCaption, buttonLeft);
    cmdCancel =
        button("cmdCancel", QStringLiteral("&Cancel"), buttonLeft + kButtonWidth + kButtonGap);
    cmdOK->setDefault(true);
    setFixedSize(twipsToPixelsX(width), twipsToPixelsY(buttonTop + kButtonHeight + 165));

    // OK is looked up when clicked: the dialog's own handler
    connect(cmdOK, &QPushButton::clicked, this, [this] { cmdOK_Click(); });
    connect(cmdCancel, &QPushButton::clicked, this, &ChoiceDialog::cmdCancel_Click);
}

void ChoiceDialog::cmdCancel_Click() {
    close();
}

void ChoiceDialog::reject() {
    cmdCancel_Click();
}

} // namespace velmora
