#include "symbols/identifier_manager.h"

#include "driver/assembler.h"
#include "symbols/identifier_listing.h"

namespace korv {

CIdentifierManager::CIdentifierManager(CAssembler* assembler)
    : namePool(assembler->output), index(&namePool), assembler(assembler) {}

// Creates the record of a name that is not in the table.
[[gnu::noinline]] CIdentifier* CIdentifierManager::Enter(const HashedName& name) {
    auto* const record = new (namePool.Take(sizeof(CIdentifier), alignof(CIdentifier)))
        CIdentifier{.name = namePool.Store(name.text),
                    .nameLength = static_cast<std::uint32_t>(name.text.size())};
    records.push_back(record);
    sortedRecords.push_back(record);
    if (reservedWords != nullptr && reservedWords->Has(name)) {
        record->flags = IDS_RESERVED_WORD;
    } else {
        ++totalCount;
    }
    index.Insert(record, name.hash);
    return record;
}

void CIdentifierManager::AddID(const Definition& definition) {
    const HashedName name = definition.name;
    CIdentifier* record = index.Find(name);
    const bool isNew = record == nullptr;
    if (isNew) {
        record = Enter(name);
    }
    if ((record->flags & (IDF_RESERVED | IDF_LABEL | IDF_EQU)) != 0) [[unlikely]] {
        Refuse(definition, (record->flags & IDF_RESERVED) != 0);
        return;
    }
    record->flags |= definition.flags;
    record->line = definition.place.line;
    record->file = definition.place.file;
    record->value = definition.value;
    if (!isNew) {
        ApplyPatches(record);
    }
}

// Reports that the name of `definition` is reserved or is already defined.
void CIdentifierManager::Refuse(const Definition& definition, bool isReserved) {
    Trace(isReserved ? "Attempt to use command/instruction as a label! [" : "Label redefinition! [",
          definition.name, "]\n");
    assembler->errors.Report(isReserved ? MSG_RESERVED_NAME : MSG_REDEFINITION, definition.name,
                             definition.place);
}

// Called when `identifier`, which had only been used, has been defined. Applies its patches if it
// has a value.
void CIdentifierManager::ApplyPatches(CIdentifier* identifier) {
    if ((identifier->flags & IDF_RESOLVED) == 0) {
        Trace("Could not backpatch yet! [", identifier->Name(), "]\n");
        return;
    }
    CPatchInfo* patch = TakePatches(identifier);
    if (patch == nullptr) {
        assembler->errors.Report(MSG_NO_PATCHES, identifier->Name(),
                                 {.file = identifier->file, .line = identifier->line});
    }
    while (patch != nullptr) {
        CPatchInfo* const next = patch->next;
        if (const Status result = Backpatch(patch); result != 0) {
            assembler->errors.Report(result, identifier->Name(), patch->Place());
        }
        CPatchInfoMemBlock::FreePatchInfo(patch);
        patch = next;
    }
}

Status CIdentifierManager::AddPatch(std::string_view name, CPatchInfo* patch) {
    // This is usually the name for which `FindID` has just found no value. Looking it up again
    // would add 1 % to the instructions of a run.
    const bool isMissing = name.data() == missing.text.data() && name.size() == missing.text.size();
    const HashedName hashed = isMissing ? missing : HashedName(name);
    CIdentifier* const known = isMissing && waiting != nullptr ? waiting : index.Find(hashed);
    CIdentifier* const record = known != nullptr ? known : Enter(hashed);
    patch->identifier = record;
    Trace("Adding patch for: [", name, "] -> [", patch->Text(), "]\n");
    if ((record->flags & IDF_RESOLVED) != 0) [[unlikely]] {
        const Status result = Backpatch(patch);
        CPatchInfoMemBlock::FreePatchInfo(patch);
        return result;
    }
    waitingCount += record->patches == nullptr ? 1 : 0;
    patch->next = std::exchange(record->patches, patch);
    return 0;
}

void CIdentifierManager::WriteTrace(std::initializer_list<std::string_view> pieces) const {
    log->AddText(pieces);
}

CPatchInfo* CIdentifierManager::TakePatches(CIdentifier* identifier) {
    waitingCount -= identifier->patches == nullptr ? 0 : 1;
    return std::exchange(identifier->patches, nullptr);
}

void CIdentifierManager::ReportUnresolved() {
    if (waitingCount == 0) {
        return;
    }
    SortForListing(sortedRecords);
    for (const CIdentifier* const record : sortedRecords) {
        if (record->patches != nullptr) {
            assembler->errors.Report(MSG_UNRESOLVED, record->Name(), record->patches->Place());
        }
    }
}

void CIdentifierManager::ReleasePatches() {
    for (auto record = records.begin(); waitingCount > 0; ++record) {
        CPatchInfo* patch = TakePatches(*record);
        while (patch != nullptr) {
            CPatchInfoMemBlock::FreePatchInfo(std::exchange(patch, patch->next));
        }
    }
}

void CIdentifierManager::DumpIdentifiers(platform::OutputFile* file) {
    SortForListing(sortedRecords);
    WriteListing(sortedRecords, assembler->fileNames, file);
}

Status CIdentifierManager::DumpStatus(std::FILE* stream) const {
    if (stream == nullptr) {
        return noStream;
    }
    std::fprintf(stream, "   Total Count: %5d.\n   Table Size:  %5u.\n", totalCount, tableSize);
    return 0;
}

}  // namespace korv
