// The splash window shown while the program starts.
#pragma once

#include <QWidget>

class QFrame;
class QLabel;

namespace velmora {

class frmSplash : public QWidget {
    Q_OBJECT

public:
    static frmSplash* instance();
    static bool isLoaded();
    // Removes the splash at once.
    static void unload();
    ~frmSplash() override;

    QFrame* fraMainFrame = nullptr;
    QLabel *Image1 = nullptr, *lblProductName = nullptr, *lblVersion = nullptr,
           *lblPlatform = nullptr, *Label1 = nullptr;

    void Form_Load();

private:
    frmSplash();
};

} // namespace velmora
