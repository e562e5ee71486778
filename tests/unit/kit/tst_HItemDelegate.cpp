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
};

QTEST_MAIN(TestHItemDelegate)
#include "tst_HItemDelegate.moc"
