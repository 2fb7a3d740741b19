// Pictures of the Results window, the Ryznar interpretation and the
// equilibrium data window for the documentation, after the worked sample;
// --all adds the symbols window and the sample properties dialog.
//   results_screenshots OUTPUT_FOLDER [--all]
#include "docs/pictures/docpictures.h"
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
