// SPDX-License-Identifier: GPL-2.0-or-later
#include "log/Log.h"

#include <QMutexLocker>
#include <QSignalSpy>
#include <QTest>

#include <thread>
#include <vector>

class TestEntryList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void kindsHaveTheNumbersThatTheScriptUses()
    {
        QCOMPARE(int(Log::Plain), 0);
        QCOMPARE(int(Log::Output), 1);
        QCOMPARE(int(Log::Warning), 2);
        QCOMPARE(int(Log::Error), 3);
        QCOMPARE(int(Log::Action), 4);
    }

    void tellsOfNewEntriesOnlyWhenAsked()
    {
        Log::EntryList log;
        QSignalSpy appended(&log, &Log::EntryList::appended);
        log.entries.append(Log::Entry(Log::Warning, 4, "text"));
        QCOMPARE(appended.count(), 0);
        log.emitAppended();
        QCOMPARE(appended.count(), 1);
        QCOMPARE(log.entries[0].kind, Log::Warning);
        QCOMPARE(log.entries[0].level, 4u);
        QCOMPARE(log.entries[0].text, QString("text"));
    }

    void takesEntriesOfSeveralThreads()
    {
        Log::EntryList log;
        std::vector<std::thread> writers;
        for (int writer = 0; writer < 4; ++writer) {
            writers.emplace_back([&log] {
                for (int line = 0; line < 500; ++line) {
                    {
                        const QMutexLocker lock(&log.mutex);
                        log.entries.append(Log::Entry(Log::Output, 0, QString::number(line)));
                    }
                    log.emitAppended();
                }
            });
        }
        for (std::thread& writer : writers)
            writer.join();
        QCOMPARE(log.entries.size(), 2000);
    }
};

QTEST_GUILESS_MAIN(TestEntryList)
#include "tst_EntryList.moc"
