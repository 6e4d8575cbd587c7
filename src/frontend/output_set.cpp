// The order of the steps determines what a failure leaves behind. First, all outputs are opened and
// checked. Then all files are written under temporary names. Output to pipes and devices cannot be
// undone, so it is sent next. Last, the files get their final names. Everything needed to undo this
// is prepared in advance, since a run that is out of memory ends at once.

#include "frontend/output_set.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <span>
#include <string_view>
#include <utility>

#include "frontend/platform/platform.h"
#include "frontend/platform/staged_output.h"
#include "frontend/terminal_text.h"

namespace korv {
namespace {

using platform::StagedOutput;

std::string ShownName(const std::string& name) {
    return name == "-" ? "standard output" : name;
}

std::string WriteFailure(const Output& output) {
    return "cannot write " + ShownName(output.name) + ": " + platform::ErrorText();
}

class OutputSet {
  public:
    explicit OutputSet(const std::vector<Output>& outputs)
        : outputs(outputs), staged(outputs.size()) {}

    std::string Write(const platform::FileSet& inputs) {
        for (std::size_t i = 0; i < outputs.size(); ++i) {
            if (outputs[i].name == "-" && platform::IsMissing(stdout)) {
                return "cannot write standard output: it is closed";
            }
            if (!Open(i)) {
                return WriteFailure(outputs[i]);
            }
            if (std::string refusal = RefusalOf(i, inputs); !refusal.empty()) {
                return refusal;
            }
        }
        for (const auto step : {&OutputSet::Stage, &OutputSet::Send}) {
            for (std::size_t i = 0; i < outputs.size(); ++i) {
                if (!(this->*step)(i)) {
                    return WriteFailure(outputs[i]);
                }
            }
        }
        return PutAll();
    }

  private:
    bool Open(std::size_t i) {
        return outputs[i].name == "-" ? staged[i].OpenStandardOutput()
                                      : staged[i].Open(outputs[i].name);
    }
    bool Stage(std::size_t i) {
        return staged[i].IsStream() || staged[i].Stage(outputs[i].contents);
    }
    bool Send(std::size_t i) {
        const std::string& contents = outputs[i].contents;
        return !staged[i].IsStream() ||
               (outputs[i].isText && staged[i].IsTerminal() ? staged[i].Send(EscapedText(contents))
                                                            : staged[i].Send(contents));
    }

    // Why output `i` is refused: it is an input, or the same file as another output. Empty if it is
    // accepted.
    std::string RefusalOf(std::size_t i, const platform::FileSet& inputs) const {
        const std::string name = ShownName(outputs[i].name);
        const std::optional<platform::FileIdentity> identity = staged[i].Identity();
        if (identity && inputs.contains(*identity)) {
            return "refusing to overwrite " + name + ": it is an input of this run";
        }
        for (std::size_t other = 0; other < i; ++other) {
            if (AreOne(i, other)) {
                return "refusing to write two outputs to one file: " +
                       ShownName(outputs[other].name) + " and " + name;
            }
        }
        return {};
    }

    bool AreOne(std::size_t a, std::size_t b) const {
        if (const auto identity = staged[a].Identity()) {
            return identity == staged[b].Identity();
        }
        return staged[a].IsStream() ? outputs[a].name == "-" && outputs[b].name == "-"
                                    : staged[a].LeadsWhere(staged[b]);
    }

    std::string PutAll() {
        const platform::OutputGuard guard;
        for (std::size_t i = outputs.size(); i-- > 0;) {
            if (!staged[i].IsStream() && !staged[i].Put(outputs[i].contents)) {
                const std::string failure = WriteFailure(outputs[i]);
                return failure + TakeAllBack();
            }
        }
        std::ranges::for_each(staged, &StagedOutput::Keep);
        return {};
    }

    // Undoes all outputs. Result: for the error message, the files whose old contents are lost.
    std::string TakeAllBack() {
        std::string failure;
        for (std::size_t i = 0; i < outputs.size(); ++i) {
            if (!staged[i].TakeBack()) {
                failure += "; cannot restore " + ShownName(outputs[i].name);
            }
        }
        return failure;
    }

    const std::vector<Output>& outputs;
    std::vector<StagedOutput> staged;  // one for each output
};

}  // namespace

std::string WriteOutputs(const std::vector<Output>& outputs, const platform::FileSet& inputs) {
    return OutputSet(outputs).Write(inputs);
}

}  // namespace korv
