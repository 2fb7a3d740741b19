// Keeping the chart: the GIF picture written through the save dialog and the
// printout through the print dialog, both read back from the files written.
#include "engine/engine.h"
#include "graphs/frmgraphresult.h"
#include "graphs/gifwriter.h"
#include "tests/support/guitest.h"
#include "tests/support/programfixture.h"
#include "tests/support/recordingplatform.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QLocale>
#include <QPageLayout>
#include <QPrinter>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <cmath>
#include <memory>

using namespace velmora;

namespace {

const QRgb kWhite = qRgb(255, 255, 255);
const QRgb kPlotArea = qRgb(255, 255, 192);

void choose(QComboBox* list, int position) {
    list->setCurrentIndex(position);
    emit list->activated(position);
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

int countColour(const QImage& image, QRgb colour) {
    int n = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            n += image.pixel(x, y) == colour;
    return n;
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

class TestGraphOutput : public test::ProgramTest {
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
private slots:
    void gifIsTheChartAt800x400WithExactColours();
    void gifNameGetsGifAppendedAndCancelWritesNothing();
    void gifFailureLeavesTheOldFile();
    void printTwoCopiesLandscapeWithStamp();
    void printRect_data();
    void printRect();
};

void TestGraphOutput::gifIsTheChartAt800x400WithExactColours() {
    newFolder();
    frmgraphresult* g = chartOfSweep(140);
    rec_->saveName = path("sweep");
    test::click(g->cmdsave);
    QCOMPARE(rec_->saveFilters, QStringList{"GIF(*.GIF)"});
    QCOMPARE(g->gifname, path("sweep.GIF"));
    QVERIFY(readAll(g->gifname).startsWith("GIF8"));

    QImage gif(g->gifname);
    QCOMPARE(gif.size(), QSize(800, 400));
    gif = gif.convertToFormat(QImage::Format_RGB32);
    QCOMPARE(gif.pixel(0, 0), kWhite);
    QCOMPARE(gif.pixel(799, 399), kWhite);

    // The picture drawn directly: the background and the plot area keep
    // their colours to the last pixel; only rare edge shades may move.
    const QImage drawn = renderChart(g->ChartSpace1->state(), QSize(800, 400));
    QVERIFY(countColour(drawn, kPlotArea) > 800 * 400 / 4);
    int differing = 0, changedGround = 0;
    for (int y = 0; y < 400; ++y)
        for (int x = 0; x < 800; ++x) {
            const QRgb d = drawn.pixel(x, y);
            differing += gif.pixel(x, y) != d;
            changedGround += (d == kPlotArea || d == kWhite) && gif.pixel(x, y) != d;
        }
    QCOMPARE(changedGround, 0);
    QVERIFY2(differing < 800 * 400 / 20, qPrintable(QString::number(differing)));
}

void TestGraphOutput::gifNameGetsGifAppendedAndCancelWritesNothing() {
    const std::pair<QString, QStringList> cases[] = {
        {"chart", {"chart.GIF"}}, {"chart.png", {"chart.png.GIF"}}, {"", {}}};
    for (const auto& [typed, written] : cases) {
        newFolder();
        frmgraphresult* g = chartOfSweep(3);
        rec_->saveName = typed.isEmpty() ? QString() : path(typed);
        test::click(g->cmdsave);
        QCOMPARE(QDir(dir_->path()).entryList(QDir::Files), written);
        QCOMPARE(g->gifname.isEmpty(), typed.isEmpty());
        QVERIFY(rec_->messages.isEmpty());
        g->close();
        test::flushDeletions();
    }
}

void TestGraphOutput::gifFailureLeavesTheOldFile() {
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

void TestGraphOutput::printTwoCopiesLandscapeWithStamp() {
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

    // The first stamp line starts 2 cm from the left and top of the printable area.
    const auto boxes = poppler("pdftotext", {"-bbox", "-f", "1", "-l", "1", pdf, "-"});
    static const QRegularExpression word(
        QStringLiteral("<word xMin=\"([\\d.]+)\" yMin=\"([\\d.]+)\"[^>]*>Time"));
    const auto m = word.match(QString::fromUtf8(*boxes));
    QVERIFY(m.hasMatch());
    QPrinter reference(QPrinter::HighResolution);
    reference.setOutputFormat(QPrinter::PdfFormat);
    reference.setPageOrientation(QPageLayout::Landscape);
    const QRectF printable = reference.pageLayout().paintRectPoints();
    const double twoCm = 72 * 2 / 2.54;
    QVERIFY(std::abs(m.captured(1).toDouble() - (printable.left() + twoCm)) < 1.5);
    QVERIFY(std::abs(m.captured(2).toDouble() - (printable.top() + twoCm)) < 3);
}

void TestGraphOutput::printRect_data() {
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

void TestGraphOutput::printRect() {
    QFETCH(QSizeF, picture);
    QFETCH(bool, fit);
    QFETCH(QRectF, expected);
    QCOMPARE(frmgraphresult::printRect(picture, 96, QSizeF(12000, 8000), 1200, fit), expected);
}

VELMORA_GUI_TEST_MAIN(TestGraphOutput)
#include "tst_graphoutput.moc"
