#include "report/reportlayout.h"

#include "numtext/numtext.h"

#include <string_view>

namespace velmora::report {

namespace {

constexpr int kZoneWidth = 14;
constexpr const char* kCredit = "Written by the Velmora developers";

// The print statements: items are appended to the current line; a statement
// ends with CR LF unless it is left open for the next one to continue.
class Statements {
public:
    Statements& text(std::string_view s) {
        out_ += s;
        for (unsigned char c : s)
            if ((c & 0xC0) != 0x80) ++column_; // one column a character, not a byte
        return *this;
    }
    Statements& sp(int n) { return text(std::string(static_cast<std::size_t>(n), ' ')); }
    Statements& rule(int n) { return text(std::string(static_cast<std::size_t>(n), '-')); }
    Statements& lf() { return lineBreak("\n"); }
    // text+CRLF: a line that ends inside the statement
    Statements& line(std::string_view s) { return text(s).lineBreak("\r\n"); }
    Statements& num(double x) { return text(fmt::printNum(x)); }
    // blanks up to the start of the next print zone
    Statements& zone() { return sp(kZoneWidth - column_ % kZoneWidth); }
    // the end of a statement
    void end() { lineBreak("\r\n"); }

    std::string take() { return std::move(out_); }

private:
    Statements& lineBreak(std::string_view s) {
        out_ += s;
        column_ = 0;
        return *this;
    }
    std::string out_;
    int column_ = 0;
};

// The ion rows of a Lewis and Randall analysis, in the report's order.
constexpr Field kIonRows[] = {Field::k,   Field::na,  Field::zn,  Field::al,  Field::fe,
                              Field::mn,  Field::cl,  Field::f,   Field::no3, Field::no2,
                              Field::so4, Field::co3, Field::hco3};

struct IndexRow {
    interp::Index index;
    bool leadingBlanks; // the first two rows start with two blanks before their line feed
    const char* code;
    int gap;
    const char* header;
};

// In report order, which is ReportIndex's.
const IndexRow kIndexRows[kIndexCount] = {
    {interp::Index::Langelier, true, " LI", 15, " Langelier index(LI):"},
    {interp::Index::Ryznar, true, " RI", 15, " Stability index(Ryznar index):"},
    {interp::Index::Puckorius, false, " PSI", 14, " Puckorius index :"},
    {interp::Index::Aggressiveness, false, " AI", 15, " Aggressiveness index(AI) :"},
    {interp::Index::DrivingForce, false, " DFI", 14, " Driving Force index(DFI) :"},
    {interp::Index::LarsonSkold, false, " LR", 15, " Larson & Scold index (LR) :"},
    {interp::Index::MomentaryExcess, false, " ME", 15, " Momentary Excess index(ME) :"},
    {interp::Index::SaturationLevel, false, " SL", 15, " Carbonate Saturation Level index :"},
};

void heading(Statements& w, const ReportInputs& in, const ReportStyle& st) {
    w.text("Time :").text(in.time).sp(7).text("Velmora").end();
    w.text("Date :").text(in.date).sp(15).text(" Version 1.0 ").end();
    w.sp(34).text("May 2008").end();
    w.sp(16).text(kCredit).end();
    w.sp(5).rule(st.titleRule).end();
    w.sp(2).text("Scaling and Corrosion Characterisrics of Water").end();
}

void sampleProperties(Statements& w, const ReportInputs& in) {
    w.lf().sp(2).text("Sample Properties").sp(1).text(":").end();
    w.sp(2).lf();
    w.sp(6).text("Operator name :").sp(1).text(in.operatorName).sp(1).text(in.familyName).lf();
    w.sp(6).text("Date of sampling :").sp(1).text(in.samplingDate).lf();
    w.sp(6).text("Organization Name :").sp(1).text(in.organization).lf();
    w.sp(6).text("sample location name :").sp(1).text(in.location).lf();
    w.end();
}

void analysisTable(Statements& w, const ReportInputs& in, const ReportStyle& st) {
    // a row of the table: label, unit and value, with the blanks between them
    auto row = [&](Field f, int beforeUnit, int afterUnit) -> Statements& {
        const FieldInfo& fi = fieldInfo(f);
        w.sp(10).text(fi.reportLabel).sp(beforeUnit).text(fi.reportUnit).sp(afterUnit);
        return w.text(in.analysis[f]);
    };
    auto gap = [](Field f) { return fieldInfo(f).reportGap; };
    w.sp(2).text(" Water Characterisrics").sp(1).text(":").end();
    w.sp(2).lf().sp(15).text("Parameter").sp(10).text("Unit").sp(12).text("Value").lf();
    w.sp(12).rule(st.tableRule); // left open
    if (in.bllang) {
        w.sp(2).lf();
        row(Field::tds, gap(Field::tds), 10).end();
    }
    if (in.blrus) {
        w.sp(2).lf();
        row(Field::ec, gap(Field::ec), 2).end();
    }
    w.sp(2).lf();
    row(Field::alk, st.alkBefore, st.alkAfter).lf();
    row(Field::t, gap(Field::t), 14).lf();
    row(Field::ph, st.phBefore, st.phAfter).lf();
    row(Field::ca, gap(Field::ca), 13).end();
    if (in.bllewis) {
        bool first = true;
        for (const Field f : kIonRows) {
            if (!first) w.lf();
            first = false;
            row(f, gap(f), 13);
        }
        w.end();
    }
}

void indexTable(Statements& w, const ReportInputs& in, const ReportStyle& st) {
    w.lf().sp(2).text(st.indicesTitle).end();
    w.sp(2).lf().sp(15).text("Index").sp(10).text("Unit").sp(12).text("Value").lf();
    w.sp(12).rule(st.indexRule); // left open
    bool any = false;
    for (int i = 0; i < kIndexCount; ++i) {
        if (!in.chosen[i]) continue;
        any = true;
        const IndexRow& row = kIndexRows[i];
        if (row.leadingBlanks) w.sp(2);
        w.lf().sp(14).text(row.code).sp(row.gap).text("-").sp(11);
        w.num(fmt::roundHalfEven(in.value[i], 6)).end();
    }
    if (!any) {
        w.lf().sp(14).text(st.noIndices).end();
        w.sp(st.noIndicesIndent).text(st.noIndicesHint).end();
    }
    w.lf().sp(12).rule(st.closingRule).zone().lf(); // left open
}

void interpretations(Statements& w, const ReportInputs& in) {
    w.lf().sp(2).text(" Corrosion indices interpertation:").end();
    for (int i = 0; i < kIndexCount; ++i) {
        if (!in.chosen[i]) continue;
        const IndexRow& row = kIndexRows[i];
        w.lf().sp(5).text(row.header).end();
        // the unrounded value decides
        const interp::Row* explained = interp::matchingRow(row.index, in.value[i]);
        if (!explained) continue;
        const auto& lines = explained->reportText();
        w.lf();
        for (std::size_t l = 0; l + 1 < lines.size(); ++l)
            w.sp(9).line(lines[l]);
        if (!lines.empty()) w.sp(9).text(lines.back());
        w.end();
    }
}

} // namespace

interp::Index interpretationOf(ReportIndex index) {
    return kIndexRows[index].index;
}

ReportStyle savedStyle() {
    return {};
}

ReportStyle savedToolbarStyle() {
    ReportStyle s;
    s.noIndices = " NO indices has been selected,please select ";
    s.noIndicesHint = "indices those you want,from options menu.";
    return s;
}

ReportStyle printedStyle() {
    ReportStyle s;
    s.titleRule = 88;
    s.tableRule = 57;
    s.alkBefore = 10;
    s.alkAfter = 3;
    s.phBefore = 25;
    s.phAfter = 15;
    s.indicesTitle = " water corrosion indices values :";
    s.indexRule = 56;
    s.noIndicesIndent = 1;
    s.closingRule = 54;
    return s;
}

ReportStyle printedToolbarStyle() {
    ReportStyle s = printedStyle();
    s.titleRule = 83;
    return s;
}

std::string compose(const ReportInputs& in, const ReportStyle& style) {
    Statements w;
    heading(w, in, style);
    sampleProperties(w, in);
    analysisTable(w, in, style);
    indexTable(w, in, style);
    interpretations(w, in);
    return w.take();
}

} // namespace velmora::report
