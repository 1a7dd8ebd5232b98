#include "simulator/fault_list.h"

#include "simulator/error_codes.h"

namespace ltrsim {

namespace {

bool Aims(const Fault& fault, const Target& target) {
    return (!fault.Server || *fault.Server == target.Server) && (!fault.Crate || *fault.Crate == target.Crate) &&
           (!fault.Slot || *fault.Slot == target.Slot);
}

Verdict VerdictOf(const Fault& fault) {
    Verdict verdict;
    switch (fault.Kind) {
        case FaultKind::Error:
            verdict.Error = fault.Code;
            break;
        case FaultKind::Delay:
            verdict.Delay = fault.Number;
            break;
        case FaultKind::Short:
            verdict.Short = fault.Amount;
            break;
        case FaultKind::Excess:
            verdict.Excess = fault.Amount;
            break;
        case FaultKind::Stall:
            verdict.Stall = true;
            break;
        case FaultKind::Marks:
            verdict.Marks = fault.Amount;
            break;
        case FaultKind::Value:
            verdict.Value = fault.Number;
            break;
        case FaultKind::Size:
            verdict.Size = fault.Amount;
            break;
        case FaultKind::Unplug:
            verdict.Error = Unplugged;
            break;
    }
    return verdict;
}

}  // namespace

bool FaultList::Acts(Entry& entry, std::string_view call, const Target& target, double elapsed) {
    const Fault& fault = entry.Definition;
    if (!Aims(fault, target)) return false;
    if (entry.Unplugs) return true;
    if ((!fault.Call.empty() && fault.Call != call) || elapsed < fault.At) return false;
    if (++entry.Matched <= fault.After || (fault.Times && entry.Acted >= *fault.Times)) return false;
    entry.Acted++;
    entry.Unplugs = fault.Kind == FaultKind::Unplug;
    return true;
}

Verdict FaultList::Judge(std::string_view call, const Target& target, double elapsed) {
    std::optional<Verdict> verdict;
    for (Entry& entry : Entries_) {
        if (Acts(entry, call, target, elapsed) && !verdict) verdict = VerdictOf(entry.Definition);
    }
    return verdict.value_or(Verdict{});
}

}  // namespace ltrsim
