/// Which part of a line a report is about, where the report itself does not say.
#pragma once

#include <cstdint>
#include <string_view>

namespace korv {

struct CStatement;
struct LineParts;

/// A view of the line of `statement`, which is being assembled and has been given report `number`.
[[nodiscard]] std::string_view Concerned(CStatement* statement, const LineParts& parts,
                                         std::int32_t number);

/// For a statement that is over: the same by the text of the report, as far as it can be found.
[[nodiscard]] std::string_view ConcernedByText(std::string_view line, const LineParts& parts,
                                               std::string_view text);

}  // namespace korv
