// The splash window shown while the program starts.
#pragma once

#include "windowkit/formsupport.h"

#include <QWidget>

class QFrame;
class QLabel;

namespace velmora {

class frmSplash : public SingleWindow<frmSplash, QWidget> {
    Q_OBJECT

public:
    // Removes the splash at once.
    static void unload();

    QFrame* fraMainFrame = nullptr;
    QLabel *Image1 = nullptr, *lblProductName = nullptr, *lblVersion = nullptr,
           *lblPlatform = nullptr, *Label1 = nullptr;

    void Form_Load();

private:
    friend SingleWindow;
    frmSplash();
};

} // namespace velmora
