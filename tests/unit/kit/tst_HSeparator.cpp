// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/HSeparator.h"

#include <QtTest>

/// At a scale of one and a half, where a point isn't a whole number of pixels.
class TestHSeparator : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isASunkenLine()
    {
        const HSeparator line(nullptr);
        QCOMPARE(line.frameShape(), QFrame::HLine);
        QCOMPARE(line.frameShadow(), QFrame::Sunken);
    }

    void showsItsDarkAndItsLightLineWhereverItLies()
    {
        for (int place = 0; place < 4; ++place) {
            QWidget window;
            QPalette palette(QColor(238, 238, 238));
            palette.setColor(QPalette::Dark, Qt::black);
            palette.setColor(QPalette::Light, Qt::white);
            window.setPalette(palette);
            window.resize(40, 20);
            HSeparator line(&window);
            line.setGeometry(0, 5 + place, 40, line.sizeHint().height());
            const QImage picture = window.grab().toImage();
            QCOMPARE(picture.width(), 60);
            int dark = 0;
            int light = 0;
            for (int y = 0; y < picture.height(); ++y) {
                dark += picture.pixelColor(30, y) == QColor(Qt::black) ? 1 : 0;
                light += picture.pixelColor(30, y) == QColor(Qt::white) ? 1 : 0;
            }
            QVERIFY2(dark >= 1 && dark <= 2, qPrintable(QString::number(dark)));
            QVERIFY2(light >= 1 && light <= 2, qPrintable(QString::number(light)));
        }
    }
};

int main(int argc, char** argv)
{
    qputenv("QT_SCALE_FACTOR", "1.5");
    QApplication app(argc, argv);
    TestHSeparator test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_HSeparator.moc"
