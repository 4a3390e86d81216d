#include "ZAXMatTestListeners.h"

#include <QCoreApplication>
#include <QMetaMethod>

ZAXTestSignalLog::ZAXTestSignalLog(QObject* sender)
{
    const QMetaObject* const type = sender->metaObject();
    const QMetaMethod note = metaObject()->method(metaObject()->indexOfSlot("Note()"));
    for (int i = 0; i < type->methodCount(); ++i) {
        if (type->method(i).methodType() == QMetaMethod::Signal)
            connect(sender, type->method(i), this, note);
    }
}

void ZAXTestSignalLog::Note()
{
    names.append(QLatin1String(sender()->metaObject()->method(senderSignalIndex()).name()));
}

ZAXTestLastSavedStore::ZAXTestLastSavedStore()
{
    SetCurrent(this);
}

ZAXTestLastSavedStore::~ZAXTestLastSavedStore()
{
    SetCurrent(nullptr);
}

QVariant ZAXTestLastSavedStore::GetValue(const QByteArray& className, const QByteArray& property) const
{
    const auto found = m_values.find({className, property});
    return found == m_values.end() ? QVariant() : found->second;
}

void ZAXTestLastSavedStore::SetValue(const QByteArray& className, const QByteArray& property, const QVariant& value)
{
    m_values[{className, property}] = value;
    noted.append(QLatin1String(className) + QLatin1Char('.') + QLatin1String(property) + QLatin1String(" = ") +
                 value.toString());
}

ZAXTestTranslator::ZAXTestTranslator(const QStringList& texts) : m_texts(texts)
{
    QCoreApplication::installTranslator(this);
}

ZAXTestTranslator::~ZAXTestTranslator()
{
    QCoreApplication::removeTranslator(this);
}

QString ZAXTestTranslator::translate(const char* context, const char* text, const char*, int) const
{
    if (!m_texts.contains(QLatin1String(text)))
        return {};
    return QLatin1Char('<') + QLatin1String(context) + QLatin1Char(':') + QLatin1String(text) + QLatin1Char('>');
}

bool ZAXTestTranslator::isEmpty() const
{
    return false;
}
