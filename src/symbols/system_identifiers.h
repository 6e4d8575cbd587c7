/// The words that no source line may define.
#pragma once

#include <string_view>

namespace korv {

/// Separated by one tab each. Not the vocabulary of the recogniser: END, the DEF spellings and
/// MAC_ON, MAC_OFF are free as labels, and MACROS_ON, MACROS_OFF are reserved without being
/// commands.
inline constexpr std::string_view reservedWords =
    "ADC\tADD\tAND\tBIT\tCALL\tCCF\tCP\tCPD\tCPDR\tCPI\tCPIR\tCPL\tDAA\tDB\tDD\tDEC\tDI\tDJNZ\t"
    "DS\tDW\tDM\tEI\tENDM\tENDP\tEQU\tEX\tEXX\tHALT\tIM\tIN\tINC\tINCLUDE\tIND\tINDR\tINI\tINIR\t"
    "JP\tJR\tLD\tLDD\tLDDR\tLDI\tLDIR\tMACRO\tMACROS_OFF\tMACROS_ON\tNEG\tNOP\tOR\tORG\tOTDR\t"
    "OTIR\tOUT\tOUTD\tOUTI\tPOP\tPROC\tPUSH\tRES\tRET\tRETI\tRETN\tRL\tRLA\tRLC\tRLCA\tRLD\tRR\t"
    "RRA\tRRC\tRRCA\tRRD\tRST\tSBC\tSCF\tSET\tSLA\tSRA\tSRL\tSUB\tXOR\tIF\tCOND\tELSE\tENDIF\t"
    "ENDC\tBINCLUDE";

}  // namespace korv
