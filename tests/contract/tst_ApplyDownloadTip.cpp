// SPDX-License-Identifier: GPL-2.0-or-later
#include "contract/ContractTest.h"

#include "progress/GeneralTip.h"

#include <QGridLayout>
#include <QHelpEvent>
#include <QLabel>
#include <QVBoxLayout>
#include <QtTest>

/// What the pointer over the item bar tells of parallel downloads, while a real Apply runs them.
class TestApplyDownloadTip : public ContractTest
{
    Q_OBJECT

    /// Both bars in a window of their own for as long as one exists.
    struct Window : QWidget {
        explicit Window(Contract& contract)
            : contract(contract)
        {
            auto* box = new QVBoxLayout(this);
            box->addWidget(&contract.itemBar);
            box->addWidget(&contract.totalBar);
            setAttribute(Qt::WA_AlwaysShowToolTips);
            resize(600, 80);
            show();
        }

        ~Window() override
        {
            contract.itemBar.setParent(nullptr);
            contract.totalBar.setParent(nullptr);
        }

        Contract& contract;
    };

    /// Puts the pointer over the item bar; the rows of the tip, "text | state".
    QStringList look()
    {
        QWidget& bar = contract->itemBar;
        const QPoint pos = bar.rect().center();
        QHelpEvent event(QEvent::ToolTip, pos, bar.mapToGlobal(pos));
        QApplication::sendEvent(&bar, &event);
        QStringList rows;
        if (!GeneralTip::it)
            return rows;
        const auto* layout = qobject_cast<QGridLayout*>(GeneralTip::it->layout());
        const auto textAt = [layout](int row, int column) {
            QLayoutItem* item = layout->itemAtPosition(row, column);
            const auto* label = item ? qobject_cast<QLabel*>(item->widget()) : nullptr;
            return label ? label->text() : QString();
        };
        for (int row = 0; row < layout->rowCount(); ++row)
            rows.append(textAt(row, 0) + " | " + textAt(row, 1));
        return rows;
    }

protected:
    void cleanup() override
    {
        delete GeneralTip::it;
        ContractTest::cleanup();
    }

private Q_SLOTS:
    void theTipTellsOfEachDownload()
    {
        const QJsonArray script{
            "yumIOC.listTransaction(base(installed=[member(name) for name in 'abcde']))",
            "yumIOC.userconfirm()",
            "files = [meter(name) for name in 'abcde']",
            "def start(file, size):",
            "    yumIOC.applyGrabMeterStart(files[file], 'http://host/x/%s-1-1.noarch.rpm' %",
            "                               'abcde'[file], '', '', size, '')",
            "yumIOC.applyGrabMultiMeterStart(5, 10000)",
            "for file in files[:4]:",
            "    yumIOC.applyGrabMultiMeterNew(file)",
            "start(0, 4000)",
            "start(1, 3000)",
            "start(2, None)",
            "start(3, 2000)",
            "yumIOC.applyGrabMeterUpdate(files[0], 1000)",
            "yumIOC.applyGrabMeterUpdate(files[1], 900)",
            "yumIOC.applyGrabMeterFailure(files[1], 'connection reset')",
            "yumIOC.applyGrabMeterEnd(files[3], 2000)",
            "yumIOC.applyGrabMultiMeterRemove(files[3])",
            "probe('look')",
            "start(1, 3000)",
            "yumIOC.applyGrabMeterUpdate(files[1], 1500)",
            "yumIOC.applyGrabMultiMeterNew(files[4])",
            "start(4, 500)",
            "yumIOC.applyGrabMeterEnd(files[4], 500)",
            "probe('look')",
            "yumIOC.applyGrabMultiMeterEnd()",
            "probe('look')",
        };
        QJsonArray packages;
        for (const char* name : {"a", "b", "c", "d", "e"})
            packages.append(Contract::package(name, {{"size", 2000}}));
        contract->play({{"multi", true}, {"available", packages}, {"apply", script}});
        QVERIFY(contract->collect());
        Window window(*contract);
        QVERIFY(QTest::qWaitForWindowExposed(&window));

        QList<QStringList> seen;
        QString bar;
        contract->probe([&](const QString& step) {
            if (step != "look")
                return;
            // The work thread waits, as it does in the midst of a download.
            QMetaObject::invokeMethod(
                &window,
                [&] {
                    seen.append(look());
                    bar = contract->itemBar.text();
                    delete GeneralTip::it;
                },
                Qt::BlockingQueuedConnection);
        });
        driver->expect("Apply").press("OK");
        QVERIFY(contract->engine().apply());

        QCOMPARE(seen.size(), 3);
        QCOMPARE(seen.at(0), QStringList({"Downloading a-1-1.noarch | 1000 / 4000 (0.25%%)",
                                          "Downloading b-1-1.noarch | Retrying",
                                          "Downloading c-1-1.noarch | In Progress",
                                          "Downloading d-1-1.noarch | Complete",
                                          "1 downloads | Not Started Yet"}));
        QCOMPARE(seen.at(1), QStringList({"Downloading a-1-1.noarch | 1000 / 4000 (0.25%%)",
                                          "Downloading b-1-1.noarch | 1500 / 3000 (0.5%%)",
                                          "Downloading c-1-1.noarch | In Progress",
                                          "Downloading d-1-1.noarch | Complete",
                                          "Downloading e-1-1.noarch | Complete"}));
        QVERIFY2(seen.at(2).isEmpty(), "without a batch there is no tip");
        QVERIFY2(bar.startsWith("Downloading 5 packages"), qPrintable(bar));
    }
};

QTEST_MAIN(TestApplyDownloadTip)
#include "tst_ApplyDownloadTip.moc"
