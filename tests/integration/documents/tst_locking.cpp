#include "ZAXFeatContainer.h"
#include "ZAXFeatObject.h"
#include "ZAXHostDocument.h"
#include "ZAXHostDocumentLock.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSysInfo>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

#include <sys/wait.h>
#include <unistd.h>

// A document that somebody has open is read-only for everybody else, and says who it is.

namespace {

/// A process that opens a document and has it open until this is gone, or until Kill().
class OtherProcess
{
public:
    explicit OtherProcess(const QString& path)
    {
        int ends[2];
        if (pipe(ends) != 0)
            return;
        m_process = fork();
        if (m_process == 0) {
            ZAXHostDocumentLock lock;
            const char answer = lock.Lock(path) ? 'y' : 'n';
            if (write(ends[1], &answer, 1) == 1)
                pause();
            _exit(1);
        }
        close(ends[1]);
        char answer = 'n';
        m_hasLock = read(ends[0], &answer, 1) == 1 && answer == 'y';
        close(ends[0]);
    }
    ~OtherProcess() { Kill(); }

    void Kill()
    {
        if (m_process <= 0)
            return;
        kill(m_process, SIGKILL);
        waitpid(m_process, nullptr, 0);
        m_process = 0;
    }

    bool HasLock() const { return m_hasLock; }
    pid_t Id() const { return m_process; }

private:
    pid_t m_process = 0;
    bool m_hasLock = false;
};

} // namespace

class tst_locking : public QObject
{
    Q_OBJECT

private:
    QString Path(const char* name) const { return folder->filePath(QString::fromUtf8(name)); }
    QStringList Entries() const { return QDir(folder->path()).entryList(QDir::Files | QDir::Hidden, QDir::Name); }

    std::unique_ptr<QTemporaryDir> folder;
    QString path;

private slots:
    void init();

    void secondDocumentIsReadOnly();
    void otherProcessIsNamed();
    void lockOfADeadProcessIsTakenOver();
    void lockThatWasNeverWrittenIsTakenOver();
    void readOnlyDocumentStaysSoUntilItIsOpenedAnew();
    void readOnlyDocumentCanBeSavedElsewhere();
    void savingElsewhereMovesTheLock();
    void failedSavingElsewhereKeepsTheLock();
    void savingOverADocumentInUseIsRefused();
    void failedOpeningKeepsTheLock();
    void openingAnewKeepsTheLock();
    void loadingGivesTheLockBack();
    void linkLocksItsTarget();
    void deletedFileIsNotTakenForAnother();
};

void tst_locking::init()
{
    folder = std::make_unique<QTemporaryDir>(QDir::tempPath() + QString::fromUtf8("/zax ø XXXXXX"));
    path = Path("document.zaxdoc");
    ZAXHostDocument document;
    document.GetContainer()->CreateInstance("ZAXFeatFolder", nullptr);
    QVERIFY(document.SaveAs(path));
    QCOMPARE(Entries().size(), 2);
}

void tst_locking::secondDocumentIsReadOnly()
{
    QCOMPARE(Entries(), QStringList{QLatin1String("document.zaxdoc")});
    {
        ZAXHostDocument first;
        ZAXHostDocument second;
        QVERIFY(first.Open(path));
        QVERIFY(first.GetReadOnlyReason().isEmpty());
        QCOMPARE(Entries(), (QStringList{QLatin1String("document.zaxdoc"), QLatin1String("document.zaxdoc.lock")}));
        QVERIFY(second.Open(path));
        QCOMPARE(second.GetReadOnlyReason(),
                 QStringLiteral("The document %1 is opened by %2 on %3 (process %4, tst_locking).")
                     .arg(QDir::toNativeSeparators(path), QFileInfo(path).owner(), QSysInfo::machineHostName(),
                          QString::number(getpid())));
        QCOMPARE(second.Encode(), first.Encode());
        QVERIFY(second.SaveAs(path).GetMessage().contains(QLatin1String("is opened by")));
        QVERIFY(first.SaveAs(path));
    }
    QCOMPARE(Entries(), QStringList{QLatin1String("document.zaxdoc")});
}

void tst_locking::otherProcessIsNamed()
{
    const OtherProcess other(path);
    QVERIFY(other.HasLock());
    ZAXHostDocument document;
    QVERIFY(document.Open(path));
    QVERIFY(document.GetReadOnlyReason().contains(QStringLiteral("(process %1, ").arg(other.Id())));
    QVERIFY(document.GetReadOnlyReason().contains(QSysInfo::machineHostName()));
    document.GetContainer()->GetRoots().constFirst()->SetLabel(QLatin1String("new"));
    QVERIFY(!document.SaveAs(path));
    QVERIFY(document.IsModified());
}

void tst_locking::lockOfADeadProcessIsTakenOver()
{
    OtherProcess other(path);
    QVERIFY(other.HasLock());
    other.Kill();
    QVERIFY(QFile::exists(path + QLatin1String(".lock")));
    ZAXHostDocument document;
    QVERIFY(document.Open(path));
    QCOMPARE(document.GetReadOnlyReason(), QString());
    QVERIFY(document.SaveAs(path));
}

void tst_locking::lockThatWasNeverWrittenIsTakenOver()
{
    QFile lock(path + QLatin1String(".lock"));
    QVERIFY(lock.open(QIODevice::WriteOnly));
    {
        // It may be about to be written.
        ZAXHostDocument document;
        QVERIFY(document.Open(path));
        QVERIFY(!document.GetReadOnlyReason().isEmpty());
    }
    QVERIFY(lock.setFileTime(QDateTime::currentDateTime().addSecs(-60), QFileDevice::FileModificationTime));
    lock.close();
    ZAXHostDocument document;
    QVERIFY(document.Open(path));
    QCOMPARE(document.GetReadOnlyReason(), QString());
}

