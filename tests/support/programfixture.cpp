#include "tests/support/programfixture.h"

#include "engine/engine.h"
#include "mainwindow/frmmain.h"
#include "options/optionstate.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QRadioButton>
#include <QTest>

namespace velmora::test {

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

} // namespace velmora::test
