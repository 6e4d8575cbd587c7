#include "server/programs.h"

#include <algorithm>
#include <memory>
#include <span>
#include <utility>

#include "frontend/analyser.h"
#include "frontend/file_store.h"
#include "server/features/features.h"

namespace korv {
namespace {

// Errors of a program that are kept, and messages that are shown: nobody reads more in an editor.
constexpr std::size_t mostMessages = 1000;

// What cannot be blamed on a line.
Json FailureDiagnostic(const std::string& failure) {
    return {{"range", Range()}, {"severity", 1}, {"source", "korv"}, {"message", failure}};
}

// Adds the messages of a program; a file that is also part of another has each once. Those without
// a place are shown at the start of the main file.
void AddMessages(const Snapshot& snapshot, DiagnosticsByPath* all) {
    const std::vector<Message>& messages = snapshot.analysis->messages;
    const DiagnosticsByPath others = *all;
    for (const Message& message :
         std::span(messages).first(std::min(messages.size(), mostMessages))) {
        const std::string& path = snapshot.File(std::max(message.place.file, 0)).text->Path();
        Json diagnostic = DiagnosticOf(snapshot, message);
        const auto isSame = [&diagnostic](const Json& other) {
            return other["range"] == diagnostic["range"] &&
                   other["message"] == diagnostic["message"];
        };
        const auto there = others.find(path);
        if (there == others.end() || std::ranges::none_of(there->second, isSame)) {
            (*all)[path].push_back(std::move(diagnostic));
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
    return found != programs.end() && found->second.snapshot.FileOf(path) != noIndex;
}

void Programs::Analyse(Program* program) {
    FileStore store(program->configuration.directory);
    for (const std::string& name : program->configuration.options.includes) {
        store.AddSearchDirectory(name);
    }
    for (const auto& [path, document] : documents->All()) {
        store.SetText(documents->TextOf(path));
    }
    auto analysis = std::make_shared<const Analysis>(korv::Analyse(
        program->configuration.options, &store, {.statements = true, .names = true, .uses = true}));
    program->snapshot = {analysis, {}, encoding, nullptr};
    for (const SourceFile& file : analysis->files) {
        program->snapshot.uris.push_back(documents->UriOf(file.text->Path()));
    }
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
        program.configuration = configuration;
        if (main != configuration.source) {  // else it stays as it was written, for messages
            program.configuration.options.source = main;
        }
        program.configuration.options.maxErrors = mostMessages;
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
    if (!configuration.source.empty()) {
        const Key& key = Analysed(configuration, configuration.source);
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
    // An analysis in the first round may show that a program reads a document seen before.
    for (int round = 0; round < 2; ++round) {
        programOf.clear();
        needed.clear();
        for (const auto& [path, document] : documents->All()) {
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
        snapshots.push_back(&program.snapshot);
    }
    return snapshots;
}

DiagnosticsByPath Programs::Diagnostics() const {
    DiagnosticsByPath all;
    for (const auto& [path, document] : documents->All()) {
        all[path];
    }
    for (const auto& [path, failure] : failures) {
        all[path].push_back(FailureDiagnostic(failure));
    }
    for (const auto& [key, program] : programs) {
        if (const std::string& failure = program.snapshot.analysis->failure; failure.empty()) {
            AddMessages(program.snapshot, &all);
        } else {
            const std::string& origin = program.configuration.origin;
            all[origin.empty() ? program.main : origin].push_back(FailureDiagnostic(failure));
        }
    }
    return all;
}

}  // namespace korv
