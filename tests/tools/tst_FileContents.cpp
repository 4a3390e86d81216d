#include "FileContents.h"
#include "SystemCalls.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>

using namespace zaxmat;

namespace {

/// A folder with a file in it, and the text of that: more than one call to the system reads.
class Folder
{
public:
    Folder()
    {
        QFile file(Path());
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(Text()), Text().size());
    }

    QString Path() const { return m_directory.filePath(QLatin1String("list.csv")); }
    static QByteArray Text() { return QByteArray("a;b\n").repeated(10000); }

private:
    QTemporaryDir m_directory{QDir::tempPath() + QString::fromUtf8("/zax ø XXXXXX")};
};

} // namespace

class tst_FileContents : public QObject
{
    Q_OBJECT

private slots:
    void aFileIsReadToItsEnd();
    void anEmptyFileIsRead();
    void whatIsNoFileIsNotRead();
    void aFileThatIsNotThereIsNotRead();
    void aFileThatCannotBeReadToItsEndIsNotRead_data();
    void aFileThatCannotBeReadToItsEndIsNotRead();
    void aReadThatIsInterruptedGoesOn();
};

void tst_FileContents::aFileIsReadToItsEnd()
{
    const Folder folder;
    const FileContents contents = ReadFileContents(folder.Path());
    QVERIFY(contents.IsRead());
    QCOMPARE(contents.bytes, Folder::Text());
}

void tst_FileContents::anEmptyFileIsRead()
{
    const Folder folder;
    QVERIFY(QFile::resize(folder.Path(), 0));
    const FileContents contents = ReadFileContents(folder.Path());
    QVERIFY(contents.IsRead());
    QCOMPARE(contents.bytes, QByteArray());
}

void tst_FileContents::whatIsNoFileIsNotRead()
{
    const FileContents contents = ReadFileContents(QDir::tempPath());
    QVERIFY(!contents.IsRead());
    QCOMPARE(contents.failure, QLatin1String("it is no file"));
}

void tst_FileContents::aFileThatIsNotThereIsNotRead()
{
    const Folder folder;
    const FileContents contents = ReadFileContents(folder.Path() + QLatin1String(".old"));
    QVERIFY(!contents.IsRead());
    QCOMPARE(contents.failure, qt_error_string(ENOENT));
}

void tst_FileContents::aFileThatCannotBeReadToItsEndIsNotRead_data()
{
    QTest::addColumn<int>("nth");
    QTest::newRow("from its start") << 0;
    QTest::newRow("from its middle") << 1;
    QTest::newRow("its last part") << 39;
}

void tst_FileContents::aFileThatCannotBeReadToItsEndIsNotRead()
{
    QFETCH(const int, nth);
    const Folder folder;
    const SystemCalls::Failure failure(SystemCalls::Read, nth, EIO);
    const FileContents contents = ReadFileContents(folder.Path());
    QVERIFY(!contents.IsRead());
    QCOMPARE(contents.failure, qt_error_string(EIO));
    QCOMPARE(contents.bytes, QByteArray());
}

void tst_FileContents::aReadThatIsInterruptedGoesOn()
{
    const Folder folder;
    const SystemCalls::Failure failure(SystemCalls::Read, 20, EINTR, 1);
    QCOMPARE(ReadFileContents(folder.Path()).bytes, Folder::Text());
}

QTEST_GUILESS_MAIN(tst_FileContents)
#include "tst_FileContents.moc"
