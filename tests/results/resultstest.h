// What the tests of the result windows share: the index values they set,
// the controls they look up and closing the windows as the user does.
#pragma once

#include "results/frmenterper.h"
#include "results/frmmore.h"
#include "results/frmresult.h"
#include "results/frmsymbols.h"
#include "results/interpretation.h"
#include "tests/support/programfixture.h"

#include <QPushButton>
#include <QtTest>

namespace velmora::test {

// The value of an index at the measured pH (element 0 of its array).
inline double& measured(interp::Index index) {
    return (theEngine().sw.*interp::indexArray(index))(0);
}

// A control of `window` by its object name (a warning when there is none).
template <class T> T* control(QWidget* window, const QString& name) {
    T* w = window->findChild<T*>(name);
    if (!w) qWarning("no control %s in %s", qPrintable(name), qPrintable(window->objectName()));
    return w;
}

// The interpretation button of an index on the Results window.
inline QPushButton* interpretationButton(interp::Index index) {
    return control<QPushButton>(frmresult::instance(), QLatin1String(interp::buttonName(index)));
}

// Closes window W, when it is loaded, as the user does, and lets it go.
template <class W> void unload() {
    if (!W::isLoaded()) return;
    W::instance()->close();
    flushDeletions();
}

// Closes every result window.
inline void unloadResultWindows() {
    unload<frmenterper>();
    unload<frmsymbols>();
    unload<frmmore>();
    unload<frmresult>();
}

} // namespace velmora::test
