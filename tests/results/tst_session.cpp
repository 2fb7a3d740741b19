// A whole session: the worked sample typed into the main window, read,
// calculated and shown, down to the interpretations and the equilibrium data.
#include "mainwindow/frmmain.h"
#include "options/frmactivity.h"
#include "options/frmoptions.h"
#include "options/optionstate.h"
#include "tests/results/resultstest.h"
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
    return test::control<QLineEdit>(frmresult::instance(), name);
}

} // namespace

// The program as it starts (the Langelier equation preset), on a recording
// platform.
class TestSession : public test::ProgramTest {
    Q_OBJECT

private slots:
    void workedSample();
    void larsonSkoldNotChosen();
    void decimalCommaLocale();
};

void TestSession::workedSample() {
    frmMain* m = m_;

    // Options: every index reported (the Larson-Skold index brings the
    // chloride and sulphate boxes), no sweep.
    frmOptions* o = openOptions();
    applyOptions(
        {o->chkli, o->chkri, o->chkpor, o->chklr, o->chkdfi, o->chkai, o->chkme, o->chksl});
    QVERIFY(theOptions().index.bllr);

    // Activity by the Debye-Huckel limiting law.
    test::trigger(m->mnusittingac);
    test::click(frmactivity::instance()->optdebye);
    test::click(frmactivity::instance()->cmdOK);
    QVERIFY(theOptions().equations.bldebye);

    test::typeWorkedSample(m);
    for (QLineEdit* box : {m->txtt, m->txtph, m->txtalk, m->txtca, m->txttds, m->txtcl, m->txtso4})
        QVERIFY2(!box->text().isEmpty(), qPrintable(box->objectName()));
    // Magnesium plays no part under the Langelier equation: its box is off.
    QVERIFY(!m->txtmg->isEnabled());
    QVERIFY(rec_->messages.isEmpty());
    QCOMPARE(m->statusText(), QStringLiteral("Ready for Reading Data "));

    test::click(m->cmdread);
    QCOMPARE(m->statusText(), QStringLiteral("Ready for Analysis"));
    QVERIFY(m->cmdcalc->isEnabled());
    test::click(m->cmdcalc);
    QCOMPARE(m->statusText(), QStringLiteral("End of analysis "));
    QVERIFY(m->cmdshow->isEnabled());
    test::click(m->cmdshow);
    QVERIFY(rec_->messages.isEmpty());

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
        const char* firstLine;
    };
    const Expected expected[] = {
        {Index::Langelier, QColor(0, 255, 0), "Description :   Near Balanced"},
        {Index::Ryznar, QColor(255, 128, 128), "Description :   Water is aggressive"},
        {Index::Puckorius, QColor(0, 255, 0), "Description :   Corrosion may occur"},
        {Index::DrivingForce, QColor(255, 255, 192),
         "Description :   Water is Undersaturated with Respect to caco3"},
        {Index::MomentaryExcess, QColor(192, 255, 192),
         "Description :  Water is Saturated with Respect to caco3 "},
        {Index::Aggressiveness, QColor(128, 255, 128),
         "Description :   No difficulties,water is not Aggressive(i.e.,Protective)"},
        {Index::SaturationLevel, QColor(255, 255, 192),
         "Description :   Water is Undersaturated with Respect to caco3"},
        {Index::LarsonSkold, QColor(255, 0, 0),
         "Description :   Chlorides and sulfates do not influence the "},
    };
    for (const Expected& e : expected) {
        QCOMPARE(frmresult::instance()->buttonColour(e.index), e.colour);
        m->cmdcalc->setEnabled(true); // an interpretation turns Calculate off again
        test::click(test::interpretationButton(e.index));
        QVERIFY(!m->cmdcalc->isEnabled());
        frmenterper* w = frmenterper::instance();
        QVERIFY(w->isVisible());
        QCOMPARE(w->windowTitle(), QString(interp::windowCaption(e.index)));
        QCOMPARE(w->backColour(), e.colour);
        QCOMPARE(w->text1()->toPlainText().section('\n', 0, 0), QString(e.firstLine));
        // The Langelier interpretation came first: everything after it is bold.
        QVERIFY(w->text1()->font().bold());
    }

    // More results: the equilibrium data of the Debye-Huckel calculation.
    test::click(test::control<QPushButton>(frmresult::instance(), "cmdmore"));
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
    test::click(m->cmdclear);
    QVERIFY(resultBox("txtlan")->text().isEmpty());
    QVERIFY(resultBox("txtryz")->text().isEmpty());
    QCOMPARE(resultBox("txtpor")->text(), "6.6078");
}

