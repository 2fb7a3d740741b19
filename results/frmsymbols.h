// The symbols window: what each symbol of the equilibrium data means.
#pragma once

#include <QStringList>
#include <QWidget>

namespace velmora {

class frmsymbols : public QWidget {
    Q_OBJECT

public:
    static frmsymbols* instance();
    static bool isLoaded();
    ~frmsymbols() override;

    // The definitions, one label each, in the order they are listed.
    static const QStringList& definitions();

private:
    frmsymbols();
};

} // namespace velmora
