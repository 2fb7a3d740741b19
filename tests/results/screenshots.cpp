// Pictures of the Results window, one interpretation window and the
// equilibrium data window for the documentation: the program started as the
// user starts it, the worked sample (25 °C, pH 7.5, alkalinity 200, Ca 80,
// TDS 400, Cl 50, SO4 60 mg/L, Langelier ionic strength, every index) read
// and calculated, then Show results, Ryznar and More results clicked.
//
//   results_screenshots OUTPUT_FOLDER [--all]
//
// --all adds the symbols window and the sample properties dialog.
// Run it under a real display (xvfb-run) or offscreen.
#include "app/startup.h"
#include "mainwindow/frmmain.h"
#include "mainwindow/frmproperties.h"
#include "mainwindow/properties.h"
#include "results/frmenterper.h"
#include "results/frmmore.h"
#include "results/frmresult.h"
#include "results/frmsymbols.h"

#include <QApplication>
#include <QDir>
#include <QPushButton>
#include <QStandardPaths>
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
    const QDir out(QString::fromLocal8Bit(argv[1]));

    // The user's saved window placement is neither read nor written.
    QStandardPaths::setTestModeEnabled(true);
    frmMain* main = startProgram();
    runDemoSample(main);
    if (!main->cmdshow->isEnabled()) {
        std::fprintf(stderr, "the worked sample was not calculated\n");
        return 1;
    }
    main->cmdshow->click();
    frmresult* results = frmresult::instance();
    results->move(20, 20);
    bool ok = save(results, out.filePath("results.png"));

    results->findChild<QPushButton*>("cmdri")->click();
    frmenterper::instance()->move(20, 20);
    ok = save(frmenterper::instance(), out.filePath("interpretation.png")) && ok;

    results->findChild<QPushButton*>("cmdmore")->click();
    frmmore::instance()->move(20, 20);
    ok = save(frmmore::instance(), out.filePath("equilibrium.png")) && ok;

    if (argc > 2 && QByteArray(argv[2]) == "--all") {
        frmmore::instance()->findChild<QPushButton*>("cmddiscript")->click();
        frmsymbols::instance()->move(20, 20);
        ok = save(frmsymbols::instance(), out.filePath("symbols.png")) && ok;
        openPropertiesDialog();
        frmproperties::instance()->move(20, 20);
        ok = save(frmproperties::instance(), out.filePath("properties.png")) && ok;
    }

    QApplication::closeAllWindows();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return ok ? 0 : 1;
}
