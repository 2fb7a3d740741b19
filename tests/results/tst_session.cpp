// A whole session: the worked sample typed into the main window, read,
// calculated and shown, down to the interpretations and the equilibrium data.
#include "mainwindow/frmmain.h"
#include "options/frmactivity.h"
#include "options/frmoptions.h"
#include "options/optionstate.h"
#include "results/frmenterper.h"
#include "results/frmmore.h"
#include "results/frmresult.h"
#include "tests/support/guitest.h"
#include "tests/support/recordingplatform.h"

#include <QAction>
#include <QCheckBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>

using namespace velmora;
using interp::Index;

namespace {

QLineEdit* resultBox(const char* name) {
    return frmresult::instance()->findChild<QLineEdit*>(name);
}
QPushButton* resultButton(const char* name) {
    return frmresult::instance()->findChild<QPushButton*>(name);
}

} // namespace

class TestSession : public QObject {
    Q_OBJECT

private:
    test::RecordingPlatform platform_;

private slots:
    void initTestCase() {
        // What the start procedure does before showing the main window.
        theOptions().equations.bllang = true;
        frmMain::instance()->show();
    }
    void cleanupTestCase() {
        frmMain::instance()->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void workedSample();
};

void TestSession::workedSample() {
    frmMain* m = frmMain::instance();

    // Options: every index reported (the Larson-Skold index brings the
    // chloride and sulphate boxes), no sweep.
    m->mnuoptionoptions_Click();
    frmOptions* o = frmOptions::instance();
    for (QCheckBox* c :
         {o->chkli, o->chkri, o->chkpor, o->chklr, o->chkdfi, o->chkai, o->chkme, o->chksl})
        c->setChecked(true);
    o->chkphsweep->setChecked(false);
    o->cmdOK->click();
    QVERIFY(theOptions().index.bllr);

    // Activity by the Debye-Huckel limiting law.
    m->mnusittingac_Click();
    frmactivity::instance()->optdebye->click();
    frmactivity::instance()->cmdOK->click();
    QVERIFY(theOptions().equations.bldebye);

    const std::pair<QLineEdit*, const char*> typed[] = {
        {m->txtt, "25"},    {m->txtph, "7.5"}, {m->txtalk, "200"}, {m->txtca, "80"},
        {m->txttds, "400"}, {m->txtcl, "50"},  {m->txtso4, "60"},
    };
    for (const auto& [box, text] : typed) {
        QVERIFY2(box->isEnabled(), qPrintable(box->objectName()));
        QTest::keyClicks(box, text);
    }
    // Magnesium plays no part under the Langelier equation: its box is off.
    QVERIFY(!m->txtmg->isEnabled());
    QVERIFY(platform_.messages.isEmpty());
    QCOMPARE(m->statusText(), QStringLiteral("Ready for Reading Data "));

    m->cmdread->click();
    QCOMPARE(m->statusText(), QStringLiteral("Ready for Analysis"));
    QVERIFY(m->cmdcalc->isEnabled());
    m->cmdcalc->click();
    QCOMPARE(m->statusText(), QStringLiteral("End of analysis "));
    QVERIFY(m->cmdshow->isEnabled());
    m->cmdshow->click();
    QVERIFY(platform_.messages.isEmpty());

    // The Results window.
    QVERIFY(frmresult::instance()->isVisible());
    QVERIFY(!m->cmdcalc->isEnabled());
    QVERIFY(!m->cmdread->isEnabled());
    QVERIFY(!m->mnusettingis->isEnabled());
    QVERIFY(!m->mnusittingac->isEnabled());

    const std::pair<const char*, const char*> values[] = {
        {"txtlan", "0.2406"},    {"txtryz", "7.0188"},   {"txtpor", "6.6078"},
        {"txtdfi", "7.7177E-1"}, {"txtme", "3.2734E-6"}, {"txtai", "1.2101E1"},
        {"txtsl", "3.687E-1"},   {"txtlr", "6.6866E-1"},
    };
    for (const auto& [box, text] : values)
        QCOMPARE(resultBox(box)->text(), QString(text));

    struct Expected {
        Index index;
        QColor colour;
        const char* caption;
        const char* firstLine;
    };
    const Expected expected[] = {
        {Index::Langelier, QColor(0, 255, 0), "Langelier index interpretation",
         "Description :   Near Balanced"},
        {Index::Ryznar, QColor(255, 128, 128), "Ryznar index interpretation",
         "Description :   Water is aggressive"},
        {Index::Puckorius, QColor(0, 255, 0), "Puckorius index interpretation",
         "Description :   Corrosion may occur"},
        {Index::DrivingForce, QColor(255, 255, 192), "Driving Force index interpretation",
         "Description :   Water is Undersaturated with Respect to caco3"},
        {Index::MomentaryExcess, QColor(192, 255, 192), "Momentary Excess index interpretation",
         "Description :  Water is Saturated with Respect to caco3 "},
        {Index::Aggressiveness, QColor(128, 255, 128), "Aggressiveness index interpretation",
         "Description :   No difficulties,water is not Aggressive(i.e.,Protective)"},
        {Index::SaturationLevel, QColor(255, 255, 192), "Carbonate saturation Level interpretation",
         "Description :   Water is Undersaturated with Respect to caco3"},
        {Index::LarsonSkold, QColor(255, 0, 0), "Larson-Scold index interpretation",
         "Description :   Chlorides and sulfates do not influence the "},
    };
    for (const Expected& e : expected) {
        QCOMPARE(frmresult::instance()->buttonColour(e.index), e.colour);
        m->cmdcalc->setEnabled(true); // an interpretation turns Calculate off again
        resultButton(interp::buttonName(e.index))->click();
        QVERIFY(!m->cmdcalc->isEnabled());
        frmenterper* w = frmenterper::instance();
        QVERIFY(w->isVisible());
        QCOMPARE(w->windowTitle(), QString(e.caption));
        QCOMPARE(w->backColour(), e.colour);
        QCOMPARE(w->text1()->toPlainText().section('\n', 0, 0), QString(e.firstLine));
        // The Langelier interpretation came first: everything after it is bold.
        QVERIFY(w->text1()->font().bold());
    }

    // More results: the equilibrium data of the Debye-Huckel calculation.
    resultButton("cmdmore")->click();
    frmmore* more = frmmore::instance();
    QVERIFY(more->isVisible());
    QCOMPARE(more->findChild<QLineEdit*>("txti")->text(), "1.000E-2");
    QCOMPARE(more->findChild<QLineEdit*>("txtphs")->text(), "7.2594E0");
    QCOMPARE(more->findChild<QLineEdit*>("txtct")->text(), "4.2104E-3");
    QCOMPARE(more->findChild<QLineEdit*>("txtlanmh")->text(), "0.89125");
    QCOMPARE(more->findChild<QLineEdit*>("txtlandh")->text(), "0.63096");
    QVERIFY(more->findChild<QGroupBox*>("fradebye")->isEnabled());
    QVERIFY(!more->findChild<QGroupBox*>("fradavies")->isEnabled());
    QVERIFY(more->findChild<QLineEdit*>("txtlanmd")->text().isEmpty());

    // Clear empties the Langelier and Ryznar values only.
    m->cmdclear->click();
    QVERIFY(resultBox("txtlan")->text().isEmpty());
    QVERIFY(resultBox("txtryz")->text().isEmpty());
    QCOMPARE(resultBox("txtpor")->text(), "6.6078");
}

VELMORA_GUI_TEST_MAIN(TestSession)
#include "tst_session.moc"
