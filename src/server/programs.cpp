#include "server/programs.h"

#include <algorithm>
#include <span>
#include <utility>

#include "frontend/analyser.h"
#include "frontend/symbol_formats.h"
#include "server/features/features.h"

namespace korv {
namespace {

// The limit on the errors that an analysis collects, and on the messages that are shown for a
// program: nobody reads more in an editor.
constexpr std::size_t mostMessages = 1000;

// The diagnostic for an error that is not about a line.
Json FailureDiagnostic(const std::string& failure) {
    return {{"range", Range()}, {"severity", 1}, {"source", "korv"}, {"message", failure}};
}

// Adds the messages of a program. If a file is also part of another program, each of its messages
// appears only once. Messages without a place are shown at the start of the main file.
void AddMessages(const Snapshot& snapshot, DiagnosticsByPath* all) {
    const std::span<const Message> messages = snapshot.analysis->messages;
    const DiagnosticsByPath others = *all;
    for (const Message& message : messages.first(std::min(messages.size(), mostMessages))) {
        const std::string& path = snapshot.Text(std::max(message.place.file, 0)).Path();
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
        program.isStale = program.isStale || program.Reads(path);
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
    programOf.clear();
    programs.clear();
}

// Analyses the current texts of the program, unless its last analysis is up to date.
void Programs::Refresh(Program* program) {
    if (!program->isStale) {
        return;
    }
    const Options& options = program->configuration.options;
    FileStore store(program->configuration.directory);
    for (const std::string& name : options.includes) {
        store.AddSearchDirectory(name);
    }
    documents->AddTo(&store);
    Analysis analysis = Analyse(options, &store, {.statements = true, .names = true, .uses = true});
    if (analysis.errorCount == 0) {
        SymbolFileText(options, &analysis);  // called for its warning
    }
    Snapshot& snapshot = program->snapshot;
    snapshot = {
        std::make_shared<const Analysis>(std::move(analysis)), {}, documents->Encoding(), {}};
    for (const SourceFile& file : snapshot.analysis->files) {
        snapshot.uris.push_back(documents->UriOf(file.text->Path()));
    }
    program->isStale = false;
}

// Returns the program with the source `main`, and marks it as needed. If it is stale, its options
// are set again, since the argument file may have changed along with other files.
Programs::Program& Programs::Need(const Configuration& configuration, const std::string& main) {
    Program& program =
        programs[main + '\n' + configuration.origin + '\n' + configuration.directory];
    program.isNeeded = true;
    if (program.isStale) {
        program.main = main;
        program.configuration = configuration;
        if (main != configuration.source) {  // otherwise the name stays as written, for messages
            program.configuration.options.source = main;
        }
        program.configuration.options.maxErrors = mostMessages;
        Refresh(&program);
    }
    return program;
}

Programs::Program& Programs::ProgramFor(const std::string& path) {
    const Configuration& configuration = workspace->ConfigurationOf(path);
    if (!configuration.failure.empty()) {
        const bool isFile = !configuration.origin.empty();
        failures[isFile ? configuration.origin : path] =
            (isFile ? "" : "settings of korv: ") + configuration.failure;
    }
    if (!configuration.source.empty()) {
        Program& program = Need(configuration, configuration.source);
        if (program.Reads(path)) {
            return program;
        }
    }
    for (auto& [key, program] : programs) {
        if (program.main == path || !program.Reads(path)) {
            continue;
        }
        if (program.configuration.origin == configuration.origin &&
            program.configuration.directory == configuration.directory) {
            Need(configuration, program.main);  // with the words that the argument file has now
        } else {
            Refresh(&program);
        }
        if (program.Reads(path)) {
            program.isNeeded = true;
            return program;
        }
    }
    const std::string& includer = workspace->IncluderOf(path);
    Program& program = Need(configuration, includer);
    return includer == path || program.Reads(path) ? program : Need(configuration, path);
}

void Programs::Update() {
    failures.clear();
    programOf.clear();
    // There are two rounds: an analysis in the first may show that its program reads a document
    // already assigned.
    for (int round = 0; round < 2; ++round) {
        for (auto& [key, program] : programs) {
            program.isNeeded = false;
        }
        for (const auto& [path, document] : documents->All()) {
            programOf[path] = &ProgramFor(path);
        }
    }
    std::erase_if(programs, [](const auto& each) { return !each.second.isNeeded; });
    isStale = false;
}

const Snapshot* Programs::SnapshotOf(const std::string& path) const {
    if (const auto document = programOf.find(path); document != programOf.end()) {
        return &document->second->snapshot;
    }
    for (const auto& [key, program] : programs) {
        if (program.Reads(path)) {
            return &program.snapshot;
        }
    }
    return nullptr;
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
