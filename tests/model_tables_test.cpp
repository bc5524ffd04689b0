#include "meshrake/model/run_state.hpp"
#include "meshrake/variables/common_node_table.hpp"
#include "meshrake/variables/variable_table.hpp"
#include "tests/runs.hpp"
#include "tvncommon/TVNBinaryFile.hpp"
#include "tvncommon/io_layer.hpp"
#include "tvncommon/units.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <cctype>
#include <iterator>
#include <set>

namespace {

using model::Domain;
using plot_data::Family;
using plot_data::Location;
using plot_data::Timing;
using plot_data::VariableRow;

const std::vector<std::string> tagNames = {"pm", "dual", "olf", "frac", "chan", "well", "tile"};

TEST(OptionTable, LabelsOfADomainAreDistinctLines) {
    for (const std::string& tag : tagNames) {
        std::set<std::string> labels = {"write " + tag + " domain file",
                                        "truncate " + tag + " domain",
                                        "truncate " + tag + " domain by layer"};
        for (const model::OptionRow& row : model::optionTable) {
            const std::string label = model::optionLabel(row, tag);
            EXPECT_TRUE(labels.insert(label).second) << label << " stands twice";
            EXPECT_TRUE(label.starts_with("no " + tag) && label.size() < 60) << label;
            EXPECT_TRUE(std::none_of(label.begin(), label.end(), [](unsigned char c) {
                return std::isupper(c);
            })) << label;
        }
    }
}

// A row that travels the plain road must say all that the road asks; one that leaves something out
// must have steps of its own. Returns what is wrong with it.
std::string faultOf(const VariableRow& row) {
    const std::size_t columns = plot_data::columnCount(row);
    const bool plain = !row.init && row.family == Family::oneFile;
    const bool named =
        std::all_of(row.columns.begin(), row.columns.begin() + static_cast<int>(columns),
                    [](const auto& c) { return !c.label.empty(); });
    const bool closedUp =
        std::all_of(row.columns.begin() + static_cast<int>(columns), row.columns.end(),
                    [](const auto& c) { return c.name.empty() && c.label.empty(); });
    const bool marked = columns > 0 && row.columns[0].label.ends_with("(cell centred)");
    if (row.key.empty() || row.domains == 0) return "no key or no domain";
    if ((row.domains & ~model::tags::anyDomain) != 0) return "an unknown domain";
    if (!closedUp) return "a gap in its columns";
    if (!row.stem.empty() && row.stem.back() != '_')
        return "a stem that no domain can stand behind";
    if (row.stem.empty() && !(row.init && row.read)) return "neither a file nor steps of its own";
    if (plain && (columns == 0 || !named)) return "no column or no comment";
    if (plain && row.arrayText.empty()) return "no name of its arrays";
    if (plain && row.type == model::DataType::longInt && columns > 1)
        return "several columns of integers";
    if (row.family != Family::oneFile && (columns > 1 || row.location == Location::element))
        return "a family of more than one column at the nodes";
    if (row.timing != Timing::everyTime && (row.read || row.laterFallback))
        return "read later though it is constant";
    if (row.laterFallback && row.read) return "a fallback that its own step passes by";
    if (plain && row.timing != Timing::firstPass && marked != (row.location == Location::element))
        return "a comment that contradicts its location";
    return "";
}

void checkTable(std::span<const VariableRow> table) {
    std::set<std::string_view> keys;
    for (const VariableRow& row : table) {
        EXPECT_EQ(faultOf(row), "") << row.key;
        EXPECT_TRUE(keys.insert(row.key).second) << row.key << " stands twice";
        const std::string unit = units::parseUnits(row.unit);
        EXPECT_EQ(unit.empty(), row.unit.empty()) << row.key;
        EXPECT_THAT(unit, testing::Not(testing::HasSubstr("*"))) << row.key;
    }
    for (model::DomainSet tag = 1; tag <= model::tags::tile; tag <<= 1) {
        std::set<std::string_view> names, stems;
        for (const VariableRow& row : table) {
            if (!(row.domains & tag)) continue;
            for (const auto& column : row.columns) {
                EXPECT_TRUE(column.name.empty() || names.insert(column.name).second)
                    << row.key << ": " << column.name << " stands twice";
            }
            EXPECT_TRUE(row.init || stems.insert(row.stem).second)
                << row.key << ": " << row.stem << " is read twice";
        }
        EXPECT_GT(names.size(), 8U);
    }
}

TEST(VariableTables, RowsDoNotContradictThemselves) {
    checkTable(variables::variableTable());
    checkTable(variables::commonNodeTable());
}

class VariableFiles : public runs::PartOfRun {};

// The program that writes sample problems has a table of its own: types, sizes and names of its
// files must be those that the rows look for.
TEST_F(VariableFiles, AreThoseThatTheSimulatorWrites) {
    sample_files::makeProblem("--nx 2 --ny 2 --layers 2 --times 1 --variables all --tensor "
                              "--domains pm,dual,olf,frac,chan,well,tile");
    model::run.timeSuffix = "0001";
    std::set<std::string> left;
    for (const auto& entry : std::filesystem::directory_iterator("."))
        if (entry.path().extension() == ".0001") left.insert(entry.path().filename());
    EXPECT_GT(left.size(), 100U);
    std::vector<Domain> domains(tagNames.size());
    for (std::size_t d = 0; d < domains.size(); ++d) {
        create(domains[d], tagNames[d], domains[0]);
        for (const VariableRow& row : variables::variableTable()) {
            if (!(row.domains & domains[d].tag) || row.stem.empty()) continue;
            const std::string name = plot_data::variableFile(domains[d], row.stem);
            if (!io_layer::exists(name)) continue;
            left.erase(name);
            const auto header = TVNBinaryFile::parseTVNBinFileHeader(
                TVNBinaryFile::readTVNBinFileHeader(name), name);
            const auto type = row.type == model::DataType::single  ? "R04"
                              : row.type == model::DataType::real8 ? "R08"
                                                                   : "I04";
            const bool nodal = row.location == Location::node;
            EXPECT_EQ(header.dataType, type) << name;
            EXPECT_EQ(header.numValues, nodal ? domains[d].nodeCount : domains[d].elementCount)
                << name;
            // The second column of the moving ground is computed.
            const std::size_t components = row.stem == "tvtopo_" ? 1 : plot_data::columnCount(row);
            EXPECT_EQ(header.numComponents, static_cast<int>(components)) << name;
        }
    }
    EXPECT_THAT(left,
                testing::ElementsAre("to.liquid_p.0001", "to.snowcover.0001", "to.snowdepth.0001",
                                     "to.snowmelt.0001", "to.solid_p.0001"));
}

} // namespace
