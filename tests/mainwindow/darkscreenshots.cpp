// Pictures of the program on a dark desktop palette for the documentation:
// the main window and the Results window after the worked sample has been
// read and calculated with every index and a pH sweep.
//
//   dark_screenshots OUTPUT_FOLDER
//
// Run it under a real display (xvfb-run) or offscreen.
#include "app/startup.h"
#include "mainwindow/frmmain.h"
#include "results/frmresult.h"
#include "tests/support/darkpalette.h"

#include <QApplication>
#include <QDir>
#include <QPushButton>
#include <QStandardPaths>
#include <QStyleFactory>
#include <QTest>

#include <cstdio>

using namespace velmora;

namespace {

bool save(QWidget* w, const QString& file) {
    QTest::qWait(150);
    const bool ok = w->grab().save(file);
    std::printf("%s %s\n", ok ? "wrote" : "could not write", qPrintable(file));
    return ok;
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s OUTPUT_FOLDER\n", argv[0]);
        return 2;
    }
    // absolute before the program starts (it may change the working folder)
    const QDir out(QDir(QString::fromLocal8Bit(argv[1])).absolutePath());
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setPalette(test::darkPalette());

    QStandardPaths::setTestModeEnabled(true);
    frmMain* main = startProgram();
    runDemoSample(main);
    if (!main->cmdshow->isEnabled()) {
        std::fprintf(stderr, "the worked sample was not calculated\n");
        return 1;
    }
    bool ok = save(main, out.filePath("mainwindow-dark.png"));
    main->cmdshow->click();
    frmresult::instance()->move(20, 20);
    ok = save(frmresult::instance(), out.filePath("results-dark.png")) && ok;

    QApplication::closeAllWindows();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return ok ? 0 : 1;
}
