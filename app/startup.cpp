#include "app/startup.h"

#include "app/frmabout.h"
#include "app/frmsplash.h"
#include "mainwindow/frmmain.h"
#include "options/frmoptions.h"
#include "options/optionstate.h"
#include "platform/platform.h"
#include "windowkit/formsupport.h"
#include "windowkit/programpicture.h"

#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

namespace velmora {

void linkWindows() {
    setAboutHandler([] { platform().execModal(frmAbout::instance()); });
}

frmMain* startProgram() {
    linkWindows();
    QCoreApplication::setApplicationName(QStringLiteral("Velmora"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VELMORA_VERSION));
    // The window switcher shows the program's picture; on Wayland the
    // desktop entry is found by its name.
    QApplication::setWindowIcon(programIcon());
    QGuiApplication::setDesktopFileName(QStringLiteral(VELMORA_APP_ID));

    const bool small = isSmallScreen();
    frmSplash* splash = frmSplash::instance();
    if (small) moveTwips(splash, 2655, 3000);
    splash->show();
    splash->repaint();
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);

    frmMain* main = frmMain::instance();
    if (small)
        main->applySmallScreenPlacement();
    else
        main->restoreSavedPlacement();
    main->Form_Load();
    theOptions().equations.bllang = true;
    frmSplash::unload();

    main->show();
    main->activateWindow();
    main->txtt->setFocus();
    return main;
}

namespace {

class FirstPaintQuit : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            watched->removeEventFilter(this);
            QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        }
        return false;
    }
};

} // namespace

void quitAfterFirstPaint(frmMain* main) {
    main->installEventFilter(new FirstPaintQuit(main));
}

void runDemoSample(frmMain* main) {
    frmOptions* options = frmOptions::instance();
    for (QCheckBox* c : {options->chkli, options->chkri, options->chkpor, options->chklr,
                         options->chkdfi, options->chkai, options->chkme, options->chksl})
        c->setChecked(true);
    options->chkphsweep->setChecked(true);
    options->txtinitialph->setText(numberToBox("6.5"));
    options->txtincrementph->setText(numberToBox("0.5"));
    options->txtstep->setText(QStringLiteral("5"));
    options->cmdOK_Click();

    const std::pair<QLineEdit*, const char*> sample[] = {
        {main->txtt, "25"},    {main->txtph, "7.5"}, {main->txtalk, "200"}, {main->txtca, "80"},
        {main->txttds, "400"}, {main->txtcl, "50"},  {main->txtso4, "60"}};
    for (const auto& [box, text] : sample)
        box->setText(numberToBox(text));
    main->cmdread->click();
    main->cmdcalc->click();
}

} // namespace velmora
