#include "DocumentObjects.h"

#include "Failure.h"
#include "Table.h"
#include "Text.h"

#include "ZAXFeatContainer.h"
#include "ZAXHostDocument.h"
#include "ZAXHostPlaceholder.h"
#include "ZAXMatMaterial.h"
#include "ZAXMatMaterialExtension.h"
#include "ZAXMatPackaging.h"
#include "ZAXMatPackagingExtension.h"

#include <QStringList>

#include <algorithm>
#include <iterator>

namespace zaxmat {

namespace {

/// All that \a object is called.
QStringList NamesOf(const ZAXFeatObject& object)
{
    QStringList names{object.GetLabel()};
    if (const auto* const material = qobject_cast<const ZAXMatMaterial*>(&object))
        names << material->GetMaterialId() << QString::fromLatin1(material->GetRemoteKey());
    if (const auto* const stockForm = qobject_cast<const ZAXMatPackaging*>(&object))
        names << QString::fromLatin1(stockForm->GetRemoteKey());
    if (qobject_cast<const ZAXMatMaterialExtension*>(&object) || qobject_cast<const ZAXMatPackagingExtension*>(&object))
        names << QString::fromLatin1(object.metaObject()->className());
    if (qobject_cast<const ZAXHostPlaceholder*>(&object))
        names << ObjectName(object);
    names.removeAll(QString());
    return names;
}

/// Whether \a text is what \a object is called, alone or behind a path of what its parents are called. A name may hold
/// a '/' itself.
bool IsCalled(const ZAXFeatObject& object, const QString& text)
{
    const ZAXFeatObject* const parent = object.GetParent();
    const QStringList names = NamesOf(object);
    return std::ranges::any_of(names, [&](const QString& name) {
        if (text == name)
            return true;
        if (!text.endsWith(u'/' + name))
            return false;
        const QString rest = text.chopped(name.size() + 1);
        return parent ? IsCalled(*parent, rest) : rest.isEmpty();
    });
}

bool IsOfType(const ZAXFeatObject& object, const QString& type)
{
    const auto* const material = qobject_cast<const ZAXMatMaterial*>(&object);
    return material && material->GetMaterialType() == type;
}

template <typename Predicate>
QList<ZAXFeatObject*> Matching(const QList<ZAXFeatObject*>& objects, Predicate isWanted)
{
    QList<ZAXFeatObject*> found;
    std::ranges::copy_if(objects, std::back_inserter(found),
                         [&](const ZAXFeatObject* object) { return isWanted(*object); });
    return found;
}

QList<ZAXFeatObject*> FindObjects(const QList<ZAXFeatObject*>& objects, const QString& text)
{
    const auto byAddress = Matching(objects, [&](const auto& object) { return ObjectAddress(object) == text; });
    if (!byAddress.isEmpty())
        return byAddress;
    const auto byName = Matching(objects, [&](const auto& object) { return IsCalled(object, text); });
    return !byName.isEmpty() ? byName : Matching(objects, [&](const auto& object) { return IsOfType(object, text); });
}

/// The objects for a message, one per line, with what tells them apart.
QString ObjectLines(const QList<ZAXFeatObject*>& objects)
{
    Table table({{}, {}});
    for (const ZAXFeatObject* const object : objects)
        table.AddRow({QLatin1String("  ") + ObjectAddress(*object), ObjectPath(*object)});
    return table.ToText();
}

QString UnknownObjectText(const ZAXHostDocument& document, const QList<ZAXFeatObject*>& objects, const QString& text)
{
    constexpr qsizetype mostShown = 10;
    const auto similar = Matching(objects, [&](const ZAXFeatObject& object) {
        const QStringList names = NamesOf(object);
        return std::ranges::any_of(names,
                                   [&](const QString& name) { return name.contains(text, Qt::CaseInsensitive); });
    });
    QStringList lines{Text::tr("The document %1 has no object %2.").arg(QuotedPath(document.GetPath()), Quoted(text))};
    if (!similar.isEmpty())
        lines << Text::tr("Similar:") << ObjectLines(similar.first(std::min(similar.size(), mostShown)));
    if (similar.isEmpty() || similar.size() > mostShown)
        lines << Text::tr("\"zaxmat document tree\" shows all objects.");
    return lines.join(u'\n');
}

} // namespace

QString ObjectName(const ZAXFeatObject& object)
{
    if (const auto* const placeholder = qobject_cast<const ZAXHostPlaceholder*>(&object))
        return QString::fromUtf8(placeholder->GetClassName());
    const auto* const material = qobject_cast<const ZAXMatMaterial*>(&object);
    return material && !material->GetMaterialId().isEmpty() ? material->GetMaterialId() : object.GetLabel();
}

QString ObjectAddress(const ZAXFeatObject& object)
{
    return u'@' + QString::number(object.GetId());
}

QString ObjectPath(const ZAXFeatObject& object)
{
    const ZAXFeatObject* const parent = object.GetParent();
    return parent ? ObjectPath(*parent) + u'/' + ObjectName(object) : ObjectName(object);
}

QList<ZAXFeatObject*> AllObjects(const ZAXHostDocument& document)
{
    QList<ZAXFeatObject*> objects;
    const QList<ZAXFeatObject*> roots = document.GetContainer()->GetRoots();
    for (ZAXFeatObject* const root : roots)
        objects << root << root->GetAllChildren();
    return objects;
}

ZAXFeatObject* FindObject(const ZAXHostDocument& document, const QString& text)
{
    const QList<ZAXFeatObject*> objects = AllObjects(document);
    const QList<ZAXFeatObject*> found = FindObjects(objects, text);
    if (found.isEmpty())
        throw Failure(ExitCode::WrongUsage, UnknownObjectText(document, objects, text));
    if (found.size() > 1) {
        throw Failure(ExitCode::WrongUsage,
                      Text::tr("Several objects are called %1. Choose one by its number or its path:\n%2")
                          .arg(Quoted(text), ObjectLines(found)));
    }
    return found.constFirst();
}

} // namespace zaxmat
