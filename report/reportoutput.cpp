#include "report/reportoutput.h"

#include "platform/platform.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainter>
#include <QPrinter>
#include <QStringList>

namespace velmora::report {

namespace {

// The first two lines' time and date.
void stampClock(ReportInputs& in) {
    const QDateTime now = platform().now();
    in.time = longTimeText(now).toStdString();
    in.date = shortDateText(now).toStdString();
}

// Every statement end and every embedded line feed starts a new line on paper.
QStringList paperLines(const std::string& text) {
    QStringList lines;
    std::size_t start = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\n') continue;
        std::size_t end = i;
        if (end > start && text[end - 1] == '\r') --end;
        lines.append(QString::fromUtf8(text.data() + start, static_cast<qsizetype>(end - start)));
        start = i + 1;
    }
    if (start < text.size())
        lines.append(
            QString::fromUtf8(text.data() + start, static_cast<qsizetype>(text.size() - start)));
    return lines;
}

// Bold 10 points in a fixed-pitch face, so that the blanks line the columns up.
QFont reportFont() {
    QFont font(QStringLiteral("DejaVu Sans Mono"));
    font.setStyleHint(QFont::TypeWriter);
    font.setFixedPitch(true);
    font.setPointSizeF(10);
    font.setBold(true);
    return font;
}

} // namespace

void saveReport(QWidget* parent, ReportInputs inputs, const ReportStyle& style) {
    const QString chosen = platform().saveFileName(parent, QStringLiteral("word ducument(*.doc)"));
    if (chosen.isEmpty()) return;
    stampClock(inputs);
    const QByteArray bytes = QString::fromUtf8(compose(inputs, style)).toLocal8Bit();
    replaceFile(chosen + QStringLiteral(".doc"), bytes); // a failure ends silently
}

void printReport(QWidget* parent, ReportInputs inputs, const ReportStyle& style) {
    std::optional<Platform::PrintJob> job = platform().printDialog(parent);
    if (!job || !job->printer) return;
    stampClock(inputs);
    const QStringList lines = paperLines(compose(inputs, style));

    QPrinter& printer = *job->printer;
    printer.setFullPage(false); // the origin is the printable area's corner
    QPainter painter;
    if (!painter.begin(&printer)) return;
    painter.setFont(reportFont());
    const QFontMetricsF metrics(painter.font(), &printer);
    const double cm = printer.resolution() / 2.54;
    const double pageHeight = printer.height();
    const double step = metrics.lineSpacing();

    auto failed = [&] {
        if (printer.printerState() != QPrinter::Error) return false;
        printer.abort();
        return true;
    };
    for (int copy = 0; copy < job->copies; ++copy) {
        if (copy > 0 && !printer.newPage()) {
            printer.abort();
            return;
        }
        double x = 2 * cm, y = 2 * cm;
        for (const QString& line : lines) {
            if (y + step > pageHeight && y > 0) { // runs past the bottom: the next page
                if (!printer.newPage()) {
                    printer.abort();
                    return;
                }
                y = 0;
            }
            painter.drawText(QPointF(x, y + metrics.ascent()), line);
            x = 0;
            y += step;
        }
        if (failed()) return;
    }
    painter.end();
}

} // namespace velmora::report
