// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/HFrameLabel.h"

#include "kit/Colors.h"

#include <QLabel>
#include <QLayout>
#include <QTest>

class TestHFrameLabel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsNeitherFrameNorColorWithoutText()
    {
        QWidget parent;
        HFrameLabel label(&parent);
        const QPalette plain = label.palette();
        QCOMPARE(label.frameShape(), QFrame::NoFrame);
        label.setPalette(Colors::makeError(plain));
        QCOMPARE(label.palette().color(QPalette::Window), plain.color(QPalette::Window));
        label.setText("text");
        label.setText(QString());
        QCOMPARE(label.frameShape(), QFrame::NoFrame);
        QCOMPARE(label.palette().color(QPalette::Window), plain.color(QPalette::Window));
    }

    void aPaletteSetOnAnEmptyLabelShowsWithTheFirstTextAndGoesWithIt()
    {
        HFrameLabel label;
        const QPalette plain = label.palette();
        const QColor red(Colors::errorBg());
        label.setPalette(Colors::makeError(plain));
        label.setText("text");
        QCOMPARE(label.palette().color(QPalette::Window), red);
        QCOMPARE(label.frameShape(), QFrame::StyledPanel);
        label.setText(QString());
        QCOMPARE(label.palette().color(QPalette::Window), plain.color(QPalette::Window));
        label.setText("again");
        QCOMPARE(label.palette().color(QPalette::Window), red);
    }

    void aPaletteSetOnALabelWithTextShowsAtOnce()
    {
        HFrameLabel label("text");
        QCOMPARE(label.frameShape(), QFrame::StyledPanel);
        label.setPalette(Colors::makeOK(label.palette()));
        QCOMPARE(label.palette().color(QPalette::Window), QColor(Colors::okBg()));
    }

    void showsATextThatLooksLikeMarkupAsItIs()
    {
        const auto sizeOf = [](const char* text) {
            return HFrameLabel(QString::fromLatin1(text)).sizeHint();
        };
        QVERIFY(sizeOf("<b>m</b>").width() > sizeOf("mmm").width());
        QCOMPARE(sizeOf("<p>m<p>m").height(), sizeOf("m").height());
    }

    void centresItsTextAndFillsItsBackground()
    {
        HFrameLabel label("text");
        const auto* inner = label.findChild<QLabel*>();
        QVERIFY(inner);
        QCOMPARE(inner->text(), QString("text"));
        QCOMPARE(label.text(), QString("text"));
        QCOMPARE(inner->alignment(), Qt::Alignment(Qt::AlignCenter));
        QVERIFY(label.autoFillBackground());
        QCOMPARE(label.frameShadow(), QFrame::Plain);
        QCOMPARE(label.layout()->contentsMargins(), QMargins(2, 2, 2, 2));
    }
};

QTEST_MAIN(TestHFrameLabel)
#include "tst_HFrameLabel.moc"
