// The example report of the documentation: the worked sample with the sample
// properties filled, saved and printed through the main window.
//   example_report OUTPUT_FOLDER  (writes example-report.doc and .pdf there)
#include "docs/pictures/docpictures.h"
#include "mainwindow/frmmain.h"
#include "mainwindow/frmproperties.h"
#include "mainwindow/properties.h"
#include "tests/support/recordingplatform.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>

#include <cstdio>

using namespace velmora;

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const QDir out = test::pictureFolder(argc, argv);
    test::RecordingPlatform rec;
    rec.clock = QDateTime::currentDateTime();
    frmMain* main = test::startWithWorkedSample();
    if (!main) return 1;
    openPropertiesDialog();
    frmproperties* p = frmproperties::instance();
    const std::pair<const char*, const char*> texts[] = {{"txtname", "Ann"},
                                                         {"txtfamily", "Okafor"},
                                                         {"txtorgan", "Delta Water"},
                                                         {"txtdate", "2024-05-16"},
                                                         {"txtlocation", "Well 3, north field"}};
    for (const auto& [name, text] : texts)
        p->findChild<QLineEdit*>(name)->setText(QString::fromLatin1(text));
    p->findChild<QPushButton*>("cmdOK")->click();

    rec.saveName = out.filePath("example-report");
    main->mnuFileSave->trigger();
    rec.printCopies = 1;
    rec.printToPdf = out.filePath("example-report.pdf");
    main->mnuFilePrint->trigger();

    const bool ok = QFile::exists(out.filePath("example-report.doc")) &&
                    QFile::exists(out.filePath("example-report.pdf"));
    std::printf("%s\n", ok ? "wrote example-report.doc and example-report.pdf" : "failed");
    return test::finishPictures(ok);
}
