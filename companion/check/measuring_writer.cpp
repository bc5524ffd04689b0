#include "companion/check/measuring_writer.hpp"

#include "meshrake/model/cell_patterns.hpp"
#include "meshrake/model/result_files.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/plot_data/binary_open.hpp"
#include "meshrake/plot_data/data_set.hpp"
#include "meshrake/plot_data/text_layout.hpp"
#include "meshrake/plot_data/writer_functions.hpp"
#include "tecio/own_functions.hpp"

#include <map>
#include <string>

namespace check {

using model::DataType;
using model::Domain;
using model::run;
namespace text = plot_data::text_layout;

namespace {

struct State {
    plot_data::WriterFunctions functions{};
    const plot_data::WriterFunctions* real = nullptr;  // of the form that the run would write
    std::map<std::string, Measure> measures;           // by tag of the domain
    std::map<std::string, tecio::DataSetParts> binary; // likewise
};
State state;

Measure& of(const Domain& domain) {
    return state.measures[domain.name];
}

void addLine(const Domain& domain, std::string_view line) {
    of(domain).bytes += static_cast<std::int64_t>(line.size()) + 1;
}

std::size_t indexOf(std::int32_t varNumber) {
    return static_cast<std::size_t>(varNumber - 1);
}

void addVariableName(std::string_view name, Domain& domain) {
    of(domain).names.emplace_back(name);
    state.real->addVariableName(name, domain);
}

// Sets the entries of the numbers.
std::vector<bool> flags(const std::vector<std::int32_t>& numbers, const Domain& domain) {
    std::vector<bool> list(static_cast<std::size_t>(domain.dataSet.numVars));
    for (const std::int32_t number : numbers)
        if (number > 0) list[indexOf(number)] = true;
    return list;
}

void beginZone(Domain& domain) {
    Measure& measure = of(domain);
    ++measure.zones;
    ++domain.dataSet.zoneNumber;
    measure.ofElements = flags(domain.dataSet.nextZone.cellCenteredVars, domain);
    measure.shared = flags(domain.dataSet.nextZone.sharedVars, domain);
    measure.written = flags({}, domain);
    measure.hasUndeclared = false;
}

template<class T>
std::int64_t countOf(const plot_data::ValueGenerator<T>& next) {
    std::vector<T> buffer(plot_data::valuesPerPiece);
    std::int64_t count = 0;
    for (std::span<const T> piece = next(buffer); !piece.empty(); piece = next(buffer))
        count += std::ssize(piece);
    return count;
}

// Number of values of a variable. They are counted once: the masks of a domain do not change.
template<class T>
std::int64_t valueCount(std::int32_t varNumber, const plot_data::ValueGenerator<T>& next,
                        Domain& domain) {
    if (varNumber < 1) return countOf(next);
    Measure& measure = of(domain);
    measure.counts.resize(measure.written.size(), -1);
    measure.written[indexOf(varNumber)] = true;
    std::int64_t& count = measure.counts[indexOf(varNumber)];
    if (count < 0) count = countOf(next);
    return count;
}

// A text file has also the values of a variable that has no column.
template<class T>
void writeText(std::int32_t varNumber, const plot_data::ValueGenerator<T>& next,
               std::string_view label, Domain& domain) {
    constexpr DataType type = std::is_integral_v<T> ? DataType::longInt : DataType::real8;
    addLine(domain, text::arrayLine(label));
    of(domain).bytes += text::arrayBytes(type, valueCount(varNumber, next, domain));
    of(domain).hasUndeclared |= varNumber < 1;
}

template<class T>
void countBinary(std::int32_t varNumber, const plot_data::ValueGenerator<T>& next, std::string_view,
                 Domain& domain) {
    if (varNumber > 0) valueCount(varNumber, next, domain);
}

void openText(std::string_view, std::string_view title, Domain& domain) {
    addLine(domain, text::titleLine(title));
    addLine(domain, text::variablesLine(domain));
}

void textMetadata(std::string_view key, std::string_view value, Domain& domain) {
    addLine(domain, text::metadataLine(key, value));
}

void textUnits(Domain& domain) {
    for (const std::string* lines : {&domain.dataSet.unitComments, &domain.dataSet.unitAuxData})
        if (!lines->empty()) addLine(domain, *lines);
}

void textZone(std::string_view title, std::string_view time, int share, Domain& domain) {
    beginZone(domain);
    addLine(domain, text::zoneLine(title, time, share, domain));
    of(domain).zoneLineIsCut |= text::zoneLineIsCut(title, time, share, domain);
    const std::string types = text::typesLine(domain);
    if (!types.empty()) addLine(domain, types);
}

void textConnectivity(Domain& domain) {
    addLine(domain, text::nodeListsLine);
    const int length = model::cellPattern(domain.nodesPerElement).length;
    if (length > 0) of(domain).bytes += text::nodeListBytes(length) * domain.neTruncated;
}

void openBinary(std::string_view, std::string_view title, Domain& domain) {
    plot_data::binary::checkNames(domain);
    state.binary[domain.name] = {};
    state.binary[domain.name].title = title;
    state.binary[domain.name].variableList = domain.dataSet.varNameList;
}

void binaryMetadata(std::string_view key, std::string_view value, Domain& domain) {
    state.binary[domain.name].values.push_back({0, std::string(key), std::string(value)});
}

void binaryUnits(Domain& domain) {
    const std::vector<std::string>& units = domain.dataSet.varUnits;
    for (std::size_t v = 0; v < units.size(); ++v)
        state.binary[domain.name].values.push_back(
            {static_cast<std::int32_t>(v + 1), "Units", units[v]});
}

void binaryZone(std::string_view title, std::string_view time, int share, Domain& domain) {
    if (!time.empty()) model::timeOf(time);
    beginZone(domain);
    const Measure& measure = of(domain);
    const auto lists = model::cellPattern(domain.nodesPerElement);
    state.binary[domain.name].zones.push_back({.title = std::string(title),
                                               .nodes = domain.nnTruncated,
                                               .elements = domain.neTruncated,
                                               .nodesPerElement = lists.length,
                                               .types = domain.dataSet.varTypes,
                                               .ofElements = measure.ofElements,
                                               .shared = measure.shared,
                                               .sharesNodeLists = share > 0,
                                               .isFlushed = false});
}

void noConnectivity(Domain&) {}

void flushText(Domain&) {}

void flushBinary(Domain& domain) {
    state.binary[domain.name].zones.back().isFlushed = true;
}

void close(Domain&) {}

} // namespace

void selectMeasuringWriter() {
    state = {};
    plot_data::WriterFunctions& f = state.functions;
    plot_data::selectWriter();
    state.real = &plot_data::writer();
    f = *state.real;
    f.addVariableName = addVariableName;
    const bool binary = run.tecplotBinary;
    f.openFile = binary ? openBinary : openText;
    f.writeMetadata = binary ? binaryMetadata : textMetadata;
    f.writeUnits = binary ? binaryUnits : textUnits;
    f.flushFile = binary ? flushBinary : flushText;
    f.closeFile = close;
    f.writeZone = binary ? binaryZone : textZone;
    f.writeReal4 = binary ? countBinary<float> : writeText<float>;
    f.writeReal8 = binary ? countBinary<double> : writeText<double>;
    f.writeInt4 = binary ? countBinary<std::int32_t> : writeText<std::int32_t>;
    f.writeConnectivity = binary ? noConnectivity : textConnectivity;
    run.plotWriter = &f;
}

const Measure& measureOf(const Domain& domain) {
    return of(domain);
}

bool finishMeasure(const Domain& domain, std::int64_t& bytes) {
    bytes = of(domain).bytes;
    if (!run.tecplotBinary) return true;
    const tecio::DataSetParts& parts = state.binary[domain.name];
    const bool appends = run.tecplotAppend && run.startTimeIndex > 1;
    bytes = 0;
    if constexpr (MESHRAKE_OWN_TECIO)
        bytes = appends ? tecio::zoneBytes(parts) : tecio::dataSetBytes(parts);
    return MESHRAKE_OWN_TECIO && !appends;
}

} // namespace check
