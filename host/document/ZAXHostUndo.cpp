#include "ZAXHostUndo.h"

#include "ZAXFeatContainerPrivate.h"
#include "ZAXFeatObject.h"
#include "ZAXFeatObjectPrivate.h"
#include "ZAXGeoContainerPrivate.h"
#include "ZAXHostTransaction.h"
#include "ZAXHostUndoStep.h"
#include "ZAXSysException.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QScopeGuard>
#include <QUndoCommand>
#include <QUndoStack>

namespace {

Q_LOGGING_CATEGORY(logUndo, "zax.host.undo")

QString Tr(const char* text)
{
    return QCoreApplication::translate("ZAXHostUndo", text);
}

} // namespace

class ZAXHostUndoPrivate : public ZAXFeatChangeObserver
{
public:
    ZAXHostUndoPrivate()
    {
        QObject::connect(&stack, &QUndoStack::indexChanged, &stack, [this] { FreeDiscarded(); });
    }

    void BeginStep() override { ++depth; }
    void EndStep() override;
    void AboutToChange(ZAXFeatObject* feature) override;
    void Placed(ZAXFeatObject* feature, const ZAXFeatPlace& from, const ZAXFeatPlace& to) override;
    void Destroyed(ZAXFeatObject* feature) override;
    bool KeepsRemoved() const override { return true; }

    bool IsBusy() const
    {
        if (!container)
            return false;
        return isInTransaction || depth > 0 || isPushing || isRestoring ||
               ZAXFeatContainerPrivate::Get(*container).signalDepth > 0;
    }
    ZAXHostResult Refusal() const { return ZAXHostResult::Failed(Tr("A change of the document is still under way.")); }
    ZAXHostResult Run(void (QUndoStack::*operation)());

    /// Ends \a recording and gives its step.
    ZAXHostUndoStep Take(ZAXHostUndoStep& recording);
    /// Puts what was recorded on the stack as one step, called \a text or what it does.
    void PushRecorded(const QString& text);
    /// Takes what was recorded back. Fails when a feature does not take its former state.
    ZAXHostResult RollBackRecorded();
    /// Does \a step in \a direction, or leaves everything as it is and throws.
    void Restore(const ZAXHostUndoStep& step, ZAXHostUndoStep::Direction direction);
    /// Takes back what slots changed while \a step was done in \a direction.
    void TakeForeignBack(const ZAXHostUndoStep& step, ZAXHostUndoStep::Direction direction);
    /// The features that a step kept are no longer needed: they go as soon as the stack is in order.
    void Discard(const QList<quint64>& ids) { discarded += ids; }
    void FreeDiscarded();

    ZAXFeatContainer* container = nullptr;
    /// What happened in the step or the transaction that is under way.
    ZAXHostUndoStep recorded;
    /// What slots changed while a state is restored.
    ZAXHostUndoStep foreign;
    /// What of that was taken back already: these states are right as they were before.
    ZAXHostUndoStep takenBack;
    const ZAXHostUndoStep* restored = nullptr;
    QList<quint64> discarded;
    int depth = 0;
    bool isInTransaction = false;
    bool isRestoring = false;
    bool isPushing = false;

    QUndoStack stack;
};

namespace {

/// Held while states of \a step are restored.
class Restoring
{
public:
    Restoring(ZAXHostUndoPrivate& undo, const ZAXHostUndoStep& step) : m_undo(undo)
    {
        m_undo.restored = &step;
        Set(true);
    }
    ~Restoring()
    {
        Set(false);
        m_undo.restored = nullptr;
        m_undo.foreign = {};
        m_undo.takenBack = {};
    }
    Restoring(const Restoring&) = delete;
    Restoring& operator=(const Restoring&) = delete;

private:
    void Set(bool isRestoring)
    {
        m_undo.isRestoring = isRestoring;
        ZAXFeatContainerPrivate::Get(*m_undo.container).isRestoring = isRestoring;
        ZAXGeoContainerPrivate::Get(*m_undo.container).findsAside = isRestoring;
    }

    ZAXHostUndoPrivate& m_undo;
};

class Command : public QUndoCommand
{
public:
    Command(ZAXHostUndoPrivate* undo, const ZAXHostUndoStep& step, const QString& text)
        : QUndoCommand(text), m_undo(undo), m_step(step)
    {
    }
    ~Command() override { m_undo->Discard(m_step.Keeps(m_lastDirection)); }

