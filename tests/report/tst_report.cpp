// The report through the real windows: File > Save results and Print
// results and the toolbar's Save and Print after a calculation of the
// worked sample, saved into a temporary folder and printed to PDF files.
#include "mainwindow/frmmain.h"
#include "mainwindow/frmproperties.h"
#include "options/frmoptions.h"
#include "platform/platform.h"
#include "tests/support/programfixture.h"
#include "tests/support/recordingplatform.h"

#include <QAction>
#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QLocale>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <csignal>
#include <sys/resource.h>

using namespace velmora;

namespace {

QByteArray readAll(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<missing>");
}

bool writeFile(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    return f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size();
}

// The report without its time and date lines.
QByteArray body(const QByteArray& report) {
    int at = report.indexOf("\r\n");
    at = report.indexOf("\r\n", at + 2);
    return report.mid(at + 2);
}

// One word of a PDF page as pdftotext -bbox places it, in points.
struct Word {
    QString text;
    double x = 0, y = 0;
};

// The words of each page of a PDF file.
QList<QList<Word>> pdfWords(const QString& pdf) {
    QList<QList<Word>> pages;
    QProcess p;
    p.start(QStringLiteral("pdftotext"), {QStringLiteral("-bbox"), pdf, QStringLiteral("-")});
    if (!p.waitForFinished(30000)) return pages;
    const QString html = QString::fromUtf8(p.readAllStandardOutput());
    static const QRegularExpression tag(
        QStringLiteral("<page |<word xMin=\"([\\d.]+)\" yMin=\"([\\d.]+)\"[^>]*>([^<]*)</word>"));
    for (auto it = tag.globalMatch(html); it.hasNext();) {
        const auto m = it.next();
        if (m.captured(0) == QLatin1String("<page ")) {
            pages.append(QList<Word>());
        } else if (!pages.isEmpty()) {
            pages.last().append(
                Word{m.captured(3), m.captured(1).toDouble(), m.captured(2).toDouble()});
        }
    }
    return pages;
}

const Word* find(const QList<Word>& words, const QString& text) {
    for (const Word& w : words)
        if (w.text == text) return &w;
    return nullptr;
}

constexpr double kTwoCm = 72 * 2 / 2.54; // points

} // namespace

class TestReport : public test::ProgramTest {
    Q_OBJECT

private slots:
    void initTestCase();
    void savedReportOfTheWorkedSample();
    void aFailedSaveLeavesTheOldFile();
    void toolbarSaveWithNoIndexChosen();
    void printedCopiesEachStartAPage();
    void aLongReportContinuesOnTheNextPage();

private:
    QTemporaryDir dir_;
    // A file in the folder of the running test.
    QString path(const QString& name) const { return folder() + QLatin1Char('/') + name; }
    QString folder() const {
        const QString f = dir_.filePath(QString::fromLatin1(QTest::currentTestFunction()));
        QDir().mkpath(f);
        return f;
    }

    // Options with the given indices, the worked sample read and calculated.
    void calculate(const QList<QCheckBox*>& ticks) {
        applyOptions(ticks);
        test::typeWorkedSample(m_);
        test::click(m_->cmdread);
        test::click(m_->cmdcalc);
        QVERIFY(m_->mnuFileSave->isEnabled());
    }
    void calculateWithEveryIndex() {
        frmOptions* o = openOptions();
        calculate(
            {o->chkli, o->chkri, o->chkpor, o->chklr, o->chkdfi, o->chkai, o->chkme, o->chksl});
    }
    void fillProperties() {
        test::trigger(m_->toolbarButton(7));
        frmproperties* p = frmproperties::instance();
        const std::pair<const char*, const char*> texts[] = {
            {"txtname", "Ann"},
            {"txtfamily", "Okafor"},
            {"txtorgan", "Delta Water"},
            {"txtdate", "2024-05-16"},
            {"txtlocation", "Well 3, north field"}};
        for (const auto& [name, text] : texts)
            test::typeInto(p->findChild<QLineEdit*>(name), QString::fromLatin1(text));
        test::click(p->findChild<QPushButton*>("cmdOK"));
    }
    QList<QList<Word>> print(QAction* command, int copies, const QString& name) {
        rec_->printCopies = copies;
        rec_->printToPdf = path(name);
        test::trigger(command);
        return pdfWords(path(name));
    }
};

void TestReport::initTestCase() {
    QVERIFY(dir_.isValid());
    QVERIFY2(!QStandardPaths::findExecutable(QStringLiteral("pdftotext")).isEmpty(),
             "pdftotext (poppler-utils) is needed to read printed reports back");
}

// The committed example report is what Save writes for the worked sample
// with every index and the sample properties (but for the time and date).
void TestReport::savedReportOfTheWorkedSample() {
    calculateWithEveryIndex();
    fillProperties();
    rec_->saveName = path(QStringLiteral("worked"));
    test::trigger(m_->mnuFileSave);
    QCOMPARE(rec_->saveFilters, QStringList{QStringLiteral("word ducument(*.doc)")});

    const QByteArray saved = readAll(path(QStringLiteral("worked.doc")));
    const QByteArray stamp = "Time :" + longTimeText(rec_->clock).toUtf8() +
                             "       Velmora\r\nDate :" + shortDateText(rec_->clock).toUtf8();
    QVERIFY(saved.startsWith(stamp));
    QCOMPARE(body(saved), body(readAll(QStringLiteral(VELMORA_DOCS "/example-report.doc"))));
}

