#include "tests/support/guitest.h"

#include "app/startup.h"

#include <QDir>
#include <QStandardPaths>

#include <cstdlib>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

namespace velmora::test {

void prepareGuiTestEnvironment() {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) {
        std::string dir = QDir::tempPath().toStdString() + "/velmora-test-XXXXXX";
        if (mkdtemp(dir.data())) {
            chmod(dir.c_str(), 0700);
            qputenv("XDG_RUNTIME_DIR", QByteArray::fromStdString(dir));
        }
    }
    QStandardPaths::setTestModeEnabled(true);
    linkWindows();
}

} // namespace velmora::test
