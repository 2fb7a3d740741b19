// The graph window driven through its controls, offscreen: what each list
// choice and button draws from the sweep arrays, and the GIF picture and the
// printout written from it, read back from the files.
#include "engine/engine.h"
#include "graphs/frmgraphresult.h"
#include "graphs/gifwriter.h"
#include "mainwindow/frmmain.h"
#include "numtext/numtext.h"
#include "options/frmoptions.h"
#include "options/optionstate.h"
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
#include <QDir>
#include <QFile>
#include <QGroupBox>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QLineSeries>
#include <QLocale>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QValueAxis>

#include <cmath>
#include <memory>

using namespace velmora;

namespace {

constexpr double kMeasured = 99.0; // element 0 holds this: it must never be drawn

// A sweep of `steps` points with distinct values in every array the window reads.
void fakeSweep(double steps) {
    SweepArrays& sw = theEngine().sw;
    sw.phsteps = steps;
    PointArray* arrays[] = {&sw.li, &sw.ri, &sw.por,   &sw.dfi,  &sw.me, &sw.ai,
                            &sw.lr, &sw.sl, &sw.h2co3, &sw.hco3, &sw.co3};
    for (int i = 0; i <= 140; ++i) {
        sw.ph(i) = i == 0 ? kMeasured : 5.0 + 0.25 * i;
        for (int k = 0; k < 11; ++k)
            (*arrays[k])(i) =
                i == 0 ? kMeasured : std::sin(i * 0.7 + k + 1) * std::pow(10.0, -k % 4);
    }
}
PointArray& indexArray(int position) {
    SweepArrays& sw = theEngine().sw;
    PointArray* data[] = {&sw.li, &sw.ri, &sw.por, &sw.dfi, &sw.me, &sw.ai, &sw.lr, &sw.sl};
    return *data[position];
}

void choose(QComboBox* list, int position) {
    list->setCurrentIndex(position);
    emit list->activated(position);
}

// The drawn series: name, values and kind ("column", "line" or "markers").
struct Drawn {
    QString name;
    QList<double> values;
    QString kind;
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
QCategoryAxis* categoryAxis(frmgraphresult* g) {
    const auto axes = g->ChartSpace1->chart()->axes(Qt::Horizontal);
    return axes.isEmpty() ? nullptr : qobject_cast<QCategoryAxis*>(axes.first());
}
QList<double> engineValues(const PointArray& a, int n) {
    QList<double> v;
    for (int i = 1; i <= n; ++i)
        v.append(a(i));
    return v;
}

// What the user sees of the named controls: text, enabled, hidden, checked.
QStringList controlState(frmgraphresult* g) {
    QStringList out;
    for (QWidget* w : g->findChildren<QWidget*>()) {
        auto* b = qobject_cast<QAbstractButton*>(w);
        auto* c = qobject_cast<QComboBox*>(w);
        out << QStringLiteral("%1 %2 %3 %4 %5")
                   .arg(w->objectName(), w->isHidden() ? QString()
                                         : b           ? b->text()
                                         : c           ? c->currentText()
                                                       : QString())
                   .arg(enabledFlag(w))
                   .arg(w->isHidden())
                   .arg(b && b->isChecked());
    }
    return out;
}

// The window with a chart of `steps` sweep points of the Langelier index.
frmgraphresult* chartOfSweep(int steps) {
    SweepArrays& sw = theEngine().sw;
    sw.phsteps = steps;
    for (int i = 0; i <= steps; ++i) {
        sw.ph(i) = 6.0 + 0.05 * i;
        sw.li(i) = std::sin(i * 0.3);
    }
    frmgraphresult* g = frmgraphresult::instance();
    g->show();
    choose(g->Cmbx, 0);
    test::click(g->cmdaddin);
    choose(g->Cmbin, 0);
    choose(g->Cmochart, 2);
    return g;
}

QByteArray readAll(const QString& file) {
    QFile f(file);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// The output of a poppler tool, or nothing when it is not installed.
std::optional<QByteArray> poppler(const QString& tool, const QStringList& args) {
    const QString exe = QStandardPaths::findExecutable(tool);
    if (exe.isEmpty()) return std::nullopt;
    QProcess p;
    p.start(exe, args);
    if (!p.waitForFinished(30000) || p.exitCode() != 0) return QByteArray();
    return p.readAllStandardOutput();
}

} // namespace

class TestGraphWindow : public test::ProgramTest {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> dir_;

