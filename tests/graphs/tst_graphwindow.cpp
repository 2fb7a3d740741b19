// The graph window driven through its controls, offscreen, handler by
// handler: what each list choice and button draws from the sweep arrays.
#include "engine/engine.h"
#include "graphs/frmgraphresult.h"
#include "mainwindow/frmmain.h"
#include "numtext/numtext.h"
#include "options/frmoptions.h"
#include "options/optionstate.h"
#include "tests/support/guitest.h"
#include "tests/support/programfixture.h"
#include "tests/support/recordingplatform.h"

#include <QAbstractButton>
#include <QAction>
#include <QBarSeries>
#include <QBarSet>
#include <QCategoryAxis>
#include <QChart>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QLineSeries>
#include <QPushButton>
#include <QValueAxis>

#include <cmath>

using namespace velmora;

namespace {

constexpr double kMeasured = 99.0; // element 0 holds this: it must never be drawn

// A sweep of `steps` points with distinct values in every array the window
// reads (element i of each array differs from every other).
void fakeSweep(double steps, int filled = 140) {
    SweepArrays& sw = theEngine().sw;
    sw.phsteps = steps;
    PointArray* arrays[] = {&sw.li, &sw.ri, &sw.por,   &sw.dfi,  &sw.me, &sw.ai,
                            &sw.lr, &sw.sl, &sw.h2co3, &sw.hco3, &sw.co3};
    for (int i = 0; i <= filled; ++i) {
        sw.ph(i) = i == 0 ? kMeasured : 5.0 + 0.25 * i;
        int k = 0;
        for (PointArray* a : arrays) {
            ++k;
            (*a)(i) = i == 0 ? kMeasured : std::sin(i * 0.7 + k) * std::pow(10.0, -k % 4);
        }
    }
}

void choose(QComboBox* list, int position) {
    list->setCurrentIndex(position);
    emit list->activated(position);
}

// The drawn series as (name, values) whatever their kind.
struct Drawn {
    QString name;
    QList<double> values;
    QString kind; // "column", "line" or "markers"
};

QList<Drawn> drawnSeries(frmgraphresult* g) {
    QList<Drawn> out;
    for (QAbstractSeries* s : g->ChartSpace1->chart()->series()) {
        if (auto* line = qobject_cast<QLineSeries*>(s)) {
            Drawn d{line->name(), {}, line->pointsVisible() ? "markers" : "line"};
            for (const QPointF& p : line->points())
                d.values.append(p.y());
            out.append(d);
        } else if (auto* bars = qobject_cast<QBarSeries*>(s)) {
            for (QBarSet* set : bars->barSets()) {
                Drawn d{set->label(), {}, "column"};
                for (int i = 0; i < set->count(); ++i)
                    d.values.append(set->at(i));
                out.append(d);
            }
        }
    }
    return out;
}

QStringList categoryLabels(frmgraphresult* g) {
    const auto axes = g->ChartSpace1->chart()->axes(Qt::Horizontal);
    auto* x = axes.isEmpty() ? nullptr : qobject_cast<QCategoryAxis*>(axes.first());
    return x ? x->categoriesLabels() : QStringList();
}

QList<double> engineValues(const PointArray& a, int n) {
    QList<double> v;
    for (int i = 1; i <= n; ++i)
        v.append(a(i));
    return v;
}

// What the user sees of the controls: caption, list text, enabled flag,
// hidden flag and check state of each, by name (no caption of a hidden one).
QStringList controlState(frmgraphresult* g) {
    QStringList out;
    for (QWidget* w : g->findChildren<QWidget*>()) {
        if (w->objectName().isEmpty() || w->objectName().startsWith("qt_")) continue;
        QString text;
        if (w->isHidden()) {
            out.append(w->objectName() + " hidden " + (enabledFlag(w) ? "on" : "off"));
            continue;
        }
        if (auto* b = qobject_cast<QAbstractButton*>(w))
            text = b->text() + (b->isChecked() ? "[x]" : "[ ]");
        else if (auto* c = qobject_cast<QComboBox*>(w))
            text = c->currentText();
        else if (auto* l = qobject_cast<QLabel*>(w))
            text = l->text();
        out.append(QStringLiteral("%1 %2 %3 %4")
                       .arg(w->objectName(), text, enabledFlag(w) ? "on" : "off",
                            w->isHidden() ? "hidden" : "shown"));
    }
    return out;
}

} // namespace

class TestGraphWindow : public test::ProgramTest {
    Q_OBJECT

