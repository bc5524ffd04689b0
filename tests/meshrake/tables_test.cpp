#include "meshrake/model/run_state.hpp"
#include "meshrake/paraview/vtk_tables.hpp"
#include "meshrake/plot_control/control_reading.hpp"
#include "meshrake/plot_control/control_template.hpp"
#include "meshrake/plot_control/instruction_table.hpp"
#include "meshrake/run/domains.hpp"
#include "meshrake/variables/common_node_table.hpp"
#include "meshrake/variables/variable_table.hpp"
#include "tests/support/runs.hpp"
#include "tvncommon/io/TVNBinaryFile.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/units/units.hpp"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <sstream>

// The tables of options, variables and instructions, and the tables that refer to their rows.
namespace {

using namespace sample_files;
using model::Domain;
using model::Option;
using plot_control::InstructionRow;
using plot_control::Section;
using plot_data::Location;
using plot_data::VariableRow;

constexpr std::size_t lineWidth = 60; // of an instruction
constexpr std::size_t unitWidth = 50;

class Tables : public runs::PartOfRun {
protected:
    Tables() {
        makeProblem("--nx 2 --ny 2 --layers 2 --times 1 --variables all --tensor "
                    "--domains pm,dual,olf,frac,chan,well,tile --observations 1");
        model::run.timeSuffix = "0001";
        run::createDomains(all);
        for (Domain* domain : run::processingOrder(all)) domains.push_back(*domain);
    }

    // Returns the template for this problem with its comments as active lines.
    std::string templateText() {
        put("t.observed_d2gwt", "");
        model::run.controlUnit = file_units::openTextReplace("template", io_layer::Flush::inBlocks);
        plot_control::writePlotControlInit();
        for (const Domain& domain : domains) plot_control::writePlotControl(domain);
        plot_control::writePlotControl(addition);
        file_units::freeUnit(model::run.controlUnit);
        std::string text = "\n" + get("template");
        for (std::size_t at = 0; (at = text.find("\n! ", at)) != std::string::npos; ++at)
            text.erase(at + 1, 2);
        return text.substr(1);
    }

    // Reads the first section, up to "end", and then the block of the domain.
    static void read(const std::string& text, Domain& domain) {
        put("control", text);
        model::run.controlUnit = file_units::openTextRead("control");
        plot_control::readPlotControlInit();
        plot_control::readPlotControl(domain);
        file_units::freeUnit(model::run.controlUnit);
    }

    run::Domains all;
    std::vector<std::reference_wrapper<Domain>> domains; // those with a mesh
    Domain &pm = all.pm, &addition = all.addition;
};

TEST_F(Tables, LinesOfTheControlFileAreUniqueAndNotCut) {
    for (const auto& [tag, bit] : model::tags::names) {
        if (bit == model::tags::addition) continue;
        std::set<std::string> lines;
        const auto add = [&](const std::string& line) {
            EXPECT_LE(line.size(), lineWidth) << line;
            EXPECT_FALSE(line.starts_with("end") || line.starts_with("include")) << line;
            EXPECT_TRUE(std::ranges::none_of(line, [](char c) { return c >= 'A' && c <= 'Z'; }))
                << line;
            EXPECT_TRUE(lines.insert(line).second) << line;
        };
        for (const model::OptionRow& row : model::optionTable) {
            const std::string label = model::optionLabel(row, tag);
            EXPECT_TRUE(label.ends_with(row.words)) << label;
            add(label);
        }
        for (const InstructionRow& row : plot_control::instructionTable())
            add(plot_control::instructionLine(row, tag));
    }
}

TEST_F(Tables, VariablesAreUniqueAndKnownToTheOtherTables) {
    std::map<std::string_view, Option> options; // by key
    for (const VariableRow& row : variables::variableTable()) {
        EXPECT_TRUE(options.emplace(row.key, row.option).second) << row.key;
        units::setBaseUnits(6); // centimetres and minutes have the longest labels
        EXPECT_LE(units::parseUnits(row.unit).size(), unitWidth) << row.key;
    }
    const auto expectKnown = [&](std::string_view key, Option option) {
        const auto it = options.find(key);
        EXPECT_TRUE(it != options.end() && it->second == option) << key;
    };
    for (const auto table : {variables::variableTable(), variables::commonNodeTable()})
        for (const Domain& domain : domains) {
            std::set<std::string_view> names;
            for (const VariableRow& row : table) {
                expectKnown(row.key, row.option);
                if (!(row.domains & domain.tag) || row.family != plot_data::Family::oneFile)
                    continue;
                for (std::size_t c = 0; c < plot_data::columnCount(row); ++c)
                    EXPECT_TRUE(names.insert(row.columns[c].name).second) << row.columns[c].name;
            }
        }
    for (const auto table : {paraview::nodeScalars(), paraview::elementScalars()})
        for (const paraview::ScalarRow& row : table) {
            if (row.presentWith.empty()) expectKnown(row.key, row.option);
            EXPECT_TRUE(options.contains(row.key)) << row.key;
            EXPECT_TRUE(row.presentWith.empty() || options.contains(row.presentWith)) << row.label;
        }
    for (const paraview::FamilyRow& row : paraview::families()) expectKnown(row.key, row.option);
    for (const auto table : {paraview::soluteExchanges(), paraview::vectors()})
        for (const paraview::ArrayRow& row : table) expectKnown(row.key, row.option);
}

// Returns the lines of each section of a control file, without the value lines.
std::vector<Texts> sectionsOf(const std::string& text) {
    std::vector<Texts> sections(1);
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        if (line == "end")
            sections.emplace_back();
        else if (line.find_first_of("abcdefghijklmnopqrstuvwxyz") != std::string::npos)
            sections.back().push_back(line);
    }
    return sections;
}

