#include "frontend/platform/staged_output.h"

#include <cstdio>
#include <utility>

#include "frontend/platform/platform.h"
#include "frontend/platform/shared.h"

namespace korv::platform {
namespace {

// The file descriptor of standard output.
constexpr int standardOutput = 1;

std::optional<std::string> BytesOf(const std::string& path) {
    InputFile file;
    if (!file.Open(path)) {
        return {};
    }
    std::string bytes(static_cast<std::size_t>(file.Size()), '\0');
    std::size_t count = 0;
    while (const std::size_t got = file.Read(bytes.data() + count, bytes.size() - count)) {
        count += got;
    }
    return count == bytes.size() ? std::optional(std::move(bytes)) : std::nullopt;
}

}  // namespace

std::string ErrorText() {
    return ReasonOf(LastError());
}

bool StagedOutput::TakeBack() {
    handle = FileHandle();
    Remove(&temporary);
    bool isBack = true;
    if (std::exchange(isPut, false)) {
        if (!isThere) {
            Remove(&place.path);
        } else if (oldBytes) {
            isBack =
                (SetSize(place.handle, oldBytes->size()) && WriteWhole(place.handle, *oldBytes)) ||
                BytesOf(place.path) == oldBytes;
        } else {
            isBack = !backup.empty() && PutInPlace(&handle, &backup, place.path);
        }
    }
    Remove(&backup);
    return isBack;
}

bool StagedOutput::Open(std::string_view name) {
    place.path = name;
    if (!FindPlace({}, &place)) {
        return false;
    }
    isThere = place.handle >= 0;
    const bool isRedirected = place.isRegular && IdentityOf(stdout) == place.identity;
    return !isRedirected || OpenStandardOutput();
}

bool StagedOutput::OpenStandardOutput() {
    place = OutputPlace();
    isStandardOutput = true;
    const std::optional<FileIdentity> identity = IdentityOf(stdout);
    place.isRegular = identity.has_value();
    place.identity = identity.value_or(FileIdentity());
    MakeBinary(stdout);
    return true;
}

bool StagedOutput::IsStream() const {
    return isStandardOutput || (isThere && !place.isRegular);
}

std::optional<FileIdentity> StagedOutput::Identity() const {
    return place.isRegular ? std::optional(place.identity) : std::nullopt;
}

bool StagedOutput::LeadsWhere(const StagedOutput& other) const {
    return AreOnePlace(place.path, other.place.path);
}

bool StagedOutput::IsTerminal() const {
    return IsTerminalAt(isStandardOutput ? standardOutput : place.handle);
}

bool StagedOutput::Stage(std::string_view contents) {
    const bool isPossible = CreateReplacement(place, &temporary, &handle);
    if (temporary.empty()) {
        oldBytes = isPossible ? BytesOf(place.path) : std::nullopt;
        return isPossible;
    }
    place.handle = FileHandle();  // some systems cannot replace an open file
    if (isThere) {
        static_cast<void>(CreateAtFreeName(
            place, &backup, [&](const std::string& name) { return Link(place.path, name); }));
    }
    return WriteWhole(handle, contents) && EndWriting(&handle);
}

bool StagedOutput::Send(std::string_view contents) {
    const SignalWindow window;
    return isStandardOutput ? WriteWhole(standardOutput, contents)
                            : WriteWhole(place.handle, contents) && EndWriting(&place.handle);
}

bool StagedOutput::Overwrite(std::string_view contents) {
    isPut = true;
    // The size changes last, so that the file keeps its space on the disk until the new bytes are
    // written.
    return WriteWhole(place.handle, contents) && SetSize(place.handle, contents.size()) &&
           Flush(place.handle);
}

bool StagedOutput::Put(std::string_view contents) {
    if (temporary.empty()) {
        return Overwrite(contents);
    }
    isPut = PutInPlace(&handle, &temporary, place.path);
    return isPut;
}

void StagedOutput::Keep() {
    isPut = false;
    Remove(&backup);
}

OutputGuard::OutputGuard() {
    { const SignalWindow window; }
    HoldSignals();
}

OutputGuard::~OutputGuard() {
    ReleaseSignals();
}

}  // namespace korv::platform
