#include "tests/support/programfixture.h"

#include "app/startup.h"
#include "engine/engine.h"
#include "mainwindow/frmmain.h"
#include "options/frmionic.h"
#include "options/frmoptions.h"
#include "options/optionstate.h"
#include "tests/support/recordingplatform.h"

#include <QCheckBox>
#include <QDir>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStandardPaths>
#include <QTabBar>

#include <cstdlib>

#include <sys/stat.h>

namespace velmora::test {

void prepareGuiTestEnvironment() {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) {
        QByteArray dir = QDir::tempPath().toLocal8Bit() + "/velmora-test-XXXXXX";
        if (mkdtemp(dir.data()) && chmod(dir.constData(), 0700) == 0)
            qputenv("XDG_RUNTIME_DIR", dir);
    }
    QStandardPaths::setTestModeEnabled(true);
    linkWindows();
}

void flushDeletions() {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void resetProgram() {
    // the main window first: it closes the others as the program does
    if (frmMain::isLoaded()) frmMain::instance()->close();
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget* w : windows)
        if (w->testAttribute(Qt::WA_DeleteOnClose)) w->close();
    flushDeletions();
    theOptions() = OptionState{};
    theEngine().rec = AnalysisRecord{};
    theEngine().sw = SweepArrays{};
}

void typeInto(QLineEdit* box, const QString& text) {
    box->setFocus();
    box->end(false);
    QTest::keyClicks(box, text);
}

void eraseBox(QLineEdit* box) {
    box->setFocus();
    box->selectAll();
    QTest::keyClick(box, Qt::Key_Delete);
}

void retype(QLineEdit* box, const QString& text) {
    if (!box->text().isEmpty()) eraseBox(box);
    typeInto(box, text);
}

void click(QAbstractButton* button) {
    // check boxes and option buttons take clicks on their mark and caption only
    if (qobject_cast<QCheckBox*>(button) || qobject_cast<QRadioButton*>(button))
        QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(6, button->height() / 2));
    else
        QTest::mouseClick(button, Qt::LeftButton);
}

void trigger(QAction* action) {
    if (action->isEnabled()) action->trigger();
}

void typeWorkedSample(frmMain* m) {
    const std::pair<QLineEdit*, const char*> sample[] = {
        {m->txtt, "25"},    {m->txtph, "7.5"}, {m->txtalk, "200"}, {m->txtca, "80"},
        {m->txttds, "400"}, {m->txtcl, "50"},  {m->txtso4, "60"}};
    for (const auto& [box, text] : sample)
        if (box->isEnabled()) typeInto(box, QLatin1String(text));
}

void ProgramTest::init() {
    rec_ = new RecordingPlatform;
    m_ = startProgram();
}

void ProgramTest::cleanup() {
    resetProgram();
    delete rec_;
    rec_ = nullptr;
    m_ = nullptr;
}

QLineEdit* ProgramTest::box(const QString& name) const {
    return m_->findChild<QLineEdit*>(name);
}

void ProgramTest::type(const QStringList& entries) {
    for (const QString& e : entries) {
        const QStringList kv = e.split(QLatin1Char('='));
        QLineEdit* b = box(kv[0]);
        QVERIFY2(b && b->isEnabled(), qPrintable(kv[0] + QStringLiteral(" cannot be typed in")));
        retype(b, kv[1]);
    }
}

frmionic* ProgramTest::openIonic() {
    m_->mnusettingis->trigger();
    return frmionic::instance();
}

void ProgramTest::chooseEquation(const QString& equation) {
    frmionic* d = openIonic();
    click(equation == "lewis" ? d->optlewis : equation == "rus" ? d->optrus : d->optlang);
    click(d->cmdOK);
}

frmOptions* ProgramTest::openOptions() {
    m_->mnuoptionoptions->trigger();
    return frmOptions::instance();
}

void ProgramTest::fillSweep(frmOptions* o, const QString& start, const QString& increment,
                            const QString& steps) {
    o->tbsOptions->setCurrentIndex(1);
    if (!o->chkphsweep->isChecked()) click(o->chkphsweep);
    retype(o->txtinitialph, start);
    retype(o->txtincrementph, increment);
    retype(o->txtstep, steps);
}

void ProgramTest::applyOptions(const QList<QCheckBox*>& ticks, const QString& start,
                               const QString& increment, const QString& steps) {
    frmOptions* o = openOptions();
    for (QCheckBox* c : ticks)
        if (!c->isChecked()) click(c);
    if (!start.isNull()) fillSweep(o, start, increment, steps);
    click(o->cmdOK);
}

} // namespace velmora::test
