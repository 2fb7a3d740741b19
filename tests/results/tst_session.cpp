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

QString resultText(const char* name) {
    return test::control<QLineEdit>(frmresult::instance(), name)->text();
}
QString moreText(const char* name) {
    return test::control<QLineEdit>(frmmore::instance(), name)->text();
}

} // namespace

class TestSession : public test::ProgramTest {
    Q_OBJECT

private slots:
    void workedSample() {
        frmOptions* o = openOptions();
        applyOptions(
            {o->chkli, o->chkri, o->chkpor, o->chklr, o->chkdfi, o->chkai, o->chkme, o->chksl});
        test::trigger(m_->mnusittingac);
        test::click(frmactivity::instance()->optdebye);
        test::click(frmactivity::instance()->cmdOK);
        test::typeWorkedSample(m_);
        test::click(m_->cmdread);
        test::click(m_->cmdcalc);
        test::click(m_->cmdshow);
        QVERIFY(rec_->messages.isEmpty());
        QVERIFY(frmresult::instance()->isVisible());
        const std::pair<const char*, const char*> values[] = {
            {"txtlan", "0.2406"},    {"txtryz", "7.0188"},   {"txtpor", "6.6078"},
            {"txtdfi", "7.7177E-1"}, {"txtme", "3.2734E-6"}, {"txtai", "1.2101E1"},
            {"txtsl", "3.687E-1"},   {"txtlr", "6.6866E-1"},
        };
        for (const auto& [box, text] : values)
            QCOMPARE(resultText(box), QString(text));
        for (Index i : interp::allIndices()) {
            m_->cmdcalc->setEnabled(true); // an interpretation turns Calculate off again
            test::click(test::interpretationButton(i));
            QVERIFY(!m_->cmdcalc->isEnabled());
            QCOMPARE(frmenterper::instance()->backColour(), frmresult::instance()->buttonColour(i));
        }
        test::click(test::control<QPushButton>(frmresult::instance(), "cmdmore"));
        QVERIFY(frmmore::instance()->isVisible());
        QCOMPARE(moreText("txtphs"), "7.2594E0");
        QCOMPARE(moreText("txtlanmh"), "0.89125");
        QVERIFY(moreText("txtlanmd").isEmpty());
    }

    // Under a locale with a decimal comma the user types and reads commas.
    void decimalCommaLocale() {
        setDecimalSeparator(QLatin1Char(','));
        struct Restore {
            ~Restore() { setDecimalSeparator(QChar()); }
        } restore;
        applyOptions({openOptions()->chkli}, QStringLiteral("6,5"), QStringLiteral("0,5"), "5");
        QVERIFY(rec_->messages.isEmpty());
        QCOMPARE(theOptions().sweep.entry[1], 7.0);
        test::typeInto(m_->txtph, QStringLiteral("7.5")); // a point is rejected
        QCOMPARE(rec_->messages.size(), 1);
        type({"txtt=25", "txtph=7,5", "txtalk=200", "txtca=80", "txttds=400"});
        test::click(m_->cmdread);
        test::click(m_->cmdcalc);
        QCOMPARE(theEngine().sw.ph(0), 7.5);
        test::click(m_->cmdshow);
        QCOMPARE(resultText("txtlan"), "0,2406");
        QCOMPARE(resultText("txtdfi"), "7,7177E-1");
        test::click(test::control<QPushButton>(frmresult::instance(), "cmdmore"));
        QCOMPARE(moreText("txtlanmh"), "0,89125");
    }
};

VELMORA_GUI_TEST_MAIN(TestSession)
#include "tst_session.moc"
