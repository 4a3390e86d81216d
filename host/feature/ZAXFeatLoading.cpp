#include "ZAXFeatLoading.h"

#include "ZAXFeatContainerPrivate.h"
#include "ZAXFeatLastSavedStore.h"
#include "ZAXFeatObjectPrivate.h"
#include "ZAXFeatPropertySignals.h"
#include "ZAXSysDefinedValue.h"

#include <QLoggingCategory>
#include <QMetaProperty>

#include <algorithm>
#include <atomic>
#include <thread>
#include <utility>

namespace {

Q_LOGGING_CATEGORY(logLoading, "zax.feature")

/// The thread that is loading; another one that loads at the same time keeps nothing back. Not a variable of each
/// thread: a library that may be unloaded had better have none.
std::atomic<std::thread::id> loadingThread;
/// What that thread began with. No other thread looks at it.
ZAXFeatLoading* outermostLoading = nullptr;

ZAXFeatLoading* Outermost()
{
    return loadingThread == std::this_thread::get_id() ? outermostLoading : nullptr;
}

/// Whether every value of the type \a from converts to \a to.
bool AlwaysConverts(QMetaType from, QMetaType to)
{
    if (from == to || to.id() == QMetaType::QVariant)
        return true;
    const bool isPhysical =
        from == QMetaType::fromType<ZAXSysLengthValue>() || from == QMetaType::fromType<ZAXSysDensityValue>();
    return isPhysical && to.id() == QMetaType::Double && QMetaType::canConvert(from, to);
}

} // namespace

bool ZAXFeatPropertySignals::IsUnheard(const ZAXFeatObject* feature, int index)
{
    const auto* const container = ZAXFeatObjectPrivate::Get(*feature).container;
    auto* const loading = container ? ZAXFeatContainerPrivate::Get(*container).loading : nullptr;
    return loading && loading->IsUnheard(feature, index);
}

ZAXFeatLoading::ZAXFeatLoading(ZAXFeatContainer& container) : m_container(container)
{
    ZAXFeatContainerPrivate::Get(container).loading = this;
    std::thread::id none;
    if (loadingThread.compare_exchange_strong(none, std::this_thread::get_id()))
        outermostLoading = this;
}

ZAXFeatLoading::~ZAXFeatLoading()
{
    ZAXFeatContainerPrivate::Get(m_container).loading = nullptr;
    if (Outermost() != this)
        return;
    try {
        Flush();
    } catch (const std::exception& exception) {
        qCWarning(logLoading, "The values for new features are not remembered: %s", exception.what());
    }
    outermostLoading = nullptr;
    loadingThread = std::thread::id();
}

ZAXFeatLoading::Property& ZAXFeatLoading::Find(const QMetaObject* type, int index)
{
    if (type != m_type) {
        m_type = type;
        m_found = &m_properties[type];
    }
    if (m_found->size() <= static_cast<size_t>(index))
        m_found->resize(static_cast<size_t>(type->propertyCount()));
    return (*m_found)[static_cast<size_t>(index)];
}

void ZAXFeatLoading::Learn(const QMetaObject* type, int index, Property& property)
{
    const QMetaProperty meta = type->property(index);
    property.isKnown = true;
    property.signal = meta.notifySignal();
    const int parameters = property.signal.isValid() ? property.signal.parameterCount() : 0;
    property.isSafe = parameters == 0 || (parameters == 1 && meta.isReadable() &&
                                          AlwaysConverts(meta.metaType(), property.signal.parameterMetaType(0)));
}

bool ZAXFeatLoading::IsUnheard(const ZAXFeatObject* feature, int index)
{
    Property& property = Find(feature->metaObject(), index);
    if (!property.isKnown)
        Learn(feature->metaObject(), index, property);
    return property.isSafe &&
           (!property.signal.isValid() || ZAXFeatObjectPrivate::Get(*feature).IsUnheard(property.signal));
}

bool ZAXFeatLoading::KeepBack(const QMetaObject* type, int index, const QVariant& value)
{
    ZAXFeatLoading* const outermost = Outermost();
    if (!outermost)
        return false;
    Property& property = outermost->Find(type, index);
    property.keptBack = value;
    property.order = ++outermost->m_order;
    return true;
}

void ZAXFeatLoading::Flush()
{
    ZAXFeatLoading* const outermost = Outermost();
    if (!outermost || outermost->m_order == 0)
        return;
    outermost->m_order = 0;
    struct KeptBack
    {
        quint64 order;
        const QMetaObject* type;
        int index;
        QVariant value;
    };
    std::vector<KeptBack> all;
    for (auto& [type, properties] : outermost->m_properties) {
        for (size_t i = 0; i < properties.size(); ++i) {
            if (const quint64 order = std::exchange(properties[i].order, 0); order > 0)
                all.push_back({order, type, static_cast<int>(i), std::exchange(properties[i].keptBack, {})});
        }
    }
    std::ranges::sort(all, {}, &KeptBack::order);
    auto& store = ZAXFeatLastSavedStore::GetCurrent();
    for (const KeptBack& each : all)
        store.SetValue(each.type->className(), each.type->property(each.index).name(), each.value);
}
