#include "SystemCalls.h"
#include "ZAXFeatContainer.h"
#include "ZAXFeatFolder.h"
#include "ZAXHostDocument.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>

// A document whose file cannot be read to its end is not one that is damaged: nothing of it is lost.

class tst_document_reading : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void whatCannotBeReadToItsEndIsNotOpened_data();
    void whatCannotBeReadToItsEndIsNotOpened();
    void aReadThatFailsOnceGoesOn_data();
    void aReadThatFailsOnceGoesOn();

private:
    QTemporaryDir m_directory{QDir::tempPath() + QString::fromUtf8("/zax ø XXXXXX")};
    QString m_path;
    QByteArray m_bytes;
};

void tst_document_reading::init()
{
    m_path = m_directory.filePath(QLatin1String("job.zaxdoc"));
    ZAXHostDocument document;
    for (int i = 0; i < 100; ++i) {
        ZAXFeatObject* const folder = document.GetContainer()->CreateInstance("ZAXFeatFolder", nullptr);
        folder->SetLabel(QString::fromUtf8("Folder %1").arg(i));
    }
    QVERIFY(document.SaveAs(m_path));
    m_bytes = document.Encode();
    QVERIFY(m_bytes.size() > 5000);
}

void tst_document_reading::whatCannotBeReadToItsEndIsNotOpened_data()
{
    QTest::addColumn<int>("nth");
    QTest::addColumn<ZAXHostDocument::Damage>("damage");
    for (const int nth : {0, 1, 4}) {
        QTest::addRow("from call %d on", nth) << nth << ZAXHostDocument::RefuseDamage;
        QTest::addRow("from call %d on, damage is accepted", nth) << nth << ZAXHostDocument::RecoverDamage;
    }
}

void tst_document_reading::whatCannotBeReadToItsEndIsNotOpened()
{
    QFETCH(const int, nth);
    QFETCH(const ZAXHostDocument::Damage, damage);
    ZAXHostDocument document;
    const QByteArray before = document.Encode();
    {
        const SystemCalls::Failure failure(SystemCalls::Read, nth, EIO);
        const QString message = document.Open(m_path, damage).GetMessage();
        QVERIFY2(message.endsWith(QLatin1String("cannot be read: ") + qt_error_string(EIO)), qPrintable(message));
    }
    QCOMPARE(document.Encode(), before);
    QVERIFY(!document.IsDamaged());
    QVERIFY(document.Open(m_path, damage));
    QCOMPARE(document.Encode(), m_bytes);
}

void tst_document_reading::aReadThatFailsOnceGoesOn_data()
{
    QTest::addColumn<int>("error");
    QTest::newRow("interrupted") << EINTR;
    QTest::newRow("failing") << EIO;
}

void tst_document_reading::aReadThatFailsOnceGoesOn()
{
    QFETCH(const int, error);
    ZAXHostDocument document;
    const SystemCalls::Failure failure(SystemCalls::Read, 2, error, 1);
    QVERIFY(document.Open(m_path));
    QCOMPARE(document.Encode(), m_bytes);
}

QTEST_GUILESS_MAIN(tst_document_reading)
#include "tst_document_reading.moc"