    frmgraphresult* open() {
        frmgraphresult* g = frmgraphresult::instance();
        g->show();
        return g;
    }
    // "pH" chosen, then "Add indices" and the index at `position`.
    frmgraphresult* indexChart(int position) {
        frmgraphresult* g = open();
        choose(g->Cmbx, 0);
        test::click(g->cmdaddin);
        choose(g->Cmbin, position);
        return g;
    }

private slots:
    void toolbarOpensTheWindowFromACalculatedSweep();
    void toolbarPlacement_data();
    void toolbarPlacement();
    void designStateAndRemove();
    void onlySweepPointsOneToN_data();
    void onlySweepPointsOneToN();
    void indexSeriesFollowsTheList();
    void indexThenSpeciesLeavesOnlyTheSpecies();
    void addIndicesGuard();
    void noCategoryChosen();
    void equalPhValuesKeepTheirCategories();
    void larsonSkoldMessage_data();
    void larsonSkoldMessage();
    void chartTypes_data();
    void chartTypes();
    void dataLabelTexts_data();
    void dataLabelTexts();
    void removeDataLabels();
};

void TestGraphWindow::toolbarOpensTheWindowFromACalculatedSweep() {
    frmOptions* o = openOptions();
    applyOptions({o->chkli, o->chklr}, "6.5", "0.5", "5");
    test::typeWorkedSample(m_);
    test::click(m_->cmdread);
    test::click(m_->cmdcalc);
    QAction* graph = m_->toolbarButton(9);
    QVERIFY(graph->isEnabled());
    test::trigger(graph);
    QVERIFY(frmgraphresult::isLoaded());
    frmgraphresult* g = frmgraphresult::instance();
    QVERIFY(g->isVisible());
    QCOMPARE(g->windowTitle(), QStringLiteral("Graphic results"));

    choose(g->Cmbx, 0);
    test::click(g->cmdaddin);
    choose(g->Cmbin, 0);
    const SweepArrays& sw = theEngine().sw;
    const QList<Drawn> drawn = drawnSeries(g);
    QCOMPARE(drawn.size(), 1);
    QCOMPARE(drawn[0].values, engineValues(sw.li, 5));
    QCOMPARE(categoryLabels(g), (QStringList{"6.5", "7", "7.5", "8", "8.5"}));

    // The same window on the next click; a closed one comes back fresh.
    test::trigger(graph);
    QCOMPARE(frmgraphresult::instance(), g);
    g->close();
    test::flushDeletions();
    test::trigger(graph);
    QVERIFY(drawnSeries(frmgraphresult::instance()).isEmpty());
    QCOMPARE(frmgraphresult::instance()->Cmbx->currentIndex(), -1);
}

void TestGraphWindow::toolbarPlacement_data() {
    QTest::addColumn<bool>("small");
    QTest::newRow("800 x 600: placed") << true;
    QTest::newRow("1024 x 768: as designed") << false;
}

void TestGraphWindow::toolbarPlacement() {
    QFETCH(bool, small);
    if (small) rec_->useSmallScreen();
    const QPoint designed = frmgraphresult::instance()->pos();
    frmgraphresult::instance()->close();
    test::flushDeletions();
    m_->tbToolBar_ButtonClick(m_->toolbarButton(9));
    frmgraphresult* g = frmgraphresult::instance();
    QVERIFY(g->isVisible());
    if (small) {
        QCOMPARE(twipsGeometry(g).topLeft(), QPoint(750, 1005));
    } else {
        QCOMPARE(g->pos(), designed);
    }
}

