// The interpretation window: one index explained in words on a background
// of its severity colour.
#pragma once

#include "windowkit/formsupport.h"

#include <QColor>
#include <QWidget>

class QPlainTextEdit;

namespace velmora {

class frmenterper : public SingleWindow<frmenterper, QWidget> {
    Q_OBJECT

public:
    // The explanation box, at the window's top left corner.
    QPlainTextEdit* text1() const { return text1_; }

    // The severity colour around the explanation box.
    void setBackColour(const QColor& colour);
    QColor backColour() const;

    // Shows the explanation in bold type from now on while the window lives.
    void setTextBold();

private:
    friend SingleWindow;
    frmenterper();
    QPlainTextEdit* text1_ = nullptr;
};

} // namespace velmora
