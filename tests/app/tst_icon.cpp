// The application icon: the main window shows the program's picture, and
// the icon theme's pictures (the scalable one included) are that picture.
#include "windowkit/programpicture.h"
#include "app/startup.h"
#include "mainwindow/frmmain.h"
#include "tests/support/guitest.h"
#include "tests/support/programfixture.h"

#include <QPainter>
#ifdef VELMORA_ICON_DIR
#include <QSvgRenderer>
#endif

using namespace velmora;

namespace {

// The mean difference of two pictures' channels, 0 to 255.
double meanDifference(const QImage& a, const QImage& b) {
    const QImage x = a.convertToFormat(QImage::Format_ARGB32);
    const QImage y = b.convertToFormat(QImage::Format_ARGB32);
    double sum = 0;
    for (int row = 0; row < x.height(); ++row)
        for (int col = 0; col < x.width(); ++col) {
            const QRgb p = x.pixel(col, row), q = y.pixel(col, row);
            sum += std::abs(qRed(p) - qRed(q)) + std::abs(qGreen(p) - qGreen(q)) +
                   std::abs(qBlue(p) - qBlue(q)) + std::abs(qAlpha(p) - qAlpha(q));
        }
    return sum / (4.0 * x.width() * x.height());
}

} // namespace

class IconTest : public test::ProgramTest {
    Q_OBJECT

private slots:
    void sizes_data() {
        QTest::addColumn<int>("side");
        for (int side : kIconSizes)
            QTest::addRow("%d", side) << side;
    }

    // The drop fills its square from top to bottom, and only the drop: the
    // corners stay transparent.
    void sizes() {
        QFETCH(int, side);
        const QImage image = programIconImage(side);
        QCOMPARE(image.size(), QSize(side, side));
        int top = side, bottom = -1;
        for (int y = 0; y < side; ++y)
            for (int x = 0; x < side; ++x)
                if (qAlpha(image.pixel(x, y)) > 128) {
                    top = std::min(top, y);
                    bottom = std::max(bottom, y);
                }
        QVERIFY2(bottom - top + 1 >= side * 0.85,
                 qPrintable(QString("%1..%2").arg(top).arg(bottom)));
        for (QPoint corner : {QPoint(0, 0), QPoint(side - 1, 0), QPoint(0, side - 1)})
            QCOMPARE(qAlpha(image.pixel(corner)), 0);
    }

    void mainWindowShowsTheProgramPicture() {
        for (int side : {16, 32, 256}) {
            const QImage shown = m_->windowIcon().pixmap(side, side).toImage();
            QCOMPARE(shown.size(), QSize(side, side));
            QVERIFY2(meanDifference(shown, programIconImage(side)) < 0.5,
                     qPrintable(QString::number(side)));
        }
        // the desktop entry the window belongs to
        QCOMPARE(QGuiApplication::desktopFileName(), QStringLiteral(VELMORA_APP_ID));
    }

#ifdef VELMORA_ICON_DIR
    // The scalable icon draws what the program paints, at any size.
    void scalableIconIsThePicture_data() {
        QTest::addColumn<int>("side");
        for (int side : {48, 256})
            QTest::addRow("%d", side) << side;
    }
    void scalableIconIsThePicture() {
        QFETCH(int, side);
        QSvgRenderer svg(QStringLiteral(VELMORA_ICON_DIR "/hicolor/scalable/apps/velmora.svg"));
        QVERIFY(svg.isValid());
        QImage drawn(side, side, QImage::Format_ARGB32_Premultiplied);
        drawn.fill(Qt::transparent);
        QPainter p(&drawn);
        svg.render(&p);
        p.end();
        const double difference = meanDifference(drawn, programIconImage(side));
        QVERIFY2(difference < 3, qPrintable(QString::number(difference)));
    }
#endif
};

VELMORA_GUI_TEST_MAIN(IconTest)
#include "tst_icon.moc"
