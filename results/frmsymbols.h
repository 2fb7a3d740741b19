// The symbols window: what each symbol of the equilibrium data means.
#pragma once

#include "windowkit/formsupport.h"

#include <QStringList>
#include <QWidget>

namespace velmora {

class frmsymbols : public SingleWindow<frmsymbols, QWidget> {
    Q_OBJECT

public:
    // The definitions, one label each, in the order they are listed.
    static const QStringList& definitions();

private:
    friend SingleWindow;
    frmsymbols();
};

} // namespace velmora
