// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/HItemDelegate.h"

#include <QImage>
#include <QPainter>
#include <QTest>

class TestHItemDelegate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// A text that is wider than its cell is drawn as one line with or without the feature.
    void neverWrapsText()
    {
        const auto draw = [](bool wrap, auto paint) {
            QImage image(150, 300, QImage::Format_RGB32);
            image.fill(Qt::white);
            QPainter painter(&image);
            QStyleOptionViewItem option;
            option.rect = image.rect();
            option.state = QStyle::State_Enabled;
            option.textElideMode = Qt::ElideRight;
            option.displayAlignment = Qt::AlignLeft | Qt::AlignTop;
            option.features.setFlag(QStyleOptionViewItem::WrapText, wrap);
            paint(&painter, option, image.rect());
            return image;
        };
        const QString text("several words that do not fit into the cell");
        const HItemDelegate delegate(nullptr);
        const auto ours = [&](QPainter* painter, const QStyleOptionViewItem& option,
                              const QRect& rect) {
            delegate.drawDisplay(painter, option, rect, text);
        };
        struct Base : QItemDelegate {
            using QItemDelegate::drawDisplay;
        } base;
        const auto theirs = [&](QPainter* painter, const QStyleOptionViewItem& option,
                                const QRect& rect) {
            base.drawDisplay(painter, option, rect, text);
        };

        QVERIFY2(draw(true, theirs) != draw(false, theirs), "the base would wrap");
        QCOMPARE(draw(true, ours), draw(false, theirs));
        QCOMPARE(draw(false, ours), draw(false, theirs));
    }

    /// The colours of rows are made for light backgrounds.
    void lightensTextOnDarkBackgrounds_data()
    {
        QTest::addColumn<QColor>("background");
        QTest::addColumn<bool>("enabled");
        QTest::addColumn<bool>("asGiven");
        QTest::newRow("light") << QColor(Qt::white) << true << true;
        QTest::newRow("dark") << QColor(35, 38, 41) << true << false;
        QTest::newRow("dark, disabled") << QColor(35, 38, 41) << false << true;
    }

    void lightensTextOnDarkBackgrounds()
    {
        QFETCH(QColor, background);
        QFETCH(bool, enabled);
        const QColor brown("#8b5a2b");
        QImage image(200, 60, QImage::Format_RGB32);
        image.fill(background);
        QStyleOptionViewItem option;
        option.rect = image.rect();
        option.state.setFlag(QStyle::State_Enabled, enabled);
        option.font.setPixelSize(40);
        option.font.setBold(true);
        option.palette.setColor(QPalette::Base, background);
        option.palette.setColor(QPalette::Text, brown);
        QPainter painter(&image);
        HItemDelegate(nullptr).drawDisplay(&painter, option, image.rect(), QString("HHH"));
        painter.end();

        int given = 0;
        int drawn = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                given += image.pixelColor(x, y) == brown ? 1 : 0;
                drawn += image.pixelColor(x, y) != background ? 1 : 0;
            }
        }
        QVERIFY(drawn > 0);
        QTEST(given > 0, "asGiven");
    }
};

QTEST_MAIN(TestHItemDelegate)
#include "tst_HItemDelegate.moc"
