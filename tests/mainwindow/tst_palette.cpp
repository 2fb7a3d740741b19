// The program on a dark desktop palette: every box and button whose back
// colour the program fixes also fixes its text colour, so light text never
// lands on the light input colours; system colours stay the desktop's.
#include "windowkit/formsupport.h"
#include "mainwindow/frmmain.h"
#include "results/frmenterper.h"
#include "results/frmresult.h"
#include "tests/support/darkpalette.h"
#include "tests/support/guitest.h"
#include "tests/support/programfixture.h"

#include <QAbstractButton>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QToolTip>

using namespace velmora;
using test::contrastRatio;

namespace {

QPalette::ColorRole backRole(const QWidget* w) {
    return qobject_cast<const QLineEdit*>(w) ? QPalette::Base : QPalette::Button;
}
QPalette::ColorRole textRole(const QWidget* w) {
    return qobject_cast<const QLineEdit*>(w) ? QPalette::Text : QPalette::ButtonText;
}

// The main window's boxes and buttons with a fixed (not system) back colour.
QList<QWidget*> fixedColourControls(frmMain* m) {
    QList<QWidget*> found;
    for (QWidget* w : m->findChildren<QWidget*>())
        if ((qobject_cast<QLineEdit*>(w) || qobject_cast<QAbstractButton*>(w)) &&
            !(backColor(w) & 0x80000000u))
            found << w;
    return found;
}

} // namespace

class PaletteTest : public test::ProgramTest {
    Q_OBJECT

private slots:
    void initTestCase() {
        QApplication::setPalette(test::darkPalette());
        QToolTip::setPalette(test::darkPalette());
    }

    void textColourOn() {
        const std::pair<QColor, QColor> cases[] = {
            {Qt::white, Qt::black}, {QColor(255, 0, 0), Qt::black}, {QColor(0, 0, 128), Qt::white}};
        for (const auto& [back, text] : cases) {
            QCOMPARE(velmora::textColourOn(back), text);
            // disabled text is dimmer, yet still apart from the back colour
            const double disabled = contrastRatio(disabledTextColourOn(back), back);
            QVERIFY(disabled < contrastRatio(text, back) && disabled >= 2.5);
        }
    }

    // Under each ionic strength equation (each colours the boxes its own
    // way), and with the accuracy button coloured by the test's verdict.
    void fixedColoursCarryReadableText_data() {
        QTest::addColumn<QString>("equation");
        QTest::addColumn<uint>("accuracy");
        QTest::newRow("Langelier") << "lang" << uint(vb::ButtonFace);
        QTest::newRow("Russell") << "rus" << uint(vb::ButtonFace);
        QTest::newRow("Lewis and Randall") << "lewis" << uint(vb::ButtonFace);
        QTest::newRow("analysis acceptable") << "lewis" << uint(vb::Green);
        QTest::newRow("analysis unacceptable") << "lewis" << uint(vb::Red);
    }
    void fixedColoursCarryReadableText() {
        QFETCH(QString, equation);
        QFETCH(uint, accuracy);
        chooseEquation(equation);
        if (!(accuracy & 0x80000000u)) setBackColor(m_->cmdaccuracy, accuracy);
        const QList<QWidget*> controls = fixedColourControls(m_);
        QVERIFY(controls.size() >= 10);
        for (QWidget* w : controls) {
            const QPalette& p = w->palette();
            const QColor back = p.color(backRole(w));
            for (QPalette::ColorGroup g : {QPalette::Active, QPalette::Inactive}) {
                const double ratio = contrastRatio(p.color(g, textRole(w)), back);
                QVERIFY2(ratio >= 4.5, qPrintable(w->objectName() + QString(" %1").arg(ratio)));
            }
            const double dim = contrastRatio(p.color(QPalette::Disabled, textRole(w)), back);
            QVERIFY2(dim >= 2.5, qPrintable(w->objectName() + QString(" disabled %1").arg(dim)));
        }
    }

    // The interpretation's blue text keeps a light back colour when the
    // desktop's tooltips are dark.
    void interpretationTextReads() {
        test::typeWorkedSample(m_);
        test::click(m_->cmdread);
        test::click(m_->cmdcalc);
        test::click(m_->cmdshow);
        test::click(frmresult::instance()->findChild<QPushButton*>("cmdri"));
        QVERIFY(frmenterper::isLoaded());
        const QPalette& p = frmenterper::instance()->text1()->palette();
        QVERIFY(contrastRatio(p.color(QPalette::Text), p.color(QPalette::Base)) >= 4.5);
    }
};

VELMORA_GUI_TEST_MAIN(PaletteTest)
#include "tst_palette.moc"
