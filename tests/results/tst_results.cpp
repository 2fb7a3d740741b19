// The results windows and whole sessions through the main window: the worked
// sample down to the interpretations and the equilibrium data, the windows'
// placements, the interpretation of each index at every boundary of its
// table, and the sample properties dialog with the main window's boxes.
#include "mainwindow/frmmain.h"
#include "mainwindow/frmproperties.h"
#include "options/frmactivity.h"
#include "options/frmoptions.h"
#include "options/optionstate.h"
#include "results/frmenterper.h"
#include "results/frmmore.h"
#include "results/frmresult.h"
#include "results/frmsymbols.h"
#include "results/results.h"
#include "tests/support/programfixture.h"
#include "tests/support/recordingplatform.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>

#include <cmath>

using namespace velmora;
using interp::Index;

namespace {

template <class T = QLineEdit> T* control(QWidget* window, const char* name) {
    return window->findChild<T*>(QLatin1String(name));
}
QString resultText(const char* name) {
    return control(frmresult::instance(), name)->text();
}
QString moreText(const char* name) {
    return control(frmmore::instance(), name)->text();
}
QPushButton* button(QWidget* window, const char* name) {
    return control<QPushButton>(window, name);
}
QPushButton* interpretationButton(Index index) {
    return button(frmresult::instance(), interp::buttonName(index));
}
// The value of an index at the measured pH.
double& measured(Index index) {
    return (theEngine().sw.*interp::indexArray(index))(0);
}
void publishAndShow() {
    publishResultsWindows(theEngine(), theOptions());
    showResultsWindow(theEngine(), theOptions());
}
QColor colourOf(const interp::Row* row) {
    return row ? QColor(row->colour.r, row->colour.g, row->colour.b) : QColor();
}
// A value well inside a row's range.
double inside(const interp::Range& r) {
    if (r.low.value && r.high.value) return (*r.low.value + *r.high.value) / 2;
    return r.low.value ? *r.low.value + 1 : r.high.value ? *r.high.value - 1 : 0;
}

// File > Properties, the given boxes retyped, then the button.
void enterProperties(const std::vector<std::pair<const char*, const char*>>& texts,
                     const char* pressed = "cmdOK") {
    test::trigger(frmMain::instance()->mnuFileProperties);
    for (const auto& [box, text] : texts)
        test::retype(control(frmproperties::instance(), box), QString::fromUtf8(text));
    test::click(button(frmproperties::instance(), pressed));
}
QString mainText(const char* name) {
    return control(frmMain::instance(), name)->text();
}

} // namespace

class TestResults : public test::ProgramTest {
    Q_OBJECT

    void everyIndexWithActivity(QRadioButton* frmactivity::*equation) {
        frmOptions* o = openOptions();
        applyOptions(
            {o->chkli, o->chkri, o->chkpor, o->chklr, o->chkdfi, o->chkai, o->chkme, o->chksl});
        test::trigger(m_->mnusittingac);
        test::click(frmactivity::instance()->*equation);
        test::click(frmactivity::instance()->cmdOK);
    }

private slots:
    void workedSample() {
        everyIndexWithActivity(&frmactivity::optdebye);
        test::typeWorkedSample(m_);
        test::click(m_->cmdread);
        test::click(m_->cmdcalc);
        test::click(m_->cmdshow);
        QVERIFY(rec_->messages.isEmpty() && frmresult::instance()->isVisible());
        const std::pair<const char*, const char*> values[] = {
            {"txtlan", "0.2406"},    {"txtryz", "7.0188"},   {"txtpor", "6.6078"},
            {"txtdfi", "7.7177E-1"}, {"txtme", "3.2734E-6"}, {"txtai", "1.2101E1"},
            {"txtsl", "3.687E-1"},   {"txtlr", "6.6866E-1"}};
        for (const auto& [box, text] : values)
            QCOMPARE(resultText(box), QString(text));
        for (Index i : interp::allIndices()) {
            m_->cmdcalc->setEnabled(true); // an interpretation turns Calculate off again
            test::click(interpretationButton(i));
            QVERIFY(!m_->cmdcalc->isEnabled());
            QCOMPARE(frmenterper::instance()->backColour(), frmresult::instance()->buttonColour(i));
        }
        test::click(button(frmresult::instance(), "cmdmore"));
        QVERIFY(frmmore::instance()->isVisible());
        QCOMPARE(moreText("txtphs"), "7.2594E0");
        QCOMPARE(moreText("txtlanmh"), "0.89125");
        QVERIFY(moreText("txtlanmd").isEmpty());
    }

    void debyeThenDaviesKeepsBoth() {
        for (bool davies : {false, true}) {
            theOptions().equations.bldebye = !davies;
            theOptions().equations.bldavies = davies;
            theEngine().rec.lanm = davies ? 0.92 : 0.91;
            publishResultsWindows(theEngine(), theOptions());
        }
        QCOMPARE(moreText("txtlanmh"), "0.91");
        QCOMPARE(moreText("txtlanmd"), "0.92");
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
        test::click(button(frmresult::instance(), "cmdmore"));
        QCOMPARE(moreText("txtlanmh"), "0,89125");
    }

