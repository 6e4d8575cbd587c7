#include "diagnostics/report_writer.h"

namespace korv {

void ReportWriter::Flush() {
    std::fwrite(block.data(), 1, static_cast<std::size_t>(next - block.data()), file);
    next = block.data();
}

}  // namespace korv
