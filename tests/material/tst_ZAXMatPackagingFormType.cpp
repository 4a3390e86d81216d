#include "ZAXMatPackaging.h"

#include "ZAXMatTestDocument.h"
#include "ZAXMatTestListeners.h"

#include <QTest>

/// A program of its own: whether Qt knows the type of a form by number changes once in the life of a process.
class tst_ZAXMatPackagingFormType : public QObject
{
    Q_OBJECT

private slots:
    void lastSavedFormIsTakenOverOnceItsTypeIsRegistered();
};

void tst_ZAXMatPackagingFormType::lastSavedFormIsTakenOverOnceItsTypeIsRegistered()
{
    ZAXTestLastSavedStore store;
    store.SetValue("ZAXMatPackaging", "form", 1);
    store.SetValue("ZAXMatPackaging", "length", 3000.0);
    ZAXTestDocument document;
    QVERIFY(!QMetaType::fromName("ZAXMatPackaging::Form").isValid());
    const ZAXMatPackaging* const before = document.CreatePackaging();
    QCOMPARE(static_cast<int>(before->GetForm()), 0);
    QCOMPARE(before->GetLength(), 3000.0);
    qRegisterMetaType<ZAXMatPackaging::Form>();
    QCOMPARE(static_cast<int>(document.CreatePackaging()->GetForm()), 1);
}

QTEST_GUILESS_MAIN(tst_ZAXMatPackagingFormType)
#include "tst_ZAXMatPackagingFormType.moc"
