#include "Complaints.h"

#include "Failure.h"
#include "Properties.h"
#include "Text.h"
#include "Values.h"

#include "ZAXFeatObject.h"

namespace zaxmat {

void Complaints::Add(const ZAXFeatObject& feature, const QByteArray& property, const QString& text)
{
    m_lines.append(QLatin1String("  ") + Text::tr("%1: %2: %3")
                                             .arg(Quoted(feature.GetLabel()),
                                                  PropertyLabel(feature.metaObject(), property), Printable(text)));
}

void Complaints::AddInvalidValues(ZAXFeatObject& feature)
{
    if (!feature.UpdateResult()) {
        const auto messages = feature.GetPropertyMessages();
        for (const ZAXFeatObject::PropertyMessage& message : messages)
            Add(feature, message.property, message.text);
        if (messages.isEmpty())
            m_lines.append(QLatin1String("  ") + Text::tr("%1 is invalid.").arg(Quoted(feature.GetLabel())));
    }
    const auto children = feature.GetChildren();
    for (ZAXFeatObject* const child : children)
        AddInvalidValues(*child);
}

void Complaints::AddBelowLimits(const ZAXFeatObject& feature)
{
    const QMetaObject* const type = feature.metaObject();
    for (int i = 0; i < type->propertyCount(); ++i) {
        const QMetaProperty property = type->property(i);
        const QString limit = property.isWritable() ? LimitOf(property, property.read(&feature)) : QString();
        if (!limit.isEmpty() && feature.GetPropertyMessages(property.name()).isEmpty())
            Add(feature, property.name(), limit);
    }
}

void Complaints::Raise(const QString& path) const
{
    RaiseFor(Text::tr("The document %1 is not saved.").arg(QuotedPath(path)));
}

void Complaints::RaiseFor(const QString& outcome) const
{
    if (!m_lines.isEmpty())
        throw Failure(ExitCode::InvalidValues,
                      Text::tr("%1 These values are invalid:\n%2").arg(outcome, m_lines.join(u'\n')));
}

} // namespace zaxmat