void tst_locking::readOnlyDocumentStaysSoUntilItIsOpenedAnew()
{
    auto first = std::make_unique<ZAXHostDocument>();
    ZAXHostDocument second;
    QVERIFY(first->Open(path));
    QVERIFY(second.Open(path));
    first->GetContainer()->GetRoots().constFirst()->SetLabel(QLatin1String("from the first"));
    QVERIFY(first->SaveAs(path));
    const QByteArray bytes = first->Encode();
    first.reset();
    // The file is no longer what the second one read.
    QVERIFY(!second.SaveAs(path));
    QVERIFY(second.Open(path));
    QVERIFY(second.GetReadOnlyReason().isEmpty());
    QCOMPARE(second.Encode(), bytes);
    QVERIFY(second.SaveAs(path));
}

void tst_locking::readOnlyDocumentCanBeSavedElsewhere()
{
    ZAXHostDocument first;
    ZAXHostDocument second;
    QVERIFY(first.Open(path));
    QVERIFY(second.Open(path));
    QVERIFY(second.SaveAs(Path("copy.zaxdoc")));
    QVERIFY(second.GetReadOnlyReason().isEmpty());
    QCOMPARE(second.GetPath(), Path("copy.zaxdoc"));
    QVERIFY(second.SaveAs(Path("copy.zaxdoc")));
    QVERIFY(first.SaveAs(path));
}

void tst_locking::savingElsewhereMovesTheLock()
{
    ZAXHostDocument first;
    QVERIFY(first.Open(path));
    QVERIFY(first.SaveAs(Path("copy.zaxdoc")));
    QVERIFY(OtherProcess(path).HasLock());
    QVERIFY(!OtherProcess(Path("copy.zaxdoc")).HasLock());
}

void tst_locking::failedSavingElsewhereKeepsTheLock()
{
    ZAXHostDocument first;
    QVERIFY(first.Open(path));
    QVERIFY(QDir(folder->path()).mkdir(QLatin1String("folder")));
    const QStringList entries = Entries();
    QVERIFY(!first.SaveAs(Path("folder")));
    QVERIFY(!first.SaveAs(Path("missing/copy.zaxdoc")));
    QCOMPARE(Entries(), entries);
    QVERIFY(!OtherProcess(path).HasLock());
    QVERIFY(first.SaveAs(path));
}

void tst_locking::savingOverADocumentInUseIsRefused()
{
    ZAXHostDocument first;
    ZAXHostDocument second;
    QVERIFY(first.Open(path));
    QVERIFY(second.SaveAs(path).GetMessage().startsWith(
        QStringLiteral("The document %1 cannot be saved: The document %1 is opened by ")
            .arg(QDir::toNativeSeparators(path))));
    QVERIFY(second.GetPath().isEmpty());
    QVERIFY(first.Open(path));
    QCOMPARE(first.GetContainer()->GetRoots().size(), 1);
}

void tst_locking::failedOpeningKeepsTheLock()
{
    ZAXHostDocument first;
    QVERIFY(first.Open(path));
    QFile broken(Path("broken.zaxdoc"));
    QVERIFY(broken.open(QIODevice::WriteOnly));
    broken.write("broken");
    broken.close();
    const QStringList entries = Entries();
    QVERIFY(!first.Open(Path("broken.zaxdoc")));
    QVERIFY(!first.Open(Path("missing.zaxdoc")));
    QCOMPARE(first.GetPath(), path);
    QCOMPARE(Entries(), entries);
    QVERIFY(!OtherProcess(path).HasLock());
}

void tst_locking::openingAnewKeepsTheLock()
{
    ZAXHostDocument first;
    ZAXHostDocument second;
    QVERIFY(first.Open(path));
    QVERIFY(first.Open(path));
    QVERIFY(first.GetReadOnlyReason().isEmpty());
    QVERIFY(second.Open(path));
    QVERIFY(second.Open(path));
    QVERIFY(!second.GetReadOnlyReason().isEmpty());
}

void tst_locking::loadingGivesTheLockBack()
{
    ZAXHostDocument first;
    QVERIFY(first.Open(path));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(first.Load(&file));
    QVERIFY(first.GetPath().isEmpty());
    QVERIFY(OtherProcess(path).HasLock());
}

void tst_locking::linkLocksItsTarget()
{
    const QString link = Path("link.zaxdoc");
    QVERIFY(QFile::link(path, link));
    ZAXHostDocument first;
    ZAXHostDocument second;
    QVERIFY(first.Open(link));
    QVERIFY(second.Open(path));
    QVERIFY(!second.GetReadOnlyReason().isEmpty());
    QVERIFY(first.SaveAs(path));
}

void tst_locking::deletedFileIsNotTakenForAnother()
{
    ZAXHostDocument first;
    QVERIFY(first.Open(path));
    QVERIFY(QFile::remove(path));
    QVERIFY(first.SaveAs(Path("other.zaxdoc")));
    QVERIFY(!OtherProcess(Path("other.zaxdoc")).HasLock());
    QVERIFY(OtherProcess(path).HasLock());
}

QTEST_GUILESS_MAIN(tst_locking)
#include "tst_locking.moc"