// The template for a problem with all domains and files has each instruction and option.
TEST_F(Tables, TemplateIsComplete) {
    const auto linesOf = [](Section section, const Domain& domain) {
        Texts lines;
        for (const InstructionRow& row : plot_control::instructionTable())
            if (row.section == section &&
                (section != Section::domainBlock || row.domains & domain.tag))
                lines.push_back(plot_control::instructionLine(row, domain.name));
        return lines;
    };
    std::vector<Texts> expected{linesOf(Section::first, pm)};
    for (const Domain& domain : domains) {
        Texts lines = linesOf(Section::domainBlock, domain);
        lines.push_back("write " + domain.name + " domain file");
        for (const model::OptionRow& row : model::optionTable)
            if (row.inTemplate & domain.tag) lines.push_back(model::optionLabel(row, domain.name));
        expected.push_back(lines);
    }
    expected.push_back(linesOf(Section::afterFirst, addition));
    expected.back().push_back("Additional post-processing commands");

    const std::vector<Texts> sections = sectionsOf(templateText());
    ASSERT_EQ(sections.size(), expected.size() + 1); // a separator after the last "end"
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_THAT(sections[i], testing::UnorderedElementsAreArray(expected[i]));
}

// Each option by itself, also those that are in no template.
TEST_F(Tables, EachOptionIsReadBack) {
    for (Domain& domain : domains)
        for (const model::OptionRow& row : model::optionTable) {
            const std::string line = model::optionLabel(row, domain.name);
            takeScreen();
            read("end\nwrite " + domain.name + " domain file\n" + line, domain);
            const bool known = row.cleared != Option::none;
            EXPECT_EQ(takeScreen(),
                      known ? "" : "Plot control - Unrecognized line\n" + line + "\n\n");
            for (const model::OptionRow& other : model::optionTable)
                EXPECT_EQ(model::enabled(domain, other.option), other.option != row.cleared)
                    << line;
            if (known) model::optionOf(domain, row.cleared).enabled = true;
        }
}

// Returns the fields that instructions of the control file have changed, with their values.
std::string changes(const Domain& domain) {
    const model::RunState fresh;
    const Domain freshDomain;
    std::ostringstream text;
    const auto add = [&](const char* name, const auto& value, const auto& before) {
        if (value != before) text << name << " " << value << " ";
    };
    const auto addAll = [&](const char* name, const auto& values, const auto& before) {
        for (std::size_t i = 0; i < values.size(); ++i) add(name, values[i], before[i]);
    };
    add("binary", model::run.tecplotBinary, fresh.tecplotBinary);
    add("flush", model::run.tecplotFlushInterval, fresh.tecplotFlushInterval);
    add("append", model::run.tecplotAppend, fresh.tecplotAppend);
    add("times", model::run.truncateTime, fresh.truncateTime);
    add("min", model::run.timeWindowMin, fresh.timeWindowMin);
    add("max", model::run.timeWindowMax, fresh.timeWindowMax);
    add("digits", model::run.suffixDigits, fresh.suffixDigits);
    add("suffix", model::run.suffixLength, fresh.suffixLength);
    add("conversion", model::run.timeConversion, fresh.timeConversion);
    add("offset", model::run.timeUnitOffset, fresh.timeUnitOffset);
    add("factor", model::run.timeUnitFactor, fresh.timeUnitFactor);
    add("isopach", model::run.plotIsopach, fresh.plotIsopach);
    add("depth", model::run.plotDepthBelowSurface, fresh.plotDepthBelowSurface);
    add("interpolate", model::run.interpolateDepthToTable, fresh.interpolateDepthToTable);
    add("heads", model::run.compareHeads, fresh.compareHeads);
    add("table", model::run.compareWaterTable, fresh.compareWaterTable);
    add("depth to table", model::run.compareDepthToTable, fresh.compareDepthToTable);
    add("surface", model::run.compareSurfaceDepth, fresh.compareSurfaceDepth);
    addAll("window", model::run.compareWindow, fresh.compareWindow);
    add("box", domain.truncateEnabled, freshDomain.truncateEnabled);
    add("layers", domain.truncateByLayerEnabled, freshDomain.truncateByLayerEnabled);
    addAll("bound", domain.truncateBounds, freshDomain.truncateBounds);
    addAll("layer", domain.truncateLayers, freshDomain.truncateLayers);
    return text.str();
}