    void undo() override { Go(ZAXHostUndoStep::Back); }
    void redo() override
    {
        // Pushing a command calls this too, when everything is done already.
        if (!m_undo->isPushing)
            Go(ZAXHostUndoStep::Forth);
    }

private:
    void Go(ZAXHostUndoStep::Direction direction)
    {
        if (m_undo->IsBusy())
            throw ZAXSysException(m_undo->Refusal().GetMessage());
        m_undo->Restore(m_step, direction);
        m_lastDirection = direction;
    }

    ZAXHostUndoPrivate* m_undo;
    ZAXHostUndoStep m_step;
    ZAXHostUndoStep::Direction m_lastDirection = ZAXHostUndoStep::Forth;
};

} // namespace

void ZAXHostUndoPrivate::EndStep()
{
    if (--depth > 0 || isInTransaction || isRestoring)
        return;
    // The end of a change may come in the course of an exception.
    try {
        PushRecorded(QString());
    } catch (const std::exception& exception) {
        qCWarning(logUndo, "A change was recorded, but not told of: %s", exception.what());
    }
}

void ZAXHostUndoPrivate::AboutToChange(ZAXFeatObject* feature)
{
    // What is not announced yet is not there yet for undo: it comes with all that it has then.
    if (!ZAXFeatObjectPrivate::Get(*feature).isAnnounced)
        return;
    if (!isRestoring)
        recorded.AddState(feature);
    else if (!restored->HasState(feature->GetId()) && !takenBack.HasState(feature->GetId()))
        foreign.AddState(feature);
}

void ZAXHostUndoPrivate::Placed(ZAXFeatObject* feature, const ZAXFeatPlace& from, const ZAXFeatPlace& to)
{
    (isRestoring ? foreign : recorded).AddPlacing(feature, from, to);
}

void ZAXHostUndoPrivate::Destroyed(ZAXFeatObject* feature)
{
    recorded.Forget(feature->GetId());
    foreign.Forget(feature->GetId());
    takenBack.Forget(feature->GetId());
    // No step tells of it, and none brings it back.
    if (ZAXFeatObjectPrivate::Get(*feature).isAnnounced)
        stack.resetClean();
}

ZAXHostUndoStep ZAXHostUndoPrivate::Take(ZAXHostUndoStep& recording)
{
    ZAXHostUndoStep step = std::exchange(recording, {});
    Discard(step.Close(*container));
    return step;
}

void ZAXHostUndoPrivate::PushRecorded(const QString& text)
{
    const ZAXHostUndoStep step = Take(recorded);
    if (!step.IsEmpty()) {
        isPushing = true;
        const auto pushed = qScopeGuard([this] { isPushing = false; });
        stack.push(new Command(this, step, text.isEmpty() ? step.Describe(*container) : text));
    }
    if (!step.IsComplete())
        stack.resetClean();
    FreeDiscarded();
}

ZAXHostResult ZAXHostUndoPrivate::RollBackRecorded()
{
    const ZAXHostUndoStep step = Take(recorded);
    bool isRestored = step.IsComplete();
    if (!step.IsEmpty()) {
        const Restoring restoring(*this, step);
        step.TakeBack(*container, ZAXHostUndoStep::Forth, step.placings.size());
        TakeForeignBack(step, ZAXHostUndoStep::Back);
        isRestored = isRestored && step.IsRestored(*container, ZAXHostUndoStep::Back);
        Discard(step.Keeps(ZAXHostUndoStep::Back));
    }
    FreeDiscarded();
    if (isRestored)
        return ZAXHostResult::Done();
    // What is there now is neither what was saved nor what a step leads to.
    stack.resetClean();
    return ZAXHostResult::Failed(Tr("An object of the document does not take its former state."));
}

void ZAXHostUndoPrivate::TakeForeignBack(const ZAXHostUndoStep& step, ZAXHostUndoStep::Direction direction)
{
    // What is taken back is told about as well, which may set slots off anew. They do not go on for ever.
    constexpr int loudRounds = 8;
    for (int round = 0; round <= loudRounds; ++round) {
        const auto voice = round < loudRounds ? ZAXHostUndoStep::Aloud : ZAXHostUndoStep::Silently;
        const ZAXHostUndoStep slotChanges = Take(foreign);
        takenBack.AddStates(slotChanges);
        slotChanges.TakeBack(*container, ZAXHostUndoStep::Forth, slotChanges.placings.size(), voice);
        Discard(slotChanges.Keeps(ZAXHostUndoStep::Back));
        const bool isStepSettled = !step.Settle(*container, direction, voice);
        const bool areOthersSettled = !takenBack.Settle(*container, ZAXHostUndoStep::Back, voice);
        if (foreign.IsEmpty() && isStepSettled && areOthersSettled)
            return;
    }
}

