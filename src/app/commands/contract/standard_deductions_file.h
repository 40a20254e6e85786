#pragma once

#include <string>
#include <vector>

#include "billing/deduction/dm_abzug.h"

// The standard deductions file "STANDARD-ABZUEGE.VAZ" beside the billing database: one
// deduction a line, its fields separated by "|": name, type, subtype, B/N, invoice kinds,
// amount, formula ("Bauschild|U|S|N|ARSTU|0,00|FR*0,5/100"). UTF-8.
namespace korvan::app {

inline constexpr const char* kStandardDeductionsFileName = "STANDARD-ABZUEGE.VAZ";

// The file's text for a contract's deductions; CommandError for a name holding "|".
std::string StandardDeductionsText(const std::vector<billing::TDeduction>& deductions);
// Reads the file; CommandError naming the file and the line of a wrong deduction.
std::vector<billing::TDeduction> ReadStandardDeductions(const std::string& path);
// Puts read deductions into a contract's deductions: an allocation replaces the contract's
// allocation of its name, any other deduction is added.
void TakeStandardDeductions(billing::TdmAbzug& book,
                            const std::vector<billing::TDeduction>& deductions);

}  // namespace korvan::app