void TestGraphWindow::designStateAndRemove() {
    fakeSweep(5);
    frmgraphresult* g = open();
    QCOMPARE(g->indexguard, 1);
    QVERIFY(drawnSeries(g).isEmpty());
    QCOMPARE(g->ChartSpace1->state().plotFill, std::optional<QColor>(QColor(255, 255, 192)));
    QVERIFY(g->cmdremove->isHidden());
    QVERIFY(g->chkdatalabel->isHidden());
    QVERIFY(g->lblnote->isHidden() && g->lblno->isHidden());
    QVERIFY(!enabledFlag(g->fraseri) && !enabledFlag(g->Cmbin) && !enabledFlag(g->cmbspecies));
    choose(g->Cmbx, 0);
    const QStringList design = controlState(g);

    for (QPushButton* add : {g->cmdaddin, g->cmdaddsp}) {
        test::click(add);
        QVERIFY(!g->cmdremove->isHidden());
        if (add == g->cmdaddin) {
            QCOMPARE(g->cmdremove->text(), QStringLiteral("Remove index "));
            QVERIFY(!g->cmdaddsp->isEnabled());
            choose(g->Cmbin, 2);
            QVERIFY(!g->chkdatalabel->isHidden() && !g->lblnote->isHidden());
            test::click(g->chkdatalabel);
        } else {
            QCOMPARE(g->cmdremove->text(), QStringLiteral("Remove Specie "));
            QVERIFY(!g->cmdaddin->isEnabled() && !enabledFlag(g->Cmbin));
            choose(g->cmbspecies, 0);
        }
        QVERIFY(!drawnSeries(g).isEmpty());
        test::click(g->cmdremove);
        QCOMPARE(controlState(g), design);
        QVERIFY(drawnSeries(g).isEmpty());
        QCOMPARE(g->indexguard, 1);
        QVERIFY(g->ChartSpace1->chart()->title().isEmpty());
    }
}

void TestGraphWindow::onlySweepPointsOneToN_data() {
    QTest::addColumn<double>("steps");
    QTest::addColumn<int>("n");
    QTest::newRow("one step") << 1.0 << 1;
    QTest::newRow("2.5 rounds to even 2") << 2.5 << 2;
    QTest::newRow("3.5 rounds to even 4") << 3.5 << 4;
    QTest::newRow("140 steps") << 140.0 << 140;
}

void TestGraphWindow::onlySweepPointsOneToN() {
    QFETCH(double, steps);
    QFETCH(int, n);
    fakeSweep(steps);
    frmgraphresult* g = indexChart(0);
    const QList<Drawn> drawn = drawnSeries(g);
    QCOMPARE(drawn.size(), 1);
    QCOMPARE(drawn[0].values, engineValues(theEngine().sw.li, n));
    QVERIFY(!drawn[0].values.contains(kMeasured));
    // the first category is the first sweep pH, never the measured one
    const auto axes = g->ChartSpace1->chart()->axes(Qt::Horizontal);
    auto* x = qobject_cast<QCategoryAxis*>(axes.first());
    QCOMPARE(x->categoriesLabels().first(),
             QString::fromStdString(fmt::numberText(theEngine().sw.ph(1))));
    QCOMPARE(x->min(), -0.5);
    QCOMPARE(x->max(), n - 0.5);
}

void TestGraphWindow::indexSeriesFollowsTheList() {
    fakeSweep(6);
    const SweepArrays& sw = theEngine().sw;
    const PointArray* data[] = {&sw.li, &sw.ri, &sw.por, &sw.dfi, &sw.me, &sw.ai, &sw.lr, &sw.sl};
    frmgraphresult* g = indexChart(0);
    QStringList titles;
    for (int position = 0; position < 8; ++position) {
        choose(g->Cmbin, position);
        const QList<Drawn> drawn = drawnSeries(g);
        QCOMPARE(drawn.size(), 1);
        QCOMPARE(drawn[0].values, engineValues(*data[position], 6));
        QChart* chart = g->ChartSpace1->chart();
        QCOMPARE(chart->titleFont().family(), QStringLiteral("Times New Roman"));
        QCOMPARE(chart->titleFont().pointSizeF(), 10.0);
        auto* y = qobject_cast<QValueAxis*>(chart->axes(Qt::Vertical).first());
        QCOMPARE(y->labelsFont().pointSizeF(), 7.0);
        QVERIFY(!y->titleText().isEmpty());
        titles.append(chart->title());
        QCOMPARE(chart->axes(Qt::Horizontal).first()->titleText(), QStringLiteral("pH"));
    }
    titles.removeDuplicates();
    QCOMPARE(titles.size(), 8);
    // the Ryznar series is not named as the list's "SI index"
    choose(g->Cmbin, 1);
    QCOMPARE(drawnSeries(g)[0].name, QStringLiteral("RI index"));
}

