// The twenty fields of a water analysis, defined once: the main window's
// boxes and labels, Read Data, velmora-calc's columns and the report all
// take their names, captions and units from here.
#pragma once

#include <array>
#include <cstddef>
#include <string>

namespace velmora {

// In the order of the analysis record (and of velmora-calc's columns).
enum class Field {
    tds,
    ec,
    t,
    ph,
    alk,
    ca,
    mg,
    k,
    na,
    zn,
    mn,
    fe,
    al,
    hco3,
    co3,
    no2,
    no3,
    f,
    cl,
    so4
};
inline constexpr std::size_t kFieldCount = 20;

// The frames of the main window that hold the boxes.
enum class FieldGroup { Basic, Solids, Cations, Anions };

struct FieldInfo {
    Field field;
    const char* name; // the CSV column; the main window's txt<name> and lbl<name>
    FieldGroup group; // the frame of its box
    int row;          // its row in that frame
    const char* caption;
    const char* tip;
    // The report's row: label, blanks before the unit, unit (null when the
    // report lists no such row).
    const char* reportLabel;
    int reportGap;
    const char* reportUnit;
};

// clang-format off
inline constexpr std::array<FieldInfo, kFieldCount> kFields = {{
    {Field::tds, "tds", FieldGroup::Solids, 0, "Dissolved solids (TDS) =", "As mg/L", "Dissolved solids(TDS)", 3, "mg / L"},
    {Field::ec, "ec", FieldGroup::Solids, 1, "Electrical conductivity  = ", "As Mili-Siemens per meter (mS/m)", "Electrical conductivity(EC)", 3, "mS/m"},
    {Field::t, "t", FieldGroup::Basic, 2, "Temperture (T)     =  ", "T as Celsius ", "Temperture(Tc)", 12, "C"},
    {Field::ph, "ph", FieldGroup::Basic, 1, "  pH                      =    ", "Between 1 to 14", "pH", 24, "-"},
    {Field::alk, "alk", FieldGroup::Basic, 0, "  Alkalinity (ALK)   =", "As mg/L caco3", "Alkalinity(ALK)", 9, "mg/L as caco3"},
    {Field::ca, "ca", FieldGroup::Cations, 0, "  Calcium as Ca             =", "As mg/L", "Calcium as Ca", 11, "mg/L"},
    {Field::mg, "mg", FieldGroup::Cations, 1, "  Magnesium as Mg       =", "As mg/L", nullptr, 0, nullptr},
    {Field::k, "k", FieldGroup::Cations, 2, "Potassium as K            =", "As mg/L", "Potassium as K", 10, "mg/L"},
    {Field::na, "na", FieldGroup::Cations, 3, "Sodium as Na              =", "As mg/L", "Sodium as Na", 12, "mg/L"},
    {Field::zn, "zn", FieldGroup::Cations, 4, "Zinc as Zn                   =", "As mg/L", "Zinc as Zn", 14, "mg/L"},
    {Field::mn, "mn", FieldGroup::Cations, 5, "Manganese as Mn      =", "As mg/L", "Manganese as Mn", 9, "mg/l"},
    {Field::fe, "fe", FieldGroup::Cations, 6, "Iron as Fe                    =", "As mg/L", "Iron as Fe", 14, "mg/L"},
    {Field::al, "al", FieldGroup::Cations, 7, "Aluminium as AL          =", "As mg/L", "Aluminium as AL", 9, "mg/L"},
    {Field::hco3, "hco3", FieldGroup::Anions, 0, "Bicarbonate as HCO3   =", "As mg/L", "Bicarbonate as Hco3", 5, "mg/L"},
    {Field::co3, "co3", FieldGroup::Anions, 1, "Carbonate as CO3        =", "As mg/L", "Carbonate as Co3", 8, "mg/L"},
    {Field::no2, "no2", FieldGroup::Anions, 2, "Nitrite as NO2              =", "As mg/L", "Nitrite as No2", 10, "mg/L"},
    {Field::no3, "no3", FieldGroup::Anions, 3, "Nitrate as NO3             =", "As mg/L", "Nitrate as No3", 10, "mg/L"},
    {Field::f, "f", FieldGroup::Anions, 4, "Fluoride as F                 =", "As mg/L", "Fluoride as F", 11, "mg/L"},
    {Field::cl, "cl", FieldGroup::Anions, 5, "Chloride as Cl              =", "As mg/L", "Cloride as Cl", 11, "mg/L"},
    {Field::so4, "so4", FieldGroup::Anions, 6, "Solphate as SO4         =", "As mg/L", "Solphate as So4", 9, "mg/L"},
}};
// clang-format on
static_assert(
    [] {
        for (std::size_t i = 0; i < kFieldCount; ++i)
            if (kFields[i].field != static_cast<Field>(i)) return false;
        return true;
    }(),
    "kFields is in the order of Field");

constexpr const FieldInfo& fieldInfo(Field f) {
    return kFields[static_cast<std::size_t>(f)];
}

// One value per field, indexed by Field.
template <class T> struct PerField {
    std::array<T, kFieldCount> of{};
    T& operator[](Field f) { return of[static_cast<std::size_t>(f)]; }
    const T& operator[](Field f) const { return of[static_cast<std::size_t>(f)]; }
};

// The texts of the twenty analysis boxes, exactly as typed.
using AnalysisTexts = PerField<std::string>;

} // namespace velmora
