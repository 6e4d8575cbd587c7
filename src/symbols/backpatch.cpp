// Where a forward reference comes home.
//
// A value that an EQU waited for gives that EQU its value, which in turn releases everything that
// waited for the EQU, further EQUs among them. That walk is a recursion by nature, as deep as the
// chain of EQUs is long, which a source decides. So it is kept off the stack: the patches that are
// being worked form a stack of their own through `parent`, from a patch to the EQU patch whose
// value released it. A patch leaves the walk when its whole subtree is done.

#include <string>
#include <utility>

#include "codegen/bin_block.h"
#include "diagnostics/message_list.h"
#include "driver/assembler.h"
#include "driver/debug_stream.h"
#include "source/file_name_registry.h"
#include "source/short_text.h"
#include "symbols/identifier_manager.h"
#include "symbols/patch.h"

namespace korv {
namespace {

// What a patch may write, and the warning beyond it.
const ValueRange& RangeOf(std::uint32_t flags) {
    if ((flags & PF_8BIT) != 0) {
        return (flags & PF_SIGNED) != 0 ? signedByteRange : byteRange;
    }
    return (flags & PF_SIGNED) != 0 ? signedWordRange : wordRange;
}

}  // namespace

std::int32_t CIdentifierManager::Backpatch(CPatchInfo* const root) {
    CPatchInfo* patch = root;
    for (;;) {
        CIdentifier* equ = nullptr;
        std::int32_t result = Apply(patch, &equ);
        if (equ != nullptr) {
            CPatchInfo* const chain = std::exchange(equ->patches, nullptr);
            if (chain != nullptr) {
                --waitingCount;
                chain->parent = patch;
                patch = chain;
                continue;
            }
            TraceText("\n");
        }
        // The patch is done. Go on with the next one of its chain; where there is none, the patch
        // above is done too.
        for (;;) {
            if (patch == root) {
                return result;
            }
            CPatchInfo* const parent = patch->parent;
            CPatchInfo* next = patch->next;
            CPatchInfoMemBlock::FreePatchInfo(patch);
            patch = parent;
            if (result == 0) {
                TraceText("#");
                if (next != nullptr) {
                    next->parent = parent;
                    patch = next;
                    break;
                }
                TraceText("\n");
            } else {
                // The first failure ends the chain: the patches behind it are given up.
                TraceText("Error backpatching!\n");
                while (next != nullptr) {
                    CPatchInfoMemBlock::FreePatchInfo(std::exchange(next, next->next));
                }
                result = -1;
            }
        }
    }
}

// One patch without what hangs on it. If it gives an EQU its value, that comes back in
// `resolvedEqu`, and the patches that wait for the EQU are the caller's to work.
std::int32_t CIdentifierManager::Apply(CPatchInfo* patch, CIdentifier** resolvedEqu) {
    const PatchOrigin& origin = patch->origin;
    if (log != nullptr) {
        log->AddText({"Backpatching: [", patch->identifier->Name(), "]\n"});
    }
    std::int32_t value = 0;
    std::string_view unresolved;
    std::int32_t status = 0;
    if (EqualTexts(patch->expression.View(), patch->identifier->Name())) {
        value = patch->identifier->value;  // nothing but the name that it waited for
        patch->identifier->flags |= IDF_USED;
    } else {
        status = assembler->ScanExpression(patch->expression.View(), &value, &unresolved);
    }
    if (status == MSG_UNRESOLVED) {
        AddPatch(unresolved, CPatchInfoMemBlock::AllocPatchInfo(
                                 patch->position, CtmpString(patch->expression.View()),
                                 patch->flags, origin, CtmpString(patch->name.View())));
        if (log != nullptr) {
            log->AddText({"No immediate patching possible! [", patch->identifier->Name(), "] [",
                          patch->expression.View(), "]\n"});
        }
        return 0;
    }
    if (status != 0) {
        if (log != nullptr) {
            log->AddText({"Could not resolve expression! [", patch->expression.View(), "] ",
                          fileNames->NameOf(origin.file), ", line ", std::to_string(origin.line),
                          ".\n"});
        }
        return MSG_BAD_EXPRESSION;
    }
    if ((patch->flags & PF_EQU) == 0) {
        patch->identifier->flags |= IDF_USED;
        return WritePatch(*patch, value);
    }
    CIdentifier* const equ = index.Find(patch->name.View());
    if (equ == nullptr) {
        errors->Report(MSG_NO_EQU_LABEL, patch->name.View(), origin.file, origin.line);
        return -1;
    }
    if (log != nullptr) {
        log->AddText({"Backpatching EQU. [", equ->Name(), "]\n"});
    }
    equ->value = value;
    equ->flags |= IDF_RESOLVED;
    *resolvedEqu = equ;
    return 0;
}

// Overwrites the placeholder of a patch. A value out of range is written all the same, cut to its
// low bits.
std::int32_t CIdentifierManager::WritePatch(const CPatchInfo& patch, std::int32_t value) {
    const PatchOrigin& origin = patch.origin;
    if ((patch.flags & PF_RELATIVE) != 0) {
        const std::int32_t offset = RelativeOffset(value, origin.address);
        target->PutByteAt(offset, patch.position);
        return signedByteRange.Holds(offset) ? 0 : MSG_OFFSET_TOO_BIG;
    }
    if ((patch.flags & (PF_8BIT | PF_16BIT)) == 0) {
        std::fprintf(console, "*scream* Erhm, WHAT am I supposed to do? [%s] %s, line %d.\n",
                     patch.expression.c_str(), fileNames->NameOf(origin.file), origin.line);
        return -1;
    }
    if (const ValueRange& range = RangeOf(patch.flags); !range.Holds(value)) {
        warnings->Report(range.message, patch.expression.View(), origin.file, origin.line);
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
