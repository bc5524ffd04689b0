#pragma once

#include "meshrake/model/domain_options.hpp"
#include "meshrake/model/run_state.hpp"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// The arrays of a legacy VTK file, in the order of the file. A key is that of a row in the variable
// table. A label is the keyword of the section, a comma, and the line of the array.
namespace paraview {

// One column of a variable.
struct ScalarRow {
    std::string_view key;
    model::DomainSet domains;
    model::Option option;
    std::string_view label;
    std::size_t column = 0;
    bool ofElements = false;
    std::string_view presentWith{}; // key of the variable that must exist; empty: `key`
};

// Each column of a variable under the name of its species or mixing fraction.
struct FamilyRow {
    std::string_view key;
    model::Option option;
    std::vector<std::string> model::RunState::*names;
};

// All columns of a variable under one label.
struct ArrayRow {
    std::string_view key;
    model::Option option;
    std::string_view label;
};

std::span<const ScalarRow> nodeScalars();
std::span<const FamilyRow> families();
std::span<const ArrayRow> soluteExchanges();
std::span<const ArrayRow> vectors(); // of the elements
std::span<const ScalarRow> elementScalars();

} // namespace paraview