// Without the Larson-Skold index, Show results empties its display; the next
// calculation without a sweep publishes it again.
void TestSession::larsonSkoldNotChosen() {
    frmMain* m = m_;
    frmOptions* o = openOptions();
    applyOptions({o->chkli, o->chkri});
    QVERIFY(!theOptions().index.bllr);

    test::typeWorkedSample(m);
    test::click(m->cmdread);
    test::click(m->cmdcalc);
    // Calculate published everything, Larson-Skold included (chloride and
    // sulphate are not read without it, so the index is 0)
    QCOMPARE(theEngine().sw.lr(0), 0.0);
    QCOMPARE(resultBox("txtlr")->text(), "0.000E0");
    QVERIFY(!frmresult::instance()->isVisible());

    test::click(m->cmdshow);
    frmresult* r = frmresult::instance();
    QVERIFY(r->isVisible());
    QVERIFY(resultBox("txtlr")->text().isEmpty());
    QVERIFY(!resultBox("txtlr")->isEnabled());
    QVERIFY(!test::control<QWidget>(r, "lbllr")->isEnabled());
    QVERIFY(!test::interpretationButton(Index::LarsonSkold)->isEnabled());
    QCOMPARE(resultBox("txtlan")->text(), "0.2406");

    // a valid edit, Read Data and Calculate again: the display comes back
    test::retype(m->txtph, QStringLiteral("7.5"));
    test::click(m->cmdread);
    test::click(m->cmdcalc);
    QCOMPARE(m->statusText(), QStringLiteral("End of analysis "));
    QCOMPARE(resultBox("txtlr")->text(), "0.000E0");
    QVERIFY(resultBox("txtlr")->isEnabled());
    QVERIFY(test::interpretationButton(Index::LarsonSkold)->isEnabled());
}

// Under a locale with a decimal comma the user types and reads commas.
void TestSession::decimalCommaLocale() {
    setDecimalSeparator(QLatin1Char(','));
    struct Restore {
        ~Restore() { setDecimalSeparator(QChar()); }
    } restore;
    frmMain* m = m_;
    frmOptions* o = openOptions();
    applyOptions({o->chkli}, QStringLiteral("6,5"), QStringLiteral("0,5"), QStringLiteral("5"));
    QVERIFY(rec_->messages.isEmpty());
    QCOMPARE(theOptions().sweep.entry[1], 7.0);

    // a point is no decimal separator here: "7." is rejected at its keystroke
    test::typeInto(m->txtph, QStringLiteral("7.5"));
    QCOMPARE(rec_->texts(), QStringList{"You must enter a number!"});
    QCOMPARE(m->txtph->text(), QStringLiteral("5"));
    rec_->clear();
    type({"txtt=25", "txtph=7,5", "txtalk=200", "txtca=80", "txttds=400"});
    QVERIFY(rec_->messages.isEmpty());
    test::click(m->cmdread);
    test::click(m->cmdcalc);
    QCOMPARE(m->statusText(), QStringLiteral("End of analysis "));
    QCOMPARE(theEngine().sw.ph(0), 7.5);
    QCOMPARE(theEngine().sw.ph(5), 8.5);
    test::click(m->cmdshow);
    QCOMPARE(resultBox("txtlan")->text(), "0,2406");
    QCOMPARE(resultBox("txtdfi")->text(), "7,7177E-1");
    test::click(test::control<QPushButton>(frmresult::instance(), "cmdmore"));
    QCOMPARE(frmmore::instance()->findChild<QLineEdit*>("txtlanmh")->text(), "0,89125");
}

VELMORA_GUI_TEST_MAIN(TestSession)
#include "tst_session.moc"
