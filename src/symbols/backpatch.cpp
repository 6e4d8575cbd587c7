// Where a forward reference comes home: a patch is worked, and if it gave an EQU its value, all
// that waited for the EQU is worked next, further EQUs among it. That is a recursion by nature, as
// deep as the chain of EQUs is long, which a source decides; so it is kept off the stack.
//
// - A patch is owned by the chain on which it hangs. Who takes a chain off its identifier owns its
//   patches, works each once, and frees it then; so `next` is read before the patch goes.
// - The patches that are being worked form a stack of their own through `parent`, from a patch to
//   the EQU patch whose value released it. Only the first patch of a chain is entered from above;
//   the others get their `parent` when their turn comes.
// - The root belongs to the caller, who frees it.

#include <string>
#include <utility>

#include "codegen/bin_block.h"
#include "codegen/value_range.h"
#include "diagnostics/message_list.h"
#include "driver/assembler.h"
#include "driver/debug_stream.h"
#include "source/file_name_registry.h"
#include "symbols/identifier_manager.h"
#include "symbols/patch.h"

namespace korv {

Status CIdentifierManager::Backpatch(CPatchInfo* const root) {
    CPatchInfo* released = nullptr;
    const Status result = WorkPatch(root, &released);
    return released == nullptr ? result : WorkReleased(root, released);
}

// Works the chain `released`, which the EQU patch `root` has set free, and all that comes of it.
[[gnu::noinline]] Status CIdentifierManager::WorkReleased(CPatchInfo* root, CPatchInfo* released) {
    CPatchInfo* patch = root;
    Status result = 0;
    do {
        if (released != nullptr) {
            released->parent = patch;
            patch = released;
        } else {
            patch = LeavePatch(patch, root, &result);
        }
        if (patch == nullptr) {
            return result;
        }
        released = nullptr;
        result = WorkPatch(patch, &released);
    } while (true);
}

// Evaluates one patch and writes its value, or gives it to an EQU: what waited for that comes back
// in `released`.
Status CIdentifierManager::WorkPatch(CPatchInfo* patch, CPatchInfo** released) {
    if (log != nullptr) [[unlikely]] {
        log->AddText({"Backpatching: [", patch->identifier->Name(), "]\n"});
    }
    std::int32_t value = patch->identifier->value;
    if ((patch->flags & PF_NAME) == 0) {
        std::int32_t evaluated = 0;
        const Status status = EvaluatePatch(*patch, &evaluated);
        if (status != 0) {
            return status == MSG_UNRESOLVED ? 0 : MSG_BAD_EXPRESSION;
        }
        value = evaluated;
    }
    patch->identifier->flags |= IDF_USED;
    return (patch->flags & PF_EQU) == 0 ? WritePatch(*patch, value)
                                        : ResolveEqu(*patch, value, released);
}

// The value of the text of `patch`. Result: that of the scan; with MSG_UNRESOLVED a copy waits for
// the next name.
[[gnu::noinline]] Status CIdentifierManager::EvaluatePatch(const CPatchInfo& patch,
                                                           std::int32_t* value) {
    UnresolvedName unresolved;
    const Status status = assembler->ScanExpression(patch.Expression(), value, &unresolved);
    if (status == MSG_UNRESOLVED) {
        MovePatch(patch, unresolved);
    } else if (status != 0 && log != nullptr) {
        log->AddText({"Could not resolve expression! [", patch.Expression(), "] ",
                      fileNames->NameOf(patch.origin.place.file), ", line ",
                      std::to_string(patch.origin.place.line), ".\n"});
    }
    return status;
}

// The patch has been worked, with `result`. Goes on with the next one of its chain; where there is
// none, the patch above is done too. Result: the patch to work next; null when `root` is done.
CPatchInfo* CIdentifierManager::LeavePatch(CPatchInfo* patch, const CPatchInfo* root,
                                           Status* result) {
    while (patch != root) {
        CPatchInfo* const parent = patch->parent;
        CPatchInfo* next = patch->next;
        CPatchInfoMemBlock::FreePatchInfo(patch);
        if (*result == 0) {
            TraceText("#");
            if (next != nullptr) {
                next->parent = parent;
                return next;
            }
            TraceText("\n");
        } else {
            // The first failure ends the chain: the patches after it are given up.
            TraceText("Error backpatching!\n");
            while (next != nullptr) {
                CPatchInfoMemBlock::FreePatchInfo(std::exchange(next, next->next));
            }
            *result = patchFailed;
        }
        patch = parent;
    }
    return nullptr;
}

// Files a copy of `patch` under the next name that its expression waits for.
void CIdentifierManager::MovePatch(const CPatchInfo& patch, const UnresolvedName& unresolved) {
    CPatchInfo* const copy =
        CPatchInfoMemBlock::AllocPatchInfo(patch.position, patch.flags, patch.origin);
    copy->expressionString.Assign(patch.Expression());
    copy->nameString.Assign(patch.nameString.View());
    AddPatch(unresolved, copy);
    if (log != nullptr) {
        log->AddText({"No immediate patching possible! [", patch.identifier->Name(), "] [",
                      patch.Expression(), "]\n"});
    }
}

// Gives the EQU of `patch` its value.
[[gnu::noinline]] Status CIdentifierManager::ResolveEqu(const CPatchInfo& patch, std::int32_t value,
                                                        CPatchInfo** released) {
    const std::string_view name = patch.nameString.View();
    CIdentifier* const equ = index.Find(name);
    if (equ == nullptr) {
        errors->Report(MSG_NO_EQU_LABEL, name, patch.origin.place);
        return patchFailed;
    }
    if (log != nullptr) {
        log->AddText({"Backpatching EQU. [", equ->Name(), "]\n"});
    }
    equ->value = value;
    equ->flags |= IDF_RESOLVED;
    *released = std::exchange(equ->patches, nullptr);
    if (*released == nullptr) {
        TraceText("\n");
    } else {
        --waitingCount;
    }
    return 0;
}

// Overwrites the placeholder of a patch. A value out of range is written all the same, cut to its
// low bits.
Status CIdentifierManager::WritePatch(const CPatchInfo& patch, std::int32_t value) {
    const PatchOrigin& origin = patch.origin;
    const ValueRange& range = RangeOf(patch.flags);
    if ((patch.flags & PF_RELATIVE) != 0) {
        const std::int32_t offset = RelativeOffset(value, origin.address);
        target->PutByteAt(offset, patch.position);
        return range.Holds(offset) ? 0 : range.message;
    }
    if ((patch.flags & (PF_8BIT | PF_16BIT)) == 0) {
        std::fprintf(console, "*scream* Erhm, WHAT am I supposed to do? [%s] %s, line %d.\n",
                     patch.Expression().data(), fileNames->NameOf(origin.place.file),
                     origin.place.line);
        return patchFailed;
    }
    if (!range.Holds(value)) {
        warnings->Report(range.message, patch.Expression(), origin.place);
    }
    if ((patch.flags & PF_8BIT) != 0) {
        target->PutByteAt(value, patch.position);
    } else {
        target->PutWordAt(value, patch.position);
    }
    return 0;
}

void CIdentifierManager::TraceText(const char* text) const {
    if (log != nullptr) {
        log->AddText({text});
    }
}

}  // namespace korv