    // On an 800 x 600 screen the windows go to their places, fully on the
    // screen, at every showing; on other screens they stay where they are.
    void placement() {
        for (QSize screen : {QSize(800, 600), QSize(800, 601)}) {
            const bool small = screen == QSize(800, 600);
            rec_->screen = screen;
            const QList<QWidget*> windows = {frmresult::instance(), frmmore::instance(),
                                             frmsymbols::instance()};
            for (QWidget* w : windows)
                w->move(40, 50);
            publishAndShow();
            button(frmresult::instance(), "cmdmore")->click();
            button(frmmore::instance(), "cmddiscript")->click();
            for (QWidget* w : windows) {
                QCOMPARE(w->pos() == QPoint(40, 50), !small);
                QVERIFY(!small || QRect(0, 0, 800, 600).contains(w->frameGeometry()));
                w->close();
            }
            test::flushDeletions();
        }
    }

    // At each boundary: the colours just below, at and just above it, and
    // whether the boundary belongs to the row below it.
    void boundaries() {
        const QColor red(255, 0, 0), salmon(255, 128, 128), orange(255, 128, 0),
            lightOrange(255, 192, 128), yellow(255, 255, 0), paleYellow(255, 255, 192),
            green(0, 255, 0), lightGreen(128, 255, 128), paleGreen(192, 255, 192);
        const struct {
            Index index;
            double bound;
            QColor below, at, above;
            bool closedBelow;
        } rows[] = {
            {Index::Langelier, -5, red, red, red, true},
            {Index::Langelier, -4, red, red, red, true},
            {Index::Langelier, -3, red, red, orange, true},
            {Index::Langelier, -2, orange, orange, lightOrange, true},
            {Index::Langelier, -1, lightOrange, lightOrange, yellow, true},
            {Index::Langelier, -0.5, yellow, yellow, green, true},
            {Index::Langelier, 0, green, green, green, false},
            {Index::Langelier, 0.5, green, yellow, yellow, false},
            {Index::Langelier, 1, yellow, lightOrange, lightOrange, false},
            {Index::Langelier, 2, lightOrange, orange, orange, false},
            {Index::Langelier, 3, orange, red, red, false},
            {Index::Langelier, 4, red, red, red, false},
            {Index::Ryznar, 5.5, red, salmon, salmon, false},
            {Index::Ryznar, 6.2, salmon, green, green, false},
            {Index::Ryznar, 6.8, green, salmon, salmon, false},
            {Index::Ryznar, 8.5, salmon, red, red, false},
            {Index::Puckorius, 5.9, red, salmon, salmon, false},
            {Index::Puckorius, 6.1, salmon, green, green, false},
            {Index::Aggressiveness, 10, red, lightOrange, lightOrange, false},
            {Index::Aggressiveness, 12, lightOrange, lightOrange, lightGreen, true},
            {Index::DrivingForce, 0.98, paleYellow, paleYellow, paleGreen, true},
            {Index::DrivingForce, 1.02, paleGreen, paleYellow, paleYellow, false},
            {Index::SaturationLevel, 0.98, paleYellow, paleYellow, paleGreen, true},
            {Index::SaturationLevel, 1.02, paleGreen, paleYellow, paleYellow, false},
            {Index::MomentaryExcess, -0.0001, paleYellow, paleGreen, paleGreen, false},
            {Index::MomentaryExcess, 0.0001, paleGreen, paleGreen, paleYellow, true},
            {Index::LarsonSkold, 0.8, red, salmon, salmon, false},
            // 1.2 lies between "0.8 <= LR < 1.2" and "LR > 1.2": the upper band
            {Index::LarsonSkold, 1.2, salmon, red, red, false},
        };
        for (const auto& r : rows) {
            const interp::Row* row = interp::rowFor(r.index, r.bound);
            const interp::Row* under = interp::rowFor(r.index, std::nextafter(r.bound, -INFINITY));
            const interp::Row* over = interp::rowFor(r.index, std::nextafter(r.bound, INFINITY));
            const QByteArray where = interp::buttonName(r.index) + QByteArray::number(r.bound);
            QVERIFY2(colourOf(under) == r.below && colourOf(row) == r.at &&
                         colourOf(over) == r.above,
                     where);
            QVERIFY2((row == under) == r.closedBelow && (row == over) == !r.closedBelow, where);
        }
        QVERIFY(!interp::matchingRow(Index::LarsonSkold, 1.2));
    }

