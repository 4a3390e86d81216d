#include "ZAXFeatContainer.h"
#include "ZAXFeatFolder.h"
#include "ZAXHostDocument.h"
#include "ZAXHostFileSaver.h"
#include "ZAXHostFileSystem.h"
#include "ZAXHostTransaction.h"
#include "ZAXHostUndo.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>
#include <QUndoStack>

#include <cerrno>
#include <csignal>
#include <cstring>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

// Saving a document: whatever fails and whenever the program ends, the file is the old one or the new one.

namespace {

/// A file system of which one operation fails, from its n-th call on or just then.
class FailingFileSystem : public ZAXHostFileSystem
{
public:
    enum How
    {
        Never,
        Once,
        ForGood
    };

    int Create(const QByteArray& path, unsigned int mode) override
    {
        return Fails("create") ? -1 : ZAXHostFileSystem::Create(path, mode);
    }
    qint64 Write(int file, const char* bytes, qint64 size) override
    {
        // What fits is written, as by a disk that runs full.
        const qint64 part = isShort ? std::max<qint64>(size / 2, 1) : size;
        return Fails("write") ? -1 : ZAXHostFileSystem::Write(file, bytes, part);
    }
    int SetMode(int file, unsigned int mode) override
    {
        return Fails("set mode") ? -1 : ZAXHostFileSystem::SetMode(file, mode);
    }
    int Sync(int file) override { return Fails("sync") ? -1 : ZAXHostFileSystem::Sync(file); }
    int Close(int file) override
    {
        // A file is closed even when closing it reports a failure.
        const int result = ZAXHostFileSystem::Close(file);
        return Fails("close") ? -1 : result;
    }
    int Rename(const QByteArray& from, const QByteArray& to) override
    {
        return Fails("rename") ? -1 : ZAXHostFileSystem::Rename(from, to);
    }
    int Remove(const QByteArray& path) override { return Fails("remove") ? -1 : ZAXHostFileSystem::Remove(path); }
    int SyncFolder(const QByteArray& path) override
    {
        return Fails("sync folder") ? -1 : ZAXHostFileSystem::SyncFolder(path);
    }

    QByteArray failing;
    How how = Never;
    int error = 0;
    /// How many calls of the failing operation go well first.
    int goodCalls = 0;
    bool isShort = false;
    QByteArrayList calls;

private:
    bool Fails(const char* operation)
    {
        calls.append(operation);
        if (failing != operation || how == Never || goodCalls-- > 0)
            return false;
        if (how == Once)
            how = Never;
        errno = error;
        return true;
    }
};

QByteArray ReadFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool WriteFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QStringList Entries(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

unsigned int ModeOf(const QString& path)
{
    struct stat status = {};
    return stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_mode & 07777U : 0U;
}

/// A process that ended.
qint64 DeadProcess()
{
    const pid_t child = fork();
    if (child == 0)
        _exit(0);
    waitpid(child, nullptr, 0);
    return child;
}

} // namespace

class tst_saving : public QObject
{
    Q_OBJECT

private:
    QString Path(const char* name) const { return folder->filePath(QString::fromUtf8(name)); }

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<ZAXHostDocument> document;
    ZAXFeatObject* feature = nullptr;
    QString path;

private slots:
    void init();
    void cleanup();

    void operationsComeInTheirOrder();
    void failingOperation_data();
    void failingOperation();
    void failingFirstSave_data();
    void failingFirstSave();
    void shortWritesAreContinued();
    void failureIsNamed_data();
    void failureIsNamed();
    void removalThatFailsIsMadeUpForAtTheNextSave();

    void killedSavesLeaveAWholeFile();
    void leftoversOfDeadProcessesAreRemoved();

    void permissionsAreKept_data();
    void permissionsAreKept();
    void newFileIsNeverMoreOpenThanTheOldOne();
    void symbolicLinkStays();
    void symbolicLinkToNothingIsFollowed();
    void readOnlyFileIsRefused();
    void folderIsRefused();
    void missingFolderIsRefused();

