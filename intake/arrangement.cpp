#include "intake/arrangement.h"

namespace velmora {

Equation equationOf(const EquationFlags& flags) {
    if (flags.bllewis) return Equation::Lewis;
    if (flags.blrus) return Equation::Russell;
    return Equation::Langelier;
}

Arrangement arrangement(Equation equation, bool larsonSkold) {
    Arrangement a;
    a.role.of.fill(Role::Unused);
    // every equation: temperature, pH, alkalinity and calcium
    for (Field f : {Field::t, Field::ph, Field::alk, Field::ca})
        a.role[f] = Role::Required;
    switch (equation) {
    case Equation::Langelier:
        a.role[Field::tds] = Role::Required;
        break;
    case Equation::Russell:
        a.role[Field::ec] = Role::Required;
        break;
    case Equation::Lewis:
        for (Field f : {Field::mg, Field::k, Field::na, Field::zn, Field::mn, Field::fe, Field::al,
                        Field::no2, Field::no3, Field::f, Field::cl, Field::so4})
            a.role[f] = Role::Optional;
        a.role[Field::hco3] = a.role[Field::co3] = Role::CarbonatePair;
        break;
    }
    // the Larson-Skold index needs chloride and sulphate (Lewis and Randall
    // offers them anyway, without asking)
    const bool askChlorideSulphate = larsonSkold && equation != Equation::Lewis;
    if (askChlorideSulphate) a.role[Field::cl] = a.role[Field::so4] = Role::Optional;
    for (const FieldInfo& fi : kFields)
        a.needed[fi.field] =
            a.role[fi.field] == Role::Required ||
            (askChlorideSulphate && (fi.field == Field::cl || fi.field == Field::so4));
    return a;
}

} // namespace velmora
