#include "meshrake/plot_data/data_set.hpp"

#include "meshrake/model/run_state.hpp"
#include "meshrake/model/version.hpp"
#include "meshrake/plot_data/binary_data_set.hpp"
#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/text/StringHelpers.hpp"
#include "tvncommon/text/number_formats.hpp"
#include "tvncommon/text/utils.hpp"
#include "tvncommon/units/units.hpp"

#include <utility>

namespace plot_data {

using model::run;

namespace {

void tecplotAddMetadata(std::string_view key, std::string_view value, Domain& domain) {
    if (run.tecplotBinary) return binary::addMetadata(key, value, domain);
    file_units::writeLine(domain.tecplotUnit, "DATASETAUXDATA " + std::string(key) + "=\"" +
                                                  std::string(StringHelpers::trimRight(value)) +
                                                  "\"");
}

} // namespace

std::string_view tecDt2String(DataType type) {
    switch (type) {
    case DataType::real8:
        return "DOUBLE";
    case DataType::longInt:
        return "LONGINT";
    default:
        return "SINGLE";
    }
}

void tecplotInit(Domain& domain) {
    domain.dataSet = {};
    run.cellCenteredVars.clear();
    run.sharedVars.clear();
}

std::int32_t tecplotVarAdd(std::string_view name, Domain& domain) {
    const std::string trimmed(StringHelpers::trimRight(name));
    std::string& list = domain.dataSet.varNameList;
    const std::int32_t number = ++domain.dataSet.numVars;
    if (number > 1) list += ',';
    list += run.tecplotBinary ? trimmed : "\"" + trimmed + "\"";
    model::write_string(number_formats::integerField(number, 4) + "     " + trimmed);
    return number;
}

void tecplotDataType(DataType type, Domain& domain) {
    if (run.tecplotBinary)
        return domain.dataSet.varTypes.push_back(static_cast<std::int32_t>(type));
    std::string& list = domain.dataSet.varTypeList;
    if (!list.empty()) list += ',';
    list += tecDt2String(type);
}

void tecplotVarShareAdd(std::int32_t varNumber) {
    run.sharedVars.push_back(varNumber);
}

void tecplotVarLocCCAdd(std::int32_t varNumber) {
    run.cellCenteredVars.push_back(varNumber);
}

void tecplotFileOpen(std::string_view name, std::string_view title, Domain& domain) {
    domain.dataSet.fileName = name;
    if (run.tecplotBinary) {
        binary::fileOpen(name, title, domain);
        return tecplotMetadata(domain);
    }
    const std::string path = model::fileName(domain.dataSet.fileName + ".dat");
    if (domain.tecplotUnit < 1) domain.tecplotUnit = file_units::getUnit();
    error::checkFileOpen(
        io_layer::openTextReplace(domain.tecplotUnit, path, io_layer::Flush::inBlocks), path);
    file_units::writeLine(domain.tecplotUnit,
                          "TITLE = \"" + std::string(StringHelpers::trimRight(title)) + "\"");
    file_units::writeLine(domain.tecplotUnit, "VARIABLES = " + domain.dataSet.varNameList);
    tecplotMetadata(domain);
}

void tecplotFileFlush(Domain& domain) {
    if (run.tecplotBinary) binary::fileFlush(domain);
}

void tecplotFileClose(Domain& domain) {
    if (run.tecplotBinary) return binary::fileClose(domain);
    if (domain.tecplotUnit < 1 || domain.dataSet.fileName.empty()) return;
    model::write_string("Closing tecplot file: " + domain.dataSet.fileName);
    file_units::freeUnit(domain.tecplotUnit);
    domain.tecplotUnit = -1;
}

void tecplotMetadata(Domain& domain) {
    tecplotAddMetadata("Source", "Terravane, Halvorne Inc.", domain);
    tecplotAddMetadata("TVN_Version", version::revision, domain);
    tecplotAddMetadata("Date_Created", utils::timestampUTC(), domain);
    tecplotAddMetadata("Model_Prefix", run.problemPrefix, domain);
    tecplotAddMetadata("Mass_Base_Unit", units::getDerivedUnit("M"), domain);
    tecplotAddMetadata("Length_Base_Unit", units::getDerivedUnit("L"), domain);
    tecplotAddMetadata("Time_Base_Unit", units::getDerivedUnit("T"), domain);
    tecplotAddMetadata("Temperature_Base_Unit", "deg C", domain);
}

void tecplotMetadataAscii(int unit) {
    Domain scratch;
    scratch.tecplotUnit = unit;
    const bool binary = std::exchange(run.tecplotBinary, false);
    tecplotMetadata(scratch);
    run.tecplotBinary = binary;
}

} // namespace plot_data