// Returns "5 6\n7 8\n" and so on, with as many numbers in each line as the example has.
std::string numbersLike(std::string_view example) {
    std::string text;
    std::istringstream lines{std::string(example)};
    int next = 5;
    for (std::string line; std::getline(lines, line); text += "\n") {
        std::istringstream numbers(line);
        for (double number; numbers >> number;) text += std::to_string(next++) + " ";
    }
    return text;
}

// Each instruction by itself, with its values in as many lines as in the template.
TEST_F(Tables, EachInstructionIsReadBack) {
    const model::RunState before = model::run;
    const auto resultOf = [&](const InstructionRow& row, Domain& domain) {
        const std::string head = "end\nwrite " + domain.name + " domain file\n";
        const std::string line = plot_control::instructionLine(row, domain.name) + "\n";
        const std::string text = line + numbersLike(row.exampleValues) + "end\n";
        model::run = before;
        domain.truncateEnabled = domain.truncateByLayerEnabled = false;
        domain.truncateBounds = Domain{}.truncateBounds;
        domain.truncateLayers = Domain{}.truncateLayers;
        takeScreen();
        read((row.section == Section::first ? "" : head) + text, domain);
        const bool unknown = takeScreen().find("Unrecognized") != std::string::npos;
        return (unknown ? "unrecognized " : "") + changes(domain);
    };
    std::string report;
    for (const InstructionRow& row : plot_control::instructionTable())
        if (row.section != Section::domainBlock)
            report += std::string(row.words) + ": " + resultOf(row, addition) + "\n";
        else
            for (Domain& domain : domains)
                report += std::string(row.words) + ", " + domain.name + ": " +
                          resultOf(row, domain) + "\n";
    expectFile("instructions.txt", report);
}

// The program that writes sample problems has its own table. Types, sizes and names of its files
// must be those of the rows. A variable without a sample file would not be tested.
TEST_F(Tables, VariablesHaveTheFilesOfTheSimulator) {
    std::set<std::string_view> withoutFile;
    for (const VariableRow& row : variables::variableTable())
        if (!row.stem.empty() && row.family == plot_data::Family::oneFile)
            withoutFile.insert(row.key);
    std::set<std::string> left;
    for (const std::string& name : filesHere())
        if (name.ends_with(".0001")) left.insert(name);
    EXPECT_GT(left.size(), 100U);
    for (const Domain& domain : domains)
        for (const VariableRow& row : variables::variableTable()) {
            if (!(row.domains & domain.tag) || row.stem.empty()) continue;
            const std::string name = plot_data::variableFile(domain, row.stem);
            if (!std::filesystem::exists(name)) continue;
            left.erase(name);
            withoutFile.erase(row.key);
            const auto header = TVNBinaryFile::parseTVNBinFileHeader(
                TVNBinaryFile::readTVNBinFileHeader(name), name);
            const auto type = row.type == model::DataType::single  ? "R04"
                              : row.type == model::DataType::real8 ? "R08"
                                                                   : "I04";
            const bool nodal = row.location == Location::node;
            EXPECT_EQ(header.dataType, type) << name;
            EXPECT_EQ(header.numValues, nodal ? domain.nodeCount : domain.elementCount) << name;
            // The second column of the time-varying topography is computed.
            const std::size_t components = row.stem == "tvtopo_" ? 1 : plot_data::columnCount(row);
            EXPECT_EQ(header.numComponents, static_cast<int>(components)) << name;
        }
    EXPECT_THAT(left,
                testing::ElementsAre("to.liquid_p.0001", "to.snowcover.0001", "to.snowdepth.0001",
                                     "to.snowmelt.0001", "to.solid_p.0001"));
    // The name of its file has a species.
    EXPECT_THAT(withoutFile, testing::ElementsAre("redoxCapacity"));
}

} // namespace
