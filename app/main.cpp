// The desktop program: the start procedure, then the windows' events.
#include "app/startup.h"

#include <QApplication>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    velmora::frmMain* main = velmora::startProgram();
    // VELMORA_DEMO=sample types the worked sample and calculates;
    // VELMORA_QUIT_AFTER_SHOW=1 quits once the main window has been painted.
    if (qEnvironmentVariable("VELMORA_DEMO") == QLatin1String("sample"))
        velmora::runDemoSample(main);
    if (qEnvironmentVariableIsSet("VELMORA_QUIT_AFTER_SHOW")) velmora::quitAfterFirstPaint(main);
    return app.exec();
}
