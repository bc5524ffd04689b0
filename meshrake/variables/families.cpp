#include "meshrake/variables/families.hpp"

#include "meshrake/model/file_names.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/plot_data/data_set.hpp"
#include "meshrake/plot_data/unit_labels.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/text/StringHelpers.hpp"

namespace variables {

using model::Column;
using model::run;
using plot_data::Family;

namespace {

struct Member {
    std::string file;  // without the full stop and the time index
    std::string name;  // in the variable list
    std::string label; // comment before the values
    std::size_t species = 0;
};

bool isMember(Family family, std::size_t species) {
    switch (family) {
    case Family::allSpecies:
        return true;
    case Family::mobileSpecies:
        return species < static_cast<std::size_t>(run.numMobileSpecies);
    case Family::flagASpecies:
        return run.speciesFlagA[species] != 0;
    case Family::flagBSpecies:
        return run.speciesFlagB[species] != 0;
    default:
        return false;
    }
}

std::string speciesFile(const Domain& domain, const VariableRow& row, std::size_t species) {
    return std::string(row.stem) + domain.name + "." + run.speciesNames[species];
}

std::vector<Member> fractionMembers(const Domain& domain, const VariableRow& row) {
    const std::string stem =
        "./hmc/" + run.problemPrefix + "o." + std::string(row.stem) + domain.name + ".";
    std::vector<Member> members;
    for (const std::string& fraction : run.hmcFractionNames)
        members.push_back({stem + fraction, fraction, fraction});
    members.push_back({stem + "mixing_ratio", "HMC Mixing Ratio", "hmc_mixing_ratio"});
    members.push_back({stem + "hmc_error", "HMC Error", "hmc_error"});
    return members;
}

std::vector<Member> membersOf(const Domain& domain, const VariableRow& row) {
    if (row.family == Family::fractions) {
        if (!run.hmcPresent) return {};
        return fractionMembers(domain, row);
    }
    std::vector<Member> members;
    for (std::size_t s = 0; s < run.speciesNames.size(); ++s) {
        if (!isMember(row.family, s)) continue;
        const std::string name = run.speciesNames[s] + std::string(row.columns[0].name);
        const std::string_view label = row.columns[0].label;
        members.push_back({run.problemPrefix + "o." + speciesFile(domain, row, s), name,
                           label.empty() ? name : std::string(label), s});
    }
    return members;
}

std::string currentFile(const Member& member) {
    return model::fileName(member.file + "." + run.timeSuffix);
}

// The unit label depends on the species, see `tecplotTransVarUnitsAdd`.
void declareSpeciesColumn(Domain& domain, const VariableRow& row, std::size_t species,
                          std::string_view name, Column& column) {
    plot_data::declareColumn(domain, column, name, "");
    plot_data::tecplotTransVarUnitsAdd(species, name, column.varNumber, row.unit, domain);
}

void declareMember(Domain& domain, const VariableRow& row, const Member& member, Column& column) {
    if (row.family == Family::fractions)
        plot_data::declareColumn(domain, column, member.name, row.unit);
    else
        declareSpeciesColumn(domain, row, member.species, member.name, column);
}

std::string redoxFile(const Domain& domain, const VariableRow& row, std::size_t species) {
    return model::problemFile(speciesFile(domain, row, species) + "-Redox." + run.timeSuffix);
}

} // namespace

void familyInit(Domain& domain, const VariableRow& row, OutputVar& var) {
    const std::vector<Member> members = membersOf(domain, row);
    if (members.empty()) return;
    // The loop tests the first file again. An appending run that falls back to output time 1 must
    // show the warning of that file twice, so this test is not merged with the one in the loop.
    std::string first = currentFile(members.front());
    var.firstExists = plot_data::checkFileInit(first);
    if (!var.firstExists) return;
    for (const Member& member : members) {
        std::string name = currentFile(member);
        var.exists = plot_data::checkFileInit(name);
        Column& column = var.columns.emplace_back(plot_data::columnOf(row, member.label));
        plot_data::allocateColumn(domain, column, row.arrayText);
        declareMember(domain, row, member, column);
        plot_data::readColumns(domain, {&column, 1}, name);
    }
}

void familyRead(Domain& domain, const VariableRow& row, OutputVar& var) {
    const std::vector<Member> members = membersOf(domain, row);
    for (std::size_t m = 0; m < members.size(); ++m)
        plot_data::readOrShareColumns(domain, var, {&var.columns[m], 1}, currentFile(members[m]));
}

void redoxCapacityInit(Domain& domain, const VariableRow& row, OutputVar& var) {
    if (run.numSpecies < 1) return;
    std::string name = redoxFile(domain, row, 0);
    var.firstExists = var.exists = plot_data::checkFileInit(name);
    if (!var.firstExists) return;
    var.columns = plot_data::columnsOf(row);
    plot_data::allocateColumn(domain, var.columns[0], row.arrayText);
    declareSpeciesColumn(domain, row, 0, row.columns[0].name, var.columns[0]);
    plot_data::readColumns(domain, var.columns, name);
}

void redoxCapacityRead(Domain& domain, const VariableRow& row, OutputVar& var) {
    if (run.numMobileSpecies < 1) return plot_data::constantRead(domain, row, var);
    for (std::size_t s = 0; s < static_cast<std::size_t>(run.numMobileSpecies); ++s)
        plot_data::readOrShareColumns(domain, var, var.columns, redoxFile(domain, row, s));
}

} // namespace variables