    // Every test writes into a folder of its own.
    void newFolder() { dir_ = std::make_unique<QTemporaryDir>(); }
    QString path(const QString& name) const { return dir_->filePath(name); }
    // Prints the chart to a PDF file through the recorder's print dialog.
    QString print(frmgraphresult* g, int copies, bool fit) {
        const QString pdf = path(QStringLiteral("print-%1-%2.pdf").arg(copies).arg(fit));
        rec_->printCopies = copies;
        rec_->printToPdf = pdf;
        test::click(fit ? g->optFitToPrinter : g->optNormal);
        test::click(g->cmdprint);
        return pdf;
    }

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
    frmgraphresult* speciesChart() {
        frmgraphresult* g = open();
        choose(g->Cmbx, 0);
        test::click(g->cmdaddsp);
        choose(g->cmbspecies, 0);
        return g;
    }

private slots:
    void toolbarOpensTheWindowFromACalculatedSweep() {
        frmOptions* o = openOptions();
        applyOptions({o->chkli, o->chklr}, "6.5", "0.5", "5");
        test::typeWorkedSample(m_);
        test::click(m_->cmdread);
        test::click(m_->cmdcalc);
        QAction* graph = m_->toolbarButton(9);
        test::trigger(graph);
        QVERIFY(frmgraphresult::isLoaded());
        frmgraphresult* g = frmgraphresult::instance();
        QVERIFY(g->isVisible());
        choose(g->Cmbx, 0);
        test::click(g->cmdaddin);
        choose(g->Cmbin, 0);
        QCOMPARE(drawnSeries(g).size(), 1);
        QCOMPARE(drawnSeries(g)[0].values, engineValues(theEngine().sw.li, 5));
        QCOMPARE(categoryAxis(g)->categoriesLabels(), (QStringList{"6.5", "7", "7.5", "8", "8.5"}));
        // the same window on the next click; a closed one comes back fresh
        test::trigger(graph);
        QCOMPARE(frmgraphresult::instance(), g);
        g->close();
        test::flushDeletions();
        test::trigger(graph);
        QVERIFY(drawnSeries(frmgraphresult::instance()).isEmpty());
        QCOMPARE(frmgraphresult::instance()->Cmbx->currentIndex(), -1);
    }