// A write that fails part-way (here: past the file size limit) keeps the
// file of that name as it was, and leaves nothing else behind.
void TestReport::aFailedSaveLeavesTheOldFile() {
    calculateWithEveryIndex();
    const QString target = path(QStringLiteral("old.doc"));
    QVERIFY(writeFile(target, "the report of last week\r\n"));

    rlimit saved{};
    getrlimit(RLIMIT_FSIZE, &saved);
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit small = saved;
    small.rlim_cur = 512;
    setrlimit(RLIMIT_FSIZE, &small);
    rec_->saveName = path(QStringLiteral("old"));
    test::trigger(m_->mnuFileSave);
    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, oldHandler);

    QCOMPARE(readAll(target), QByteArray("the report of last week\r\n"));
    QCOMPARE(QDir(folder()).entryList(QDir::Files), QStringList{QStringLiteral("old.doc")});
    QVERIFY(rec_->messages.isEmpty());
}

void TestReport::toolbarSaveWithNoIndexChosen() {
    calculate({});
    test::trigger(m_->mnuFileSave); // cancelled: nothing written
    QCOMPARE(QDir(folder()).entryList(QDir::Files), QStringList());
    rec_->saveName = path(QStringLiteral("menu"));
    test::trigger(m_->mnuFileSave);
    rec_->saveName = path(QStringLiteral("toolbar"));
    test::trigger(m_->toolbarButton(3));
    const QByteArray menu = readAll(path(QStringLiteral("menu.doc")));
    const QByteArray toolbar = readAll(path(QStringLiteral("toolbar.doc")));
    QVERIFY(menu.contains(" No indices has been selected,please select \r\n"));
    QVERIFY(toolbar.contains(" NO indices has been selected,please select \r\n"));
    QVERIFY(toolbar.contains("\r\n               indices those you want,from options menu.\r\n"));
    QCOMPARE(menu.size(), toolbar.size() + 1); // one blank less after the comma
}

// Three copies of a one-page report: three pages, each with its first line
// 2 cm to the right of the others' left edge.
void TestReport::printedCopiesEachStartAPage() {
    calculate({openOptions()->chkli});
    const QList<QList<Word>> pages = print(m_->mnuFilePrint, 3, QStringLiteral("three.pdf"));
    QCOMPARE(pages.size(), 3);
    for (const QList<Word>& page : pages) {
        const Word* time = find(page, QStringLiteral("Time"));
        const Word* date = find(page, QStringLiteral("Date"));
        QVERIFY(time && date);
        QCOMPARE(page.first().text, QStringLiteral("Time"));
        QVERIFY(qAbs(time->x - date->x - kTwoCm) < 0.5);
        QVERIFY(qAbs(time->y - pages[0][0].y) < 0.1);
        QVERIFY(find(page, QStringLiteral("values")));
        QVERIFY(find(page, QString(88, QLatin1Char('-'))));
        QVERIFY(find(page, QString(54, QLatin1Char('-'))));
    }
    QCOMPARE(rec_->printDialogs, 1);

    // cancelled, or a printer that cannot start its job: nothing printed, nothing said
    rec_->printCopies.reset();
    rec_->printToPdf = path(QStringLiteral("none.pdf"));
    test::trigger(m_->mnuFilePrint);
    QVERIFY(!QFile::exists(path(QStringLiteral("none.pdf"))));
    rec_->printCopies = 2;
    rec_->printToPdf = path(QStringLiteral("no such folder/r.pdf"));
    test::trigger(m_->mnuFilePrint);
    QVERIFY(!QFile::exists(rec_->printToPdf));
    QVERIFY(rec_->messages.isEmpty());

    // the toolbar's Print: the heading's rule is 83 hyphens
    const QList<QList<Word>> toolbar = print(m_->toolbarButton(5), 1, QStringLiteral("tb.pdf"));
    QCOMPARE(toolbar.size(), 1);
    QVERIFY(find(toolbar[0], QString(83, QLatin1Char('-'))));
    QVERIFY(!find(toolbar[0], QString(88, QLatin1Char('-'))));
}

// Every index and its explanation do not fit on one page: the report goes
// on at the top left of the printable area of the next, and the second copy
// starts on a page of its own.
void TestReport::aLongReportContinuesOnTheNextPage() {
    calculateWithEveryIndex();
    const QList<QList<Word>> pages = print(m_->mnuFilePrint, 2, QStringLiteral("long.pdf"));
    QCOMPARE(pages.size(), 4);
    const Word* time = find(pages[0], QStringLiteral("Time"));
    const Word* date = find(pages[0], QStringLiteral("Date"));
    QVERIFY(time && date && !pages[1].isEmpty());
    QVERIFY(!find(pages[1], QStringLiteral("Time")));
    // the second page's lines start on the line grid that begins at the top
    // of the printable area, 2 cm above the first line of the first page
    const double step = date->y - time->y;
    const double lines = (pages[1].first().y - (time->y - kTwoCm)) / step;
    QVERIFY2(qAbs(lines - qRound(lines)) < 0.02 && lines > -0.02 && lines < 2.5,
             qPrintable(QString::number(lines)));
    // and at the same left edge as every line but the first
    const Word* indented1 = find(pages[0], QStringLiteral("Description"));
    const Word* indented2 = find(pages[1], QStringLiteral("Description"));
    QVERIFY(indented1 && indented2);
    QVERIFY(qAbs(indented1->x - indented2->x) < 0.1);
    QCOMPARE(pages[2].first().text, QStringLiteral("Time"));
}

VELMORA_GUI_TEST_MAIN(TestReport)
#include "tst_report.moc"