    // The window and the button show the row of the measured value; every
    // row's text reads whole without scrolling, in regular and bold type.
    void everyRowInTheWindowAndOnTheButton() {
        theOptions().index = IndexFlags{true, true, true, true, true, true, true, true};
        publishAndShow();
        for (bool bold : {false, true}) {
            if (bold) interpretationButton(Index::Langelier)->click();
            for (Index index : interp::allIndices())
                for (const interp::Row& row : interp::table(index)) {
                    measured(index) = inside(row.range);
                    publishAndShow();
                    QCOMPARE(frmresult::instance()->buttonColour(index), colourOf(&row));
                    interpretationButton(index)->click();
                    frmenterper* w = frmenterper::instance();
                    QCOMPARE(w->windowTitle(), QString::fromLatin1(interp::windowCaption(index)));
                    QCOMPARE(w->backColour(), colourOf(&row));
                    QCOMPARE(frmresult::instance()->interpretationText(),
                             QString::fromStdString(row.text()));
                    QCOMPARE(w->text1()->toPlainText(),
                             QString::fromStdString(row.text()).replace("\r\n", "\n"));
                    QCoreApplication::processEvents();
                    QVERIFY2(w->text1()->verticalScrollBar()->maximum() == 0,
                             qPrintable(QString::fromStdString(row.range.text())));
                }
        }
        const QImage painted = interpretationButton(Index::SaturationLevel)->grab().toImage();
        QCOMPARE(painted.pixelColor(5, painted.height() / 2),
                 colourOf(&interp::table(Index::SaturationLevel).back()));
    }

    void noColourForValuesOutsideEveryRow() {
        // a value that is not a number has no explanation: the window says
        // nothing (not another index's text) and the button keeps its colour
        measured(Index::Ryznar) = 7.1;
        measured(Index::Puckorius) = 5;
        publishAndShow();
        interpretationButton(Index::Ryznar)->click();
        measured(Index::Puckorius) = std::nan("");
        showResultsWindow(theEngine(), theOptions());
        QCOMPARE(frmresult::instance()->buttonColour(Index::Puckorius), QColor(255, 0, 0));
        interpretationButton(Index::Puckorius)->click();
        QVERIFY(frmenterper::instance()->text1()->toPlainText().isEmpty());
    }

    // ---------------------------------------------------------------- sample properties
    void propertiesShownOnTheMainWindow() {
        enterProperties({{"txtfamily", "Lovelace"}}); // the family name alone is not shown
        QVERIFY(mainText("txtnam").isEmpty() && !m_->frasample->isEnabled());
        enterProperties({{"txtname", "Ada"},
                         {"txtfamily", ""},
                         {"txtorgan", "Water Board"},
                         {"txtdate", "yesterday?"},
                         {"txtlocation", "Well 7"}});
        QVERIFY(m_->frasample->isEnabled() && m_->txtloc->font().bold());
        const std::pair<const char*, const char*> shown[] = {{"txtnam", "Ada "},
                                                             {"txtorg", "Water Board"},
                                                             {"txtdat", "yesterday?"},
                                                             {"txtloc", "Well 7"}};
        for (const auto& [box, text] : shown)
            QVERIFY2(mainText(box).endsWith(QLatin1String(":") + text), qPrintable(mainText(box)));
        enterProperties({{"txtname", ""}, {"txtfamily", "Lovelace"}});
        QVERIFY(mainText("txtnam").endsWith(":Ada ")); // an empty box keeps the earlier text
        enterProperties({{"txtname", "Ada"}});
        QVERIFY(mainText("txtnam").endsWith(":Ada Lovelace"));
        // New empties the main window's boxes; the dialog keeps its entries
        test::trigger(m_->mnuFileNew);
        QVERIFY(mainText("txtnam").isEmpty() && !m_->frasample->isEnabled());
        test::trigger(m_->mnuFileProperties);
        QCOMPARE(control(frmproperties::instance(), "txtorgan")->text(), "Water Board");
    }

    // As in any dialog: Enter presses the focused button, else the default
    // one (OK); Escape cancels wherever the focus is.
    void propertiesKeys() {
        const struct {
            const char* focus;
            Qt::Key key;
            bool accepted;
        } cases[] = {{"txtname", Qt::Key_Return, true},   {"txtlocation", Qt::Key_Enter, true},
                     {"cmdOK", Qt::Key_Return, true},     {"cmdCancel", Qt::Key_Return, false},
                     {"txtorgan", Qt::Key_Escape, false}, {"cmdOK", Qt::Key_Escape, false}};
        for (const auto& c : cases) {
            const QString name = c.focus + QString::number(c.key);
            test::trigger(m_->mnuFileProperties);
            test::retype(control(frmproperties::instance(), "txtname"), name);
            QWidget* target = control<QWidget>(frmproperties::instance(), c.focus);
            target->setFocus();
            QTest::keyClick(target, c.key,
                            c.key == Qt::Key_Enter ? Qt::KeypadModifier : Qt::NoModifier);
            QCOMPARE(frmproperties::isLoaded(), c.accepted); // OK hides, Cancel unloads
            QCOMPARE(mainText("txtnam").contains(name), c.accepted);
            test::flushDeletions();
        }
    }
};

VELMORA_GUI_TEST_MAIN(TestResults)
#include "tst_results.moc"
