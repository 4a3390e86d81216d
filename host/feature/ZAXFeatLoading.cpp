#include "ZAXFeatLoading.h"

#include "ZAXFeatClass.h"
#include "ZAXFeatContainerPrivate.h"
#include "ZAXFeatLastSavedStore.h"
#include "ZAXFeatObjectPrivate.h"
#include "ZAXFeatPropertySignals.h"

#include <QLoggingCategory>
#include <QMetaProperty>

#include <algorithm>
#include <atomic>
#include <exception>
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

} // namespace

const ZAXFeatNotification* ZAXFeatPropertySignals::FindNotification(const ZAXFeatObject* feature, int index)
{
    auto& d = ZAXFeatObjectPrivate::Get(*feature);
    const auto* const property = d.Class()->GetProperty(index);
    if (!property || !property->notification.signal.isValid())
        return nullptr;
    const bool isLoading = d.container && ZAXFeatContainerPrivate::Get(*d.container).loading;
    return isLoading && property->notification.isSafe && d.IsUnheard(property->notification.signal)
               ? nullptr
               : &property->notification;
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
    // A value that the store does not take is no reason to lose the others.
    std::exception_ptr failure;
    for (const KeptBack& each : all) {
        try {
            store.SetValue(each.type->className(), each.type->property(each.index).name(), each.value);
        } catch (...) {
            failure = std::current_exception();
        }
    }
    if (failure)
        std::rethrow_exception(failure);
}
