#include "ZAXFeatContainer.h"
#include "ZAXHostDocument.h"
#include "ZAXHostDuplicator.h"
#include "ZAXHostUndo.h"
#include "ZAXMatMaterial.h"
#include "ZAXMatPackaging.h"
#include "ZAXMatRoot.h"
#include "ZAXSysStartup.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>
#include <QUndoStack>

// A document of many materials: nothing takes a time that grows with the square of their number. The limits are far
// above what is measured, for slow computers and builds that check every access.

class tst_large_documents : public QObject
{
    Q_OBJECT

private:
    static constexpr int materials = 10000;
    static constexpr qint64 limit = 60000;

    QTemporaryDir folder{QDir::tempPath() + QString::fromUtf8("/zax ø XXXXXX")};
    std::unique_ptr<ZAXHostDocument> document;
    QElapsedTimer timer;

private slots:
    void initTestCase();
    void saveAndOpen();
    void undoAndRedo();
    void duplicateAndRemoveAll();
};

void tst_large_documents::initTestCase()
{
    ZAXSysStartup::Start();
    document = std::make_unique<ZAXHostDocument>();
    timer.start();
    auto* const container = document->GetContainer();
    auto* const root = container->CreateInstance("ZAXMatRoot", nullptr);
    for (int i = 0; i < materials; ++i) {
        auto* const material = container->CreateInstance("ZAXMatMaterial", root);
        for (int n = 0; n < 3; ++n)
            container->CreateInstance("ZAXMatPackaging", material);
    }
    qInfo("making: %lld ms", timer.elapsed());
    QVERIFY(timer.elapsed() < limit);
}

void tst_large_documents::saveAndOpen()
{
    const QString path = folder.filePath(QLatin1String("large.zaxdoc"));
    timer.start();
    QVERIFY(document->SaveAs(path));
    qInfo("saving: %lld ms", timer.restart());
    ZAXHostDocument opened;
    QVERIFY(opened.Open(path));
    qInfo("opening: %lld ms", timer.elapsed());
    QVERIFY(timer.elapsed() < limit);
    QCOMPARE(opened.Encode(), document->Encode());
    timer.start();
    QVERIFY(opened.ConvertToPlaceholders({&ZAXMatPackaging::staticMetaObject}));
    qInfo("conversion: %lld ms", timer.elapsed());
    QVERIFY(timer.elapsed() < limit);
    QCOMPARE(opened.Encode(), document->Encode());
}

void tst_large_documents::undoAndRedo()
{
    timer.start();
    const QByteArray before = document->Encode();
    while (document->GetUndo().GetStack()->canUndo())
        QVERIFY(document->GetUndo().Undo());
    qInfo("undo: %lld ms", timer.restart());
    while (document->GetUndo().GetStack()->canRedo())
        QVERIFY(document->GetUndo().Redo());
    qInfo("redo: %lld ms", timer.elapsed());
    QVERIFY(timer.elapsed() < limit);
    QCOMPARE(document->Encode(), before);
}

void tst_large_documents::duplicateAndRemoveAll()
{
    timer.start();
    auto* const root = document->GetContainer()->GetRoots().constFirst();
    auto* const copy = ZAXHostDuplicator::Duplicate(root->GetChildren().constFirst());
    QVERIFY(copy);
    root->Remove();
    qInfo("removing: %lld ms", timer.restart());
    QVERIFY(document->GetUndo().Undo());
    qInfo("undo of it: %lld ms", timer.restart());
    document.reset();
    qInfo("destruction: %lld ms", timer.elapsed());
    QVERIFY(timer.elapsed() < limit);
}

QTEST_GUILESS_MAIN(tst_large_documents)
#include "tst_large_documents.moc"