void ZAXHostUndoPrivate::Restore(const ZAXHostUndoStep& step, ZAXHostUndoStep::Direction direction)
{
    const Restoring restoring(*this, step);
    qsizetype placed = 0;
    try {
        step.Apply(*container, direction, placed);
        TakeForeignBack(step, direction);
    } catch (const std::exception& exception) {
        qCWarning(logUndo, "A state could not be restored: %s", exception.what());
        const auto back = direction == ZAXHostUndoStep::Forth ? ZAXHostUndoStep::Back : ZAXHostUndoStep::Forth;
        step.TakeBack(*container, direction, placed);
        TakeForeignBack(step, back);
        if (!step.IsRestored(*container, back))
            stack.resetClean();
        throw;
    }
}

void ZAXHostUndoPrivate::FreeDiscarded()
{
    if (isPushing || isRestoring || !container)
        return;
    const auto ids = std::exchange(discarded, {});
    for (const quint64 id : ids) {
        ZAXFeatObject* const feature = ZAXHostUndoStep::Find(*container, id);
        if (feature && ZAXFeatObjectPrivate::Get(*feature).isAside)
            ZAXFeatObjectPrivate::Get(*feature).Discard();
    }
}

ZAXHostResult ZAXHostUndoPrivate::Run(void (QUndoStack::*operation)())
{
    if (IsBusy())
        return Refusal();
    try {
        (stack.*operation)();
    } catch (const std::exception& exception) {
        FreeDiscarded();
        return ZAXHostResult::Failed(QString::fromUtf8(exception.what()));
    }
    FreeDiscarded();
    return ZAXHostResult::Done();
}

ZAXHostUndo::ZAXHostUndo(ZAXFeatContainer* container) : d_ptr(std::make_unique<ZAXHostUndoPrivate>())
{
    SetContainer(container);
}

ZAXHostUndo::~ZAXHostUndo()
{
    SetContainer(nullptr);
}

void ZAXHostUndo::SetContainer(ZAXFeatContainer* container)
{
    if (d_ptr->container) {
        d_ptr->stack.clear();
        d_ptr->FreeDiscarded();
        ZAXFeatContainerPrivate::Get(*d_ptr->container).observer = nullptr;
    }
    d_ptr->container = container;
    d_ptr->recorded = {};
    d_ptr->discarded.clear();
    if (container)
        ZAXFeatContainerPrivate::Get(*container).observer = d_ptr.get();
}

QUndoStack* ZAXHostUndo::GetStack() const
{
    return &d_ptr->stack;
}

bool ZAXHostUndo::IsBusy() const
{
    return d_ptr->IsBusy();
}

ZAXHostResult ZAXHostUndo::Undo()
{
    return d_ptr->Run(&QUndoStack::undo);
}

ZAXHostResult ZAXHostUndo::Redo()
{
    return d_ptr->Run(&QUndoStack::redo);
}

ZAXHostResult ZAXHostUndo::Clear()
{
    const bool wasClean = d_ptr->stack.isClean();
    const auto result = d_ptr->Run(&QUndoStack::clear);
    if (result && !wasClean)
        d_ptr->stack.resetClean();
    return result;
}

ZAXHostTransaction::ZAXHostTransaction(ZAXHostUndo& undo, const QString& text)
    : m_undo(&undo), m_text(text), m_isOpen(!undo.IsBusy())
{
    if (m_isOpen)
        undo.d_ptr->isInTransaction = true;
    else
        m_result = undo.d_ptr->Refusal();
}

ZAXHostTransaction::~ZAXHostTransaction()
{
    if (!m_isOpen)
        return;
    try {
        if (const auto result = Rollback(); !result)
            qCWarning(logUndo, "A transaction was not rolled back: %s", qUtf8Printable(result.GetMessage()));
    } catch (const std::exception& exception) {
        qCWarning(logUndo, "A transaction was not rolled back: %s", exception.what());
    }
}

ZAXHostResult ZAXHostTransaction::Close()
{
    if (!m_isOpen)
        return m_result ? ZAXHostResult::Failed(Tr("The transaction is closed.")) : m_result;
    auto& undo = *m_undo->d_ptr;
    if (undo.depth > 0 || undo.isRestoring || ZAXFeatContainerPrivate::Get(*undo.container).signalDepth > 0)
        return undo.Refusal();
    m_isOpen = false;
    undo.isInTransaction = false;
    return ZAXHostResult::Done();
}

ZAXHostResult ZAXHostTransaction::Commit()
{
    const auto result = Close();
    if (result)
        m_undo->d_ptr->PushRecorded(m_text);
    return result;
}

ZAXHostResult ZAXHostTransaction::Rollback()
{
    const auto result = Close();
    return result ? m_undo->d_ptr->RollBackRecorded() : result;
}
