#pragma once

#include "meshrake/model/domain.hpp"
#include "meshrake/plot_data/array_writing.hpp"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// A plot file has two forms, text and binary. Each form implements this record of functions. The
// public functions of `plot_data` call the record that `selectWriter` selected, with names, titles,
// values and times without trailing blanks.
namespace plot_data {

struct WriterFunctions {
    std::string_view extension;        // of the plot file, with its point
    bool hidesIncompleteZones = false; // readers see a zone once all of it is written

    // Called before the file is open; they collect in `domain.dataSet` what its header will have.
    // The comma before the name is already in the list.
    void (*addVariableName)(std::string_view name, model::Domain& domain);
    void (*addDataType)(model::DataType type, model::Domain& domain);
    // `unit` is the text to show, empty for none.
    void (*addUnit)(std::string_view varName, std::int32_t varNumber, const std::string& unit,
                    model::Domain& domain);

    void (*openFile)(std::string_view name, std::string_view title, model::Domain& domain);
    void (*writeMetadata)(std::string_view key, std::string_view value, model::Domain& domain);
    void (*writeUnits)(model::Domain& domain);
    void (*flushFile)(model::Domain& domain);
    void (*closeFile)(model::Domain& domain);

    void (*writeZone)(std::string_view title, std::string_view solutionTime,
                      int connectivityShareZone, model::Domain& domain);
    void (*writeReal4)(std::int32_t varNumber, const ValueGenerator<float>& next,
                       std::string_view label, model::Domain& domain);
    void (*writeReal8)(std::int32_t varNumber, const ValueGenerator<double>& next,
                       std::string_view label, model::Domain& domain);
    void (*writeInt4)(std::int32_t varNumber, const ValueGenerator<std::int32_t>& next,
                      std::string_view label, model::Domain& domain);
    void (*writeConnectivity)(model::Domain& domain);
    void (*endZone)(model::Domain& domain);
};

extern const WriterFunctions textWriter;
extern const WriterFunctions binaryWriter;

// Returns the record of this run: that of text until one is selected.
const WriterFunctions& writer();

// Number of values in one piece of an array, small enough to stay in the cache until they are in
// the file. It is a multiple of five, because only the last row of an array may be short.
inline constexpr std::size_t valuesPerPiece = 20000;

} // namespace plot_data