void TestGraphWindow::indexThenSpeciesLeavesOnlyTheSpecies() {
    fakeSweep(4);
    frmgraphresult* g = open();
    choose(g->Cmbx, 0);
    test::click(g->cmdaddsp);
    choose(g->Cmbx, 0); // choosing the category again brings "Add indices" back
    test::click(g->cmdaddin);
    choose(g->Cmbin, 0);
    QCOMPARE(drawnSeries(g).size(), 1);
    choose(g->cmbspecies, 0);

    const SweepArrays& sw = theEngine().sw;
    const QList<Drawn> drawn = drawnSeries(g);
    QCOMPARE(drawn.size(), 3);
    QCOMPARE(drawn[0].name, QStringLiteral("H2co3*"));
    QCOMPARE(drawn[0].values, engineValues(sw.h2co3, 4));
    QCOMPARE(drawn[1].values, engineValues(sw.hco3, 4));
    QCOMPARE(drawn[2].values, engineValues(sw.co3, 4));
    QChart* chart = g->ChartSpace1->chart();
    QCOMPARE(chart->title(), QStringLiteral("Carbonate species distribution"));
    auto* y = qobject_cast<QValueAxis*>(chart->axes(Qt::Vertical).first());
    QCOMPARE(y->labelFormat(), QStringLiteral("%.4f"));
    QCOMPARE(y->titleFont().pointSizeF(), 8.0);
    QVERIFY(chart->legend()->isVisible());
    // a new chart: the plot area is no longer filled
    QVERIFY(!chart->isPlotAreaBackgroundVisible());
}

void TestGraphWindow::addIndicesGuard() {
    fakeSweep(3);
    frmgraphresult* g = open();
    choose(g->Cmbx, 0);
    test::click(g->cmdaddin);
    QCOMPARE(g->indexguard, 2);
    choose(g->Cmbin, 1);
    test::click(g->cmdaddin); // no second series, the chosen one stays
    QCOMPARE(g->indexguard, 2);
    QCOMPARE(drawnSeries(g).size(), 1);
    QCOMPARE(drawnSeries(g)[0].values, engineValues(theEngine().sw.ri, 3));

    test::click(g->cmdremove);
    QCOMPARE(g->indexguard, 1);
    test::click(g->cmdaddin);
    QCOMPARE(g->indexguard, 2);
    QCOMPARE(drawnSeries(g).size(), 1);
    QCOMPARE(drawnSeries(g)[0].name, QStringLiteral("index"));
    choose(g->Cmbin, 5);
    QCOMPARE(drawnSeries(g)[0].values, engineValues(theEngine().sw.ai, 3));
}

void TestGraphWindow::noCategoryChosen() {
    fakeSweep(3);
    frmgraphresult* g = open();
    test::click(g->cmdaddin);
    choose(g->Cmbin, 0);
    QCOMPARE(drawnSeries(g)[0].values, engineValues(theEngine().sw.li, 3));
    QCOMPARE(categoryLabels(g), (QStringList{"1", "2", "3"}));
    QVERIFY(g->ChartSpace1->chart()->title().isEmpty());
}

void TestGraphWindow::equalPhValuesKeepTheirCategories() {
    fakeSweep(3); // a sweep with an increment of 0
    for (int i = 1; i <= 3; ++i)
        theEngine().sw.ph(i) = 7.0;
    frmgraphresult* g = indexChart(0);
    QCOMPARE(categoryLabels(g).size(), 3);
    QCOMPARE(drawnSeries(g)[0].values, engineValues(theEngine().sw.li, 3));
}

void TestGraphWindow::larsonSkoldMessage_data() {
    QTest::addColumn<bool>("bllr");
    QTest::addColumn<QString>("cl");
    QTest::addColumn<QString>("so4");
    QTest::addColumn<QString>("message");
    const QString tail = " specify the amounts of cl and so4 ions.";
    const QString off = "please select Larson-scold index in options window and" + tail;
    const QString on = "please " + tail;
    QTest::newRow("option off, chloride empty") << false << ""
                                                << "60" << off;
    QTest::newRow("option on, sulphate empty") << true << "50"
                                               << "" << on;
    QTest::newRow("option on, both filled") << true << "50"
                                            << "60" << QString();
}

void TestGraphWindow::larsonSkoldMessage() {
    QFETCH(bool, bllr);
    QFETCH(QString, cl);
    QFETCH(QString, so4);
    QFETCH(QString, message);
    fakeSweep(3);
    theOptions().index.bllr = bllr;
    m_->txtcl->setText(cl);
    m_->txtso4->setText(so4);
    rec_->clear();
    frmgraphresult* g = indexChart(6);
    if (message.isEmpty()) {
        QVERIFY(rec_->messages.isEmpty());
    } else {
        QCOMPARE(rec_->messages.size(), 1);
        QCOMPARE(rec_->last().text, message);
        QCOMPARE(rec_->last().buttons, Platform::Buttons::Ok);
    }
    // drawn all the same
    QCOMPARE(drawnSeries(g)[0].values, engineValues(theEngine().sw.lr, 3));
}

