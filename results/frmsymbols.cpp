#include "results/frmsymbols.h"

#include <QLabel>
#include <QVBoxLayout>

namespace velmora {

const QStringList& frmsymbols::definitions() {
    static const QStringList texts = {
        "lant    =Activity coeficient for trivalant ions",
        "land   =Activity coeficient for divalant ions",
        "lanm  =Activity coeficient for monovalant ions",
        "I        =Ionic strength of the solution with respect to all solutes(mol/li)",
        "A       = a constant which varies slightly with temprature",
        "pk1     =p-Notation for first equilibrium constant",
        "pck1   = p-notation for first equlibrium constant corrcted for ionic strength",
        "phs  =pH at saturation",
        "ch    =Hydrogen ion concentration(mol/li)",
        "oh-   =Hydroxide ion concentration(mol/li)",
        "pckw =p-Notation for ionic product for water corrected for ionic strength",
        "ckw   =ionic product for water corrected for ionic strength(mol/li)",
        "kw     =ionic product for water (mol/li)",
        "pkw   =p-Notation for ionic product for water",
        "pca     =p-Notation for calcium concentration",
        "a2        =ionasation factor of Co3--",
        "CO3--    =carbonate ion concentration (mol/li)",
        "H2CO3*= carbonic acid concentration(mol/li)",
        "cks      =Solubility product for calcium carbonate(mol/li)",
        "ck2     =second equilibrium constant(mol/li)",
        "ck1     =first equilibrium constant(mol/li)",
        "ct         =Total dissolved carbonate species(mol/li)",
        "a1        =ionisation factor of Hco3-",
        "a0        =ionisation factor of H2Co3*",
        "pck2   = p-notation for second equlibrium constant corrcted for ionic strength",
        "pcks    =p-Notation for solubility product for calcium carbonate corrected for ionic "
        "strength",
        "pks     =p-Notation for solubility product for calcium carbonate",
        "pk2     =p-Notation for second equilibrium constant",
        "HCO3-   =bicarbonate ion concentration(mol/li)",
    };
    return texts;
}

frmsymbols::frmsymbols() {
    setObjectName("frmsymbols");
    setWindowTitle("Symbols definition");

    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(2);
    layout->setContentsMargins(12, 10, 12, 10);
    int n = 0;
    for (const QString& text : definitions()) {
        auto* label = new QLabel(text, this);
        label->setObjectName(QStringLiteral("lblsymbol%1").arg(++n));
        label->setTextFormat(Qt::PlainText);
        layout->addWidget(label);
    }
    adjustSize();
}

} // namespace velmora
