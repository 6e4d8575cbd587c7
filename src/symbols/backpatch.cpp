// Resolves forward references by evaluating patches. If a patch gives an EQU its value, everything
// that waited for the EQU is evaluated next, including further EQUs. The source determines the
// depth of this recursion, so the recursion does not use the call stack.
//
// - A chain owns its patches. The code that removes a chain from its identifier takes ownership of
//   the patches, processes each at most once and then frees it. So `next` is read before a patch is
//   freed.
// - The patches in progress form a stack: the `parent` of a patch is the EQU patch that released
//   it. The first patch of a chain gets its `parent` when the chain is released; each further patch
//   gets it just before it is processed.
// - The caller owns and frees the root.

#include <string>
#include <utility>

#include "codegen/value_range.h"
#include "driver/assembler.h"
#include "symbols/patch.h"

namespace korv {
namespace {

// Processes one patch and everything that its value releases.
class Backpatcher {
  public:
    explicit Backpatcher(CAssembler* assembler)
        : assembler(assembler), identifiers(assembler->identifiers) {}

    Status Work(CPatchInfo* root) {
        const Status result = WorkPatch(root);
        return released == nullptr ? result : WorkReleased(root);
    }

  private:
    Status WorkReleased(CPatchInfo* root);
    Status WorkPatch(CPatchInfo* patch);
    Status EvaluatePatch(const CPatchInfo& patch, std::int32_t* value);
    CPatchInfo* Next(CPatchInfo* patch, const CPatchInfo* root, Status* result);
    void MovePatch(const CPatchInfo& patch, std::string_view name);
    Status ResolveEqu(const CPatchInfo& patch, std::int32_t value);
    Status WritePatch(const CPatchInfo& patch, std::int32_t value);

    CAssembler* const assembler;
    CIdentifierManager& identifiers;
    CPatchInfo* released = nullptr;  // owned; the chain that the last EQU released
};

// Processes the chain that the EQU patch `root` has released, and all chains released in turn.
Status Backpatcher::WorkReleased(CPatchInfo* root) {
    Status result = 0;
    CPatchInfo* patch = root;
    while ((patch = Next(patch, root, &result)) != nullptr) {
        result = WorkPatch(patch);
    }
    return result;
}

// Evaluates one patch and writes its value, or assigns the value to an EQU, which may release a
// chain.
Status Backpatcher::WorkPatch(CPatchInfo* patch) {
    identifiers.Trace("Backpatching: [", patch->identifier->Name(), "]\n");
    std::int32_t value = patch->identifier->value;
    if ((patch->flags & PF_NAME) == 0) {
        const Status status = EvaluatePatch(*patch, &value);
        if (status != 0) {
            return status == MSG_UNRESOLVED ? 0 : MSG_BAD_EXPRESSION;
        }
    }
    patch->identifier->flags |= IDF_USED;
    return (patch->flags & PF_EQU) == 0 ? WritePatch(*patch, value) : ResolveEqu(*patch, value);
}

// Evaluates the text of `patch`. Result: the status of the scan; on MSG_UNRESOLVED, a copy of the
// patch waits for the next name.
Status Backpatcher::EvaluatePatch(const CPatchInfo& patch, std::int32_t* value) {
    std::string_view fault;
    const Status status = assembler->ScanExpression(patch.Text(), value, &fault);
    if (status == MSG_UNRESOLVED) {
        MovePatch(patch, fault);
    } else if (status != 0) {
        identifiers.Trace("Could not resolve expression! [", patch.Text(), "] ",
                          assembler->fileNames.NameOf(patch.file), ", line ",
                          std::to_string(patch.line), ".\n");
    }
    return status;
}

// Called when `patch` has been processed with `result`. If `patch` has released a chain, that chain
// is processed next; otherwise, the next patch in its own chain is. At the end of a chain, the
// patch that released the chain is done too. Result: the patch to process next; null when `root` is
// done.
CPatchInfo* Backpatcher::Next(CPatchInfo* patch, const CPatchInfo* root, Status* result) {
    if (released != nullptr) {
        released->parent = patch;
        return std::exchange(released, nullptr);
    }
    while (patch != root) {
        CPatchInfo* const parent = patch->parent;
        CPatchInfo* next = patch->next;
        CPatchInfoMemBlock::FreePatchInfo(patch);
        if (*result == 0) {
            identifiers.Trace("#");
            if (next != nullptr) {
                next->parent = parent;
                return next;
            }
            identifiers.Trace("\n");
        } else {
            // The first failure ends the chain: the patches after it are discarded.
            identifiers.Trace("Error backpatching!\n");
            while (next != nullptr) {
                CPatchInfoMemBlock::FreePatchInfo(std::exchange(next, next->next));
            }
            *result = patchFailed;
        }
        patch = parent;
    }
    return nullptr;
}

// Files a copy of `patch` under `name`, the next name that its expression waits for.
void Backpatcher::MovePatch(const CPatchInfo& patch, std::string_view name) {
    CPatchInfo* const copy = CPatchInfoMemBlock::AllocPatchInfo(patch.position, patch.flags,
                                                                patch.address, patch.Place());
    copy->expression.Assign(patch.Text());
    copy->name.Assign(patch.name.View());
    identifiers.AddPatch(name, copy);
    identifiers.Trace("No immediate patching possible! [", patch.identifier->Name(), "] [",
                      patch.Text(), "]\n");
}

// Gives the EQU of `patch` its value and releases the chain that waits for it.
Status Backpatcher::ResolveEqu(const CPatchInfo& patch, std::int32_t value) {
    const std::string_view name = patch.name.View();
    CIdentifier* const equ = identifiers.Find(name);
    if (equ == nullptr) {
        assembler->errors.Report(MSG_NO_EQU_LABEL, name, patch.Place());
        return patchFailed;
    }
    identifiers.Trace("Backpatching EQU. [", name, "]\n");
    equ->value = value;
    equ->flags |= IDF_RESOLVED;
    released = identifiers.TakePatches(equ);
    if (released == nullptr) {
        identifiers.Trace("\n");
    }
    return 0;
}

// Overwrites the placeholder of a patch. A value out of range is written too, truncated to its low
// bits.
Status Backpatcher::WritePatch(const CPatchInfo& patch, std::int32_t value) {
    const ValueRange& range = RangeOf(patch.flags);
    if ((patch.flags & PF_RELATIVE) != 0) {
        const std::int32_t offset = RelativeOffset(value, patch.address);
        assembler->binary.PutByteAt(offset, patch.position);
        return range.Holds(offset) ? 0 : range.message;
    }
    if (!range.Holds(value)) {
        assembler->warnings.Report(range.message, patch.Text(), patch.Place());
    }
    if ((patch.flags & PF_8BIT) != 0) {
        assembler->binary.PutByteAt(value, patch.position);
    } else {
        assembler->binary.PutWordAt(value, patch.position);
    }
    return 0;
}

}  // namespace

Status CIdentifierManager::Backpatch(CPatchInfo* patch) {
    return Backpatcher(assembler).Work(patch);
}

}  // namespace korv
