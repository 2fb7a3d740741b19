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
#include "mainwindow/frmmain.h"
#include "mainwindow/frmproperties.h"
#include "mainwindow/properties.h"
#include "results/frmenterper.h"
#include "results/frmmore.h"
#include "results/frmresult.h"
#include "results/frmsymbols.h"
#include "tests/support/docpictures.h"

#include <QApplication>
#include <QDir>
#include <QPushButton>

using namespace velmora;

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const QDir out = test::pictureFolder(argc, argv);
    frmMain* main = test::startWithWorkedSample();
    if (!main) return 1;
    main->cmdshow->click();
    frmresult* results = frmresult::instance();
    results->move(20, 20);
    bool ok = test::savePicture(results, out.filePath("results.png"));

    results->findChild<QPushButton*>("cmdri")->click();
    frmenterper::instance()->move(20, 20);
    ok = test::savePicture(frmenterper::instance(), out.filePath("interpretation.png")) && ok;

    results->findChild<QPushButton*>("cmdmore")->click();
    frmmore::instance()->move(20, 20);
    ok = test::savePicture(frmmore::instance(), out.filePath("equilibrium.png")) && ok;

    if (argc > 2 && QByteArray(argv[2]) == "--all") {
        frmmore::instance()->findChild<QPushButton*>("cmddiscript")->click();
        frmsymbols::instance()->move(20, 20);
        ok = test::savePicture(frmsymbols::instance(), out.filePath("symbols.png")) && ok;
        openPropertiesDialog();
        frmproperties::instance()->move(20, 20);
        ok = test::savePicture(frmproperties::instance(), out.filePath("properties.png")) && ok;
    }

    return test::finishPictures(ok);
}