    void savingIsRefusedDuringAChange();
    void cleanMarkFollowsTheFile();
    void damagedFileIsNotSavedOver();
    void documentTooDeepIsNotSaved();
};

void tst_saving::init()
{
    folder = std::make_unique<QTemporaryDir>(QDir::tempPath() + QString::fromUtf8("/zax ø XXXXXX"));
    path = Path("Bleche für Öfen.zaxdoc");
    document = std::make_unique<ZAXHostDocument>();
    feature = document->GetContainer()->CreateInstance("ZAXFeatFolder", nullptr);
    feature->SetLabel(QString(10000, u'x'));
    QVERIFY(document->SaveAs(path));
    QVERIFY(!document->IsModified());
    feature->SetLabel(QString(12000, u'y'));
}

void tst_saving::cleanup()
{
    document.reset();
    folder.reset();
}

void tst_saving::operationsComeInTheirOrder()
{
    FailingFileSystem system;
    QVERIFY(document->SaveAs(path, system));
    QCOMPARE(system.calls, (QByteArrayList{"create", "write", "set mode", "sync", "close", "rename", "sync folder"}));
}

void tst_saving::failingOperation_data()
{
    QTest::addColumn<QByteArray>("operation");
    QTest::addColumn<int>("how");
    QTest::addColumn<int>("error");
    QTest::addColumn<int>("goodCalls");
    QTest::addColumn<bool>("isShort");
    QTest::addColumn<bool>("isNew");
    const QByteArrayList operations{"create", "write", "set mode", "sync", "close", "rename", "sync folder"};
    for (const QByteArray& operation : operations) {
        for (const int how : {FailingFileSystem::Once, FailingFileSystem::ForGood}) {
            for (const int error : {EIO, ENOSPC, EACCES}) {
                const auto row = [&](const char* name, int goodCalls, bool isShort) {
                    QTest::addRow("%s%s, %s, %s", operation.constData(), name,
                                  how == FailingFileSystem::Once ? "once" : "for good", strerrorname_np(error))
                        << operation << how << error << goodCalls << isShort << (operation == "sync folder");
                };
                row("", 0, false);
                if (operation == "write")
                    row(" in the middle", 3, true);
            }
        }
    }
}

void tst_saving::failingOperation()
{
    QFETCH(QByteArray, operation);
    QFETCH(int, how);
    QFETCH(int, error);
    QFETCH(int, goodCalls);
    QFETCH(bool, isShort);
    QFETCH(bool, isNew);
    const QByteArray oldBytes = ReadFile(path);
    const QByteArray newBytes = document->Encode();
    const QStringList entries = Entries(folder->path());
    FailingFileSystem system;
    system.failing = operation;
    system.how = FailingFileSystem::How(how);
    system.error = error;
    system.goodCalls = goodCalls;
    system.isShort = isShort;

    const auto result = document->SaveAs(path, system);
    QVERIFY(!result);
    QVERIFY(result.GetMessage().startsWith(
        QStringLiteral("The document %1 cannot be saved: ").arg(QDir::toNativeSeparators(path))));
    QVERIFY(result.GetMessage().endsWith(qt_error_string(error)));
    QCOMPARE(ReadFile(path), isNew ? newBytes : oldBytes);
    QCOMPARE(Entries(folder->path()), entries);
    QVERIFY(document->IsModified());
    QCOMPARE(document->Encode(), newBytes);

    QVERIFY(document->SaveAs(path));
    QCOMPARE(ReadFile(path), newBytes);
    QVERIFY(!document->IsModified());
    QCOMPARE(Entries(folder->path()), entries);
}

void tst_saving::failingFirstSave_data()
{
    QTest::addColumn<QByteArray>("operation");
    for (const char* operation : {"create", "write", "sync", "close", "rename"})
        QTest::newRow(operation) << QByteArray(operation);
}

void tst_saving::failingFirstSave()
{
    QFETCH(QByteArray, operation);
    const QStringList entries = Entries(folder->path());
    FailingFileSystem system;
    system.failing = operation;
    system.how = FailingFileSystem::ForGood;
    system.error = ENOSPC;
    QVERIFY(!document->SaveAs(Path("new.zaxdoc"), system));
    QCOMPARE(Entries(folder->path()), entries);
    QCOMPARE(document->GetPath(), path);
    QVERIFY(document->IsModified());
}

void tst_saving::shortWritesAreContinued()
{
    FailingFileSystem system;
    system.isShort = true;
    QVERIFY(document->SaveAs(path, system));
    QVERIFY(system.calls.count("write") > 5);
    QCOMPARE(ReadFile(path), document->Encode());
}

void tst_saving::failureIsNamed_data()
{
    QTest::addColumn<QByteArray>("operation");
    QTest::addColumn<QString>("what");
    QTest::newRow("create") << QByteArray("create") << "a file beside it cannot be made: ";
    QTest::newRow("write") << QByteArray("write") << "it cannot be written: ";
    QTest::newRow("set mode") << QByteArray("set mode") << "its permissions cannot be kept: ";
    QTest::newRow("sync") << QByteArray("sync") << "it cannot be written: ";
    QTest::newRow("close") << QByteArray("close") << "it cannot be written: ";
    QTest::newRow("rename") << QByteArray("rename") << "it cannot be replaced: ";
    QTest::newRow("sync folder") << QByteArray("sync folder")
                                 << "the new file is in its place, but may not outlast a power failure: ";
}

void tst_saving::failureIsNamed()
{
    QFETCH(QByteArray, operation);
    QFETCH(QString, what);
    FailingFileSystem system;
    system.failing = operation;
    system.how = FailingFileSystem::Once;
    system.error = ENOSPC;
    QCOMPARE(ZAXHostFileSaver::Save(path, "new", system).GetMessage(), what + qt_error_string(ENOSPC));
}

void tst_saving::removalThatFailsIsMadeUpForAtTheNextSave()
{
    class System : public FailingFileSystem
    {
    public:
        int Remove(const QByteArray&) override { return -1; }
    };
    const QStringList entries = Entries(folder->path());
    System system;
    system.failing = "sync";
    system.how = FailingFileSystem::Once;
    system.error = EIO;
    QVERIFY(!document->SaveAs(path, system));
    QCOMPARE(Entries(folder->path()).size(), entries.size() + 1);
    QVERIFY(document->SaveAs(path));
    QCOMPARE(Entries(folder->path()), entries);
}

void tst_saving::killedSavesLeaveAWholeFile()
{
    const int saves = qEnvironmentVariableIntValue("ZAX_FULL_TESTS") ? 2000 : 50;
    QByteArrayList versions;
    for (int i = 0; i < 3; ++i) {
        feature->SetLabel(QString(100000 + 1000 * i, QChar(u'a' + i)));
        versions.append(document->Encode());
    }
    QVERIFY(document->SaveAs(path));
    const QStringList entries = Entries(folder->path());
    QRandomGenerator random(7);
    int torn = 0;
    int different = 0;
    for (int i = 0; i < saves; ++i) {
        const QByteArray before = ReadFile(path);
        const pid_t child = fork();
        if (child == 0) {
            for (int n = 0;; ++n)
                (void)ZAXHostFileSaver::Save(path, versions.at(n % versions.size()));
        }
        usleep(random.bounded(200, 6000));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        const QByteArray after = ReadFile(path);
        torn += !versions.contains(after);
        different += before != after;
    }
    QCOMPARE(torn, 0);
    QVERIFY(different > 0);
    QVERIFY(document->SaveAs(path));
    QCOMPARE(Entries(folder->path()), entries);
    QCOMPARE(ReadFile(path), document->Encode());
}

void tst_saving::leftoversOfDeadProcessesAreRemoved()
{
    const QStringList entries = Entries(folder->path());
    const auto aside = [](const QString& name, qint64 process) {
        return QStringLiteral(".%1.%2.saving").arg(name).arg(process);
    };
    const QString name = QFileInfo(path).fileName();
    const QString dead = aside(name, DeadProcess());
    const QString living = aside(name, getppid());
    const QString others = aside(QLatin1String("other.zaxdoc"), DeadProcess());
    const QString own = aside(name, getpid());
    const QString unknown = QStringLiteral(".%1.x.saving").arg(name);
    for (const QString& file : {dead, living, others, own, unknown})
        QVERIFY(WriteFile(folder->filePath(file), "left"));
    QVERIFY(document->SaveAs(path));
    QStringList left = Entries(folder->path());
    for (const QString& file : entries)
        left.removeOne(file);
    QStringList expected{living, others, unknown};
    left.sort();
    expected.sort();
    QCOMPARE(left, expected);
}

void tst_saving::permissionsAreKept_data()
{
    QTest::addColumn<unsigned int>("mode");
    for (const unsigned int mode : {0600U, 0640U, 0644U, 0664U, 0666U, 0755U, 0200U})
        QTest::addRow("%o", mode) << mode;
}

void tst_saving::permissionsAreKept()
{
    QFETCH(unsigned int, mode);
    QCOMPARE(chmod(QFile::encodeName(path).constData(), mode), 0);
    const mode_t mask = umask(0077);
    (void)ZAXHostFileSaver::Save(path, "new");
    umask(mask);
    QCOMPARE(ModeOf(path), mode);
}

void tst_saving::newFileIsNeverMoreOpenThanTheOldOne()
{
    class System : public ZAXHostFileSystem
    {
    public:
        int Create(const QByteArray& path, unsigned int mode) override
        {
            const int file = ZAXHostFileSystem::Create(path, mode);
            struct stat status = {};
            fstat(file, &status);
            modes.append(status.st_mode & 0777U);
            return file;
        }
        QList<unsigned int> modes;
    };
    QCOMPARE(chmod(QFile::encodeName(path).constData(), 0600), 0);
    System system;
    const mode_t mask = umask(0);
    const auto result = document->SaveAs(path, system);
    umask(mask);
    QVERIFY(result);
    QCOMPARE(system.modes, QList<unsigned int>{0600});
}

void tst_saving::symbolicLinkStays()
{
    QVERIFY(QDir(folder->path()).mkdir(QLatin1String("elsewhere")));
    const QString target = Path("elsewhere/target.zaxdoc");
    const QString link = Path("link.zaxdoc");
    QVERIFY(WriteFile(target, "old"));
    QVERIFY(QFile::link(target, link));
    const QStringList entries = Entries(folder->path());
    QVERIFY(document->SaveAs(link));
    QVERIFY(QFileInfo(link).isSymLink());
    QCOMPARE(ReadFile(target), document->Encode());
    document.reset();
    QCOMPARE(Entries(Path("elsewhere")), QStringList{QLatin1String("target.zaxdoc")});
    QStringList left = Entries(folder->path());
    QCOMPARE(left.size(), entries.size() - 1);
}

void tst_saving::symbolicLinkToNothingIsFollowed()
{
    const QString target = Path("target.zaxdoc");
    const QString link = Path("link.zaxdoc");
    QVERIFY(QFile::link(target, link));
    QVERIFY(document->SaveAs(link));
    QVERIFY(QFileInfo(link).isSymLink());
    QCOMPARE(ReadFile(target), document->Encode());
}

void tst_saving::readOnlyFileIsRefused()
{
    QCOMPARE(chmod(QFile::encodeName(path).constData(), 0444), 0);
    const QByteArray bytes = ReadFile(path);
    FailingFileSystem system;
    QCOMPARE(document->SaveAs(path, system).GetMessage(),
             QStringLiteral("The document %1 cannot be saved: it must not be written: Permission denied")
                 .arg(QDir::toNativeSeparators(path)));
    QCOMPARE(ReadFile(path), bytes);
    QVERIFY(system.calls.isEmpty());
    QVERIFY(document->IsModified());
}

void tst_saving::folderIsRefused()
{
    QVERIFY(QDir(folder->path()).mkdir(QLatin1String("folder")));
    QVERIFY(document->SaveAs(Path("folder")).GetMessage().endsWith(QLatin1String(": it is a folder")));
    QVERIFY(document->SaveAs(QLatin1String("/dev/null")).GetMessage().contains(QLatin1String("/dev/null")));
    QCOMPARE(ZAXHostFileSaver::Save(QLatin1String("/dev/null"), "x").GetMessage(), QLatin1String("it is no file"));
    QCOMPARE(document->GetPath(), path);
}

void tst_saving::missingFolderIsRefused()
{
    QVERIFY(!document->SaveAs(Path("missing/new.zaxdoc")));
    QCOMPARE(document->GetPath(), path);
    QVERIFY(document->IsModified());
    QVERIFY(document->SaveAs(path));
}

void tst_saving::savingIsRefusedDuringAChange()
{
    const QByteArray bytes = ReadFile(path);
    {
        ZAXHostTransaction transaction(document->GetUndo(), QLatin1String("Open"));
        feature->SetLabel(QLatin1String("half-way"));
        QVERIFY(document->SaveAs(path).GetMessage().endsWith(QLatin1String(": a change of it is still under way.")));
    }
    QCOMPARE(ReadFile(path), bytes);
    QVERIFY(document->SaveAs(path));
}

void tst_saving::cleanMarkFollowsTheFile()
{
    QVERIFY(document->SaveAs(path));
    QVERIFY(!document->IsModified());
    feature->SetLabel(QLatin1String("other"));
    QVERIFY(document->IsModified());
    QVERIFY(document->GetUndo().Undo());
    QVERIFY(!document->IsModified());
    QVERIFY(document->GetUndo().Undo());
    QVERIFY(document->IsModified());
    QVERIFY(document->Open(path));
    QVERIFY(!document->IsModified());
    QVERIFY(!document->GetUndo().GetStack()->canUndo());
}

void tst_saving::damagedFileIsNotSavedOver()
{
    QVERIFY(document->SaveAs(path));
    const QByteArray whole = ReadFile(path);
    QByteArray damaged = whole;
    damaged[damaged.size() - 200] = '!';
    QVERIFY(WriteFile(path, damaged));
    QVERIFY(document->Open(path).GetMessage().contains(QLatin1String("cannot be read: The document is damaged at")));
    QCOMPARE(document->Encode(), whole);
    QVERIFY(document->Open(path, ZAXHostDocument::RecoverDamage));
    QVERIFY(document->IsDamaged());
    const QString refused = QLatin1String(
        ": part of it was lost, and saving it would make the loss final; accept that first, or save it under another "
        "name.");
    const QString link = Path("link.zaxdoc");
    QVERIFY(QFile::link(path, link));
    QVERIFY(document->SaveAs(path).GetMessage().endsWith(refused));
    QVERIFY(document->SaveAs(link).GetMessage().endsWith(refused));
    QCOMPARE(ReadFile(path), damaged);
    // Saved elsewhere, the document is whole, but the damaged file is still not touched.
    QVERIFY(document->SaveAs(Path("copy.zaxdoc")));
    QVERIFY(!document->IsDamaged());
    QVERIFY(document->SaveAs(Path("copy.zaxdoc")));
    QVERIFY(document->SaveAs(path).GetMessage().endsWith(refused));
    QCOMPARE(ReadFile(path), damaged);
    document->AcceptDamage();
    QVERIFY(document->SaveAs(path));
    QCOMPARE(ReadFile(path), document->Encode());
}

void tst_saving::documentTooDeepIsNotSaved()
{
    QVERIFY(document->SaveAs(path));
    const QByteArray bytes = ReadFile(path);
    ZAXFeatObject* parent = feature;
    for (int i = 0; i < 256; ++i)
        parent = document->GetContainer()->CreateInstance("ZAXFeatFolder", parent);
    QVERIFY(document->SaveAs(path).GetMessage().endsWith(
        QLatin1String(": The objects of the document are nested too deeply to be saved.")));
    QCOMPARE(ReadFile(path), bytes);
    parent->Remove();
    QVERIFY(document->SaveAs(path));
    QVERIFY(document->Open(path));
}

QTEST_GUILESS_MAIN(tst_saving)
#include "tst_saving.moc"