    void designStateAndRemove() {
        fakeSweep(5);
        frmgraphresult* g = open();
        QCOMPARE(g->indexguard, 1);
        QVERIFY(drawnSeries(g).isEmpty());
        QVERIFY(g->cmdremove->isHidden() && g->chkdatalabel->isHidden() && g->lblnote->isHidden());
        QVERIFY(!enabledFlag(g->fraseri) && !enabledFlag(g->Cmbin) && !enabledFlag(g->cmbspecies));
        choose(g->Cmbx, 0);
        const QStringList design = controlState(g);
        for (QPushButton* add : {g->cmdaddin, g->cmdaddsp}) {
            test::click(add);
            QVERIFY(!g->cmdremove->isHidden());
            if (add == g->cmdaddin) {
                QVERIFY(!g->cmdaddsp->isEnabled());
                choose(g->Cmbin, 2);
                QVERIFY(!g->chkdatalabel->isHidden() && !g->lblnote->isHidden());
                test::click(g->chkdatalabel);
            } else {
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

    // Only points 1 to the rounded number of steps are drawn, each index
    // from its own array with a title of its own.
    void indexSeries() {
        const std::pair<double, int> steps[] = {{1, 1}, {2.5, 2}, {3.5, 4}, {140, 140}};
        for (const auto& [s, n] : steps) {
            fakeSweep(s);
            frmgraphresult* g = indexChart(0);
            QCOMPARE(drawnSeries(g)[0].values, engineValues(theEngine().sw.li, n));
            QCOMPARE(categoryAxis(g)->categoriesLabels().first(),
                     QString::fromStdString(fmt::numberText(theEngine().sw.ph(1))));
            QCOMPARE(categoryAxis(g)->max(), n - 0.5);
            g->close();
            test::flushDeletions();
        }
        fakeSweep(6);
        frmgraphresult* g = indexChart(0);
        QStringList titles;
        for (int position = 0; position < 8; ++position) {
            choose(g->Cmbin, position);
            QCOMPARE(drawnSeries(g).size(), 1);
            QCOMPARE(drawnSeries(g)[0].values, engineValues(indexArray(position), 6));
            titles.append(g->ChartSpace1->chart()->title());
        }
        titles.removeDuplicates();
        QCOMPARE(titles.size(), 8);
    }

    void addIndicesGuard() {
        fakeSweep(3);
        frmgraphresult* g = indexChart(1);
        QCOMPARE(g->indexguard, 2);
        test::click(g->cmdaddin); // no second series, the chosen one stays
        QCOMPARE(drawnSeries(g).size(), 1);
        QCOMPARE(drawnSeries(g)[0].values, engineValues(theEngine().sw.ri, 3));
        test::click(g->cmdremove);
        QCOMPARE(g->indexguard, 1);
        test::click(g->cmdaddin);
        QCOMPARE(g->indexguard, 2);
        QCOMPARE(drawnSeries(g).size(), 1);
        choose(g->Cmbin, 5);
        QCOMPARE(drawnSeries(g)[0].values, engineValues(theEngine().sw.ai, 3));
    }

    void categories() {
        fakeSweep(3);
        frmgraphresult* g = open(); // no category chosen: numbered
        test::click(g->cmdaddin);
        choose(g->Cmbin, 0);
        QCOMPARE(categoryAxis(g)->categoriesLabels(), (QStringList{"1", "2", "3"}));
        g->close();
        test::flushDeletions();
        for (int i = 1; i <= 3; ++i) // equal pH values keep their categories
            theEngine().sw.ph(i) = 7.0;
        QCOMPARE(categoryAxis(indexChart(0))->categoriesLabels().size(), 3);
    }

    void larsonSkoldMessage() {
        const struct {
            bool bllr;
            const char *cl, *so4;
            bool message;
        } cases[] = {{false, "", "60", true}, {true, "50", "", true}, {true, "50", "60", false}};
        QStringList texts;
        for (const auto& c : cases) {
            fakeSweep(3);
            theOptions().index.bllr = c.bllr;
            m_->txtcl->setText(c.cl);
            m_->txtso4->setText(c.so4);
            rec_->clear();
            frmgraphresult* g = indexChart(6);
            QCOMPARE(rec_->messages.size(), int(c.message));
            texts += rec_->texts();
            QCOMPARE(drawnSeries(g)[0].values, engineValues(theEngine().sw.lr, 3));
            g->close();
            test::flushDeletions();
        }
        QVERIFY(texts[0] != texts[1]); // the option named only when it is off
    }

    void chartTypes() {
        fakeSweep(5);
        for (bool species : {false, true}) {
            frmgraphresult* g = species ? speciesChart() : indexChart(3);
            for (const Drawn& d : drawnSeries(g))
                QCOMPARE(d.kind, QStringLiteral("line")); // until a type is chosen
            const char* kinds[] = {"column", "line", "markers"};
            for (int position = 0; position < 3; ++position) {
                choose(g->Cmochart, position);
                QCOMPARE(drawnSeries(g).size(), species ? 3 : 1);
                for (const Drawn& d : drawnSeries(g)) {
                    QCOMPARE(d.kind, QString(kinds[position]));
                    QCOMPARE(d.values.size(), 5);
                }
            }
            if (species) {
                const SweepArrays& sw = theEngine().sw;
                QCOMPARE(drawnSeries(g)[0].values, engineValues(sw.h2co3, 5));
                QCOMPARE(drawnSeries(g)[2].values, engineValues(sw.co3, 5));
            }
            g->close();
            test::flushDeletions();
        }
    }

    void dataLabelTexts() {
        const struct {
            int position; // 0..7 an index, -1 the species
            double value;
            const char* label;
        } cases[] = {{0, -0.12345, "-0.123"},     {1, 7.0005, "7.001"},    {3, 12345.0, "1.23E04"},
                     {4, -0.000015, "-1.50E-05"}, {5, 11.98765, "11.988"}, {7, 3.456, "3.46E+00"},
                     {-1, 0.001234567, "0.00123"}};
        m_->txtcl->setText("50");
        m_->txtso4->setText("60");
        for (const auto& c : cases) {
            fakeSweep(2);
            (c.position < 0 ? theEngine().sw.hco3 : indexArray(c.position))(2) = c.value;
            frmgraphresult* g = c.position < 0 ? speciesChart() : indexChart(c.position);
            const auto texts = velmora::dataLabelTexts(g->ChartSpace1->chart());
            QCOMPARE(texts[c.position < 0 ? 2 : 0].value(1), QString(c.label));
            g->close();
            test::flushDeletions();
        }
        // hidden labels stay hidden with another index
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
        choose(g->Cmbin, 1);
        QCOMPARE(labelCount(), 0);
        test::click(g->chkdatalabel);
        QCOMPARE(labelCount(), 4);
    }

    // keeping the chart: the GIF picture and the printout, read back
    void gifNameGetsGifAppendedAndCancelWritesNothing();
    void gifFailureLeavesTheOldFile();
    void printTwoCopiesLandscapeWithStamp();
    void printRect_data();
    void printRect();
};

void TestGraphWindow::gifNameGetsGifAppendedAndCancelWritesNothing() {
    const std::pair<QString, QStringList> cases[] = {
        {"chart", {"chart.GIF"}}, {"chart.png", {"chart.png.GIF"}}, {"", {}}};
    for (const auto& [typed, written] : cases) {
        newFolder();
        frmgraphresult* g = chartOfSweep(3);
        rec_->saveName = typed.isEmpty() ? QString() : path(typed);
        test::click(g->cmdsave);
        QCOMPARE(rec_->saveFilters.last(), "GIF(*.GIF)");
        QCOMPARE(QDir(dir_->path()).entryList(QDir::Files), written);
        QCOMPARE(g->gifname.isEmpty(), typed.isEmpty());
        if (!typed.isEmpty()) QCOMPARE(QImage(g->gifname, "GIF").size(), QSize(800, 400));
        QVERIFY(rec_->messages.isEmpty());
        g->close();
        test::flushDeletions();
    }
}

void TestGraphWindow::gifFailureLeavesTheOldFile() {
    newFolder();
    const QString old = path("old.GIF");
    {
        QFile f(old);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("the picture of yesterday");
    }
    QString error;
    QVERIFY(!saveGif(QImage(), old, &error)); // nothing to write: fails before the end
    QVERIFY(!error.isEmpty());
    QCOMPARE(readAll(old), QByteArray("the picture of yesterday"));
    QCOMPARE(QDir(dir_->path()).entryList(QDir::Files), QStringList{"old.GIF"});

    // The window reports a file it cannot write and leaves no file behind.
    frmgraphresult* g = chartOfSweep(3);
    rec_->saveName = path("no such folder/chart");
    test::click(g->cmdsave);
    QCOMPARE(rec_->messages.size(), 1);
    QVERIFY(!QFile::exists(g->gifname));

    // A good picture replaces the old file.
    QVERIFY(saveGif(renderChart(g->ChartSpace1->state(), QSize(80, 40)), old));
    QCOMPARE(QImage(old).size(), QSize(80, 40));
}

void TestGraphWindow::printTwoCopiesLandscapeWithStamp() {
    newFolder();
    frmgraphresult* g = chartOfSweep(10);
    const QString pdf = print(g, 2, true);
    QCOMPARE(rec_->printDialogs, 1);
    // cancelled: nothing printed
    rec_->printCopies.reset();
    rec_->printToPdf = path(QStringLiteral("cancelled.pdf"));
    test::click(g->cmdprint);
    QCOMPARE(rec_->printDialogs, 2);
    QVERIFY(!QFile::exists(path("cancelled.pdf")));
    const QByteArray data = readAll(pdf);
    QVERIFY(data.startsWith("%PDF"));

    // two pages, both landscape
    static const QRegularExpression mediaBox(
        QStringLiteral("/MediaBox\\s*\\[\\s*0\\s+0\\s+([\\d.]+)\\s+([\\d.]+)\\s*\\]"));
    int pages = 0;
    for (auto it = mediaBox.globalMatch(QString::fromLatin1(data)); it.hasNext(); ++pages) {
        const auto m = it.next();
        QVERIFY(m.captured(1).toDouble() > m.captured(2).toDouble());
    }
    QCOMPARE(pages, 2);

    const auto text = poppler("pdftotext", {"-layout", pdf, "-"});
    if (!text) QSKIP("pdftotext (poppler-utils) is not installed");
    const QList<QByteArray> pageTexts = text->split('\f');
    QDateTime now = rec_->clock;
    const QByteArray date = QLocale::system().toString(now.date(), QLocale::ShortFormat).toUtf8();
    for (int p = 0; p < 2; ++p) {
        const QByteArray& page = pageTexts[p];
        QVERIFY2(page.contains("Time :10:30:00"), page.constData());
        QVERIFY(page.contains("Velmora"));
        QVERIFY(page.contains("Date :" + date));
        QVERIFY(page.contains("Version 1.0"));
    }
}

void TestGraphWindow::printRect_data() {
    QTest::addColumn<QSizeF>("picture");
    QTest::addColumn<bool>("fit");
    QTest::addColumn<QRectF>("expected");
    // a 12000 x 8000 printable area at 1200 dpi, pictures at 96 dpi
    QTest::newRow("normal: natural size, centred")
        << QSizeF(480, 320) << false << QRectF(3000, 2000, 6000, 4000);
    QTest::newRow("fit: width limits") << QSizeF(600, 200) << true << QRectF(0, 2000, 12000, 4000);
    QTest::newRow("fit: height limits") << QSizeF(300, 400) << true << QRectF(3000, 0, 6000, 8000);
    QTest::newRow("normal: larger than the paper stays centred")
        << QSizeF(1200, 800) << false << QRectF(-1500, -1000, 15000, 10000);
}

void TestGraphWindow::printRect() {
    QFETCH(QSizeF, picture);
    QFETCH(bool, fit);
    QFETCH(QRectF, expected);
    QCOMPARE(frmgraphresult::printRect(picture, 96, QSizeF(12000, 8000), 1200, fit), expected);
}

VELMORA_GUI_TEST_MAIN(TestGraphWindow)
#include "tst_graphwindow.moc"
