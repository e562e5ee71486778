// SPDX-License-Identifier: GPL-2.0-or-later
#include "ApplySession.h"

/// Where a repository asks for signatures, nothing comes onto the system without a good one, and no
/// key without a yes.
class TestApplySignatures : public QObject
{
    Q_OBJECT

private:
    /// Expects the question about the repository's key.
    static void expectKey(ApplySession& user, QString& question, const QString& answer)
    {
        user.dialogs.expect("Query")
            .textContains("demo.asc")
            .act([&question](QWidget* dialog) {
                question = DialogDriver::textsIn(dialog).join('\n');
            })
            .press(answer);
    }

    static void failedWith(ApplySession& user, const QStringList& parts, const QStringList& marks)
    {
        for (const QString& part : parts)
            QVERIFY2(user.told.contains(part), qPrintable(part + " isn't in: " + user.told));
        QVERIFY2(!user.told.contains("Traceback") && !user.told.contains("Internal error"),
                 qPrintable(user.told));
        COMPARE_LINES(user.changes(), {});
        COMPARE_LINES(user.marks(), marks);
        QCOMPARE(user.unlogged(), QString());
    }

    /// The changes without the pseudo packages that keys are.
    static QStringList changesButKeys(ApplySession& user)
    {
        const QStringList changes = user.changes();
        QStringList rest;
        for (const QString& change : changes) {
            if (!change.contains("gpg-pubkey"))
                rest << change;
        }
        return rest;
    }

private Q_SLOTS:
    void aKeyThatIsAccepted()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("signed-well", "Install"));
        user.expectReview();
        QString question;
        expectKey(user, question, "Yes");
        QVERIFY(user.apply());
        QVERIFY2(question.contains("Demo packages <demo@example.org>") &&
                     question.contains("/keys/demo.asc"),
                 qPrintable(question));
        // What was logged before has no place in it.
        QVERIFY2(!question.contains("Transaction"), qPrintable(question));
        QVERIFY(user.log().contains("Confirmation: Yes"));
        const QStringList changes = user.changes();
        QCOMPARE(changes.size(), 2);
        QVERIFY(changes.filter("+gpg-pubkey-").size() == 1 &&
                changes.contains("+signed-well-1.0-1.noarch"));
        COMPARE_LINES(user.marks(), {});
        QCOMPARE(user.unsettled(), QString());
        // The key is known from now on.
        QVERIFY(user.mark("signed-well", "Remove"));
        QVERIFY(user.applyAndAnswer());
        QVERIFY(user.mark("signed-well", "Install"));
        QVERIFY(user.applyAndAnswer());
        COMPARE_LINES(user.changes(), {});
        QCOMPARE(user.quit(), QString());
    }

    void aKeyThatIsRefused()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("signed-well", "Install"));
        QVERIFY(user.mark("wordsmith", "Install"));
        for (const char* answer : {"No", "No"}) {
            QString question;
            user.expectReview();
            expectKey(user, question, answer);
            user.expectError(user.told);
            QVERIFY(user.apply());
            failedWith(user, {"signed-well"}, {"Install signed-well", "Install wordsmith"});
        }
        QVERIFY(user.log().contains("Confirmation: No"));
        // A change of mind.
        QString question;
        user.expectReview();
        expectKey(user, question, "Yes");
        QVERIFY(user.apply());
        COMPARE_LINES(changesButKeys(user),
                      {"+signed-well-1.0-1.noarch", "+wordsmith-4.2-1.x86_64"});
        QCOMPARE(user.unsettled(), QString());
        QCOMPARE(user.quit(), QString());
    }

    void aPackageWithoutASignature()
    {
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("signed-not", "Install"));
        QVERIFY(user.applyAndFail());
        failedWith(user, {"signed-not"}, {"Install signed-not"});
        QCOMPARE(user.quit(), QString());
    }

    void aPackageWithAStrangersSignature()
    {
        // The key of the repository is of no use, so nobody is asked for it.
        ApplySession user;
        QVERIFY(user.begin());
        QVERIFY(user.mark("signed-wrongly", "Install"));
        QVERIFY(user.applyAndFail());
        failedWith(user, {"signed-wrongly-1.0-1.noarch.rpm", "Demo packages <demo@example.org>"},
                   {"Install signed-wrongly"});
        QCOMPARE(user.quit(), QString());
    }

    void allPackagesThatFailAreNamed()
    {
        ApplySession user;
        QVERIFY(user.begin());
        for (const char* name : {"signed-not", "signed-well", "signed-wrongly"})
            QVERIFY(user.mark(name, "Install"));
        QVERIFY(user.applyAndFail());
        failedWith(user, {"signed-not", "signed-wrongly"},
                   {"Install signed-not", "Install signed-well", "Install signed-wrongly"});
        QVERIFY2(!user.told.contains("signed-well"), qPrintable(user.told));
        QCOMPARE(user.quit(), QString());
    }

    void aKeyThatCanNotBeFetched()
    {
        ApplySession user;
        user.fail("/keys/*", "404");
        QVERIFY(user.begin());
        QVERIFY(user.mark("signed-well", "Install"));
        QVERIFY(user.applyAndFail());
        failedWith(user, {"demo.asc", "404"}, {"Install signed-well"});
        user.recover();
        QString question;
        user.expectReview();
        expectKey(user, question, "Yes");
        QVERIFY(user.apply());
        COMPARE_LINES(changesButKeys(user), {"+signed-well-1.0-1.noarch"});
        QCOMPARE(user.quit(), QString());
    }

    void whereNobodyAsksForSignaturesNobodyMissesThem()
    {
        ApplySession user;
        user.replace("etc/yum.repos.d/trouble.repo", "gpgcheck=1", "gpgcheck=0");
        QVERIFY(user.begin());
        for (const char* name : {"signed-not", "signed-well"})
            QVERIFY(user.mark(name, "Install"));
        QVERIFY(user.applyAndAnswer());
        COMPARE_LINES(user.changes(), {"+signed-not-1.0-1.noarch", "+signed-well-1.0-1.noarch"});
        QCOMPARE(user.unsettled(), QString());
        QCOMPARE(user.quit(), QString());
    }
};

int main(int argc, char** argv)
{
    return runApplyTests<TestApplySignatures>(argc, argv);
}
#include "tst_ApplySignatures.moc"
