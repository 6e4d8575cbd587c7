/// Warnings about assembled statements: finds anything suspicious in a statement and passes it to
/// the `MessageMaker`.
#pragma once

#include <cstdint>
#include <vector>

#include "driver/assembler.h"
#include "frontend/checks.h"
#include "frontend/condition_watch.h"
#include "frontend/message_maker.h"
#include "frontend/options.h"

namespace korv {

class StatementChecks {
  public:
    /// Owns none of its arguments.
    StatementChecks(const Options& options, CAssembler* assembler, MessageMaker* maker)
        : assembler(assembler), maker(maker), hasGaps(options.format != ImageFormat::hex) {}

    /// True if `Look` may find something in `statement`, which is not empty and emitted `count`
    /// bytes. Called for every statement, so it must be fast.
    [[nodiscard]] bool MayBeOdd(CStatement& statement, std::uint32_t count) const {
        if (conditions.HasChanged(*assembler)) {
            return true;
        }
        return assembler->assembling != 0 &&
               ((statement.HasLabel() && MayBeMisread(statement.label)) ||
                assembler->location != statement.address + count ||
                MayHaveOddOperand(statement, count));
    }
    /// Warns about anything suspicious in `statement`. If `isFaulty` is true, a fault in it has
    /// already been reported, and only its effect on open IFs is recorded.
    void Look(CStatement* statement, std::uint32_t count, bool isFaulty);
    /// Warns about comments in a multi-line statement that swallow the line after them.
    void LookAtComments(const CStatement& statement);
    /// Reports each IF that has no ENDIF.
    void LookAtOpenConditions();
    /// Warns about suspicious bytes in the file of `opening`.
    void LookAtBytes(std::int32_t opening);

    void Warn(const CStatement& statement, const Findings& findings);
    [[nodiscard]] const ConditionWatch& Conditions() const { return conditions; }

  private:
    [[nodiscard]] std::span<const std::uint8_t> BytesOf(std::uint32_t count) const {
        return assembler->binary.Bytes().last(count);
    }
    [[nodiscard]] bool MayHaveOddOperand(CStatement& statement, std::uint32_t count) const {
        for (const lsArg& arg : statement.args) {
            if (IsOdd(arg, BytesOf(count))) {
                return true;
            }
        }
        return false;
    }
    void CheckOrg(const CStatement& statement);
    void WarnOfBytes(std::int32_t opening, const std::vector<ByteFinding>& findings);

    CAssembler* const assembler;
    MessageMaker* const maker;
    const bool hasGaps;  // an ORG gap is lost: the image contains no addresses
    ConditionWatch conditions;
};

}  // namespace korv
