#include "meshrake/plot_data/data_set.hpp"

#include "meshrake/model/output_lines.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/model/version.hpp"
#include "meshrake/plot_data/writer_functions.hpp"
#include "tvncommon/text/StringHelpers.hpp"
#include "tvncommon/text/number_formats.hpp"
#include "tvncommon/text/utils.hpp"
#include "tvncommon/units/units.hpp"

#include <utility>

namespace plot_data {

using model::run;

namespace {

void addMetadata(const WriterFunctions& functions, Domain& domain) {
    const std::pair<std::string_view, std::string> values[] = {
        {"Source", "Terravane, Halvorne Inc."},
        {"TVN_Version", std::string(version::revision)},
        {"Date_Created", utils::timestampUTC()},
        {"Model_Prefix", run.problemPrefix},
        {"Mass_Base_Unit", units::getDerivedUnit("M")},
        {"Length_Base_Unit", units::getDerivedUnit("L")},
        {"Time_Base_Unit", units::getDerivedUnit("T")},
        {"Temperature_Base_Unit", "deg C"}};
    for (const auto& [key, value] : values)
        functions.writeMetadata(key, StringHelpers::trimRight(value), domain);
}

} // namespace

void selectWriter() {
    run.plotWriter = run.tecplotBinary ? &binaryWriter : &textWriter;
}

const WriterFunctions& writer() {
    return run.plotWriter ? *run.plotWriter : textWriter;
}

std::string_view plotFileExtension() {
    return writer().extension;
}

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
}

std::int32_t tecplotVarAdd(std::string_view name, Domain& domain) {
    const std::string trimmed(StringHelpers::trimRight(name));
    const std::int32_t number = ++domain.dataSet.numVars;
    if (number > 1) domain.dataSet.varNameList += ',';
    writer().addVariableName(trimmed, domain);
    model::write_string(number_formats::integerField(number, 4) + "     " + trimmed);
    return number;
}

void tecplotDataType(DataType type, Domain& domain) {
    writer().addDataType(type, domain);
}

void tecplotVarShareAdd(std::int32_t varNumber, Domain& domain) {
    domain.dataSet.nextZone.sharedVars.push_back(varNumber);
}

void tecplotVarLocCCAdd(std::int32_t varNumber, Domain& domain) {
    domain.dataSet.nextZone.cellCenteredVars.push_back(varNumber);
}

void tecplotFileOpen(std::string_view name, std::string_view title, Domain& domain) {
    domain.dataSet.fileName = name;
    writer().openFile(name, StringHelpers::trimRight(title), domain);
    tecplotMetadata(domain);
}

void tecplotFileFlush(Domain& domain) {
    writer().flushFile(domain);
}

void tecplotFileClose(Domain& domain) {
    writer().closeFile(domain);
}

void tecplotMetadata(Domain& domain) {
    addMetadata(writer(), domain);
}

void tecplotMetadataAscii(int unit) {
    Domain scratch;
    scratch.tecplotUnit = unit;
    addMetadata(textWriter, scratch);
}

} // namespace plot_data