void TestGraphWindow::chartTypes_data() {
    QTest::addColumn<bool>("species");
    QTest::addColumn<int>("position");
    QTest::addColumn<QString>("kind");
    for (bool species : {false, true}) {
        const char* what = species ? "species" : "index";
        QTest::addRow("%s, ColumnClustered", what) << species << 0 << "column";
        QTest::addRow("%s, Line", what) << species << 1 << "line";
        QTest::addRow("%s, LineMarkers", what) << species << 2 << "markers";
    }
}

void TestGraphWindow::chartTypes() {
    QFETCH(bool, species);
    QFETCH(int, position);
    QFETCH(QString, kind);
    fakeSweep(5);
    frmgraphresult* g = open();
    choose(g->Cmbx, 0);
    if (species) {
        test::click(g->cmdaddsp);
        choose(g->cmbspecies, 0);
    } else {
        test::click(g->cmdaddin);
        choose(g->Cmbin, 3);
    }
    // lines until a type is chosen
    for (const Drawn& d : drawnSeries(g))
        QCOMPARE(d.kind, QStringLiteral("line"));
    choose(g->Cmochart, position);
    const QList<Drawn> drawn = drawnSeries(g);
    QCOMPARE(drawn.size(), species ? 3 : 1);
    for (const Drawn& d : drawn) {
        QCOMPARE(d.kind, kind);
        QCOMPARE(d.values.size(), 5);
    }
}

void TestGraphWindow::dataLabelTexts_data() {
    QTest::addColumn<int>("position"); // 0..7 an index, -1 the species
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("label");
    QTest::newRow("Langelier, negative") << 0 << -0.12345 << "-0.123";
    QTest::newRow("Ryznar, half away from zero") << 1 << 7.0005 << "7.001";
    QTest::newRow("Puckorius") << 2 << 6.5 << "6.500";
    QTest::newRow("driving force, large") << 3 << 12345.0 << "1.23E04";
    QTest::newRow("momentary excess, negative small") << 4 << -0.000015 << "-1.50E-05";
    QTest::newRow("aggressiveness") << 5 << 11.98765 << "11.988";
    QTest::newRow("Larson-Skold") << 6 << 0.25 << "0.250";
    QTest::newRow("saturation level, plus sign") << 7 << 3.456 << "3.46E+00";
    QTest::newRow("saturation level, small") << 7 << 0.000789 << "7.89E-04";
    QTest::newRow("species") << -1 << 0.001234567 << "0.00123";
}

void TestGraphWindow::dataLabelTexts() {
    QFETCH(int, position);
    QFETCH(double, value);
    QFETCH(QString, label);
    fakeSweep(2);
    SweepArrays& sw = theEngine().sw;
    PointArray* data[] = {&sw.li, &sw.ri, &sw.por, &sw.dfi, &sw.me, &sw.ai, &sw.lr, &sw.sl};
    (position < 0 ? sw.hco3 : *data[position])(2) = value;
    m_->txtcl->setText("50");
    m_->txtso4->setText("60");

    frmgraphresult* g = open();
    choose(g->Cmbx, 0);
    int slot = 0;
    if (position < 0) {
        test::click(g->cmdaddsp);
        choose(g->cmbspecies, 0);
        slot = 2; // HCO3-
    } else {
        test::click(g->cmdaddin);
        choose(g->Cmbin, position);
    }
    const auto texts = velmora::dataLabelTexts(g->ChartSpace1->chart());
    QCOMPARE(texts[std::size_t(slot)].size(), 2);
    QCOMPARE(texts[std::size_t(slot)][1], label);
}

void TestGraphWindow::removeDataLabels() {
    fakeSweep(4);
    frmgraphresult* g = indexChart(0);
    const auto labelCount = [g] {
        int n = 0;
        for (const QStringList& l : velmora::dataLabelTexts(g->ChartSpace1->chart()))
            n += int(l.size());
        return n;
    };
    QCOMPARE(labelCount(), 4);
    test::click(g->chkdatalabel);
    QCOMPARE(labelCount(), 0);
    choose(g->Cmbin, 1); // hidden labels stay hidden with another index
    QCOMPARE(labelCount(), 0);
    test::click(g->chkdatalabel);
    QCOMPARE(labelCount(), 4);
}

VELMORA_GUI_TEST_MAIN(TestGraphWindow)
#include "tst_graphwindow.moc"
