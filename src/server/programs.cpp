#include "server/programs.h"

#include <algorithm>
#include <memory>
#include <span>
#include <utility>

#include "frontend/analyser.h"
#include "frontend/file_store.h"
#include "server/features/actions.h"

namespace korv {
namespace {

// Errors of a program that are kept, and messages that are shown: nobody reads more in an editor.
constexpr std::size_t mostMessages = 1000;

using DiagnosticsByPath = std::map<std::string, std::vector<lsp::Diagnostic>>;

lsp::Diagnostic FailureDiagnostic(const std::string& failure) {
    lsp::Diagnostic diagnostic;
    diagnostic.message = failure;
    return diagnostic;
}

// The file of `message`, which is shown at the start of the main file if it has no place.
lsp::Diagnostic AddPath(const Snapshot& snapshot, const Message& message, std::string* path) {
    *path = snapshot.File(std::max(message.place.file, 0)).text->Path();
    if (message.place.IsSomewhere()) {
        return DiagnosticOf(snapshot, message);
    }
    Message placed = message;
    placed.place = {0, 1, 0, 0};
    return DiagnosticOf(snapshot, placed);
}

// Adds the messages of a program; a file that is also part of another has each once.
void AddMessages(const Snapshot& snapshot, DiagnosticsByPath* all) {
    const Analysis& analysis = *snapshot.analysis;
    DiagnosticsByPath own;
    for (const Message& message :
         std::span(analysis.messages).first(std::min(analysis.messages.size(), mostMessages))) {
        std::string path;
        lsp::Diagnostic diagnostic = AddPath(snapshot, message, &path);
        own[path].push_back(std::move(diagnostic));
    }
    for (auto& [path, diagnostics] : own) {
        auto& there = (*all)[path];
        const std::vector<lsp::Diagnostic> others = there;
        for (lsp::Diagnostic& diagnostic : diagnostics) {
            const auto isSame = [&diagnostic](const lsp::Diagnostic& other) {
                return other.range == diagnostic.range && other.message == diagnostic.message;
            };
            if (std::ranges::none_of(others, isSame)) {
                there.push_back(std::move(diagnostic));
            }
        }
    }
}

}  // namespace

void Programs::OnTextChanged(const std::string& path) {
    isStale = true;
    for (auto& [key, program] : programs) {
        program.isStale = program.isStale || Reads(key, path);
    }
}

void Programs::OnFilesChanged() {
    isStale = true;
    workspace->Forget();
    for (auto& [key, program] : programs) {
        program.isStale = true;
    }
}

void Programs::OnConfigurationChanged() {
    isStale = true;
    workspace->Forget();
    programs.clear();
}

bool Programs::Reads(const Key& key, const std::string& path) const {
    const auto found = programs.find(key);
    return found != programs.end() && found->second.snapshot.analysis != nullptr &&
           found->second.snapshot.FileOf(path) != noIndex;
}

void Programs::Analyse(Program* program) {
    FileStore store(program->directory);
    for (const std::string& name : program->options.includes) {
        store.AddSearchDirectory(name);
    }
    for (const std::string& path : documents->Paths()) {
        store.SetText(documents->TextOf(path));
    }
    Analysis analysis =
        korv::Analyse(program->options, &store, {.statements = true, .names = true, .uses = true});
    program->snapshot = Snapshot(std::make_shared<const Analysis>(std::move(analysis)), encoding);
    program->isStale = false;
    ++analysisCount;
}

// The program with the source `main`, after an analysis of its present texts.
const Programs::Key& Programs::Analysed(const Configuration& configuration,
                                        const std::string& main) {
    const Key key = main + '\n' + configuration.origin + '\n' + configuration.directory;
    const auto [at, isNew] = programs.try_emplace(key);
    Program& program = at->second;
    if (isNew) {
        program.main = main;
        program.directory = configuration.directory;
        program.origin = configuration.origin;
        program.options = configuration.options;
        program.options.source = main;
        program.options.maxErrors = mostMessages;
    }
    if (program.isStale) {
        Analyse(&program);
    }
    needed.insert(key);
    return at->first;
}

const Programs::Key& Programs::ProgramFor(const std::string& path) {
    const Configuration& configuration = workspace->ConfigurationOf(path);
    if (!configuration.failure.empty()) {
        const bool isFile = !configuration.origin.empty();
        failures[isFile ? configuration.origin : path] =
            (isFile ? "" : "settings of korv: ") + configuration.failure;
    }
    if (configuration.hasSource) {
        const std::string& source = configuration.options.source;
        const bool isFull = platform::IsAbsolutePath(source);
        const Key& key =
            Analysed(configuration,
                     workspace->FullPath(isFull ? source : configuration.directory + "/" + source));
        if (Reads(key, path)) {
            return key;
        }
    }
    for (auto& [key, program] : programs) {
        if (program.main == path || !Reads(key, path)) {
            continue;
        }
        if (program.isStale) {
            Analyse(&program);
        }
        if (Reads(key, path)) {
            needed.insert(key);
            return key;
        }
    }
    const std::string& includer = workspace->IncluderOf(path);
    const Key& key = Analysed(configuration, includer);
    return includer == path || Reads(key, path) ? key : Analysed(configuration, path);
}

void Programs::Update() {
    failures.clear();
    const std::vector<std::string> paths = documents->Paths();
    // An analysis in the first round may show that a program reads a document seen before.
    for (int round = 0; round < 2; ++round) {
        programOf.clear();
        needed.clear();
        for (const std::string& path : paths) {
            programOf[path] = ProgramFor(path);
        }
    }
    std::erase_if(programs,
                  [this](const auto& program) { return !needed.contains(program.first); });
    isStale = false;
}

const Snapshot* Programs::SnapshotOf(const std::string& path) const {
    if (const auto document = programOf.find(path); document != programOf.end()) {
        const auto program = programs.find(document->second);
        return program == programs.end() ? nullptr : &program->second.snapshot;
    }
    for (const auto& [key, program] : programs) {
        if (Reads(key, path)) {
            return &program.snapshot;
        }
    }
    return nullptr;
}

std::vector<const Snapshot*> Programs::Snapshots() const {
    std::vector<const Snapshot*> snapshots;
    for (const auto& [key, program] : programs) {
        if (program.snapshot.analysis != nullptr) {
            snapshots.push_back(&program.snapshot);
        }
    }
    return snapshots;
}

DiagnosticsByPath Programs::Diagnostics() const {
    DiagnosticsByPath all;
    for (const std::string& path : documents->Paths()) {
        all[path];
    }
    for (const auto& [path, failure] : failures) {
        all[path].push_back(FailureDiagnostic(failure));
    }
    for (const auto& [key, program] : programs) {
        if (const std::string& failure = program.snapshot.analysis->failure; failure.empty()) {
            AddMessages(program.snapshot, &all);
        } else {
            all[program.origin.empty() ? program.main : program.origin].push_back(
                FailureDiagnostic(failure));
        }
    }
    return all;
}

}  // namespace korv
